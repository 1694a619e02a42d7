# SPDX-License-Identifier: MIT
"""What script/run, script/test and script/bootstrap do on a Mac, with stand-ins for what they call there."""

import os
import pty
import shutil
import subprocess
from pathlib import Path

import pytest

PROJECT = Path(__file__).parents[2]
FORMULAE = ["cmake", "ninja", "boost", "qtbase", "qtsvg", "qtimageformats", "googletest", "go"]
LOG = 'printf "%s" "${0##*/}" >>"$CALLS"; printf " %s" "$@" >>"$CALLS"; echo >>"$CALLS"\n'

STAND_INS = {
    "uname": "echo Darwin",
    "locale": 'echo "${CHARMAP:-UTF-8}"',
    "xcode-select": 'exit "${XCODE_STATUS:-0}"',
    "brew": 'if [ "$1" = list ]; then cat "$HERE/brewed"; else ' + LOG.strip() + '; exit "${BREW_STATUS:-0}"; fi',
    "go": "echo go99.9",
    "cmake": LOG
    + """
if [ "$1" = --build ]; then
    mkdir -p "$2/bin/Brevane.app/Contents/MacOS"
    cp "$HERE/program" "$2/bin/Brevane.app/Contents/MacOS/Brevane"
else
    folder=build/$2
    [ "${3:-}" != -B ] || folder=$4
    mkdir -p "$folder"
    echo "BREVANE_TAILSCALE_BIN:STRING=$TAILSCALE" >"$folder/CMakeCache.txt"
fi
""",
    "ctest": LOG
    + """
while [ "$1" != --output-junit ]; do shift; done
mkdir -p "${2%/*}"
echo '<testsuite tests="3" failures="0" skipped="0" disabled="0">' >"$2"
""",
}


class Mac:
    def __init__(self, folder):
        self.folder = folder
        self.project = folder / "a checkout"
        bin_folder = folder / "bin"
        bin_folder.mkdir(parents=True)
        self.calls_file = folder / "calls"
        self.calls_file.touch()
        for name, text in STAND_INS.items():
            self.write(bin_folder / name, text)
        self.write(folder / "program", LOG + 'echo "XDG $XDG_CONFIG_HOME" >>"$CALLS"; echo "LC_ALL $LC_ALL" >>"$CALLS"')
        self.brewed(FORMULAE[:-1])

        shutil.copytree(PROJECT / "script", self.project / "script")
        tailnet = self.project / "tools/tailnet"
        tailnet.mkdir(parents=True)
        shutil.copy(PROJECT / "tools/tailnet/go.mod", tailnet)
        self.write(
            tailnet / "build.sh",
            'mkdir -p "$2"; cp "$HERE/tailnet" "$2/tailnet"',
        )
        self.write(folder / "tailnet", LOG + 'while [ "$1" != -- ]; do shift; done\nshift\nexec "$@"')

        self.environment = {
            "PATH": f"{bin_folder}:/usr/bin:/bin",
            "HOME": str(folder),
            "HERE": str(folder),
            "TMPDIR": str(folder),
            "CALLS": str(self.calls_file),
            "TAILSCALE": "/nowhere/tailscale",
        }

    @staticmethod
    def write(path, text):
        path.write_text("#!/bin/sh\n" + text + "\n")
        path.chmod(0o755)

    def brewed(self, formulae):
        (self.folder / "brewed").write_text("".join(name + "\n" for name in formulae))

    def hide(self, name):
        """Takes a stand-in away, and what this machine has under its name."""
        (self.folder / "bin" / name).unlink()
        tools = self.folder / "tools"
        tools.mkdir()
        for folder in ("/usr/bin", "/bin"):
            for tool in Path(folder).iterdir():
                if tool.name not in (name, "tailscale") and not (tools / tool.name).exists():
                    (tools / tool.name).symlink_to(tool)
        self.environment["PATH"] = f"{self.folder / 'bin'}:{tools}"

    def run(self, *command, answer=None, **environment):
        """The exit status and what was said. With an answer there is a terminal to type it into."""
        command = [str(self.project / command[0]), *command[1:]]
        environment = self.environment | environment
        if answer is None:
            result = subprocess.run(
                command, env=environment, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60
            )
            return result.returncode, result.stdout + result.stderr
        ours, theirs = pty.openpty()
        os.write(ours, (answer + "\n").encode())
        result = subprocess.run(
            command, env=environment, stdin=theirs, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60
        )
        os.close(theirs)
        os.close(ours)
        return result.returncode, result.stdout.decode()

    def calls(self, name):
        return [line.strip() for line in self.calls_file.read_text().splitlines() if line.split()[0] == name]


@pytest.fixture
def mac(tmp_path):
    return Mac(tmp_path / "Mac")


def test_nothing_is_installed_where_nothing_is_missing(mac):
    assert mac.run("script/bootstrap") == (0, "")
    assert mac.calls("brew") == []


def test_what_is_missing_is_named_and_not_installed_unasked(mac):
    mac.brewed(["cmake", "boost"])
    status, words = mac.run("script/bootstrap", "run")
    assert status == 1
    assert "brew install qtbase qtsvg qtimageformats googletest" in words
    assert "--yes" in words
    assert mac.calls("brew") == []


@pytest.mark.parametrize("command", [["script/bootstrap", "--yes"], ["script/run", "--yes"], ["script/test", "--yes"]])
def test_yes_installs_what_is_missing(mac, command):
    mac.brewed([name for name in FORMULAE if name != "qtsvg"])
    status, words = mac.run(*command)
    assert (status, "brew install qtsvg" in words) == (0, True)
    assert mac.calls("brew") == ["brew install qtsvg"]


def test_a_person_who_agrees_installs_what_is_missing(mac):
    mac.brewed(FORMULAE[2:])
    mac.hide("cmake")
    status, words = mac.run("script/bootstrap", answer="y")
    assert status == 0, words
    assert mac.calls("brew") == ["brew install cmake"]


@pytest.mark.parametrize("answer", ["", "n"])
def test_a_person_who_does_not_agree_gets_nothing(mac, answer):
    mac.brewed([])
    status, words = mac.run("script/bootstrap", answer=answer)
    assert status == 1
    assert "nothing has been installed" in words
    assert mac.calls("brew") == []


def test_go_is_installed_where_it_is_too_old(mac):
    mac.write(mac.folder / "bin/go", "echo go1.2")
    mac.run("script/bootstrap", "--yes")
    assert mac.calls("brew") == ["brew install go"]


def test_packaging_needs_no_go(mac):
    mac.write(mac.folder / "bin/go", "echo go1.2")
    assert mac.run("script/bootstrap", "package") == (0, "")


def test_a_failure_of_homebrew_is_told(mac):
    mac.brewed([])
    status, words = mac.run("script/bootstrap", "--yes", BREW_STATUS="1")
    assert status == 1
    assert "failed" in words


def test_a_missing_compiler_is_told(mac):
    status, words = mac.run("script/bootstrap", XCODE_STATUS="2")
    assert status == 1
    assert "xcode-select --install" in words


def test_a_missing_homebrew_is_told(mac):
    mac.hide("brew")
    status, words = mac.run("script/bootstrap")
    assert status == 1
    assert "https://brew.sh" in words


@pytest.mark.parametrize("need", ["lint", "bench", "check-package", "coverage"])
def test_what_needs_linux_says_so(mac, need):
    status, words = mac.run("script/bootstrap", need)
    assert status == 1
    assert "Debian" in words


def test_run_opens_the_window_on_the_tailscale_that_is_there(mac):
    tailscale = mac.folder / "tailscale"
    mac.write(tailscale, "exit 0")
    status, words = mac.run("script/run", TAILSCALE=str(tailscale))
    assert status == 0, words
    assert mac.calls("cmake") == ["cmake --preset release", "cmake --build build/release -- --quiet"]
    assert mac.calls("Brevane") == ["Brevane"]
    assert mac.calls("tailnet") == []


def test_run_opens_the_window_on_a_tailnet_of_its_own_where_there_is_no_tailscale(mac):
    status, words = mac.run("script/run")
    assert status == 0, words
    configured, built = mac.calls("cmake")[1:]
    assert configured.startswith("cmake --preset release -B build/loopback -D BREVANE_TAILSCALE_BIN=")
    # The path is one plain word to a shell, though this folder's is not.
    assert " " not in configured.partition("BREVANE_TAILSCALE_BIN=")[2].partition(" -D ")[0]
    # The user's own shares are remembered under another one.
    assert configured.endswith(" -D BREVANE_BUNDLE_IDENTIFIER=com.brevane.brevane.loopback")
    assert built == "cmake --build build/loopback -- --quiet"
    assert len(mac.calls("tailnet")) == 1
    assert mac.calls("Brevane") == ["Brevane"]
    assert mac.calls("XDG") == [f"XDG {mac.project}/build/loopback/config"]
    assert "/nowhere/tailscale" in words


def test_run_names_a_tailscale_that_is_elsewhere(mac):
    mac.write(mac.folder / "bin/tailscale", "exit 0")
    status, words = mac.run("script/run")
    assert status == 0
    assert f"-D BREVANE_TAILSCALE_BIN={mac.folder}/bin/tailscale" in words


def test_text_is_utf_8_where_no_locale_is_set(mac):
    mac.run("script/run", CHARMAP="US-ASCII")
    assert mac.calls("LC_ALL") == ["LC_ALL en_US.UTF-8"]


def test_the_tests_without_a_tailnet_run(mac):
    status, words = mac.run("script/test")
    assert status == 0, words
    assert words.splitlines()[-1] == "==> Running the tests unit wire window of the preset 'dev' (1 to 5 minutes)"
    assert "3 passed, 0 failed" in words
    assert "--label-regex ^(unit|wire|window)$" in mac.calls("ctest")[0]
    assert "--tests-regex" not in mac.calls("ctest")[0]


def test_a_regex_chooses_tests(mac):
    assert mac.run("script/test", "unit", "Shell Quote")[0] == 0
    assert "--label-regex ^(unit)$ --tests-regex Shell Quote " in mac.calls("ctest")[0]


def test_the_tests_on_a_tailnet_say_that_they_need_linux(mac):
    status, words = mac.run("script/test", "e2e")
    assert status == 1
    assert "Linux" in words


@pytest.mark.parametrize("command", ["bootstrap", "run", "test"])
def test_help_is_shown(mac, command):
    status, words = mac.run(f"script/{command}", "--help")
    assert status == 0
    assert words.startswith(f"Usage: script/{command} ")
