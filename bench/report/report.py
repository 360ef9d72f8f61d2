#!/usr/bin/env python3
"""Writes a table and a chart of the figures that scripts/bench measured.

Usage: bench/report/report.py RESULTS FOLDER [OLD.json]

RESULTS has a folder run-N for each run, and a folder growth. The program writes report.md, report.svg and report.json to
FOLDER and prints the table. The table says which figure exceeds its limit; the exit status is 0 all the same.

OLD.json is the report.json of an earlier measurement. The program then also prints the rows that became slower by more
than the spread of both measurements. If there is one, the exit status is 1.
"""

import datetime
import html
import json
import os
import pathlib
import platform
import re
import statistics
import sys

# ---- The figures. Their names are ROW/SUBJECT/TIMES.


class Bar:
    """A row of the table: a figure, its peer, and its limit."""

    def __init__(self, work, against, bar, figure, value, is_at_most=True, unit=""):
        self.work = work
        self.against = against
        self.bar = bar
        self.figure = figure
        self.value = value  # a function from the figures to the value; raises KeyError if a figure is missing
        self.is_at_most = is_at_most
        self.unit = unit


def ratio(work, against, bar, row, peer, times=1, ours="ours"):
    """Our time divided by a peer's."""
    figure = f"{row}/{ours}/{times}"
    return Bar(work, against, bar, figure, lambda f: f[figure] / f[f"{row}/{peer}/{times}"])


def speed(work, against, bar, row, peer, times=1):
    """A peer's time divided by ours."""
    figure = f"{row}/ours/{times}"
    return Bar(work, against, bar, figure, lambda f: f[f"{row}/{peer}/{times}"] / f[figure], is_at_most=False)


def nanoseconds(work, against, bar, row):
    figure = f"{row}/ours/1"
    return Bar(work, against, bar, figure, lambda f: f[figure], unit=" ns")


def milliseconds(work, bar, row):
    figure = f"{row}/ours/1"
    return Bar(work, "time", bar, figure, lambda f: f[figure] / 1e6, unit=" ms")


def rate(work, bar, row, subject, calls):
    """Thousands of calls per second."""
    figure = f"{row}/{subject}/1"
    return Bar(work, "calls a second", bar, figure, lambda f: calls / f[figure] * 1e6, is_at_most=False, unit=" k/s")


def overhead(work, bar, row, calls):
    """What a checked call takes more than a plain one."""
    figure = f"{row}/checked/1"
    return Bar(work, "more than the plain call", bar, figure,
               lambda f: (f[figure] - f[f"{row}/plain/1"]) / calls, unit=" ns")


def count(work, bar, row):
    figure = f"{row}/ours/1"
    return Bar(work, "the fewest system calls", bar, figure, lambda f: f[figure], unit=" calls")


FREAD = "fopen and one fread"
FROM_CHARS = "from_chars on the same tokens"
APPEND = "to_chars and append"
HOST_CALLS = "the bare host calls"
SCAN = "a hand-written scan"

BARS = [
    ratio("open a file of short lines", FREAD, 1.2, "open-short", "fread"),
    speed("open a file of short lines", "times as fast as a byte loop", 1.8, "open-short", "byte_loop"),
    ratio("open a file of CR LF lines", FREAD, 1.25, "open-crlf", "fread"),
    speed("open a file of CR LF lines", "times as fast as a byte loop", 1.8, "open-crlf", "byte_loop"),
    ratio("open a file of 10 KB lines", FREAD, 1.05, "open-long", "fread"),
    ratio("open 64 MB of short lines, in large pages", FREAD, 0.8, "open-64-short", "fread"),
    ratio("open 64 MB of 10 KB lines, in large pages", FREAD, 0.8, "open-64-long", "fread"),
    ratio("open, and serve every line", "getline into one string", 1.0, "lines-short", "getline_into_one"),
    ratio("open, and serve every line", "getline into strings", 0.35, "lines-short", "getline_into_strings"),
    ratio("parse Boolean options", "a walk of the tokens", 1.25, "parse-boolean", "walk"),
    ratio("parse UInt64 options", "a walk of the tokens", 1.25, "parse-uint64", "walk"),
    ratio("parse string options", "a walk of the tokens", 1.25, "parse-string", "walk"),
    ratio("parse set options", "a walk of the tokens", 1.25, "parse-set", "walk"),
    ratio("render a command of four Boolean options", "append into one string", 1.6, "render-booleans", "append"),
    ratio("render a command of an option of each type", "append into one string", 1.6, "render-each-type", "append"),
    ratio("Set::assign, 1 000 runs", "a digit loop", 1.0, "set-assign", "digit_loop"),
    ratio("Set::assign, 1 000 runs", "hwloc's list parser", 1.0, "set-assign", "hwloc"),
    ratio("Set::assign, 100 000 runs", "a digit loop", 1.0, "set-assign", "digit_loop", 100),
    ratio("Set::assign, 100 000 runs", "hwloc's list parser", 1.0, "set-assign", "hwloc", 100),
    ratio("Set::assign, 1 000 runs in random order", "hwloc's list parser", 1.0, "set-assign-random", "hwloc"),
    ratio("Set::assign, 100 000 runs in random order", "hwloc's list parser", 0.6, "set-assign-random", "hwloc", 100),
    ratio("Set::toString, 100 000 runs", "to_chars into chunks", 0.8, "set-to-string", "to_chars", 100),
    ratio("getDoubleValue", FROM_CHARS, 1.25, "get-double", "from_chars"),
    ratio("getInt64Value", FROM_CHARS, 1.25, "get-int64", "from_chars"),
    ratio("getInt32Value", FROM_CHARS, 1.25, "get-int32", "from_chars"),
    ratio("a command of 8 assignments", SCAN, 1.2, "command-8", "scan"),
    speed("a command of 8 assignments", "times as fast as istringstream", 2.5, "command-8", "istringstream"),
    ratio("a command of 2 000 assignments", SCAN, 1.1, "command-2000", "scan"),
    speed("a command of 2 000 assignments", "times as fast as istringstream", 3.0, "command-2000", "istringstream"),
    ratio("toNameValueAssignment, Boolean", APPEND, 1.5, "assign-boolean", "append"),
    ratio("toNameValueAssignment, string", APPEND, 1.5, "assign-string", "append"),
    ratio("toNameValueAssignment, double", APPEND, 1.5, "assign-double", "append"),
    ratio("toNameValueAssignment, int32", APPEND, 1.5, "assign-int32", "append"),
    ratio("toNameValueAssignment, int64", APPEND, 1.5, "assign-int64", "append"),
    ratio("toNameValueAssignment, set", APPEND, 1.5, "assign-set", "append"),
    ratio("AddOnIdLock", HOST_CALLS, 1.9, "guard-lock", "host_calls"),
    ratio("DataSetSuspendMarking", HOST_CALLS, 1.9, "guard-marking", "host_calls"),
    ratio("a lock of Mutex", HOST_CALLS, 1.9, "mutex-lock", "host_calls"),
    ratio("fileExists", "stat", 1.15, "file-exists", "stat"),
    ratio("dirExists", "stat", 1.15, "dir-exists", "stat"),
    ratio("fileSize", "stat", 1.15, "file-size", "stat"),
    count("isFileOrDirWritable, a file", 3, "is-writable-file"),
    count("isFileOrDirWritable, no file", 4, "is-writable-missing"),
    count("isFileOrDirWritable, a folder", 5, "is-writable-folder"),
    ratio("getValueAsString, a double", HOST_CALLS, 1.5, "style-double", "host_calls"),
    ratio("getValueAsString, an integer", HOST_CALLS, 1.5, "style-integer", "host_calls"),
    nanoseconds("TaskProgress::advance within a percentage", "time", 5, "progress-advance"),
    ratio("stand-in: a host call, plain", "an empty function elsewhere", 5, "host-call-ask", "empty_calls", ours="plain"),
    rate("stand-in: a host call, checked", 10000, "host-call-ask", "checked", 1),
    rate("stand-in: locking a mutex, checked", 10000, "host-call-lock", "checked", 2),
    rate("stand-in: a style query, checked", 10000, "host-call-style", "checked", 6),
    overhead("attach: a host call, checked", 300, "attach-call-ask", 1),
    overhead("attach: locking a mutex, checked", 300, "attach-call-lock", 2),
    overhead("attach: a style query, checked", 300, "attach-call-style", 6),
    rate("stand-in: a host call, traced", 1500, "host-call-ask", "traced", 1),
    rate("stand-in: locking a mutex, traced", 1500, "host-call-lock", "traced", 2),
    rate("stand-in: a style query, traced", 1500, "host-call-style", "traced", 6),
    milliseconds("vexa-standin run of an empty macro", 15, "run-empty"),
    milliseconds("vexa-standin check of probe-stats, level 2", 350, "check-probe-stats"),
]

# Comparisons without a limit.
MORE = [
    ratio("open 64 MB of short lines, in small pages", FREAD, None, "open-64-small-short", "fread"),
    ratio("open 64 MB of 10 KB lines, in small pages", FREAD, None, "open-64-small-long", "fread"),
    ratio("Set::assign, 100 000 runs in random order", "a digit loop and std::sort", None, "set-assign-random",
          "digit_loop_and_sort", 100),
    ratio("Set::assign, 1 000 runs", "boost::icl::interval_set", None, "set-assign", "interval_tree"),
    ratio("Set::contains, 1 000 runs", "boost::icl::interval_set", None, "set-contains", "interval_tree"),
    ratio("Set::insert, 1 000 runs", "boost::icl::interval_set", None, "set-insert", "interval_tree"),
    ratio("a copy of a Set, 1 000 runs", "boost::icl::interval_set", None, "set-copy", "interval_tree"),
    ratio("a walk over a Set, 1 000 runs", "boost::icl::interval_set", None, "set-iterate", "interval_tree"),
    ratio("TaskProgress::advance within a percentage", "an increment and a compare", None, "progress-advance", "count"),
    ratio("stand-in: locking a mutex, plain", "empty functions elsewhere", None, "host-call-lock", "empty_calls",
          ours="plain"),
    ratio("stand-in: a style query, plain", "empty functions elsewhere", None, "host-call-style", "empty_calls",
          ours="plain"),
    rate("stand-in: a host call, traced as text", None, "host-call-ask", "traced_as_text", 1),
]

MEMORY = [
    ("Set::assign, 100 000 runs", "a run", "memory-set-assign/ours/1", "memory-set-assign/floor/1",
     "ranges in a vector whose size was known"),
    ("Set::toString, 100 000 runs", "a run", "memory-set-to-string/ours/1", "memory-set-to-string/floor/1",
     "a string whose size was known"),
    ("a command of 100 000 assignments", "an assignment", "memory-command/ours/1", "memory-command/floor/1",
     "one copy of the command"),
    ("rendering a command of 100 000 options", "an option", "memory-render/ours/1", "memory-render/floor/1",
     "a string whose size was known"),
    ("open a file of short lines", "the file", "open-memory-short/ours/1", "open-memory-short/fread/1",
     "one buffer, and no index of lines"),
    ("open a file of 10 KB lines", "the file", "open-memory-long/ours/1", "open-memory-long/fread/1",
     "one buffer, and no index of lines"),
]

# Rows that make the same number of queries on larger data. They have no unit of work of a constant size.
FIXED_WORK = ("set-contains", "set-insert")

# ---- Reading

NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


def read_figures(folder, summary):
    """A summary of the repetitions of each figure, by name. Times are in nanoseconds of the processor's time."""
    measured = {}
    for path in sorted(folder.glob("*.json")):
        text = path.read_text()
        if not text.strip():  # no benchmark of the program was asked for
            continue
        for figure in json.loads(text)["benchmarks"]:
            if figure.get("run_type") == "aggregate" or figure.get("error_occurred"):
                continue
            value = figure.get("value")
            if value is None:
                value = figure["cpu_time"] * NANOSECONDS[figure["time_unit"]]
            name = "/".join(figure["name"].split("/")[:3])
            measured.setdefault(name, []).append(value)
    return {name: summary(values) for name, values in measured.items()}


def read_runs(folder):
    """The figures of each run: the fastest repetition, which other programs disturbed least."""
    return [read_figures(run, min) for run in sorted(folder.glob("run-*"))]


def medians(runs):
    """The median of each figure over the runs that have it."""
    names = {name for figures in runs for name in figures}
    return {name: statistics.median(f[name] for f in runs if name in f) for name in names}


def machine():
    cpu = platform.processor() or "unknown processor"
    try:
        cpu = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text()).group(1)
    except (OSError, AttributeError):
        pass
    load = os.getloadavg()[0]
    date = datetime.date.today().isoformat()
    return f"{date}, {cpu}, {os.cpu_count()} processors, load {load:.1f}, {platform.system()} {platform.release()}"


# ---- Judging


class Row:
    """The values of a bar, one for each run."""

    def __init__(self, bar, values):
        self.bar = bar
        self.values = sorted(values, reverse=not bar.is_at_most)  # the best one first

    def best(self):
        return self.values[0]

    def median(self):
        return statistics.median(self.values)

    def spread(self):
        """The best and the worst value. From five runs on, without the best and the worst run."""
        omitted = 1 if len(self.values) >= 5 else 0
        return self.values[omitted], self.values[-1 - omitted]

    def meets(self, value):
        return value <= self.bar.bar if self.bar.is_at_most else value >= self.bar.bar

    def verdict(self):
        """The median meets a bar only together with its spread."""
        if not self.values:
            return "not measured"
        if self.bar.bar is None:
            return ""
        if not self.meets(self.median()):
            return "missed"
        return "met" if self.meets(self.spread()[1]) else "met by the median only"


def judge(bars, runs):
    """The rows of these bars. `runs` has the figures of each run."""
    rows = []
    for bar in bars:
        try:
            rows.append(Row(bar, [bar.value(figures) for figures in runs]))
        except KeyError:
            rows.append(Row(bar, []))
    return rows


# ---- Comparing


def as_json(rows):
    return {"machine": machine(), "rows": [
        {"work": row.bar.work, "against": row.bar.against, "unit": row.bar.unit.strip(),
         "lower_is_better": row.bar.is_at_most, "bar": row.bar.bar, "values": row.values, "min": min(row.values),
         "median": row.median(), "spread": row.spread(), "verdict": row.verdict()} for row in rows if row.values]}


LEAST_CHANGE = 1.03  # smaller ones come from the layout of the program


def is_slower(row, old):
    """Returns true if the spreads do not overlap, and the medians differ noticeably."""
    if row.bar.is_at_most:
        return row.spread()[0] > old["spread"][1] and row.median() > old["median"] * LEAST_CHANGE
    return row.spread()[0] < old["spread"][1] and row.median() * LEAST_CHANGE < old["median"]


def compare(rows, old_path):
    """Prints the rows that became slower than before. Returns their number."""
    before = {(old["work"], old["against"]): old for old in json.loads(old_path.read_text())["rows"]}
    both = [(row, before[row.bar.work, row.bar.against]) for row in rows
            if row.values and (row.bar.work, row.bar.against) in before]
    slower = [(row, old) for row, old in both if is_slower(row, old)]
    print(f"\nCompared with {old_path}: {len(slower)} of {len(both)} rows became slower than noise.")
    if slower:
        print(table(["work", "against", "before", "spread", "now", "spread"], [
            [row.bar.work, row.bar.against, number(old["median"], row.bar.unit), span(old["spread"], row.bar.unit),
             number(row.median(), row.bar.unit), span(row.spread(), row.bar.unit)] for row, old in slower]))
    return len(slower)


def number(value, unit=""):
    if unit in (" calls", " k/s"):
        return f"{value:.0f}{unit}"
    return f"{value:.2f}{unit}"


def span(ends, unit=""):
    low, high = (number(end, unit).removesuffix(unit) for end in (min(ends), max(ends)))
    return f"{low} – {high}"


def duration(nanosecond):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanosecond >= size:
            return f"{nanosecond / size:.3g} {unit}"
    return f"{nanosecond:.3g} ns"


# ---- Writing


def table(head, rows):
    """A Markdown table with aligned columns."""
    widths = [max(len(row[i]) for row in [head] + rows) for i in range(len(head))]
    line = lambda cells: "| " + " | ".join(cell.ljust(width) for cell, width in zip(cells, widths)) + " |"
    return "\n".join([line(head), "|" + "|".join("-" * (width + 2) for width in widths) + "|"] + [line(r) for r in rows])


def bars_table(rows):
    cells = []
    for row in rows:
        bar = row.bar
        limit = "" if bar.bar is None else ("≤ " if bar.is_at_most else "≥ ") + number(bar.bar, bar.unit)
        figures = ["", "", ""]
        if row.values:
            figures = [number(min(row.values), bar.unit), number(row.median(), bar.unit), span(row.spread(), bar.unit)]
        cells.append([bar.work, bar.against, limit] + figures + [row.verdict()])
    return table(["work", "against", "bar", "min", "median", "spread", ""], cells)


def growth_table(figures):
    """How the time per unit of work changes with the amount of work."""
    rows = []
    for name, once in sorted(figures.items()):
        row, subject, times = name.split("/")
        if times != "1" or row in FIXED_WORK:
            continue
        factors = [figures.get(f"{row}/{subject}/{n}") for n in (10, 100, 1000)]
        if None in factors[:2]:
            continue
        cells = ["" if f is None else f"{f / once / n:.2f}" for f, n in zip(factors, (10, 100, 1000))]
        rows.append([row if subject == "ours" else f"{row}, {subject}", duration(once)] + cells)
    return table(["row", "once", "10 times", "100 times", "1000 times"], rows) if rows else ""


def memory_table(figures):
    rows = []
    for work, unit, ours, floor, what in MEMORY:
        if ours in figures and floor in figures:
            rows.append([work, f"{figures[ours]:.4g}", f"{figures[floor]:.4g}",
                         f"{figures[ours] / figures[floor]:.2f}", unit, what])
    return table(["work", "bytes", "floor", "ratio", "for", "the floor is"], rows) if rows else ""


def chart(judged):
    """A chart of each figure as a share of its limit. A bar that ends left of the line is within the limit."""
    shown = [(row.bar, row.median(), row.verdict()) for row in judged if row.values]
    left, width, height, scale = 470, 1000, 22, 380
    bottom = 40 + height * len(shown)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{bottom + 10}" '
             f'font-family="sans-serif" font-size="12">',
             "<title>How much of its bar each row takes</title>",
             f'<rect width="{width}" height="{bottom + 10}" fill="white"/>',
             f'<text x="{left + scale}" y="20" text-anchor="middle">the bar</text>']
    for i, (bar, value, result) in enumerate(shown):
        y = 30 + i * height
        part = value / bar.bar if bar.is_at_most else bar.bar / value
        label = html.escape(f"{bar.work} / {bar.against}")
        parts.append(f'<text x="{left - 8}" y="{y + 15}" text-anchor="end">{label}</text>')
        colour = "#d55e00" if result == "missed" else "#0072b2"
        parts.append(f'<rect x="{left}" y="{y + 3}" width="{min(part, 1.2) * scale:.0f}" height="{height - 6}" '
                     f'fill="{colour}"/>')
        end = left + min(part, 1.2) * scale
        fits = end - left > 100
        place = 'text-anchor="end" fill="white"' if fits else ""
        parts.append(f'<text x="{end - 5 if fits else end + 5:.0f}" y="{y + 15}" '
                     f'{place}>{number(value, bar.unit)}'
                     f'{", missed" if result == "missed" else ""}</text>')
    parts.append(f'<line x1="{left + scale}" y1="26" x2="{left + scale}" y2="{bottom}" stroke="black"/>')
    return "\n".join(parts + ["</svg>\n"])


def report(judged, runs, folder):
    figures = medians(runs + [read_figures(folder / "growth", statistics.median)])
    sections = [f"# This library beside its peers\n\n{machine()}\n\nThe lower, the better, but where a row says "
                "otherwise. From five runs on, the spread omits the best and the worst run.", bars_table(judged)]
    more = [row for row in judge(MORE, runs) if row.values]
    if more:
        sections += ["## Beside others", bars_table(more)]
    growth = growth_table(figures)
    if growth:
        sections += ["## Growth\n\nThe time of a unit of work when there is 10, 100 and 1000 times as much of it; 1.00 "
                     "is linear.", growth]
    memory = memory_table(figures)
    if memory:
        sections += ["## Memory at its most", memory]
    for name, title in (("load", "Load"), ("guard-instructions", "Instructions of a guard"),
                        ("report-page", "The page of a traced run")):
        path = folder / f"{name}.txt"
        if path.exists():
            sections.append(f"## {title}\n\n```\n{path.read_text().rstrip()}\n```")
    return "\n\n".join(sections) + "\n"


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    results, out = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    runs = read_runs(results)
    measured = {name.split("/")[0] for figures in runs for name in figures}
    judged = [row for row in judge(BARS, runs) if row.bar.figure.split("/")[0] in measured]
    (out / "report.md").write_text(report(judged, runs, results))
    (out / "report.svg").write_text(chart(judged))
    (out / "report.json").write_text(json.dumps(as_json(judged + judge(MORE, runs)), indent=1) + "\n")
    print(bars_table(judged))
    met = sum(row.verdict() == "met" for row in judged)
    print(f"\n{len(runs)} runs: {met} of {len(judged)} bars met with their spread. More in {out / 'report.md'}, as a "
          f"chart in {out / 'report.svg'}, and for a comparison in {out / 'report.json'}.")
    if len(sys.argv) == 4 and compare(judged, pathlib.Path(sys.argv[3])) > 0:
        sys.exit(1)


main()
