# SPDX-License-Identifier: MIT
"""The measured servers: ours, its peers, and the limit."""

import contextlib
import itertools
import os
import shutil
import signal
import socket
import subprocess
import sys
import time

from . import machine

ALL = ["nginx-small", "nginx-large", "lighttpd", "caddy", "miniserve", "limit"]
# Not for actual use, so it only counts in comparisons that have its name.
LIMIT = "limit"

NGINX = """
worker_processes {workers}; daemon off; pid {run}/{name}.pid; error_log {run}/{name}.log crit; {user}
events {{ worker_connections 16384; {events} }}
http {{
  access_log off; log_not_found off; keepalive_timeout 0; server_tokens off; {http}
  types {{ text/plain txt; }} default_type application/octet-stream;
  client_body_temp_path {run}/body; proxy_temp_path {run}/proxy; fastcgi_temp_path {run}/fastcgi;
  uwsgi_temp_path {run}/uwsgi; scgi_temp_path {run}/scgi;
  server {{ listen [::]:{port} ipv6only=off backlog=4096 {listen}; root {folder}; autoindex on; }}
}}
"""

# As experts tune it: a connection is accepted only with its request, open files and look-ups are cached,
# and a small file is read into one buffer and sent with its head by one call ...
NGINX_SMALL = {
    "events": "multi_accept on;",
    "http": "sendfile off; output_buffers 1 128k; open_file_cache max=10000 inactive=60s; open_file_cache_valid 60s; "
            "open_file_cache_min_uses 1; open_file_cache_errors on;",
    "listen": "deferred",
}
# ... while a large file goes from the page cache to the socket, in chunks, so that no download occupies
# a worker.
NGINX_LARGE = {
    "events": "",
    "http": "sendfile on; sendfile_max_chunk 1m; tcp_nopush on; open_file_cache max=10000 inactive=60s; "
            "open_file_cache_valid 60s; open_file_cache_min_uses 1; open_file_cache_errors on;",
    "listen": "deferred",
}

LIGHTTPD = """
server.document-root = "{folder}"
server.port = {port}
server.bind = "127.0.0.1"
server.max-keep-alive-requests = 0
server.max-fds = 20000
server.max-worker = {children}
server.defer-accept = 1
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


def product(name):
    """The program of a peer: nginx is there twice, tuned for small and for large files."""
    return name.partition("-")[0]


def fetch(names, build):
    """Downloads and unpacks Debian's packages of these peers, as far as they are available."""
    fetched = build / "peers/fetch"
    fetched.mkdir(parents=True, exist_ok=True)
    for package in map(product, names):
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
    """The path of a peer's program, unpacked or installed; None if it is neither."""
    for place in ("usr/sbin", "usr/bin", "bin"):
        path = build / "peers" / name / place / name
        if path.exists():
            return str(path)
    return shutil.which(name)


def command(name, port, folder, build, workers):
    """The command that starts the server, with `workers` workers if it has any; None if there is no program."""
    run = build / "peers/run"
    run.mkdir(parents=True, exist_ok=True)
    if name == "brevane":
        return [str(build / "tools/serve-folder/serve-folder"), str(folder), str(port)]
    if name == LIMIT:
        return [str(build / "bench/http-limit"), str(folder), str(port)]
    path = program(product(name), build)
    if path is None:
        return None
    text, options = {
        "nginx-small": (NGINX, NGINX_SMALL), "nginx-large": (NGINX, NGINX_LARGE),
        "lighttpd": (LIGHTTPD, {}), "caddy": (CADDY, {}), "miniserve": ("", {}),
    }[name]
    if "listen" in options and workers > 1:
        options = {**options, "listen": options["listen"] + " reuseport"}
    configuration = run / f"{name}.conf"
    configuration.write_text(text.format(
        name=name, run=run, port=port, folder=folder, workers=workers, children=workers if workers > 1 else 0,
        user="user root;" if os.geteuid() == 0 else "", **options))
    return {
        "nginx": [path, "-c", str(configuration), "-e", str(run / f"{name}.log")],
        "lighttpd": [path, "-D", "-f", str(configuration), "-m", str(build / "peers/lighttpd/usr/lib/lighttpd")],
        "caddy": [path, "run", "--config", str(configuration), "--adapter", "caddyfile"],
        "miniserve": [path, "-p", str(port), "-q", str(folder)],
    }[product(name)]


class Server:
    """A running server on its processors."""

    _ports = itertools.count(8101)

    def __init__(self, name, folder, build, processors):
        self.name, self.port, self.processors, self.process = name, next(self._ports), processors, None
        self.log = build / f"peers/run/{name}.out"
        arguments = command(name, self.port, folder, build, len(processors))
        if arguments is None:
            self.log.write_text("there is no such program")
            return
        home = {**os.environ, "XDG_DATA_HOME": str(build / "peers/run"), "XDG_CONFIG_HOME": str(build / "peers/run")}
        with open(self.log, "w") as output:
            self.process = subprocess.Popen(
                # Its servers end with the benchmark, however that ends.
                ["setpriv", "--pdeathsig", "TERM", *machine.pinned(processors, arguments)],
                stdin=subprocess.PIPE, stdout=output, stderr=output,
                env=home, start_new_session=True)  # Two-process lighttpd ends its whole process group.
        self.pid = self.process.pid

    def wait(self):
        """Waits until the server accepts connections; False if it ends or takes too long."""
        for _ in range(200):
            if self.process is None or self.process.poll() is not None:
                return False
            try:
                socket.create_connection(("127.0.0.1", self.port), 1).close()
                return True
            except OSError:
                time.sleep(0.05)
        return False

    def stop(self):
        if self.process is None:
            return
        self.process.send_signal(signal.SIGTERM)
        self.process.stdin.close()
        try:
            self.process.wait(5)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()


@contextlib.contextmanager
def running(names, build, folder, processors):
    """The running servers by name, each on these processors; those that do not start are left out."""
    servers = {}
    try:
        for name in names:
            server = servers[name] = Server(name, folder, build, processors)
            if not server.wait():
                print(f"http: {name} is left out: {server.log.read_text()[-300:]}", file=sys.stderr)
                servers.pop(name).stop()
        yield servers
    finally:
        for server in servers.values():
            server.stop()
