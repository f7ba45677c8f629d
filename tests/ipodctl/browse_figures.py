#!/usr/bin/env python3
"""Measures how fast ipodctl browse responds in a list with many names; run by hand.

Usage: browse_figures.py --ipodctl PROGRAM --simulator PROGRAM [TRACKS]
"""
import random
import statistics
import subprocess
import sys
import tempfile
import time

import browse_e2e
from browse_e2e import CTRL_C, ENTER, ESCAPE, TerminalSession, selected
from music_folder import write_tracks
from private_session import Bus, enter_private_namespace

PATIENCE = 60
KEYS = {"down": "\033OB", "up": "\033OA", "page down": "\033[6~", "page up": "\033[5~", "end": "\033OF",
        "home": "\033OH"}


def seconds_until(terminal, holds):
    begin = time.monotonic()
    if not terminal.wait_for(holds, PATIENCE):
        sys.exit("it was never shown: " + terminal.screen.text())
    return time.monotonic() - begin


def milliseconds_of_keys(terminal, count):
    """Returns the sorted times from a key press to the first byte that changes the screen."""
    taken = []
    for _ in range(count):
        before = selected(terminal.screen)
        while selected(terminal.screen) == before:
            name = random.choice(list(KEYS))
            terminal.settle(quiet=0.02)
            begin = time.monotonic()
            terminal.type(KEYS[name])
            if terminal.read(0.2):
                elapsed = time.monotonic() - begin
                terminal.settle(quiet=0.02)
        taken.append(elapsed * 1000)
    return sorted(taken)


def report(what, seconds):
    print(f"{what:48} {seconds * 1000:9.1f} ms", flush=True)


def report_keys(what, taken):
    most = taken[len(taken) * 99 // 100]
    print(f"{what:48} median {statistics.median(taken):.1f} ms, 99 of 100 within {most:.1f} ms", flush=True)


def measure(options, bus):
    begin = time.monotonic()
    terminal = TerminalSession([options.ipodctl, "browse"], 40, 120, dict(bus.environment, TERM="xterm-256color"))
    seconds_until(terminal, lambda screen: "Songs/" in screen.text())
    report("from the start to the root on the screen", time.monotonic() - begin)
    terminal.settle()
    terminal.type("so")
    seconds_until(terminal, lambda screen: selected(screen) == "Songs/")
    terminal.type(ENTER)
    report("first names of the list", seconds_until(terminal, lambda screen: "晴日 0" in screen.text()))
    report_keys("keys while the names are read", milliseconds_of_keys(terminal, 10))
    terminal.type("qtl")
    seconds_until(terminal, lambda screen: "no match" in screen.text())
    terminal.type(ESCAPE)
    report_keys("keys when all names are read", milliseconds_of_keys(terminal, 300))
    terminal.type("/")
    seconds_until(terminal, lambda screen: "type part" in screen.text())
    terminal.settle()
    terminal.type("qt4")
    report("a search", seconds_until(terminal, lambda screen: "/qt4" in screen.text() and "match" in screen.text()))
    terminal.type(CTRL_C)
    begin = time.monotonic()
    terminal.wait(PATIENCE)
    report("quitting", time.monotonic() - begin)
    terminal.close()


def main():
    options = browse_e2e.parse_options()
    enter_private_namespace()
    bus = Bus(TZ="UTC")
    with tempfile.TemporaryDirectory() as music:
        write_tracks(music, int(options.tests[0]) if options.tests else 50000)
        with subprocess.Popen([options.simulator, "--one-device", "--no-cache", music], env=bus.environment, stdout=subprocess.PIPE,
                              text=True) as simulator:
            print(simulator.stdout.readline().strip(), flush=True)
            measure(options, bus)
            simulator.kill()
    bus.stop()


if __name__ == "__main__":
    main()
