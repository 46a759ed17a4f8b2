// The steps of timelines, one trace's or a run's, in the form that is drawn.

/**
 * Live memory at the end of a step; `at` is its place on the axis.
 * @typedef {{at: number, record: number, time: string, last: number, highest: number | null,
 *   heap: number, levels: number[]}} Step
 */

/**
 * @typedef {{at: number, text: string, time: string, record: number | null, live_bytes: number,
 *   live_blocks: number, trace: string}} Tick
 */

/**
 * `ids` are places of names in the order of the steps' levels; -1 is all others.
 * @typedef {{title: string, ids: number[], steps: Step[], ticks: Tick[],
 *   peak: {at: number, bytes: number} | null, end: number}} Series
 */

/** @typedef {"records" | "time" | "since"} Axis */

/**
 * The place of a record or time on an axis; "since" counts from the start of the trace.
 * @param {Axis} axis @param {Trace} trace @param {number} record
 * @param {string} time @returns {number}
 */
function place_on(axis, trace, record, time) {
  if (axis === "records") return record;
  const start = milliseconds_of(trace.start);
  return axis === "time" ? milliseconds_of(time) : milliseconds_of(time) - start;
}

/**
 * Whether every step of the trace has a time.
 * @param {Trace} trace @param {PageTrace} drawn @returns {boolean}
 */
function has_times(trace, drawn) {
  return !Number.isNaN(milliseconds_of(trace.start)) &&
      drawn.timeline.times.every((time) => !Number.isNaN(milliseconds_of(time)));
}

/** @param {Trace} trace @param {PageTrace} drawn @param {Axis} axis @returns {Series} */
function trace_series(trace, drawn, axis) {
  const {records, times, last, highest, heap, ids, levels} = drawn.timeline;
  /** @type {Step[]} */
  const steps = [{
    at: place_on(axis, trace, 0, trace.start),
    record: 0,
    time: trace.start,
    last: 0,
    highest: 0,
    heap: 0,
    levels: ids.map(() => 0).concat(0),
  }];
  for (let i = 0; i < records.length; ++i) {
    const known = levels.map((level) => level[i]);
    steps.push({
      at: place_on(axis, trace, records[i], times[i]),
      record: records[i],
      time: times[i],
      last: last[i],
      highest: highest[i],
      heap: heap[i],
      levels: known.concat(last[i] - d3.sum(known)),
    });
  }
  if (steps.length > 1 && Number.isNaN(steps[0].at)) steps[0].at = steps[1].at;
  const ticks = drawn.marks.map((mark) => ({
                                  at: place_on(axis, trace, mark.record, mark.time),
                                  text: mark.text,
                                  time: mark.time,
                                  record: mark.record,
                                  live_bytes: mark.live_bytes,
                                  live_blocks: mark.live_blocks,
                                  trace: "",
                                }));
  // The figures of a report that is filtered leave some of the peak out; the picture shows all.
  const reached = steps.find((step) => step.record >= trace.peak.record);
  const peak = trace.peak.record === 0 || !reached || reached.highest === null ? null : {
    at: place_on(axis, trace, trace.peak.record, trace.peak.time),
    bytes: reached.highest,
  };
  return {
    title: trace_name(trace),
    ids: ids.concat(-1),
    steps,
    ticks,
    peak,
    end: steps[steps.length - 1].at
  };
}

const summed_steps = 1000;

/**
 * All traces of a run together, by the time of their steps. What a trace holds counts from its
 * first step to the end of its program; "records" counts the memory records of all of them.
 * @param {Run} run @param {PageRun} drawn @param {Axis} axis @returns {Series}
 */
function summed_series(run, drawn, axis) {
  const all = run.traces.map((trace, at) => trace_series(trace, drawn.traces[at], "time"));
  const start = d3.min(all, (/** @type {Series} */ series) => series.steps[0].at);
  const ends =
      run.traces.map((trace, at) => Math.max(all[at].end, milliseconds_of(trace.end) || 0));

  /** @type {Map<number, number>} */
  const highest = new Map();
  for (const series of all) {
    series.ids.forEach((id, at) => {
      if (id >= 0)
        highest.set(
            id,
            Math.max(
                highest.get(id) || 0,
                d3.max(series.steps, (/** @type {Step} */ step) => step.levels[at])));
    });
  }
  const ids = Array.from(highest.keys())
                  .sort((a, b) => (highest.get(b) || 0) - (highest.get(a) || 0) || a - b)
                  .slice(0, id_colors);

  // The moments at which anything is known, thinned to what can be drawn.
  let moments = Array
                    .from(new Set(all.flatMap(
                        (series, at) => series.steps.map((step) => step.at).concat(ends[at]))))
                    .sort((a, b) => a - b);
  if (moments.length > summed_steps) {
    const each = moments.length / summed_steps;
    moments = d3.range(summed_steps)
                  .map((/** @type {number} */ i) => moments[Math.ceil((i + 1) * each) - 1]);
  }
  const reached = all.map(() => 0);
  const steps = moments.map((moment) => {
    /** @type {Step} */
    const step = {
      at: 0,
      record: 0,
      time: time_text(moment),
      last: 0,
      highest: null,
      heap: 0,
      levels: ids.map(() => 0).concat(0)
    };
    all.forEach((series, at) => {
      while (reached[at] + 1 < series.steps.length && series.steps[reached[at] + 1].at <= moment)
        ++reached[at];
      const here = series.steps[reached[at]];
      if (here.at <= moment) step.record += here.record;
      if (here.at > moment || moment > ends[at]) return;
      step.last += here.last;
      step.heap += here.heap;
      series.ids.forEach((id, place) => {
        const found = id < 0 ? -1 : ids.indexOf(id);
        step.levels[found < 0 ? ids.length : found] += here.levels[place];
      });
    });
    step.at = axis === "records" ? step.record : axis === "since" ? moment - start : moment;
    return step;
  });
  const ticks = all.flatMap((series) => series.ticks.map((tick) => {
    const step = steps[Math.max(0, d3.bisectRight(moments, tick.at) - 1)];
    return {
      ...tick,
      at: axis === "records" ? step.at :
          axis === "since"   ? tick.at - start :
                               tick.at,
      record: null,
      trace: series.title
    };
  }));
  ticks.sort((a, b) => a.at - b.at);
  return {
    title: "All traces together",
    ids: ids.concat(-1),
    steps,
    ticks,
    peak: null,
    end: steps[steps.length - 1].at
  };
}

/** @param {number} moment milliseconds @returns {string} */
function time_text(moment) {
  return new Date(moment).toISOString().replace("T", " ").replace("Z", "");
}
