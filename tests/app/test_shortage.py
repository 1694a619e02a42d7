# SPDX-License-Identifier: MIT
"""How the program ends if it runs out of a resource."""

import os
import re
import resource
import signal
from pathlib import Path

import pytest

from driver.waiting import until

# A user without processes, so that RLIMIT_NPROC counts only the program's threads.
NOBODY = 54_321


def outcome(user, child):
    """The status and the output of a program that has ended; None if its window was shown."""

    def ended_or_shown():
        if child.poll() is not None:
            return True
        return bool(user.windows("Brevane", child.pid))

    until("an end or a window", ended_or_shown)
    if child.poll() is None:
        child.send_signal(signal.SIGTERM)
        assert child.wait(30) == 0
        return None
    return child.returncode, (user.folder / "program.log").read_text()


# The loader has ended it before main().
UNLOADABLE = "error while loading shared libraries"


def assert_ends_in_order(user, limit, numbers, account=None):
    """With each of these limits, the program shows its window or ends with status 1 and one line."""
    outcomes = []
    for number in numbers:

        def restrict():
            if account is not None:
                os.setgroups([])
                os.setgid(account)
                os.setuid(account)
            resource.setrlimit(limit, (number, number))

        (user.folder / "program.log").unlink(missing_ok=True)
        child = user.launch(preexec_fn=restrict)
        outcomes.append((number, outcome(user, child)))
    failures = [result for _, result in outcomes if result]
    assert failures and len(failures) < len(outcomes), outcomes
    for number, result in outcomes:
        if result and UNLOADABLE not in result[1]:
            assert_said(result, number)


def assert_said(result, case=None):
    """The program has ended with status 1 and one line that says why."""
    status, written = result
    assert status == 1 and written.startswith("brevane: ") and written.count("\n") == 1, (case, result)


def test_without_a_display_it_says_so_in_one_line(user):
    del user.environment["DISPLAY"]
    assert_said(outcome(user, user.launch()))


def test_descriptors_that_run_out_at_the_start_end_it_with_one_line(user):
    assert_ends_in_order(user, resource.RLIMIT_NOFILE, range(4, 84, 8))


@pytest.mark.skipif(os.geteuid() != 0, reason="needs root, to be another user whose threads are counted")
def test_threads_that_run_out_at_the_start_end_it_with_one_line(user):
    for folder in (user.folder, user.folder / "config"):
        folder.mkdir(exist_ok=True)
        os.chown(folder, NOBODY, NOBODY)
    del user.environment["XDG_RUNTIME_DIR"]
    assert_ends_in_order(user, resource.RLIMIT_NPROC, range(1, 14), account=NOBODY)


@pytest.fixture
def addresses(user):
    """Skips programs for which a sanitizer reserves terabytes of address space."""
    if re.search(rb"__[at]san_init", Path(user.program).read_bytes()):
        pytest.skip("a sanitizer takes more addresses than any limit")


def test_memory_that_runs_out_at_the_start_ends_it_with_one_line(user, addresses):
    assert_ends_in_order(user, resource.RLIMIT_AS, (megabytes << 20 for megabytes in range(60, 1200, 40)))


def test_memory_that_has_run_out_at_quitting_is_an_end_with_one_line_at_worst(user, addresses):
    for spare in (0, 4096, 65536, 1 << 20):
        (user.folder / "program.log").unlink(missing_ok=True)
        child = user.start()
        user.window(child).await_idle()
        kilobytes = re.search(r"VmSize:\s+(\d+)", Path(f"/proc/{child.pid}/status").read_text())[1]
        size = int(kilobytes) * 1024 + spare
        resource.prlimit(child.pid, resource.RLIMIT_AS, (size, size))
        child.send_signal(signal.SIGTERM)
        status, written = child.wait(30), (user.folder / "program.log").read_text()
        if (status, written) != (0, ""):
            assert_said((status, written), spare)
