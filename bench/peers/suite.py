"""Alternatives side by side: the same tasks, written with each library that an application could use instead."""

import os
import random
import re
import statistics
import subprocess
from contextlib import ExitStack
from pathlib import Path

from harness import bus_and_service, die_with_parent, is_near, prepare, remove_segments, say
from startup.suite import compare_programs, install

SOURCES = Path(__file__).resolve().parent
TOLERANCE = 0.02
BASELINE, CONTROL = "gdbus", "control"
# Each task, and how often a peer repeats it in one turn.
WORKS = {"command": 20, "event": 10, "names": 5, "image": 3}
TITLES = {"gdbus": "GDBus, generated proxy", "sdbus": "sdbus-c++", "qt": "Qt D-Bus", "python": "dbus-fast for Python",
          "core": "this library: core", "kit": "this library: kit", CONTROL: "GDBus again (control)"}


def command_of(programs, peer):
    program = BASELINE if peer == CONTROL else peer
    script = SOURCES / f"{program}.py"
    return [script] if script.exists() else [programs / "peers" / f"bench_peer_{program}"]


def lines_of_code(peer):
    """Counts the lines of a peer's source without comments, blank lines, and lines of brackets alone."""
    source = next(SOURCES.glob(f"{peer}.[cp][py]*")).read_text()
    code = re.sub(r'"""[\s\S]*?"""|//.*|^\s*#(?!include).*', "", source, flags=re.MULTILINE)
    return sum(1 for line in code.splitlines() if line.strip(" \t{}();,"))


class RunningPeer:
    """A peer with a private bus and service, so that it receives no events of other peers."""

    def __init__(self, programs, peer, stack):
        stack.enter_context(bus_and_service(programs))
        prepare(1000, 900000)
        self.process = stack.enter_context(
            subprocess.Popen(command_of(programs, peer), stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                             preexec_fn=die_with_parent))
        self.process.stdout.readline()
        stack.callback(self.process.terminate)

    def cost(self, work):
        self.process.stdin.write(f"{work} {WORKS[work]}\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline().split()
        if answer[:2] != ["figure", work]:
            raise SystemExit(f"run-bench: {self.process.args[0]} failed")
        return float(answer[2])


def measure_once(programs, names, rounds, costs):
    """Starts all peers, and lets them take turns in random order. The first turns warm up."""
    with ExitStack() as stack:
        remove_segments()
        peers = {name: RunningPeer(programs, name, stack) for name in names}
        turns = [(name, work) for name in names for work in WORKS]
        for turn in range(rounds + 2):
            random.shuffle(turns)
            for name, work in turns:
                cost = peers[name].cost(work)
                if turn >= 2:
                    costs.setdefault(work, {}).setdefault(name, []).append(cost)


def installed_peers(programs):
    return [name for name in TITLES if Path(command_of(programs, name)[0]).exists()]


def measure_works(programs, names, quick, figures):
    """Several starts of each peer: two processes of one program differ in their memory layout."""
    starts, rounds = (2, 5) if quick else (10, 20)
    costs = {}
    for start in range(starts):
        say(f"alternatives: start {start + 1} of {starts}, {rounds} turns of {len(names)} peers")
        measure_once(programs, names, rounds, costs)
    void = []
    for work, each in costs.items():
        medians = {name: statistics.median(samples) for name, samples in each.items()}
        if not is_near(medians[CONTROL] / medians[BASELINE], TOLERANCE):
            void.append(work)
        figures.peers[work] = medians
    return void


def measure_start(programs, names, quick, figures):
    commands = {name: [*command_of(programs, name), "start"] for name in names if name != CONTROL}
    with bus_and_service(programs):
        prepare(10, 1000)
        void = compare_programs(programs, "start", 20 if quick else 200, commands, figures)
    if not void:
        figures.peers["start"] = {name: each["p50"] for name, each in figures.contests["start"].items()}
    return void


def cell(work, name, figures, void):
    if work in void or work not in figures.peers:
        return "-"
    return f"{figures.peers[work][name] / figures.peers[work][BASELINE]:.2f}"


def print_peers(names, figures, void):
    columns = [*WORKS, "start"]
    print("Costs relative to the generated GDBus proxy; '-': not measured, because equal peers differed by more than 2 %")
    print(f"{'':<24}" + "".join(f"{column:>9}" for column in columns) + "    lines")
    for name in names:
        cells = "".join(f"{cell(work, name, figures, void):>9}" for work in columns)
        print(f"{TITLES[name]:<24}{cells}{figures.lines.get(name, ''):>9}")
    base = " ".join(f"{work} {figures.peers[work][BASELINE] / 1000:.0f}" for work in columns if work in figures.peers)
    print(f"GDBus in microseconds: {base}")


def measure_peers(programs, quick, figures):
    install(programs.parent)
    names = installed_peers(programs)
    figures.lines = {name: lines_of_code(name) for name in names if name != CONTROL}
    os.environ["PYTHONDONTWRITEBYTECODE"] = "1"
    void = measure_works(programs, names, quick, figures) + measure_start(programs, names, quick, figures)
    print_peers(names, figures, void)
    return void
