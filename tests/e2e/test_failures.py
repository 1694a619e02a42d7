# SPDX-License-Identifier: MIT
"""What goes wrong on users' machines, and what the window shows then."""

import os

import pytest

from driver import backends


def test_without_the_command_nothing_is_connected_and_nothing_lost(window, application, tailnet, tmp_path):
    window.share("Directory", str(tmp_path))
    record = application.managed()
    with tailnet.command_replaced(None):
        window.refresh()
        window.await_label("Not connected")
        window.fill("Plain Text", "OK")
        window.start()
        assert "no such file or directory" in window.await_form_error()
        assert "no such file or directory" in window.await_error()
    assert application.managed() == record
    window.refresh()
    window.await_row(str(tmp_path))
    assert window.row(str(tmp_path)) and tailnet.fetch("/")["status"] == 200


def test_without_the_daemon_its_message_is_shown(window, tailnet, application, tmp_path):
    window.share("Directory", str(tmp_path))
    record = application.managed()
    with tailnet.command_replaced(tailnet.command_line(socket="/nonexistent")):
        window.refresh()
        window.await_label("Not connected")
        window.fill("Plain Text", "OK")
        window.start()
        assert "ailed to connect to local" in window.await_form_error()
        assert "ailed to connect to local" in window.await_error()
    assert application.managed() == record
    window.refresh()
    window.await_row(str(tmp_path))


@pytest.mark.skipif(os.geteuid() != 0, reason="only root can run the command as a user who is not the operator")
def test_without_operator_rights_the_list_shows_and_a_change_is_denied(window, tailnet):
    window.share("Plain Text", "OK", path="/before")
    # dac_read_search lets the user traverse the folders above the checkout, such as root's home.
    somebody = "setpriv --reuid=65534 --clear-groups --inh-caps=+dac_read_search --ambient-caps=+dac_read_search"
    with tailnet.command_replaced(tailnet.command_line(prefix=somebody)):
        window.refresh()
        assert window.row("/before")
        window.fill("Plain Text", "denied", path="/after")
        window.start()
        assert "Access denied" in window.await_form_error()
        window.clear_error()
        window.stop(window.await_row("/before"))
        assert "Access denied" in window.await_error()
    assert tailnet.fetch("/before")["body"] == "OK"


def test_what_the_command_refuses_is_shown_as_it_said_it(window, application, tailnet):
    window.fill("Port / App URL", "99999")
    window.start()
    refusal = tailnet.said("serve", "--bg", "--yes", "99999")
    assert window.await_form_error() == refusal
    assert window.await_error() == refusal
    assert application.managed() is None
    window.clear_error()


def test_a_file_share_that_fails_leaves_no_server(window, application, tailnet, tmp_path):
    with tailnet.command_replaced("echo no luck; exit 3"):
        window.fill("Directory", str(tmp_path))
        window.start()
        assert window.await_error() == "no luck"
    assert application.managed() == {}


def test_a_failure_without_words_has_the_exit_status(window, tailnet):
    with tailnet.command_replaced("exit 3"):
        window.fill("Plain Text", "OK")
        window.start()
        assert window.await_error() == "Command failed (exit 3)"


def test_a_stream_that_is_not_utf8_counts_as_empty_and_the_other_is_shown(window, tailnet):
    with tailnet.command_replaced(r"printf 'd\351fense\n'; echo 'what is readable' >&2; exit 1"):
        window.fill("Plain Text", "OK")
        window.start()
        assert window.await_error() == "what is readable"


def test_output_of_100_megabytes_does_not_stall_the_window(window, tailnet, application):
    tailnet.tailscale("serve", "--bg", "--yes", "text:OK")
    window.refresh()
    with tailnet.command_replaced("yes word | head -c 100000000"):
        window.refresh()
        window.await_label("Not connected")
    window.refresh()
    window.await_row(tailnet.url(""))


def test_a_node_that_is_stopped_is_not_connected(window, tailnet):
    with tailnet.stopped():
        window.refresh()
        window.await_label("Not connected")
    window.refresh()
    window.await_label(f"{tailnet.name} · {tailnet.record['nodes']['host']['ip']}")


def test_a_dead_backend_is_no_failure_of_the_window(window, tailnet):
    with backends.web("gone") as port:
        pass
    window.share("Port / App URL", str(port))
    window.await_row(f"127.0.0.1:{port}")
    assert window.error() is None
