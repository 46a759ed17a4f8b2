// The drawing of a timeline: axes, layers by allocation id, lines, the peak and the markers.

/**
 * A series in the making of its picture: `inner` is clipped to what the axes span.
 * @typedef {{one: Series, svg: D3Selection, inner: D3Selection, x: any, y: any, width: number}}
 *   TimelinePicture
 */

const timeline_size = {
  height: 300,
  left: 78,
  right: 16,
  top: 40,
  bottom: 34
};

/**
 * @param {D3Selection} frame @param {Series} one
 * @param {{clip: string, axis: Axis, range: [number, number], highest: number}} settings
 *   `clip` is an id of its own
 * @returns {TimelinePicture}
 */
function make_timeline_picture(frame, one, settings) {
  const width = Math.max(280, frame.node().clientWidth);
  const {height, left, right, top, bottom} = timeline_size;
  const svg = frame.append("svg")
                  .attr("width", width)
                  .attr("height", height)
                  .attr("viewBox", `0 0 ${width} ${height}`)
                  .attr("aria-hidden", "true");
  svg.append("clipPath")
      .attr("id", settings.clip)
      .append("rect")
      .attr("x", left)
      .attr("y", 0)
      .attr("width", width - left - right)
      .attr("height", height);
  const x = scale_for(settings.axis).domain(settings.range).range([left, width - right]);
  const y = d3.scaleLinear().domain([0, settings.highest]).range([height - bottom, top]);
  draw_axes(svg, x, y, width, settings.axis);
  const inner = svg.append("g").attr("clip-path", `url(#${settings.clip})`);
  return {one, svg, inner, x, y, width};
}

/**
 * @param {D3Selection} svg @param {any} x @param {any} y @param {number} width @param {Axis} axis
 */
function draw_axes(svg, x, y, width, axis) {
  const {height, left, right, bottom} = timeline_size;
  const heights = byte_ticks(y.domain()[1], 5);
  svg.append("g")
      .attr("class", "grid")
      .attr("transform", `translate(${left},0)`)
      .call(d3.axisLeft(y)
                .tickValues(heights)
                .tickSize(-(width - left - right))
                .tickFormat(short_bytes));
  svg.append("g")
      .attr("class", "axis")
      .attr("transform", `translate(0,${height - bottom})`)
      .call(d3.axisBottom(x)
                .ticks(Math.max(2, Math.floor(width / 150)))
                .tickFormat(axis_format(axis, x.domain())));
}

/** @param {TimelinePicture} picture @param {Map<number, number>} ranks colours of ids */
function draw_layers({one, inner, x, y}, ranks) {
  // The largest lies at the bottom; the rest on top.
  const layers =
      d3.stack()
          .keys(d3.range(one.ids.length))
          .value((/** @type {Step} */ step, /** @type {number} */ key) => step.levels[key])(
              one.steps);
  const area = d3.area()
                   .curve(d3.curveStepAfter)
                   .x((/** @type {any} */ point) => x(point.data.at))
                   .y0((/** @type {any} */ point) => y(point[0]))
                   .y1((/** @type {any} */ point) => y(point[1]));
  layers.forEach((/** @type {any} */ layer, /** @type {number} */ at) => {
    inner.append("path")
        .attr("class", "layer")
        .attr("d", area(layer))
        .style("fill", `var(${id_color(ranks, one.ids[at])})`);
  });
}

/** @param {TimelinePicture} picture @param {boolean} heap whether it has a line */
function draw_lines({one, inner, x, y}, heap) {
  const line = (/** @type {(step: Step) => number} */ value) =>
      d3.line()
          .curve(d3.curveStepAfter)
          .x((/** @type {Step} */ step) => x(step.at))
          .y((/** @type {Step} */ step) => y(value(step)))(one.steps);
  if (one.steps.some((step) => step.highest > step.last)) {
    // The highest of a step lies within it, that is before its end.
    const highest = d3.line()
                        .curve(d3.curveStepBefore)
                        .x((/** @type {Step} */ step) => x(step.at))
                        .y((/** @type {Step} */ step) => y(step.highest));
    inner.append("path").attr("class", "highest").attr("d", highest(one.steps));
  }
  if (!heap) return;
  inner.append("path").attr("class", "heap halo").attr("d", line((step) => step.heap));
  inner.append("path").attr("class", "heap").attr("d", line((step) => step.heap));
}

/** @param {TimelinePicture} picture */
function draw_peak({one, inner, x, y}) {
  if (!one.peak) return;
  const place = inner.append("g")
                    .attr("class", "peak")
                    .attr("transform", `translate(${x(one.peak.at)},${y(one.peak.bytes)})`);
  place.append("circle").attr("r", 4.5);
  const ends = x.range()[1] - x(one.peak.at) < 120;
  place.append("text")
      .attr("x", ends ? -9 : 9)
      .attr("y", -6)
      .attr("text-anchor", ends ? "end" : "start")
      .text("peak " + human_bytes(one.peak.bytes));
}

/**
 * Markers above the picture; a text stands where it has room.
 * @param {TimelinePicture} picture
 */
function draw_ticks({one, svg, x, width}) {
  const {height, top, bottom, right} = timeline_size;
  let free = -Infinity;
  for (const tick of one.ticks) {
    const at = x(tick.at);
    if (at < x.range()[0] || at > x.range()[1]) continue;
    const place = svg.append("g").attr("class", "mark").attr("transform", `translate(${at},0)`);
    place.append("line").attr("y1", top - 14).attr("y2", height - bottom);
    if (at < free) continue;
    const text =
        place.append("text").attr("x", 4).attr("y", top - 20).text(shortened(tick.text, 24));
    const length = text.node().getComputedTextLength();
    if (at + length + 4 > width - right && at - length - 8 > free)
      text.attr("x", -4).attr("text-anchor", "end");
    else if (at + length + 4 > width)
      text.remove();
    free = at + length + 14;
  }
}

/** @param {Axis} axis */
function scale_for(axis) {
  return axis === "time" ? d3.scaleUtc() : d3.scaleLinear();
}

/** @param {Axis} axis @param {any[]} domain @returns {(value: any) => string} */
function axis_format(axis, domain) {
  if (axis === "records") return (value) => (Number.isInteger(value) ? grouped(value) : "");
  const length = Number(domain[1]) - Number(domain[0]);
  if (axis === "since")
    return (value) =>
               (length < 60000 ? one_decimal(value / 1000) + " s" :
                                 human_duration(value).replace(/\.\d+s$/, "s"));
  return d3.utcFormat(
      length < 10000        ? "%H:%M:%S.%L" :
          length < 86400000 ? "%H:%M:%S" :
                              "%m-%d %H:%M");
}

/**
 * "400 KiB", for an axis.
 * @param {number} bytes @returns {string}
 */
function short_bytes(bytes) {
  return human_bytes(bytes).replace(".0 ", " ");
}

/**
 * Round numbers of bytes, about so many.
 * @param {number} highest @param {number} count @returns {number[]}
 */
function byte_ticks(highest, count) {
  const unit =
      Math.pow(1024, Math.max(0, Math.floor(Math.log(Math.max(1, highest)) / Math.log(1024))));
  return d3.ticks(0, highest / unit, count)
      .map((/** @type {number} */ tick) => tick * unit)
      .filter((/** @type {number} */ tick) => tick < 1024 || Number.isInteger(tick));
}
