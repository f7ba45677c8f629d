#!/usr/bin/python3
"""Measures the simulator with many files, and exits with 1 if a goal is missed.

Usage: figures.py --simulator PROGRAM --samples PROGRAM [--count 50000]

The files are created in a temporary folder first, so that they are in the page cache when read. Needs python3-gi.
"""
import argparse
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

try:
    from gi.repository import Gio, GLib
except ImportError:
    sys.exit("figures.py: the package python3-gi is missing")

FILES_PER_SECOND, CACHED_START, PAGE_OVER_BUS = 2000, 1.0, 5.0
NAME, PATH = "com.zarn.linux.ipod", "/com/zarn/linux/ipod"


class Service:
    """Starts a simulator; returns it and its start-up time."""

    def __init__(self, *words):
        begin = time.monotonic()
        self.process = subprocess.Popen([OPTIONS.simulator, *words], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                        text=True)
        assert "ready" in self.process.stdout.readline()
        self.seconds = time.monotonic() - begin

    def stop(self):
        self.process.terminate()
        self.process.wait()
        self.process.stdout.close()


def call(bus, method, signature=None, *values):
    arguments = GLib.Variant(signature, values) if signature else None
    return bus.call_sync(NAME, PATH, NAME, method, arguments, None, Gio.DBusCallFlags.NONE, 60000, None).unpack()


def milliseconds(work, times=200):
    spent = []
    for _ in range(times):
        begin = time.perf_counter()
        work()
        spent.append((time.perf_counter() - begin) * 1000)
    return statistics.median(spent)


def measure(folder):
    subprocess.run([OPTIONS.samples, "--count", str(OPTIONS.count), folder], check=True, stdout=subprocess.DEVNULL)
    reading = []
    for _ in range(3):
        service = Service("--no-cache", folder)
        service.stop()
        reading.append(service.seconds)
    yield "read without an index", OPTIONS.count / min(reading), "files/s", FILES_PER_SECOND, True
    Service(folder).stop()
    cached = []
    for _ in range(5):
        service = Service(folder)
        service.stop()
        cached.append(service.seconds)
    yield "start with an index", min(cached), "s", CACHED_START, False
    service = Service(folder)
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    alone = milliseconds(lambda: call(bus, "GetPlayStatus"))
    call(bus, "EnterDbChildList", "(i)", 4)
    middle = OPTIONS.count // 2
    for method in ("GetCurDbListItems", "GetCurDbListItemsPinyin"):
        page = milliseconds(lambda: call(bus, method, "(ii)", middle, middle + 999))
        yield f"{method}, 1000 names, over the bus's {alone:.2f} ms", page - alone, "ms", PAGE_OVER_BUS, False
    service.stop()


def main():
    folder = tempfile.mkdtemp()
    os.environ["XDG_CACHE_HOME"] = os.path.join(folder, "cache")
    missed = 0
    try:
        for what, figure, unit, goal, more_is_better in measure(os.path.join(folder, "music")):
            holds = figure >= goal if more_is_better else figure <= goal
            missed += not holds
            print(f"{what}: {figure:.2f} {unit} ({'at least' if more_is_better else 'at most'} {goal})"
                  f"{'' if holds else ' MISSED'}", flush=True)
    finally:
        shutil.rmtree(folder)
    print(f"figures: {missed} missed, load {os.getloadavg()[0]:.1f} on {os.cpu_count()} processors")
    return 1 if missed else 0


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description="Measures the simulator with many files.")
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--samples", required=True)
    parser.add_argument("--count", type=int, default=50000)
    OPTIONS = parser.parse_args()
    sys.exit(main())
