"""The page opens from a file: at once, without a request or a complaint, light and dark, wide and narrow."""

import pytest

RUNS = [("MIX",), ("SQL1",), ("HOSTILE",), ("SEVERAL",), ("LOST",), ("LARGE",), ("MIX", "NEXT"), ("MIX", "SEVERAL")]

# The contrast of every text with what it stands on, as the Web Content Accessibility Guidelines count it.
LOW_CONTRASTS = """
  const channels = (color) => {
    const parts = color.match(/[\\d.]+/g).map(Number);
    return parts.length < 4 ? parts.concat(1) : parts;
  };
  const luminance = (rgb) => {
    const [r, g, b] = rgb.map((value) => {
      const part = value / 255;
      return part <= 0.04045 ? part / 12.92 : Math.pow((part + 0.055) / 1.055, 2.4);
    });
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
  };
  const behind = (element) => {
    for (let at = element; at; at = at.parentElement) {
      const color = channels(getComputedStyle(at).backgroundColor);
      if (color[3] === 1) return color.slice(0, 3);
    }
    return [255, 255, 255];
  };
  const low = [];
  let seen = 0;
  for (const element of document.querySelectorAll('body *')) {
    const own = Array.from(element.childNodes).some((node) => node.nodeType === 3 && node.textContent.trim() !== '');
    if (!own || element.matches('script, :disabled, option, noscript') || !element.getClientRects().length) continue;
    const style = getComputedStyle(element);
    const ink = element instanceof SVGElement ? style.fill : style.color;
    // A choice that is taken stands on the colour of its label.
    const [first, second] = [luminance(channels(ink).slice(0, 3)), luminance(behind(element))];
    const contrast = (Math.max(first, second) + 0.05) / (Math.min(first, second) + 0.05);
    ++seen;
    if (contrast < 4.5) low.push(element.textContent.slice(0, 40) + ': ' + contrast.toFixed(2));
  }
  return {low, seen, page: behind(document.body)};
"""


@pytest.mark.parametrize("runs", RUNS, ids="-".join)
def test_asks_for_nothing_and_complains_about_nothing(open_page, written, runs):
    page = open_page(*runs)
    for key in ("id", "path", "query"):
        page.choose("table-key", key)
    for measure in ("allocated", "temporary"):
        page.choose("measure", measure)
    page.choose("flame-direction", "innermost")
    page.behind("#timeline-table")
    page.behind("#flame-table")
    assert page.console() == []
    assert page.requests() == [written(*runs).as_uri()]


@pytest.mark.parametrize("run", ["SQL1", "LARGE"])
def test_shows_its_first_picture_within_a_second(open_page, run):
    def seconds():
        page = open_page(run)
        assert page.all("#timeline .layer") and page.all("#flame canvas")
        painted = page.browser.execute_async_script("""
            const done = arguments[0];
            new PerformanceObserver((seen) => {
              const paint = seen.getEntriesByName('first-contentful-paint')[0];
              if (paint) done(paint.startTime);
            }).observe({type: 'paint', buffered: true});""")
        # The script has drawn before the page is painted for the first time.
        drawn = page.run("return performance.getEntriesByType('navigation')[0].domContentLoadedEventEnd")
        return max(painted, drawn) / 1000

    assert min(seconds() for _ in range(3)) < 1


@pytest.mark.parametrize("runs", [("MIX",), ("LOST",), ("MIX", "NEXT")], ids="-".join)
def test_is_readable_in_light_and_in_dark(open_page, runs):
    pages = {}
    for dark in (False, True):
        page = open_page(*runs, dark=dark)
        page.choose("measure", "allocated")
        seen = page.run(LOW_CONTRASTS)
        assert seen["seen"] > 50
        assert seen["low"] == []
        pages[dark] = sum(seen["page"])
    assert pages[True] < 150 < 600 < pages[False]


@pytest.mark.parametrize("width", [360, 600, 1280])
@pytest.mark.parametrize("runs", [("SQL1",), ("HOSTILE",), ("SEVERAL",), ("MIX", "NEXT")], ids="-".join)
def test_needs_no_scrolling_to_the_side(open_page, runs, width):
    page = open_page(*runs, width=width)
    assert page.run("return document.documentElement.scrollWidth") <= width


@pytest.mark.parametrize("runs", [("SEVERAL",), ("MIX", "NEXT")], ids="-".join)
def test_all_that_takes_the_keyboard_has_a_name(open_page, runs):
    page = open_page(*runs)
    nodes = page.browser.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]
    focusable = [node for node in nodes if not node["ignored"] and any(
        each["name"] == "focusable" and each["value"]["value"] for each in node.get("properties", []))]
    nameless = [node["role"]["value"] for node in focusable if not node.get("name", {}).get("value", "").strip()]
    assert len(focusable) > 30
    assert nameless == []


def test_a_page_without_scripts_says_so(written):
    assert "<noscript>" in written("MIX").read_text(encoding="utf-8")
