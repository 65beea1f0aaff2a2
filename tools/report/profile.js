// Small pictures of one output over one input, as SVG.

// The namespace comes from the page, so that the page holds no address.
const SVG = document.querySelector("#profiles svg").namespaceURI;
const CELL = {height: 118, top: 6, left: 50, gap: 18, ticks: 16, name: 17, narrowest: 128};
const LETTER = 6.5; // about the width of one, in pixels
const POINTS_PER_SLICE = 61;

function svg(name, attributes = {}, text = "") {
  const element = document.createElementNS(SVG, name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  element.textContent = text;
  return element;
}

/// The range of the slice along an input: its bounds, widened to the point.
function rangeOf(input, value) {
  if (!input.hasBounds) {
    const reach = Math.abs(value) || 1;
    return [value - reach / 2, value + reach / 2];
  }
  return [Math.min(input.lower, value), Math.max(input.upper, value)];
}

/// Pieces of consecutive finite points, as the commands of an SVG path.
function pathOf(points) {
  let path = "";
  let open = false;
  for (const [x, y] of points) {
    const good = Number.isFinite(x) && Number.isFinite(y);
    if (good) path += `${open ? "L" : "M"}${x.toFixed(2)} ${y.toFixed(2)}`;
    open = good;
  }
  return path;
}

/// A closed band from the lower to the upper ends of the points that have an error.
function bandOf(slice, x, y) {
  const pieces = [];
  let piece = [];
  for (const point of [...slice, {lower: NaN}]) {
    if (Number.isFinite(point.lower) && Number.isFinite(point.upper)) {
      piece.push(point);
    } else if (piece.length > 0) {
      pieces.push(piece);
      piece = [];
    }
  }
  return pieces.map((part) => {
    const upper = part.map((p) => [x(p.at), y(p.upper)]);
    const lower = part.map((p) => [x(p.at), y(p.lower)]).reverse();
    return `${pathOf([...upper, ...lower])}Z`;
  }).join("");
}

class Cell {
  constructor(input, {width, labelled, named}) {
    this.input = input;
    this.left = labelled ? CELL.left : CELL.gap;
    this.width = width;
    this.named = named;
    this.labelled = labelled;
    const height = CELL.top + CELL.height + (named ? CELL.ticks + CELL.name : CELL.gap / 2);
    this.element = svg("svg", {width: this.left + width, height, role: "img"});
    this.frame = svg("rect", {class: "frame", x: this.left, y: CELL.top, width, height: CELL.height});
    this.back = svg("g");
    this.band = svg("path", {class: "band"});
    this.curve = svg("path", {class: "curve"});
    this.here = svg("path", {class: "here"});
    this.dot = svg("circle", {class: "dot", r: 4, visibility: "hidden"});
    this.element.append(this.frame, this.back, this.band, this.curve, this.here, this.dot);
  }

  /// The input's value under a pointer, from its position in the width.
  valueAt(clientX) {
    const box = this.frame.getBoundingClientRect();
    const part = Math.min(1, Math.max(0, (clientX - box.left) / box.width));
    return between(...this.range, part, 1);
  }

  /// `slice` is a list of {at, answers}; `here` is the chosen point; `sampled` the range of the
  /// samples, or undefined. Draws only what changed.
  draw({slice, output, values, here, sampled, title}) {
    const range = [slice[0].at, slice[slice.length - 1].at];
    const x = (at) => this.left + partOf(at, ...range) * this.width;
    const y = (value) => CELL.top + (1 - partOf(value, ...values)) * CELL.height;
    const frame = [...range, ...values, ...(sampled ?? [])].join();
    if (frame !== this.drawnFrame) {
      this.range = range;
      this.element.setAttribute("aria-label", title);
      this.#drawBack(x, y, range, values, sampled);
    }
    if (frame !== this.drawnFrame || slice !== this.drawnSlice) {
      const points = slice.map((step) => ({at: step.at, ...step.answers[output]}));
      this.band.setAttribute("d", bandOf(points, x, y));
      this.curve.setAttribute("d", pathOf(points.map((point) => [x(point.at), y(point.value)])));
    }
    this.drawnFrame = frame;
    this.drawnSlice = slice;
    this.#drawHere(x(here.at), y(here.value));
  }

  #drawHere(x, y) {
    this.here.setAttribute("d", `M${x} ${CELL.top}v${CELL.height}`);
    const known = Number.isFinite(y);
    this.dot.setAttribute("visibility", known ? "visible" : "hidden");
    this.dot.setAttribute("cx", x);
    if (known) this.dot.setAttribute("cy", y);
  }

  #drawBack(x, y, range, values, sampled) {
    const bottom = CELL.top + CELL.height;
    const right = this.left + this.width;
    const {hasBounds, lower, upper} = this.input;
    const drawn = [
      ...(sampled ? this.#beyond("unsampled", x, range, sampled) : []),
      ...(hasBounds ? this.#beyond("beyond", x, range, [lower, upper]) : []),
    ];
    for (const tick of ticksOf(values[0], values[1], 4)) {
      drawn.push(svg("path", {class: "grid", d: `M${this.left} ${y(tick)}H${right}`}));
      if (this.labelled) {
        drawn.push(svg("text", {x: this.left - 6, y: y(tick) + 4, "text-anchor": "end"}, tickLabel(tick)));
      }
    }
    const labels = this.#labelsBelow(x, range);
    for (const {tick, text, middle} of labels) {
      drawn.push(svg("path", {class: "grid", d: `M${x(tick)} ${CELL.top}V${bottom}`}));
      if (!this.named) continue;
      drawn.push(svg("text", {x: middle, y: bottom + 13, "text-anchor": "middle"}, text));
    }
    if (this.named) drawn.push(this.#name((this.left + right) / 2, bottom + 29));
    this.back.replaceChildren(...drawn);
  }

  /// As many round numbers as there is space for labels: {tick, text, middle}.
  #labelsBelow(x, range) {
    let labels = [];
    for (let count = Math.floor(this.width / 45); count > 0; --count) {
      labels = ticksOf(range[0], range[1], count).map((tick) => {
        const text = tickLabel(tick);
        const half = text.length * LETTER / 2;
        const middle = Math.max(this.left + half, Math.min(this.left + this.width - half, x(tick)));
        return {tick, text, middle, half};
      });
      const apart = labels.every(({middle, half}, k) => (
        k === 0 || middle - half > labels[k - 1].middle + labels[k - 1].half + LETTER));
      if (apart) break;
    }
    return labels;
  }

  /// The parts of the range outside the limits.
  #beyond(name, x, range, [lower, upper]) {
    const parts = [[range[0], Math.min(lower, range[1])], [Math.max(upper, range[0]), range[1]]];
    return parts.filter(([from, to]) => to > from).map(([from, to]) => svg(
      "rect", {class: name, x: x(from), y: CELL.top, width: x(to) - x(from), height: CELL.height}));
  }

  #name(x, y) {
    const label = labelOf(this.input);
    const name = svg("text", {class: "name", x, y, "text-anchor": "middle"}, shortened(label, this.width));
    name.append(svg("title", {}, label));
    return name;
  }
}

function labelOf(parameter) {
  return parameter.unit === "" ? parameter.id : `${parameter.id} [${parameter.unit}]`;
}

/// As much of a text as fits into a width in pixels.
function shortened(text, width) {
  const most = Math.max(4, Math.floor(width / LETTER));
  const letters = Array.from(text);
  return letters.length <= most ? text : `${letters.slice(0, most - 1).join("")}\u2026`;
}

/// The pictures of all outputs over all inputs, a block for each output.
class Profiles {
  #blocks = [];
  #columns = 0;

  constructor(place, inputs, outputs, onMove) {
    this.place = place;
    this.inputs = inputs;
    this.outputs = outputs;
    this.onMove = onMove;
    this.values = outputs.map(() => null);
  }

  /// Lays out the pictures for the current width.
  layOut() {
    const available = this.place.clientWidth;
    const most = Math.floor((available - CELL.left + CELL.gap) / (CELL.narrowest + CELL.gap));
    this.#columns = Math.max(1, Math.min(this.inputs.length, most));
    this.#columns = Math.ceil(this.inputs.length / Math.ceil(this.inputs.length / this.#columns));
    const width = Math.floor((available - CELL.left - 8 - (this.#columns - 1) * CELL.gap) / this.#columns);
    this.#blocks = this.outputs.map((output, index) => this.#block(output, index, Math.min(width, 360)));
    this.place.replaceChildren(...this.#blocks.map((block) => block.element));
  }

  #block(output, index, width) {
    const element = document.createElement("section");
    element.className = "profile";
    const head = document.createElement("h4");
    head.textContent = output.id;
    const rest = document.createElement("span");
    rest.textContent = [output.caption && ` ${output.caption}`, output.unit && ` [${output.unit}]`].join("");
    head.append(rest);
    const cells = document.createElement("div");
    cells.className = "cells";
    const wrapped = this.#columns < this.inputs.length;
    const named = wrapped || index === this.outputs.length - 1;
    const drawn = this.inputs.map((input, column) => {
      const cell = new Cell(input, {width, labelled: column % this.#columns === 0, named});
      this.#follow(cell, column);
      return cell;
    });
    cells.append(...drawn.map((cell) => cell.element));
    element.append(head, cells);
    return {element, cells: drawn};
  }

  #follow(cell, column) {
    const move = (event) => {
      if (!cell.element.hasPointerCapture(event.pointerId)) return;
      this.onMove(column, cell.valueAt(event.clientX), false);
    };
    cell.element.addEventListener("pointerdown", (event) => {
      cell.element.setPointerCapture(event.pointerId);
      move(event);
    });
    cell.element.addEventListener("pointermove", move);
    cell.element.addEventListener("pointerup", (event) => {
      this.onMove(column, cell.valueAt(event.clientX), true);
    });
  }

  /// Widens the range of each output to the values shown, or starts a new range.
  #spread(slices, here, anew) {
    this.outputs.forEach((_, output) => {
      const range = anew || this.values[output] === null ? [Infinity, -Infinity] : this.values[output].slice();
      const take = (value) => {
        if (!Number.isFinite(value)) return;
        range[0] = Math.min(range[0], value);
        range[1] = Math.max(range[1], value);
      };
      for (const slice of slices) {
        for (const {answers} of slice ?? []) {
          const {value, lower, upper} = answers[output];
          [value, lower, upper].forEach(take);
        }
      }
      take(here[output]?.value);
      this.values[output] = range[0] > range[1] ? null : range;
    });
  }

  /// slices[input] is a list of {at, answers}, or null where it isn't computed yet; ranges[output] those
  /// of the samples for each input, or null.
  draw(slices, point, here, ranges, anew) {
    this.#spread(slices, here, anew);
    this.#blocks.forEach((block, output) => {
      const values = padded(this.values[output] ?? [0, 1]);
      block.cells.forEach((cell, column) => {
        if (slices[column] === null) return;
        cell.draw({
          slice: slices[column],
          output,
          values,
          here: {at: point[column], value: here[output]?.value},
          sampled: ranges[output]?.[column],
          title: `${labelOf(this.outputs[output])} over ${labelOf(this.inputs[column])}`,
        });
      });
    });
  }
}

/// A margin above and below; a flat curve is in the middle.
function padded([low, high]) {
  const margin = (high - low) * 0.06 || Math.abs(high) * 0.1 || 1;
  const largest = Number.MAX_VALUE;
  return [Math.max(low - margin, -largest), Math.min(high + margin, largest)];
}
