// The head of the page: which run, when, whose, whether it is complete, and its five sums.

/** @param {Report} report */
function draw_head(report) {
  const head = d3.select("#head");
  const title = head.append("h1");
  report.runs.forEach((run, at) => {
    if (at > 0) title.append("span").attr("class", "arrow").text(" → ");
    title.append("span").attr("class", "quiet").text(at === 0 ? "Run " : "run ");
    name_in(title, run.run);
  });
  draw_completeness(head, report);
  draw_filter(head, report.runs[0]);
  if (report.runs.length === 1)
    draw_sums(head, report.runs[0]);
  else
    draw_changes(head, report);
  for (let at = 0; at < report.runs.length; ++at) draw_circumstances(head, report, at);
  draw_left_out(head, report.page);
}

/**
 * Says aloud what is missing; a run that is complete says so quietly.
 * @param {D3Selection} head @param {Report} report
 */
function draw_completeness(head, report) {
  const is_complete = (/** @type {Run} */ run) =>
      run.traces.length > 0 && run.traces.every((trace) => trace.complete);
  if (report.runs.every(is_complete)) {
    const words = report.runs.length === 1 ? "This run is complete: nothing of it was lost." :
                                             "Both runs are complete: nothing of them was lost.";
    head.append("p").attr("class", "complete").text(words);
    return;
  }
  report.runs.forEach((run, at) => {
    const side = side_name(report, at);
    const of_run = side === "" ? "This run" : "The run " + side;
    if (is_complete(run)) {
      head.append("p").attr("class", "complete").text(of_run + " is complete.");
      return;
    }
    const alarm = head.append("div").attr("class", "alarm").attr("role", "alert");
    alarm.append("p").append("strong").text(
        of_run + " is not known to be complete: its figures may be wrong.");
    draw_list(alarm, losses_in_words(run));
  });
}

const first_lines = 12;

/**
 * Lines of which the first are seen at once.
 * @param {D3Selection} place @param {string[]} lines
 */
function draw_list(place, lines) {
  const add_all = (/** @type {D3Selection} */ parent, /** @type {string[]} */ some) => {
    const list = parent.append("ul");
    for (const line of some) name_in(list.append("li"), line);
  };
  add_all(place, lines.slice(0, first_lines));
  if (lines.length <= first_lines) return;
  const more = place.append("details");
  more.append("summary").text("and " + grouped(lines.length - first_lines) + " more");
  add_all(more, lines.slice(first_lines));
}

/**
 * A line of a trace, with the trace's name if the run has several.
 * @param {Run} run @param {Trace} trace @param {string} line @returns {string}
 */
function named(run, trace, line) {
  return run.traces.length > 1 ? trace_name(trace) + ": " + line : line;
}

/** @param {Run} run @returns {string[]} */
function losses_in_words(run) {
  if (run.traces.length === 0) return ["It has no trace."];
  return run.traces.flatMap((trace) => {
    const lines = trace.losses.map(
        (loss) =>
            loss.what + ": " + grouped(loss.count) + (loss.first ? ", first " + loss.first : ""));
    if (trace.from_rows)
      lines.unshift("computed from CSV tables: what the trace lost is not known");
    if (lines.length === 0 && !trace.complete) lines.push("not complete");
    return lines.map((line) => named(run, trace, line));
  });
}

/**
 * Says what the figures leave out by intention.
 * @param {D3Selection} head @param {Run} run
 */
function draw_filter(head, run) {
  if (!run.filter) return;
  const {focus, ignore, process} = run.filter;
  const box = head.append("div").attr("class", "filtered");
  const line = box.append("p");
  line.append("strong").text("Filtered: only blocks that the filter leaves are counted");
  const parts =
      [["with a name like", focus], ["without a name like", ignore], ["of the process", process]];
  for (const [words, value] of parts) {
    if (value === undefined) continue;
    line.append("span").text(", " + words + " ");
    name_in(line, String(value));
  }
  box.append("p").text("Memory over time, markers, sizes and lifetimes are those of all blocks.");
}

/** @param {D3Selection} head @param {Run} run */
function draw_sums(head, run) {
  const sums = head.append("dl").attr("class", "sums");
  for (const measure of measures) {
    const amount = run_total(run, measure.name);
    const card =
        sums.append("div").attr("class", "sum of-" + measure.name).attr("title", measure.meaning);
    card.append("dt").text(measure.title);
    card.append("dd")
        .attr("class", "large")
        .attr("id", "sum-" + measure.name)
        .attr("title", exact_bytes(amount.bytes))
        .text(human_bytes(amount.bytes));
    card.append("dd")
        .attr("class", "small")
        .attr("title", exact_bytes(amount.tot_bytes) + " with rounding")
        .text(in_blocks(amount.blocks));
  }
  if (run.traces.length > 1) {
    head.append("p")
        .attr("class", "note")
        .text(
            "Sums of " + grouped(run.traces.length) +
            " traces; each counts with its own peak, which need not be at one time.");
  }
}

/** @param {D3Selection} head @param {Report} report */
function draw_changes(head, report) {
  const rows = measures.map((measure) => {
    const [before, after] = report.runs.map((run) => run_total(run, measure.name));
    return {measure, before, after};
  });
  const columns = [
    {
      title: "",
      text: () => "",
      fill: (/** @type {D3Selection} */ cell, /** @type {any} */ row) => {
        cell.attr("class", "measure of-" + row.measure.name)
            .attr("title", row.measure.meaning)
            .text(row.measure.title);
      }
    },
    ...change_columns("bytes", (row, run) => (run === 0 ? row.before : row.after)),
  ];
  plain_table(head, "Sums before and after", columns, rows).attr("class", "changes");
}

/**
 * Who, when and how much, for each trace of a run.
 * @param {D3Selection} head @param {Report} report @param {number} at
 */
function draw_circumstances(head, report, at) {
  const run = report.runs[at];
  const side = side_name(report, at);
  if (side !== "") {
    const title =
        head.append("h2").attr("class", "minor").text(side === "before" ? "Before: " : "After: ");
    name_in(title, run.run);
  }
  if (run.traces.length === 1)
    draw_facts(head, run.traces[0]);
  else if (run.traces.length > 1)
    draw_traces(head, run);
  const notes = run.traces.flatMap((trace) => trace.notes.map((note) => named(run, trace, note)));
  if (notes.length > 0) draw_list(head.append("div").attr("class", "note"), notes);
}

/** @param {Trace} trace @returns {string} */
function owner_of(trace) {
  const account = trace.user !== "" && trace.user !== trace.account ? " (" + trace.user + ")" : "";
  return (trace.account || "unknown account") + account + " on " + (trace.host || "unknown host") +
      (trace.environment === "" ? "" : ", " + trace.environment);
}

/** @param {Trace} trace @returns {string} */
function duration_of(trace) {
  const lasted = milliseconds_of(trace.end) - milliseconds_of(trace.start);
  return Number.isNaN(lasted) ? "" : human_duration(lasted);
}

/** @param {D3Selection} head @param {Trace} trace */
function draw_facts(head, trace) {
  /** @type {[string, string][]} */
  const facts = [
    ["Program", shown_name(trace.program) + ", process " + trace.pid],
    ["Who", owner_of(trace)],
    ["When", trace.start + " to " + trace.end],
    ["Lasted", duration_of(trace)],
    [
      "Recorded",
      grouped(trace.records) + " memory records, " +
          counted(trace.processes, "process", "processes") + ", " +
          counted(trace.ids, "allocation id", "allocation ids")
    ],
    [
      "Heap", human_bytes(trace.heap_bytes) + " grown, " + human_bytes(trace.gap_bytes) + " of gaps"
    ],
    [
      "Peak",
      trace.peak.record === 0 ? "nothing was ever live" :
                                "at record " + grouped(trace.peak.record) + ", " + trace.peak.time
    ],
    ["Described", trace.description],
  ];
  const list = head.append("dl").attr("class", "facts");
  for (const [title, text] of facts) {
    if (text === "") continue;
    const fact = list.append("div");
    fact.append("dt").text(title);
    name_in(fact.append("dd"), text);
  }
}

/** @param {number} count @param {string} one @param {string} many @returns {string} */
function counted(count, one, many) {
  return grouped(count) + " " + (count === 1 ? one : many);
}

/** @param {D3Selection} head @param {Run} run */
function draw_traces(head, run) {
  /** @type {Column[]} */
  const columns = [
    {title: "Program", text: trace_name},
    {title: "Who", text: owner_of},
    {title: "Start", text: (trace) => trace.start},
    {title: "Lasted", number: true, text: duration_of},
    {title: "Complete", text: (trace) => (trace.complete ? "yes" : "no")},
    ...measures.map(
        (measure) => ({
          title: measure.title,
          number: true,
          text: (/** @type {Trace} */ trace) => human_bytes(trace[measure.name].bytes),
          exact: (/** @type {Trace} */ trace) =>
              exact_bytes(trace[measure.name].bytes) + ", " + in_blocks(trace[measure.name].blocks),
        })),
  ];
  plain_table(head, "Traces of this run", columns, run.traces).attr("class", "traces");
}

/** @param {D3Selection} head @param {Page} page */
function draw_left_out(head, page) {
  if (page.left_out.length === 0) return;
  const box = head.append("details").attr("class", "left-out").attr("id", "left-out");
  box.append("summary").text("What was put together to keep this page small");
  const list = box.append("ul");
  for (const sentence of page.left_out) list.append("li").text(sentence);
}
