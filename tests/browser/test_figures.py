"""What the page shows are the figures of `kivdb report --json`, to the byte."""

import re
import subprocess

import pytest

from page import KEYS, KIVDB, MEASURES, figures, number, total


def name_of(row):
    return row["name"] if "name" in row else (row["frames"] or ["(no call path)"])[-1]


@pytest.mark.parametrize("run", ["MIX", "SQL1", "SEVERAL", "HOSTILE", "LARGE"])
def test_sums_are_the_reports(open_page, reported, run):
    page = open_page(run)
    for of in MEASURES:
        whole = total(reported(run), of)
        assert page.exact(f"#sum-{of}") == [whole["bytes"]]
        assert page.text(f"#sum-{of}") == page.run("return human_bytes(arguments[0])", whole["bytes"])
        assert page.text(f"#sum-{of} + dd") == f"{whole['blocks']:,} block" + "s" * (whole["blocks"] != 1)
        page.choose("measure", of)
        assert page.flame_bytes() == [total(reported(run), of)["bytes"]]
        page.choose("flame-direction", "innermost")
        assert page.flame_bytes() == [total(reported(run), of)["bytes"]]


@pytest.mark.parametrize("run", ["MIX", "SQL1", "LARGE"])
def test_tables_have_the_rows_of_the_report(open_page, reported, run):
    page = open_page(run)
    for of in MEASURES:
        page.choose("measure", of)
        for by in KEYS:
            page.choose("table-key", by)
            page.show_all_rows()
            expected = figures(reported(run), by, of)
            rows = page.table("#table-rows")
            shown = [(number(row[0]), number(row[2]), number(row[3])) for row in rows]
            names = page.list_names()
            assert len(rows) == len(expected["rows"]) or page.foot("others")
            assert shown == [(row["bytes"], row["blocks"], row["tot_bytes"]) for row in expected["rows"][: len(rows)]]
            assert names == [name_of(row) for row in expected["rows"][: len(rows)]]
            # What was cut is said, so that the lines add up to the total.
            others = [number(page.foot("others")[at]) if page.foot("others") else 0 for at in (0, 2, 3)]
            sums = [sum(column) + other for column, other in zip(zip(*shown), others)] if shown else others
            assert sums == [number(page.foot("total")[at]) for at in (0, 2, 3)]
            assert sums == [expected["total"][each] for each in ("bytes", "blocks", "tot_bytes")]


def test_figures_are_written_as_the_report_writes_them(open_page, sources):
    page = open_page("SQL1")
    shown = 0
    for of in MEASURES:
        command = [KIVDB, "report", "--by", "function", "--of", of, "--top", "1000", sources["SQL1"]]
        printed = subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True).stdout
        rows = re.findall(r"^ +(\S+ \w+) +(<?\S+ %) +(\S+)  (\S+)$", printed, re.MULTILINE)
        page.choose("measure", of)
        page.choose("table-key", "function")
        page.show_all_rows()
        texts = page.run("""return Array.from(document.querySelectorAll('#table-rows tbody tr'), (row) =>
            [0, 1, 2, 4].map((at) => row.cells[at].textContent))""")
        assert texts == [list(row) for row in rows]
        shown += len(rows)
    assert shown > 20


def test_bytes_are_rounded_like_the_reports_and_never_silently(open_page):
    page = open_page("MIX")

    def human(number):
        units = ["B", "KiB", "MiB", "GiB", "TiB", "PiB"]
        unit, value = 0, number
        while value >= (1024 if unit == 0 else 1023.95):
            unit, value = unit + 1, value / 1024
        return f"{value} B" if unit == 0 else f"{value:.1f} {units[unit]}"

    numbers = [256 * n for n in range(200)] + [1024**k - 1 for k in range(1, 5)] + [1024**k * 1023.95 // 1 for k in range(1, 4)]
    assert page.run("return arguments[0].map(human_bytes)", numbers) == [human(int(n)) for n in numbers]
    assert page.run("return [2 ** 53 - 1, 2 ** 53].map(exact_bytes)") == ["9,007,199,254,740,991 bytes", "≈ 9,007,199,254,740,992 bytes"]
    assert page.run("return human_bytes(2 ** 60)") == "≈ 1.0 EiB"


@pytest.mark.parametrize("run", ["MIX", "SQL1", "LARGE"])
def test_timeline_ends_with_what_is_live_and_has_the_peak(open_page, reported, run):
    page = open_page(run)
    rows = page.behind("#timeline-table")
    trace = reported(run)["traces"][0]
    records, live, highest = ([number(row[at]) for row in rows] for at in (0, 2, 3))
    assert records[-1] == trace["records"]
    assert live[-1] == trace["live"]["bytes"]
    assert max(highest) == trace["peak"]["bytes"]
    reached = next(at for at, record in enumerate(records) if record >= trace["peak"]["record"])
    assert highest[reached] == trace["peak"]["bytes"]
    assert all(number(row[2]) == sum(number(cell) for cell in row[5:]) for row in rows)


@pytest.mark.parametrize("run", ["MIX", "SQL1", "LARGE"])
def test_bars_of_sizes_hold_every_block(open_page, reported, run):
    page = open_page(run)
    rows = page.behind("#histogram-size-table")
    made = total(reported(run), "allocated")
    assert sum(number(row[2]) + number(row[4]) for row in rows) == made["blocks"]
    assert sum(number(row[3]) + number(row[5]) for row in rows) == made["bytes"]
    for row in rows:
        low, high, size, blocks = (number(row[at]) for at in (0, 1, 3, 2))
        assert low * blocks <= size <= high * blocks


def test_rounding_is_what_was_taken_beyond_what_was_asked_for(open_page, reported):
    page = open_page("MIX")
    page.choose("measure", "allocated")
    rows = {row[3]: (number(row[0]), number(row[1])) for row in page.table("#rounding")}
    for row in figures(reported("MIX"), "id", "allocated")["rows"]:
        assert rows[row["name"]] == (row["bytes"], row["tot_bytes"] - row["bytes"])
    whole = total(reported("MIX"), "allocated")
    assert rows["Total"] == (whole["bytes"], whole["tot_bytes"] - whole["bytes"])


def test_what_was_lost_is_said_with_an_alarm(open_page, reported):
    page = open_page("LOST")
    said = page.text(".alarm")
    losses = reported("LOST")["traces"][0]["losses"]
    assert len(losses) > 1
    for loss in losses:
        assert f"{loss['what']}: {loss['count']:,}" in said
    assert page.find(".alarm").is_displayed()
    assert open_page("MIX").all(".alarm") == []


def test_what_was_put_together_is_said(open_page):
    page = open_page("LARGE")
    assert "10,648" in page.text("#left-out")
    # A row of which some stands among others in the graph says how much that is.
    page.choose("table-key", "function")
    row = number(page.table("#table-rows")[0][0])
    page.run("document.querySelector('#table-rows .name-cell button').click()")
    missing = number(page.text("#flame-filter .note"))
    assert missing > 0 and missing + page.flame_bytes()[0] == row


def test_a_filter_is_said_and_leaves_the_timeline_whole(open_page, reported):
    page = open_page("SQL1", options=("--focus", "Vdbe"))
    left = reported("SQL1", "--focus", "Vdbe")
    assert "Vdbe" in page.text(".filtered")
    for of in MEASURES:
        page.choose("measure", of)
        assert page.exact(f"#sum-{of}") == page.flame_bytes() == [total(left, of)["bytes"]]
    peak = total(reported("SQL1"), "peak")["bytes"]
    assert peak > total(left, "peak")["bytes"]
    assert max(number(row[3]) for row in page.behind("#timeline-table")) == peak
    assert page.text("#timeline .peak text") == f"peak {peak / 1024:.1f} KiB"
    assert open_page("SQL1").all(".filtered") == []


def test_several_traces_stand_together_and_one_by_one(open_page, reported):
    page = open_page("SEVERAL")
    traces = reported("SEVERAL")["traces"]
    together = page.behind("#timeline-table")
    # What a trace holds counts to the end of its program.
    live = {trace["end"]: trace["live"]["bytes"] for trace in traces}
    assert len(live) == 2
    assert number(together[-1][2]) == live[max(live)]
    assert sum(live.values()) in [number(row[2]) for row in together if row[1] < min(live)]
    assert number(together[-1][0]) == sum(trace["records"] for trace in traces)
    levels = {(number(row[0]), number(row[2])) for row in together}
    # One after the other at each time: the sum goes up by a block of one trace, or down by one.
    assert len(levels) > sum(trace["records"] for trace in traces) * 0.9
    assert [row[1] for row in together] == sorted(row[1] for row in together)
    for trace in traces:
        page.select("#timeline-trace", f"{trace['program']} ({trace['pid']})")
        assert number(page.table("#timeline-table")[-1][2]) == trace["live"]["bytes"]
        page.select("#flame-trace", f"{trace['program']} ({trace['pid']})")
        assert page.flame_bytes() == [trace["leaked"]["bytes"]]


def test_two_runs_stand_with_before_after_and_change(open_page, reported):
    page = open_page("MIX", "NEXT")
    before, after = reported("MIX"), reported("NEXT")
    sums = {row[0]: [number(cell) for cell in row[1:]] for row in page.table("#head")}
    assert len(sums) == len(MEASURES)
    for of, shown in zip(MEASURES, sums.values()):
        a, b = total(before, of)["bytes"], total(after, of)["bytes"]
        assert shown == [a, b, b - a]
    for of in MEASURES:
        page.choose("measure", of)
        assert page.flame_bytes() == [total(before, of)["bytes"], total(after, of)["bytes"]]
        for by in ("line", "id", "process"):
            page.choose("table-key", by)
            page.show_all_rows()
            a, b = ({row["name"]: row["bytes"] for row in figures(run, by, of)["rows"]} for run in (before, after))
            rows = [[number(cell) for cell in row[:3]] for row in page.table("#table-rows")]
            assert dict(zip(page.list_names(), rows)) == {
                name: [a.get(name, 0), b.get(name, 0), b.get(name, 0) - a.get(name, 0)] for name in {**a, **b}}
            assert [row[2] for row in rows] == sorted((row[2] for row in rows), reverse=True)
