# SPDX-License-Identifier: MIT
"""The measures."""

import contextlib
import os
import select
import socket
import statistics
import subprocess
import sys

from . import machine, peers
from .comparison import Failed, Figure
from .slices import wait_until, wait_until_quiet


# How often a long slice is run at most, if other programs disturb it.
LONG_TRIES = 4


def time_per_request(result):
    return result["server"] / result["done"] * 1e6


def requests_per_second(result):
    return result["done"] / result["seconds"]


def megabytes_per_second(result):
    return result["bytes"] / result["seconds"] / 1e6


def latency(result):
    return result["p99"]


def milliseconds_to_first_byte(result):
    return result["first"] / 1e3


class Load:
    """Slices of one kind of request, with the servers in turns; several per round if a single interruption
    would dominate a slice."""

    def __init__(self, figure, value, path, options, status=200, slices=1, limit=False, clients=1):
        self.figures, self.value, self.path = [figure], value, path
        self.options, self.status, self.slices, self.limit, self.clients = options, status, slices, limit, clients

    def run(self, bench, servers):
        names = [name for name in servers if name != peers.LIMIT or self.limit]
        samples = {name: [] for name in names}
        for turn in range(self.rounds(bench) * self.slices + 1):
            for name in names if turn % 2 else reversed(names):
                sample = self.sample(bench, servers[name], self.lengths(bench, warming=turn == 0))
                if turn > 0:
                    samples[name].append(sample)
        yield from self.lines(samples)

    def rounds(self, bench):
        return bench.long_rounds if "LONG" in self.options else bench.rounds

    def lengths(self, bench, warming):
        """The options with the length of a slice; the first turn, which warms up, is short."""
        words = {"SLICE": bench.seconds, "LONG": bench.seconds if warming else bench.long_seconds}
        return [words.get(option, option) for option in self.options]

    def sample(self, bench, server, options):
        tries = LONG_TRIES if "LONG" in self.options else 3
        return bench.slice(server, self.path, "-s", self.status, *options, clients=self.clients, tries=tries)

    def lines(self, samples):
        yield from self.figures[0].lines(medians(samples, self.value))


class Beside(Load):
    """Latency of small requests during downloads, and the downloads' rate meanwhile, since a server that
    delays downloads is fast for others."""

    def __init__(self, name, path, downloads, wanted):
        super().__init__(Figure(f"{name}.p99", "µs", 1, wanted=wanted), latency, "/1k.txt", ("-c", 512, "-r", 300, "-d", "LONG"))
        self.figures.append(Figure(f"{name}.rate", "MB/s", 1, more_is_better=True, note="what the downloads get meanwhile"))
        self.downloads = (path, downloads)

    def sample(self, bench, server, options):
        return bench.slice(server, self.path, *options, beside=self.downloads, tries=2)

    def lines(self, samples):
        yield from super().lines(samples)
        yield from self.figures[1].lines(medians(samples, lambda result: megabytes_per_second(result["beside"])))


class Cold(Load):
    """A large file that is not in the page cache. A layer below, such as the disk or a hypervisor, may
    still cache it."""

    def sample(self, bench, server, options):
        if not machine.evict(bench.folder / "1g.bin"):
            raise Failed("the large file stays in the kernel's cache")
        return bench.slice(server, self.path, *options, tries=1)

    def rounds(self, bench):
        return bench.long_rounds

    def run(self, bench, servers):
        try:
            yield from super().run(bench, servers)
        finally:
            bench.warm("1g.bin")


class Cores(Load):
    """New servers with two processors and as many workers. The clients get the other processors; if there
    are none, they share the servers', at the same cost to each server."""

    def run(self, bench, servers):
        names = [name for name in servers if name != peers.LIMIT]
        with peers.running(names, bench.build, bench.folder, machine.processors(2)[0]) as wide:
            yield from super().run(bench, wide)


class Idle:
    """Memory of connections with incomplete requests, in new servers."""

    figures = [Figure("http.idle.memory", "kB", 3, wanted=0.1)]

    def run(self, bench, servers):
        names = [name for name in servers if name != peers.LIMIT]
        values = {}
        with peers.running(names, bench.build, bench.folder, machine.processors()[0]) as fresh:
            for name, server in fresh.items():
                bench.slice(server, "/1k.txt", "-c", 4, "-n", 500)
                wait_until_quiet(server)
                alone, before = machine.descriptors(server.pid), machine.resident(server.pid)
                with idle_connections(server.port, 1000):
                    wait_until(lambda: machine.descriptors(server.pid) >= alone + 1000)
                    wait_until_quiet(server)
                    values[name] = max(machine.resident(server.pid) - before, 0) / 1000
        yield from self.figures[0].lines(values)


class BesideIdle:
    """Latency with 5,000 idle connections open."""

    figures = [Figure("http.idle5000.p99", "µs", 1, wanted=1.5)]

    def run(self, bench, servers):
        server, alone, beside = servers["brevane"], [], []
        options = ("-c", 64, "-r", 1000, "-d", bench.long_seconds)
        for _ in range(bench.long_rounds):
            alone.append(latency(bench.slice(server, "/1k.txt", *options, tries=LONG_TRIES)))
            descriptors = machine.descriptors(server.pid)
            with idle_connections(server.port, 5000):
                wait_until(lambda: machine.descriptors(server.pid) >= descriptors + 5000)
                wait_until_quiet(server)
                beside.append(latency(bench.slice(server, "/1k.txt", *options, tries=LONG_TRIES)))
            wait_until(lambda: machine.descriptors(server.pid) <= descriptors)
            wait_until_quiet(server)
        yield from self.figures[0].beside_itself(statistics.median(beside), statistics.median(alone), "none idle")


class ManyServers:
    """Processor time per request with 200 servers in one process."""

    figures = [Figure("http.servers200.cpu", "µs", 2, wanted=1.05)]

    def run(self, bench, servers):
        samples = {1: [], 200: []}
        with several(bench, 1) as one, several(bench, 200) as many:
            for turn in range(bench.rounds * 4):
                for shares in (one, many):
                    result = bench.slice(shares[turn * 53 % len(shares)], "/1k.txt", "-c", 16, "-d", bench.seconds / 2)
                    samples[len(shares)].append(time_per_request(result))
        yield from self.figures[0].beside_itself(statistics.median(samples[200]), statistics.median(samples[1]), "one server")


class Hung:
    """Latency while as many requests as there are processors block on a hanging folder: of another share
    of the process, and of the share with that folder."""

    figures = [Figure("http.hung", "µs", 1, wanted=2, note="another share of the process"),
               Figure("http.hung.same", "µs", 1, wanted=2, note="the share that the folder is in")]

    def run(self, bench, servers):
        if not machine.can_mount():
            print("http: http.hung is left out: it takes root and /dev/fuse", file=sys.stderr)
            return
        undisturbed, samples = [], [[], []]
        options = ("-c", 64, "-r", 1000, "-d", bench.long_seconds)
        for _ in range(bench.long_rounds):
            with several(bench, 2) as (hanging, other):
                undisturbed.append(latency(bench.slice(other, "/1k.txt", *options, tries=LONG_TRIES)))
                with hung_folder(bench) as questions, stuck(hanging.port, questions, os.cpu_count()):
                    for share, latencies in zip((other, hanging), samples):
                        latencies.append(latency(bench.slice(share, "/1k.txt", *options, tries=LONG_TRIES)))
        for figure, latencies in zip(self.figures, samples):
            yield from figure.beside_itself(statistics.median(latencies), statistics.median(undisturbed), "no folder hangs")


def medians(samples, value):
    return {name: statistics.median(map(value, results)) for name, results in samples.items()}


class Share:
    """One of several servers in a process."""

    name = "brevane"

    def __init__(self, pid, port):
        self.pid, self.port, self.processors = pid, port, machine.processors()[0]


@contextlib.contextmanager
def several(bench, count):
    """`count` servers of ours in one process, all for the same folder."""
    command = [str(bench.build / "bench/http-many"), str(bench.folder), str(count)]
    process = subprocess.Popen(machine.pinned(machine.processors()[0], command),
                               stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
    try:
        yield [Share(process.pid, int(process.stdout.readline())) for _ in range(count)]
    finally:
        try:
            process.communicate(timeout=30)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            raise Failed("brevane: the servers do not end") from None


@contextlib.contextmanager
def hung_folder(bench):
    """Makes the folder "hung" hang; yields a pipe with a line for each unanswered request to it."""
    process = subprocess.Popen([str(bench.build / "bench/http-hung"), str(bench.folder / "hung")],
                               stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0)
    try:
        if process.stdout.readline() != b"mounted\n":
            raise Failed("no folder that hangs could be mounted")
        yield process.stdout
    finally:
        process.communicate()


@contextlib.contextmanager
def stuck(port, questions, count):
    """`count` requests for the hanging folder. The server may pass on fewer to the file system, but must
    pass on at least one of them within a second."""
    with contextlib.ExitStack() as open_connections:
        asked = 0
        for number in range(count):
            connection = open_connections.enter_context(socket.create_connection(("127.0.0.1", port), 5))
            connection.send(f"GET /hung/{number} HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n".encode())
            if select.select([questions], [], [], 1)[0]:
                questions.readline()
                asked += 1
        if asked == 0:
            raise Failed("no request has asked the folder that hangs")
        yield


@contextlib.contextmanager
def idle_connections(port, count):
    with contextlib.ExitStack() as open_connections:
        for _ in range(count):
            connection = open_connections.enter_context(socket.create_connection(("127.0.0.1", port), 5))
            connection.send(b"GET /1k.txt HTTP/1.1\r\nHost: 127.0.0.1\r\n")
        yield


INDEX = "nginx's index also prints size and date of each entry, and so does lighttpd's"
CLOSED_LOOP = ("-c", 16, "-d", "SLICE")
ALL = [
    Load(Figure("http.1k.cpu", "µs", 2, wanted=1.0), time_per_request, "/1k.txt", CLOSED_LOOP, limit=True),
    Load(Figure("http.late.cpu", "µs", 2, wanted=1.0), time_per_request, "/1k.txt", (*CLOSED_LOOP, "-l", 0.001), limit=True),
    Load(Figure("http.64k.cpu", "µs", 2, wanted=1.05), time_per_request, "/64k.bin", CLOSED_LOOP, limit=True),
    Load(Figure("http.404.cpu", "µs", 2, wanted=0.85), time_per_request, "/nothing", CLOSED_LOOP, status=404, limit=True),
    Load(Figure("http.list.rate", "1/s", 1, beside="fastest", wanted=4, more_is_better=True, note=INDEX),
         # One client: lighttpd makes one index at a time and refuses further requests meanwhile.
         requests_per_second, "/list/", ("-c", 1, "-d", "SLICE")),
    Load(Figure("http.10m.rate", "MB/s", 1, beside="fastest", wanted=1.0, more_is_better=True),
         megabytes_per_second, "/10m.bin", ("-c", 4, "-d", "SLICE"), slices=2),
    Load(Figure("http.1g.rate", "MB/s", 1, beside="fastest", wanted=1.0, more_is_better=True),
         megabytes_per_second, "/1g.bin", ("-c", 1, "-n", 1, "-d", 60)),
    Load(Figure("http.p99", "µs", 1, wanted=1.0), latency, "/1k.txt", ("-c", 512, "-r", 4000, "-d", "LONG")),
    Beside("http.mixed", "/1g.bin", 2, wanted=1.2),
    Beside("http.crowd", "/10m.bin", 300, wanted=2),
    Load(Figure("http.first_byte.warm", "ms", 3), milliseconds_to_first_byte, "/1g.bin", ("-c", 1, "-n", 1, "-d", 60)),
    Cold(Figure("http.first_byte.cold", "ms", 3), milliseconds_to_first_byte, "/1g.bin", ("-c", 1, "-n", 1, "-d", 60)),
    Cores(Figure("http.cores", "1/s", 1, more_is_better=True), requests_per_second, "/1k.txt", ("-c", 32, "-d", "SLICE"), clients=2),
    Idle(),
    Hung(),
    BesideIdle(),
    ManyServers(),
]
