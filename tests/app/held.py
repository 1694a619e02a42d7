# SPDX-License-Identifier: MIT
"""A program whose main thread stands still, as if it waited for something that never comes."""

import ctypes
import os

SEIZE, INTERRUPT = 0x4206, 0x4207


def hold_main_thread(pid):
    """Stops the first thread of a child, and no other, for good (ptrace(2))."""
    libc = ctypes.CDLL(None, use_errno=True)
    for request in (SEIZE, INTERRUPT):
        if libc.ptrace(ctypes.c_long(request), ctypes.c_long(pid), None, None) != 0:
            raise OSError(ctypes.get_errno(), "ptrace")
    os.waitpid(pid, os.WUNTRACED)
