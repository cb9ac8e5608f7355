#!/usr/bin/env python3
"""Prints the medians of the benchmarks whose JSON results stand in a directory: each measurement beside its limit, with
their ratio and the goal. Usage: report.py DIRECTORY"""
import json
import pathlib
import sys

SIDES = ("ours", "limit")
HEADINGS = ("what", "ours", "limit", "ratio", "goal", "")


def read_pairs(directory):
    """{what: {side: median}}, in the order in which they are defined; a failed benchmark ends the program."""
    pairs = {}
    for path in sorted(directory.glob("*.json")):
        entries = json.loads(path.read_text())["benchmarks"]
        for entry in sorted(entries, key=lambda entry: entry["family_index"]):
            if entry.get("error_occurred"):
                sys.exit(f"{path.stem}: {entry['name']}: {entry['error_message']}")
            if entry.get("aggregate_name") == "median":
                what, side, *options = entry["run_name"].split("/")
                pairs.setdefault(what, {})[side] = (*measured(entry, options), entry["goal"])
    return pairs


def measured(entry, options):
    """What a benchmark measured, and its unit: memory when it counts bytes, else the time of its kind."""
    if "bytes" in entry:
        return entry["bytes"] / 1024, "KiB"
    return entry["real_time" if "manual_time" in options else "cpu_time"], entry["time_unit"]


def row(what, pair):
    (ours, unit, goal), (limit, _, _) = (pair[side] for side in SIDES)
    ratio = ours / limit
    return (what, f"{ours:.1f} {unit}", f"{limit:.1f} {unit}", f"{ratio:.2f}", f"{goal:.2f}",
            "ok" if ratio <= goal else "missed")


def main():
    pairs = read_pairs(pathlib.Path(sys.argv[1]))
    if not pairs or any(side not in pair for pair in pairs.values() for side in SIDES):
        sys.exit("a measurement or its limit is missing")
    table = [HEADINGS] + [row(what, pair) for what, pair in pairs.items()]
    widths = [max(map(len, column)) for column in zip(*table)]
    for what, *numbers, verdict in table:
        cells = [number.rjust(width) for number, width in zip(numbers, widths[1:])]
        print("  ".join([what.ljust(widths[0]), *cells, verdict]).rstrip())
    if any(verdict == "missed" for *_, verdict in table):
        print("bench/README.md says where the time of the goals that are out of reach goes.")


if __name__ == "__main__":
    main()
