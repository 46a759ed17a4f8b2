// From groups of blocks to the frames of a flame graph.

/**
 * A frame, with figures of one or two runs: `own` what was made in it, `all` with all that it
 * called.
 * @typedef {{name: string, kind: "all" | "id" | "color" | "function", children: FrameNode[],
 *   own: RunFigures[], all: RunFigures[], groups: Group[]}} FrameNode
 */
/** @typedef {{bytes: number, blocks: number}} RunFigures */

/**
 * A frame with its place in the picture, both ends between 0 and 1.
 * @typedef {{data: FrameNode, depth: number, height: number, parent: Frame | null, x0: number,
 *   x1: number, children?: Frame[], value: number}} Frame
 */

/**
 * @typedef {{measure: number, ids: "none" | "id" | "color", inverted: boolean,
 *   accepts: (group: Group) => boolean}} FlameOptions
 */

/**
 * @param {string} name @param {FrameNode["kind"]} kind @param {number} runs @returns {FrameNode}
 */
function new_frame(name, kind, runs) {
  const none = () => Array.from({length: runs}, () => ({bytes: 0, blocks: 0}));
  return {name, kind, children: [], own: none(), all: none(), groups: []};
}

/**
 * Finds the child of a frame, or makes it.
 * @param {Map<FrameNode, Map<string, FrameNode>>} index @param {FrameNode} parent
 * @param {string} name @param {FrameNode["kind"]} kind @returns {FrameNode}
 */
function child_of(index, parent, name, kind) {
  let children = index.get(parent);
  if (!children) index.set(parent, (children = new Map()));
  let child = children.get(name);
  if (!child) {
    child = new_frame(name, kind, parent.own.length);
    parent.children.push(child);
    children.set(name, child);
  }
  return child;
}

/**
 * The tree of frames of the groups that are accepted and have a figure of the measure.
 * @param {Page} page @param {Group[]} groups @param {FlameOptions} options @returns {FrameNode}
 */
function frame_tree(page, groups, options) {
  const root = new_frame("All", "all", page.runs.length);
  /** @type {Map<FrameNode, Map<string, FrameNode>>} */
  const index = new Map();
  /**
   * Frames of paths below a frame, by the path's place. @type {Map<FrameNode, Map<number,
   * FrameNode>>}
   */
  const by_path = new Map();

  /** @param {FrameNode} top @param {number} path @returns {FrameNode} */
  const frame_of_path = (top, path) => {
    let known = by_path.get(top);
    if (!known) by_path.set(top, (known = new Map([[0, top]])));
    const missing = [];
    let at = path;
    let frame = known.get(at);
    for (; !frame; frame = known.get(at)) {
      missing.push(at);
      at = page.paths[at][0];
    }
    for (const place of missing.reverse()) {
      frame = child_of(index, frame, page.names.function [page.paths[place][1]], "function");
      known.set(place, frame);
    }
    return frame;
  };

  for (const group of groups) {
    const figures = {bytes: group.bytes[options.measure], blocks: group.blocks[options.measure]};
    if ((figures.bytes === 0 && figures.blocks === 0) || !options.accepts(group)) continue;
    let frame = root;
    if (options.ids !== "none") frame = child_of(index, frame, page.names.id[group.id], "id");
    if (options.ids === "color") frame = child_of(index, frame, color_part(page, group), "color");
    if (group.path === 0) {
      frame = child_of(index, frame, no_path_name, "function");
    } else if (options.inverted) {
      for (const name of path_frames(page, group.path).reverse())
        frame = child_of(index, frame, name, "function");
    } else {
      frame = frame_of_path(frame, group.path);
    }
    frame.own[group.run].bytes += figures.bytes;
    frame.own[group.run].blocks += figures.blocks;
    frame.groups.push(group);
  }
  return root;
}

/**
 * The colour's name without that of its id, which stands above it.
 * @param {Page} page @param {Group} group @returns {string}
 */
function color_part(page, group) {
  const name = page.names.color[group.color];
  const id = page.names.id[group.id] + " / ";
  return name.startsWith(id) ? name.slice(id.length) : name;
}

/**
 * Places the frames of a tree: wide as the unit says, or the larger of two runs, widest first.
 * @param {FrameNode} tree @param {Unit} unit @returns {Frame}
 */
function lay_out(tree, unit) {
  const root =
      d3.hierarchy(tree)
          .eachAfter((/** @type {any} */ frame) => {
            frame.data.all =
                frame.data.own.map((/** @type {RunFigures} */ own, /** @type {number} */ run) => {
                  const all = {bytes: own.bytes, blocks: own.blocks};
                  for (const child of frame.children || []) {
                    all.bytes += child.data.all[run].bytes;
                    all.blocks += child.data.all[run].blocks;
                  }
                  return all;
                });
          })
          .sum((/** @type {FrameNode} */ frame) => Math.max(...frame.own.map((own) => own[unit])))
          .sort(
              (/** @type {Frame} */ a, /** @type {Frame} */ b) => b.value - a.value ||
                  (a.data.name < b.data.name     ? -1 :
                       a.data.name > b.data.name ? 1 :
                                                   0));
  return d3.partition()(root);
}

/**
 * Frames by their depth, from left to right.
 * @param {Frame} root @returns {Frame[][]}
 */
function frame_rows(root) {
  /** @type {Frame[][]} */
  const rows = [];
  /** @type {any} */ (root).each((/** @type {Frame} */ frame) => {
    if (frame.value > 0) (rows[frame.depth] = rows[frame.depth] || []).push(frame);
  });
  return rows;
}

/**
 * The frames from the outermost on down to this one, "All" left out.
 * @param {Frame} frame @returns {Frame[]}
 */
function ancestors_of(frame) {
  const line = [];
  for (let at = /** @type {Frame | null} */ (frame); at && at.parent; at = at.parent) line.push(at);
  return line.reverse();
}

/**
 * Groups of blocks made in a frame and in all that it called.
 * @param {Frame} frame @returns {Group[]}
 */
function groups_below(frame) {
  /** @type {Group[]} */
  const groups = [];
  /** @type {any} */ (frame).each((/** @type {Frame} */ each) => {
    for (const group of each.data.groups) groups.push(group);
  });
  return groups;
}

/**
 * Matching frames, and what they hold together: a match within a match counts once.
 * @param {Frame} root @param {string} text in any case
 * @returns {{matches: Set<Frame>, all: RunFigures[]}}
 */
function search_frames(root, text) {
  const wanted = text.toLowerCase();
  /** @type {Set<Frame>} */
  const matches = new Set();
  /** @type {Set<Frame>} frames within a match, itself included */
  const within = new Set();
  const all = root.data.own.map(() => ({bytes: 0, blocks: 0}));
  /** @type {any} */ (root).eachBefore((/** @type {Frame} */ frame) => {
    const inside = frame.parent !== null && within.has(frame.parent);
    const hit =
        frame.parent !== null && frame.value > 0 && frame.data.name.toLowerCase().includes(wanted);
    if (hit) matches.add(frame);
    if (hit || inside) within.add(frame);
    if (hit && !inside) {
      all.forEach((sum, run) => {
        sum.bytes += frame.data.all[run].bytes;
        sum.blocks += frame.data.all[run].blocks;
      });
    }
  });
  return {matches, all};
}
