"""Runs the benchmark's programs: pinned to one CPU, on private buses, each comparison with a control."""

import ctypes
import json
import os
import signal
import subprocess
import sys
import tempfile
from contextlib import contextmanager
from pathlib import Path

STEADY = 0.01
ATTEMPTS = 6
PR_SET_PDEATHSIG = 1
ADDR_NO_RANDOMIZE = 0x0040000
# The heap keeps its memory, so that both sides of a comparison pay for copying and neither for page faults.
KEEP_HEAP = "glibc.malloc.trim_threshold=67108864:glibc.malloc.mmap_threshold=33554432"
PRIVATE = "IPOD_BENCH_HAS_PRIVATE_SHM"


def say(message):
    print(f"==> {message}", file=sys.stderr, flush=True)


def enter_private_shared_memory():
    """Reruns the script with a private, empty /dev/shm: segment names are global to a machine."""
    if os.environ.pop(PRIVATE, None):
        return
    script = f'mount -t tmpfs -o size=256m tmpfs /dev/shm && {PRIVATE}=1 exec "$@"'
    as_root = [] if os.geteuid() == 0 else ["--map-root-user"]
    command = ["unshare", *as_root, "--mount", "sh", "-c", script, "sh", sys.executable, *sys.argv]
    os.execvp(command[0], command)


def remove_segments():
    """Removes the segments that the previous program left in the private /dev/shm."""
    for segment in ("ListVectorSharedMemory", "BufferVectorSharedMemory", "BenchSegment"):
        Path("/dev/shm", segment).unlink(missing_ok=True)


def pin_to_one_cpu():
    """Pins this process and its children to the last CPU: the first often serves interrupts."""
    os.sched_setaffinity(0, {max(os.sched_getaffinity(0))})


def die_with_parent():
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGTERM)


def same_addresses_each_time():
    """Disables address randomization: tables ordered by address would change the counts between runs."""
    die_with_parent()
    ctypes.CDLL(None).personality(ADDR_NO_RANDOMIZE)


@contextmanager
def running(command, ready_when):
    """Starts a program, waits for its first line, and terminates it afterwards."""
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                          preexec_fn=die_with_parent) as process:
        try:
            line = process.stdout.readline()
            if ready_when not in line:
                sys.exit(f"run-bench: {command[0]} did not start")
            yield process
        finally:
            process.terminate()


@contextmanager
def bus_and_service(programs):
    with tempfile.TemporaryDirectory() as folder:
        address = f"unix:path={folder}/bus"
        with running(["dbus-daemon", "--session", "--nofork", "--print-address", f"--address={address}"], "unix:"):
            os.environ["DBUS_SESSION_BUS_ADDRESS"] = address
            os.environ["BENCH_LOG"] = "/dev/shm/log"
            with running([programs / "bench_service"], "ready"):
                yield


def output_of(command, **environment):
    result = subprocess.run([str(word) for word in command], stdout=subprocess.PIPE, text=True, timeout=1800,
                            env={**os.environ, **environment})
    if result.returncode != 0:
        sys.exit(f"run-bench: {command[0]} failed with {result.returncode}")
    return result.stdout


def lines_of(command, **environment):
    return [json.loads(line) for line in output_of(command, **environment).splitlines()]


def is_near(ratio, tolerance=STEADY):
    return 1 - tolerance <= ratio <= 1 + tolerance


def is_steady(variants, tolerance):
    first = next(iter(variants))
    return is_near(variants["control"]["p50"] / variants[first]["p50"], tolerance)


def run_contests(command, figures, tolerance=STEADY, selects=True):
    """Repeats comparisons whose control differs; the last attempt counts. Returns the void ones."""
    void = []
    for _ in range(ATTEMPTS):
        lines = lines_of([*command, *(void if selects else [])], GLIBC_TUNABLES=KEEP_HEAP)
        found = {line["contest"]: line["variants"] for line in lines}
        figures.contests.update(found)
        void = [name for name, variants in found.items() if not is_steady(variants, tolerance)]
        if not void:
            break
    return void


def prepare(names, size):
    """Sets the number of names and bytes that the service of this bus prepares for each request."""
    output_of(["dbus-send", "--session", "--print-reply", "--dest=com.zarn.linux.ipod", "/bench",
               "com.zarn.linux.ipod.bench.Prepare", f"int32:{names}", f"int32:{size}", "boolean:true"])
