"""The fault matrix: the injected faults, what the contract says, and the expected outcome."""

import dataclasses
import signal

ALIVE = "alive"
NEVER_FINISHED = "exception: segment ListVectorSharedMemory: it exists but was never finished by its creator"
OTHER_LAYOUT = "exception: segment ListVectorSharedMemory: its layout is not the one of this build"
NO_MEMORY = "exception: segment ListVectorSharedMemory: its name is taken by something that is no shared memory"
FAILED_CALL = "Failed to call dbus method"
KEEPS = "commands leak the error; pages, records, and artwork release it"
# The address sanitizer records the stack of each allocation; exact unwinding is too slow for a million of them.
QUICK = {"ASAN_OPTIONS": "fast_unwind_on_malloc=1"}
SIZES = ["0", "1", "15", "16", "17", "1039", "1040", "1041", "65535", "65536", "65537", "70000", "1048576"]
INNER_TYPES = ["'text'", "[1, 2, 3]", "(1, 'x')", "{'a': <1>}", "byte 7", "[true]", "nested-1", "nested-30",
"nested-60"]


@dataclasses.dataclass
class Row:
    """One fault. Every set of arguments is a separate case and process."""
    area: str
    fault: str
    contract: str
    expected: str
    case: str
    arguments: list = dataclasses.field(default_factory=lambda: [[]])
    exit: int = 0  # a negative number is a signal, as in subprocess
    says: tuple = (ALIVE,)  # required lines of standard output
    log: dict = dataclasses.field(default_factory=dict)  # text: number of log lines that contain it
    limit: int = 20  # seconds
    alone: bool = False  # measures milliseconds, so no other case runs concurrently
    environment: dict = dataclasses.field(default_factory=dict)


def each(values):
    return [[value] for value in values]


def segment(fault, kind, expected, says, *more):
    return Row("segments", fault, "an exception, never a hang; commands work, shared data does not", expected, "object",
               [[kind, *more]], says=(says, ALIVE))


DECODING = [
    Row("decoding", "track record of 0 bytes to 1 MiB, by signal", "the record is 1040 bytes",
        "missing bytes are zero, surplus bytes are ignored", "track-by-signal", each(SIZES)),
    Row("decoding", "track record of 0 bytes to 1 MiB, by reply", "the record is 1040 bytes",
        "missing bytes are zero, surplus bytes are ignored", "track-by-reply", each(SIZES)),
    Row("decoding", "artwork head of 0 bytes to 1 MiB, by signal", "the record is 16 bytes",
        "missing bytes are zero, surplus bytes are ignored", "artwork-by-signal", each(SIZES)),
    Row("decoding", "artwork head of 0 bytes to 1 MiB, by reply", "the record is 16 bytes",
        "missing bytes are zero, surplus bytes are ignored", "artwork-by-reply", each(SIZES)),
    Row("decoding",
        "another type inside the variant, by signal: s, ai, a structure, a dictionary, y, ab, 60 nested variants",
        "every variant holds ay", "records of zeros; calls and battery are dropped", "inner-type-by-signal",
        each(INNER_TYPES)),
    Row("decoding", "another type inside the variant, by reply", "every variant holds ay", "records of zeros",
        "inner-type-by-reply", each(INNER_TYPES)),
    Row("decoding", "no variant: the call failed", "empty strings and zeros", "the same, and one line per call",
        "no-variant", log={FAILED_CALL: 2}),
    Row("decoding", "track texts without NUL", "a text continues to the first NUL",
        "it ends with the record at the latest",
        "slot-without-nul"),
    Row("decoding", "64 MiB in the battery signal, all zeros", "unparsable data is dropped", "dropped", "large-battery",
        [["zeros"]], limit=40),
    Row("decoding", "64 MiB in the battery signal, an unknown field before the level", "unknown fields are skipped",
        "delivered", "large-battery", [["unknown-field"]], limit=40),
    Row("decoding", "pairing array of 0 and of 1,000,000 elements", "any length", "delivered byte for byte", "pairing",
        each(["0", "1000000"]), environment=QUICK),
    Row("decoding", "phone call: empty, unparsable, truncated, groups 10,000 deep", "unparsable data is dropped",
        "dropped", "phone-message", each(["empty", "unparsable", "truncated", "deeply-nested"])),
    Row("decoding", "phone call: field of another wire type, number outside its enumeration", "the field is absent",
        "delivered without it", "phone-message", each(["wrong-wire-type", "unknown-enum"])),
    Row("decoding", "phone call: text that is not UTF-8", "texts are passed byte for byte", "delivered unchanged",
        "phone-message", each(["invalid-utf8"])),
    Row("decoding", "phone call: %s and %n in a text", "texts are data", "delivered and logged unchanged",
        "phone-message", each(["percent"]), log={"RemoteID:%s%n%s,": 1}),
    Row("decoding", "0, 127, 128, and 255 in every signal with a byte", "the number is passed unchanged", "delivered",
        "byte-signals", each(["0", "127", "128", "255"])),
    Row("decoding", "replies and all twenty signals of the wrong signature", "calls fail, signals are dropped by GDBus",
        "failure values, one line per call, no event", "wrong-signature", log={FAILED_CALL: 5}),
]

SEGMENTS = [
    segment("empty object", "empty", "exception after 5 s", NEVER_FINISHED),
    segment("object of one byte", "one-byte", "exception after 5 s", NEVER_FINISHED),
    segment("object filled with zeros", "zeros", "exception after 5 s", NEVER_FINISHED),
    segment("partly initialized object: its creator died", "half-made", "exception after 5 s", NEVER_FINISHED),
    segment("object with only a valid state", "state-only", "exception at once", OTHER_LAYOUT),
    segment("garbage", "garbage", "exception at once", "exception: *"),
    segment("FIFO", "fifo", "exception at once", NO_MEMORY),
    segment("directory", "directory", "exception at once", NO_MEMORY),
    segment("dangling link", "link-to-nowhere", "exception at once", "exception: *"),
    segment("link to itself", "link-to-itself", "exception at once", "exception: *"),
    segment("segment of a 32-bit process", "other-layout", "exception at once", OTHER_LAYOUT,
            "tests/layout/data/list-armhf-boost1.56.img.xz"),
    segment("segment in the default layout of Boost 1.87 and newer", "other-layout", "exception at once",
            OTHER_LAYOUT, "tests/layout/data/list-x86_64-boost1.88.img.xz"),
    segment("object without read permission", "not-readable", "exception at once", "exception: *"),
    segment("own valid segment, mode 0444", "read-only", "exception at once: the library must be able to write",
            "exception: *"),
    segment("valid segment of another user, mode 0644", "of-another-user",
            "exception at once: the library must be able to write", "exception: *"),
    Row("segments", "`/dev/shm` is full", "an exception, never a hang; commands work, shared data does not",
        "exception at once", "full-device", [["4k"], ["12k"]],
        says=("exception: segment *: there is no space for it", ALIVE)),
    Row("segments", "`/dev/shm` has space for the headers only", "pages are allocated on first use", "attached",
        "full-device", [["64k"]], says=("attached", ALIVE)),
    Row("segments", "`/dev/shm` fills up later, then `EapWrite()` needs new pages",
        "**fatal**: there are no pages", "SIGBUS", "filled-later", exit=-signal.SIGBUS, says=()),
    Row("segments", "valid segment of twice the size", "attached with its own size", "attached", "object",
        [["larger"]], says=("attached", ALIVE)),
    Row("segments", "valid segment of half the size", "attached with its own size", "attached", "object",
        [["smaller"]], says=("attached", ALIVE)),
    Row("segments", "vector header of random numbers", "no reads outside the segment", "an empty or a wrong page",
        "foreign-header", [["5000"]]),
    Row("segments", "vector header that another process rewrites concurrently", "no reads outside the segment",
        "an empty or a wrong page", "rewritten-header", [["5000"]]),
    Row("segments", "entries without NUL", "a name ends after 256 bytes", "256 bytes", "unterminated-names"),
    Row("segments", "service removes and recreates a live segment", "attached once per process",
        "the client keeps the old one", "recreated-segment"),
    Row("segments", "lock of the names held by a killed process", "times out after 10 s", "exception after 10 s",
        "locked-names", limit=25),
    Row("segments", "lock of the memory held by a killed process, then `EapWrite()`", "times out after 10 s",
        "exception after 10 s, no call", "locked-memory", limit=25),
    Row("segments", "segment truncated while mapped", "**fatal**: the pages no longer exist", "SIGBUS",
        "cut-while-mapped", exit=-signal.SIGBUS, says=()),
]

SERVICE = [
    Row("service", "absent", "`InitInstance()` returns false", "one warning; calls work once the service appears",
        "absent",
        log={"Owner Name is nullptr": 1, FAILED_CALL: 1}),
    Row("service", "late", "the application tries again", "`InitInstance()` then returns true, events arrive once",
        "late",
        log={"Owner Name is nullptr": 1, "Owner Name: ": 1}),
    Row("service", "killed during a call, 200 times", "the call fails and is logged",
        "every call ends, 99 % within 5 ms", "killed-in-mid-call", [["200"]],
        log={"disconnected from message bus without replying": 200}, limit=60,
        alone=True),
    Row("service", "killed and restarted, 1,000 times", "proxy and subscription stay",
        "calls succeed within 100 ms; 100,000 events arrive once each", "restarted", [["1000",
        "100"]], limit=150, alone=True),
    Row("service", "stopped", "GDBus times out after 25 s", "failure value after 25 s", "stopped",
        log={FAILED_CALL: 1}, limit=40),
    Row("service", "never replies", "GDBus times out after 25 s", "failure value after 25 s", "no-reply",
        log={FAILED_CALL: 1}, limit=40),
    Row("service", "error reply with %s and %n in its text", "the call fails and is logged", "failure value",
        "error-reply", log={"Reason: GDBus.Error:com.example.Broken: %s%n is broken.": 1}),
    Row("service", "second process that claims the name and sends signals", "signals count only from the owner",
        "its signals are dropped", "second-owner"),
    Row("service", "flood of 60,000 events", "events queue up", "each event arrives once and in order",
        "flood", [["60000"]],
        limit=70),
    Row("service", "calls and events without a pause, on one thread", "every call is answered, every event arrives",
        "3,000 calls and 20,000 events per second of CPU time, or two thirds of the rate of GDBus alone",
        "held-rates", [["5"]], limit=60, alone=True),
    Row("service", "bus killed while the main loop runs", "**GDBus ends the process**", "SIGTERM",
        "bus-killed-while-the-loop-runs", exit=-signal.SIGTERM, says=()),
    Row("service", "bus killed, no main loop", "calls fail", "failure value at once", "bus-killed-without-a-loop",
        says=("survived",), log={FAILED_CALL: 1}),
    Row("service", "bus killed, exit-on-close disabled by the application", "calls fail",
        "the process continues with failure values",
        "bus-killed-and-survived", says=("survived",), log={FAILED_CALL: 1}),
    Row("service", "no bus", "`InitInstance()` returns false after seven attempts", "seven lines within 100 ms",
        "no-bus",
        says=("survived",), log={"Failed to create proxy. Reason: ": 7}, alone=True),
    Row("service", "activated by the bus, fails at its first start",
        "**success after a failure does not end the loop**",
        "`InitInstance()` never returns: ended by the case's alarm", "activated-service-that-fails-first",
        exit=-signal.SIGALRM, says=(), log={"retry->0": 1, "retry->1": 0}),
]

APPLICATION = [
    Row("application", "listener removes itself", "allowed", "receives one event, the others two", "removes-itself"),
    Row("application", "listener removes others", "allowed", "those behind it miss the event", "removes-another"),
    Row("application", "listener adds others", "allowed", "those behind it get the event, those before it the next",
        "adds-another"),
    Row("application", "listener throws, event called by the application", "the exception propagates",
        "it propagates and the lock is released", "throws-through-the-operation"),
    Row("application", "listener throws out of the main loop", "listeners do not throw",
        "it reaches the caller of the loop, and the lock is released", "throws-out-of-the-loop"),
    Row("application", "listener blocks", "events are queued", "each arrives once and in order", "blocks"),
    Row("application", "listener calls a command", "allowed", "answered", "calls-a-command"),
    Row("application", "destroyed with 1,000 events in flight", "dropped", "none arrives",
        "destroyed-with-events-in-flight"),
    Row("application", "destroyed and built again, 50 times", "events for the old player are dropped",
        "each event arrives once", "destroyed-and-built-again", [["50"]]),
    Row("application", "library unloaded with `dlclose()`", "it stays loaded", "events and calls continue",
        "unloaded", [["build:unloading-application", "build:libipod.so.1"]]),
    Row("application", "commands before `InitInstance()`", "failure values; GLib warns, nothing is logged",
        "failure values", "commands-before-init-instance", log={FAILED_CALL: 0}),
    Row("application", "commands from four threads", "allowed", "every thread gets its own answers",
        "commands-from-four-threads", [["2000"]], limit=40),
    Row("application", "two applications at once", "signals are broadcast", "both get each event once",
        "two-applications", [["2000"]], limit=40),
    Row("application", "accessory payload of the largest size, and one byte more",
        "a payload that does not fit throws, and no call is made", "sent; `bad_alloc`", "largest-payload"),
    Row("application", "`ipodctl doctor` beside a lock that a killed process holds", "a probe cannot hang the caller",
        "reported within 8 s", "doctor-beside-a-held-lock", [["build:ipodctl"]],
        says=("lists *error *it does not answer: its lock is held, or it was never finished",)),
]

# Memory in thread caches looks used.
EXACT = {"GLIBC_TUNABLES": "glibc.malloc.tcache_count=0"}
MEMORY = [
    Row("memory", "4,000 calls of each family, answered", "text readers leak the reply",
        "they do; all others leak 0 bytes",
        "kept-by-a-call", limit=120, environment=EXACT),
    Row("memory", "4,000 calls of each family, answered with an error", KEEPS, "as required by the contract",
        "kept-by-a-failed-call", limit=120, environment=EXACT),
    Row("memory", "4,000 calls of each family, answered with another type", KEEPS, "as required by the contract",
        "kept-by-a-call-answered-with-another-type", limit=120, environment=EXACT),
    Row("memory", "4,000 calls of each family, without a service", KEEPS, "as required by the contract",
        "kept-by-a-call-that-nobody-answers", limit=120, environment=EXACT),
]

ROWS = DECODING + SEGMENTS + SERVICE + APPLICATION + MEMORY
