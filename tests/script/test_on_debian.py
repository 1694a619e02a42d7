# SPDX-License-Identifier: MIT
"""What script/bootstrap installs on Debian, with stand-ins for dpkg-query and apt-get."""

import os
import shutil
import signal
import subprocess
import tempfile
from pathlib import Path

import pytest

PROJECT = Path(__file__).parents[2]

STAND_INS = {
    "uname": "echo Linux",
    "go": "echo go99.9",
    "id": "echo 0",
    "sudo": 'if [ "$1" = --validate ]; then exit "${SUDO_STATUS:-0}"; fi; exec "$@"',
    # As the real one does it: what it has never heard of makes it fail beside what it prints.
    "dpkg-query": 'status=0\nshift 2\nfor name; do grep -qx "$name" "$HERE/installed" && echo "installed $name" || status=1; done\nexit $status',
    "apt-get": 'case " $* " in *" install "*) echo "$@" >>"$HERE/calls" ;; esac; exit "${APT_STATUS:-0}"',
    # As in Debian 13: prints nothing, and succeeds, for a name that it only knows from others.
    "apt-cache": 'grep -x "$2" "$HERE/known"; true',
}


class Debian:
    def __init__(self, folder):
        self.folder = folder
        self.project = folder / "a checkout"
        (folder / "bin").mkdir(parents=True)
        for name, text in STAND_INS.items():
            path = folder / "bin" / name
            path.write_text("#!/bin/sh\n" + text + "\n")
            path.chmod(0o755)
        shutil.copytree(PROJECT / "script", self.project / "script")
        (self.project / "tools/tailnet").mkdir(parents=True)
        shutil.copy(PROJECT / "tools/tailnet/go.mod", self.project / "tools/tailnet")
        (folder / "calls").touch()
        self.installed()
        self.known()

    def installed(self, *names):
        (self.folder / "installed").write_text("".join(name + "\n" for name in names))

    def known(self, *names):
        (self.folder / "known").write_text("".join(name + "\n" for name in names))

    def bootstrap(self, *words, user=None, **environment):
        environment = {"PATH": f"{self.folder}/bin:/usr/bin:/bin", "HERE": str(self.folder), "LC_ALL": "C.UTF-8"} | environment
        result = subprocess.run(
            [self.project / "script/bootstrap", *words],
            user=user, env=environment, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60,
            start_new_session=True,
        )
        return result.returncode, result.stdout + result.stderr

    def asked_for(self):
        return [line.split() for line in (self.folder / "calls").read_text().splitlines()]


@pytest.fixture
def debian(tmp_path):
    return Debian(tmp_path / "Debian")


def test_everything_is_installed_where_nothing_is_there(debian):
    debian.known("clang-format-16")
    status, words = debian.bootstrap("format")
    assert status == 0, words
    assert debian.asked_for()[0][-1] == "clang-format-16"
    assert "Installing 1 Debian packages" in words


def test_only_what_is_missing_is_installed(debian):
    debian.installed("clang-16", "libc++-16-dev", "googletest")
    debian.known("libc++abi-16-dev")
    status, words = debian.bootstrap("clang")
    assert status == 0, words
    assert debian.asked_for()[0][-2:] == ["--no-install-recommends", "libc++abi-16-dev"]


def test_nothing_is_asked_for_where_all_is_there(debian):
    debian.installed("clang-format-16")
    assert debian.bootstrap("format") == (0, "")
    assert debian.asked_for() == []


def test_either_name_of_a_package_will_do(debian):
    compiler = ["g++", "cmake", "ninja-build", "dpkg-dev", "file", "gzip"]
    libraries = ["libboost1.81-dev", "qt6-base-dev", "qt6-svg-dev", "libfontconfig-dev"]
    debian.installed(*compiler, *libraries)
    assert debian.bootstrap("package") == (0, "")


def test_the_later_name_is_taken_where_the_first_is_unknown(debian):
    compiler = ["g++", "cmake", "ninja-build", "dpkg-dev", "file", "gzip"]
    debian.installed(*compiler, "qt6-base-dev", "qt6-svg-dev", "libfontconfig-dev")
    status, words = debian.bootstrap("package")
    assert status == 0, words
    assert debian.asked_for()[0][-2:] == ["libboost-dev", "libboost-url-dev"]


@pytest.mark.skipif(os.geteuid() != 0, reason="only root can become someone else")
@pytest.mark.parametrize(
    "known, command",
    [
        ("libboost1.81-dev", "'apt-get install cmake dpkg-dev file g++ gzip libboost1.81-dev libfontconfig-dev ninja-build"),
        # Without the lists of packages nobody can tell which of two names is right here.
        ("", "'apt-get update'"),
    ],
)
def test_whoever_may_not_install_is_told_what_root_has_to_run(known, command):
    with tempfile.TemporaryDirectory() as folder:
        os.chmod(folder, 0o755)
        debian = Debian(Path(folder) / "Debian")
        debian.known(known)
        status, words = debian.bootstrap("package", user=65534, SUDO_STATUS="1")
        assert status == 1
        assert "needs root or sudo" in words
        assert command in words
        assert debian.asked_for() == []


def test_ctrl_c_ends_it_even_if_apt_get_finishes_what_it_has_begun(debian):
    # Where packages are being unpacked, apt-get stops behind them and exits with 0.
    apt_get = debian.folder / "bin/apt-get"
    apt_get.write_text("#!/bin/sh\necho $2 >>$HERE/calls\ntrap : INT\nkill -INT 0\nexit 0\n")
    status, words = debian.bootstrap("format")
    assert status == -signal.SIGINT, words
    assert len(debian.asked_for()) == 1


def test_a_failure_of_apt_get_is_told(debian):
    status, words = debian.bootstrap("format", APT_STATUS="100")
    assert status == 1
    assert "'apt-get update' failed" in words
