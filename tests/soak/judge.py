"""Evaluates a run: computes figures from counters and samples, and reports shortfalls."""

# A failed call leaks its error (docs/oddities.md); docs/reliability.md gives the measured bytes.
KEPT_BY_A_FAILED_CALL = 200
LARGEST_HEAP_SLOPE = 64  # KiB per minute allocated beyond that
# KiB of resident memory per minute beyond that: leaked errors are between freed event queues, so not all of that memory
# returns to the system.
LARGEST_RESIDENT_SLOPE = 2048
BLOCK = 5  # samples, of which the smallest counts: a short queue of events is not growth
MOST_DESCRIPTORS = 2  # more than in the first half: each process occasionally has one more
LONGEST_RECOVERY = 1000  # milliseconds; on an idle system, the fault matrix requires 100
SILENCE = (24000, 27000)  # milliseconds: the limit of the bus
SHORTEST_FOR_SLOPES = 2  # minutes; in shorter runs, filling pools look like growth


def slope(points):
    """Least squares, per minute; 0 for fewer than two points."""
    count = len(points)
    if count < 2:
        return 0.0
    middle_x = sum(x for x, _ in points) / count
    middle_y = sum(y for _, y in points) / count
    spread = sum((x - middle_x) ** 2 for x, _ in points)
    return 60 * sum((x - middle_x) * (y - middle_y) for x, y in points) / spread if spread else 0.0


def second_half(samples):
    """Returns the second half: pools and queues reach their size in the first."""
    return samples[len(samples) // 2:]


def first_half(samples):
    return samples[:len(samples) // 2]


def most_descriptors(samples):
    return max((sum(sample["descriptors"]) for sample in samples), default=0)


def slope_of(samples, name):
    """Returns the sum over all applications."""
    def value(sample):
        return sum(sample[name]) if isinstance(sample[name], list) else sample[name]
    points = [(sample["second"], value(sample)) for sample in second_half(samples)]
    blocks = [points[i:i + BLOCK] for i in range(0, len(points), BLOCK)]
    return slope([(block[0][0], min(value for _, value in block)) for block in blocks])


def figures(ledger, faults, samples, seconds):
    apps = {name: sum(ledger.of_applications(name)) for name in ("calls", "failed", "wrong", "lost", "doubled")}
    tally = faults.tally.values()
    return {
        "minutes": round(seconds / 60, 2),
        **apps,
        "events_sent": ledger.get("service", "events"),
        "events_received": sum(ledger.of_applications("events")),
        "bytes_moved": ledger.everywhere("moved"),
        "bytes_changed": ledger.everywhere("changed"),
        "faults_injected": sum(row["injected"] for row in tally),
        "faults_survived": sum(row["survived"] for row in tally),
        "worst_recovery_ms": max(faults.tally[kind]["worst_ms"] for kind in ("kill", "stop")),
        "heap_kib_per_minute": round(slope_of(samples, "heap") / 1024, 1),
        "rss_kib_per_minute": round(slope_of(samples, "rss") / 1024, 1),
        "demanded_kib_per_minute": round(slope_of(samples, "failed") * KEPT_BY_A_FAILED_CALL / 1024, 1),
        "descriptors_per_minute": round(slope_of(samples, "descriptors"), 2),
        "descriptors_more": most_descriptors(second_half(samples)) - most_descriptors(first_half(samples)),
    }


def shortfalls(found, tally, ends, patience=1):
    """Yields a description of each shortfall of a run."""
    def check(holds, text):
        return [] if holds else [text]
    silence = tally["silence"]
    return [
        *check(ends == [0, 0], f"the applications ended with {ends}"),
        *check(found["events_received"] > 0 and found["bytes_moved"] > 0, "nothing arrived"),
        *(f"{found[name]} {name}" for name in ("wrong", "lost", "doubled", "bytes_changed") if found[name]),
        *check(found["faults_survived"] == found["faults_injected"] > 0, "not every fault was survived"),
        *check(found["worst_recovery_ms"] <= patience * LONGEST_RECOVERY, f"a recovery took {found['worst_recovery_ms']} ms"),
        *check(not silence["survived"] or SILENCE[0] <= silence["worst_ms"] <= SILENCE[1],
               f"a call without an answer took {silence['worst_ms']} ms"),
        *(growth(found) if found["minutes"] >= SHORTEST_FOR_SLOPES else []),
    ]


def growth(found):
    for name, limit in (("heap", LARGEST_HEAP_SLOPE), ("rss", LARGEST_RESIDENT_SLOPE)):
        grown = found[f"{name}_kib_per_minute"] - found["demanded_kib_per_minute"]
        if grown > limit:
            yield f"{name} grows by {grown:.0f} KiB a minute that failed calls do not explain"
    if found["descriptors_more"] > MOST_DESCRIPTORS:
        yield "descriptors grow"


def result(ledger, faults, samples, ends, seconds, patience):
    found = figures(ledger, faults, samples, seconds)
    return {"figures": found, "faults": faults.tally, "shortfalls": shortfalls(found, faults.tally, ends, patience),
            "fault_log": faults.log, "samples": samples}


def report(run):
    found = run["figures"]
    yield f"{run['machine']}; {run['date']}; {found['minutes']} minutes"
    for kind, row in run["faults"].items():
        if row["injected"]:
            yield f"  {kind}: {row['survived']} of {row['injected']} survived, worst {row['worst_ms']:,.1f} ms"
    yield (f"  calls: {found['calls']:,}, of which {found['failed']:,} failed as documented and "
           f"{found['wrong']} were answered wrongly")
    yield (f"  events: {found['events_sent']:,} sent to two applications, {found['events_received']:,} received, "
           f"{found['lost']} lost, {found['doubled']} duplicated")
    yield f"  bytes: {found['bytes_moved']:,} moved, {found['bytes_changed']} changed"
    yield (f"  growth a minute, of both: {found['heap_kib_per_minute']} KiB of heap, of which failed calls keep "
           f"{found['demanded_kib_per_minute']}; {found['rss_kib_per_minute']} KiB resident; "
           f"{found['descriptors_per_minute']} descriptors")
    yield from (f"FALLS SHORT: {text}" for text in run["shortfalls"])
    yield (f"{found['faults_survived']} of {found['faults_injected']} faults survived, worst recovery "
           f"{found['worst_recovery_ms']:.0f} ms, {len(run['shortfalls'])} shortfalls")
