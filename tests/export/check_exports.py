#!/usr/bin/env python3
"""check_exports.py KIVDB SOURCE...: reads every format of `kivdb export` back and holds its sums
against `kivdb report --json`, to the byte. It shares no code with the program, and reads the format
of pprof and that of speedscope by itself."""

import gzip
import json
import re
import subprocess
import sys
import time
from collections import Counter, defaultdict

MEASURES = ["leaked", "peak", "live", "allocated", "temporary"]
TITLES = {"leaked": "leaked", "live at the peak": "peak", "live at the end": "live",
          "allocated": "allocated", "temporary": "temporary"}
KEYS = ["id", "color", "line", "function", "path", "process", "query"]
FILTERS = [[], ["--focus", "[a-l]+_|libc"], ["--ignore", "main|small"]]


class Fault(Exception):
    pass


def expect(condition, what):
    if not condition:
        raise Fault(what)


def same(actual, wanted, what):
    actual = {name: number for name, number in actual.items() if number}
    wanted = {name: number for name, number in wanted.items() if number}
    expect(actual == wanted, f"{what}: differs in {sorted(actual.items() ^ wanted.items())[:6]}")


def run(*arguments):
    done = subprocess.run(arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    expect(done.returncode == 0, f"{arguments}: status {done.returncode}, {done.stderr}")
    return done.stdout


def one_line(name):
    """The name as tools get it that print what they read."""
    name = re.sub("[\t-\r]", " ", name)
    return re.sub("[\x00-\x1f\x7f-\x9f\ufffd]", "?", name)


def as_frame(name):
    return one_line(name).replace(";", ",") or "(no name)"


# What the report says: sums[measure][key][name] and sums[measure]["trace"][pid].


def unit_of(numbers, unit):
    return numbers["blocks" if unit == "blocks" else "bytes"]


def reported(report, unit, text):
    """By path the name is the tuple of its frames. Names that `text` makes equal are one."""
    sums = defaultdict(lambda: defaultdict(Counter))
    for part in report["lists"]:
        names = sums[part["of"]][part["by"]]
        for row in part["rows"]:
            name = (tuple(text(frame) for frame in row["frames"]) if part["by"] == "path"
                    else text(row["name"]))
            names[name] += unit_of(row, unit)
    for trace in report["traces"]:
        for measure in MEASURES:
            sums[measure]["trace"][str(trace["pid"])] += unit_of(trace[measure], unit)
    return sums


# Readers of the formats.


def read_collapsed(data):
    lines = data.decode().split("\n")
    expect(lines.pop() == "", "collapsed: the last line has no end")
    expect(len(set(line.rpartition(" ")[0] for line in lines)) == len(lines),
           "collapsed: a path has two lines")
    for line in lines:
        path, _, number = line.rpartition(" ")
        frames = tuple(path.split(";"))
        expect(all(frames) and int(number) > 0, f"collapsed: {line!r}")
        yield frames, int(number)


def varint(data, at):
    value = shift = 0
    while True:
        byte = data[at]
        at += 1
        value |= (byte & 0x7F) << shift
        if byte < 0x80:
            return value, at
        shift += 7


def message(data):
    """The fields of a message: number -> values, a number or bytes each."""
    fields = defaultdict(list)
    at = 0
    while at < len(data):
        tag, at = varint(data, at)
        if tag & 7 == 0:
            value, at = varint(data, at)
        else:
            expect(tag & 7 == 2, f"pprof: wire type {tag & 7}")
            length, at = varint(data, at)
            value, at = data[at:at + length], at + length
            expect(len(value) == length, "pprof: cut short")
        fields[tag >> 3].append(value)
    return fields


def numbers(values):
    """A repeated number, packed or not."""
    all_numbers = []
    for value in values:
        if isinstance(value, int):
            all_numbers.append(value)
            continue
        at = 0
        while at < len(value):
            number, at = varint(value, at)
            all_numbers.append(number)
    return all_numbers


def single(fields, number):
    return fields[number][-1] if fields[number] else 0


def by_id(entries, what):
    table = {}
    for entry in map(message, entries):
        number = single(entry, 1)
        expect(number > 0 and number not in table, f"pprof: {what} {number} comes twice or is 0")
        table[number] = entry
    return table


class Pprof:
    """Samples as (values by sample type, [(function, "file:line")] innermost first, labels)."""

    def __init__(self, data):
        fields = message(gzip.decompress(data))
        texts = [text.decode() for text in fields[6]]
        expect(texts[0] == "" and len(set(texts)) == len(texts), "pprof: table of texts")
        self.types = [(texts[single(one, 1)], texts[single(one, 2)])
                      for one in map(message, fields[1])]
        self.default_type = texts[single(fields, 14)]
        self.comments = [texts[place] for place in numbers(fields[13])]
        self.time, self.duration = single(fields, 9), single(fields, 10)
        mappings = by_id(fields[3], "mapping")
        self.program = texts[single(mappings[1], 5)]
        functions = by_id(fields[5], "function")
        locations = by_id(fields[4], "location")
        places = {}
        for number, location in locations.items():
            expect(single(location, 2) in mappings, "pprof: location without mapping")
            expect(len(location[4]) == 1, "pprof: a location has one line")
            line = message(location[4][0])
            function = functions[single(line, 1)]
            file, at = texts[single(function, 4)], single(line, 2)
            places[number] = (texts[single(function, 2)], f"{file}:{at}" if at else file)
        self.samples = []
        for sample in map(message, fields[2]):
            values = numbers(sample[2])
            expect(len(values) == len(self.types) and any(values), "pprof: values of a sample")
            labels = {}
            for label in map(message, sample[3]):
                labels[texts[single(label, 1)]] = texts[single(label, 2)]
            self.samples.append((values, [places[place] for place in numbers(sample[1])], labels))


def check_collapsed(export, report):
    for measure in MEASURES:
        for unit in ["bytes", "blocks"]:
            options = ["--of", measure] + (["--blocks"] if unit == "blocks" else [])
            wanted = reported(report, unit, as_frame)[measure]
            where = f"collapsed {' '.join(options)}"
            paths, ids, colors = Counter(), Counter(), Counter()
            for frames, number in read_collapsed(export("collapsed", *options)):
                paths[() if frames == ("(no call path)",) else frames] += number
            same(paths, wanted["path"], where)
            inner = Counter()
            for frames, number in read_collapsed(export("collapsed", "--ids", *options)):
                ids[frames[0]] += number
                names = ["" if frame == "(no name)" else frame for frame in frames[:2]]
                colors[" / ".join(names)] += number
                inner[() if frames[2:] == ("(no call path)",) else frames[2:]] += number
            same(inner, paths, where + " --ids")
            same(ids, wanted["id"], where + " --ids, id")
            same(colors, wanted["color"], where + " --ids, colour")


def check_speedscope(export, report):
    for unit in ["bytes", "blocks"]:
        options = ["--blocks"] if unit == "blocks" else []
        data = export("speedscope", *options)
        expect(data == export("speedscope", *options), "speedscope: two exports differ")
        document = json.loads(data)
        wanted = reported(report, unit, str)
        expect(document["$schema"] == "https://www.speedscope.app/file-format-schema.json",
               "speedscope: schema")
        expect(isinstance(document["name"], str), "speedscope: name")
        frames = [frame["name"] for frame in document["shared"]["frames"]]
        expect(len(set(frames)) == len(frames), "speedscope: a frame comes twice")
        sums = defaultdict(lambda: defaultdict(Counter))
        titles = Counter(profile["name"] for profile in document["profiles"])
        for profile in document["profiles"]:
            name, weights, samples = profile["name"], profile["weights"], profile["samples"]
            where = f"speedscope, {name!r}"
            expect(profile["type"] == "sampled" and profile["startValue"] == 0, where)
            expect(profile["unit"] == ("none" if unit == "blocks" else "bytes"), where + ": unit")
            expect(len(weights) == len(samples), where + ": weights and samples")
            expect(sum(weights) == profile["endValue"], where + ": endValue")
            expect(titles[name] == 1, where + ": comes twice")
            title, _, process = name.partition(", blocks: " if unit == "blocks" else ": ")
            if process == "nothing":
                expect(not samples, where)
                continue
            who = re.fullmatch(r"(.*) \(\d+\), trace (-?\d+)(, [^,]+)*", process, re.DOTALL)
            total = sums[TITLES[title]]
            total["process"][who[1]] += sum(weights)
            total["trace"][who[2]] += sum(weights)
            for sample, weight in zip(samples, weights):
                path = tuple(frames[frame] for frame in sample)
                expect(path and weight > 0, where + ": empty sample")
                total["path"][() if path == ("(no call path)",) else path] += weight
        for measure in MEASURES:
            for key in ["process", "trace", "path"]:
                same(sums[measure][key], wanted[measure][key], f"speedscope {unit} {measure} {key}")


def nanoseconds(local_time):
    if not local_time:
        return 0
    seconds, _, milliseconds = local_time.partition(".")
    seconds = int(time.mktime(time.strptime(seconds, "%Y-%m-%d %H:%M:%S")))
    return seconds * 10**9 + int(milliseconds) * 10**6


def check_pprof(export, report):
    data = export("pprof")
    expect(data == export("pprof"), "pprof: two exports differ")
    profile = Pprof(data)
    expect(profile.types == [(f"{measure}_{kind}", unit) for measure in MEASURES
                             for kind, unit in [("blocks", "count"), ("bytes", "bytes")]],
           f"pprof: sample types {profile.types}")
    expect(profile.default_type == "peak_bytes", "pprof: default sample type")
    told = any("NOT COMPLETE" in comment for comment in profile.comments)
    expect(told == any(trace["losses"] for trace in report["traces"]), "pprof: losses in comments")
    start, end = [edge(nanoseconds(trace[key]) for trace in report["traces"])
                  for edge, key in [(min, "start"), (max, "end")]]
    expect((profile.time, profile.duration) == (start, max(end - start, 0)), "pprof: times")
    for index, (type_name, _) in enumerate(profile.types):
        measure, unit = type_name.split("_")
        sums = defaultdict(Counter)
        for values, stack, labels in profile.samples:
            value = values[index]
            path = tuple(function for function, _ in reversed(stack))
            function = path[-1]
            if path == ("(no call path)",):
                path, function = (), "(no function)"
            sums["path"][path] += value
            sums["function"][function] += value
            sums["line"][stack[0][1]] += value
            expect(not any(line for _, line in stack[1:]), "pprof: a caller has a line")
            sums["query"][labels.get("query", "(no finished SQL operation)")] += value
            for key in ["id", "color", "process", "trace"]:
                sums[key][labels[key]] += value
        wanted = reported(report, unit, one_line)[measure]
        for key in KEYS + ["trace"]:
            same(sums[key], wanted[key], f"pprof {type_name} {key}")


def check(kivdb, source):
    report_options = ["--json", "--by", ",".join(KEYS), "--of", ",".join(MEASURES)]
    for filters in FILTERS:
        for report in json.loads(run(kivdb, "report", source, *report_options, *filters))["runs"]:
            def export(form, *options, name=report["run"]):
                return run(kivdb, "export", source, "--run", name, "--format", form, *options,
                           *filters)
            for check_format in [check_collapsed, check_speedscope, check_pprof]:
                check_format(export, report)


def main():
    kivdb, *sources = sys.argv[1:]
    expect(sources, "no source to check")
    faults = 0
    for source in sources:
        try:
            check(kivdb, source)
        except Fault as fault:
            faults += 1
            print(f"{source}: {fault}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
