"""The fault matrix: each fault, and the outcome that the contract requires."""

import dataclasses
import signal

ALIVE = "alive"
NEVER_FINISHED = "exception: segment ListVectorSharedMemory: its creator never finished it"
OTHER_LAYOUT = "exception: segment ListVectorSharedMemory: its layout differs from that of this build"
NO_MEMORY = "exception: segment ListVectorSharedMemory: it exists and is not shared memory"
FAILED_CALL = "Failed to call dbus method"
KEEPS = "commands keep the error; pages, records, and artwork release it"
# The address sanitizer records the stack of each allocation; exact unwinding is too slow for a million of them.
QUICK = {"ASAN_OPTIONS": "fast_unwind_on_malloc=1"}


@dataclasses.dataclass
class Row:
    """One fault. Every set of arguments is a separate case in a separate process."""
    area: str
    fault: str
    expected: str
    case: str
    arguments: list = dataclasses.field(default_factory=lambda: [[]])
    exit: int = 0  # a negative number is a signal, as in subprocess
    prints: tuple = (ALIVE,)  # lines that standard output must contain
    log: dict = dataclasses.field(default_factory=dict)  # text -> number of log lines that contain it
    limit: int = 20  # seconds
    alone: bool = False  # measures milliseconds, so no other case runs beside it
    environment: dict = dataclasses.field(default_factory=dict)


def segment(fault, kind, when, prints, *more):
    return Row("segments", fault, f"exception {when}", "object", [[kind, *more]], prints=(prints, ALIVE))


DECODING = [
    Row("decoding", "64 MiB of zeros in the battery signal", "dropped", "large-battery", [["zeros"]], limit=40),
    Row("decoding", "64 MiB in the battery signal: an unknown field, then the level",
        "delivered without the unknown field", "large-battery", [["unknown-field"]], limit=40),
    Row("decoding", "pairing array of 1,000,000 elements", "delivered byte for byte", "large-pairing", [["1000000"]],
        environment=QUICK),
]

SEGMENTS = [
    segment("empty object", "empty", "after 5 s", NEVER_FINISHED),
    segment("one byte", "one-byte", "after 5 s", NEVER_FINISHED),
    segment("zeros", "zeros", "after 5 s", NEVER_FINISHED),
    segment("half-initialized by a killed process", "half-made", "after 5 s", NEVER_FINISHED),
    segment("object with a valid state only", "state-only", "at once", OTHER_LAYOUT),
    segment("garbage", "garbage", "at once", "exception: *"),
    segment("FIFO", "fifo", "at once", NO_MEMORY),
    segment("directory", "directory", "at once", NO_MEMORY),
    segment("dangling link", "link-to-nowhere", "at once", "exception: *"),
    segment("link to itself", "link-to-itself", "at once", "exception: *"),
    segment("32-bit segment", "other-layout", "at once", OTHER_LAYOUT,
            "tests/layout/data/list-armhf-boost1.56.img.xz"),
    segment("layout that Boost ≥ 1.87 has by default", "other-layout", "at once",
            OTHER_LAYOUT, "tests/layout/data/list-x86_64-boost1.88.img.xz"),
    segment("unreadable object", "not-readable", "at once", "exception: *"),
    segment("own valid segment, mode 0444", "read-only", "at once: the library needs write access",
            "exception: *"),
    segment("another user's, mode 0644", "of-another-user",
            "at once: the library needs write access", "exception: *"),
    Row("segments", "`/dev/shm` is full", "exception at once", "full-device", [["4k"], ["12k"]],
        prints=("exception: segment *: no space left in /dev/shm", ALIVE)),
    Row("segments", "`/dev/shm` has room for the headers only", "attached; pages are allocated at first use",
        "full-device", [["64k"]], prints=("attached", ALIVE)),
    Row("segments", "`/dev/shm` fills up later, then `EapWrite()` needs new pages", "**SIGBUS**", "filled-later",
        exit=-signal.SIGBUS, prints=()),
    Row("segments", "valid segment of twice the size", "attached at its size", "object", [["larger"]],
        prints=("attached", ALIVE)),
    Row("segments", "of half the size", "attached at its size", "object", [["smaller"]],
        prints=("attached", ALIVE)),
    Row("segments", "header that another process keeps rewriting",
        "an empty or wrong page, from inside the segment", "rewritten-header", [["5000"]]),
    Row("segments", "service removes and recreates a segment in use", "the client keeps the old one",
        "recreated-segment"),
    Row("segments", "index lock held by a killed process", "exception after 10 s", "locked-names", limit=25),
    Row("segments", "memory lock held by a killed process, then `EapWrite()`", "exception after 10 s, no call",
        "locked-memory", limit=25),
    Row("segments", "segment truncated while it is mapped", "**SIGBUS**", "cut-while-mapped", exit=-signal.SIGBUS,
        prints=()),
]

SERVICE = [
    Row("service", "killed during a call, 200 times",
        "every call fails and is logged, 99 % within 5 ms", "killed-in-mid-call", [["200"]],
        log={"disconnected from message bus without replying": 200}, limit=60,
        alone=True),
    Row("service", "killed and restarted, 1,000 times",
        "calls succeed again within 100 ms; 100,000 events, each once", "restarted", [["1000", "100"]], limit=150,
        alone=True),
    Row("service", "stopped", "failure value after 25 s", "stopped",
        log={FAILED_CALL: 1}, limit=40),
    Row("service", "never replies", "failure value after 25 s", "no-reply",
        log={FAILED_CALL: 1}, limit=40),
    Row("service", "flood of 60,000 events", "each once and in order", "flood", [["60000"]],
        limit=70),
    Row("service", "calls and events without a pause, on one thread",
        "3,000 calls and 20,000 events per second of processor time, or two thirds of GDBus alone",
        "held-rates", [["5"]], limit=60, alone=True),
    Row("service", "bus killed while the main loop runs", "**GDBus terminates the process** with SIGTERM",
        "bus-killed-while-the-loop-runs", exit=-signal.SIGTERM, prints=()),
    Row("service", "bus killed, no main loop", "failure value at once", "bus-killed-without-a-loop",
        prints=("survived",), log={FAILED_CALL: 1}),
    Row("service", "bus killed, exit-on-close disabled by the application",
        "the process continues with failure values", "bus-killed-and-survived", prints=("survived",),
        log={FAILED_CALL: 1}),
    Row("service", "activated by the bus, fails at its first start",
        "**`InitInstance()` never returns**; an alarm ends the case", "activated-service-that-fails-first",
        exit=-signal.SIGALRM, prints=(), log={"retry->0": 1, "retry->1": 0}),
]

APPLICATION = [
    Row("application", "player destroyed with 1,000 events in flight", "none arrives",
        "destroyed-with-events-in-flight"),
    Row("application", "library unloaded with `dlclose()`", "it stays loaded; events and calls continue", "unloaded",
        [["build:unloading-application", "build:libipod.so.1"]]),
    Row("application", "commands from four threads", "each thread gets its own answers", "commands-from-four-threads",
        [["2000"]], limit=40),
    Row("application", "two applications at once", "both get each event once", "two-applications", [["2000"]],
        limit=40),
    Row("application", "`ipodctl doctor` while a killed process holds a lock",
        "reported within 8 s", "doctor-beside-a-held-lock", [["build:ipodctl"]],
        prints=("lists *error *it does not answer: its lock is held, or it was never finished",)),
]

# Memory cached by threads counts as used.
EXACT = {"GLIBC_TUNABLES": "glibc.malloc.tcache_count=0"}
MEMORY = [
    Row("memory", "4,000 calls of each family, answered", "text readers keep the reply, all others 0 bytes",
        "kept-by-a-call", limit=120, environment=EXACT),
    Row("memory", "answered with an error", KEEPS,
        "kept-by-a-failed-call", limit=120, environment=EXACT),
    Row("memory", "answered with another type", KEEPS,
        "kept-by-a-call-answered-with-another-type", limit=120, environment=EXACT),
    Row("memory", "no service", KEEPS,
        "kept-by-a-call-that-nobody-answers", limit=120, environment=EXACT),
]

ROWS = DECODING + SEGMENTS + SERVICE + APPLICATION + MEMORY
