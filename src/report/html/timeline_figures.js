// The figures of timelines in words and as tables.

/** @param {Step} step @returns {string} */
function step_place(step) {
  return "record " + grouped(step.record) + ", " + step.time;
}

/** @param {Series} one @param {number} step @returns {string} */
function step_words(one, step) {
  const here = one.steps[step];
  return step_place(here) + ": " + exact_bytes(here.last) + " live, heap " + exact_bytes(here.heap);
}

/**
 * The legend, with the figures of a step.
 * @param {D3Selection} place @param {Page} page @param {Map<number, number>} ranks colours of ids
 * @param {Series} one @param {number} step
 * @param {"pointed" | "highest" | "highest here"} why why this step: nothing is pointed at, and it
 *   has the highest level, of all or of what is shown
 */
function draw_readout(place, page, ranks, one, step, why) {
  place.text("");
  const here = one.steps[step];
  const resting = why !== "pointed";
  const line = place.append("p").attr("class", "where");
  const higher = here.highest > here.last ? here.highest : null;
  const shown = resting && higher !== null ? higher : here.last;
  line.append("span").text(
      why === "highest" ? "Highest: " :
          resting       ? "Highest here: " :
                          "At " + step_place(here) + ": ");
  line.append("strong").attr("title", exact_bytes(shown)).text(human_bytes(shown) + " live");
  const more = [", heap grown by " + human_bytes(here.heap)];
  if (resting && higher !== null)
    more.unshift(
        " within the step up to " + step_place(here) + ", " + human_bytes(here.last) +
        " at its end");
  else if (resting)
    more.unshift(" at " + step_place(here));
  else if (higher !== null)
    more.unshift(", up to " + human_bytes(higher) + " within the step");
  line.append("span").text(more.join(""));
  const list = place.append("ul").attr("class", "legend");
  one.ids.forEach((id, at) => {
    if (id < 0 && one.ids.length > 1 && one.steps.every((each) => each.levels[at] === 0)) return;
    const entry = list.append("li");
    entry.append("span").attr("class", "swatch").style("background", `var(${id_color(ranks, id)})`);
    name_in(entry, shortened(id_title(page, one, id), 40)).attr("title", id_title(page, one, id));
    entry.append("span")
        .attr("class", "value")
        .attr("title", exact_bytes(here.levels[at]))
        .text(human_bytes(here.levels[at]));
  });
  const heap = list.append("li");
  heap.append("span").attr("class", "swatch line");
  heap.append("span").text("heap");
  heap.append("span")
      .attr("class", "value")
      .attr("title", exact_bytes(here.heap))
      .text(human_bytes(here.heap));
  const since = step > 0 ? one.steps[step - 1].at : -Infinity;
  const near =
      one.ticks.filter((tick) => !resting && tick.at > since && tick.at <= here.at).slice(0, 3);
  for (const tick of near) {
    const note = place.append("p").attr("class", "where");
    note.append("span").text(
        "Marker " + (tick.trace === "" ? "" : "of " + tick.trace + " ") + "at " + tick.time + ": ");
    name_in(note, tick.text);
  }
}

/** @param {Page} page @param {Series} one @param {number} id @returns {string} */
function id_title(page, one, id) {
  return id >= 0 ? page.names.id[id] : one.ids.length > 1 ? "all others" : "all";
}

/**
 * @param {D3Selection} place @param {Page} page @param {Series} one
 * @param {[number, number]} range @param {string} side "before", "after" or nothing
 */
function step_table(place, page, one, range, side) {
  const steps = one.steps.filter((step) => step.at >= range[0] && step.at <= range[1]);
  /** @type {Column[]} */
  const columns = [
    {title: "Record", number: true, text: (step) => grouped(step.record)},
    {title: "Time", number: true, text: (step) => step.time},
    {title: "Live", number: true, text: (step) => grouped(step.last)},
    {title: "Highest", number: true, text: (step) => grouped(step.highest)},
  ];
  columns.push({title: "Heap", number: true, text: (step) => grouped(step.heap)});
  one.ids.forEach((id, layer) => {
    columns.push({
      title: id_title(page, one, id),
      number: true,
      text: (step) => grouped(step.levels[layer])
    });
  });
  const caption = "Live memory in bytes at the end of each step, " + one.title;
  plain_table(place, caption + (side === "" ? "" : ", " + side), columns, steps);
}

/** @param {D3Selection} place @param {Series} one @param {string} side */
function mark_table(place, one, side) {
  /** @type {Column[]} */
  const columns = [
    {title: "Time", number: true, text: (tick) => tick.time},
    {
      title: "Live",
      number: true,
      text: (tick) => human_bytes(tick.live_bytes),
      exact: (tick) => exact_bytes(tick.live_bytes)
    },
    {title: "Blocks", number: true, text: (tick) => grouped(tick.live_blocks)},
    {title: "Marker", text: (tick) => (tick.trace === "" ? "" : tick.trace + ": ") + tick.text},
  ];
  if (one.ticks.every((tick) => tick.record !== null))
    columns.unshift({title: "Record", number: true, text: (tick) => grouped(tick.record)});
  plain_table(
      place, "Markers of the program" + (side === "" ? "" : ", " + side), columns, one.ticks);
}
