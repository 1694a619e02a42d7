# SPDX-License-Identifier: MIT
"""What users have running on their machine: the targets of shares."""

import http.server
import socket
import socketserver
import ssl
import subprocess
import threading
from contextlib import contextmanager


@contextmanager
def running(server):
    server.daemon_threads = True
    thread = threading.Thread(target=server.serve_forever, daemon=True)
    thread.start()
    try:
        yield server.server_address[1]
    finally:
        server.shutdown()
        server.server_close()
        thread.join()


class Echo(http.server.BaseHTTPRequestHandler):
    """Replies with a greeting and the path of the request."""

    def do_GET(self):
        body = f"{self.server.greeting} {self.path}".encode()
        self.send_response(200)
        self.send_header("Content-Type", "text/plain")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


def web(greeting, port=0):
    """A web server that replies with the greeting and the path. Yields its port."""
    server = http.server.ThreadingHTTPServer(("127.0.0.1", port), Echo)
    server.greeting = greeting
    return running(server)


def secure_web(greeting, folder):
    """The same over HTTPS, with a certificate that nobody trusts."""
    pair = folder / "untrusted.pem"
    command = ["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes"]
    command += ["-subj", "/CN=localhost", "-days", "2", "-keyout", pair, "-out", folder / "certificate.pem"]
    subprocess.run(command, check=True, capture_output=True)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(folder / "certificate.pem", pair)
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Echo)
    server.greeting = greeting
    server.socket = context.wrap_socket(server.socket, server_side=True)
    return running(server)


class Reversing(socketserver.StreamRequestHandler):
    """Sends a line back, reversed, and closes."""

    def handle(self):
        self.wfile.write(self.rfile.readline().rstrip(b"\n")[::-1] + b"\n")


class LineServer(socketserver.ThreadingTCPServer):
    allow_reuse_address = True  # Funnel has few ports, so they are reused at once.


def tcp():
    """A TCP server that sends one line back in reverse and closes. Yields its port.

    Tailscale allows the port for Funnel, and binding it needs no privilege.
    """
    for port in (10000, 8443):
        try:
            return running(LineServer(("127.0.0.1", port), Reversing))
        except OSError as failure:
            taken = failure
    raise taken


def listens(port):
    """Whether a local port accepts connections."""
    with socket.socket() as visitor:
        return visitor.connect_ex(("127.0.0.1", port)) == 0
