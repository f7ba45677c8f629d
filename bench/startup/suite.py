"""Start-up: programs from start to exit, sessions until they are ready, and the memory of a client."""

import os
import re
import statistics
import subprocess
from pathlib import Path

from harness import bus_and_service, prepare, run_contests, running, say

# Starting a process varies more than a call does.
TOLERANCE = 0.02
SERVICE = ["com.zarn.linux.ipod", "/com/zarn/linux/ipod", "com.zarn.linux.ipod"]


def install(build):
    """Lets the dynamic linker find the libraries as if they were installed. Private to this run, like /dev/shm."""
    folder, configuration = build / "bench-installed", build / "bench-ld.so.conf"
    configuration.write_text(f"include /etc/ld.so.conf\n{folder}\n")
    cache = build / "bench-ld.so.cache"
    for command in (["cmake", f"-DBUILD={build}", f"-DFOLDER={folder}", "-P", Path(__file__).with_name("stage.cmake")],
                    ["/sbin/ldconfig", "-X", "-f", configuration, "-C", cache],
                    ["mount", "--bind", cache, "/etc/ld.so.cache"]):
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return folder


def compare_programs(programs, contest, rounds, variants, figures):
    """Compares commands from start to exit; drops the comparison if it is void."""
    words = [word for name, command in variants.items() for word in ("--", name, *command)]
    say(f"start-up: {contest}, {rounds} starts of each")
    void = run_contests([programs / "startup" / "bench_spawn", contest, rounds, *words[1:]], figures, TOLERANCE, False)
    for name in void:
        figures.contests.pop(name)
    return void


def memory_of(pid):
    """Returns the proportional, the private, and the written memory of a process, in kilobytes."""
    rollup = dict(re.findall(r"^(\w+): +(\d+) kB", Path(f"/proc/{pid}/smaps_rollup").read_text(), re.MULTILINE))
    return {"proportional": int(rollup["Pss"]), "private": int(rollup["Private_Clean"]) + int(rollup["Private_Dirty"]),
            "written": int(rollup["Anonymous"])}


def measure_clients(programs, figures):
    """Runs one client at a time alongside the service: memory that two clients share would count half for each."""
    say("memory of a client")
    found = {"bare": [], "kit": []}
    for _ in range(5):
        for name, each in found.items():
            with running([programs / "startup" / f"bench_client_{name}", "stay"], "ready") as client:
                each.append(memory_of(client.pid))
    figures.clients = {name: {kind: statistics.median(one[kind] for one in each) for kind in each[0]}
                       for name, each in found.items()}


def measure_startup(programs, quick, figures):
    rounds = 40 if quick else 400
    here, ipodctl = programs / "startup", install(programs.parent) / "ipodctl"
    linked = {name: [here / f"bench_link_{name}"] for name in ("gio", "core", "kit")}
    void = compare_programs(programs, "linked", rounds, linked, figures)
    with bus_and_service(programs), running([here / "bench_mpris_player"], "ready"):
        prepare(2, 1000)
        busctl = ["busctl", f"--address={os.environ['DBUS_SESSION_BUS_ADDRESS']}", "call", *SERVICE, "GetPlayStatus"]
        status = {"busctl": busctl, "ipodctl": [ipodctl, "status"], "playerctl": ["playerctl", "status"]}
        void += compare_programs(programs, "status", rounds, status, figures)
        clients = {name: [here / f"bench_client_{name}"] for name in ("bare", "kit")}
        void += compare_programs(programs, "started until ready", rounds, clients, figures)
        say(f"session ready, {5 * rounds} times each")
        unsteady = run_contests([here / "bench_ready", 5 * rounds], figures, TOLERANCE, False)
        for name in unsteady:
            figures.contests.pop(name)
        measure_clients(programs, figures)
    return void + unsteady
