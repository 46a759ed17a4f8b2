"""Switches, search, zoom, filter, sort and range do what they say, by mouse and by keyboard."""

import pytest
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

from page import figures, number, total


def paths(run, of):
    return figures(run, "path", of)["rows"]


def sum_of(rows, unit="bytes"):
    return sum(row[unit] for row in rows)


def largest_child(rows, prefix):
    """The function that holds most right below a path, and how much."""
    sums = {}
    for row in rows:
        if row["frames"][: len(prefix)] == prefix and len(row["frames"]) > len(prefix):
            child = row["frames"][len(prefix)]
            sums[child] = sums.get(child, 0) + row["bytes"]
    return max(sums.items(), key=lambda each: each[1])


def test_keys_walk_down_the_largest_calls_and_zoom(open_page, reported):
    page = open_page("SQL1")
    page.choose("measure", "peak")
    rows = paths(reported("SQL1"), "peak")
    prefix = []
    page.press(".flame.canvas", Keys.HOME)
    for _ in range(12):
        name, size = largest_child(rows, prefix)
        prefix.append(name)
        page.press(".flame.canvas", Keys.ARROW_DOWN)
        assert page.selected_frame() == name
        own = sum_of([row for row in rows if row["frames"] == prefix])
        assert page.frame_bytes() == [size, own]
    page.press(".flame.canvas", Keys.ENTER)
    assert page.flame_bytes() == [size]
    page.press(".flame.canvas", Keys.ARROW_UP)
    assert page.selected_frame() == prefix[-2]
    page.press(".flame.canvas", Keys.ESCAPE)
    assert page.flame_bytes() == [sum_of(rows)]


def test_a_click_zooms_into_the_frame_below_the_pointer(open_page, reported):
    page = open_page("MIX")
    page.choose("measure", "peak")
    rows = paths(reported("MIX"), "peak")
    name, size = largest_child(rows, [])
    # The second row of the picture, at its left: callees stand largest first.
    canvas = page.find(".flame.canvas")
    page.run("arguments[0].scrollIntoView({block: 'center'})", canvas)
    ActionChains(page.browser).move_to_element_with_offset(canvas, -canvas.size["width"] // 2 + 20, -canvas.size["height"] // 2 + 28).click().perform()
    assert page.selected_frame() == name
    assert page.flame_bytes() == [size]
    assert name in page.text("#tip") and page.find("#tip").is_displayed()
    page.find("#flame-back").click()
    assert page.flame_bytes() == [sum_of(rows)]


def test_inverted_begins_with_who_allocates(open_page, reported):
    page = open_page("SQL1")
    page.choose("measure", "peak")
    page.choose("flame-direction", "innermost")
    first = figures(reported("SQL1"), "function", "peak")["rows"][0]
    page.press(".flame.canvas", Keys.HOME, Keys.ARROW_DOWN)
    assert page.selected_frame() == first["name"]
    assert page.frame_bytes()[0] == first["bytes"]


def test_ids_and_colours_stand_on_top_when_asked_for(open_page, reported):
    page = open_page("MIX")
    page.choose("measure", "allocated")
    page.choose("flame-ids", "id")
    first = figures(reported("MIX"), "id", "allocated")["rows"][0]
    page.press(".flame.canvas", Keys.HOME, Keys.ARROW_DOWN)
    assert page.selected_frame() == first["name"]
    assert page.frame_bytes()[0] == first["bytes"]
    page.choose("flame-ids", "color")
    colors = [row for row in figures(reported("MIX"), "color", "allocated")["rows"] if row["name"].startswith(first["name"] + " / ")]
    page.press(".flame.canvas", Keys.HOME, Keys.ARROW_DOWN, Keys.ARROW_DOWN)
    assert first["name"] + " / " + page.selected_frame() == colors[0]["name"]
    assert page.frame_bytes()[0] == colors[0]["bytes"]


def test_a_process_alone_is_what_the_report_says_of_it(open_page, reported):
    page = open_page("MIX")
    page.choose("measure", "allocated")
    for row in figures(reported("MIX"), "process", "allocated")["rows"]:
        page.select("#flame-process", row["name"])
        assert page.flame_bytes() == [total(reported("MIX", "--process", row["name"]), "allocated")["bytes"]]


def test_search_tells_the_share_of_what_matches_once(open_page, reported):
    page = open_page("SQL1")
    page.choose("measure", "peak")
    rows = paths(reported("SQL1"), "peak")
    for wanted in ("vdbe", "LIBSQLITE3", "no such function"):
        page.type("#flame-search", wanted)
        found = [row for row in rows if any(wanted.lower() in frame.lower() for frame in row["frames"])]
        matches = {tuple(row["frames"][: at + 1]) for row in rows for at, frame in enumerate(row["frames"]) if wanted.lower() in frame.lower()}
        said = page.text("#flame-found")
        assert number(said) == len(matches)
        assert f"in {sum_of(found, 'blocks'):,} block" in said
        assert f"{100 * sum_of(found) / sum_of(rows):.1f} %" in said
        assert len(page.behind("#flame-table")) == min(500, len(matches))
    page.type("#flame-search", "")
    assert page.text("#flame-found") == ""


@pytest.mark.parametrize("key", ["line", "function", "id", "color", "path", "process", "query"])
def test_a_row_shows_its_paths_until_all_are_asked_for_again(open_page, reported, key):
    page = open_page("MIX")
    page.choose("measure", "allocated")
    page.choose("table-key", key)
    page.show_all_rows()
    for at, row in enumerate(figures(reported("MIX"), key, "allocated")["rows"]):
        page.run("document.querySelectorAll('#table-rows .name-cell button')[arguments[0]].click()", at)
        assert page.flame_bytes() == [row["bytes"]]
        assert (row["name"] if key != "path" else (row["frames"] or ["(no call path)"])[-1]) in page.text("#flame-filter .chip")
    page.run("document.querySelector('#flame-unfilter').click()")
    assert page.flame_bytes() == [total(reported("MIX"), "allocated")["bytes"]]
    assert page.text("#flame-filter") == ""


def test_a_click_on_a_title_sorts_and_another_turns_the_order(open_page):
    page = open_page("SQL1")
    page.choose("measure", "allocated")
    page.choose("table-key", "function")
    page.show_all_rows()
    for at, number_column in enumerate((True, True, True, True, False)):
        def column():
            if number_column:
                return [float(row[at].split(" ")[0].replace(",", "").lstrip("<")) for row in page.table("#table-rows")]
            return [name.lower() for name in page.list_names()]

        for turn in range(2):
            page.run(f"document.querySelector('#sort-{at}').click()")
            page.show_all_rows()
            falling = number_column == (turn == 0)
            assert column() == sorted(column(), reverse=falling)
            sorted_as = page.run(f"return document.querySelector('#sort-{at}').parentElement.getAttribute('aria-sort')")
            assert sorted_as == ("descending" if falling else "ascending")


def test_blocks_are_counted_when_asked_for(open_page, reported):
    page = open_page("MIX")
    page.choose("measure", "allocated")
    page.choose("unit", "blocks")
    page.show_all_rows()
    rows = figures(reported("MIX"), "line", "allocated")["rows"]
    blocks = [number(row[2]) for row in page.table("#table-rows")]
    assert blocks == sorted((row["blocks"] for row in rows), reverse=True)
    share = 100 * blocks[0] / total(reported("MIX"), "allocated")["blocks"]
    assert page.table("#table-rows")[0][1] == f"{share:.1f} %"


def test_names_are_filtered_and_summed(open_page, reported):
    page = open_page("SQL1")
    page.choose("measure", "allocated")
    page.choose("table-key", "function")
    page.type("#table-filter", "ALLOC")
    page.show_all_rows()
    rows = [row for row in figures(reported("SQL1"), "function", "allocated")["rows"] if "alloc" in row["name"].lower()]
    assert len(rows) > 1
    assert page.list_names() == [row["name"] for row in rows]
    assert [number(page.foot("matching")[at]) for at in (0, 2)] == [sum_of(rows), sum_of(rows, "blocks")]


def drag(page, start, end):
    """Over the timeline, between two shares of its width."""
    surface = page.find("#timeline .brush .overlay")
    page.run("arguments[0].scrollIntoView({block: 'center'})", surface)
    box = page.run("const box = arguments[0].getBoundingClientRect(); return [box.left, box.top, box.width, box.height]", surface)
    actions = ActionChains(page.browser, duration=20)
    y = int(box[1] + box[3] / 2)
    actions.w3c_actions.pointer_action.move_to_location(int(box[0] + start * box[2]), y).pointer_down()
    actions.w3c_actions.pointer_action.move_to_location(int(box[0] + (start + end) / 2 * box[2]), y)
    actions.w3c_actions.pointer_action.move_to_location(int(box[0] + end * box[2]), y).pointer_up()
    actions.perform()


def test_a_range_is_drawn_with_the_mouse_and_left_by_a_double_click(open_page, reported):
    page = open_page("SQL1")
    all_steps = page.behind("#timeline-table")
    records = reported("SQL1")["traces"][0]["records"]
    drag(page, 0.25, 0.5)
    steps = page.table("#timeline-table")
    assert 0 < len(steps) < len(all_steps)
    assert all(0.24 * records <= number(row[0]) <= 0.51 * records for row in steps)
    said = page.text("#timeline-range")
    first = [row for row in all_steps if number(row[0]) < number(steps[0][0])][-1]
    change = number(steps[-1][2]) - number(first[2])
    assert f"record {number(first[0]):,}" in said and f"record {number(steps[-1][0]):,}" in said
    assert f"{change:+,} byte" in said
    ActionChains(page.browser).double_click(page.find("#timeline .brush .overlay")).perform()
    assert page.table("#timeline-table") == all_steps
    assert page.text("#timeline-range") == ""


def test_a_range_is_drawn_with_the_keyboard_and_left_by_escape(open_page):
    page = open_page("MIX")
    all_steps = page.behind("#timeline-table")
    page.press("#timeline .canvas", *[Keys.ARROW_RIGHT] * 11)
    assert page.text("#timeline-said").startswith(f"record {all_steps[10][0]}, {all_steps[10][1]}: {all_steps[10][2]} byte")
    page.shift("#timeline .canvas", Keys.ARROW_RIGHT, 20)
    page.browser.switch_to.active_element.send_keys(Keys.ENTER)
    assert page.table("#timeline-table") == all_steps[10:31]
    page.browser.switch_to.active_element.send_keys(Keys.ESCAPE)
    assert page.table("#timeline-table") == all_steps


def test_pointing_at_the_timeline_shows_the_figures_of_the_step(open_page):
    page = open_page("MIX")
    steps = page.behind("#timeline-table")
    surface = page.find("#timeline .brush .overlay")
    page.run("arguments[0].scrollIntoView({block: 'center'})", surface)
    ActionChains(page.browser).move_to_element(surface).perform()
    record = page.text("#timeline .where").split("record ")[1].split(",")[0]
    step = next(row for row in steps if row[0] == record)
    assert page.exact("#timeline .where strong") == [number(step[2])]
    assert abs(number(record) - number(steps[-1][0]) / 2) < 2
    assert sum(page.exact("#timeline .legend .value")[:-1]) == number(step[2])


def test_time_is_another_axis_for_the_same_steps(open_page):
    page = open_page("MIX")
    steps = page.behind("#timeline-table")
    shape = page.run("return document.querySelector('#timeline .layer').getAttribute('d')")
    page.choose("timeline-axis", "time")
    assert page.table("#timeline-table") == steps
    assert page.run("return document.querySelector('#timeline .layer').getAttribute('d')") != shape
    assert "22:13" in page.text("#timeline .axis")


def test_markers_are_shown_with_their_words(open_page):
    page = open_page("MIX")
    marks = page.behind("#timeline-marks")
    assert [row[-1] for row in marks] == ["service is up", "first five orders are in", "service goes down"]
    assert page.run("return Array.from(document.querySelectorAll('#timeline .mark text'), (text) => text.textContent)") == [row[-1] for row in marks]


def test_thousands_of_frames_are_drawn_without_a_pause(open_page):
    page = open_page("LARGE")
    page.behind("#flame-table")
    assert number(page.text("#flame-table .note").split(" of ")[1]) > 3000
    page.run("document.querySelector('#flame-table').open = false")

    def milliseconds(key):
        return page.run("""
            const flame = document.querySelector('.flame.canvas');
            flame.focus();
            const start = performance.now();
            flame.dispatchEvent(new KeyboardEvent('keydown', {key: arguments[0]}));
            return performance.now() - start;""", key)

    milliseconds("ArrowDown")
    taken = [milliseconds(key) for key in ("ArrowDown", "Enter", "ArrowDown", "Enter", "Escape") * 3]
    assert sorted(taken)[len(taken) // 2] < 50


def test_the_measure_stays_with_two_runs_and_both_timelines_share_one_scale(open_page, reported):
    page = open_page("MIX", "NEXT")
    axes = page.run("""return Array.from(document.querySelectorAll('#timeline .picture'), (picture) =>
        Array.from(picture.querySelectorAll('.tick text'), (text) => text.textContent).join())""")
    assert len(axes) == 2 and axes[0] == axes[1]
    page.choose("measure", "peak")
    page.choose("table-key", "line")
    page.run("document.querySelector('#table-rows .name-cell button').click()")
    row = page.table("#table-rows")[0]
    assert page.flame_bytes() == [number(row[0]), number(row[1])]
    frames = page.behind("#flame-table")
    assert [number(frames[0][1]), number(frames[0][4])] == [number(row[0]), number(row[1])]
