# SPDX-License-Identifier: MIT
"""Raw TCP ports.

A node in userspace networking forwards connections to ports that it does not serve to 127.0.0.1, so
within the tailnet a reply alone proves no share: the daemon's configuration is checked too.
"""

import pytest

from driver import backends
from driver.tailnet import Unreachable


def forwards(tailnet):
    """The targets of the daemon's TCP ports."""
    ports = tailnet.serve_status().get("TCP", {})
    # Before 1.70 Tailscale writes 127.0.0.1 for localhost.
    return {int(port): handler["TCPForward"].replace("127.0.0.1", "localhost") for port, handler in ports.items()}


def await_row(window, port):
    return window.await_row("TCP forward", f":{port}")


@pytest.mark.parametrize("mode", ("Serve", "Funnel"))
def test_bytes_go_to_the_port_and_come_back(window, tailnet, mode):
    with backends.tcp() as port:
        window.share("TCP Forward", str(port), mode=mode)
        window.await_row(f"{tailnet.name}:{port}", "TCP forward")
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
        window.stop(await_row(window, port))
        refusal = tailnet.said("serve", f"--https={port}", "off")
        assert window.await_error() == refusal
        window.await_idle()
        # The refresh that follows must not clear the message.
        assert window.error() == refusal
        await_row(window, port)
        assert tailnet.dial(port, b"still\n") == b"llits\n"
        window.clear_error()


def test_a_reset_ends_a_tcp_share(window, tailnet):
    with backends.tcp() as port:
        window.share("TCP Forward", str(port), mode="Funnel")
        await_row(window, port)
        window.reset("Reset All Funnels")
        window.await_announcement("Funnels stopped")
        window.await_empty()
        assert tailnet.serve_status() == {}
        with pytest.raises(Unreachable):
            tailnet.dial(port, b"gone\n", funnel=True)
