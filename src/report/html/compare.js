// What differs between two runs.

/**
 * Columns before, after and change of a unit.
 * @param {Unit} unit @param {(row: any, run: number) => Amount} amount_of @returns {Column[]}
 */
function change_columns(unit, amount_of) {
  const format = unit === "bytes" ? human_bytes : grouped;
  const exact = unit === "bytes" ? exact_bytes : in_blocks;
  const change = (/** @type {any} */ row) => amount_of(row, 1)[unit] - amount_of(row, 0)[unit];
  const side = (/** @type {number} */ run) => ({
    title: run === 0 ? "Before" : "After",
    number: true,
    text: (/** @type {any} */ row) => format(amount_of(row, run)[unit]),
    exact: (/** @type {any} */ row) => exact(amount_of(row, run)[unit]),
    value: (/** @type {any} */ row) => amount_of(row, run)[unit],
  });
  return [
    side(0),
    side(1),
    {
      title: "Change",
      number: true,
      text: (row) => signed(change(row), format),
      value: change,
      fill: (cell, row) => {
        const by = change(row);
        cell.attr("class", "number change " + (by > 0 ? "grown" : by < 0 ? "shrunk" : ""));
        cell.attr("title", signed(by, exact)).text(signed(by, format));
      },
    },
  ];
}

/**
 * A list's name in a form that equal names share.
 * @param {ListRow} row @returns {string}
 */
function row_key(row) {
  return row.frames ? row.frames.join("\u0000") : row.name || "";
}

/**
 * Rows of one or two lists by name, in the order of the lists. Both lists have the same names
 * where they were cut, so a name that one of them lacks is not in that run.
 * @typedef {{key: string, name: string, frames: string[] | null, amounts: Amount[]}} JoinedRow
 */

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
        entry = {
          key,
          name: row.name || "",
          frames: row.frames || null,
          amounts: lists.map(() => ({blocks: 0, bytes: 0, tot_bytes: 0}))
        };
        joined.set(key, entry);
      }
      entry.amounts[at] = row;
    }
  });
  return Array.from(joined.values());
}
