# SPDX-License-Identifier: MIT
"""A program whose main thread is blocked, as by a call that never returns."""

import ctypes
import os

SEIZE, INTERRUPT = 0x4206, 0x4207


def hold_main_thread(pid):
    """Stops a child's main thread forever, and no other (ptrace(2))."""
    libc = ctypes.CDLL(None, use_errno=True)
    for request in (SEIZE, INTERRUPT):
        if libc.ptrace(ctypes.c_long(request), ctypes.c_long(pid), None, None) != 0:
            raise OSError(ctypes.get_errno(), "ptrace")
    os.waitpid(pid, os.WUNTRACED)
