# SPDX-License-Identifier: MIT
"""script/old-bash names what the bash and the tools of macOS do not have."""

import subprocess
from pathlib import Path

import pytest

PROJECT = Path(__file__).parents[2]


def findings(tmp_path, text):
    script = tmp_path / "script.sh"
    script.write_text("#!/usr/bin/env bash\n" + text + "\n")
    result = subprocess.run([PROJECT / "script/old-bash", script], capture_output=True, text=True)
    assert result.stderr == ""
    assert (result.returncode == 0) == (result.stdout == "")
    return result.stdout.splitlines()


@pytest.mark.parametrize(
    "line",
    [
        "mapfile -t names < <(ls)",
        "readarray names",
        "coproc cat",
        "local -A seen=()",
        "declare -gA seen",
        "local -n target=$1",
        "typeset -u upper",
        'echo "${name@Q}"',
        'echo "${name^^}"',
        'echo "${names[0],}"',
        "[[ -v name ]]",
        "if test -v name; then",
        "ls &>>log",
        "ls |& cat",
        "a) ;;&",
        "wait -n",
        "printf -v names[0] x",
        "printf '%(%F)T' -1",
        'echo "${names[-1]}"',
        "exec {log}>file",
        "shopt -s globstar",
        "echo $BASHPID",
        "echo $EPOCHSECONDS",
        "read -r -N 1 key",
        "read -ri text name",
        r"echo $'\u2026'",
        "make -j $(nproc)",
        "sed -i s/a/b/ file",
        "sed -E -i s/a/b/ file",
        "find . -printf '%f'",
        "find . -type f -executable",
        "readlink -f file",
        "realpath file",
        "stat -c %s file",
        "date -d now",
        "xargs -r rm",
        "grep -P x file",
        'names=()\nls "${names[@]}"',
        'local -a names=()\nls "${names[*]}"',
        'names=()\nls ${names[@]+"${names[@]}"} "${names[@]}"',
    ],
)
def test_refuses_what_macos_lacks(tmp_path, line):
    assert len(findings(tmp_path, line)) == 1


@pytest.mark.parametrize(
    "line",
    [
        "# mapfile is a word here",
        "mapfile -t names < <(ls) # Linux only",
        'names=(a b)\nls "${names[@]}"',
        'names=()\nls ${names[@]+"${names[@]}"}',
        'names=()\nif [[ ${#names[@]} -gt 0 ]]; then ls; fi',
        'echo "${name%,*}" "${name#*^}" "${name:-x}" "${name:+y}" "${!name}"',
        "while read -r -p 'Yes? ' word; do :; done",
        "ls >log 2>&1 || true; case a in a) ;; esac",
        "go test -v ./...",
        "find . -name x -print0 | xargs -0 rm",
        "printf '%s' x; head -n 1 file",
    ],
)
def test_takes_what_macos_has(tmp_path, line):
    assert findings(tmp_path, line) == []


def test_each_file_has_arrays_of_its_own(tmp_path):
    first = tmp_path / "first"
    first.write_text("names=()\n")
    second = tmp_path / "second"
    second.write_text('names=(a)\nls "${names[@]}"\n')
    assert subprocess.run([PROJECT / "script/old-bash", first, second]).returncode == 0
