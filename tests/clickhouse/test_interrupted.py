"""Whatever dies in the middle of a load: a run is there whole or not at all, and others are untouched."""
import subprocess
import time

import pytest

import cluster as clusters
from cluster import kivdb, kivdb_json

TIMES = 20


@pytest.fixture(scope="module")
def loaded(cluster, sources):
    """A database with one run that no test touches, on each shard, and the answers that a run may have:
    (URL, the run that is loaded, its possible answers)."""
    cluster.setup("interrupted")
    url = cluster.url(1, "interrupted")
    answers = []
    for source in ("MIX", "NEXT"):
        kivdb("import", sources[source], "--to", url, "--rows", "--as", "answer")
        answers.append(answer_of(url, "answer"))
    for shard in (1, 2):
        kivdb("import", sources["SQL1"], "--to", url, "--rows", "--as", cluster.name_on_shard(shard, "other"))
    kivdb("forget", url, "answer")
    return url, answers


def answer_of(url, run):
    """All that is known of a run, by whatever it is asked."""
    return (kivdb("report", url, "--run", run, "--by", "id,path", "--of", "allocated", "--json").replace(
                run.encode(), b"RUN"),
            kivdb_json("show", url, "run_summary", "--run", run)[0]["records"],
            kivdb("sql", url, f"SELECT COUNT(*), SUM(size) FROM memory WHERE run_id = '{run}'", "--csv"))


def others(url):
    return {row["run"]: answer_of(url, row["run"]) for row in kivdb_json("runs", url)
            if row["run"].startswith("other")}


def holds(url, run):
    return run in {row["run"] for row in kivdb_json("runs", url)}


def start_import(sources, url, run, number):
    source = sources[("MIX", "NEXT")[number % 2]]
    return subprocess.Popen([clusters.KIVDB, "import", source, "--to", url, "--rows", "--as", run],
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def repair(sources, url, run, answers):
    kivdb("import", sources["MIX"], "--to", url, "--rows", "--as", run)
    assert answer_of(url, run) == answers[0]


def test_kivdb_dies(loaded, sources):
    url, answers = loaded
    before = others(url)
    start = time.monotonic()
    repair(sources, url, "cut", answers)
    whole = time.monotonic() - start
    unfinished = 0
    for i in range(TIMES):
        importing = start_import(sources, url, "cut", i)
        time.sleep(whole * i / TIMES)
        importing.kill()
        unfinished += importing.wait() != 0
        assert answer_of(url, "cut") in answers
    assert unfinished >= TIMES / 4, "kivdb was always done before it was killed"
    repair(sources, url, "cut", answers)
    assert others(url) == before


@pytest.mark.parametrize("killed", [1, 2])
def test_a_server_dies(loaded, cluster, sources, killed):
    """The run lies on the second shard; once that dies, once the server that is talked to."""
    url, answers = loaded
    run = cluster.name_on_shard(2, f"dying{killed}")
    before = others(url)
    failed = 0
    for i in range(TIMES // 2):
        importing = start_import(sources, url, run, i)
        time.sleep(0.02 * i)
        cluster.kill(killed)
        cluster.start(killed)
        importing.communicate(timeout=40)
        failed += importing.returncode != 0
        assert importing.returncode in (0, 2)
        if importing.returncode == 0 or holds(url, run):
            assert answer_of(url, run) in answers
    assert others(url) == before
    repair(sources, url, run, answers)


def test_pruning_takes_away_what_is_left(loaded, cluster, sources):
    url, answers = loaded
    before = others(url)
    kivdb("import", sources["MIX"], "--to", url, "--rows", "--as", "kept")
    kivdb("import", sources["NEXT"], "--to", url, "--rows", "--as", "kept")
    kivdb("import", sources["NEXT"], "--to", url, "--as", "gone")
    kivdb("forget", url, "gone")
    # A load that came to no end long ago, and one that may still go on.
    cut, going_on = 5, 9_000_000_000_000_000_000
    for server in (1, 2):
        for load in (cut, going_on):
            cluster.query("INSERT INTO list_stored (run, import, list) VALUES "
                          f"('cut', {load}, 'id_name')", server, "interrupted")
    kivdb("prune", cluster.url(1, "interrupted"), cluster.url(2, "interrupted"))
    for server in (1, 2):
        loads = {load for load, in cluster.query("SELECT DISTINCT import FROM list_stored", server, "interrupted")}
        entries = cluster.query("SELECT import, deleted FROM import_stored", server, "interrupted")
        assert loads - {load for load, _ in entries} <= {str(going_on)} | young(cluster, server), server
        assert str(cut) not in loads and str(going_on) in loads
        runs = cluster.query("SELECT run FROM import_stored WHERE deleted = 0", server, "interrupted")
        assert len(runs) == len({run for run, in runs})
    assert answer_of(url, "kept") == answers[1]
    assert others(url) == before
    assert not holds(url, "gone")


def young(cluster, server):
    """Loads of today that were cut off: they may still go on, for all the server knows."""
    return {load for load, in cluster.query(
        "SELECT DISTINCT import FROM list_stored WHERE import NOT IN (SELECT import FROM import_stored)",
        server, "interrupted")}
