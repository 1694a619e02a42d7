"""Usage: soak-raw.py PORT SOAK

Sends the raw requests of gunicorn's tests, below SOAK, to the file server on PORT and to nginx. Fails if
a status of the server is not the one that its rules require; lists the requests for which the two differ.
"""

import pathlib
import socket
import subprocess
import sys
import time
import urllib.parse

NGINX = """
daemon off; master_process off; pid {soak}/nginx.pid; error_log {soak}/nginx.log crit;
events {{ worker_connections 64; }}
http {{
  access_log off; client_body_temp_path {soak}/body; proxy_temp_path {soak}/proxy;
  fastcgi_temp_path {soak}/fastcgi; uwsgi_temp_path {soak}/uwsgi; scgi_temp_path {soak}/scgi;
  server {{ listen 127.0.0.1:{port}; root {soak}/www; }}
}}
"""


def bytes_of(path):
    data = path.read_bytes().replace(b"\n", b"").replace(b"\\r\\n", b"\r\n")
    return data.replace(b"\\0", b"\0").replace(b"\\n", b"\n").replace(b"\\t", b"\t")


def answer(port, data):
    """The status of the first response; "closed" if there is none."""
    with socket.create_connection(("127.0.0.1", port), 10) as connection:
        connection.settimeout(10)
        received = b""
        try:
            connection.sendall(data)
            connection.shutdown(socket.SHUT_WR)
            while piece := connection.recv(65536):
                received += piece
        except ConnectionError:
            pass
    return received.split(b" ")[1].decode() if received.startswith(b"HTTP/") else "closed"


def rule(data):
    """The status that the server's rules require for a request. Of the requested paths, only "/" exists."""
    if b"\r\n\r\n" not in data:
        return "closed"
    words = data.split(b"\r\n")[0].split(b" ")
    if len(words) < 2:
        return "400"
    if words[0] not in (b"GET", b"HEAD"):
        return "405"
    path = urllib.parse.unquote_to_bytes(words[1].split(b"?")[0])
    return "301" if path == b"" else "200" if path.strip(b"/") == b"" else "404"


def main(port, soak):
    with socket.socket() as free:
        free.bind(("127.0.0.1", 0))
        nginx_port = free.getsockname()[1]
    configuration = soak / "nginx.conf"
    configuration.write_text(NGINX.format(soak=soak, port=nginx_port))
    nginx = subprocess.Popen([soak / "nginx/usr/sbin/nginx", "-c", configuration, "-e", soak / "nginx.log"])
    wrong = count = 0
    try:
        while not nginx.poll():
            try:
                answer(nginx_port, b"GET / HTTP/1.0\r\n\r\n")
                break
            except OSError:
                time.sleep(0.1)
        for path in sorted((soak / "gunicorn/tests/requests").glob("*/*.http")):
            data = bytes_of(path)
            ours, theirs = answer(port, data), answer(nginx_port, data)
            count += 1
            if ours != rule(data):
                wrong += 1
                print(f"WRONG {path.parent.name}/{path.name}: {ours}, not {rule(data)}: {data[:80]!r}")
            elif ours != theirs:
                print(f"{path.parent.name}/{path.name}: {ours}, nginx {theirs}: {data[:60]!r}")
    finally:
        nginx.terminate()
        nginx.wait()
    print(f"{count} requests, {wrong} answered against the rules")
    return 1 if wrong or not count else 0


sys.exit(main(int(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve()))
