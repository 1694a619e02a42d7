"""Usage: soak-crowd.py PORT PID FOLDER CLIENT

Crowds of clients for the file server on PORT, with process PID, that serves FOLDER: 300 downloads during small
requests, heads of 8 MB from clients that do not read, and 200 clients that request 1 GB and disconnect. Fails if
other clients are affected. CLIENT is bench/http-client.
"""

import json
import pathlib
import socket
import subprocess
import sys
import time

MEBIBYTE = 1 << 20


def connected(port, request, receive_buffer=None):
    client = socket.socket()
    if receive_buffer:
        client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, receive_buffer)
    client.connect(("127.0.0.1", port))
    client.sendall(request)
    return client


def request(path, headers=b""):
    return b"GET /" + path.encode() + b" HTTP/1.1\r\nHost: 127.0.0.1\r\n" + headers + b"\r\n"


def seconds_for(port, path, size):
    begun = time.monotonic()
    received = 0
    with connected(port, request(path)) as client:
        while piece := client.recv(MEBIBYTE):
            received += len(piece)
    if received <= size:
        sys.exit(f"{path}: {received} bytes came, not {size} and a head")
    return time.monotonic() - begun


def resident(pid):
    status = pathlib.Path(f"/proc/{pid}/status").read_text()
    return int(status.split("VmRSS:")[1].split()[0]) * 1024


def asked(client, port, *options):
    result = json.loads(subprocess.run([client, *options, str(port), "/small.txt"], capture_output=True, check=True).stdout)
    if result["errors"] or not result["done"]:
        sys.exit(f"small requests: {result}")
    return result["p99"] / 1e3


def beside_downloads(port, client):
    """Whether the 99th percentile of small requests stays below 500 ms during 300 downloads of 10 MB."""
    downloads = subprocess.Popen([client, "-a", "-c", "300", "-d", "7", str(port), "/large.bin"], stdout=subprocess.PIPE)
    time.sleep(1)
    p99 = asked(client, port, "-c", "512", "-r", "300", "-d", "5")
    rate = json.loads(downloads.communicate()[0])
    print(f"300 downloads at {rate['bytes'] / rate['seconds'] / 1e6:.0f} MB/s: small requests within {p99:.1f} ms (99 %)")
    return p99 < 500


def long_heads(port, pid):
    """Whether the server holds less than 4 MiB for each of 30 heads of 8 MB whose clients do not read."""
    before = resident(pid)
    head = request("large.bin", b"X: " + b"x" * (8 * MEBIBYTE) + b"\r\n")
    clients = [connected(port, head, 4096) for _ in range(30)]
    for client in clients:
        client.recv(4)
    held = (resident(pid) - before) / MEBIBYTE / len(clients)
    for client in clients:
        client.close()
    print(f"30 heads of 8 MB: {held:.2f} MB held for each")
    return held < 4


def hung_up(port, folder):
    """Whether downloads stay fast after 200 clients have each requested another file of 1 GB and disconnected."""
    names = [f"gigabyte-{number}.bin" for number in range(200)]
    try:
        for name in names:
            with open(folder / name, "wb") as file:
                file.write(b"begin")
                file.truncate(1 << 30)
                file.seek(-3, 2)
                file.write(b"end")
        alone = min(seconds_for(port, "warm.bin", 8 * MEBIBYTE) for _ in range(5))
        for name in names:
            connected(port, request(name)).close()
        beside = [seconds_for(port, "warm.bin", 8 * MEBIBYTE) for _ in range(20)]
        print(f"200 clients that asked for 1 GB and hung up: 8 MB take {alone * 1e3:.1f} ms before, "
              f"{beside[0] * 1e3:.1f} then, {max(beside) * 1e3:.1f} at most")
        return max(beside) < 1
    finally:
        for name in names:
            (folder / name).unlink(missing_ok=True)


def main(port, pid, folder, client):
    (folder / "warm.bin").write_bytes(b"w" * (8 * MEBIBYTE))
    outcomes = [beside_downloads(port, client), long_heads(port, pid), hung_up(port, folder)]
    return 0 if all(outcomes) else 1


sys.exit(main(int(sys.argv[1]), int(sys.argv[2]), pathlib.Path(sys.argv[3]), sys.argv[4]))
