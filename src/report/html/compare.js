// What differs between two runs.

/** Columns before, after and change of a unit.
 * @param {Unit} unit @param {(row: any, run: number) => Amount | null} amount_of null where a list does
 *   not say: the name stands among its others
 * @returns {Column[]} */
function change_columns(unit, amount_of) {
  const format = unit === "bytes" ? human_bytes : grouped;
  const exact = unit === "bytes" ? exact_bytes : in_blocks;
  /** @param {any} row */
  const change = (row) => {
    const before = amount_of(row, 0);
    const after = amount_of(row, 1);
    return before && after ? after[unit] - before[unit] : NaN;
  };
  /** @param {number} run @returns {Column} */
  const side = (run) => ({
    title: run === 0 ? "Before" : "After",
    number: true,
    text: (row) => { const amount = amount_of(row, run); return amount ? format(amount[unit]) : "in others"; },
    exact: (row) => { const amount = amount_of(row, run); return amount ? exact(amount[unit]) : "This list was cut; the name is not in it."; },
    value: (row) => { const amount = amount_of(row, run); return amount ? amount[unit] : -1; },
  });
  return [
    side(0),
    side(1),
    {
      title: "Change",
      number: true,
      text: (row) => (Number.isNaN(change(row)) ? "unknown" : signed(change(row), format)),
      value: (row) => (Number.isNaN(change(row)) ? 0 : change(row)),
      fill: (cell, row) => {
        const by = change(row);
        cell.attr("class", "number change " + (by > 0 ? "grown" : by < 0 ? "shrunk" : ""));
        cell.attr("title", Number.isNaN(by) ? "One of the lists was cut; the name is not in it." : signed(by, exact));
        cell.text(Number.isNaN(by) ? "unknown" : signed(by, format));
      },
    },
  ];
}

/** What a list says of a name that is not among its rows: nothing, unless it was cut.
 * @param {List} list @returns {Amount | null} */
function absent_from(list) {
  return list.others ? null : {blocks: 0, bytes: 0, tot_bytes: 0};
}

/** A list's name in a form that equal names share.
 * @param {ListRow} row @returns {string} */
function row_key(row) {
  return row.frames ? row.frames.join("\u0000") : row.name || "";
}

/** Rows of one or two lists by name, in the order of the lists.
 * @typedef {{key: string, name: string, frames: string[] | null, amounts: (Amount | null)[]}} JoinedRow */

/** @param {List[]} lists @returns {JoinedRow[]} */
function join_lists(lists) {
  /** @type {Map<string, JoinedRow>} */
  const joined = new Map();
  lists.forEach((list, at) => {
    const seen = new Set();
    for (const row of list.rows) {
      let key = row_key(row);
      // Two names may show alike and not be the same: no row gives way to another.
      while (seen.has(key)) key += "\u0001";
      seen.add(key);
      let entry = joined.get(key);
      if (!entry) {
        entry = {key, name: row.name || "", frames: row.frames || null, amounts: lists.map(absent_from)};
        joined.set(key, entry);
      }
      entry.amounts[at] = row;
    }
  });
  return Array.from(joined.values());
}
