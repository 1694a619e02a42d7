# SPDX-License-Identifier: MIT
"""Stopping and resetting."""

import pytest

from driver import backends
from driver.tailnet import Unreachable


def test_stopping_a_row_stops_its_port_and_its_server(window, tailnet, application, tmp_path):
    (tmp_path / "a.txt").write_text("a")
    window.share("Directory", str(tmp_path), path="/files")
    port = int(next(iter(application.managed())))
    window.stop(window.await_row("/files"))
    window.await_announcement("Share stopped")
    window.await_empty()
    assert tailnet.serve_status() == {}
    assert application.managed() == {}
    assert not backends.listens(port)
    with pytest.raises(Unreachable):
        tailnet.fetch("/files/a.txt")


def test_stopping_a_row_stops_every_path_of_its_port(window, tailnet, differs):
    window.share("Plain Text", "one", path="/one")
    window.share("Plain Text", "two", path="/two")
    window.stop(window.await_row("/one"))
    window.await_announcement("Share stopped")
    if tailnet.version >= (1, 90):
        window.await_empty()
        assert tailnet.serve_status() == {}
    else:
        window.refresh()
        assert window.row("/one") and window.row("/two")
        assert tailnet.fetch("/one")["body"] == "one"
        differs("a port with two or more paths is not stopped, whatever the window says")


def test_a_stop_that_is_cancelled_leaves_the_share_running(window, tailnet):
    window.share("Plain Text", "OK", path="/health")
    window.stop(window.await_row("/health"), answer="Cancel")
    window.refresh()
    assert window.row("/health")
    assert tailnet.fetch("/health")["body"] == "OK"


def test_a_funnel_can_be_stopped_from_its_row(window, tailnet):
    window.share("Plain Text", "OK", mode="Funnel")
    window.stop(window.await_row("Funnel"))
    window.await_announcement("Share stopped")
    window.await_empty()
    assert tailnet.serve_status() == {}


@pytest.mark.parametrize(
    ("item", "message"),
    [
        ("Reset All Serves", "Serves stopped"),
        ("Reset All Funnels", "Funnels stopped"),
        ("Reset Everything", "All shares stopped"),
    ],
)
def test_a_reset_ends_every_share_and_every_server(window, tailnet, application, tmp_path, item, message):
    window.share("Directory", str(tmp_path))
    port = int(next(iter(application.managed())))
    window.await_row(str(tmp_path))
    window.reset(item)
    window.await_announcement(message)
    window.await_empty()
    assert tailnet.serve_status() == {}
    assert application.managed() == {}
    assert not backends.listens(port)


def test_a_reset_that_is_cancelled_stops_nothing(window, tailnet):
    window.share("Plain Text", "OK")
    window.reset("Reset Everything", answer="Cancel")
    window.refresh()
    assert window.row(tailnet.url(""))
    assert tailnet.fetch("/")["body"] == "OK"


def test_a_share_made_elsewhere_shows_after_a_refresh(window, tailnet):
    window.await_empty()
    tailnet.tailscale("serve", "--bg", "--yes", "--https=8443", "text:elsewhere")
    window.refresh()
    window.await_row(tailnet.url("", 8443))
