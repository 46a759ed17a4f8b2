// The drawing of a flame graph: one canvas, of which only what is in view is drawn.

/**
 * @typedef {{frame_of: (event: MouseEvent) => Frame | null, draw: () => void,
 *   show: (rows: Frame[][], focus: Frame) => void, zoom: (focus: Frame) => void,
 *   mark: (selected: Frame | null, matches: Set<Frame> | null) => void,
 *   bring_into_view: (frame: Frame) => void, element: any}} FlameCanvas
 */

const frame_height = 19;
const most_flame_height = 560;

/**
 * @param {D3Selection} parent @param {string} label
 * @param {(frame: Frame, colors: Record<string, string>) => string} color_of
 * @returns {FlameCanvas}
 */
function make_flame_canvas(parent, label, color_of) {
  const scroller = parent.append("div")
                       .attr("class", "flame canvas")
                       .attr("tabindex", 0)
                       .attr("role", "application")
                       .attr("aria-roledescription", "flame graph")
                       .attr("aria-label", label);
  const canvas = scroller.append("canvas").attr("aria-hidden", "true");
  const spacer = scroller.append("div").attr("class", "spacer");
  const context = canvas.node().getContext("2d");

  /** @type {Frame[][]} */
  let rows = [];
  /** @type {Frame | null} */
  let focus = null;
  /** @type {Frame | null} */
  let selected = null;
  /** @type {Set<Frame> | null} */
  let matches = null;
  let width = 0;
  let height = 0;
  const x = d3.scaleLinear();
  const left_edge = d3.bisector((/** @type {Frame} */ frame) => frame.x0);
  /** @type {Map<string, number>} */
  const text_widths = new Map();

  function resize() {
    width = Math.max(200, scroller.node().clientWidth);
    height = Math.min(most_flame_height, Math.max(1, rows.length) * frame_height + 1);
    const ratio = window.devicePixelRatio || 1;
    scroller.style("height", height + "px");
    spacer.style("height", Math.max(0, rows.length * frame_height + 1 - height) + "px");
    canvas.attr("width", Math.round(width * ratio))
        .attr("height", Math.round(height * ratio))
        .style("width", width + "px")
        .style("height", height + "px");
    context.setTransform(ratio, 0, 0, ratio, 0, 0);
    x.range([0, width]);
  }

  /** @param {string} text @returns {number} */
  function text_width(text) {
    let known = text_widths.get(text);
    if (known === undefined) text_widths.set(text, (known = context.measureText(text).width));
    return /** @type {number} */ (known);
  }

  /**
   * The name as far as it has room: whole, without its object, or cut.
   * @param {string} name @param {number} room @returns {string}
   */
  function fitting(name, room) {
    if (name.length < 400 && text_width(name) <= room) return name;
    const part = split_function(name).part;
    if (part.length < 400 && text_width(part) <= room) return part;
    const letters = Math.floor(room / text_width("m"));
    return letters < 3 ? "" : shortened(part, letters);
  }

  function draw() {
    if (width === 0) return;
    const colors = flame_colors();
    context.clearRect(0, 0, width, height);
    context.font =
        "12px ui-monospace, \"SF Mono\", \"Cascadia Mono\", \"DejaVu Sans Mono\", Menlo, Consolas, monospace";
    context.textBaseline = "middle";
    const scrolled = scroller.node().scrollTop;
    const [from, to] = x.domain();
    const first = Math.floor(scrolled / frame_height);
    const last = Math.min(rows.length - 1, Math.floor((scrolled + height) / frame_height));
    for (let depth = first; depth <= last; ++depth) {
      const row = rows[depth];
      const top = depth * frame_height - scrolled;
      let drawn_to = -1;
      for (let at = Math.max(0, left_edge.right(row, from) - 1); at < row.length && row[at].x0 < to;
           ++at) {
        const frame = row[at];
        const left = Math.max(0, x(frame.x0));
        const right = Math.min(width, x(frame.x1));
        // What is too narrow to be seen is drawn only where nothing was drawn yet.
        if (right <= left || (right - left < 0.5 && right < drawn_to + 0.5)) continue;
        draw_frame(frame, left, top, Math.max(0.5, right - left), colors);
        drawn_to = right;
      }
    }
  }

  /**
   * @param {Frame} frame @param {number} left @param {number} top @param {number} wide
   * @param {Record<string, string>} colors
   */
  function draw_frame(frame, left, top, wide, colors) {
    const found = matches !== null && matches.has(frame);
    const above = focus !== null && frame.depth < focus.depth;
    context.globalAlpha = found ? 1 : matches !== null ? 0.45 : above ? 0.55 : 1;
    context.fillStyle = found ? colors.found : color_of(frame, colors);
    const gap = wide > 3 ? 1 : 0;
    context.fillRect(left, top + 1, wide - gap, frame_height - 1);
    if (wide > 24) {
      context.fillStyle = found ? colors.found_ink : colors.ink;
      const text = fitting(shown_name(frame.data.name), wide - 9);
      if (text !== "") context.fillText(text, left + 4, top + frame_height / 2 + 1);
    }
    context.globalAlpha = 1;
    if (frame === selected) {
      context.strokeStyle = colors.outline;
      context.lineWidth = 2;
      context.strokeRect(left + 1, top + 2, Math.max(1, wide - gap - 2), frame_height - 3);
    }
  }

  /** @param {MouseEvent} event @returns {Frame | null} */
  function frame_of(event) {
    const box = canvas.node().getBoundingClientRect();
    const row =
        rows[Math.floor((event.clientY - box.top + scroller.node().scrollTop) / frame_height)];
    if (!row) return null;
    const place = x.invert(event.clientX - box.left);
    const frame = row[left_edge.right(row, place) - 1];
    return frame && place < frame.x1 ? frame : null;
  }

  /** @param {Frame} wanted */
  function zoom(wanted) {
    focus = wanted;
    const to = [wanted.x0, wanted.x1];
    const still = window.matchMedia("(prefers-reduced-motion: reduce)").matches;
    scroller.interrupt("zoom");
    if (still) {
      x.domain(to);
      draw();
      return;
    }
    const domain = d3.interpolate(x.domain(), to);
    scroller.transition("zoom").duration(220).tween("zoom", () => (/** @type {number} */ t) => {
      x.domain(t === 1 ? to : domain(t));
      draw();
    });
  }

  /** @param {Frame} frame */
  function bring_into_view(frame) {
    const top = frame.depth * frame_height;
    const node = scroller.node();
    if (top < node.scrollTop) node.scrollTop = top;
    if (top + frame_height > node.scrollTop + height)
      node.scrollTop = top + 2 * frame_height - height;
  }

  scroller.on("scroll", draw);
  return {
    frame_of,
    draw: () => {
      resize();
      draw();
    },
    show: (new_rows, new_focus) => {
      rows = new_rows;
      focus = new_focus;
      scroller.interrupt("zoom");
      x.domain([new_focus.x0, new_focus.x1]);
      resize();
      draw();
    },
    zoom,
    mark: (new_selected, new_matches) => {
      selected = new_selected;
      matches = new_matches;
      draw();
    },
    bring_into_view,
    element: scroller,
  };
}

/** @returns {Record<string, string>} */
function flame_colors() {
  /** @type {Record<string, string>} */
  const colors = {};
  const style = getComputedStyle(document.documentElement);
  const names =
      ["ink", "found", "found_ink", "outline", "plain", "all", "others", "grown", "same", "shrunk"];
  for (let at = 0; at < object_colors; ++at) names.push("object_" + at);
  for (const name of names)
    colors[name] = style.getPropertyValue("--flame-" + name.replace(/_/g, "-")).trim();
  return colors;
}

/**
 * How much a frame grew: -1 when it is gone, 1 when it is new.
 * @param {Frame} frame @param {Unit} unit @returns {number}
 */
function growth_of(frame, unit) {
  const [before, after] = frame.data.all.map((figures) => figures[unit]);
  return (after - before) / Math.max(1, before, after);
}
