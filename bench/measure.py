#!/usr/bin/env python3
"""Measures whole runs of corvo beside floors of the same machine and minute, and prints tables in
markdown. Started by run.sh.

A number is CPU time, user and system, of a process as the kernel counts it: the smallest of the
repeats, on a busy machine the better figure, and their median. The repeats of all cases are
interleaved, so that a busy minute falls on all of them.
"""

import argparse
import math
import os
import re
import shutil
import statistics
import sys
import tempfile

SIZES = (1, 3, 6, 12, 24, 48)
INCREMENTS = 100  # of the grid
FREQUENCIES = INCREMENTS + 7  # five below the range, both ends, that of the transformation
ROWS = 2 * (INCREMENTS + 6)  # real rows of a fit: all but the last
SHORT = 0.05  # s; runs below it are repeated more often
MORE = 5  # times as often

WEIGHTS = "".join(f"Weighting Factor {i}: 1\n" for i in (1, 2, 3))
MODELS = {
    "Bergeron": "Bergeron Line Model Options\n{\nFrequency for Loss Approximation: 60\n}\n",
    "mode": "Frequency Dep. (Mode) Model Options\n{\n" + WEIGHTS + "}\n",
    "phase": "Frequency Dep. (Phase) Model Options\n{\n" + WEIGHTS + "}\n",
    "MFDTD": "MFDTD Model Options\n{\n" + WEIGHTS + "}\n",
}
ENFORCED = """Lower frequency for passivity check: 0.5 [Hz]
Upper frequency for passivity check: 1.0E6 [Hz]
Frequency increments for passivity check: 1000
Maximum iterations for passivity: 10
Maximum relative error for passivity: 5.0 [%]
Eigenvalue tolerence: 1.0E-9
"""


def overhead(n, model):
    """A corridor of three-phase lines side by side, no two alike; of one conductor a single wire."""
    text = ("CORVO-INPUT-DATA\nLine Summary\n{\nLine Name: bench\n"
            f"Number of Conductors: {n}\nSteady State Frequency: 60\n}}\n")
    for first in range(1, n + 1, 3):
        count = min(3, n + 1 - first)
        k = first // 3
        text += (f"Line Constants Tower\n{{\nCircuit\n{{\nConductors: {count}\n"
                 f"Conductor Phase Information: {' '.join(str(first + i) for i in range(count))}\n"
                 f"Transposed: 0\nRadius: {0.010 + 0.0003 * k:.4f}\n"
                 f"DCResistance: {0.05 + 0.004 * k:.4f}\nSag: 8\nShuntConductance: 1e-11\n")
        for i in range(count):
            text += f"P{i + 1} : {30 * k + (6 + 0.2 * k) * i:.2f} {20 + 0.7 * k + 3.1 * i:.2f}\n"
        text += "}\n}\n"
    text += ("Line Constants Ground Data\n{\nGroundResistivity: 100\nEarthImpedanceFormula: 0\n}\n"
             + MODELS[model] + "END-OF-CORVO-INPUT-DATA\n")
    return text


def with_model(description, model):
    """An example with another line model."""
    return re.sub(r"\n[^\n]*Model Options\n\{\n.*?\n\}\n", "\n" + MODELS[model], description,
                  flags=re.S)


# At how many frequencies a model takes all modes; the MFDTD model takes none over its grid.
MODAL = {"Bergeron": 2, "mode": FREQUENCIES, "phase": FREQUENCIES}


class Case:
    def __init__(self, name, kind, n, file, text, length="100000", more=()):
        self.name, self.kind, self.n, self.file, self.text = name, kind, n, file, text
        self.arguments = ["/file", file, "/length", length, *more]
        self.frequencies = MODAL.get(kind, 0)
        self.seconds, self.zgeev, self.lsq, self.fits = [], [], [], []


def cases(examples):
    def read(name):
        with open(os.path.join(examples, name), encoding="ascii") as file:
            return file.read()

    line = read("line500kv_phase.cvi")
    pipe, cable = read("pipetype.cbi"), read("singlecore.cbi")
    coarse = re.sub(r"(Maximum Fitting Error[^:\n]*: *)0\.2", r"\g<1>2.0", line)
    enforced = re.sub(r"(Model Options\n\{\n)", lambda m: m.group(1) + ENFORCED, coarse, count=1)
    bergeron = overhead(3, "Bergeron")
    yield Case("reading alone", "start", 3, "a.cvi", bergeron, more=("/steps", "0"))
    yield Case("200 lengths in one run", "lengths", 3, "a.cvi", bergeron,
               more=("/steps", "200", "/increment", "1000"))
    for model in MODELS:
        for n in SIZES:
            yield Case(f"overhead, {model}", model, n, "a.cvi", overhead(n, model))
    for model in ("Bergeron", "phase"):
        yield Case(f"three single-core cables, {model}", model, 3, "a.cbi",
                   with_model(cable, model), length="10000")
    for model in ("Bergeron", "phase"):
        yield Case(f"pipe-type cable, {model}", model, 3, "a.cbi", with_model(pipe, model),
                   length="10000")
    yield Case("500 kV line, coarse phase fit", "phase", 3, "a.cvi", coarse)
    yield Case("500 kV line, the same made passive", "phase", 3, "a.cvi", enforced)


def timed(command, folder):
    """CPU seconds of a process, user and system, its status and what it printed."""
    os.chdir(folder)
    said = os.path.join(folder, "said")
    actions = [(os.POSIX_SPAWN_OPEN, 1, said, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600),
               (os.POSIX_SPAWN_OPEN, 2, os.devnull, os.O_WRONLY, 0)]
    process = os.posix_spawn(command[0], command, os.environ, file_actions=actions)
    _, status, usage = os.wait4(process, 0)
    with open(said, encoding="ascii", errors="replace") as file:
        return usage.ru_utime + usage.ru_stime, os.waitstatus_to_exitcode(status), file.read()


def fits_of(kind, n, console):
    """Columns and right sides of each least-squares problem over the poles that a run ended with."""
    if kind == "mode":  # a function of one mode each
        return [(int(p), 1) for p in re.findall(r"^Mode.*\n +\S+ +(\d+)$", console, re.M)]
    if kind == "MFDTD":
        return [(int(p), n * n) for p in re.findall(r"Actual: +(\d+)$", console, re.M)]
    if kind != "phase":
        return []
    admittance = re.search(r"^ Yc:.*?% +(\d+)$", console, re.M | re.S)
    last = console[console.rfind("Hmode:"):]
    groups = re.findall(r"^ +\d+ +\S+ % +(\d+) +\S+ ms$", last, re.M)
    return [(int(admittance.group(1)), n * n), (sum(map(int, groups)), n * n)]


def measure(todo, tools, repeats, folder):
    """Fills the times of all cases; returns those of the empty program."""
    empties = []
    for case in todo:
        os.mkdir(os.path.join(folder, str(id(case))))
        with open(os.path.join(folder, str(id(case)), case.file), "w", encoding="ascii") as file:
            file.write(case.text)
    for repeat in range(repeats * MORE):
        for case in todo:
            if repeat >= repeats and min(case.seconds) > SHORT:
                continue
            place = os.path.join(folder, str(id(case)))
            empties.append(timed([tools.empty], place)[0])
            spent, status, console = timed([tools.corvo, *case.arguments], place)
            if status not in (0, 2) or "LCP solve constants complete." not in console:
                sys.exit(f"{case.name}, {case.n} conductors: status {status}\n{console}")
            case.seconds.append(spent)
            if case.frequencies:
                command = [tools.floors, "zgeev", str(case.n), str(case.frequencies)]
                case.zgeev.append(float(timed(command, place)[2]))
            case.fits = fits_of(case.kind, case.n, console)
            if case.fits:
                command = [tools.floors, "lsq", str(ROWS)]
                command += [str(number) for fit in case.fits for number in fit]
                case.lsq.append(float(timed(command, place)[2]))
        if sys.stderr.isatty():
            print(f"repeat {repeat + 1} of {repeats * MORE}", end="\r", file=sys.stderr)
    return empties


def ratio(case, floor):
    """How many times a floor a run takes."""
    if not floor or min(floor) <= 0:
        return ""
    return f"{min(case.seconds) / min(floor):.3g}"


def milliseconds(seconds):
    return f"{1e3 * seconds:.4g}"


def print_table(todo, empties):
    print("| Run | Conductors | CPU, ms | Median | times empty | times ZGEEV | times one pass |")
    print("|---|---:|---:|---:|---:|---:|---:|")
    print(f"| empty program | | {milliseconds(min(empties))} "
          f"| {milliseconds(statistics.median(empties))} | 1 | | |")
    for c in todo:
        print(f"| {c.name} | {c.n} | {milliseconds(min(c.seconds))} "
              f"| {milliseconds(statistics.median(c.seconds))} | {ratio(c, empties)} "
              f"| {ratio(c, c.zgeev)} | {ratio(c, c.lsq)} |")


def exponents(times):
    """Growth between sizes: e where a time goes with n^e."""
    return [math.log(b / a) / math.log(m / n)
            for (n, a), (m, b) in zip(times, times[1:]) if a > 0 and b > 0]


def print_growth(todo, start):
    """Start, what every run costs, is left out."""
    sized = {}
    for c in todo:
        if c.name.startswith("overhead"):
            sized.setdefault(c.name, []).append((c.n, max(min(c.seconds) - start, 1e-6)))
    reference = [(c.n, min(c.zgeev)) for c in todo if c.name == "overhead, mode"]
    if len(reference) > 1:
        sized["ZGEEV alone"] = reference
    print("\n| Growth with n^e, e from | " + " | ".join(
        f"{a} to {b}" for a, b in zip(SIZES, SIZES[1:])) + " |")
    print("|---|" + "---:|" * (len(SIZES) - 1))
    for name, times in sized.items():
        print(f"| {name} | " + " | ".join(f"{e:.1f}" for e in exponents(times)) + " |")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    for name in ("corvo", "empty", "floors", "examples"):
        parser.add_argument(name, type=os.path.abspath)
    parser.add_argument("--repeats", type=int, default=5, help="of runs above 50 ms; five times as many below")
    parser.add_argument("--only", default="", help="a pattern for the names of runs")
    given = parser.parse_args()
    todo = [c for c in cases(given.examples) if re.search(given.only, c.name)]
    folder = tempfile.mkdtemp(prefix="corvo-bench.")
    try:
        empties = measure(todo, given, max(1, given.repeats), folder)
    finally:
        os.chdir("/")
        shutil.rmtree(folder)
    print_table(todo, empties)
    start = [c for c in todo if c.kind == "start"]
    print_growth(todo, min(start[0].seconds) if start else min(empties))


if __name__ == "__main__":
    main()
