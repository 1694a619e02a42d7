# SPDX-License-Identifier: MIT
"""What outlives the window, and what ends with it."""

import json

import pytest

from driver import backends
from driver.tailnet import Unreachable
from driver.waiting import until


@pytest.fixture
def shared(window, application, tmp_path):
    """A folder and a file in it, both shared. Returns the folder."""
    folder = tmp_path / "kept"
    folder.mkdir()
    (folder / "a.txt").write_text("still here")
    window.share("Directory", str(folder), path="/folder")
    window.share("File", str(folder / "a.txt"), path="/file")
    window.await_row("/folder", str(folder))
    window.await_row("/file", str(folder / "a.txt"))
    return folder


def test_files_and_folders_are_served_on_their_old_ports_again(shared, application, tailnet):
    record = application.managed()
    assert {entry["type"] for entry in record.values()} == {"directory", "file"}
    assert application.quit() == 0
    assert application.managed() == record
    assert not any(backends.listens(int(port)) for port in record)
    assert tailnet.fetch("/folder/a.txt")["status"] == 502

    window = application.start()
    window.await_row("/folder", str(shared))
    window.await_row("/file", str(shared / "a.txt"))
    assert application.managed() == record
    assert all(backends.listens(int(port)) for port in record)
    assert tailnet.fetch("/folder/a.txt")["body"] == "still here"
    assert tailnet.fetch("/file/a.txt")["body"] == "still here"


def test_a_share_that_ended_meanwhile_is_forgotten(shared, application, tailnet):
    assert application.quit() == 0
    tailnet.tailscale("serve", "--https=443", "--set-path=/file", "off")
    window = application.start()
    window.await_row("/folder")
    assert [entry["type"] for entry in application.managed().values()] == ["directory"]


def test_a_port_that_is_taken_is_tried_again_at_the_next_refresh(shared, application, tailnet):
    record = application.managed()
    port = next(int(port) for port, entry in record.items() if entry["type"] == "directory")
    assert application.quit() == 0
    with backends.web("somebody else", port):
        window = application.start()
        window.await_row("/folder", str(shared))
        assert tailnet.fetch("/file/a.txt")["body"] == "still here"
        assert tailnet.fetch("/folder/a.txt")["body"] == "somebody else /a.txt"
        assert window.error() is None
        assert application.managed() == record
    window.refresh()
    until("the folder to be served", lambda: tailnet.fetch("/folder/a.txt").get("body") == "still here")


def test_a_record_of_another_shape_is_ignored(shared, application):
    assert application.quit() == 0
    application.preferences.write_text(json.dumps({"TailscaleManagedServers": [1, 2]}))
    window = application.start()
    window.await_row("/folder", "http://127.0.0.1:")
    assert window.error() is None


def test_preferences_that_are_no_json_are_kept_beside(shared, application, tmp_path):
    assert application.quit() == 0
    application.preferences.write_text("not JSON")
    window = application.start()
    window.share("Directory", str(tmp_path), path="/more")
    assert [entry["path"] for entry in application.managed().values()] == [str(tmp_path)]
    assert application.preferences.with_suffix(".json.broken").read_text() == "not JSON"


def test_a_killed_program_serves_again_when_it_is_back(shared, application, tailnet):
    record = application.managed()
    application.child.kill()
    application.child.wait()
    application.start().await_row("/folder", str(shared))
    assert application.managed() == record
    assert tailnet.fetch("/folder/a.txt")["body"] == "still here"


def test_a_second_start_leaves_it_to_the_first_one(window, application, desktop):
    second = type(application)(application.program, desktop)
    assert second.launch().wait(30) == 0
    assert application.alive()


def test_a_foreground_share_ends_with_the_window(window, application, tailnet):
    with backends.web("in the foreground") as port:
        window.fill("Port / App URL", str(port), background=False)
        window.start()
        until("the share", lambda: "Foreground" in tailnet.serve_status())
        assert tailnet.fetch("/x")["body"] == "in the foreground /x"
        assert not window.frame.await_one("Starting…", "push button").enabled
        assert application.quit() == 0
        until("the share to end", lambda: "Foreground" not in tailnet.serve_status())
        with pytest.raises(Unreachable):
            tailnet.fetch("/x")


def test_a_foreground_share_ends_with_a_window_that_is_killed(window, application, tailnet):
    with backends.web("in the foreground") as port:
        window.fill("Port / App URL", str(port), mode="Funnel", background=False)
        window.start("Funnel")
        until("the share", lambda: "Foreground" in tailnet.serve_status())
        assert tailnet.fetch("/x", funnel=True)["body"] == "in the foreground /x"
        assert tailnet.commands()
        application.child.kill()
        application.child.wait()
        until("the command to end", lambda: not tailnet.commands())
        until("the share to end", lambda: not tailnet.serve_status().get("Foreground"))
        with pytest.raises(Unreachable):
            tailnet.fetch("/x", funnel=True)


@pytest.fixture
def accounts(tailnet):
    """The host's own account, and another to which it is logged in as well."""
    own = tailnet.account()
    other = tailnet.log_in("other")
    tailnet.switch(own)
    yield own, other
    tailnet.switch(other)
    tailnet.tailscale("logout")
    tailnet.switch(own)
    tailnet.await_reached()


def test_switching_to_another_account_and_back_forgets_no_share(shared, application, tailnet, accounts):
    own, other = accounts
    window, record = application.window, application.managed()
    tailnet.switch(other)
    window.refresh()
    window.await_empty()
    assert application.managed() == record
    assert not any(backends.listens(int(port)) for port in record)
    tailnet.switch(own)
    tailnet.await_reached()
    window.refresh()
    window.await_row("/folder", str(shared))
    window.await_row("/file", str(shared / "a.txt"))
    assert application.managed() == record
    assert tailnet.fetch("/folder/a.txt")["body"] == "still here"
    assert tailnet.fetch("/file/a.txt")["body"] == "still here"
