# SPDX-License-Identifier: MIT
"""The tailnet itself: all of its processes end with it, and nothing leaves this machine."""

import json
import os
import signal
import subprocess
from pathlib import Path

import pytest

from driver import process
from driver.waiting import until


class Run:
    """One "tailnet run" in its own folder, ready once constructed."""

    def __init__(self, programs, folder, *options):
        self.child = process.start(
            Path(programs) / "tailnet", "run", "--bin", programs, "--dir", folder, *options,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
        )  # fmt: skip
        line = self.child.stdout.readline()
        assert line, self.child.stderr.read()
        self.record = json.loads(line)

    def daemons(self):
        """The process identifiers of its running daemons."""
        return [node["pid"] for node in self.record["nodes"].values() if is_running(node["pid"])]


def is_running(pid):
    try:
        state = Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()[0]
    except FileNotFoundError:
        return False
    return state != "Z"


@pytest.fixture
def programs(pytestconfig):
    return pytestconfig.getoption("--tailnet-programs")


@pytest.fixture
def run(programs, tmp_path):
    run = Run(programs, tmp_path / "tailnet")
    yield run
    process.end(run.child)


@pytest.mark.parametrize("sign", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP])
def test_it_ends_in_order_when_it_is_told_to(run, tmp_path, sign):
    assert len(run.daemons()) == 2
    run.child.send_signal(sign)
    assert run.child.wait(20) == 0
    assert run.daemons() == []
    assert not (tmp_path / "tailnet" / "tailnet.json").exists()
    assert run.child.stderr.read() == ""


def test_its_nodes_end_with_it_when_it_is_killed(run):
    run.child.kill()
    until("the daemons to end", lambda: run.daemons() == [])


def test_it_ends_with_its_standard_input_where_asked(programs, tmp_path):
    run = Run(programs, tmp_path / "tailnet", "--until-eof")
    run.child.stdin.close()
    assert run.child.wait(20) == 0
    assert run.daemons() == []


def test_it_ends_when_one_of_its_nodes_does_and_says_which(run):
    os.kill(run.record["nodes"]["peer"]["pid"], signal.SIGKILL)
    assert run.child.wait(20) == 1
    assert "tailscaled of peer ended by itself" in run.child.stderr.read()
    assert run.daemons() == []


def test_a_folder_has_one_tailnet_at_a_time(run, programs, tmp_path):
    words = [Path(programs) / "tailnet", "run", "--bin", programs, "--dir", tmp_path / "tailnet"]
    second = subprocess.run(words, capture_output=True, text=True, timeout=60)
    assert second.returncode == 1
    assert f"another tailnet runs on {tmp_path / 'tailnet'} (process {run.record['pid']})" in second.stderr


def test_a_folder_can_be_used_again_after_a_kill(run, programs, tmp_path):
    run.child.kill()
    run.child.wait()
    again = Run(programs, tmp_path / "tailnet")
    assert len(again.daemons()) == 2
    process.end(again.child)


def test_a_command_gets_the_tailnet_and_ends_it(programs, tmp_path):
    words = [Path(programs) / "tailnet", "run", "--bin", programs, "--dir", tmp_path / "tailnet", "--", "sh", "-c"]
    script = f"{tmp_path}/tailnet/host/tailscale status; exit 7"
    ended = subprocess.run([*words, script], capture_output=True, text=True, timeout=60)
    assert ended.returncode == 7
    assert "peer" in ended.stdout


def test_sockets_fit_however_long_the_folder_is(programs, tmp_path):
    run = Run(programs, tmp_path / ("x" * 100))
    cli = run.record["nodes"]["host"]["cli"]
    assert "peer" in subprocess.run([cli, "status"], capture_output=True, text=True, check=True).stdout
    process.end(run.child)
