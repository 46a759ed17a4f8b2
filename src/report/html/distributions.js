// How large blocks were, how long they lived, and what the allocator's rounding took.

/**
 * A bar: what lies from `from` up to `to`, both included, for each run with and without an
 * obligation to free.
 * @typedef {{exponent: number, from: number, to: number, with_free: Figures[], no_free: Figures[]}}
 * SumBar
 */
/** @typedef {{blocks: number, bytes: number}} Figures */

/**
 * Bars without gaps from the smallest to the largest.
 * @param {Page} page @param {"size" | "lifetime"} of @param {number} id -1 for all
 * @returns {SumBar[]}
 */
function sum_bars(page, of, id) {
  const none = () => page.runs.map(() => ({blocks: 0, bytes: 0}));
  /** @type {Map<number, SumBar>} */
  const bars = new Map();
  page.runs.forEach((run, at) => {
    for (const bar of run.traces.flatMap((trace) => trace.histograms)) {
      if (bar.of !== of || (id >= 0 && bar.id !== id)) continue;
      const {exponent} = bar;
      let sum = bars.get(exponent);
      if (!sum) bars.set(exponent, (sum = new_bar(exponent, none)));
      const figures = (bar.no_free ? sum.no_free : sum.with_free)[at];
      figures.blocks += bar.blocks;
      figures.bytes += bar.bytes;
    }
  });
  if (bars.size === 0) return [];
  const [first, last] = d3.extent(Array.from(bars.keys()));
  return d3.range(first, last + 1)
      .map((/** @type {number} */ exponent) => bars.get(exponent) || new_bar(exponent, none));
}

/** @param {number} exponent @param {() => Figures[]} none @returns {SumBar} */
function new_bar(exponent, none) {
  const from = exponent < 0 ? 0 : Math.pow(2, exponent);
  return {exponent, from, to: exponent < 0 ? 0 : 2 * from - 1, with_free: none(), no_free: none()};
}

/**
 * @param {Report} report @param {Map<number, number>} ranks colours of ids @param {Choice} choice
 */
function make_distributions(report, ranks, choice) {
  const page = report.page;
  const compared = report.runs.length > 1;
  const section = d3.select("#distributions");
  const view = {id: -1};
  const controls = section.append("div").attr("class", "controls");
  const used = new Set(page.runs.flatMap(
      (run) => run.traces.flatMap((trace) => trace.histograms.map((bar) => bar.id))));
  const order = Array.from(used).sort(
      (a, b) => (ranks.get(a) ?? id_colors) - (ranks.get(b) ?? id_colors) || a - b);
  select_box(controls, {
    label: "Allocation id",
    id: "histogram-id",
    value: "-1",
    options: [{value: "-1", text: "All allocation ids"}].concat(
        order.map((id) => ({value: String(id), text: shown_name(page.names.id[id])}))),
    change: (value) => {
      view.id = Number(value);
      draw();
    },
  });
  const legend = section.append("ul").attr("class", "legend");
  const pair = section.append("div").attr("class", "pair");
  const sizes = make_histogram(
      pair, "size", "Sizes of blocks", "With the size that a block was made with, in bytes.");
  const lifetimes = make_histogram(
      pair, "lifetime", "Lifetimes of blocks",
      "In memory records from a block's making to its end; blocks that were live at the end have none.");
  section.append("h3").text("What rounding costs");
  section.append("p").attr("class", "lead").attr("id", "rounding-lead");
  const rounding = section.append("div").attr("id", "rounding");

  /**
   * @param {D3Selection} parent @param {"size" | "lifetime"} of
   * @param {string} title @param {string} lead
   */
  function make_histogram(parent, of, title, lead) {
    const place = parent.append("div").attr("class", "histogram").attr("id", "histogram-" + of);
    place.append("h3").text(title);
    place.append("p").attr("class", "lead").text(lead);
    const picture = place.append("div")
                        .attr("class", "canvas")
                        .attr("role", "img")
                        .attr("aria-label", title + " as bars; a table follows.");
    const table = table_behind(
        place, "The bars as a table", "histogram-" + of + "-table",
        (where) => fill_table(where, title, sum_bars(page, of, view.id)));
    return {of, picture, table};
  }

  function draw() {
    draw_legend();
    for (const {of, picture, table} of [sizes, lifetimes]) {
      draw_bars(picture, sum_bars(page, /** @type {"size" | "lifetime"} */ (of), view.id), of);
      table.refresh();
    }
    draw_rounding();
  }

  /**
   * The series of bars: two runs, or memory with and without an obligation to free.
   * @returns {{title: string, color: string, of: (bar: SumBar) => Figures}[]}
   */
  function series() {
    if (compared) {
      const of_run = (/** @type {number} */ run) => (/** @type {SumBar} */ bar) => ({
        blocks: bar.with_free[run].blocks + bar.no_free[run].blocks,
        bytes: bar.with_free[run].bytes + bar.no_free[run].bytes,
      });
      return [
        {title: "before", color: "--before", of: of_run(0)},
        {title: "after", color: "--after", of: of_run(1)}
      ];
    }
    return [
      {title: "with-free", color: "--with-free", of: (bar) => bar.with_free[0]},
      {title: "no-free", color: "--no-free", of: (bar) => bar.no_free[0]},
    ];
  }

  function draw_legend() {
    legend.text("");
    for (const {title, color} of series()) {
      const item = legend.append("li");
      item.append("span").attr("class", "swatch").style("background", `var(${color})`);
      item.append("span").text(title);
    }
  }

  /** @param {D3Selection} place @param {SumBar[]} bars @param {string} of */
  function draw_bars(place, bars, of) {
    place.text("");
    if (bars.length === 0) {
      place.append("p").attr("class", "note").text("No blocks.");
      return;
    }
    const width = Math.max(260, place.node().clientWidth);
    const height = 220;
    const edge = {left: 64, right: 8, top: 10, bottom: 30};
    const svg = place.append("svg")
                    .attr("width", width)
                    .attr("height", height)
                    .attr("viewBox", `0 0 ${width} ${height}`)
                    .attr("aria-hidden", "true");
    const all = series();
    const format = choice.unit === "bytes" ? short_bytes : grouped;
    const values = (/** @type {SumBar} */ bar) => all.map((one) => one.of(bar)[choice.unit]);
    const highest = 1.06 *
            d3.max(
                bars,
                (/** @type {SumBar} */ bar) =>
                    (compared ? d3.max(values(bar)) : d3.sum(values(bar)))) ||
        1;
    const end = Math.min(width - edge.right, edge.left + 72 * bars.length);
    const x = d3.scaleBand()
                  .domain(bars.map((bar) => bar.exponent))
                  .range([edge.left, end])
                  .paddingInner(0.15);
    const y = d3.scaleLinear().domain([0, highest]).range([height - edge.bottom, edge.top]);
    const heights =
        choice.unit === "bytes" ? byte_ticks(highest, 4) : y.ticks(4).filter(Number.isInteger);
    svg.append("g")
        .attr("class", "grid")
        .attr("transform", `translate(${edge.left},0)`)
        .call(d3.axisLeft(y)
                  .tickValues(heights)
                  .tickSize(-(width - edge.left - edge.right))
                  .tickFormat(format));
    const each = Math.ceil(bars.length / Math.max(1, Math.floor((width - edge.left) / 52)));
    svg.append("g")
        .attr("class", "axis")
        .attr("transform", `translate(0,${height - edge.bottom})`)
        .call(d3.axisBottom(x)
                  .tickSizeOuter(0)
                  .tickValues(bars.filter((_, at) => at % each === 0).map((bar) => bar.exponent))
                  .tickFormat((/** @type {number} */ exponent) => short_power(exponent, of)));
    for (const bar of bars) {
      let below = 0;
      all.forEach((one, at) => {
        const value = one.of(bar)[choice.unit];
        if (value === 0) return;
        const wide = compared ? x.bandwidth() / 2 : x.bandwidth();
        svg.append("rect")
            .attr("x", x(bar.exponent) + (compared ? at * wide : 0))
            .attr("width", Math.max(1, wide - (compared ? 1 : 0)))
            .attr("y", y(below + value))
            .attr("height", Math.max(0.5, y(below) - y(below + value)))
            .style("fill", `var(${one.color})`);
        if (!compared) below += value;
      });
      svg.append("rect")
          .attr("class", "catch")
          .attr("x", x(bar.exponent))
          .attr("width", x.step())
          .attr("y", edge.top)
          .attr("height", height - edge.top - edge.bottom)
          .on("mousemove",
              () => show_tip(
                  d3.event,
                  [bar_range(bar, of)].concat(all.filter((one) => one.of(bar).blocks > 0)
                                                  .map(
                                                      (one) => one.title + ": " +
                                                          in_blocks(one.of(bar).blocks) + ", " +
                                                          human_bytes(one.of(bar).bytes)))))
          .on("mouseleave", hide_tip);
    }
  }

  /** @param {D3Selection} place @param {string} title @param {SumBar[]} bars */
  function fill_table(place, title, bars) {
    /** @type {Column[]} */
    const columns = [
      {title: "From", number: true, text: (bar) => grouped(bar.from)},
      {title: "To", number: true, text: (bar) => grouped(bar.to)},
    ];
    for (const one of series()) {
      columns.push(
          {title: "Blocks " + one.title, number: true, text: (bar) => grouped(one.of(bar).blocks)},
          {title: "Bytes " + one.title, number: true, text: (bar) => grouped(one.of(bar).bytes)},
      );
    }
    plain_table(place, title, columns, bars);
  }

  function draw_rounding() {
    rounding.text("");
    const lists = report.runs.map((run) => find_list(run, "id", choice.measure));
    d3.select("#rounding-lead")
        .text(
            "What the allocator took beyond what was asked for, " + measure_words(choice.measure) +
            ", by allocation id.");
    const rows = join_lists(lists);
    const cost = (/** @type {Amount} */ amount) => amount.tot_bytes - amount.bytes;
    rows.sort((a, b) => Math.max(...b.amounts.map(cost)) - Math.max(...a.amounts.map(cost)));
    /** @type {{name: string, amounts: Amount[]}[]} */
    const shown = rows.slice(0, 12).map((row) => ({name: row.name, amounts: row.amounts}));
    if (rows.length > 12 || lists.some((list) => list.others)) {
      shown.push({
        name: others_name,
        amounts:
            lists.map((list, run) => subtract(list.total, shown.map((row) => row.amounts[run])))
      });
    }
    shown.push({name: "Total", amounts: lists.map((list) => list.total)});
    plain_table(rounding, "Rounding by allocation id", rounding_columns(shown, cost), shown)
        .attr("class", "list rounding");
  }

  /**
   * @param {{name: string, amounts: Amount[]}[]} rows the total last
   * @param {(amount: Amount) => number} cost @returns {Column[]}
   */
  function rounding_columns(rows, cost) {
    const name = {title: "Allocation id", text: (/** @type {any} */ row) => row.name};
    if (compared) {
      const costs = (/** @type {any} */ row, /** @type {number} */ run) =>
          ({blocks: 0, tot_bytes: 0, bytes: cost(row.amounts[run])});
      return change_columns("bytes", costs).concat(name);
    }
    const total = rows[rows.length - 1];
    const largest = Math.max(1, ...rows.slice(0, -1).map((row) => cost(row.amounts[0])));
    return [
      {
        title: "Asked for",
        number: true,
        text: (row) => human_bytes(row.amounts[0].bytes),
        exact: (row) => exact_bytes(row.amounts[0].bytes)
      },
      {
        title: "Rounding",
        number: true,
        text: (row) => human_bytes(cost(row.amounts[0])),
        exact: (row) => exact_bytes(cost(row.amounts[0])),
        share: (row) => (row === total ? 0 : cost(row.amounts[0]) / largest)
      },
      {
        title: "Adds",
        number: true,
        text: (row) => human_share(cost(row.amounts[0]), row.amounts[0].bytes)
      },
      name,
    ];
  }

  draw();
  return {draw};
}

/** @param {Amount} total @param {Amount[]} parts @returns {Amount} what is left of the total */
function subtract(total, parts) {
  const left = {...total};
  for (const part of parts) {
    left.blocks -= part.blocks;
    left.bytes -= part.bytes;
    left.tot_bytes -= part.tot_bytes;
  }
  return left;
}

/**
 * "64 KiB" as a mark below a bar that begins there.
 * @param {number} exponent @param {string} of @returns {string}
 */
function short_power(exponent, of) {
  if (exponent < 0) return "0";
  const units = of === "size" ? ["B", "Ki", "Mi", "Gi", "Ti", "Pi", "Ei"] :
                                ["", "Ki", "Mi", "Gi", "Ti", "Pi", "Ei"];
  return Math.pow(2, exponent % 10) + " " + units[Math.floor(exponent / 10)];
}

/** @param {SumBar} bar @param {string} of @returns {string} */
function bar_range(bar, of) {
  const unit = of === "size" ? " bytes" : " records";
  return bar.from === bar.to ? grouped(bar.from) + unit :
                               grouped(bar.from) + " to " + grouped(bar.to) + unit;
}
