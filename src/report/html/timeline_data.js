// The steps of timelines, one trace's or a run's, in the form that is drawn.

/**
 * Live memory at the end of a step; `at` is its place on the axis.
 * @typedef {{at: number, record: number, time: string, last: number, highest: number,
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
  const peak = trace.peak.record === 0 || !reached ? null : {
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

const most_summed_steps = 2000;

/**
 * All traces of a run together, in the order of their steps' times; of those at one time, trace by
 * trace. What a trace holds counts from its first step to the end of its program; "records" counts
 * the memory records of all of them.
 * @param {Run} run @param {PageRun} drawn @param {Axis} axis @returns {Series}
 */
function summed_series(run, drawn, axis) {
  const all = run.traces.map((trace, at) => trace_series(trace, drawn.traces[at], "time"));
  const ids = highest_ids(all);
  const steps = sum_steps(all, ids, all.map((series, at) => end_of(run.traces[at], series)));
  const start = steps[0].at;
  const times = steps.map((step) => step.at);
  const ticks = all.flatMap((series) => series.ticks.map((tick) => {
    const step = steps[Math.max(0, d3.bisectRight(times, tick.at) - 1)];
    const at = axis === "records" ? step.record : axis === "since" ? tick.at - start : tick.at;
    return {...tick, at, record: null, trace: series.title};
  }));
  ticks.sort((a, b) => a.at - b.at);
  for (const step of steps) {
    step.at = axis === "records" ? step.record : axis === "since" ? step.at - start : step.at;
  }
  const end = steps[steps.length - 1].at;
  return {title: "All traces together", ids: ids.concat(-1), steps, ticks, peak: null, end};
}

/**
 * When the program ended, but not before the last step.
 * @param {Trace} trace @param {Series} series @returns {number}
 */
function end_of(trace, series) {
  return Math.max(series.end, milliseconds_of(trace.end) || 0);
}

/**
 * The ids that held most in one of the series.
 * @param {Series[]} all @returns {number[]}
 */
function highest_ids(all) {
  /** @type {Map<number, number>} */
  const highest = new Map();
  for (const {ids, steps} of all) {
    ids.forEach((id, at) => {
      if (id < 0) return;
      const most = d3.max(steps, (/** @type {Step} */ step) => step.levels[at]);
      highest.set(id, Math.max(highest.get(id) || 0, most));
    });
  }
  const level = (/** @type {number} */ id) => highest.get(id) || 0;
  return Array.from(highest.keys())
      .sort((a, b) => level(b) - level(a) || a - b)
      .slice(0, id_colors);
}

/**
 * Steps of all series, each with the sum of what every series has reached by then. When they are too
 * many, neighbours become one, which has the highest of them.
 * @param {Series[]} all by time @param {number[]} ids @param {number[]} ends of the programs
 * @returns {Step[]}
 */
function sum_steps(all, ids, ends) {
  /** @type {{at: number, series: number, step: Step | null}[]} */
  const moments = all.flatMap((each, series) => {
    const known =
        each.steps.map((step) => ({at: step.at, series, step: /** @type {Step?} */ (step)}));
    return known.concat({at: ends[series], series, step: null});
  });
  const last = Math.max(...ends);
  moments.sort((a, b) => a.at - b.at || a.series - b.series);

  const each = Math.ceil(moments.length / most_summed_steps);
  const reached =
      all.map(() => ({record: 0, last: 0, heap: 0, levels: ids.map(() => 0).concat(0)}));
  const sum = {record: 0, last: 0, heap: 0, levels: ids.map(() => 0).concat(0)};
  /** @param {typeof sum} part @param {number} sign */
  const add = (part, sign) => {
    sum.record += sign * part.record;
    sum.last += sign * part.last;
    sum.heap += sign * part.heap;
    part.levels.forEach((level, at) => {
      sum.levels[at] += sign * level;
    });
  };
  /** @type {Step[]} */
  const steps = [];
  let highest = 0;
  moments.forEach(({at, series, step}, place) => {
    const before = reached[series];
    if (step) {
      reached[series] = {...step, levels: in_order_of(ids, all[series].ids, step.levels)};
    } else if (at < last) {
      const nothing = {last: 0, heap: 0, levels: sum.levels.map(() => 0)};
      reached[series] = {record: before.record, ...nothing};
    }
    add(before, -1);
    add(reached[series], 1);
    highest = Math.max(highest, sum.last);
    if ((place + 1) % each !== 0 && place + 1 < moments.length) return;
    steps.push({...sum, at, time: time_text(at), highest, levels: sum.levels.slice()});
    highest = 0;
  });
  return steps;
}

/**
 * Levels in the order of other ids; what these lack is added to the last level, that of all others.
 * @param {number[]} wanted @param {number[]} ids @param {number[]} levels @returns {number[]}
 */
function in_order_of(wanted, ids, levels) {
  const sums = wanted.map(() => 0).concat(0);
  ids.forEach((id, at) => {
    const place = id < 0 ? -1 : wanted.indexOf(id);
    sums[place < 0 ? wanted.length : place] += levels[at];
  });
  return sums;
}

/** @param {number} moment milliseconds @returns {string} */
function time_text(moment) {
  return new Date(moment).toISOString().replace("T", " ").replace("Z", "");
}
