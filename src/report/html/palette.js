// Colours, which the style sheet names for the light and the dark page.

const id_colors = 8;
const object_colors = 7;

/**
 * Gives ids their places among the colours: those that held most at once come first.
 * @param {Page} page @returns {Map<number, number>} from an id's place to a colour's
 */
function rank_ids(page) {
  /** @type {Map<number, number>} */
  const highest = new Map();
  for (const run of page.runs) {
    for (const {timeline} of run.traces) {
      timeline.ids.forEach((id, at) => {
        highest.set(id, Math.max(highest.get(id) || 0, d3.max(timeline.levels[at]) || 0));
      });
    }
  }
  const order = Array.from(highest.keys()).filter((id) => page.names.id[id] !== others_name);
  order.sort((a, b) => (highest.get(b) || 0) - (highest.get(a) || 0) || a - b);
  return new Map(order.slice(0, id_colors).map((id, rank) => [id, rank]));
}

/**
 * The custom property of an id's colour.
 * @param {Map<number, number>} ranks @param {number} id -1 for the rest @returns {string}
 */
function id_color(ranks, id) {
  const rank = ranks.get(id);
  return rank === undefined ? "--id-rest" : "--id-" + rank;
}

/**
 * Gives objects their places among the colours: those with most functions come first.
 * @param {string[]} functions @returns {Map<string, number>}
 */
function rank_objects(functions) {
  /** @type {Map<string, number>} */
  const counts = new Map();
  for (const name of functions) {
    const {object} = split_function(name);
    if (object !== "") counts.set(object, (counts.get(object) || 0) + 1);
  }
  const order = Array.from(counts).sort((a, b) => b[1] - a[1] || (a[0] < b[0] ? -1 : 1));
  return new Map(order.slice(0, object_colors).map(([object], rank) => [object, rank]));
}
