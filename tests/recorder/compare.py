#!/usr/bin/env python3
"""compare.py BUILD RECORDING STATISTICS

Converts a recording of heaptrack, with its raw recording and without, and holds every figure that
heaptrack_print shows of it against the converted trace. STATISTICS is what heaptrack_interpret
printed when it made the recording. Uses the programs in BUILD and heaptrack_print.
"""
import collections, glob, json, os, re, subprocess, sys, tempfile

PLAIN = ["--disable-builtin-suppressions", "--disable-embedded-suppressions", "-t", "0"]
MEASURES = {"allocations": ("allocated", "blocks"), "leaked": ("leaked", "bytes"),
            "peak": ("peak", "bytes")}
UNITS = {"B": 1, "K": 1e3, "M": 1e6, "G": 1e9}


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True,
                          errors="surrogateescape").stdout


def without_file(frame):
    """"call_init (dl-init.c)" without the file."""
    return re.sub(r" \([^()]*\)$", "", frame)


def from_start(frames):
    """The frames from where heaptrack_print begins, outermost first: it shows nothing outside of this
    function, which has another name where the system's code comes with debug symbols."""
    start = "__libc_start_main"
    return tuple(frames[frames.index(start) if start in frames else 0:])


def printed_stacks(recording, measure, directory):
    """Exact sums by call path. Functions inlined into one another stand in the reverse order there,
    so paths are compared by what they are made of."""
    path = os.path.join(directory, measure)
    output_of("heaptrack_print", recording, *PLAIN, "-F", path, "--flamegraph-cost-type", measure)
    sums = collections.Counter()
    with open(path, encoding="utf-8", errors="surrogateescape") as stacks:
        for line in stacks:
            frames, cost = line.rsplit(" ", 1)
            frames = [without_file(frame.strip()) for frame in frames.split(";")]
            sums[tuple(sorted(from_start([frame for frame in frames if frame])))] += int(cost)
    return +sums


class rounded_sums(dict):
    """Sums by name of rounded figures, with how much these may be wrong."""

    def add(self, name, number, unit):
        sum, fault = self.get(name, (0.0, 0.0))
        self[name] = (sum + float(number) * UNITS[unit],
                      fault + (0.0051 * UNITS[unit] if unit != "B" else 0.0))

    def faults(self, exact):
        wrong = sorted(set(self) ^ set(exact))
        wrong += [name for name, (sum, fault) in self.items()
                  if name in exact and abs(sum - exact[name]) > fault]
        return [(name, self.get(name), exact.get(name)) for name in wrong[:3]]


def printed_leaks(text):
    """Sums by call path (outermost function first), by line and by function."""
    paths, lines, functions = rounded_sums(), rounded_sums(), rounded_sums()
    part = text.split("MEMORY LEAKS\n")[1].split("MOST TEMPORARY")[0]
    for leak in part.strip().split("\n\n"):
        begin, *rest = leak.split("\n")
        figure = re.fullmatch(r"([\d.]+)([BKMG]) leaked over \d+ calls? from", begin).groups()
        frames = [line[2:] for line in rest if not line.startswith("    ")]  # innermost first
        place = next((line[7:] for line in rest[1:2] if line.startswith("    at ")), None)
        module = next(line[7:] for line in rest if line.startswith("    in "))
        paths.add(from_start(frames[::-1]), *figure)
        lines.add(place or os.path.basename(module) + ":" + frames[0], *figure)
        functions.add(frames[0], *figure)
    return paths, lines, functions


def summary(text, words):
    return re.search(r"^" + re.escape(words) + r":\s*([\d.]+)([BKMG]?)", text, re.M).groups()


class converted:
    """The trace of a recording, and its report."""

    def __init__(self, build, recording, run, *options):
        output_of(build + "/src/kivconvert", recording, "-o", run, *options)
        report = json.loads(output_of(
            build + "/src/kivdb", "report", run, "--json", "--by", "path,function,line",
            "--of", "allocated,leaked,peak"))
        self.trace = report["runs"][0]["traces"][0]
        self.lists = {(one["by"], one["of"]): one for one in report["runs"][0]["lists"]}
        output_of(build + "/src/kiv", "-R", run)
        self.run = run

    def stacks(self, measure, unit):
        sums = collections.Counter()
        for row in self.lists["path", measure]["rows"]:
            # The outermost is the process itself.
            frames = [frame.split(":", 1)[1] for frame in row["frames"][1:]]
            sums[from_start(frames)] += row[unit]
        return +sums

    def leaks(self, key):
        sums = collections.Counter()
        for row in self.lists[key, "leaked"]["rows"]:
            sums[row["name"].split(":", 1)[1] if key == "function" else row["name"]] += row["bytes"]
        return +sums

    def ended_at_once(self):
        """Blocks that the very next memory record freed."""
        count = 0
        for path in glob.glob(self.run + "/kiv.*.freemem.*.csv"):
            with open(path) as rows:
                for row in rows:
                    _, _, made, ended, kind = row.rstrip("\n").split(";")
                    count += kind == "f" and int(ended) == int(made) + 1
        return count


def counted_besides(recording):
    """heaptrack_print takes an end of the recording's first allocation behind another end for a
    temporary allocation too."""
    unpacked = output_of("zstd", "-dc", recording)
    count, last = 0, "-"
    for line in unpacked.split("\n"):
        if line[:2] not in ("+ ", "- "):
            continue
        count += line == "- 0" and last == "-"
        last = line[0]
    return count


def main():
    build, recording, statistics = sys.argv[1:]
    faults = []

    def check(what, expected, actual):
        if expected == actual:
            return
        if isinstance(expected, dict):  # names that differ will do
            names = sorted(name for name in set(expected) | set(actual)
                           if expected.get(name) != actual.get(name))[:3]
            expected = [(name, expected.get(name)) for name in names]
            actual = [(name, actual.get(name)) for name in names]
        faults.append(f"{what}: heaptrack has {expected}, the trace {actual}")

    with tempfile.TemporaryDirectory() as directory:
        text = output_of("heaptrack_print", recording, *PLAIN, "-l", "-n", "1000000",
                         "-m", "0")
        plain = converted(build, recording, directory + "/plain")
        raw = converted(build, recording, directory + "/raw", "--raw")

        def rounded(value, words):
            number, unit = summary(text, words)
            digits = len(number.partition(".")[2])
            return number == f"{value / UNITS[unit or 'B']:.{digits}f}"

        stacks = {measure: printed_stacks(recording, measure, directory)
                  for measure in [*MEASURES, "temporary"]}
        for trace in (plain, raw):
            check("complete", True, trace.trace["complete"])
            for measure, (of, unit) in MEASURES.items():
                own = collections.Counter()
                for path, cost in trace.stacks(of, unit).items():
                    own[tuple(sorted(path))] += cost
                check(measure + " by call path", stacks[measure], own)
            check("allocations", int(summary(text, "calls to allocation functions")[0]),
                  trace.trace["allocated"]["blocks"])
            leaked, peak = trace.trace["leaked"], trace.trace["peak"]["bytes"]
            check("leaked blocks", int(summary(open(statistics).read(), "\tleaked allocations")[0]),
                  leaked["blocks"])
            check("leaked bytes, rounded", True, rounded(leaked["bytes"], "total memory leaked"))
            check("peak bytes, rounded", True, rounded(peak, "peak heap memory consumption"))
            paths, lines, functions = printed_leaks(text)
            for key, printed, own in (("call path", paths, trace.stacks("leaked", "bytes")),
                                      ("line", lines, trace.leaks("line")),
                                      ("function", functions, trace.leaks("function"))):
                for name, expected, actual in printed.faults(own):
                    check(f"leaked by {key} {name}", expected, actual)
        # The report against the tables of the same trace; it fails when a figure differs.
        judge = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../judge/judge.py")
        output_of(sys.executable, judge, build + "/src/kiv", build + "/src/kivdb", plain.run)
        printed = int(summary(text, "temporary memory allocations")[0])
        check("temporary", printed - counted_besides(recording), plain.ended_at_once())
        check("temporary, told by addresses",
              int(summary(open(statistics).read(), "\ttemporary allocations")[0]),
              raw.ended_at_once())
        figures = plain.trace
        print(f"{os.path.basename(recording)}: {figures['allocated']['blocks']} allocations, "
              f"{figures['leaked']['blocks']} leaked with {figures['leaked']['bytes']} bytes in "
              f"{len(lines)} lines, peak {figures['peak']['bytes']}, "
              f"{len(stacks['peak'])} call paths at the peak, "
              f"{plain.ended_at_once()} temporary ({raw.ended_at_once()} told by addresses)")
    for fault in faults:
        print("compare: " + fault, file=sys.stderr)
    return 1 if faults else 0


sys.exit(main())
