"""The goals as data: the compared figures and their limits. `run-bench` fills in the figures."""

from collections import namedtuple

# figure: a function from Figures to a number; relation: "<=" or ">=".
Row = namedtuple("Row", "goal text figure relation limit")


class Figures:
    """The results of a run. Costs are medians in nanoseconds."""

    def __init__(self):
        self.contests = {}  # name -> variant -> {"p50", "p99", "calls"}
        self.inside = {}  # name -> processor time of one operation
        self.attachment = {}  # "first", "second" -> time to get the player
        self.growth = {}  # operation -> {"times", "allocations", "kilobytes"}
        self.instructions = {}  # operation -> instructions of one operation
        self.clients = {}  # "bare", "kit" -> {"proportional", "private"} memory in kilobytes
        self.peers = {}  # work -> peer -> nanoseconds
        self.lines = {}  # peer -> lines of code
        self.curves = {}  # what -> {"points": [[size, nanoseconds]], "exponent", "last"}

    def cost(self, contest, variant):
        return self.contests[contest][variant]["p50"]


def calls(contest, over="library", under="bare"):
    return lambda f: f.cost(contest, over) / f.cost(contest, under)


def inside(over, under, factor=1):
    return lambda f: f.inside[over] / (factor * f.inside[under])


def counted(over, under):
    return lambda f: f.instructions[over] / f.instructions[under]


def cost_per_name(f, size):
    contest = f"page copied {size}"
    return (f.cost(contest, "library") - f.cost(contest, "bare")) / size


def further_listener(f, cost, library, walk):
    return (cost(library % 100) - cost(library % 10)) / (cost(walk % 100) - cost(walk % 10))


def hundred_more(f, operation):
    """Returns the instructions for each of 100 further listeners."""
    return (f.instructions[f"{operation}-101"] - f.instructions[f"{operation}-1"]) / 100


def allocations_left(operation):
    return lambda f: f.growth[operation]["allocations"] / f.growth[operation]["times"]


def bytes_left(operation):
    return lambda f: 1024 * f.growth[operation]["kilobytes"] / f.growth[operation]["times"]


def growth_rows():
    for operation in ("call", "record", "event", "page", "artwork", "EapWrite"):
        yield Row(15, f"allocations left by one {operation}", allocations_left(operation), "<=", 0.001)
        yield Row(15, f"resident bytes left by one {operation}", bytes_left(operation), "<=", 4)


GOALS = [
    Row(1, "command without log line / bare call", calls("command without log line"), "<=", 1.02),
    Row(1, "command with one written log line / bare call", calls("command with one log line"), "<=", 1.05),
    Row(2, "EapInit / call with a variant built before", calls("EapInit"), "<=", 1.04),
    Row(2, "SetButtonStatus / call with a variant built before", calls("SetButtonStatus"), "<=", 1.03),
    Row(3, "GetCurrentMediaInfo / the call undecoded", calls("GetCurrentMediaInfo"), "<=", 1.04),
    Row(3, "iterator / extracting 1,040 bytes", inside("ExtractIterator", "ExtractLibrary"), ">=", 50),
    Row(3, "iterator / building 512 bytes", inside("BuildIterator", "BuildLibrary"), ">=", 50),
    Row(4, "copying 100 names / from packed names", inside("NamesLibrary/100", "NamesPacked/100"), "<=", 1.15),
    Row(4, "copying 1,000 names / from packed names", inside("NamesLibrary/1000", "NamesPacked/1000"), "<=", 1.15),
    Row(4, "copying 10,000 names / from packed names", inside("NamesLibrary/10000", "NamesPacked/10000"), "<=", 1.15),
    Row(5, "page of 100 / bare call", calls("page copied 100"), "<=", 1.10),
    Row(5, "page of 1,000 / bare call", calls("page copied 1000"), "<=", 1.40),
    Row(6, "1,000 names over the bus / page", calls("page delivered 1000", "bus", "library"), ">=", 3),
    Row(6, "10,000 names over the bus / page", calls("page delivered 10000", "bus", "library"), ">=", 8),
    Row(7, "a name of 10,000 / of 1,000, copying", inside("NamesLibrary/10000", "NamesLibrary/1000", 10), "<=", 1.5),
    Row(7, "a name of 10,000 / of 1,000, whole page",
        lambda f: cost_per_name(f, 10000) / cost_per_name(f, 1000), "<=", 1.5),
    Row(8, "image of 100 KB out of the segment / raw copy",
        inside("ArtworkLibrary/100", "ArtworkRaw/100"), "<=", 1.15),
    Row(8, "image of 300 KB out of the segment / raw copy",
        inside("ArtworkLibrary/300", "ArtworkRaw/300"), "<=", 1.15),
    Row(8, "image of 900 KB out of the segment / raw copy",
        inside("ArtworkLibrary/900", "ArtworkRaw/900"), "<=", 1.15),
    Row(8, "artwork query of 100 KB / bare call", calls("artwork copied 100"), "<=", 1.08),
    Row(8, "100 KB over the bus / artwork query", calls("artwork delivered 100", "bus", "library"), ">=", 1.8),
    Row(8, "900 KB over the bus / artwork query", calls("artwork delivered 900", "bus", "library"), ">=", 5),
    Row(9, "artwork event, 100 KB, 1 listener / 2 raw copies",
        inside("EventLibrary/100/1", "EventRaw/100/1"), "<=", 1.25),
    Row(9, "artwork event, 100 KB, 10 listeners / 11 raw copies",
        inside("EventLibrary/100/10", "EventRaw/100/10"), "<=", 1.25),
    Row(9, "artwork event, 900 KB, 1 listener / 2 raw copies",
        inside("EventLibrary/900/1", "EventRaw/900/1"), "<=", 1.25),
    Row(10, "EapWrite fill of 10 KB / memcpy", inside("FillLibrary/10", "FillRaw/10"), "<=", 1.25),
    Row(10, "EapWrite fill of 100 KB / memcpy", inside("FillLibrary/100", "FillRaw/100"), "<=", 1.10),
    Row(10, "EapWrite fill of 300 KB / memcpy", inside("FillLibrary/300", "FillRaw/300"), "<=", 1.10),
    Row(10, "EapWrite fill of 900 KB / memcpy", inside("FillLibrary/900", "FillRaw/900"), "<=", 1.10),
    Row(10, "EapWrite fill of 100 KB from an empty vector / memcpy",
        inside("FillEmptyLibrary/100/manual_time", "FillEmptyRaw/100/manual_time"), "<=", 3.5),
    Row(10, "EapWrite of 100 KB / bare call", calls("EapWrite 100"), "<=", 1.05),
    Row(11, "event with 10 listeners / raw delivery", calls("event", "library 10"), "<=", 1.03),
    Row(11, "event with 100 listeners / raw delivery", calls("event", "library 100"), "<=", 1.05),
    Row(11, "a further listener / plain walk, in a loop",
        lambda f: further_listener(f, f.inside.__getitem__, "DispatchLibrary/%d", "DispatchWalk/%d"), "<=", 1.5),
    Row(11, "a further listener / plain walk, in an event",
        lambda f: further_listener(f, lambda v: f.cost("event", v), "library %d", "walk %d"), "<=", 1.5),
    Row(12, "InitInstance / bare proxy and connections", calls("InitInstance"), "<=", 1.15),
    Row(12, "second attachment / first", lambda f: f.attachment["second"] / f.attachment["first"], "<=", 0.05),
    Row(13, "CarPlayConnectStatusNotify / synchronous call",
        calls("CarPlayConnectStatusNotify", "library", "synchronous"), "<=", 0.25),
    *growth_rows(),
]

# Programs from start to exit, and a session until it is ready. `run-bench --startup`
STARTUP_GOALS = [
    Row(16, "program that links the core / that links GIO", calls("linked", "core", "gio"), "<=", 1.2),
    Row(16, "program that links the kit / that links GIO", calls("linked", "kit", "gio"), "<=", 1.3),
    Row(17, "ipodctl status / busctl call", calls("status", "ipodctl", "busctl"), "<=", 1.5),
    Row(18, "memory of a kit session / of a bare client",
        lambda f: f.clients["kit"]["proportional"] / f.clients["bare"]["proportional"], "<=", 1.5),
    Row(19, "session ready / the same requests", calls("session ready", "kit"), "<=", 1.3),
]

# In-process operations: the same limits, for instructions instead of time.
INSTRUCTION_GOALS = [
    Row(3, "iterator / extracting 1,040 bytes", counted("extract-iterator", "extract-library"), ">=", 50),
    Row(3, "iterator / building 512 bytes", counted("build-iterator", "build-library"), ">=", 50),
    Row(4, "copying 100 names / from packed names", counted("names-library-100", "names-packed-100"), "<=", 1.15),
    Row(4, "copying 1,000 names / from packed names", counted("names-library-1000", "names-packed-1000"), "<=", 1.15),
    Row(8, "image of 100 KB out of the segment / raw copy", counted("artwork-library", "artwork-raw"), "<=", 1.15),
    Row(9, "artwork event, 100 KB, 1 listener / 2 raw copies",
        lambda f: f.instructions["artwork-event"] / (2 * f.instructions["artwork-raw"]), "<=", 1.25),
    Row(10, "EapWrite fill of 10 KB / memcpy", counted("fill-library-10", "fill-raw-10"), "<=", 1.25),
    Row(10, "EapWrite fill of 100 KB / memcpy", counted("fill-library-100", "fill-raw-100"), "<=", 1.10),
    Row(10, "EapWrite fill of 100 KB from an empty vector / memcpy",
        counted("fill-empty-library-100", "fill-raw-100"), "<=", 3.5),
    Row(11, "instructions of an event with 1 listener, beyond GDBus",
        lambda f: f.instructions["status-event-1"], "<=", 600),
    Row(11, "instructions of a further listener, beyond its call",
        lambda f: hundred_more(f, "status-event") - hundred_more(f, "status-calls"), "<=", 40),
]

# Start-up and the kit, in instructions of the whole process.
INSTRUCTION_GOALS += [
    Row(16, "program that links the core / that links GIO", counted("link-core", "link-gio"), "<=", 1.38),
    Row(16, "program that links the kit / that links GIO", counted("link-kit", "link-gio"), "<=", 1.5),
    Row(20, "kit: event to state callback / raw delivery", counted("event-kit", "event-bare"), "<=", 1.1),
    Row(20, "kit: request / asynchronous call", counted("request-kit", "request-bare"), "<=", 1.05),
]

# The same counts for an ARM build, for the operations of goal 14.
ARM_GOALS = [row._replace(goal=14, text=f"ARM: {row.text}") for row in INSTRUCTION_GOALS if row.goal in (3, 4, 8, 10)]


def growth_goals(figures):
    return [Row(21, f"exponent of {what}", lambda f, what=what: f.curves[what]["exponent"], "<=", 1.1)
            for what in figures.curves]
