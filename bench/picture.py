"""Draws cost against size as SVG: pages, artwork, and accessory writes, through shared memory and over the bus."""

import math

WIDTH, HEIGHT = 360, 300
LEFT, RIGHT, TOP, BOTTOM = 62, 16, 44, 48
MICROSECONDS = (50, 10000)
COLORS = {"library": "#1769aa", "bus": "#c4421a", "bare": "#7a7a7a"}
LABELS = {"library": "through shared memory", "bus": "everything over the bus", "bare": "the bare call"}


class Scale:
    """A logarithmic mapping from values to pixels."""

    def __init__(self, values, begin, end):
        self.low, self.high = math.log10(min(values)), math.log10(max(values))
        self.begin, self.end = begin, end

    def __call__(self, value):
        share = (math.log10(value) - self.low) / (self.high - self.low)
        return self.begin + share * (self.end - self.begin)

    def ticks(self):
        return [10**power for power in range(math.ceil(self.low), math.floor(self.high) + 1)]


def curves(contests, kind, variants):
    """Returns variant -> [(size, microseconds)]; kind is the comparison's name without the size."""
    sizes = sorted(int(name.rsplit(" ", 1)[1]) for name in contests if name.rsplit(" ", 1)[0] == kind)
    return {v: [(s, contests[f"{kind} {s}"][v]["p50"] / 1000) for s in sizes] for v in variants}


def text(x, y, content, anchor="middle", extra=""):
    return f'<text x="{x:.0f}" y="{y:.0f}" text-anchor="{anchor}" {extra}>{content}</text>'


def axes(x, y, unit):
    for tick in x.ticks():
        yield f'<path class="grid" d="M{x(tick):.1f} {TOP}V{HEIGHT - BOTTOM}"/>'
        yield text(x(tick), HEIGHT - BOTTOM + 16, f"{tick:,}")
    for tick in y.ticks():
        yield f'<path class="grid" d="M{LEFT} {y(tick):.1f}H{WIDTH - RIGHT}"/>'
        yield text(LEFT - 6, y(tick) + 4, f"{tick:,}", "end")
    yield text((LEFT + WIDTH - RIGHT) / 2, HEIGHT - 10, unit)
    middle = (TOP + HEIGHT - BOTTOM) // 2
    yield text(14, middle, "microseconds", extra=f'transform="rotate(-90 14 {middle})"')


def panel(title, unit, lines, offset):
    points = [point for line in lines.values() for point in line]
    x = Scale([p[0] for p in points], LEFT, WIDTH - RIGHT)
    y = Scale(MICROSECONDS, HEIGHT - BOTTOM, TOP)
    yield f'<g transform="translate({offset} 0)">'
    yield text(WIDTH / 2, 24, title, extra='class="title"')
    yield from axes(x, y, unit)
    for variant, line in lines.items():
        path = " ".join(f"{x(size):.1f},{y(cost):.1f}" for size, cost in line)
        yield f'<polyline points="{path}" stroke="{COLORS[variant]}"/>'
        for size, cost in line:
            yield f'<circle cx="{x(size):.1f}" cy="{y(cost):.1f}" r="3" fill="{COLORS[variant]}"/>'
    yield "</g>"


def legend():
    for i, (variant, label) in enumerate(LABELS.items()):
        x = LEFT + i * 240
        yield f'<rect x="{x}" y="{HEIGHT + 4}" width="14" height="4" fill="{COLORS[variant]}"/>'
        yield text(x + 20, HEIGHT + 10, label, "start")


def draw(contests):
    panels = [
        ("Page of names", "names", curves(contests, "page delivered", ("library", "bus"))),
        ("Artwork", "KB", curves(contests, "artwork delivered", ("library", "bus"))),
        ("Accessory write", "KB", curves(contests, "EapWrite", ("library", "bus", "bare"))),
    ]
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {3 * WIDTH} {HEIGHT + 24}"',
        'font-family="sans-serif" font-size="12">',
        "<style>.grid{stroke:#ddd}.title{font-size:15px;font-weight:bold}polyline{fill:none;stroke-width:2}</style>",
        f'<rect width="{3 * WIDTH}" height="{HEIGHT + 24}" fill="white"/>',
    ]
    for i, (title, unit, lines) in enumerate(panels):
        parts.extend(panel(title, unit, lines, i * WIDTH))
    return "\n".join([*parts, *legend(), "</svg>"]) + "\n"


GROWTH_COLORS = ("#1769aa", "#c4421a", "#2e7d32", "#7b1fa2", "#b8860b", "#00838f", "#7a7a7a", "#ad1457")


def draw_growth(curves):
    """Draws all curves in one panel, each relative to its smallest size: a linear cost rises like the gray line."""
    lines = {what: [(size / each["points"][0][0], cost / each["points"][0][1]) for size, cost in each["points"]]
             for what, each in curves.items()}
    largest = max(max(point) for line in lines.values() for point in line)
    x, y = Scale((1, largest), LEFT, 2 * WIDTH - RIGHT), Scale((1, largest), 2 * HEIGHT - BOTTOM, TOP)
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {2 * WIDTH} {2 * HEIGHT}"',
        'font-family="sans-serif" font-size="12">',
        "<style>polyline{fill:none;stroke-width:2}</style>",
        f'<rect width="{2 * WIDTH}" height="{2 * HEIGHT}" fill="white"/>',
        text(WIDTH, 24, "Cost against size, relative to the smallest", extra='font-size="15" font-weight="bold"'),
        f'<path d="M{x(1):.1f} {y(1):.1f}L{x(largest):.1f} {y(largest):.1f}" stroke="#bbb" stroke-dasharray="4"/>',
    ]
    for tick in x.ticks():
        parts.append(text(x(tick), 2 * HEIGHT - BOTTOM + 16, f"{tick:,} ×"))
        parts.append(text(LEFT - 6, y(tick) + 4, f"{tick:,} ×", "end"))
    for i, ((what, line), color) in enumerate(zip(lines.items(), GROWTH_COLORS)):
        path = " ".join(f"{x(size):.1f},{y(max(cost, 1)):.1f}" for size, cost in line)
        parts.append(f'<polyline points="{path}" stroke="{color}"/>')
        parts.append(f'<rect x="{LEFT + 16}" y="{TOP + 10 + 18 * i}" width="14" height="4" fill="{color}"/>')
        parts.append(text(LEFT + 36, TOP + 16 + 18 * i, f"{what}: {curves[what]['exponent']:.2f}", "start"))
    return "\n".join([*parts, "</svg>"]) + "\n"
