# SPDX-License-Identifier: MIT
"""Raw TCP ports.

A node in userspace networking hands every connection to a port that it does not serve on to
127.0.0.1, so within the tailnet bytes alone prove no share: what the daemon serves is looked at too.
"""

import pytest

from driver import backends
from driver.tailnet import Unreachable


def forwards(tailnet):
    return {int(port): handler["TCPForward"] for port, handler in tailnet.serve_status().get("TCP", {}).items()}


@pytest.mark.parametrize("mode", ("Serve", "Funnel"))
def test_bytes_go_to_the_port_and_come_back(window, tailnet, mode):
    with backends.tcp() as port:
        window.share("TCP Forward", str(port), mode=mode)
        window.await_row(f"{tailnet.name}:{port}", f"localhost:{port}")
        assert forwards(tailnet) == {port: f"localhost:{port}"}
        assert tailnet.dial(port, b"forward\n") == b"drawrof\n"
        if mode == "Funnel":
            assert tailnet.dial(port, b"public\n", funnel=True) == b"cilbup\n"
        else:
            with pytest.raises(Unreachable):
                tailnet.dial(port, b"public\n", funnel=True)


def test_a_tcp_share_cannot_be_stopped_and_the_banner_says_so(window, tailnet):
    with backends.tcp() as port:
        window.share("TCP Forward", str(port))
        window.stop(window.await_row(f"localhost:{port}"))
        assert "currently serving TCP" in window.await_error()
        window.await_idle()
        # The refresh that follows must not take the message away.
        assert "currently serving TCP" in window.error()
        assert window.row(f"localhost:{port}")
        assert tailnet.dial(port, b"still\n") == b"llits\n"
        window.clear_error()


def test_a_reset_ends_a_tcp_share(window, tailnet):
    with backends.tcp() as port:
        window.share("TCP Forward", str(port), mode="Funnel")
        window.await_row(f"localhost:{port}")
        window.reset("Reset All Funnels")
        window.await_toast("Funnels stopped")
        window.await_empty()
        assert tailnet.serve_status() == {}
        with pytest.raises(Unreachable):
            tailnet.dial(port, b"gone\n", funnel=True)
