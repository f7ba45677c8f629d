"""Judges the figures of a run, prints the table, and writes the results."""

import datetime
import json
import platform
import re
from contextlib import suppress
from pathlib import Path

from harness import say


def machine():
    model = re.search(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text())
    return {
        "processor": model.group(1) if model else platform.machine(),
        "system": f"{platform.system()} {platform.release()} {platform.machine()}",
        "libc": " ".join(platform.libc_ver()),
        "date": datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%d %H:%M UTC"),
    }


def judge(rows, figures):
    for row in rows:
        verdict = {"goal": row.goal, "text": row.text, "figure": None, "relation": row.relation, "limit": row.limit,
                   "verdict": "not measured"}
        # A figure whose comparison was void is missing.
        with suppress(KeyError):
            figure = row.figure(figures)
            met = figure <= row.limit if row.relation == "<=" else figure >= row.limit
            verdict.update(figure=figure, verdict="met" if met else "missed")
        yield verdict


def print_table(verdicts):
    print(f"{'goal':>4}  {'what':<58} {'figure':>9}  {'limit':>8}")
    for v in verdicts:
        figure = "-" if v["figure"] is None else f"{v['figure']:.3f}"
        print(f"{v['goal']:>4}  {v['text']:<58} {figure:>9}  {v['relation']} {v['limit']:<6g} {v['verdict']}")


def count_goals(verdicts):
    """Counts met and missed goals; a goal is met if all its rows are."""
    missed = {v["goal"] for v in verdicts if v["verdict"] != "met"}
    return len({v["goal"] for v in verdicts} - missed), len(missed)


def write_results(out, name, figures, verdicts, notes, pictures):
    out.mkdir(parents=True, exist_ok=True)
    content = {"machine": machine(), **notes, "goals": verdicts, "figures": vars(figures)}
    (out / f"{name}.json").write_text(json.dumps(content, indent=1) + "\n")
    if pictures:
        (out / f"{name}.svg").write_text(pictures)
    say(f"results in {out}/{name}.*")
