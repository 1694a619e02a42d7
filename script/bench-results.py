"""Usage: bench-results.py LINES RESULTS

Prints the figures of LINES (a JSON object per line) as tables: comparisons with other programs, and separately
those with Brevane itself. Replaces the figures of the same names in RESULTS (a JSON list of objects). If a measure
has been run more than once, each figure is the median of all runs, and members that end in _range hold the minimum
and the maximum.
"""

import json
import statistics
import sys
from pathlib import Path

MEMBERS = ("name", "value", "unit", "peer", "peer_value", "ratio")
COLUMNS = (*MEMBERS, "wanted", "")


def figures(lines):
    """The runs of each figure by name and peer, and the reasons of failed measures by name. A measure that failed
    in any run has no figures."""
    runs, failed = {}, {}
    for line in lines.splitlines():
        if not line.strip():
            continue
        figure = json.loads(line)
        if "failed" in figure:
            failed[figure["name"]] = figure["failed"]
            continue
        missing = [member for member in MEMBERS if member not in figure]
        if missing:
            sys.exit(f"script/bench: a figure lacks {', '.join(missing)}: {line}")
        # The best peer may differ from run to run.
        key = figure["name"], figure["peer"] if "wanted" not in figure else None
        runs.setdefault(key, []).append(figure)
    return {key: run for key, run in runs.items() if not any(is_of(key[0], name) for name in failed)}, failed


def is_of(name, measure):
    """Whether a figure belongs to a measure: the comparison that counts, or one with a single peer."""
    return name == measure or name.startswith(f"{measure}.")


def merged(runs):
    """One figure, merged from several runs."""
    figure = dict(runs[-1])
    if len(runs) > 1:
        figure["peer"] = " or ".join(sorted({run["peer"] for run in runs if run["peer"]})) or None
        for member in ("value", "peer_value", "ratio"):
            values = [run[member] for run in runs if run[member] is not None]
            if values:
                figure[member] = statistics.median(values)
                figure[f"{member}_range"] = [min(values), max(values)]
    return figure


def is_met(figure):
    sign, bound = figure["wanted"].split()
    return figure["ratio"] <= float(bound) if sign == "<=" else figure["ratio"] >= float(bound)


def digits(value):
    if not isinstance(value, float):
        return "-" if value is None else str(value)
    return f"{value:,.0f}" if abs(value) >= 1000 else f"{value:.4g}"


def text(figure, member):
    if member == "wanted":
        return "" if "wanted" not in figure else f"{figure['wanted']}{'' if is_met(figure) else ' MISSED'}"
    if member == "":
        return figure.get("note", "")
    bounds = figure.get(f"{member}_range")
    return digits(figure[member]) + (f" ({digits(bounds[0])} to {digits(bounds[1])})" if bounds else "")


def table(rows):
    """A Markdown table, which can be published unchanged."""
    rows = [COLUMNS] + [tuple(text(row, member) for member in COLUMNS) for row in rows]
    widths = [max(len(row[column]) for row in rows) for column in range(len(COLUMNS))]
    rows.insert(1, tuple("-" * width for width in widths))
    return "\n".join("| " + " | ".join(cell.ljust(width) for cell, width in zip(row, widths)) + " |" for row in rows)


def main(lines, results):
    runs, failed = figures(lines.read_text())
    new = [merged(run) for run in runs.values()]
    replaced = {figure["name"] for figure in new}
    old = json.loads(results.read_text()) if results.exists() else []
    kept = [figure for figure in old
            if figure["name"] not in replaced and not any(is_of(figure["name"], name) for name in failed)]
    results.write_text(json.dumps(sorted(kept + new, key=lambda figure: (figure["name"], str(figure["peer"]))), indent=2) + "\n")
    itself = [figure for figure in new if str(figure["peer"]).startswith("brevane")]
    others = [figure for figure in new if figure not in itself]
    for rows, title in ((others, "Beside others:"), (itself, "Beside itself:")):
        if rows:
            print(f"{title}\n{table(rows)}\n")
    for name, reason in failed.items():
        print(f"{name} FAILED: {reason}")


if __name__ == "__main__":
    main(Path(sys.argv[1]), Path(sys.argv[2]))
