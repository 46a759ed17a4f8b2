"""Questions about a generated fleet: the same answers as from a file."""
import subprocess

import pytest

from cluster import BUILD, kivdb

RUNS = 60

QUESTIONS = [
    ["--csv"], [], ["--json"],
    *(["--only", only, "--json"] for only in ("summary", "hosts", "outliers", "peaks", "first_leaks", "growth")),
    *(["--only", "first_leaks", "--by", by, "--leaked-above", "1K", "--csv"]
      for by in ("id", "color", "line", "function", "process", "query")),
    ["--only", "growth", "--of", "peak", "--runs", "3", "--csv"],
    ["--only", "outliers", "--beyond", "1.2", "--csv"],
]


@pytest.fixture(scope="module")
def fleet(cluster, tmp_path_factory):
    file = tmp_path_factory.mktemp("fleet") / "fleet.db"
    cluster.setup("fleet")
    for target in (file, cluster.url(1, "fleet")):
        subprocess.run([BUILD / "tests" / "fleet" / "make_fleet", str(RUNS), target], check=True)
    return file, cluster.url(2, "fleet", user="READER")


@pytest.mark.parametrize("question", QUESTIONS, ids=" ".join)
def test_question(fleet, question):
    of_file, of_server = (kivdb("fleet", source, *question) for source in fleet)
    assert of_server == of_file
    assert of_file.count(b"\n") > 1


@pytest.mark.parametrize("view", ["fleet_summary", "fleet_outliers", "fleet_first_leaks", "fleet_growth"])
def test_view(fleet, view):
    of_file, of_server = (kivdb("show", source, view, "--csv") for source in fleet)
    assert of_server == of_file
    assert of_file.count(b"\n") > 1


def test_runs_lie_on_both_shards(fleet, cluster):
    counts = [int(cluster.query("SELECT count() FROM import_stored", server, "fleet")[0][0]) for server in (1, 2)]
    assert sum(counts) == RUNS
    assert min(counts) > RUNS / 4
