# SPDX-License-Identifier: MIT
"""The desktop, the tailnet and the program that the tests share."""

import shutil
from pathlib import Path

import pytest

from driver import screen
from driver.application import Application
from driver.screen import desktop  # noqa: F401
from driver.tailnet import Tailnet


def pytest_addoption(parser):
    parser.addoption("--program", required=True, help="the program under test")
    parser.addoption("--tailscale", required=True, help="DIR/host/tailscale, the command that it was built for")
    parser.addoption("--hung-disk", help="a program that mounts a file system that hangs; needs root")
    screen.add_option(parser)
    parser.addoption("--tailnet-programs", required=True, help="folder of tailnet, tailscale and tailscaled")


@pytest.fixture(scope="session")
def tailnet(pytestconfig):
    command = Path(pytestconfig.getoption("--tailscale"))
    with Tailnet(pytestconfig.getoption("--tailnet-programs"), command.parent.parent) as running:
        yield running


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
