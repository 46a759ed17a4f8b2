"""Whatever kivdb prints of a file, it prints of a server with the same runs."""
import json

import pytest

from cluster import by_rank, kivdb, kivdb_json, without_times

VIEWS = [row["view"] for row in kivdb_json("views")]
RUN = "MIX"

COMMANDS = [
    ["report", "{}"],
    ["report", "{}", "--run", RUN, "--json"],
    ["report", "{}", "--run", RUN, "--by", "id,color,line,function,path,process,query",
     "--of", "leaked,peak,live,allocated,temporary", "--csv"],
    ["report", "{}", "--run", "SQL1", "--focus", "sqlite", "--ignore", "Vdbe"],
    ["tree", "{}", "--run", "SQL1", "--of", "peak"],
    ["tree", "{}", "--run", "SQL1", "--of", "allocated", "--json"],
    ["export", "{}", "--run", "SQL1", "--format", "collapsed", "--of", "allocated", "-o", "-"],
    ["export", "{}", "--run", RUN, "--format", "speedscope", "--of", "allocated", "-o", "-"],
    ["diff", "{}", RUN, "NEXT"],
    ["diff", "{}", RUN, "NEXT", "--by", "path", "--of", "peak", "--json"],
    ["trend", "{}"],
    ["trend", "{}", "--by", "line", "--of", "peak", "--last", "3", "--csv"],
    ["runs", "{}"],
    ["runs", "{}", "--json"],
    ["sql", "{}", "SELECT run, source_line, leaked_bytes FROM by_line ORDER BY run, pid, source_line"],
    ["sql", "{}", "SELECT run, COUNT(*) AS n, SUM(peak_bytes) AS total FROM by_id GROUP BY run ORDER BY run", "--json"],
    ["sql", "{}", "SELECT run_id, type, COUNT(*) AS n, SUM(size) AS total FROM memory GROUP BY run_id, type "
                  "ORDER BY run_id, type", "--csv"],
    ["sql", "{}", "SELECT run_id, rec, color_label, hosk_args FROM memory ORDER BY run_id, main_pid, rec LIMIT 50"],
    ["sql", "{}", "SELECT run_id, main_pid, rec, type, size, end_rec, end_type FROM block "
                  "ORDER BY run_id, main_pid, rec, end_rec LIMIT 500", "--json"],
]


def shown(source, view, *options):
    """The rows of a view, without what depends on when a run was imported."""
    printed = without_times(kivdb("show", source, view, "--json", *options))
    rows = json.loads(printed.decode(errors="surrogateescape"))
    if rows and "import_order" in rows[0]:
        return by_rank(rows, "import_order")
    return printed


@pytest.mark.parametrize("view", VIEWS)
@pytest.mark.parametrize("run", [None, RUN, "SQL1"])
def test_view(both, view, run):
    file, url = both
    options = ("--run", run) if run else ()
    assert shown(url, view, *options) == shown(file, view, *options)


@pytest.mark.parametrize("arguments", COMMANDS, ids=lambda arguments: " ".join(arguments)[:60])
def test_command(both, arguments):
    of_file, of_server = (without_times(kivdb(*(str(source) if part == "{}" else part for part in arguments)))
                          for source in both)
    assert of_server == of_file
    assert of_file.count(b"\n") > 1


def test_pages_of_html(both, tmp_path):
    pages = []
    for source in both:
        kivdb("html", source, "--run", RUN, "--run", "NEXT", "-o", tmp_path / "page.html")
        pages.append((tmp_path / "page.html").read_bytes().replace(str(source).encode(), b"SOURCE"))
    assert pages[0] == pages[1]


def test_every_csv_table(both, cluster):
    file, url = both
    for table, in cluster.query("SELECT name FROM system.tables WHERE database = 'kiv' AND name LIKE '%\\_stored'"):
        name = table.removesuffix("_stored")
        if name in ("import", "trace", "list", "block_group", "name_sum"):
            continue
        rows = [kivdb("sql", source, f"SELECT * FROM {name}", "--csv").splitlines() for source in both]
        assert sorted(rows[1]) == sorted(rows[0]), name
        assert rows[1][0] == rows[0][0], name


def test_a_run_lies_on_one_shard(both, cluster):
    for table in ("import", "trace", "list", "block_group", "name_sum", "memory"):
        of = [{run for run, in cluster.query(f"SELECT DISTINCT run FROM {table}_stored", server, "kiv")}
              for server in (1, 2)]
        assert not of[0] & of[1], table
        assert of[0] and of[1], table
