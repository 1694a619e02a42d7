# SPDX-License-Identifier: MIT
"""The servers that are measured: ours, its peers, and the limit."""

import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import time

from . import machine

ALL = ["nginx", "lighttpd", "caddy", "miniserve", "python", "limit"]

NGINX = """
worker_processes 1; daemon off; pid {run}/nginx.pid; error_log {run}/nginx.log crit; {user}
events {{ worker_connections 16384; }}
http {{
  access_log off; keepalive_timeout 0; sendfile on; tcp_nopush on; server_tokens off;
  types {{ text/plain txt; }} default_type application/octet-stream;
  client_body_temp_path {run}/body; proxy_temp_path {run}/proxy; fastcgi_temp_path {run}/fastcgi;
  uwsgi_temp_path {run}/uwsgi; scgi_temp_path {run}/scgi;
  server {{ listen [::]:{port} ipv6only=off backlog=4096; root {folder}; autoindex on; }}
}}
"""

LIGHTTPD = """
server.document-root = "{folder}"
server.port = {port}
server.bind = "127.0.0.1"
server.max-keep-alive-requests = 0
server.max-fds = 20000
server.listen-backlog = 4096
server.modules = ( "mod_dirlisting" )
dir-listing.activate = "enable"
mimetype.assign = ( ".txt" => "text/plain", "" => "application/octet-stream" )
"""

CADDY = """
{{
  admin off
  auto_https off
}}
http://:{port} {{
  root * {folder}
  file_server browse
}}
"""


def fetch(names, build):
    """Unpacks Debian's packages of these peers, as far as they can be had; takes a network."""
    fetched = build / "peers/fetch"
    fetched.mkdir(parents=True, exist_ok=True)
    for package in names:
        folder = build / "peers" / package
        if package not in ("nginx", "lighttpd", "caddy") or folder.exists():
            continue
        try:
            subprocess.run(["apt-get", "download", package], cwd=fetched, check=True, capture_output=True)
            archive = next(fetched.glob(f"{package}_*.deb"))
            subprocess.run(["dpkg-deb", "--extract", archive, folder], check=True, capture_output=True)
        except (OSError, subprocess.CalledProcessError, StopIteration):
            print(f"http: Debian's package {package} cannot be had", file=sys.stderr)


def program(name, build):
    """The path of a peer's program: unpacked, or on the machine; None where it is neither."""
    for place in ("usr/sbin", "usr/bin", "bin"):
        path = build / "peers" / name / place / name
        if path.exists():
            return str(path)
    return shutil.which(name)


def command(name, port, folder, build):
    """What starts the server; None where its program cannot be had."""
    run = build / "peers/run"
    run.mkdir(parents=True, exist_ok=True)
    if name == "brevane":
        return [str(build / "tools/serve-folder/serve-folder"), str(folder), str(port)]
    if name == "limit":
        return [str(build / "bench/http-limit"), str(folder), str(port)]
    if name == "python":
        return [sys.executable, "-m", "http.server", str(port), "--bind", "127.0.0.1", "-d", str(folder)]
    path = program(name, build)
    if path is None:
        return None
    user = "user root;" if os.geteuid() == 0 else ""
    configuration = run / f"{name}.conf"
    text = {"nginx": NGINX, "lighttpd": LIGHTTPD, "caddy": CADDY}.get(name, "")
    configuration.write_text(text.format(run=run, port=port, folder=folder, user=user))
    return {
        "nginx": [path, "-c", str(configuration), "-e", str(run / "nginx.log")],
        "lighttpd": [path, "-D", "-f", str(configuration), "-m", str(build / "peers/lighttpd/usr/lib/lighttpd")],
        "caddy": [path, "run", "--config", str(configuration), "--adapter", "caddyfile"],
        "miniserve": [path, "-p", str(port), "-q", str(folder)],
    }[name]


class Server:
    """A running server, on the processor that servers have."""

    def __init__(self, name, port, arguments, build):
        self.name, self.port = name, port
        home = {**os.environ, "XDG_DATA_HOME": str(build / "peers/run"), "XDG_CONFIG_HOME": str(build / "peers/run")}
        with open(build / f"peers/run/{name}.out", "w") as output:
            self.process = subprocess.Popen(
                ["taskset", "--cpu-list", str(machine.processors()[0]), *arguments],
                stdin=subprocess.PIPE, stdout=output, stderr=output, env=home)
        self.pid = self.process.pid

    def wait(self):
        """Whether the server has come to answer."""
        for _ in range(200):
            if self.process.poll() is not None:
                return False
            try:
                socket.create_connection(("127.0.0.1", self.port), 1).close()
                return True
            except OSError:
                time.sleep(0.05)
        return False

    def stop(self):
        self.process.send_signal(signal.SIGTERM)
        self.process.stdin.close()
        try:
            self.process.wait(5)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()


def start(names, build, folder):
    """The running servers by name; what cannot be had is left out."""
    servers = {}
    for port, name in enumerate(names, start=8101):
        arguments = command(name, port, folder, build)
        server = Server(name, port, arguments, build) if arguments else None
        if server and server.wait():
            servers[name] = server
        else:
            log = pathlib.Path(build, f"peers/run/{name}.out")
            print(f"http: {name} is left out: {log.read_text()[-300:] if server else 'there is no such program'}", file=sys.stderr)
    return servers
