"""Names of runs and values of labels may hold any bytes: nothing is lost, nothing is executed."""

import pytest

from cluster import kivdb

NAMES = [
    b"it's", b"a\ttab", b"two\nlines", b"back\\slash", b"\\", b"'; DROP TABLE import_stored; --", b"\xff\xfe no text",
    "größer".encode(), b"%s %41 ?", b"`tick` \"quote\"", b"\\N", b"{{stored}}", b"import IN (SELECT import FROM newest_import)",
    b"\r\x01\x7f", b"x" * 3000,
]




@pytest.mark.parametrize("name", NAMES, ids=lambda name: ascii(name)[2:30])
def test_name(cluster, sources, tmp_path, name):
    url = cluster.url(1, "names")
    file = tmp_path / "runs.db"
    cluster.setup("names")
    for target in (("-o", file), ("--to", url)):
        kivdb("import", sources["MIX"], *target, "--as", name, "--label", b"release=" + name)
    try:
        for question in (["report", "{}", "--run", name, "--json"], ["show", "{}", "by_line", "--run", name, "--csv"],
                         ["show", "{}", "fleet_summary", "--csv"], ["show", "{}", "labels", "--run", name, "--json"]):
            of_file, of_server = (kivdb(*(source if part == "{}" else part for part in question))
                                  for source in (file, url))
            assert of_server == of_file
        listed = kivdb("show", url, "labels", "--csv")
        assert listed == kivdb("show", file, "labels", "--csv")
    finally:
        kivdb("forget", url, name)
    assert "no run" in kivdb("report", url, "--run", name, status=2)
    assert kivdb("show", url, "labels", "--csv") == b"run,key,value\n"
