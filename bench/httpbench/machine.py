# SPDX-License-Identifier: MIT
"""What the operating system reports, and how we set it up."""

import os
import pathlib
import shutil
import subprocess
import sys

TICKS = os.sysconf("SC_CLK_TCK")


def processors(servers=1):
    """This many processors for a server, and those for its clients: the others, or all if there are no
    others."""
    allowed = sorted(os.sched_getaffinity(0))
    return allowed[-servers:], allowed[:-servers] or allowed


def pinned(processors, command):
    """The command line that runs a command on these processors."""
    return ["taskset", "--cpu-list", ",".join(map(str, processors)), *command]


def enter_own_network():
    """As root, re-executes the program in its own network and mount namespaces: no port is in use there,
    no connection is in TIME_WAIT, and its mounts end with it."""
    if os.environ.get("BREVANE_BENCH_NETWORK") != "own":
        if os.geteuid() != 0 or not shutil.which("unshare"):
            print("http: not root, so the machine's own network is used", file=sys.stderr)
            return
        os.environ["BREVANE_BENCH_NETWORK"] = "own"
        os.execvp("unshare", ["unshare", "--net", "--mount", sys.executable, *sys.argv])
    subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
    for name, value in (("ip_local_port_range", "10000 65535"), ("tcp_tw_reuse", "1")):
        pathlib.Path("/proc/sys/net/ipv4", name).write_text(value)


def can_mount():
    """Whether a hanging folder can be mounted here, invisible outside the namespace."""
    return os.environ.get("BREVANE_BENCH_NETWORK") == "own" and os.access("/dev/fuse", os.R_OK | os.W_OK)


def evict(path):
    """Drops a file from the page cache; returns whether that worked."""
    with open(path, "rb") as file:
        descriptor, size = file.fileno(), os.path.getsize(path)
        os.fsync(descriptor)
        os.posix_fadvise(descriptor, 0, 0, os.POSIX_FADV_DONTNEED)
        return not any(is_cached(descriptor, size * part // 64) for part in range(64))


def is_cached(descriptor, offset):
    try:
        return os.preadv(descriptor, [bytearray(1)], offset, os.RWF_NOWAIT) > 0
    except BlockingIOError:
        return False


def family(pid):
    """The process and all its descendants."""
    found, waiting = [], [pid]
    while waiting:
        process = waiting.pop()
        found.append(process)
        try:
            for thread in os.listdir(f"/proc/{process}/task"):
                waiting += map(int, pathlib.Path(f"/proc/{process}/task/{thread}/children").read_text().split())
        except OSError:
            pass
    return found


def processor_time(pid):
    """Processor time of the process and its descendants in seconds. Accurate to the nanosecond for running
    threads; those that have ended count only in the process's ticks of a hundredth."""
    total = 0
    for process in family(pid):
        try:
            threads = sum(int(pathlib.Path(f"/proc/{process}/task/{thread}/schedstat").read_text().split()[0])
                          for thread in os.listdir(f"/proc/{process}/task")) / 1e9
            fields = pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()
            total += max(threads, (int(fields[11]) + int(fields[12])) / TICKS)
        except OSError:
            pass
    return total


def used_times():
    """Seconds for which all processors together were busy, and how many of these a hypervisor took for
    other machines."""
    with open("/proc/stat") as stat:
        user, nice, system, _idle, _wait, irq, softirq, stolen = map(int, stat.readline().split()[1:9])
    return (user + nice + system + irq + softirq + stolen) / TICKS, stolen / TICKS


def resident(pid):
    """Resident memory of the process and its descendants in kilobytes."""
    total = 0
    for process in family(pid):
        for line in pathlib.Path(f"/proc/{process}/status").read_text().splitlines():
            if line.startswith("VmRSS:"):
                total += int(line.split()[1])
    return total


def descriptors(pid):
    """The number of open descriptors of the process and its descendants."""
    return sum(len(os.listdir(f"/proc/{process}/fd")) for process in family(pid))
