// Numbers for people: the command shows the same digits.

const VALUE_DIGITS = 6;
const ERROR_DIGITS = 3;

function shown(value, digits) {
  if (!Number.isFinite(value)) return allDigits(value);
  const rounded = Number(value.toPrecision(digits));
  // Zeros behind the digits would pass for digits.
  return Math.abs(rounded) < 10 ** digits ? String(rounded) : rounded.toExponential();
}

function allDigits(value) {
  if (Number.isNaN(value)) return "not a number";
  return Number.isFinite(value) ? String(value) : value > 0 ? "infinite" : "minus infinite";
}

/// A step of 1, 2 or 5 times a power of ten, with which about `count` steps cover `span`.
function roundStep(span, count) {
  const power = 10 ** Math.floor(Math.log10(span / count));
  const distance = (factor) => Math.abs(Math.log(span / (count * factor * power)));
  return [1, 2, 5, 10].reduce((best, factor) => (distance(factor) < distance(best) ? factor : best)) * power;
}

/// `value` at the nearest of the decimals that a step of this size needs.
function roundedTo(value, step) {
  const decimals = Math.min(100, Math.max(0, -Math.floor(Math.log10(step) + 1e-9)));
  return Number(value.toFixed(decimals));
}

/// Round numbers between the ends, about `count` of them.
function ticksOf(low, high, count) {
  if (!(high > low)) return [low];
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
