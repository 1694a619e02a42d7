# SPDX-License-Identifier: MIT
"""Waiting for conditions."""

import time

# Generous: on an idle machine each wait takes well under a second.
PATIENCE = 60.0


class TimedOut(AssertionError):
    """A condition did not become true in time."""


def until(what, condition, patience=PATIENCE):
    """Returns the first true value of condition(); raises TimedOut, naming `what`, if there is none in time."""
    deadline = time.monotonic() + patience
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise TimedOut(f"waited {patience:.0f} s in vain for {what}")
        time.sleep(0.05)
