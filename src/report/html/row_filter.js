// Which blocks belong to a row of a table, and how call paths are written.

/**
 * A row of a table whose paths are asked for.
 * @typedef {{key: KeyName, name: string, frames: string[] | null}} RowFilter
 */

/**
 * Innermost function first, as people read a call path.
 * @param {string[]} frames outermost first @returns {string}
 */
function path_text(frames) {
  return frames.length === 0 ? no_path_name : frames.slice().reverse().map(shown_name).join(" ← ");
}

/**
 * The same of a long call path with its innermost functions and its outermost one.
 * @param {string[]} frames outermost first @returns {string}
 */
function short_path(frames) {
  if (frames.length < 7) return path_text(frames);
  return path_text(frames.slice(-4)) + " ← … " + grouped(frames.length - 5) + " more … ← " +
      shown_name(frames[0]);
}

/**
 * Whether a group belongs to a row of a table.
 * @param {Page} page @param {RowFilter | null} filter @returns {(group: Group) => boolean}
 */
function filter_test(page, filter) {
  if (!filter) return () => true;
  const {key, name} = filter;
  if (key === "path") {
    const wanted = (filter.frames || []).join("\u0000");
    /** @type {Map<number, boolean>} */
    const known = new Map();
    return (group) => {
      if (!known.has(group.path))
        known.set(group.path, path_frames(page, group.path).join("\u0000") === wanted);
      return known.get(group.path) === true;
    };
  }
  if (key === "function") {
    return (group) => (group.path === 0 ? "(no function)" :
                                          page.names.function [page.paths[group.path][1]]) === name;
  }
  return (group) => page.names[key][group[key]] === name;
}
