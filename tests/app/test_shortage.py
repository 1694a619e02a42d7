# SPDX-License-Identifier: MIT
"""How the program ends where the system gives it less than it needs."""

import os
import resource
import signal

import pytest

from driver.waiting import until

# Somebody who owns no process, so that the limit on them counts only the program's threads.
NOBODY = 54_321


def outcome(user, child):
    """The status and what was written of a program that ended, None where its window came up."""

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


def assert_ends_in_order(user, limit, numbers, account=None):
    """With each of these limits there is a window, or an end with status 1 and one line."""
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
        if result:
            assert result[0] == 1 and result[1].startswith("brevane: ") and result[1].count("\n") == 1, (number, result)


def test_without_a_display_it_says_so_in_one_line(user):
    del user.environment["DISPLAY"]
    status, written = outcome(user, user.launch())
    assert (status, written.count("\n")) == (1, 1)
    assert written.startswith("brevane: ")


def test_descriptors_that_run_out_at_the_start_end_it_with_one_line(user):
    assert_ends_in_order(user, resource.RLIMIT_NOFILE, range(4, 84, 8))


@pytest.mark.skipif(os.geteuid() != 0, reason="needs root, to be another user whose threads are counted")
def test_threads_that_run_out_at_the_start_end_it_with_one_line(user):
    for folder in (user.folder, user.folder / "config"):
        folder.mkdir(exist_ok=True)
        os.chown(folder, NOBODY, NOBODY)
    del user.environment["XDG_RUNTIME_DIR"]
    assert_ends_in_order(user, resource.RLIMIT_NPROC, range(1, 14), account=NOBODY)
