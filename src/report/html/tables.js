// The tables by line, function, id and so on, of the measure that is chosen.

const first_rows = 15;
const more_rows = 100;

/**
 * @param {Report} report @param {Choice} choice
 * @param {(filter: RowFilter) => void} show_paths called with the row whose paths are asked for
 */
function make_tables(report, choice, show_paths) {
  const compared = report.runs.length > 1;
  const section = d3.select("#tables");
  /** @type {{key: KeyName, text: string, sorted: number, ascending: boolean, shown: number}} */
  const view = {key: "line", text: "", sorted: -1, ascending: false, shown: first_rows};

  section.append("p")
      .attr("class", "lead")
      .text("What was allocated by whom. Select a name to see its call paths in the graph above.");
  const controls = section.append("div").attr("class", "controls");
  radio_group(controls, {
    legend: "By",
    name: "table-key",
    value: view.key,
    options: keys.map((key) => ({value: key.name, text: key.title})),
    change: (value) => {
      view.key = value;
      start_over();
    },
  });
  text_field(controls, {
    label: "Only names with",
    id: "table-filter",
    type: "search",
    change: (value) => {
      view.text = value;
      view.shown = first_rows;
      draw();
    },
  });
  const said = section.append("p")
                   .attr("class", "sum-line")
                   .attr("id", "table-sum")
                   .attr("aria-live", "polite");
  const place = section.append("div").attr("id", "table-place");

  function start_over() {
    view.shown = first_rows;
    draw();
  }

  /** @returns {List[]} */
  function lists() {
    return report.runs.map((run) => find_list(run, view.key, choice.measure));
  }

  /** @returns {Column[]} */
  function columns() {
    /** @type {Column} */
    const name = {
      title: view.key === "path" ? "Call path, innermost function first" : key_title(view.key),
      text: (row) => (row.frames ? path_text(row.frames) : row.name),
      value: (row) => (row.frames ? path_text(row.frames) : row.name).toLowerCase(),
      fill: fill_name,
    };
    if (compared) {
      const other = choice.unit === "bytes" ? "blocks" : "bytes";
      const more = change_columns(other, (row, run) => row.amounts[run])[2];
      return change_columns(choice.unit, (row, run) => row.amounts[run])
          .concat({...more, title: "Change in " + other}, name);
    }
    const total = lists()[0].total;
    return [
      {
        title: "Bytes",
        number: true,
        text: (row) => human_bytes(row.amounts[0].bytes),
        exact: (row) => exact_bytes(row.amounts[0].bytes),
        value: (row) => row.amounts[0].bytes
      },
      {
        title: "Share",
        number: true,
        text: (row) => human_share(row.amounts[0][choice.unit], total[choice.unit]),
        value: (row) => row.amounts[0][choice.unit],
        share: (row) => row.amounts[0][choice.unit] / total[choice.unit],
      },
      {
        title: "Blocks",
        number: true,
        text: (row) => grouped(row.amounts[0].blocks),
        value: (row) => row.amounts[0].blocks
      },
      {
        title: "Rounded up",
        number: true,
        text: (row) => human_bytes(row.amounts[0].tot_bytes),
        exact: (row) => exact_bytes(row.amounts[0].tot_bytes),
        value: (row) => row.amounts[0].tot_bytes
      },
      name,
    ];
  }

  /** @param {D3Selection} cell @param {JoinedRow} row */
  function fill_name(cell, row) {
    cell.attr("class", "name-cell");
    const show =
        button(cell, "", () => show_paths({key: view.key, name: row.name, frames: row.frames}))
            .attr("class", "link")
            .attr("title", "Show its paths in the flame graph");
    if (!row.frames) {
      name_in(show, row.name);
      return;
    }
    const frames = row.frames.slice().reverse();
    name_in(show, frames.length === 0 ? no_path_name : frames[0]);
    if (frames.length < 2) return;
    const callers = frames.length > 6 ?
        frames.slice(1, 5).concat(
            "… " + grouped(frames.length - 6) + " more …", frames[frames.length - 1]) :
        frames.slice(1);
    const text = cell.append("span").attr("class", "callers").attr("title", path_text(row.frames));
    for (const caller of callers) name_in(text.append("span").attr("class", "caller"), caller);
  }

  /**
   * Rows in the order that is asked for: as the report has them, or what changed most first.
   * @param {JoinedRow[]} rows @param {Column[]} all
   */
  function sort_rows(rows, all) {
    const column = view.sorted < 0 ? null : all[view.sorted];
    if (!column && !compared) {
      if (choice.unit === "blocks") rows.sort((a, b) => b.amounts[0].blocks - a.amounts[0].blocks);
      return;
    }
    const by_change = (/** @type {JoinedRow} */ row) => {
      const [before, after] = row.amounts;
      return after[choice.unit] - before[choice.unit];
    };
    rows.sort((a, b) => {
      if (!column || !column.value) return by_change(b) - by_change(a);
      const [first, second] = [column.value(a), column.value(b)];
      const order = first < second ? -1 : first > second ? 1 : 0;
      return view.ascending ? order : -order;
    });
  }

  function draw() {
    const all = columns();
    const both = lists();
    const wanted = view.text.trim().toLowerCase();
    const joined = join_lists(both);
    const rows = joined.filter(
        (row) => wanted === "" ||
            (row.frames ? path_text(row.frames) : row.name).toLowerCase().includes(wanted));
    sort_rows(rows, all);
    const had = document.activeElement && document.activeElement.id;
    place.text("");
    say_total(both, rows, joined.length, wanted !== "");

    const shown = rows.slice(0, view.shown);
    const caption = measures[measure_place(choice.measure)].title + " by " + key_title(view.key);
    const table =
        plain_table(place, caption, all, shown).attr("class", "list").attr("id", "table-rows");
    table.selectAll("thead th")
        .each(
            (/** @type {any} */ _, /** @type {number} */ at, /** @type {any[]} */ cells) =>
                make_sortable(d3.select(cells[at]), all[at], at));
    draw_foot(table, both, rows, all.length, wanted !== "");
    if (rows.length > shown.length) {
      const rest = rows.length - shown.length;
      button(
          place,
          rest > more_rows ? "Show " + more_rows + " more of " + grouped(rest) :
                             "Show " + grouped(rest) + " more",
          () => {
            view.shown += more_rows;
            draw();
          })
          .attr("id", "table-more");
    }
    if (had)
      d3.select(document.getElementById(had))
          .each(
              (/** @type {any} */ _, /** @type {number} */ at, /** @type {any[]} */ nodes) =>
                  nodes[at] && nodes[at].focus());
  }

  /** @param {D3Selection} title @param {Column} column @param {number} at */
  function make_sortable(title, column, at) {
    if (!column.value) return;
    const sorted = view.sorted === at;
    title.attr("aria-sort", sorted ? (view.ascending ? "ascending" : "descending") : null).text("");
    button(title, column.title, () => {
      view.ascending = view.sorted === at ? !view.ascending : !column.number;
      view.sorted = at;
      view.shown = first_rows;
      draw();
    }).attr("class", "sort").attr("id", "sort-" + at);
  }

  /**
   * @param {List[]} both @param {JoinedRow[]} rows @param {number} all @param {boolean} filtered
   */
  function say_total(both, rows, all, filtered) {
    const key = keys.find((each) => each.name === view.key);
    const names = all + (compared ? 0 : both[0].others?.names || 0);
    let text =
        both.map((list) => human_bytes(list.total.bytes) + " in " + in_blocks(list.total.blocks))
            .join(" → ") +
        " " + measure_words(choice.measure);
    text += ", " + counted(names, key_words(view.key), key ? key.many : "");
    if (filtered) {
      const sums = both.map((_, run) => sum_of(rows, run));
      text += "; " + counted(rows.length, "name matches", "names match") + ": " +
          sums.map((sum) => human_bytes(sum.bytes) + " in " + in_blocks(sum.blocks)).join(" → ");
    }
    said.text(text);
    const exact = both.map((list) => exact_bytes(list.total.bytes)).join(" → ");
    said.attr("title", exact);
  }

  /** @param {JoinedRow[]} rows @param {number} run @returns {Amount} */
  function sum_of(rows, run) {
    const sum = {blocks: 0, bytes: 0, tot_bytes: 0};
    for (const {amounts} of rows) {
      const amount = amounts[run];
      sum.blocks += amount.blocks;
      sum.bytes += amount.bytes;
      sum.tot_bytes += amount.tot_bytes;
    }
    return sum;
  }

  /**
   * What was cut from the lists, and the sum of all.
   * @param {D3Selection} table @param {List[]} both @param {JoinedRow[]} rows @param {number} width
   * @param {boolean} filtered
   */
  function draw_foot(table, both, rows, width, filtered) {
    const foot = table.append("tfoot");
    /** @param {string} title @param {Amount[]} amounts @param {string} of */
    const line = (title, amounts, of) => {
      const row = foot.append("tr").attr("class", of);
      const total = both[0].total;
      const cells = compared ?
          change_columns(choice.unit, (_, run) => amounts[run])
              .concat(change_columns(
                  choice.unit === "bytes" ? "blocks" : "bytes", (_, run) => amounts[run])[2]) :
          columns().slice(0, width - 1);
      for (const column of cells)
        fill_cell(row.append("td"), {...column, share: undefined}, {amounts, total});
      row.append("th").attr("scope", "row").text(title);
    };
    if (filtered) line("All that match", both.map((_, run) => sum_of(rows, run)), "matching");
    if (both.some((list) => list.others)) {
      const count = both.map((list) => grouped(list.others ? list.others.names : 0)).join(" → ");
      line(
          others_name + ": " + count + " smaller names that this page leaves out",
          both.map((list) => list.others || {blocks: 0, bytes: 0, tot_bytes: 0}), "others");
    }
    line("Total", both.map((list) => list.total), "total");
  }

  start_over();
  return {start_over};
}
