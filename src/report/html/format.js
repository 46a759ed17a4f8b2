// Figures as kivdb's reports write them.

/**
 * "1,234,567"; a figure that JavaScript could only hold rounded says so.
 * @param {number} number @returns {string}
 */
function grouped(number) {
  const text = BigInt(Math.round(number)).toString().replace(/\B(?=(\d{3})+$)/g, ",");
  return Number.isSafeInteger(number) ? text : "≈ " + text;
}

/**
 * One decimal, a tie to the even digit.
 * @param {number} value @returns {string}
 */
function one_decimal(value) {
  const whole = Math.floor(value);
  return value - whole === 0.25 ? whole + ".2" : value.toFixed(1);
}

/**
 * "1.2 MiB"; below 1024 exactly, "512 B".
 * @param {number} bytes @returns {string}
 */
function human_bytes(bytes) {
  if (bytes < 0) return "-" + human_bytes(-bytes);
  if (bytes < 1024) return bytes + " B";
  const units = ["KiB", "MiB", "GiB", "TiB", "PiB", "EiB"];
  let value = bytes / 1024;
  let unit = 0;
  // What would be printed as 1024.0 takes the next unit.
  for (; value >= 1023.95 && unit + 1 < units.length; value /= 1024) ++unit;
  return (Number.isSafeInteger(bytes) ? "" : "≈ ") + one_decimal(value) + " " + units[unit];
}

/**
 * "1,234 bytes", the figure in full.
 * @param {number} bytes @returns {string}
 */
function exact_bytes(bytes) {
  return grouped(bytes) + (Math.abs(bytes) === 1 ? " byte" : " bytes");
}

/** @param {number} blocks @returns {string} */
function in_blocks(blocks) {
  return grouped(blocks) + (Math.abs(blocks) === 1 ? " block" : " blocks");
}

/**
 * With a sign when it is no zero.
 * @param {number} change @param {(number: number) => string} format @returns {string}
 */
function signed(change, format) {
  return (change > 0 ? "+" : "") + format(change);
}

/**
 * "62.9 %"; "-" when there is no whole, "<0.1 %" for a part that would round to nothing.
 * @param {number} part @param {number} whole @returns {string}
 */
function human_share(part, whole) {
  if (whole === 0) return "-";
  const share = (100 * part) / whole;
  return part > 0 && share < 0.05 ? "<0.1 %" : one_decimal(share) + " %";
}

/**
 * "1h 02m 03.450s", "2m 03.450s" or "3.450s"
 * @param {number} milliseconds @returns {string}
 */
function human_duration(milliseconds) {
  if (milliseconds < 0) return "-" + human_duration(-milliseconds);
  const all_minutes = Math.floor(milliseconds / 60000);
  const seconds = ((milliseconds % 60000) / 1000).toFixed(3);
  if (all_minutes === 0) return seconds + "s";
  const padded = seconds.padStart(6, "0") + "s";
  if (all_minutes < 60) return all_minutes + "m " + padded;
  return Math.floor(all_minutes / 60) + "h " + String(all_minutes % 60).padStart(2, "0") + "m " +
      padded;
}

/**
 * Milliseconds of a local time like "2023-11-14 22:13:20.005", counted as if it were universal
 * time; NaN when it is none.
 * @param {string} text @returns {number}
 */
function milliseconds_of(text) {
  return /^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}$/.test(text) ?
      Date.parse(text.replace(" ", "T") + "Z") :
      NaN;
}

/**
 * A name from a trace, never empty.
 * @param {string} name @returns {string}
 */
function shown_name(name) {
  return name === "" ? "(empty name)" : name;
}

/**
 * The object and the function of a shown name: parted at its last colon that stands alone.
 * @param {string} name @returns {{object: string, part: string}}
 */
function split_function(name) {
  const found = /^([^]*[^:]):([^:][^]*)$/.exec(name);
  return found ? {object: found[1], part: found[2]} : {object: "", part: name};
}
