"""Growth: cost against size, with the exponent of a line fitted to the logarithms of both."""

import math

from harness import bus_and_service, remove_segments, run_contests, say

# An exponent is a slope over several powers of ten: noise of this size hardly changes it.
TOLERANCE = 0.05
PROGRAMS = {"copies": 60, "kit": 6, "tracks": 3}


def exponent(points):
    """Returns the slope of the least-squares line through the logarithms."""
    x = [math.log(size) for size, _ in points]
    y = [math.log(cost) for _, cost in points]
    mean_x, mean_y = sum(x) / len(x), sum(y) / len(y)
    over = sum((a - mean_x) * (b - mean_y) for a, b in zip(x, y))
    return over / sum((a - mean_x) ** 2 for a in x)


def curve(variants):
    points = sorted((int(size), each["p50"]) for size, each in variants.items() if size != "control")
    return {"points": points, "exponent": exponent(points), "last": exponent(points[-2:])}


def print_curves(curves):
    print(f"{'cost against':<26}{'from':>8}{'to':>10}{'smallest':>13}{'largest':>13}{'exponent':>10}{'at the end':>12}")
    for what, each in curves.items():
        (small, low), (large, high) = each["points"][0], each["points"][-1]
        print(f"{what:<26}{small:>8,}{large:>10,}{low / 1000:>10.2f} µs{high / 1000:>10,.0f} µs"
              f"{each['exponent']:>10.2f}{each['last']:>12.2f}")


def print_saturation(curves):
    if burst := curves.get("events of a burst"):
        size, cost = burst["points"][-1]
        print(f"The client receives {size / cost * 1e9:,.0f} events a second before it uses a processor alone.")


def measure_growth(programs, quick, figures):
    void = []
    for name, rounds in PROGRAMS.items():
        rounds = max(rounds // 5, 2) if quick else rounds
        say(f"growth: {name}, {rounds} rounds")
        remove_segments()
        with bus_and_service(programs):
            remove_segments()
            void += run_contests([programs / "growth" / f"bench_growth_{name}", rounds], figures, TOLERANCE)
    for what, variants in figures.contests.items():
        if what not in void:
            figures.curves[what] = curve(variants)
    print_curves(figures.curves)
    print_saturation(figures.curves)
    return void
