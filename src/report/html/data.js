// What stands in the page: the figures of `kivdb report --json` for each run, and what pictures
// need.

/** @typedef {{blocks: number, bytes: number, tot_bytes: number}} Amount */
/** @typedef {{what: string, count: number, first?: string}} Loss */
/** @typedef {Amount & {record: number, time: string}} Peak */
/** @typedef {"leaked" | "peak" | "live" | "allocated" | "temporary"} MeasureName */
/** @typedef {"id" | "color" | "line" | "function" | "path" | "process" | "query"} KeyName */
/** @typedef {"bytes" | "blocks"} Unit */
/**
 * @typedef {{pid: number, program: string, start: string, end: string, complete: boolean,
 *   losses: Loss[], records: number, leaked: Amount, live: Amount, allocated: Amount,
 *   temporary: Amount, peak: Peak, heap_bytes: number, gap_bytes: number, processes: number,
 *   ids: number, environment: string, account: string, host: string, user: string,
 *   description: string, from_rows: boolean, notes: string[]}} Trace
 */
/** @typedef {Amount & {name?: string, frames?: string[]}} ListRow */
/**
 * @typedef {{by: KeyName, of: MeasureName, total: Amount, rows: ListRow[],
 *   others?: Amount & {names: number}}} List
 */
/** @typedef {{focus?: string, ignore?: string, process?: string}} Filter */
/** @typedef {{run: string, filter?: Filter, traces: Trace[], lists: List[]}} Run */
/**
 * @typedef {{records: number[], times: string[], highest: number[], last: number[],
 *   heap: number[], ids: number[], levels: number[][]}} Timeline
 */
/**
 * @typedef {{record: number, time: string, text: string, live_bytes: number,
 *   live_blocks: number}} Mark
 */
/**
 * @typedef {{of: "size" | "lifetime", no_free: boolean, id: number, exponent: number,
 *   blocks: number, bytes: number}} Bar
 */
/** @typedef {{timeline: Timeline, marks: Mark[], histograms: Bar[]}} PageTrace */
/** @typedef {{groups: number[][], traces: PageTrace[]}} PageRun */
/**
 * @typedef {{version: string, left_out: string[],
 *   names: Record<"id" | "color" | "line" | "function" | "process" | "query", string[]>,
 *   paths: number[][], runs: PageRun[]}} Page
 */
/** @typedef {{runs: Run[], page: Page}} Report */

/**
 * Blocks that share trace, kind, id, colour, line, call path, process and statement; figures by
 * the place of their measure.
 * @typedef {{run: number, trace: number, no_free: boolean, id: number, color: number, line: number,
 *   path: number, process: number, query: number, blocks: number[], bytes: number[]}} Group
 */

/** @type {{name: MeasureName, title: string, meaning: string}[]} */
const measures = [
  {name: "leaked", title: "Leaked", meaning: "with-free memory that no free ended"},
  {name: "peak", title: "At the peak", meaning: "live when most was live"},
  {name: "live", title: "Live at the end", meaning: "made and not ended, of both kinds"},
  {
    name: "allocated",
    title: "Allocated",
    meaning: "every block, with the size that it was made with"
  },
  {name: "temporary", title: "Temporary", meaning: "freed within 100 memory records of its making"},
];

/** @type {{name: KeyName, title: string, many: string}[]} */
const keys = [
  {name: "line", title: "Source line", many: "source lines"},
  {name: "function", title: "Function", many: "functions"},
  {name: "id", title: "Allocation id", many: "allocation ids"},
  {name: "color", title: "Colour", many: "colours"},
  {name: "path", title: "Call path", many: "call paths"},
  {name: "process", title: "Process", many: "processes"},
  {name: "query", title: "SQL statement", many: "SQL statements"},
];

const others_name = "(others)";
const no_path_name = "(no call path)";

/** @param {KeyName} name @returns {string} "source line", "SQL statement" */
function key_words(name) {
  const title = key_title(name);
  return title.startsWith("SQL") ? title : title.toLowerCase();
}

/** @param {KeyName} name @returns {string} "Source line" */
function key_title(name) {
  const key = keys.find((each) => each.name === name);
  return key ? key.title : name;
}

/** @param {MeasureName} name */
function measure_place(name) {
  return measures.findIndex((measure) => measure.name === name);
}

/** @returns {Report} */
function read_report() {
  const element = /** @type {HTMLElement} */ (document.getElementById("kiv-report"));
  return JSON.parse(element.textContent || "");
}

/**
 * Groups hold two values for each measure whose bit is set.
 * @param {number[]} values @param {number} run @returns {Group}
 */
function read_group(values, run) {
  const [trace, no_free, id, color, line, path, process, query, mask] = values;
  const blocks = [];
  const bytes = [];
  let at = 9;
  for (let measure = 0; measure < measures.length; ++measure) {
    const set = (mask >> measure) & 1;
    blocks.push(set ? values[at] : 0);
    bytes.push(set ? values[at + 1] : 0);
    at += 2 * set;
  }
  return {run, trace, no_free: no_free === 1, id, color, line, path, process, query, blocks, bytes};
}

/** @param {Page} page @returns {Group[]} */
function read_groups(page) {
  return page.runs.flatMap((run, place) => run.groups.map((values) => read_group(values, place)));
}

/**
 * The shown names of a call path, outermost first.
 * @param {Page} page @param {number} path @returns {string[]}
 */
function path_frames(page, path) {
  const frames = [];
  for (let at = path; at !== 0; at = page.paths[at][0])
    frames.push(page.names.function [page.paths[at][1]]);
  return frames.reverse();
}

/**
 * What all traces of a run add up to.
 * @param {Run} run @param {MeasureName} measure @returns {Amount}
 */
function run_total(run, measure) {
  const sum = {blocks: 0, bytes: 0, tot_bytes: 0};
  for (const trace of run.traces) {
    sum.blocks += trace[measure].blocks;
    sum.bytes += trace[measure].bytes;
    sum.tot_bytes += trace[measure].tot_bytes;
  }
  return sum;
}

/** @param {Run} run @param {KeyName} by @param {MeasureName} of @returns {List} */
function find_list(run, by, of) {
  const found = run.lists.find((list) => list.by === by && list.of === of);
  return found || {by, of, total: {blocks: 0, bytes: 0, tot_bytes: 0}, rows: []};
}

/**
 * "orderd (4101)"
 * @param {Trace} trace @returns {string}
 */
function trace_name(trace) {
  return shown_name(trace.program) + " (" + trace.pid + ")";
}

/**
 * "before" and "after" for two runs, nothing for one.
 * @param {Report} report @param {number} run @returns {string}
 */
function side_name(report, run) {
  return report.runs.length < 2 ? "" : run === 0 ? "before" : "after";
}
