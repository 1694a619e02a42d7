# SPDX-License-Identifier: MIT
"""The served files, and how a slice is run."""

import contextlib
import json
import os
import random
import resource
import subprocess
import time

from . import machine
from .comparison import Failed

SIZES = {"1k.txt": 1 << 10, "64k.bin": 64 << 10, "10m.bin": 10 << 20, "1g.bin": 1 << 30}


class Bench:
    """`rounds` slices of `seconds` for means, `long_rounds` of `long_seconds` for 99th percentiles."""

    def __init__(self, build, asked):
        self.build, self.folder = build, build / "peers/www"
        self.foreign, self.stolen = asked.foreign, asked.stolen
        self.rounds, self.seconds = asked.rounds, asked.slice
        self.long_rounds, self.long_seconds = asked.long_rounds, asked.long_slice
        resource.setrlimit(resource.RLIMIT_NOFILE, (resource.getrlimit(resource.RLIMIT_NOFILE)[1],) * 2)

    def make_files(self):
        """Creates the files once, of random bytes, so that neither holes nor compression save anything."""
        self.folder.mkdir(parents=True, exist_ok=True)
        for name, size in SIZES.items():
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
        (self.folder / "hung").mkdir(exist_ok=True)

    def warm(self, name):
        """Reads a file into the page cache."""
        with open(self.folder / name, "rb", buffering=0) as file:
            while file.read(1 << 20):
                pass

    def client(self, server, path, *options):
        """Starts a client on its processors. A paced one gets priority over other clients there if permitted,
        so that they do not add to the measured latency."""
        urgent = ["nice", "-n", "-10"] if os.geteuid() == 0 and "-r" in options else []
        command = [*urgent, str(self.build / "bench/http-client"), *map(str, options), str(server.port), path]
        return subprocess.Popen(machine.pinned(machine.processors(len(server.processors))[1], command),
                                stdout=subprocess.PIPE, text=True)

    @contextlib.contextmanager
    def downloads(self, server, path, clients, seconds):
        """Clients that download a file repeatedly, before the block begins and until its end, then disconnect.
        Yields their process; its `result` is set at the end."""
        before = machine.processor_time(server.pid)
        process = self.client(server, path, "-a", "-c", clients, "-d", seconds)
        try:
            wait_until(lambda: machine.processor_time(server.pid) - before > 0.1 or process.poll() is not None)
            yield process
        finally:
            process.result = result_of(process)
            wait_until_quiet(server)

    def slice(self, server, path, *options, beside=None, clients=1, tries=3):
        """One run of `clients` clients, with the processor time that the server used. Repeated if other programs
        disturb it; the least disturbed run counts. `beside`: path and number of concurrent downloads. An error
        in any run fails the measure."""
        best = None
        for _ in range(tries):
            if beside:
                with self.downloads(server, *beside, seconds=options[options.index("-d") + 1] + 1) as second:
                    result = self.observe(server, [second], path, options, clients)
                result["beside"] = second.result
                refuse_errors(server, second.result)
            else:
                result = self.observe(server, [], path, options, clients)
            refuse_errors(server, result)
            result["disturbance"] = self.disturbance(result, paced="-r" in options)
            if best is None or result["disturbance"] < best["disturbance"]:
                best = result
            if result["disturbance"] <= 1:
                break
        return best

    def disturbance(self, result, paced):
        """How much other programs disturbed the run; up to 1 is harmless. A hypervisor that takes a processor
        for some milliseconds determines a 99th percentile. /proc/stat counts in ticks, which coincide with a
        paced client's wake-ups, so that it seems to use up to half a processor more than it does."""
        if not paced:
            return result["foreign"] / self.foreign
        return max(max(0.0, result["foreign"] - 0.25) / self.foreign, result["stolen"] / self.stolen)

    def observe(self, server, others, path, options, clients):
        def used():
            return [machine.processor_time(process.pid) for process in (server, *others)]

        before, (busy, stolen), begun = used(), machine.used_times(), time.monotonic()
        processes = [self.client(server, path, *options) for _ in range(clients)]
        results = [result_of(process) for process in processes]
        elapsed = time.monotonic() - begun
        after, (busy_after, stolen_after) = used(), machine.used_times()
        result = {name: sum(each[name] for each in results) for name in ("done", "errors", "bytes", "cpu")}
        result |= {name: max(each[name] for each in results) for name in ("seconds", "p99", "first")}
        result["server"] = after[0] - before[0]
        foreign = busy_after - busy - (sum(after) - sum(before)) - result["cpu"]
        result["foreign"] = max(0.0, foreign) / (elapsed * os.cpu_count())
        result["stolen"] = (stolen_after - stolen) / (elapsed * os.cpu_count())
        return result


def result_of(process):
    return json.loads(process.communicate()[0])


def refuse_errors(server, result):
    if result["errors"] or not result["bytes"]:
        raise Failed(f"{server.name}: {result['errors']} requests of {result['done'] + result['errors']} failed")


def wait_until(condition, seconds=30):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            raise Failed(f"what the measure waits for has not come in {seconds} seconds")
        time.sleep(0.02)


def wait_until_quiet(server):
    """Waits until the server has finished its remaining work."""
    used = []

    def is_quiet():
        used.append(machine.processor_time(server.pid))
        return len(used) > 10 and used[-1] - used[-10] < 0.001
    wait_until(is_quiet)
