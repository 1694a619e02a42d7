# SPDX-License-Identifier: MIT
"""What the stand-in for tailscale prints: as the daemon would, broken, or huge."""

import json

HOSTS = ("host.example.ts.net", "a", "ünï.example.ts.net", "x" * 200)
TEXTS = ("hello", "", "two\nlines", "Grüße 🎈", "שלום", "a" * 3000, "\u202eright to left", "\0\x1b[31m", "<b>&amp;</b>")
STATES = ("Running", "Stopped", "NeedsLogin", "", "Starting")


def handler(rng):
    kind = rng.randrange(4)
    if kind == 0:
        return {"Text": rng.choice(TEXTS)}
    if kind == 1:
        return {"Path": rng.choice(("/srv/site", "/", "", "/tmp/" + rng.choice(TEXTS)))}
    if kind == 2:
        return {"Proxy": rng.choice(("http://127.0.0.1:3000", "https+insecure://localhost:8443", "nonsense", rng.choice(TEXTS)))}
    return rng.choice(({}, None, {"Proxy": None}, {"Redirect": "https://example.com"}))


def serve(rng):
    """The configuration of shares, as a value."""
    size = rng.choices((0, 1, 5, 30, 300, 1000), (3, 3, 8, 4, 1, 0.3))[0]
    web, tcp, funnel = {}, {}, {}
    for number in range(size):
        host = f"{rng.choice(HOSTS)}:{rng.choice((443, 8443, 10000, number))}"
        web.setdefault(host, {"Handlers": {}})["Handlers"][f"/{rng.choice(TEXTS)[:50]}{number % 40}"] = handler(rng)
        funnel[host] = rng.random() < 0.3
        if rng.random() < 0.1:
            tcp[str(rng.randrange(70000))] = {"TCPForward": rng.choice(("localhost:22", "", "x"))}
    found = {"TCP": tcp, "Web": web, "AllowFunnel": funnel}
    if rng.random() < 0.2:
        found["Foreground"] = {str(rng.random()): {"Web": dict(list(web.items())[:2])}}
    return found


def status(rng):
    found = {
        "BackendState": rng.choices(STATES, (20, 1, 1, 1, 1))[0],
        "Self": {"DNSName": rng.choice(HOSTS) + ".", "TailscaleIPs": rng.choice((["100.64.0.1"], [], None)), "HostName": "host"},
    }
    if rng.random() < 0.1:
        found["Peer"] = {f"key{number}": {"HostName": "peer", "Tags": ["x" * 100] * 10} for number in range(rng.choice((10, 3000)))}
    return found


def text(rng, document):
    """A document as bytes, now and then one that nobody can read."""
    good = json.dumps(document, ensure_ascii=rng.random() < 0.5).encode()
    ways = (
        lambda: good,
        lambda: good[: rng.randrange(len(good))],
        lambda: b"",
        lambda: b"[" * 100_000,
        lambda: bytes(rng.randrange(256) for _ in range(300)),
        lambda: good.replace(b"{", b"[", 1),
        lambda: good.replace(b'"', b"\xff", 3),
        lambda: b"null",
    )
    return rng.choices(ways, (20, 1, 1, 0.5, 1, 1, 1, 1))[0]()
