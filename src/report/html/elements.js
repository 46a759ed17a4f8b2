// Parts that pages are put together from. Texts from a trace are set as text, never as markup.

/**
 * One of several, as radio buttons that look like one control.
 * @param {D3Selection} parent
 * @param {{legend: string, name: string, value: string, change: (value: any) => void,
 *   options: {value: string, text: string, title?: string}[]}} settings
 */
function radio_group(parent, settings) {
  const set = parent.append("fieldset").attr("class", "choice");
  set.append("legend").text(settings.legend);
  const row = set.append("div").attr("class", "choices");
  for (const option of settings.options) {
    const label = row.append("label").attr("title", option.title || null);
    label.append("input")
        .attr("type", "radio")
        .attr("name", settings.name)
        .attr("value", option.value)
        .property("checked", option.value === settings.value)
        .on("change", () => settings.change(option.value));
    label.append("span").text(option.text);
  }
  return set;
}

/**
 * @param {D3Selection} parent
 * @param {{label: string, id: string, value: string, change: (value: any) => void,
 *   options: {value: string, text: string}[]}} settings
 */
function select_box(parent, settings) {
  const label = parent.append("label").attr("class", "field");
  label.append("span").text(settings.label);
  const box = label.append("select").attr("id", settings.id);
  for (const option of settings.options) {
    box.append("option")
        .attr("value", option.value)
        .property("selected", option.value === settings.value)
        .text(shortened(option.text, 60));
  }
  box.on("change", () => settings.change(box.property("value")));
  return label;
}

/**
 * @param {D3Selection} parent
 * @param {{label: string, id: string, change: (checked: boolean) => void}} settings
 */
function check_box(parent, settings) {
  const label = parent.append("label").attr("class", "check");
  const input = label.append("input").attr("type", "checkbox").attr("id", settings.id);
  label.append("span").text(settings.label);
  input.on("change", () => settings.change(input.property("checked")));
  return input;
}

/**
 * @param {D3Selection} parent
 * @param {{label: string, id: string, type: string, change: (value: string) => void}} settings
 */
function text_field(parent, settings) {
  const label = parent.append("label").attr("class", "field grows");
  label.append("span").text(settings.label);
  const input = label.append("input")
                    .attr("type", settings.type)
                    .attr("id", settings.id)
                    .attr("autocomplete", "off")
                    .attr("spellcheck", "false");
  input.on("input", () => settings.change(input.property("value")));
  return input;
}

/** @param {D3Selection} parent @param {string} text @param {() => void} action */
function button(parent, text, action) {
  return parent.append("button").attr("type", "button").text(text).on("click", action);
}

/**
 * A name from a trace: its direction of writing stays its own, and it may break anywhere.
 * @param {D3Selection} parent @param {string} name
 */
function name_in(parent, name) {
  const title = name.length > 100 ? name : null;
  return parent.append("bdi").attr("class", "name").attr("title", title).text(shown_name(name));
}

/**
 * A long text cut in the middle, since its beginning and its end tell it apart.
 * @param {string} text @param {number} length @returns {string}
 */
function shortened(text, length) {
  const letters = Array.from(text);
  if (letters.length <= length) return text;
  const front = Math.ceil((length - 1) / 2);
  return letters.slice(0, front).join("") + "…" +
      letters.slice(letters.length - (length - 1 - front)).join("");
}

/**
 * A column of a table: `text` for people, `exact` for the title of its cells, `value` to sort by.
 * @typedef {{title: string, number?: boolean, text: (row: any) => string,
 *   exact?: (row: any) => string, value?: (row: any) => number | string,
 *   fill?: (cell: D3Selection, row: any) => void, share?: (row: any) => number}} Column
 */

/**
 * A cell with its text and its exact figure.
 * @param {D3Selection} cell @param {Column} column @param {any} row
 */
function fill_cell(cell, column, row) {
  if (column.fill) {
    column.fill(cell, row);
    return;
  }
  cell.classed("number", Boolean(column.number))
      .attr("title", column.exact ? column.exact(row) : null);
  if (column.number)
    cell.text(column.text(row));
  else
    name_in(cell, column.text(row));
  if (column.share) {
    const share = Math.max(0, Math.min(1, column.share(row) || 0));
    cell.classed("share", true)
        .append("span")
        .attr("class", "bar")
        .style("width", share * 100 + "%");
  }
}

/**
 * A plain table.
 * @param {D3Selection} parent @param {string} caption @param {Column[]} columns @param {any[]} rows
 */
function plain_table(parent, caption, columns, rows) {
  const table = parent.append("div")
                    .attr("class", "wide")
                    .attr("tabindex", 0)
                    .attr("role", "region")
                    .attr("aria-label", caption)
                    .append("table");
  table.append("caption").attr("class", "unseen").text(caption);
  const titles = table.append("thead").append("tr");
  for (const column of columns) {
    titles.append("th")
        .attr("scope", "col")
        .classed("number", Boolean(column.number))
        .text(column.title);
  }
  const body = table.append("tbody");
  for (const row of rows) {
    const line = body.append("tr");
    for (const column of columns) fill_cell(line.append("td"), column, row);
  }
  return table;
}

/**
 * The table behind a picture: made when it is opened, and made anew by refresh() while it is open.
 * @param {D3Selection} parent @param {string} summary @param {string} id
 * @param {(place: D3Selection) => void} build
 */
function table_behind(parent, summary, id, build) {
  const details = parent.append("details").attr("id", id).attr("class", "behind");
  details.append("summary").text(summary);
  const place = details.append("div");
  const refresh = () => {
    place.text("");
    if (details.property("open")) build(place);
  };
  details.on("toggle", refresh);
  return {refresh};
}

/**
 * Shows a text beside the pointer.
 * @param {MouseEvent} event @param {string[]} lines the first is a name
 */
function show_tip(event, lines) {
  const tip = d3.select("#tip");
  tip.text("");
  lines.forEach((line, at) => tip.append("div").attr("class", at === 0 ? "name" : null).text(line));
  tip.attr("hidden", null);
  const box = tip.node().getBoundingClientRect();
  const left = Math.min(event.clientX + 14, document.documentElement.clientWidth - box.width - 8);
  const below = event.clientY + 18;
  const top = below + box.height > window.innerHeight ? event.clientY - box.height - 12 : below;
  tip.style("left", Math.max(8, left) + "px").style("top", Math.max(8, top) + "px");
}

function hide_tip() {
  d3.select("#tip").attr("hidden", "");
}
