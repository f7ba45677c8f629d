#!/usr/bin/env python3
"""Measures how fast ipodctl answers and prints events; exits 1 if it misses a goal. Run by hand.

Usage: figures.py --ipodctl PROGRAM --simulator PROGRAM [--times 100]

Starts a private bus and simulator with private shared memory. Requires python3-gi.
"""
import argparse
import os
import statistics
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
from private_session import Bus, enter_private_namespace  # noqa: E402

try:
    from gi.repository import Gio, GLib
except ImportError:
    sys.exit("figures.py: the package python3-gi is missing")

STATUS, EVENT = 50.0, 5.0
PATH, CONTROL = "/com/zarn/linux/ipod/simulator", "com.zarn.linux.ipod.Simulator"


def milliseconds_of(command, environment):
    begin = time.perf_counter()
    subprocess.run(command, env=environment, stdout=subprocess.DEVNULL, check=True)
    return (time.perf_counter() - begin) * 1000


def let_battery_change(bus, level):
    action = GLib.Variant("(s)", (f'{{"event": "battery", "value": {level}}}',))
    bus.call_sync(CONTROL, PATH, CONTROL, "Do", action, None, Gio.DBusCallFlags.NONE, 10000, None)


def milliseconds_to_lines(environment, options, times):
    """Returns the times from the request that makes the simulator emit an event to the line that prints it."""
    bus = Gio.DBusConnection.new_for_address_sync(
        environment["DBUS_SESSION_BUS_ADDRESS"],
        Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
    taken = []
    with subprocess.Popen([OPTIONS.ipodctl, "events", "battery", *options], env=environment, stdout=subprocess.PIPE,
                          text=True) as process:
        try:
            time.sleep(0.5)
            for i in range(times):
                begin = time.perf_counter()
                let_battery_change(bus, i % 100)
                assert process.stdout.readline().strip(), "no line came"
                taken.append((time.perf_counter() - begin) * 1000)
        finally:
            process.terminate()
    return taken


def measure(environment):
    program = OPTIONS.ipodctl
    for what, words, goal in (("status", ["status"], STATUS), ("status --json", ["--json", "status"], STATUS),
                              ("--version, which asks nobody", ["--version"], STATUS)):
        taken = [milliseconds_of([program, *words], environment) for _ in range(OPTIONS.times)]
        yield f"ipodctl {what}, from start to exit", taken, goal
    for options in ([], ["--json"], ["--format", "{{ percent }}"]):
        taken = milliseconds_to_lines(environment, options, 5 * OPTIONS.times)
        yield " ".join(["ipodctl events battery", *options]) + ", from the request to the line", taken, EVENT


def report(what, taken, goal):
    median, late = statistics.median(taken), statistics.quantiles(taken, n=100)[98]
    print(f"{what}: median {median:.1f} ms, 99 of 100 within {late:.1f} ms (at most {goal:.0f})"
          f"{'' if median <= goal else ' MISSED'}", flush=True)
    return median > goal


def main():
    bus = Bus()
    command = [OPTIONS.simulator]
    with subprocess.Popen(command, env=bus.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          text=True) as simulator:
        assert "ready" in simulator.stdout.readline()
        missed = sum(report(*figure) for figure in measure(bus.environment))
        simulator.terminate()
    bus.stop()
    print(f"figures: {missed} missed, load {os.getloadavg()[0]:.1f} on {os.cpu_count()} processors")
    return 1 if missed else 0


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description="Measures how quickly ipodctl answers and prints events.")
    parser.add_argument("--ipodctl", required=True)
    parser.add_argument("--simulator", required=True)
    parser.add_argument("--times", type=int, default=100)
    OPTIONS = parser.parse_args()
    enter_private_namespace()
    sys.exit(main())
