"""Draws a run over time as SVG: calls, events, transferred bytes, resident memory, and the faults below."""

WIDTH, ROW, LEFT, RIGHT, TOP, GAP = 760, 96, 78, 20, 40, 26
COLORS = {"kill": "#c4421a", "stop": "#1769aa", "errors": "#b8860b", "nonsense": "#7b3fa0", "flood": "#2e7d32",
           "scribble": "#555555", "silence": "#000000"}


def rates(samples, name):
    """Returns (second, change per second) between samples."""
    pairs = zip(samples, samples[1:])
    return [(b["second"], (b[name] - a[name]) / (b["second"] - a["second"])) for a, b in pairs]


def rows(samples):
    yield "calls a second", [rates(samples, "calls")]
    yield "events a second", [rates(samples, "events")]
    yield "moved, MB", [[(s["second"], s["moved"] / 1e6) for s in samples]]
    yield "resident, MiB", [[(s["second"], s["rss"][i] / 2**20) for s in samples] for i in (0, 1)]


def line(points, x, y):
    path = " ".join(f"{x(a):.1f},{y(b):.1f}" for a, b in points)
    return f'<polyline points="{path}"/>'


def panel(index, title, lines, x):
    top = TOP + index * (ROW + GAP)
    largest = max((value for points in lines for _, value in points), default=0) or 1
    def y(value):
        return top + ROW - ROW * value / largest
    yield f'<text x="{LEFT}" y="{top - 6}">{title}</text>'
    for share in (0, 1):
        height = y(share * largest)
        yield f'<path class="grid" d="M{LEFT} {height:.1f}H{WIDTH - RIGHT}"/>'
        yield f'<text x="{LEFT - 6}" y="{height + 4:.1f}" text-anchor="end">{share * largest:,.0f}</text>'
    yield from (line(points, x, y) for points in lines)


def faults(log, x, top):
    for fault in log:
        place = x(fault["second"])
        yield f'<path d="M{place:.1f} {top}v14" stroke="{COLORS[fault["kind"]]}" stroke-width="1.5"/>'
    for i, (kind, color) in enumerate(COLORS.items()):
        left = LEFT + 92 * i
        yield f'<rect x="{left}" y="{top + 44}" width="12" height="4" fill="{color}"/>'
        yield f'<text x="{left + 17}" y="{top + 50}">{kind}</text>'


def draw(run):
    samples = run["samples"]
    length = max((sample["second"] for sample in samples), default=1)
    def x(second):
        return LEFT + (WIDTH - LEFT - RIGHT) * second / length
    panels = list(rows(samples))
    bottom = TOP + len(panels) * (ROW + GAP)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {bottom + 62}" font-family="sans-serif" '
             'font-size="12">',
             "<style>.grid{stroke:#ddd}polyline{fill:none;stroke:#1769aa;stroke-width:1.2}</style>",
             f'<rect width="{WIDTH}" height="{bottom + 62}" fill="#fff"/>',
             f'<text x="{LEFT}" y="16" font-size="13">{run["figures"]["faults_survived"]} of '
             f'{run["figures"]["faults_injected"]} faults survived; {run["date"]}</text>']
    for index, (title, lines) in enumerate(panels):
        parts += panel(index, title, lines, x)
    parts += faults(run["fault_log"], x, bottom - 12)
    parts.append(f'<text x="{LEFT}" y="{bottom + 18}">faults, over {length:.0f} seconds</text>')
    return "\n".join([*parts, "</svg>", ""])
