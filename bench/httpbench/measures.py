# SPDX-License-Identifier: MIT
"""What is measured."""

import json
import os
import random
import resource
import socket
import statistics
import subprocess
import time

from . import machine, peers


class Bench:
    """The files that are served, and how a slice is run."""

    def __init__(self, build, rounds, seconds, foreign):
        self.build, self.rounds, self.seconds, self.foreign = build, rounds, seconds, foreign
        self.folder = build / "peers/www"
        resource.setrlimit(resource.RLIMIT_NOFILE, (resource.getrlimit(resource.RLIMIT_NOFILE)[1],) * 2)

    def make_files(self):
        """Makes the files once; random bytes, so that nothing is saved on holes or by compression."""
        self.folder.mkdir(parents=True, exist_ok=True)
        for name, size in (("1k.txt", 1 << 10), ("64k.bin", 64 << 10), ("10m.bin", 10 << 20), ("1g.bin", 1 << 30)):
            path = self.folder / name
            if not path.exists() or path.stat().st_size != size:
                block = random.randbytes(min(size, 1 << 20))
                with open(path, "wb") as file:
                    for _ in range(size // len(block)):
                        file.write(block)
        entries = self.folder / "list"
        entries.mkdir(exist_ok=True)
        for number in range(1000):
            if number % 10:
                (entries / f"some file number {number:04}.txt").touch()
            else:
                (entries / f"some folder number {number:04}").mkdir(exist_ok=True)

    def client(self, port, path, *options):
        """Starts the client on its processor."""
        return subprocess.Popen(
            ["taskset", "--cpu-list", str(machine.processors()[1]), str(self.build / "bench/http-client"),
             *map(str, options), str(port), path], stdout=subprocess.PIPE, text=True)

    def slice(self, server, path, *options, beside=()):
        """One run of the client with what the server used for it; again while others use the
        processors, up to six times, of which the quietest counts. `beside`: path and options of a
        second client, which is at work before the first begins and until after it has ended."""
        best = None
        for _ in range(6):
            second = self.client(server.port, *beside) if beside else None
            if second:
                time.sleep(0.4)
            result = self.observe(server, second, path, *options)
            if second:
                second.communicate()
            if best is None or result["foreign"] < best["foreign"]:
                best = result
            if result["foreign"] <= self.foreign:
                break
        return best

    def observe(self, server, second, path, *options):
        def used():
            return [machine.processor_time(process.pid) for process in (server, second) if process]

        before, busy, begun = used(), machine.busy_time(), time.monotonic()
        result = json.loads(self.client(server.port, path, *options).communicate()[0])
        elapsed = time.monotonic() - begun
        after = used()
        result["server"] = after[0] - before[0]
        others = machine.busy_time() - busy - (sum(after) - sum(before)) - result["cpu"]
        result["foreign"] = max(0.0, others) / (elapsed * os.cpu_count())
        return result


def comparison(name, unit, digits, values):
    """One line per peer: ours, the peer's, and the ratio of ours to the peer's. Beside nginx a
    measure has its plain name, beside others theirs is added."""
    for peer, value in values.items():
        if peer != "brevane" and value and "brevane" in values:
            plain = peer == "nginx" or peer not in peers.ALL
            yield {"name": name if plain else f"{name}.{peer}", "value": round(values["brevane"], digits), "unit": unit,
                   "peer": peer, "peer_value": round(value, digits), "ratio": round(values["brevane"] / value, 3)}


class Load:
    """Slices of one kind of request, the servers in turns; several per round where one interruption of
    the machine decides a slice."""

    beside = ()

    def __init__(self, name, unit, figure, path, options, without=(), status=200, slices=1):
        self.name, self.unit, self.figure, self.path = name, unit, figure, path
        self.options, self.without, self.status, self.slices = options, without, status, slices

    def run(self, bench, servers):
        chosen = {name: server for name, server in servers.items() if name not in self.without}
        samples = {name: [] for name in chosen}
        for turn in range(bench.rounds * self.slices + 1):
            order = list(chosen) if turn % 2 else list(reversed(chosen))
            for name in order:
                result = self.sample(bench, chosen[name])
                if turn > 0 and result["done"] > 0:  # The first turn warms up.
                    samples[name].append(self.figure(result))
        values = {name: statistics.median(figures) for name, figures in samples.items() if figures}
        yield from comparison(self.name, self.unit, 3, values)

    def sample(self, bench, server):
        options = [option if option != "SLICE" else bench.seconds for option in self.options]
        return bench.slice(server, self.path, "-s", self.status, *options, beside=self.beside)


class Mixed(Load):
    """Small requests beside two clients that download a large file over and over."""

    beside = ("/1g.bin", "-c", 2, "-d", 3)


class Idle:
    """Memory of connections whose requests never end."""

    name = "http.idle.memory"

    def run(self, bench, servers):
        values = {}
        for name, server in servers.items():
            if name == "limit":
                continue
            bench.client(server.port, "/1k.txt", "-c", 4, "-n", 500).communicate()
            before = machine.resident(server.pid)
            idle = idle_connections(server.port, 1000)
            time.sleep(0.5)
            values[name] = max(machine.resident(server.pid) - before, 0) / 1000
            for connection in idle:
                connection.close()
        yield from comparison(self.name, "kB", 3, values)


class BesideIdle:
    """Latency beside 5,000 idle connections, with ours without any as the peer."""

    name = "http.idle5000.p99"

    def run(self, bench, servers):
        server, samples = servers["brevane"], {"brevane": [], "brevane, none idle": []}
        for _ in range(bench.rounds):
            options = ("-c", 64, "-r", 1000, "-d", 1)
            samples["brevane, none idle"].append(bench.slice(server, "/1k.txt", *options)["p99"])
            alone = machine.descriptors(server.pid)
            idle = idle_connections(server.port, 5000)
            wait_until(lambda: machine.descriptors(server.pid) >= alone + len(idle))
            samples["brevane"].append(bench.slice(server, "/1k.txt", *options)["p99"])
            for connection in idle:
                connection.close()
            wait_until(lambda: machine.descriptors(server.pid) <= alone)
        yield from comparison(self.name, "µs", 1, {name: statistics.median(s) for name, s in samples.items()})


class ManyServers:
    """Processor time per request with 200 servers in the process, with one alone as the peer."""

    name = "http.servers200.cpu"

    def run(self, bench, servers):
        started = {}
        for count in (1, 200):
            process = subprocess.Popen(
                ["taskset", "--cpu-list", str(machine.processors()[0]), str(bench.build / "bench/http-many"),
                 str(bench.folder), str(count)], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
            ports = [int(process.stdout.readline()) for _ in range(count)]
            started[count] = process, ports
        samples = {1: [], 200: []}
        for turn in range(bench.rounds * 4):
            for count, (process, ports) in started.items():
                used = machine.processor_time(process.pid)
                port = ports[turn * 53 % count]
                result = json.loads(bench.client(port, "/1k.txt", "-c", 16, "-d", 0.2).communicate()[0])
                samples[count].append((machine.processor_time(process.pid) - used) / result["done"] * 1e6)
        for process, _ in started.values():
            process.communicate()
        values = {"brevane": statistics.median(samples[200]), "brevane, one server": statistics.median(samples[1])}
        yield from comparison(self.name, "µs", 2, values)


def wait_until(condition):
    """So that a slice does not pay for what the one before has left to do."""
    while not condition():
        time.sleep(0.02)
    time.sleep(0.1)


def idle_connections(port, count):
    connections = []
    for _ in range(count):
        connection = socket.create_connection(("127.0.0.1", port), 5)
        connection.send(b"GET /1k.txt HTTP/1.1\r\nHost: 127.0.0.1\r\n")
        connections.append(connection)
    return connections


def time_per_request(result):
    return result["server"] / result["done"] * 1e6


def requests_per_second(result):
    return result["done"] / result["seconds"]


def megabytes_per_second(result):
    return result["bytes"] / result["seconds"] / 1e6


def latency(result):
    return result["p99"]


SLOW = ("python",)
ALL = [
    Load("http.1k.cpu", "µs", time_per_request, "/1k.txt", ("-c", 16, "-d", "SLICE")),
    Load("http.64k.cpu", "µs", time_per_request, "/64k.bin", ("-c", 16, "-d", "SLICE")),
    Load("http.404.cpu", "µs", time_per_request, "/nothing", ("-c", 16, "-d", "SLICE"), status=404),
    Load("http.list.rate", "1/s", requests_per_second, "/list/", ("-c", 8, "-d", "SLICE"), without=("limit",)),
    Load("http.10m.rate", "MB/s", megabytes_per_second, "/10m.bin", ("-c", 4, "-d", "SLICE"), without=("limit",), slices=3),
    Load("http.1g.rate", "MB/s", megabytes_per_second, "/1g.bin", ("-c", 1, "-n", 1, "-d", 60), without=("limit",)),
    Load("http.p99", "µs", latency, "/1k.txt", ("-c", 512, "-r", 4000, "-d", 0.2), without=("limit", *SLOW), slices=7),
    Mixed("http.mixed.p99", "µs", latency, "/1k.txt", ("-c", 512, "-r", 300, "-d", 2), without=("limit", *SLOW)),
    Idle(),
    BesideIdle(),
    ManyServers(),
]
