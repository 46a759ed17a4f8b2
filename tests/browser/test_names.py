"""Names from a trace stay text, whatever they are."""

import pytest

from page import figures

ELEMENTS_OF_NAMES = "img, iframe, object, embed, b, u, i, video, svg script, link, a[href^='javascript']"


@pytest.mark.parametrize("key", ["line", "function", "id", "color", "process", "query"])
def test_tables_have_hostile_names_as_the_report_has_them(open_page, reported, key):
    page = open_page("HOSTILE")
    page.choose("measure", "allocated")
    page.choose("table-key", key)
    page.show_all_rows()
    expected = [row["name"] for row in figures(reported("HOSTILE"), key, "allocated")["rows"]]
    assert page.list_names() == expected
    assert sum("<script>" in name for name in expected) >= 2 and any("\ufffd" in name for name in expected)


def test_nothing_of_a_name_becomes_an_element_or_runs(open_page, reported):
    page = open_page("HOSTILE")
    page.choose("measure", "allocated")
    for ids in ("color", "id", "none"):
        page.choose("flame-ids", ids)
    page.behind("#flame-table")
    page.behind("#timeline-table")
    page.behind("#timeline-marks")
    page.run("document.querySelector('#table-rows .name-cell button').click()")
    assert page.all(ELEMENTS_OF_NAMES) == []
    assert len(page.all("script")) == 3
    assert page.run("return window.x === undefined && ({}).polluted === undefined")
    assert reported("HOSTILE")["run"] in page.text("h1")
    assert reported("HOSTILE")["run"] in page.browser.title
    assert "<i>host</i>" in page.text(".facts") and "<u>program</u>" in page.text(".facts")


@pytest.mark.parametrize("key", ["line", "function", "id"])
def test_rows_of_hostile_names_lead_to_their_paths(open_page, reported, key):
    page = open_page("HOSTILE")
    page.choose("measure", "allocated")
    page.choose("table-key", key)
    page.show_all_rows()
    for at, row in enumerate(figures(reported("HOSTILE"), key, "allocated")["rows"]):
        page.run("document.querySelectorAll('#table-rows .name-cell button')[arguments[0]].click()", at)
        assert page.flame_bytes() == [row["bytes"]]


def test_markers_of_hostile_words_stay_words(open_page):
    page = open_page("HOSTILE")
    words = [row[-1] for row in page.behind("#timeline-marks")]
    assert "</script><script>alert(1)</script>" in words and "<!--<script>" in words
