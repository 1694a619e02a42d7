"""Usage: bench-results.py LINES RESULTS

Prints the figures of LINES (a JSON object per line) as a table and merges them by name and peer into
RESULTS (a JSON list of objects).
"""

import json
import sys
from pathlib import Path

MEMBERS = ("name", "value", "unit", "peer", "peer_value", "ratio")


def figures(lines):
    for line in lines.read_text().splitlines():
        if line.strip():
            figure = json.loads(line)
            missing = [member for member in MEMBERS if member not in figure]
            if missing:
                sys.exit(f"script/bench: a figure lacks {', '.join(missing)}: {line}")
            yield figure


def text(value):
    return f"{value:.4g}" if isinstance(value, float) else "-" if value is None else str(value)


def print_table(rows):
    widths = [max(len(row[column]) for row in rows) for column in range(len(MEMBERS))]
    for row in rows:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def main(lines, results):
    new = list(figures(lines))
    old = json.loads(results.read_text()) if results.exists() else []
    merged = {(figure["name"], figure["peer"]): figure for figure in old + new}
    results.write_text(json.dumps([merged[key] for key in sorted(merged, key=str)], indent=2) + "\n")
    print_table([MEMBERS] + [tuple(text(figure[member]) for member in MEMBERS) for figure in new])


main(Path(sys.argv[1]), Path(sys.argv[2]))
