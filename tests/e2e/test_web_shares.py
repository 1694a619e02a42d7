# SPDX-License-Identifier: MIT
"""Ports, URLs and texts: shared in the form, shown in the list, fetched from another device."""

import pytest

from driver import backends
from driver.tailnet import Unreachable

MODES = ("Serve", "Funnel")


def assert_reached(tailnet, mode, path, body):
    """A share can be reached from the tailnet, and from the internet only if it is a funnel."""
    assert tailnet.fetch(path)["body"] == body
    if mode == "Funnel":
        assert tailnet.fetch(path, funnel=True)["body"] == body
    else:
        with pytest.raises(Unreachable):
            tailnet.fetch(path, funnel=True)


@pytest.mark.parametrize("mode", MODES)
def test_a_port_is_reached_from_another_device(window, tailnet, application, mode):
    with backends.web("hello from") as port:
        window.share("Port / App URL", str(port), mode=mode)
        window.await_row(mode, tailnet.url(""), f"http://127.0.0.1:{port}")
        assert_reached(tailnet, mode, "/a/b", "hello from /a/b")
    assert application.managed() is None


@pytest.mark.parametrize("mode", MODES)
def test_an_application_url_is_reached_under_its_own_path(window, tailnet, mode):
    with backends.web("hello from") as port:
        window.share("Port / App URL", f"http://127.0.0.1:{port}/api", mode=mode, path="/app")
        window.await_row(mode, tailnet.url("/app"), f"http://127.0.0.1:{port}/api")
        assert_reached(tailnet, mode, "/app/x", "hello from /api/x")


@pytest.mark.parametrize("mode", MODES)
def test_a_server_that_nobody_trusts_is_reached_over_trusted_https(window, tailnet, tmp_path, mode):
    with backends.secure_web("secure", tmp_path) as port:
        window.share("HTTPS (self-signed)", str(port), mode=mode)
        # Before 1.70 Tailscale writes 127.0.0.1 for localhost.
        window.await_row(mode, tailnet.url(""), "https+insecure://", f":{port}")
        assert_reached(tailnet, mode, "/s", "secure /s")


@pytest.mark.parametrize("mode", MODES)
def test_a_text_is_answered_as_it_was_typed(window, tailnet, mode):
    window.share("Plain Text", "all well (so far) & it's fine", mode=mode, path="/health")
    window.await_row(mode, tailnet.url("/health"))
    assert_reached(tailnet, mode, "/health", "all well (so far) & it's fine")


def test_a_backend_that_has_gone_is_a_bad_gateway_to_visitors(window, tailnet):
    with backends.web("soon gone") as port:
        window.share("Port / App URL", str(port))
    assert tailnet.fetch("/")["status"] == 502


def test_the_copy_button_puts_the_url_on_the_clipboard(window, desktop, tailnet):
    window.share("Plain Text", "OK", path="/copied")
    window.await_row("/copied").find("Copy URL").press()
    window.await_announcement("URL copied!")
    assert desktop.clipboard() == tailnet.url("/copied")


def test_the_source_is_cleared_after_a_success_and_nothing_else(window):
    window.share("Plain Text", "OK", path="/kept")
    assert window.field("Text Content").text == ""
    assert window.field("URL Path (optional)").text == "/kept"
    assert not window.start_button().enabled


def test_the_preview_shows_the_command_before_it_runs(window):
    window.fill("Plain Text", "all well", path="/health")
    assert window.preview() == "tailscale serve --bg --set-path /health --yes text:all well"
