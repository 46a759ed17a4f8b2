// The picture of live memory over a trace: layers by allocation id, the heap, the peak, the markers.

/** What is shown of the timelines.
 * @typedef {{axis: Axis, shown: number, heap: boolean, range: [number, number] | null, run: number,
 *   cursor: number, anchor: number | null}} TimelineView `shown` is a trace's place, -1 for all
 *   together; `cursor` and `anchor` are steps of the run's series, the cursor -1 when nothing is
 *   pointed at */

const timeline_size = {height: 300, left: 78, right: 16, top: 40, bottom: 34};

/** @param {Report} report @param {Map<number, number>} ranks colours of ids */
function draw_timeline(report, ranks) {
  const section = d3.select("#timeline");
  const drawn = report.page.runs;
  const compared = report.runs.length > 1;
  const most_traces = Math.max(...report.runs.map((run) => run.traces.length));
  const timed = report.runs.every((run, at) => run.traces.every((trace, i) => has_times(trace, drawn[at].traces[i])));
  if (most_traces === 0) {
    section.append("p").text("There is no trace to draw.");
    return;
  }

  /** @type {TimelineView} */
  const view = {axis: "records", shown: most_traces > 1 && timed ? -1 : 0, heap: true, range: null, run: 0, cursor: -1, anchor: null};
  const clock = compared ? "since" : "time";

  section.append("p").attr("class", "lead")
    .text("What was made and not ended, in bytes, by allocation id. Point at a step for its figures; select a range to zoom in, double-click to zoom out.");
  const controls = section.append("div").attr("class", "controls");
  if (timed) {
    radio_group(controls, {
      legend: "Over", name: "timeline-axis", value: view.axis,
      options: [{value: "records", text: "Memory records"}, {value: clock, text: compared ? "Time since the start" : "Time"}],
      change: (value) => {
        view.axis = value;
        start_over();
      },
    });
  }
  if (most_traces > 1) {
    const names = d3.range(most_traces).map((/** @type {number} */ at) => ({
      value: String(at),
      text: report.runs.map((run) => (run.traces[at] ? trace_name(run.traces[at]) : "no such trace")).join(" → "),
    }));
    select_box(controls, {
      label: "Trace", id: "timeline-trace", value: String(view.shown),
      options: (timed ? [{value: "-1", text: "All traces together"}] : []).concat(names),
      change: (value) => {
        view.shown = Number(value);
        start_over();
      },
    });
  }
  check_box(controls, {
    label: "Heap", id: "timeline-heap",
    change: (checked) => {
      view.heap = checked;
      draw();
    },
  });
  const back = button(controls, "Zoom out", () => zoom(null)).attr("id", "timeline-back").property("disabled", true);

  const pictures = section.append("div").attr("class", "pictures");
  const said = section.append("p").attr("class", "range").attr("id", "timeline-range");
  const announced = section.append("p").attr("class", "unseen").attr("aria-live", "polite").attr("id", "timeline-said");
  const table = table_behind(section, "The steps as a table", "timeline-table", fill_table);
  const marks_table = table_behind(section, "The program's markers as a table", "timeline-marks", fill_marks);

  /** @type {Series[]} */
  let series = [];

  function start_over() {
    series = report.runs.map((run, at) => {
      if (view.shown < 0) return summed_series(run, drawn[at], view.axis);
      return run.traces[view.shown]
        ? trace_series(run.traces[view.shown], drawn[at].traces[view.shown], view.axis)
        : {title: "no such trace", ids: [-1], steps: [], ticks: [], peak: null, end: 0};
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
    const range = view.range || whole();
    const highest = 1.06 * highest_of_all(view.heap) || 1;
    series.forEach((one, at) => {
      const place = pictures.append("div").attr("class", "picture");
      const side = side_name(report, at);
      if (side !== "") {
        const title = place.append("h3").text(side === "before" ? "Before: " : "After: ");
        name_in(title, report.runs[at].run);
      }
      if (one.steps.length === 0) place.append("p").attr("class", "note").text("No steps.");
      else draw_series(place, one, at, range, highest);
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
    said.text(series.filter((one) => one.steps.length > 0).map((one, at) => {
      const first = one.steps[step_at(one, range[0])];
      const last = one.steps[step_at(one, range[1])];
      const side = side_name(report, at);
      return (side === "" ? "" : side + ": ") + "from " + where(first) + " to " + where(last) + ": live memory " +
        human_bytes(first.last) + " → " + human_bytes(last.last) + ", " + signed(last.last - first.last, human_bytes) +
        " (" + signed(last.last - first.last, exact_bytes) + ")";
    }).join("; "));
  }

  /** @param {D3Selection} place @param {Series} one @param {number} at
   * @param {[number, number]} range @param {number} highest */
  function draw_series(place, one, at, range, highest) {
    const name = "Live memory" + (series.length > 1 ? " " + side_name(report, at) : "") + ", " + one.title;
    const frame = place.append("div").attr("class", "canvas").attr("tabindex", 0).attr("role", "application")
      .attr("aria-roledescription", "chart")
      .attr("aria-label", name + ". Left and right point at a step, with Shift they select a range, Enter zooms into it, Escape zooms out. A table follows.");
    const width = Math.max(280, frame.node().clientWidth);
    const {height, left, right, top, bottom} = timeline_size;
    const svg = frame.append("svg").attr("width", width).attr("height", height).attr("viewBox", `0 0 ${width} ${height}`)
      .attr("aria-hidden", "true");
    const x = scale_for(view.axis).domain(range).range([left, width - right]);
    const y = d3.scaleLinear().domain([0, highest]).range([height - bottom, top]);
    const clip = "clip-" + at;
    svg.append("clipPath").attr("id", clip).append("rect").attr("x", left).attr("y", 0)
      .attr("width", width - left - right).attr("height", height);

    draw_axes(svg, x, y, width);
    const inner = svg.append("g").attr("clip-path", `url(#${clip})`);
    draw_layers(inner, one, x, y);
    draw_lines(inner, one, x, y);
    draw_peak(inner, one, x, y);
    draw_ticks(svg, one, x, width);

    const pointer = inner.append("line").attr("class", "pointer").attr("y1", top).attr("y2", height - bottom).attr("visibility", "hidden");
    const picked = inner.append("rect").attr("class", "picked").attr("y", top).attr("height", height - bottom - top).attr("visibility", "hidden");
    const readout = place.append("div").attr("class", "readout");

    /** @param {number} step -1 to point at nothing */
    const point = (step) => {
      const seen = step >= 0;
      pointer.attr("visibility", seen ? "visible" : "hidden");
      if (seen) pointer.attr("x1", x(one.steps[step].at)).attr("x2", x(one.steps[step].at));
      draw_readout(readout, one, seen ? step : resting_step(one), !seen);
      const from = view.anchor;
      picked.attr("visibility", seen && from !== null && view.run === at ? "visible" : "hidden");
      if (seen && from !== null) {
        const ends = [x(one.steps[from].at), x(one.steps[step].at)].sort((a, b) => a - b);
        picked.attr("x", ends[0]).attr("width", ends[1] - ends[0]);
      }
    };
    const brush = d3.brushX().extent([[left, top], [width - right, height - bottom]]).on("end", () => {
      const picked_pixels = d3.event.selection;
      if (!picked_pixels || !d3.event.sourceEvent) return;
      zoom([Number(x.invert(picked_pixels[0])), Number(x.invert(picked_pixels[1]))]);
    });
    const surface = svg.append("g").attr("class", "brush").call(brush);
    surface.on("mousemove", () => point(step_at(one, Number(x.invert(d3.mouse(surface.node())[0])))));
    surface.on("mouseleave", () => point(-1));
    surface.on("dblclick", () => zoom(null));
    frame.on("keydown", () => on_key(d3.event, one, at, point));
    frame.on("blur", () => point(-1));
    point(-1);
    if (view.run === at && view.cursor >= 0) point(Math.min(view.cursor, one.steps.length - 1));
  }

  /** @param {KeyboardEvent} event @param {Series} one @param {number} at
   * @param {(step: number) => void} point */
  function on_key(event, one, at, point) {
    const last = one.steps.length - 1;
    const far = Math.max(1, Math.round(last / 20));
    /** @type {Record<string, number>} */
    const moves = {ArrowLeft: -1, ArrowRight: 1, PageUp: -far, PageDown: far, Home: -last - 1, End: last + 1};
    const range = view.range || whole();
    const bounds = [step_at(one, range[0]), step_at(one, range[1])];
    if (event.key in moves) {
      const from = view.run === at && view.cursor >= 0 ? view.cursor : moves[event.key] > 0 ? bounds[0] - 1 : bounds[1] + 1;
      if (event.shiftKey && view.anchor === null) view.anchor = Math.max(bounds[0], Math.min(bounds[1], from));
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

  /** The legend, with the figures of a step.
   * @param {D3Selection} place @param {Series} one @param {number} step
   * @param {boolean} resting nothing is pointed at: the step has the highest level */
  function draw_readout(place, one, step, resting) {
    place.text("");
    const here = one.steps[step];
    const line = place.append("p").attr("class", "where");
    const higher = here.highest !== null && here.highest > here.last ? here.highest : null;
    const shown = resting && higher !== null ? higher : here.last;
    line.append("span").text(resting ? (view.range ? "Highest here: " : "Highest: ") : "At " + where(here) + ": ");
    line.append("strong").attr("title", exact_bytes(shown)).text(human_bytes(shown) + " live");
    const more = [", heap grown by " + human_bytes(here.heap)];
    if (resting && higher !== null) more.unshift(" within the step up to " + where(here) + ", " + human_bytes(here.last) + " at its end");
    else if (resting) more.unshift(" at " + where(here));
    else if (higher !== null) more.unshift(", up to " + human_bytes(higher) + " within the step");
    line.append("span").text(more.join(""));
    const list = place.append("ul").attr("class", "legend");
    one.ids.forEach((id, at) => {
      if (id < 0 && one.ids.length > 1 && one.steps.every((each) => each.levels[at] === 0)) return;
      const entry = list.append("li");
      entry.append("span").attr("class", "swatch").style("background", `var(${id_color(ranks, id)})`);
      name_in(entry, shortened(id_title(one, id), 40)).attr("title", id_title(one, id));
      entry.append("span").attr("class", "value").attr("title", exact_bytes(here.levels[at])).text(human_bytes(here.levels[at]));
    });
    const heap = list.append("li");
    heap.append("span").attr("class", "swatch line");
    heap.append("span").text("heap");
    heap.append("span").attr("class", "value").attr("title", exact_bytes(here.heap)).text(human_bytes(here.heap));
    const since = step > 0 ? one.steps[step - 1].at : -Infinity;
    const near = one.ticks.filter((tick) => !resting && tick.at > since && tick.at <= here.at).slice(0, 3);
    for (const tick of near) {
      const note = place.append("p").attr("class", "where");
      note.append("span").text("Marker " + (tick.trace === "" ? "" : "of " + tick.trace + " ") + "at " + tick.time + ": ");
      name_in(note, tick.text);
    }
  }

  /** @param {Series} one @param {number} id @returns {string} */
  function id_title(one, id) {
    return id >= 0 ? report.page.names.id[id] : one.ids.length > 1 ? "all others" : "all";
  }

  /** The step whose figures stand there when nothing is pointed at: the one with the highest level.
   * @param {Series} one @returns {number} */
  function resting_step(one) {
    const range = view.range || whole();
    const from = step_at(one, range[0]);
    const to = step_at(one, range[1]);
    let best = from;
    const level = (/** @type {Step} */ step) => step.highest ?? step.last;
    for (let at = from; at <= to; ++at) if (level(one.steps[at]) > level(one.steps[best])) best = at;
    return best;
  }

  /** @param {Step} step @returns {string} */
  function where(step) {
    return "record " + grouped(step.record) + ", " + step.time;
  }

  /** @param {Series} one @param {number} step @returns {string} */
  function step_words(one, step) {
    const here = one.steps[step];
    return where(here) + ": " + exact_bytes(here.last) + " live, heap " + exact_bytes(here.heap);
  }

  /** @param {D3Selection} svg @param {any} x @param {any} y @param {number} width */
  function draw_axes(svg, x, y, width) {
    const {height, left, right, bottom} = timeline_size;
    const heights = byte_ticks(y.domain()[1], 5);
    svg.append("g").attr("class", "grid").attr("transform", `translate(${left},0)`)
      .call(d3.axisLeft(y).tickValues(heights).tickSize(-(width - left - right)).tickFormat(short_bytes));
    svg.append("g").attr("class", "axis").attr("transform", `translate(0,${height - bottom})`)
      .call(d3.axisBottom(x).ticks(Math.max(2, Math.floor(width / 150))).tickFormat(axis_format(view.axis, x.domain())));
  }

  /** @param {D3Selection} inner @param {Series} one @param {any} x @param {any} y */
  function draw_layers(inner, one, x, y) {
    // The largest lies at the bottom; the rest on top.
    const layers = d3.stack().keys(d3.range(one.ids.length))
      .value((/** @type {Step} */ step, /** @type {number} */ key) => step.levels[key])(one.steps);
    const area = d3.area().curve(d3.curveStepAfter)
      .x((/** @type {any} */ point) => x(point.data.at))
      .y0((/** @type {any} */ point) => y(point[0]))
      .y1((/** @type {any} */ point) => y(point[1]));
    layers.forEach((/** @type {any} */ layer, /** @type {number} */ at) => {
      inner.append("path").attr("class", "layer").attr("d", area(layer)).style("fill", `var(${id_color(ranks, one.ids[at])})`);
    });
  }

  /** @param {D3Selection} inner @param {Series} one @param {any} x @param {any} y */
  function draw_lines(inner, one, x, y) {
    const line = (/** @type {(step: Step) => number} */ value) => d3.line().curve(d3.curveStepAfter)
      .x((/** @type {Step} */ step) => x(step.at)).y((/** @type {Step} */ step) => y(value(step)))(one.steps);
    if (one.steps.some((step) => step.highest !== null && step.highest > step.last)) {
      // The highest of a step lies within it, that is before its end.
      const highest = d3.line().curve(d3.curveStepBefore)
        .x((/** @type {Step} */ step) => x(step.at)).y((/** @type {Step} */ step) => y(step.highest));
      inner.append("path").attr("class", "highest").attr("d", highest(one.steps));
    }
    if (!view.heap) return;
    inner.append("path").attr("class", "heap halo").attr("d", line((step) => step.heap));
    inner.append("path").attr("class", "heap").attr("d", line((step) => step.heap));
  }

  /** @param {D3Selection} inner @param {Series} one @param {any} x @param {any} y */
  function draw_peak(inner, one, x, y) {
    if (!one.peak) return;
    const place = inner.append("g").attr("class", "peak").attr("transform", `translate(${x(one.peak.at)},${y(one.peak.bytes)})`);
    place.append("circle").attr("r", 4.5);
    const ends = x.range()[1] - x(one.peak.at) < 120;
    place.append("text").attr("x", ends ? -9 : 9).attr("y", -6).attr("text-anchor", ends ? "end" : "start")
      .text("peak " + human_bytes(one.peak.bytes));
  }

  /** Markers above the picture; a text stands where it has room.
   * @param {D3Selection} svg @param {Series} one @param {any} x @param {number} width */
  function draw_ticks(svg, one, x, width) {
    const {height, top, bottom, right} = timeline_size;
    let free = -Infinity;
    for (const tick of one.ticks) {
      const at = x(tick.at);
      if (at < x.range()[0] || at > x.range()[1]) continue;
      const place = svg.append("g").attr("class", "mark").attr("transform", `translate(${at},0)`);
      place.append("line").attr("y1", top - 14).attr("y2", height - bottom);
      if (at < free) continue;
      const text = place.append("text").attr("x", 4).attr("y", top - 20).text(shortened(tick.text, 24));
      const length = text.node().getComputedTextLength();
      if (at + length + 4 > width - right && at - length - 8 > free) text.attr("x", -4).attr("text-anchor", "end");
      else if (at + length + 4 > width) text.remove();
      free = at + length + 14;
    }
  }

  /** @param {D3Selection} place */
  function fill_table(place) {
    const range = view.range || whole();
    series.forEach((one, at) => {
      const side = side_name(report, at);
      const steps = one.steps.filter((step) => step.at >= range[0] && step.at <= range[1]);
      /** @type {Column[]} */
      const columns = [];
      columns.push({title: "Record", number: true, text: (step) => grouped(step.record)});
      columns.push({title: "Time", number: true, text: (step) => step.time});
      columns.push({title: "Live", number: true, text: (step) => grouped(step.last)});
      if (view.shown >= 0) columns.push({title: "Highest", number: true, text: (step) => grouped(step.highest)});
      columns.push({title: "Heap", number: true, text: (step) => grouped(step.heap)});
      one.ids.forEach((id, layer) => {
        columns.push({title: id_title(one, id), number: true, text: (step) => grouped(step.levels[layer])});
      });
      plain_table(place, "Live memory in bytes at the end of each step, " + one.title + (side === "" ? "" : ", " + side), columns, steps);
    });
  }

  /** @param {D3Selection} place */
  function fill_marks(place) {
    series.forEach((one, at) => {
      const side = side_name(report, at);
      /** @type {Column[]} */
      const columns = [
        {title: "Time", number: true, text: (tick) => tick.time},
        {title: "Live", number: true, text: (tick) => human_bytes(tick.live_bytes), exact: (tick) => exact_bytes(tick.live_bytes)},
        {title: "Blocks", number: true, text: (tick) => grouped(tick.live_blocks)},
        {title: "Marker", text: (tick) => (tick.trace === "" ? "" : tick.trace + ": ") + tick.text},
      ];
      if (view.shown >= 0) columns.unshift({title: "Record", number: true, text: (tick) => grouped(tick.record)});
      plain_table(place, "Markers of the program" + (side === "" ? "" : ", " + side), columns, one.ticks);
    });
  }

  start_over();
  return {redraw: draw};
}

/** The step that holds at a place: the last one that begins there or before.
 * @param {Series} one @param {number} place @returns {number} */
function step_at(one, place) {
  const after = d3.bisector((/** @type {Step} */ step) => step.at).right(one.steps, place);
  return Math.max(0, after - 1);
}

/** The highest figure of a series within a range.
 * @param {Series} one @param {[number, number]} range @param {boolean} heap whether the heap counts
 * @returns {number} */
function highest_in(one, range, heap) {
  if (one.steps.length === 0) return 0;
  let highest = 0;
  for (let at = step_at(one, range[0]); at < one.steps.length && one.steps[at].at <= range[1]; ++at) {
    const step = one.steps[at];
    highest = Math.max(highest, step.last, step.highest || 0, heap ? step.heap : 0);
  }
  return highest;
}

/** @param {Axis} axis */
function scale_for(axis) {
  return axis === "time" ? d3.scaleUtc() : d3.scaleLinear();
}

/** @param {Axis} axis @param {any[]} domain @returns {(value: any) => string} */
function axis_format(axis, domain) {
  if (axis === "records") return (value) => (Number.isInteger(value) ? grouped(value) : "");
  const length = Number(domain[1]) - Number(domain[0]);
  if (axis === "since") return (value) => (length < 60000 ? one_decimal(value / 1000) + " s" : human_duration(value).replace(/\.\d+s$/, "s"));
  return d3.utcFormat(length < 10000 ? "%H:%M:%S.%L" : length < 86400000 ? "%H:%M:%S" : "%m-%d %H:%M");
}

/** "400 KiB", for an axis.
 * @param {number} bytes @returns {string} */
function short_bytes(bytes) {
  return human_bytes(bytes).replace(".0 ", " ");
}

/** Round numbers of bytes, about so many.
 * @param {number} highest @param {number} count @returns {number[]} */
function byte_ticks(highest, count) {
  const unit = Math.pow(1024, Math.max(0, Math.floor(Math.log(Math.max(1, highest)) / Math.log(1024))));
  return d3.ticks(0, highest / unit, count).map((/** @type {number} */ tick) => tick * unit).filter((/** @type {number} */ tick) => tick < 1024 || Number.isInteger(tick));
}
