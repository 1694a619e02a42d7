# SPDX-License-Identifier: MIT
"""Waiting for what a person would wait for."""

import time

# Generous: what is waited for takes well under a second on an idle machine.
PATIENCE = 60.0


class TimedOut(AssertionError):
    """Something did not happen."""


def until(what, condition, patience=PATIENCE):
    """Returns the first true value of condition(); fails, naming `what`, where there is none."""
    deadline = time.monotonic() + patience
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise TimedOut(f"waited {patience:.0f} s in vain for {what}")
        time.sleep(0.05)
