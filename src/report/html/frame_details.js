// The figures of a frame, and of all frames as a table.

const most_table_frames = 500;

/** @param {MeasureName} name @returns {string} "leaked", "live at the peak" */
function measure_words(name) {
  return {
    leaked: "leaked",
    peak: "live at the peak",
    live: "live at the end",
    allocated: "allocated",
    temporary: "temporary"
  }[name];
}

/** @param {RunFigures} figures @returns {string} */
function figure_text(figures) {
  return human_bytes(figures.bytes) + " in " + in_blocks(figures.blocks);
}

/**
 * @param {D3Selection} place @param {Report} report @param {Choice} choice
 * @param {Frame | null} frame
 * @param {{inverted: boolean, go_to: (frame: Frame) => void}} settings
 */
function draw_frame_details(place, report, choice, frame, settings) {
  place.text("");
  if (!frame) {
    place.append("p").attr("class", "note").text("Select a frame to see its figures here.");
    return;
  }
  name_in(place.append("h3"), frame.data.name);
  draw_frame_figures(place, report, choice, frame, settings.inverted);
  draw_frame_path(place, frame, settings);
  const below = groups_below(frame);
  draw_makers(place, report, choice, below, "line", "Source lines that allocated here");
  draw_makers(place, report, choice, below, "id", "Allocation ids");
}

/**
 * @param {D3Selection} place @param {Report} report @param {Choice} choice @param {Frame} frame
 * @param {boolean} inverted
 */
function draw_frame_figures(place, report, choice, frame, inverted) {
  const rows = [
    {title: inverted ? "with callers" : "with callees", figures: frame.data.all},
    {title: "itself", figures: frame.data.own}
  ];
  /** @type {Column[]} */
  const columns = [{title: "", text: (row) => row.title}];
  report.runs.forEach((_, run) => {
    const side = side_name(report, run);
    const of_side = side === "" ? "" : " " + side;
    columns.push(
        {
          title: "Bytes" + of_side,
          number: true,
          text: (row) => exact_bytes(row.figures[run].bytes)
        },
        {title: "Blocks" + of_side, number: true, text: (row) => grouped(row.figures[run].blocks)},
    );
  });
  if (report.runs.length > 1)
    columns.push({
      title: "Change",
      number: true,
      text: (row) => signed(row.figures[1].bytes - row.figures[0].bytes, exact_bytes)
    });
  else
    columns.push({
      title: "Share",
      number: true,
      text: (row) => human_share(
          row.figures[0][choice.unit], run_total(report.runs[0], choice.measure)[choice.unit])
    });
  plain_table(place, "Figures of the frame", columns, rows);
}

/**
 * @param {D3Selection} place @param {Frame} frame
 * @param {{inverted: boolean, go_to: (frame: Frame) => void}} settings
 */
function draw_frame_path(place, frame, settings) {
  const line = ancestors_of(frame);
  if (line.length < 2) return;
  place.append("h4").text(
      settings.inverted ? "Called from, innermost first" : "Path, outermost first");
  const list = place.append("ol").attr("class", "path");
  const shown = line.length > 40 ? line.slice(0, 10).concat(line.slice(-30)) : line;
  shown.forEach((each, at) => {
    if (line.length > 40 && at === 10)
      list.append("li").text("… " + grouped(line.length - 40) + " more …");
    const item = list.append("li");
    const to = button(item, "", () => settings.go_to(each));
    name_in(to.attr("class", "link"), each.data.name);
  });
}

/**
 * The names of a key that made most in some groups.
 * @param {D3Selection} place @param {Report} report @param {Choice} choice @param {Group[]} below
 * @param {"line" | "id"} key @param {string} title
 */
function draw_makers(place, report, choice, below, key, title) {
  const measure = measure_place(choice.measure);
  /** @type {Map<number, RunFigures[]>} */
  const sums = new Map();
  for (const group of below) {
    const sum = sums.get(group[key]) || report.runs.map(() => ({bytes: 0, blocks: 0}));
    sum[group.run].bytes += group.bytes[measure];
    sum[group.run].blocks += group.blocks[measure];
    sums.set(group[key], sum);
  }
  const largest = (/** @type {RunFigures[]} */ sum) =>
      Math.max(...sum.map((each) => each[choice.unit]));
  const rows = Array.from(sums).sort((a, b) => largest(b[1]) - largest(a[1]) || a[0] - b[0]);
  if (rows.length === 0) return;
  place.append("h4").text(title);
  const list = place.append("ul").attr("class", "makers");
  for (const [name, sum] of rows.slice(0, 5)) {
    const item = list.append("li");
    name_in(item, report.page.names[key][name]);
    item.append("span")
        .attr("class", "value")
        .attr("title", sum.map((each) => exact_bytes(each.bytes)).join(" → "))
        .text(sum.map(figure_text).join(" → "));
  }
  if (rows.length > 5)
    list.append("li").attr("class", "note").text("and " + grouped(rows.length - 5) + " more");
}

/**
 * The frames of a picture, largest first.
 * @param {D3Selection} place @param {Report} report @param {any} focus the outermost of them
 * @param {Set<Frame> | null} wanted only these
 */
function frame_table(place, report, focus, wanted) {
  /** @type {any[]} */
  const frames = [];
  focus.each((/** @type {Frame} */ frame) => {
    if (frame.value > 0 && (!wanted || wanted.has(frame))) frames.push(frame);
  });
  frames.sort((a, b) => b.value - a.value || a.depth - b.depth);
  const shown = frames.slice(0, most_table_frames);
  /** @type {Column[]} */
  const columns = [{title: "Depth", number: true, text: (frame) => String(frame.depth)}];
  report.runs.forEach((_, run) => {
    const side = side_name(report, run) === "" ? "" : " " + side_name(report, run);
    columns.push(
        {title: "Bytes" + side, number: true, text: (frame) => grouped(frame.data.all[run].bytes)},
        {
          title: "Blocks" + side,
          number: true,
          text: (frame) => grouped(frame.data.all[run].blocks)
        },
        {title: "Itself" + side, number: true, text: (frame) => grouped(frame.data.own[run].bytes)},
    );
  });
  columns.push({title: "Frame", text: (frame) => frame.data.name});
  if (frames.length > shown.length) {
    place.append("p")
        .attr("class", "note")
        .text(
            "The " + grouped(shown.length) + " largest of " + grouped(frames.length) + " frames.");
  }
  plain_table(
      place, "Frames in the picture, with all that they called, largest first", columns, shown);
}
