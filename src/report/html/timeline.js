// The picture of live memory over a trace: layers by allocation id, the heap, the peak, the
// markers.

/**
 * What is shown of the timelines.
 * @typedef {{axis: Axis, shown: number, heap: boolean, range: [number, number] | null, run: number,
 *   cursor: number, anchor: number | null}} TimelineView `shown` is a trace's place, -1 for all
 *   together; `cursor` and `anchor` are steps of the run's series, the cursor -1 when nothing is
 *   pointed at
 */

/** @param {Report} report @param {Map<number, number>} ranks colours of ids */
function draw_timeline(report, ranks) {
  const section = d3.select("#timeline");
  const drawn = report.page.runs;
  const compared = report.runs.length > 1;
  const most_traces = Math.max(...report.runs.map((run) => run.traces.length));
  const timed = report.runs.every(
      (run, at) => run.traces.every((trace, i) => has_times(trace, drawn[at].traces[i])));
  if (most_traces === 0) {
    section.append("p").text("There is no trace to draw.");
    return;
  }

  /** @type {TimelineView} */
  const view = {
    axis: "records",
    shown: most_traces > 1 && timed ? -1 : 0,
    heap: true,
    range: null,
    run: 0,
    cursor: -1,
    anchor: null
  };
  const clock = compared ? "since" : "time";

  section.append("p")
      .attr("class", "lead")
      .text(
          "What was made and not ended, in bytes, by allocation id. Point at a step for its figures; select a range to zoom in, double-click to zoom out.");
  const controls = section.append("div").attr("class", "controls");
  if (timed) {
    radio_group(controls, {
      legend: "Over",
      name: "timeline-axis",
      value: view.axis,
      options: [
        {value: "records", text: "Memory records"},
        {value: clock, text: compared ? "Time since the start" : "Time"}
      ],
      change: (value) => {
        view.axis = value;
        start_over();
      },
    });
  }
  if (most_traces > 1) {
    const names =
        d3.range(most_traces).map((/** @type {number} */ at) => ({
                                    value: String(at),
                                    text: report.runs
                                              .map(
                                                  (run) =>
                                                      (run.traces[at] ? trace_name(run.traces[at]) :
                                                                        "no such trace"))
                                              .join(" → "),
                                  }));
    select_box(controls, {
      label: "Trace",
      id: "timeline-trace",
      value: String(view.shown),
      options: (timed ? [{value: "-1", text: "All traces together"}] : []).concat(names),
      change: (value) => {
        view.shown = Number(value);
        start_over();
      },
    });
  }
  check_box(controls, {
    label: "Heap",
    id: "timeline-heap",
    change: (checked) => {
      view.heap = checked;
      draw();
    },
  });
  const back = button(controls, "Zoom out", () => zoom(null))
                   .attr("id", "timeline-back")
                   .property("disabled", true);

  const summed_note =
      section.append("p")
          .attr("class", "note")
          .text(
              "Sums of what each trace held at the ends of its steps; between these it may have been more.");
  const pictures = section.append("div").attr("class", "pictures");
  const said = section.append("p").attr("class", "range").attr("id", "timeline-range");
  const announced = section.append("p")
                        .attr("class", "unseen")
                        .attr("aria-live", "polite")
                        .attr("id", "timeline-said");
  const table = table_behind(section, "The steps as a table", "timeline-table", (place) => {
    series.forEach(
        (one, at) =>
            step_table(place, report.page, one, view.range || whole(), side_name(report, at)));
  });
  const marks_table =
      table_behind(section, "The program's markers as a table", "timeline-marks", (place) => {
        series.forEach((one, at) => mark_table(place, one, side_name(report, at)));
      });

  /** @type {Series[]} */
  let series = [];

  function start_over() {
    series = report.runs.map((run, at) => {
      if (view.shown < 0) return summed_series(run, drawn[at], view.axis);
      return run.traces[view.shown] ?
          trace_series(run.traces[view.shown], drawn[at].traces[view.shown], view.axis) :
          {title: "no such trace", ids: [-1], steps: [], ticks: [], peak: null, end: 0};
    });
    view.range = null;
    view.cursor = -1;
    view.anchor = null;
    // A heap far above what is live would press the layers flat: it is asked for.
    view.heap = highest_of_all(true) <= 2 * highest_of_all(false);
    d3.select("#timeline-heap").property("checked", view.heap);
    draw();
  }

  /** @param {boolean} heap whether the heap counts @returns {number} */
  function highest_of_all(heap) {
    const range = view.range || whole();
    return d3.max(series, (/** @type {Series} */ one) => highest_in(one, range, heap)) || 0;
  }

  /** @returns {[number, number]} */
  function whole() {
    const filled = series.filter((one) => one.steps.length > 0);
    const from = d3.min(filled, (/** @type {Series} */ one) => one.steps[0].at) || 0;
    const to = d3.max(filled, (/** @type {Series} */ one) => one.end) || 0;
    return [from, to > from ? to : from + 1];
  }

  /** @param {[number, number] | null} range */
  function zoom(range) {
    view.range = range && range[1] > range[0] ? range : null;
    view.anchor = null;
    draw();
  }

  function draw() {
    pictures.text("");
    summed_note.attr("hidden", view.shown < 0 ? null : "");
    const range = view.range || whole();
    const highest = 1.06 * highest_of_all(view.heap) || 1;
    series.forEach((one, at) => {
      const place = pictures.append("div").attr("class", "picture");
      const side = side_name(report, at);
      if (side !== "") {
        const title = place.append("h3").text(side === "before" ? "Before: " : "After: ");
        name_in(title, report.runs[at].run);
      }
      if (one.steps.length === 0)
        place.append("p").attr("class", "note").text("No steps.");
      else
        draw_series(place, one, at, range, highest);
    });
    back.property("disabled", view.range === null);
    say_range(range);
    table.refresh();
    marks_table.refresh();
  }

  /** @param {[number, number]} range */
  function say_range(range) {
    if (!view.range) {
      said.text("");
      return;
    }
    const said_of = series.map((one, at) => {
      if (one.steps.length === 0) return "";
      const first = one.steps[step_at(one, range[0])];
      const last = one.steps[step_at(one, range[1])];
      const side = side_name(report, at);
      return (side === "" ? "" : side + ": ") + "from " + step_place(first) + " to " +
          step_place(last) + ": live memory " + human_bytes(first.last) + " → " +
          human_bytes(last.last) + ", " + signed(last.last - first.last, human_bytes) + " (" +
          signed(last.last - first.last, exact_bytes) + ")";
    });
    said.text(said_of.filter((words) => words !== "").join("; "));
  }

  /**
   * @param {D3Selection} place @param {Series} one @param {number} at
   * @param {[number, number]} range @param {number} highest
   */
  function draw_series(place, one, at, range, highest) {
    const name =
        "Live memory" + (series.length > 1 ? " " + side_name(report, at) : "") + ", " + one.title;
    const frame =
        place.append("div")
            .attr("class", "canvas")
            .attr("tabindex", 0)
            .attr("role", "application")
            .attr("aria-roledescription", "chart")
            .attr(
                "aria-label",
                name +
                    ". Left and right point at a step, with Shift they select a range, Enter zooms into it, Escape zooms out. A table follows.");
    const settings = {clip: "clip-" + at, axis: view.axis, range, highest};
    const picture = make_timeline_picture(frame, one, settings);
    draw_layers(picture, ranks);
    draw_lines(picture, view.heap);
    draw_peak(picture);
    draw_ticks(picture);

    const {svg, inner, x, width} = picture;
    const {height, left, right, top, bottom} = timeline_size;
    const pointer = inner.append("line")
                        .attr("class", "pointer")
                        .attr("y1", top)
                        .attr("y2", height - bottom)
                        .attr("visibility", "hidden");
    const picked = inner.append("rect")
                       .attr("class", "picked")
                       .attr("y", top)
                       .attr("height", height - bottom - top)
                       .attr("visibility", "hidden");
    const readout = place.append("div").attr("class", "readout");

    /** @param {number} step -1 to point at nothing */
    const point = (step) => {
      const seen = step >= 0;
      pointer.attr("visibility", seen ? "visible" : "hidden");
      if (seen) pointer.attr("x1", x(one.steps[step].at)).attr("x2", x(one.steps[step].at));
      const why = seen ? "pointed" : view.range ? "highest here" : "highest";
      draw_readout(readout, report.page, ranks, one, seen ? step : resting_step(one), why);
      const from = view.anchor;
      picked.attr("visibility", seen && from !== null && view.run === at ? "visible" : "hidden");
      if (seen && from !== null) {
        const ends = [x(one.steps[from].at), x(one.steps[step].at)].sort((a, b) => a - b);
        picked.attr("x", ends[0]).attr("width", ends[1] - ends[0]);
      }
    };
    const brush =
        d3.brushX().extent([[left, top], [width - right, height - bottom]]).on("end", () => {
          const picked_pixels = d3.event.selection;
          if (!picked_pixels || !d3.event.sourceEvent) return;
          zoom([Number(x.invert(picked_pixels[0])), Number(x.invert(picked_pixels[1]))]);
        });
    const surface = svg.append("g").attr("class", "brush").call(brush);
    surface.on(
        "mousemove", () => point(step_at(one, Number(x.invert(d3.mouse(surface.node())[0])))));
    surface.on("mouseleave", () => point(-1));
    surface.on("dblclick", () => zoom(null));
    frame.on("keydown", () => on_key(d3.event, one, at, point));
    frame.on("blur", () => point(-1));
    point(-1);
    if (view.run === at && view.cursor >= 0) point(Math.min(view.cursor, one.steps.length - 1));
  }

  /**
   * @param {KeyboardEvent} event @param {Series} one @param {number} at
   * @param {(step: number) => void} point
   */
  function on_key(event, one, at, point) {
    const last = one.steps.length - 1;
    const far = Math.max(1, Math.round(last / 20));
    /** @type {Record<string, number>} */
    const moves =
        {ArrowLeft: -1, ArrowRight: 1, PageUp: -far, PageDown: far, Home: -last - 1, End: last + 1};
    const range = view.range || whole();
    const bounds = [step_at(one, range[0]), step_at(one, range[1])];
    if (event.key in moves) {
      const from = view.run === at && view.cursor >= 0 ? view.cursor :
          moves[event.key] > 0                         ? bounds[0] - 1 :
                                                         bounds[1] + 1;
      if (event.shiftKey && view.anchor === null)
        view.anchor = Math.max(bounds[0], Math.min(bounds[1], from));
      if (!event.shiftKey) view.anchor = null;
      view.run = at;
      view.cursor = Math.max(bounds[0], Math.min(bounds[1], from + moves[event.key]));
      point(view.cursor);
      announced.text(step_words(one, view.cursor));
    } else if (event.key === "Enter" && view.anchor !== null) {
      const ends = [one.steps[view.anchor].at, one.steps[view.cursor].at].sort((a, b) => a - b);
      zoom([ends[0], ends[1]]);
      focus_on(at);
      announced.text(said.text());
    } else if (event.key === "Escape") {
      zoom(null);
      focus_on(at);
      announced.text("The whole trace is shown.");
    } else {
      return;
    }
    event.preventDefault();
  }

  /** @param {number} at */
  function focus_on(at) {
    const frames = pictures.selectAll(".canvas").nodes();
    if (frames[at]) frames[at].focus();
  }

  /**
   * The step whose figures stand there when nothing is pointed at: the one with the highest level.
   * @param {Series} one @returns {number}
   */
  function resting_step(one) {
    const range = view.range || whole();
    const from = step_at(one, range[0]);
    const to = step_at(one, range[1]);
    let best = from;
    for (let at = from; at <= to; ++at) {
      if (one.steps[at].highest > one.steps[best].highest) best = at;
    }
    return best;
  }

  start_over();
  return {redraw: draw};
}

/**
 * The step that holds at a place: the last one that begins there or before.
 * @param {Series} one @param {number} place @returns {number}
 */
function step_at(one, place) {
  const after = d3.bisector((/** @type {Step} */ step) => step.at).right(one.steps, place);
  return Math.max(0, after - 1);
}

/**
 * The highest figure of a series within a range.
 * @param {Series} one @param {[number, number]} range @param {boolean} heap whether the heap counts
 * @returns {number}
 */
function highest_in(one, range, heap) {
  if (one.steps.length === 0) return 0;
  let highest = 0;
  for (let at = step_at(one, range[0]); at < one.steps.length && one.steps[at].at <= range[1];
       ++at) {
    const step = one.steps[at];
    highest = Math.max(highest, step.last, step.highest || 0, heap ? step.heap : 0);
  }
  return highest;
}
