# SPDX-License-Identifier: MIT
"""The package beside numpy.fft, scipy.fft and, where it is installed, pyFFTW: ratios of times.

    main.py [--lengths N...] [--quick] [--out FOLDER]

A ratio is the other library's time over ours: above 1 we are faster. The libraries take turns, each
measurement is a burst of calls, and the ratio is the median over the turns. With one worker the
processor time of the thread is measured, so that other programs disturb little; with two, which must
run at the same time, the clock on the wall. FOLDER gets table.csv, lengths.csv and speed.png.
"""

import argparse
import csv
import os
import statistics
import sys
import time
from pathlib import Path

import numpy as np
import scipy.fft

import orvgen

try:
    import pyfftw
except ImportError:
    pyfftw = None

CACHE_BYTES = 1 << 18  # source and result together stay in the second-level cache


def data(shape, char):
    random = np.random.default_rng(1)
    x = random.standard_normal(shape)
    if char in "FD":
        x = x + 1j * random.standard_normal(shape)
    return x.astype(char)


def contenders(name, x, axis, workers, only_scipy=False):
    """Calls by library: ours with a fresh result and into a given place, and the others'."""
    ours = getattr(orvgen, name)
    place = ours(x, axis=axis)
    n = place.shape[axis] if name == "irfft" else x.shape[axis]
    calls = {
        "fresh": lambda: ours(x, n, axis, workers=workers),
        "out": lambda: ours(x, n, axis, None, place, workers=workers),
        "scipy": lambda: getattr(scipy.fft, name)(x, n, axis, workers=workers),
    }
    if only_scipy:
        return calls
    if workers == 1:
        calls["numpy"] = lambda: getattr(np.fft, name)(x, n, axis)
    if pyfftw is not None:
        # Its plans want arrays on the boundaries of its vectors, and are made before.
        source = pyfftw.byte_align(x)
        build = getattr(pyfftw.builders, name)
        plan = build(source.copy(), n, axis, threads=workers, planner_effort="FFTW_MEASURE")
        empty = lambda: pyfftw.empty_aligned(place.shape, place.dtype)  # noqa: E731
        target = empty()
        calls["pyfftw out"] = lambda: plan(source, target)
        calls["pyfftw"] = lambda: plan(source, empty())
    return calls


def times(calls, workers, turns, seconds):
    """Seconds of a call, by library: a list with one for each turn."""
    clock = time.thread_time if workers == 1 else time.perf_counter
    bursts = {}
    for key, call in calls.items():
        call()
        begin = time.perf_counter()
        call()
        bursts[key] = max(1, int(seconds / (time.perf_counter() - begin + 1e-9)))
    found = {key: [] for key in calls}
    for _ in range(turns):
        for key, call in calls.items():
            begin = clock()
            for _ in range(bursts[key]):
                call()
            found[key].append((clock() - begin) / bursts[key])
    return found


def ratio(found, other, ours):
    return statistics.median(a / b for a, b in zip(found[other], found[ours]))


COLUMNS = ["scipy / fresh", "scipy / out", "numpy / fresh", "pyfftw / fresh", "pyfftw out / out"]


def row_of(name, shape, char, axis, workers, turns, seconds):
    x = data(shape, char)
    found = times(contenders(name, x, axis, workers), workers, turns, seconds)
    row = {"function": name, "shape": "x".join(map(str, shape)), "axis": axis, "type": x.dtype.name, "workers": workers}
    for column in COLUMNS:
        other, ours = column.split(" / ")
        row[column] = round(ratio(found, other, ours), 2) if other in found else ""
    row["us fresh"] = round(statistics.median(found["fresh"]) * 1e6, 2)
    row["us out"] = round(statistics.median(found["out"]) * 1e6, 2)
    return row


def show(rows):
    columns = list(rows[0])
    widths = [max(len(c), *(len(str(r[c])) for r in rows)) for c in columns]
    print("  ".join(c.rjust(w) for c, w in zip(columns, widths)))
    for r in rows:
        print("  ".join(str(r[c]).rjust(w) for c, w in zip(columns, widths)))


def geometric(values):
    return statistics.geometric_mean(values)


def write(path, rows):
    with open(path, "w", newline="") as file:
        writer = csv.DictWriter(file, rows[0], lineterminator="\n")
        writer.writeheader()
        writer.writerows(rows)


def plot(path, rows):
    import matplotlib

    matplotlib.use("Agg")
    import matplotlib.pyplot as plt

    figure, axes = plt.subplots(figsize=(7.5, 3.6), constrained_layout=True)
    styles = {("memory", "scipy / fresh"): ("C0o", "100 000 rows, fresh results"),
              ("cache", "scipy / out"): ("C1s", "rows in the cache, out=")}
    for (place, column), (style, label) in styles.items():
        for name, fill in (("fft", "full"), ("rfft", "none")):
            chosen = [r for r in rows if r["place"] == place and r["function"] == name]
            kind = "complex64" if name == "fft" else "float32"
            axes.plot([r["length"] for r in chosen], [r[column] for r in chosen], style, fillstyle=fill,
                      markersize=4, label=f"{name}, {kind}: {label}")
    axes.axhline(1, color="black", linewidth=0.8)
    axes.set(xlabel="length", ylabel="time of scipy.fft over ours", ylim=(0, None), xlim=(0, 66))
    axes.legend(fontsize=7)
    axes.grid(alpha=0.3)
    figure.savefig(path, dpi=130)


class Parser(argparse.ArgumentParser):
    """Tells what is wrong in one line."""

    def error(self, message):
        self.exit(2, f"{self.prog}: {message} (see --help)\n")


def length(text):
    if not text.isdecimal() or not 2 <= int(text) <= 64:
        raise argparse.ArgumentTypeError("takes whole numbers from 2 to 64")
    return int(text)


class Progress:
    """How many of the measurements are done, on stderr: a line that changes, or one for each tenth."""

    def __init__(self, count):
        self.count, self.done, self.terminal = count, 0, sys.stderr.isatty()

    def __call__(self):
        self.done += 1
        before, now = (100 * done // self.count for done in (self.done - 1, self.done))
        if self.terminal or before // 10 != now // 10:
            end = "" if self.terminal and self.done < self.count else "\n"
            print(f"{chr(13) if self.terminal else ''}measuring: {now:3} %", end=end, file=sys.stderr, flush=True)


def main():
    parser = Parser(prog="bench_python", description=__doc__.splitlines()[0])
    parser.add_argument("--lengths", type=length, nargs="+", default=range(2, 65), metavar="N", help="lengths of the plot")
    parser.add_argument("--only-lengths", action="store_true", help="no table of shapes, only the plot")
    parser.add_argument("--quick", action="store_true", help="small arrays and short bursts, to see that all works")
    parser.add_argument("--out", type=Path, default=Path("."), metavar="FOLDER", help="where tables and plot go")
    options = parser.parse_args()
    load = os.getloadavg()[0]
    if load >= 0.5 * os.cpu_count():
        print(f"bench_python: WARNING: the machine is busy (load {load:.1f} on {os.cpu_count()} cores); "
              "the times are too long", file=sys.stderr)
    try:
        options.out.mkdir(parents=True, exist_ok=True)
    except OSError as error:
        parser.error(f"--out: {options.out}: cannot be a folder: {error.strerror}")
    turns, seconds, less = (2, 0.001, 100) if options.quick else (9, 0.02, 1)

    w = orvgen.which()
    print(f"orvgen {w.release} on {w.target}, NumPy {np.__version__}, SciPy {scipy.__version__}, "
          f"{'pyFFTW ' + pyfftw.__version__ if pyfftw else 'no pyFFTW'}, Python {sys.version.split()[0]}\n"
          "other library's time / ours; fresh: a new array each call, out: out= given\n"
          f"{'--quick: arrays and bursts are too small for figures' if options.quick else 'times: of the processor, with 2 workers of the clock'}\n")
    measured = Progress((0 if options.only_lengths else 26) + 4 * len(options.lengths))
    if not options.only_lengths:
        tabulate(options.out, turns, seconds, less, measured)
    draw(options, turns, seconds, less, measured)


def tabulate(folder, turns, seconds, less, measured):
    """The table of shapes, libraries and threads."""
    rows = []

    def add(*what):
        rows.append(row_of(*what, turns, seconds))
        measured()

    for shape, axis in (((1_000_000 // less, 16), -1), ((100_000 // less, 48), -1), ((64, 100_000 // less), 0)):
        for name, char in (("fft", "F"), ("rfft", "f"), ("fft", "D")):
            for workers in (1, 2):
                add(name, shape, char, axis, workers)
    for n in (16, 48):
        add("fft", (CACHE_BYTES // (16 * n), n), "F", -1, 1)
    for n in (2, 16, 64):
        for name, char in (("fft", "F"), ("rfft", "f")):
            add(name, (n,), char, -1, 1)
    show(rows)
    write(folder / "table.csv", rows)
    print()


def draw(options, turns, seconds, less, measured):
    """Every length beside SciPy, as a plot and as means."""
    lengths = []
    for n in options.lengths:
        for name, char, size in (("fft", "F", 8), ("rfft", "f", 4)):
            for place, count in (("memory", 100_000 // less), ("cache", CACHE_BYTES // (2 * size * n))):
                x = data((count, n), char)
                found = times(contenders(name, x, -1, 1, only_scipy=True), 1, turns, seconds / 2)
                row = {"length": n, "place": place, "function": name, "type": x.dtype.name}
                row.update({c: round(ratio(found, *c.split(" / ")), 2) for c in ("scipy / fresh", "scipy / out")})
                lengths.append(row)
                measured()
    write(options.out / "lengths.csv", lengths)
    for place, column in (("memory", "scipy / fresh"), ("cache", "scipy / fresh"), ("cache", "scipy / out")):
        for name in ("fft", "rfft"):
            chosen = [r[column] for r in lengths if r["place"] == place and r["function"] == name]
            print(f"{name}, rows in {place}, {column}: geometric mean {geometric(chosen):.2f}, "
                  f"least {min(chosen):.2f}, most {max(chosen):.2f}")
    plot(options.out / "speed.png", lengths)


main()
