#!/usr/bin/env python3
"""judge.py KIV KIVDB RUN...: holds `kivdb report` against the tables that kiv writes.

Copies each run (a directory with traces) into a directory of its own, has KIV analyse it, works
out from `memory`, `freemem` and the tables of names what leaked, was live, was live at the peak,
was allocated and was temporary, by line, id and call path, and compares every figure with the
report that KIVDB makes straight from the traces.
"""
import collections, glob, json, os, shutil, subprocess, sys, tempfile

KEYS = ["line", "id", "path"]
MEASURES = ["leaked", "peak", "live", "allocated", "temporary"]


def rows(run, table):
    """The fields of every row, in the order of the files' numbers."""
    files = glob.glob(glob.escape(run) + "/kiv.*." + table + ".*.csv")
    for path in sorted(files, key=lambda name: int(name.split(".")[-2])):
        with open(path, encoding="utf-8", errors="surrogateescape", newline="") as file:
            for line in file.read().split("\n")[:-1]:
                yield line.split(";")


def names_of_ids(run):
    names = {}
    for row in rows(run, "malid"):
        text, category, description, reference = row[4:8]
        name = category + " " + description if description else text
        if description and reference and category in ("oic", "dlock"):
            name += ":" + reference
        names[row[1], row[2]] = name
    return names


def stacks_of(run):
    """Call stacks by process and flow counter, as tuples of "object:function".

    None where the tables do not hold them: the arcs of a process are written when it ends."""
    arcs = {(r[1], r[2], r[3]): (r[4] + ":" + r[7], r[8] + ":" + r[11]) for r in rows(run, "arcs")}
    stacks, now = {}, collections.defaultdict(tuple)
    for _, main, pid, flow, depth, _, arc, direction in rows(run, "flow"):
        if flow == "0":  # the process starts
            now[main, pid] = ()
        elif now[main, pid] is None or (main, pid, arc) not in arcs and direction == ">":
            now[main, pid] = None
        elif direction == ">":
            caller, callee = arcs[main, pid, arc]
            now[main, pid] = (now[main, pid] or (caller,)) + (callee,)
        else:
            now[main, pid] = now[main, pid][:-1]
        stacks[main, pid, flow] = now[main, pid]
    return stacks


def blocks_of(run):
    """Every block: where it was made, with which size, and how it ended."""
    lines = {(r[1], r[2]): r[3] for r in rows(run, "hashloc")}
    ids, stacks = names_of_ids(run), stacks_of(run)
    ends = {}
    for _, main, ended, cause, kind in rows(run, "freemem"):
        ends[main, ended] = (int(cause), kind)
    blocks, by_record = [], {}
    for row in rows(run, "memory"):
        main, kind, record, pid, flow = row[1], row[3], row[4], row[6], row[8]
        if kind in "an":
            size = (int(row[24]), int(row[25]))
            block = {
                "line": lines.get((main, row[18]), "unknown line"),
                "id": ids.get((main, row[19]), "unknown id"),
                "path": stacks.get((main, pid, flow), ()),
                "kind": kind, "main": main, "made": int(record), "made_size": size,
                "sizes": [(int(record), size)], "end": None, "by": None,
            }
            blocks.append(block)
            by_record[main, record] = block
        elif kind == "r" and row[27] != "0":
            block = by_record.pop((main, row[27]))
            block["sizes"].append((int(record), (int(row[24]), int(row[25]))))
            by_record[main, record] = block
    for key, block in by_record.items():
        if key in ends:
            block["end"], block["by"] = ends[key]
    return blocks


def peak_of(blocks):
    """The first record after which most bytes were live."""
    changes = collections.Counter()
    for block in blocks:
        before = 0
        for record, (size, _) in block["sizes"]:
            changes[record] += size - before
            before = size
        if block["end"] is not None:
            changes[block["end"]] -= before
    live = most = record_of_most = 0
    for record in sorted(changes):
        live += changes[record]
        if live > most:
            most, record_of_most = live, record
    return record_of_most


def counted(block, measure, peak):
    """The size with which a block counts for a measure; nothing when it does not."""
    if measure == "allocated":
        return block["made_size"]
    if measure == "temporary":
        short = block["by"] == "f" and block["end"] - block["made"] <= 100
        return block["made_size"] if short else None
    if measure == "peak":
        if block["made"] > peak or (block["end"] is not None and block["end"] <= peak):
            return None
        return [size for record, size in block["sizes"] if record <= peak][-1]
    if measure == "live":
        return block["sizes"][-1][1] if block["end"] is None else None
    leaked = block["kind"] == "a" and block["by"] in (None, "F")
    return block["sizes"][-1][1] if leaked else None


def expected_lists(run):
    blocks = blocks_of(run)
    peaks = {main: peak_of([b for b in blocks if b["main"] == main])
             for main in {b["main"] for b in blocks}}
    lists = {}
    for measure in MEASURES:
        for key in KEYS:
            sums = collections.defaultdict(lambda: [0, 0, 0])
            for block in blocks:
                size = counted(block, measure, peaks[block["main"]])
                if size is None:
                    continue
                total = sums[block[key]]
                total[0] += 1
                total[1] += size[0]
                total[2] += size[1]
            if None in sums:
                continue
            lists[key, measure] = {name: tuple(sum) for name, sum in sums.items() if any(sum)}
    return lists


def reported_lists(kivdb, run):
    command = [kivdb, "report", run, "--json", "--by", ",".join(KEYS), "--of", ",".join(MEASURES)]
    out = subprocess.run(command, check=True, capture_output=True).stdout
    lists = {}
    for report in json.loads(out)["runs"]:
        for one in report["lists"]:
            found = lists.setdefault((one["by"], one["of"]), {})
            for row in one["rows"]:
                name = tuple(row["frames"]) if one["by"] == "path" else row["name"]
                found[name] = (row["blocks"], row["bytes"], row["tot_bytes"])
    return lists


def main():
    kiv, kivdb = (os.path.abspath(path) for path in sys.argv[1:3])
    faults = figures = 0
    for source in [os.path.abspath(path) for path in sys.argv[3:]]:
        with tempfile.TemporaryDirectory() as scratch:
            name = os.path.basename(source)
            run = os.path.join(scratch, name)
            os.mkdir(run)
            for path in glob.glob(glob.escape(source) + "/*.kiv*"):
                shutil.copy(path, run)
            os.chdir(scratch)
            subprocess.run([kiv, "-R", name], check=True, capture_output=True)
            expected, reported = expected_lists(run), reported_lists(kivdb, run)
        for which, by_name in expected.items():
            found = reported.get(which, {})
            figures += len(by_name)
            for key in by_name.keys() | found.keys():
                if by_name.get(key) != found.get(key):
                    faults += 1
                    print(name, *which, key, "by the tables", by_name.get(key),
                          "by the report", found.get(key))
    print(f"{figures} figures compared, {faults} differ")
    return 1 if faults or not figures else 0


sys.exit(main())
