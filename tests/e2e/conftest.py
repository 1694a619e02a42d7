# SPDX-License-Identifier: MIT
"""The desktop, the tailnet and the program that the tests share."""

import shutil
import tempfile
from pathlib import Path

import pytest

from driver.application import Application
from driver.tailnet import Tailnet
from driver.wayland import WaylandDesktop
from driver.x11 import X11Desktop


def pytest_addoption(parser):
    parser.addoption("--program", required=True, help="the program under test")
    parser.addoption("--tailscale", required=True, help="DIR/host/tailscale, the command that it was built for")
    parser.addoption("--hung-disk", help="a program that mounts a file system that hangs; needs root")
    parser.addoption("--screen", choices=["x11", "wayland"], default="x11")
    parser.addoption("--tailnet-programs", required=True, help="folder of tailnet, tailscale and tailscaled")


@pytest.fixture(scope="session")
def tailnet(pytestconfig):
    command = Path(pytestconfig.getoption("--tailscale"))
    with Tailnet(pytestconfig.getoption("--tailnet-programs"), command.parent.parent) as running:
        yield running


@pytest.fixture(scope="session")
def desktop(pytestconfig):
    kind = WaylandDesktop if pytestconfig.getoption("--screen") == "wayland" else X11Desktop
    folder = tempfile.mkdtemp(prefix="brevane-e2e-")
    with kind(folder) as running:
        yield running
    shutil.rmtree(folder, ignore_errors=True)


@pytest.fixture
def application(pytestconfig, desktop, tailnet):
    """The program, not yet started, of a user who has never shared anything."""
    tailnet.tailscale("serve", "reset")
    application = Application(pytestconfig.getoption("--program"), desktop)
    shutil.rmtree(application.preferences.parent, ignore_errors=True)
    yield application
    application.end()
    desktop.assert_whole()


@pytest.fixture
def window(application):
    return application.start()


@pytest.fixture
def differs(record_property):
    """Records for docs/compatibility.md how this version of Tailscale behaves differently."""
    return lambda what: record_property("differs", what)


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item):
    """If a test fails, stores a screenshot in its temporary folder."""
    outcome = yield
    report = outcome.get_result()
    if report.when == "call" and report.failed and {"desktop", "tmp_path"} <= item.funcargs.keys():
        picture = item.funcargs["tmp_path"] / "failure.png"
        item.funcargs["desktop"].screenshot(picture)
        report.sections.append(("screen", str(picture)))
