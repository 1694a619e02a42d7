# SPDX-License-Identifier: MIT
"""What a screen reader announces without being asked."""

import pytest

from conftest import STATUS
SERVE = {"Web": {"host.example.ts.net:443": {"Handlers": {"/": {"Proxy": "http://127.0.0.1:3000"}}}}}


@pytest.fixture
def window(user):
    user.answer(STATUS, SERVE)
    return user.window(user.start())


def test_a_toast_is_announced(window):
    window.await_row("https://host.example.ts.net").find("Copy URL").press()
    window.await_announcement("URL copied!")


def test_an_error_of_the_form_is_announced(window, user):
    window.fill("Port / App URL", "3000")
    window.await_idle()
    user.tailscale("echo no such port; exit 1")
    window.start()
    window.await_announcement("no such port")


def test_an_error_of_the_list_is_announced(window, user):
    row = window.await_row("https://host.example.ts.net")
    window.await_idle()
    user.tailscale("echo cannot be stopped; exit 1")
    window.stop(row)
    window.await_announcement("cannot be stopped")
