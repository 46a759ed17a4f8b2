// Draws the page, and draws anew what a switch, the window's width or the wish for dark changes.

/**
 * The measure that is shown first: the leak, if there is one, else what made the peak.
 * @param {Report} report @returns {MeasureName}
 */
function first_measure(report) {
  return report.runs.some((run) => run_total(run, "leaked").bytes > 0) ? "leaked" : "peak";
}

/** @param {Choice} choice @param {() => void} changed */
function draw_measures(choice, changed) {
  const place = d3.select("#measures");
  radio_group(place, {
    legend: "Measure",
    name: "measure",
    value: choice.measure,
    options: measures.map(
        (measure) => ({value: measure.name, text: measure.title, title: measure.meaning})),
    change: (value) => {
      choice.measure = value;
      changed();
    },
  });
  radio_group(place, {
    legend: "In",
    name: "unit",
    value: choice.unit,
    options: [{value: "bytes", text: "Bytes"}, {value: "blocks", text: "Blocks"}],
    change: (value) => {
      choice.unit = value;
      changed();
    },
  });
}

function start() {
  const report = read_report();
  const ranks = rank_ids(report.page);
  /** @type {Choice} */
  const choice = {measure: first_measure(report), unit: "bytes", filter: null};
  draw_head(report);
  const timeline = draw_timeline(report, ranks);
  const groups = read_groups(report.page);

  const show_choice = () => {
    document.documentElement.dataset.measure = choice.measure;
    flame.rebuild();
    tables.start_over();
    distributions.draw();
  };
  draw_measures(choice, show_choice);
  const flame = make_flame_graph(report, groups, choice, () => flame.rebuild());
  const tables = make_tables(report, choice, (filter) => {
    choice.filter = filter;
    flame.rebuild();
    const section = /** @type {HTMLElement} */ (document.getElementById("flame"));
    section.scrollIntoView();
    const undo = document.getElementById("flame-unfilter");
    if (undo) undo.focus({preventScroll: true});
  });
  const distributions = make_distributions(report, ranks, choice);
  document.documentElement.dataset.measure = choice.measure;
  flame.rebuild();
  d3.select("#foot").append("p").text(
      "Written by kivdb " + report.page.version +
      ". Pointing at a figure shows it in full. Pictures drawn with d3.");

  const redraw = () => {
    if (timeline) timeline.redraw();
    flame.redraw();
    distributions.draw();
  };
  let width = document.documentElement.clientWidth;
  window.addEventListener("resize", () => {
    if (document.documentElement.clientWidth === width) return;
    width = document.documentElement.clientWidth;
    redraw();
  });
  window.matchMedia("(prefers-color-scheme: dark)").addEventListener("change", redraw);
  // Paper is light.
  window.addEventListener("beforeprint", () => {
    document.documentElement.classList.add("on-paper");
    redraw();
  });
  window.addEventListener("afterprint", () => {
    document.documentElement.classList.remove("on-paper");
    redraw();
  });
}

document.addEventListener("DOMContentLoaded", start);
