// The flame graph with its switches, its search, the figures of a frame and the table behind it.

/**
 * What the page shows of all measures.
 * @typedef {{measure: MeasureName, unit: Unit, filter: RowFilter | null}} Choice
 */

/**
 * @param {Report} report @param {Group[]} groups
 * @param {Choice} choice @param {() => void} changed called when the filter was taken away
 */
function make_flame_graph(report, groups, choice, changed) {
  const page = report.page;
  const compared = report.runs.length > 1;
  const objects = rank_objects(page.names.function);
  const section = d3.select("#flame");
  /**
   * @type {{ids: "none" | "id" | "color", inverted: boolean, process: number, trace: number,
   *   search: string}}
   */
  const view = {ids: "none", inverted: false, process: -1, trace: -1, search: ""};
  /** @type {any} */
  let root = null;
  /** @type {any} */
  let focus = null;
  /** @type {Frame | null} */
  let selected = null;

  section.append("p").attr("class", "lead").attr("id", "flame-lead");
  draw_controls();
  const filter_place = section.append("div").attr("id", "flame-filter").attr("aria-live", "polite");
  const sum_line = section.append("p")
                       .attr("class", "sum-line")
                       .attr("id", "flame-sum")
                       .attr("aria-live", "polite");
  const found_line = section.append("p")
                         .attr("class", "found")
                         .attr("id", "flame-found")
                         .attr("aria-live", "polite");
  const keys_help =
      "Arrow keys go to callers, callees and neighbours, Enter zooms into a frame, Escape zooms out. A table follows.";
  const picture =
      make_flame_canvas(section, "Flame graph of call paths. " + keys_help, frame_color);
  const legend = section.append("ul").attr("class", "legend").attr("id", "flame-legend");
  const details = section.append("div").attr("class", "frame-details").attr("id", "flame-details");
  const announced = section.append("p")
                        .attr("class", "unseen")
                        .attr("id", "flame-said")
                        .attr("aria-live", "polite");
  const table = table_behind(section, "The frames as a table", "flame-table", (place) => {
    frame_table(place, report, focus, matches());
  });

  picture.element.on("mousemove", () => {
    const frame = picture.frame_of(d3.event);
    picture.element.style("cursor", frame ? "pointer" : "default");
    if (frame)
      show_tip(d3.event, tip_lines(frame));
    else
      hide_tip();
  });
  picture.element.on("mouseleave", hide_tip);
  picture.element.on("click", () => {
    const frame = picture.frame_of(d3.event);
    if (!frame) return;
    go_to(frame);
  });
  picture.element.on("keydown", () => on_key(d3.event));
  picture.element.on("focus", () => {
    if (!selected && root) select(focus);
  });

  function draw_controls() {
    const controls = section.append("div").attr("class", "controls");
    radio_group(controls, {
      legend: "From",
      name: "flame-direction",
      value: "outermost",
      options: [
        {
          value: "outermost",
          text: "Outermost",
          title: "Who called: the program's first functions on top"
        },
        {
          value: "innermost",
          text: "Innermost",
          title: "Who allocates: the functions that allocated on top, their callers below"
        },
      ],
      change: (value) => {
        view.inverted = value === "innermost";
        rebuild();
      },
    });
    radio_group(controls, {
      legend: "Ids as top frames",
      name: "flame-ids",
      value: view.ids,
      options: [
        {value: "none", text: "No"}, {value: "id", text: "Ids"},
        {value: "color", text: "Ids, colours"}
      ],
      change: (value) => {
        view.ids = value;
        rebuild();
      },
    });
    const used = Array.from(new Set(groups.map((group) => group.process))).sort((a, b) => a - b);
    if (used.length > 1) {
      select_box(controls, {
        label: "Process",
        id: "flame-process",
        value: "-1",
        options: [{value: "-1", text: "All processes"}].concat(
            used.map((at) => ({value: String(at), text: shown_name(page.names.process[at])}))),
        change: (value) => {
          view.process = Number(value);
          rebuild();
        },
      });
    }
    if (!compared && report.runs[0].traces.length > 1) {
      select_box(controls, {
        label: "Trace",
        id: "flame-trace",
        value: "-1",
        options: [{value: "-1", text: "All traces"}].concat(report.runs[0].traces.map(
            (trace, at) => ({value: String(at), text: trace_name(trace)}))),
        change: (value) => {
          view.trace = Number(value);
          rebuild();
        },
      });
    }
    text_field(controls, {
      label: "Search",
      id: "flame-search",
      type: "search",
      change: (value) => {
        view.search = value;
        search();
      },
    });
    button(controls, "Zoom out", () => zoom(root)).attr("id", "flame-back");
  }

  /** @param {Frame} frame @param {Record<string, string>} colors @returns {string} */
  function frame_color(frame, colors) {
    if (compared) {
      const growth = growth_of(frame, choice.unit);
      return d3.interpolateRgb(
          colors.same, growth > 0 ? colors.grown : colors.shrunk)(Math.pow(Math.abs(growth), 0.6));
    }
    if (frame.data.kind === "all") return colors.all;
    if (frame.data.name === others_name) return colors.others;
    const rank = objects.get(split_function(frame.data.name).object);
    return frame.data.kind !== "function" ? colors.all :
        rank === undefined                ? colors.plain :
                                            colors["object_" + rank];
  }

  /** @returns {(group: Group) => boolean} */
  function acceptance() {
    const by_filter = filter_test(page, choice.filter);
    return (group) => (view.process < 0 || group.process === view.process) &&
        (view.trace < 0 || group.trace === view.trace) && by_filter(group);
  }

  function rebuild() {
    const measure = measure_place(choice.measure);
    const tree = frame_tree(
        page, groups, {measure, ids: view.ids, inverted: view.inverted, accepts: acceptance()});
    root = lay_out(tree, choice.unit);
    focus = root;
    selected = null;
    picture.show(frame_rows(root), root);
    d3.select("#flame-lead").text(lead_text());
    say_filter();
    say_sum();
    draw_legend();
    search();
    show_details();
  }

  /** @returns {string} */
  function lead_text() {
    const what = view.inverted ?
        "Who allocates: the innermost functions on top, their callers below." :
        "Who called whom: the outermost functions on top, what they called below.";
    return what +
        (compared ? " A frame is as wide as the larger of both runs." :
                    " A frame is as wide as what it holds with all that it called.") +
        " Click a frame to zoom in.";
  }

  function say_filter() {
    filter_place.text("");
    const filter = choice.filter;
    if (!filter) return;
    const chip = filter_place.append("p").attr("class", "chip");
    const words = chip.append("span").text("Only the " + key_words(filter.key) + " ");
    name_in(words, filter.frames ? short_path(filter.frames) : shortened(filter.name, 160));
    button(chip, "Show all again", () => {
      choice.filter = null;
      changed();
    }).attr("id", "flame-unfilter");
    say_missing(filter);
  }

  /**
   * What the table has of a name and the graph has not, since it was put together.
   * @param {RowFilter} filter
   */
  function say_missing(filter) {
    if (view.process >= 0 || view.trace >= 0) return;
    const wanted = filter.frames ? filter.frames.join("\u0000") : filter.name;
    report.runs.forEach((run, at) => {
      const row =
          find_list(run, filter.key, choice.measure).rows.find((each) => row_key(each) === wanted);
      if (!row) return;
      const missing = row.bytes - root.data.all[at].bytes;
      if (missing <= 0 && row.blocks <= root.data.all[at].blocks) return;
      filter_place.append("p")
          .attr("class", "note")
          .text(
              (compared ? side_name(report, at) + ": " : "") + exact_bytes(missing) + " of its " +
              exact_bytes(row.bytes) + " stand in “" + others_name +
              "”: they were put together with others to keep this page small.");
    });
  }

  function say_sum() {
    sum_line.text("");
    const frame = focus;
    const where = sum_line.append("span");
    where.text(frame === root ? "Shown: " : "Zoomed into ");
    if (frame !== root) {
      name_in(sum_line, shortened(frame.data.name, 80));
      sum_line.append("span").text(": ");
    }
    frame.data.all.forEach((/** @type {RunFigures} */ figures, /** @type {number} */ run) => {
      if (run > 0) sum_line.append("span").text(" → ");
      sum_line.append("strong")
          .attr("title", exact_bytes(figures.bytes))
          .text(figure_text(figures));
    });
    if (!compared) sum_line.append("span").text(", " + share_words(frame));
    sum_line.append("span").text(" " + measure_words(choice.measure));
    if (root.value === 0) sum_line.append("span").text(". There is nothing to draw.");
    d3.select("#flame-back").property("disabled", focus === root);
  }

  /**
   * The share of all of the measure, filtered out or not.
   * @param {Frame} frame @returns {string}
   */
  function share_words(frame) {
    const total = run_total(report.runs[0], choice.measure);
    return human_share(frame.data.all[0][choice.unit], total[choice.unit]) + " of all " +
        choice.unit;
  }

  function search() {
    const text = view.search.trim();
    if (text === "" || root.value === 0) {
      found_line.text("");
      picture.mark(selected, null);
      table.refresh();
      return;
    }
    const {matches, all} = search_frames(root, text);
    const parts = all.map(
        (sum, run) => figure_text(sum) + ", " +
            human_share(sum[choice.unit], root.data.all[run][choice.unit]) + " of what is shown");
    found_line.text(
        counted(matches.size, "frame matches", "frames match") + ": " + parts.join(" → "));
    picture.mark(selected, matches);
    table.refresh();
  }

  /**
   * The frames that are searched for; null when none are.
   * @returns {Set<Frame> | null}
   */
  function matches() {
    const text = view.search.trim();
    return text === "" ? null : search_frames(root, text).matches;
  }

  /** @param {Frame} frame */
  function select(frame) {
    selected = frame;
    picture.bring_into_view(frame);
    picture.mark(selected, matches());
    show_details();
    announced.text(tip_lines(frame).join(": "));
  }

  function show_details() {
    draw_frame_details(details, report, choice, selected, {inverted: view.inverted, go_to});
  }

  /** @param {Frame} frame */
  function go_to(frame) {
    zoom(frame);
    select(frame);
  }

  /** @param {Frame} frame */
  function zoom(frame) {
    focus = frame;
    picture.zoom(frame);
    say_sum();
    table.refresh();
  }

  /** @param {KeyboardEvent} event */
  function on_key(event) {
    const at = /** @type {any} */ (selected || focus);
    const family = at.parent ?
        at.parent.children.filter((/** @type {Frame} */ frame) => frame.value > 0) :
        [at];
    /** @type {Record<string, () => Frame | undefined>} */
    const moves = {
      ArrowUp: () => at.parent || undefined,
      ArrowDown: () => (at.children || []).find((/** @type {Frame} */ frame) => frame.value > 0),
      ArrowLeft: () => family[family.indexOf(at) - 1],
      ArrowRight: () => family[family.indexOf(at) + 1],
      Home: () => root,
    };
    if (event.key in moves) {
      const next = moves[event.key]();
      if (next) {
        if (next.x1 <= focus.x0 || next.x0 >= focus.x1) zoom(next.parent || root);
        select(next);
      }
    } else if (event.key === "Enter" || event.key === " ") {
      zoom(at);
    } else if (event.key === "Escape") {
      zoom(root);
    } else {
      return;
    }
    event.preventDefault();
  }

  /** @param {Frame} frame @returns {string[]} */
  function tip_lines(frame) {
    const {all, own} = frame.data;
    const lines = [shortened(shown_name(frame.data.name), 300)];
    if (compared) {
      lines.push("before " + figure_text(all[0]), "after " + figure_text(all[1]));
      lines.push(
          signed(all[1].bytes - all[0].bytes, human_bytes) + ", " +
          signed(all[1].blocks - all[0].blocks, in_blocks));
    } else {
      lines.push(figure_text(all[0]) + ", " + share_words(frame));
      if (own[0].blocks > 0 && frame.children) lines.push("itself " + figure_text(own[0]));
    }
    return lines;
  }

  function draw_legend() {
    legend.text("");
    const add = (/** @type {string} */ color, /** @type {string} */ name) => {
      const item = legend.append("li");
      item.append("span").attr("class", "swatch").style("background", `var(${color})`);
      name_in(item, shortened(name, 40));
    };
    if (compared) {
      add("--flame-grown", "grown or new");
      add("--flame-same", "the same");
      add("--flame-shrunk", "shrunk or gone");
      return;
    }
    const shown = new Set();
    root.each((/** @type {Frame} */ frame) => {
      if (frame.data.kind === "function") shown.add(split_function(frame.data.name).object);
    });
    objects.forEach((rank, object) => {
      if (shown.has(object)) add("--flame-object-" + rank, object);
    });
  }

  return {rebuild, redraw: picture.draw};
}
