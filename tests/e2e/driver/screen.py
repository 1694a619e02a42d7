# SPDX-License-Identifier: MIT
"""The desktop of a test run: on X11, or on Wayland with --screen wayland."""

import shutil
import tempfile

import pytest

from .wayland import WaylandDesktop
from .x11 import X11Desktop


def add_option(parser):
    parser.addoption("--screen", choices=["x11", "wayland"], default="x11")


@pytest.fixture(scope="session")
def desktop(pytestconfig):
    kind = WaylandDesktop if pytestconfig.getoption("--screen") == "wayland" else X11Desktop
    folder = tempfile.mkdtemp(prefix="brevane-desktop-")
    with kind(folder) as running:
        yield running
    shutil.rmtree(folder, ignore_errors=True)
