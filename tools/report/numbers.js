// Numbers for people: the command shows the same digits.

const VALUE_DIGITS = 6;
const ERROR_DIGITS = 3;

function shown(value, digits) {
  if (!Number.isFinite(value)) return allDigits(value);
  const rounded = Number(value.toPrecision(digits));
  // Trailing zeros would look like significant digits.
  return Math.abs(rounded) < 10 ** digits ? String(rounded) : rounded.toExponential();
}

/// `text` of a database, with each character that changes the direction of what is shown around it
/// as an escape such as \u202E.
function visible(text) {
  return text.replace(/[\u061C\u200E\u200F\u202A-\u202E\u2066-\u2069]/g,
    (character) => `\\u${character.charCodeAt(0).toString(16).toUpperCase().padStart(4, "0")}`);
}

function allDigits(value) {
  if (Number.isNaN(value)) return "not a number";
  return Number.isFinite(value) ? String(value) : value > 0 ? "infinite" : "minus infinite";
}

/// The point at `part` of `parts` between `low` and `high`, even if their distance is not a double.
function between(low, high, part, parts) {
  const at = low + ((high - low) * part) / parts;
  return Number.isFinite(at) ? at : low * (1 - part / parts) + high * (part / parts);
}

/// The position of `value` between `low` and `high`, from 0 to 1, even if their distance is not a
/// double.
function partOf(value, low, high) {
  const span = high - low;
  return Number.isFinite(span) ? (value - low) / span : (value / 2 - low / 2) / (high / 2 - low / 2);
}

/// A step of 1, 2 or 5 times a power of ten, so that about `count` steps cover `span`.
function roundStep(span, count) {
  const power = 10 ** Math.floor(Math.log10(span / count));
  const distance = (factor) => Math.abs(Math.log(span / (count * factor * power)));
  return [1, 2, 5, 10].reduce((best, factor) => (distance(factor) < distance(best) ? factor : best)) * power;
}

/// `value` rounded to the decimals that a step of this size needs.
function roundedTo(value, step) {
  const decimals = Math.min(100, Math.max(0, -Math.floor(Math.log10(step) + 1e-9)));
  return Number(value.toFixed(decimals));
}

/// Round numbers between the ends, about `count` of them.
function ticksOf(low, high, count) {
  if (!(high > low)) return [low];
  // Beyond what steps of doubles can count.
  if (!Number.isFinite(high - low)) return [Math.max(low, -1e308), 0, Math.min(high, 1e308)];
  const step = roundStep(high - low, count);
  const ticks = [];
  for (let k = Math.ceil(low / step - 1e-9); k * step <= high + step * 1e-9 && ticks.length < 20; ++k) {
    ticks.push(roundedTo(k * step, step));
  }
  return ticks;
}

function tickLabel(value) {
  const size = Math.abs(value);
  const short = size !== 0 && (size >= 1e5 || size < 1e-3);
  return (short ? value.toExponential().replace("e+", "e") : String(value)).replaceAll("-", "\u2212");
}
