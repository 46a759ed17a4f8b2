"""Names of runs and values of labels may hold any bytes: nothing is lost, nothing is executed."""

import pytest

from cluster import kivdb

NAMES = [
    b"it's", b"a\ttab", b"two\nlines", b"back\\slash", b"\\", b"'; DROP TABLE import_stored; --", b"\xff\xfe no text",
    "größer".encode(), b"%s %41 ?", b"`tick` \"quote\"", b"\\N", b"{{stored}}", b"import IN (SELECT import FROM newest_import)",
    b"\r\x01\x7f", b"x" * 3000,
]




@pytest.fixture(scope="module")
def named(cluster, sources, tmp_path_factory):
    """One run under all of the names, in a file and on the cluster."""
    file = tmp_path_factory.mktemp("names") / "runs.db"
    cluster.setup("names")
    url = cluster.url(1, "names")
    for name in NAMES:
        for target in (("-o", file), ("--to", url)):
            kivdb("import", sources["MIX"], *target, "--as", name, "--label", b"release=" + name)
    return file, url


@pytest.mark.parametrize("name", NAMES, ids=lambda name: ascii(name)[2:30])
def test_run_of_that_name(named, name):
    for question in (["report", "{}", "--run", name, "--json"], ["show", "{}", "by_line", "--run", name, "--csv"],
                     ["show", "{}", "labels", "--run", name, "--json"]):
        of_file, of_server = (kivdb(*(source if part == "{}" else part for part in question)) for source in named)
        assert of_server == of_file
        assert of_file.count(b"\n") > 1


@pytest.mark.parametrize("question", [["show", "{}", "labels", "--csv"], ["show", "{}", "fleet_summary", "--json"],
                                      ["fleet", "{}", "--only", "summary", "--csv"]], ids=str)
def test_all_of_them(named, question):
    of_file, of_server = (kivdb(*(source if part == "{}" else part for part in question)) for source in named)
    assert sorted(of_server.splitlines()) == sorted(of_file.splitlines())


def test_names_are_forgotten_one_by_one(named):
    _, url = named
    for left, name in reversed(list(enumerate(NAMES))):
        kivdb("forget", url, name)
        assert "no run" in kivdb("report", url, "--run", name, status=2)
        assert kivdb("show", url, "run_list", "--json").count(b'"imported_at"') == left
