"""Counts instructions: with callgrind for this machine, with qemu's log for ARM."""

import re
import subprocess
import sys

from harness import bus_and_service, remove_segments, same_addresses_each_time, say
from startup.suite import install


# A bus operation is repeated so often because the scheduling of GLib's worker thread varies.
FEW_CALLS, MANY_CALLS = 100, 600


def valgrind_count(command):
    result = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *command],
                            stderr=subprocess.PIPE, stdout=subprocess.DEVNULL, text=True, timeout=600,
                            preexec_fn=same_addresses_each_time)
    found = re.search(r"Collected : (\d+)", result.stderr)
    if result.returncode != 0 or found is None:
        sys.exit(f"run-bench: counting {command[0]} failed: {result.stderr[-500:]}")
    return int(found.group(1))


def qemu_count(emulator, command):
    """Counts the log lines that qemu writes, one per instruction. The program's own output goes to the error stream."""
    words = [*emulator, "-singlestep", "-d", "exec,nochain", "-D", "/dev/stdout", *command]
    with subprocess.Popen(words, stdout=subprocess.PIPE, bufsize=0, preexec_fn=same_addresses_each_time) as process:
        lines = sum(chunk.count(b"\n") for chunk in iter(lambda: process.stdout.read(1 << 20), b""))
    if process.returncode != 0:
        sys.exit(f"run-bench: counting {command[0]} under qemu failed")
    return lines


def cross_emulator(build):
    """Returns the emulator of a cross build; nothing for a native build."""
    cache = dict(re.findall(r"^(\w+):\w+=(.*)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE))
    if not cache.get("IPOD_QEMU_ARM"):
        return []
    return [cache["IPOD_QEMU_ARM"], "-L", cache["CMAKE_SYSROOT"]]


def known_operations(program, emulator):
    result = subprocess.run([*emulator, program], stderr=subprocess.PIPE, text=True)
    return [line.strip() for line in result.stderr.splitlines()[1:]]


def times_of(program, operation):
    if program.name == "bench_kit_instructions":
        return FEW_CALLS, MANY_CALLS
    return (2, 4) if "iterator" in operation else (2, 22)


class Counter:
    """Counts instructions of the programs of one build."""

    def __init__(self, build):
        self.programs, self.emulator = build / "bench", cross_emulator(build)

    def count(self, *command):
        return qemu_count(self.emulator, command) if self.emulator else valgrind_count(command)

    def of_operations(self, name):
        """Returns the differences between long and short runs: start-up and exit cancel out."""
        instructions = {}
        program = self.programs / name
        for operation in known_operations(program, self.emulator):
            say(f"counting instructions{' on ARM' if self.emulator else ''}: {operation}")
            few, many = times_of(program, operation)
            runs = [self.of_run(program, operation, times) for times in (many, few)]
            instructions[operation] = (runs[0] - runs[1]) / (many - few)
        return instructions

    def of_run(self, program, operation, times):
        """Counts a run that creates the segments, as every run does: creating them would not cancel out otherwise."""
        if program.name == "bench_instructions":
            remove_segments()
        return self.count(program, operation, str(times))

    def of_linking(self):
        """Counts from exec to exit, with dynamic linking, of programs that link a library and do nothing."""
        say("counting instructions: start-up")
        return {f"link-{name}": self.count(self.programs / "startup" / f"bench_link_{name}")
                for name in ("gio", "core", "kit")}


def measure_instructions(build):
    """Counts the operations in one process; for this machine, also start-up, and ipodkit across the bus."""
    counter = Counter(build)
    instructions = counter.of_operations("bench_instructions")
    if counter.emulator:
        return instructions
    install(build)
    instructions.update(counter.of_linking())
    remove_segments()
    with bus_and_service(counter.programs):
        instructions.update(counter.of_operations("bench_kit_instructions"))
    return instructions
