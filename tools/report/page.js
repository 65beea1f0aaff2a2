// The live part of the page: a point, its outputs, and slices through it. The numbers come from the
// npm package (web/pxrom.js), which is before this in the page.

const SLIDER_STEPS = 200;
const FRAME_BUDGET = 12; // milliseconds of slices between two frames
// About a tenth of a second for a point; half a minute for all pictures; what is computed at a time.
const LIMIT = {operations: 1e8, bytes: 256e6};
const UNLIMITED = {};
const MOST_FOR_SLICES = 3e10;
const PIECE = 1e7;
const SPEAK_AFTER = 600; // milliseconds without a change
const MOST_SHOWN = 20;
const MOST_BESIDE = 4; // inputs that are named beside a value
const DECIMAL = /^[+-]?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?$/i;

const byId = (id) => document.getElementById(id);

/// The bytes of an element that holds them as a JSON string, one character each.
function embeddedBytes(id) {
  const text = JSON.parse(byId(id).textContent);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
  return bytes;
}

function bytesOfBase64(text) {
  return Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0));
}

async function unzipped(bytes) {
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

function make(name, properties = {}, ...children) {
  const element = Object.assign(document.createElement(name), properties);
  element.append(...children);
  return element;
}

function boundsOf(input) {
  const [lower, upper] = [input.lower, input.upper].map((bound) => shown(bound, VALUE_DIGITS));
  return `${lower} to ${upper}${input.unit && ` ${input.unit}`}`;
}

/// Whose error it is, in words.
function whoseError({kind, surface, firstOrder}) {
  return (kind === "one surface" ? `surface ${surface + 1} only` : kind) + (firstOrder ? ", first order" : "");
}

/// "a, b and c"; beyond `most` items "a, b and 7 more", as the command.
function listed(items, most = 12) {
  const shownItems = items.slice(0, most);
  if (shownItems.length < items.length) shownItems.push(`${items.length - shownItems.length} more`);
  const last = shownItems.pop() ?? "";
  return shownItems.length === 0 ? last : `${shownItems.join(", ")} and ${last}`;
}

/// The part that several ranges have in common; null without ranges.
function commonRange(ranges) {
  if (ranges.length === 0) return null;
  return [Math.max(...ranges.map(([low]) => low)), Math.min(...ranges.map(([, high]) => high))];
}

/// A word that a shell takes unchanged.
function shellWord(text) {
  if (visible(text) !== text) {
    return `$'${visible(text.replace(/['\\]/g, "\\$&"))}'`;
  }
  return /^[\w.,:@%+=/-]+$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`;
}

/// A round number within the bounds of an input, and at their ends the bounds themselves.
function roundedWithin({hasBounds, lower, upper}, value) {
  if (!hasBounds) return Number(value.toPrecision(4));
  if (value <= lower || value >= upper) return value <= lower ? lower : upper;
  if (!Number.isFinite(upper - lower)) return Number(value.toPrecision(4));
  return Math.min(upper, Math.max(lower, roundedTo(value, roundStep(upper - lower, 1000))));
}

/// A parameter as the page shows it. `name` is its ID as the library knows it.
function shownParameter({id, unit, caption, bounds = null, values = []}) {
  const [lower, upper] = bounds ?? [NaN, NaN];
  return {
    name: id,
    id: visible(id),
    unit: visible(unit),
    caption: visible(caption),
    hasBounds: bounds !== null,
    lower,
    upper,
    values,
  };
}

/// The choices made with the controls.
class Choice {
  constructor(model) {
    this.inputs = model.inputs.map(shownParameter);
    this.discrete = model.discreteInputs.map(shownParameter);
    this.outputs = model.outputs.map(shownParameter);
    this.combinations = model.combinations.map((named) => this.discrete.map(({name}) => named[name]));
    this.combination = [...this.combinations[0]];
    this.toMiddle();
  }

  toMiddle() {
    this.point = this.inputs.map((input) => (
      input.hasBounds ? roundedWithin(input, 0.5 * input.lower + 0.5 * input.upper) : 0));
  }

  namedCombination() {
    return Object.fromEntries(this.discrete.map(({name}, k) => [name, this.combination[k]]));
  }

  combinationText(values = this.combination) {
    return values.map((value, k) => `${this.discrete[k].id}=${value}`).join(", ");
  }

  isFitted() {
    return this.combinations.some((values) => values.every((value, k) => value === this.combination[k]));
  }

  /// Why this combination has no results, in the words of the command.
  refusal() {
    const known = this.combinations.slice(0, MOST_SHOWN).map((values) => this.combinationText(values));
    const more = this.combinations.length - known.length;
    if (more > 0) known.push(`and ${more} more`);
    return `there is no model for the combination ${this.combinationText()}; `
      + `the fitted combinations are: ${known.join("; ")}`;
  }

  outsideBounds() {
    return this.inputs.filter((input, k) => (
      input.hasBounds && (this.point[k] < input.lower || this.point[k] > input.upper)));
  }

  commandLine(file) {
    const named = [
      ...this.discrete.map(({name}, k) => `${name}=${this.combination[k]}`),
      ...this.inputs.map(({name}, k) => `${name}=${this.point[k]}`),
    ];
    const path = file.startsWith("-") ? `./${file}` : file;
    return ["pxrom", "eval", path, ...named].map(shellWord).join(" ");
  }
}

/// A slider and a field for one input.
class Control {
  constructor(input, index, onChange) {
    this.input = input;
    const id = `input-${index}`;
    this.slider = make("input", {type: "range", min: 0, max: SLIDER_STEPS, step: 1});
    this.slider.setAttribute("aria-label", labelOf(input));
    this.field = make("input", {id, type: "text", inputMode: "decimal", className: "number-field"});
    const label = make("label", {htmlFor: id}, make("span", {className: "id", textContent: input.id}),
      make("span", {className: "caption", textContent: input.caption && ` ${input.caption}`}));
    this.element = make("div", {className: "control"}, label, make("span", {className: "field"}, this.field,
      make("span", {className: "unit note", textContent: input.unit})));
    this.track = make("div", {className: "track"}, this.slider);
    if (input.hasBounds) this.element.append(this.track, this.#ends());
    this.slider.addEventListener("input", () => onChange(index, this.#sliderValue(), false));
    this.slider.addEventListener("change", () => onChange(index, this.#sliderValue(), true));
    this.field.addEventListener("input", () => this.#read());
    this.field.addEventListener("change", () => {
      const value = this.#read();
      if (value !== null) onChange(index, value, true);
    });
  }

  #ends() {
    const end = (value) => make("span", {textContent: shown(value, VALUE_DIGITS), title: allDigits(value)});
    return make("div", {className: "ends"}, end(this.input.lower), end(this.input.upper));
  }

  /// Shades the parts of the slider outside a range of samples, or none for null.
  shade(range) {
    const {lower, upper} = this.input;
    const [low, high] = (range ?? [lower, upper]).map((at) => Math.min(1, Math.max(0, partOf(at, lower, upper))));
    this.track.style.setProperty("--low", low);
    this.track.style.setProperty("--high", Math.max(low, high));
  }

  #sliderValue() {
    const {lower, upper} = this.input;
    const step = Number(this.slider.value);
    if (step === SLIDER_STEPS) return upper;
    return roundedWithin(this.input, between(lower, upper, step, SLIDER_STEPS));
  }

  /// The number in the field; null, and marked, if it is not a number.
  #read() {
    const text = this.field.value.trim();
    const value = DECIMAL.test(text) ? Number(text) : NaN;
    const good = Number.isFinite(value);
    this.field.setAttribute("aria-invalid", String(!good));
    this.field.title = good ? "" : "this is not a finite number (use a decimal point)";
    return good ? value : null;
  }

  show(value) {
    const {lower, upper, unit} = this.input;
    this.slider.value = Math.round(partOf(value, lower, upper) * SLIDER_STEPS);
    this.slider.setAttribute("aria-valuetext", `${value} ${unit}`.trim());
    this.field.value = String(value);
    this.field.setAttribute("aria-invalid", "false");
    this.field.title = "";
  }
}

/// The table of outputs.
class Answers {
  constructor(outputs) {
    this.outputs = outputs;
    this.rows = outputs.map((output) => this.#row(output));
    byId("answers").tBodies[0].append(...this.rows.map((row) => row.element));
  }

  #row(output) {
    const [value, outside, error, origin] = ["value", "outside", "error", "origin"].map(
      (className) => make("span", {className}));
    const head = make("th", {scope: "row"}, make("span", {className: "id", textContent: output.id}),
      make("span", {className: "caption", textContent: output.caption}));
    const element = make("tr", {}, head, make("td", {className: "number"}, value, outside),
      make("td", {className: "number"}, error, origin), make("td", {textContent: output.unit}));
    return {element, value, outside, error, origin};
  }

  /// `origins` says whose error each output has, and `outside` which inputs lie outside its samples.
  show(answers, origins, outside) {
    const all = byId("all-digits").checked;
    byId("answers").classList.toggle("all-digits", all);
    this.rows.forEach((row, k) => {
      const answer = answers?.[k];
      const failed = answer?.status === STATUS.failed;
      this.#showNumber(row.value, answer && !failed ? answer.value : null, all, VALUE_DIGITS);
      row.value.classList.toggle("failed", failed);
      if (failed) row.value.textContent = "could not be evaluated";
      this.#showNumber(row.error, answer?.status === STATUS.ok ? answer.error : null, all, ERROR_DIGITS);
      row.origin.textContent = answer?.status === STATUS.ok ? `from ${whoseError(origins[k])}` : "";
      row.outside.textContent = answer && outside[k].length > 0
        ? `outside the samples: ${listed(outside[k], MOST_BESIDE)}` : "";
      if (answer?.status === STATUS.withoutError) {
        row.error.textContent = "none";
        row.error.title = "no predicted error";
      }
    });
  }

  #showNumber(cell, value, all, digits) {
    cell.textContent = value === null ? "" : all ? allDigits(value) : shown(value, digits);
    cell.title = value === null ? "" : allDigits(value);
  }

  spoken(answers) {
    return (answers ?? []).map((answer, k) => {
      const {id, unit} = this.outputs[k];
      if (answer.status === STATUS.failed) return `${id} could not be evaluated`;
      return `${id} ${shown(answer.value, VALUE_DIGITS)} ${unit}`.trim();
    }).join(", ");
  }
}

/// Connects the parts: a change of the choice shows everywhere.
class Page {
  #prepared = null;
  #origins = []; // of the errors of each output
  #ranges = []; // of the samples of each output, for each input; null without samples
  #distances = []; // from the chosen point to the nearest sample of each output; NaN if not known
  #cost = null;
  #refusal = ""; // why the chosen combination isn't evaluated, though it was fitted
  #limit = LIMIT;
  #slices = [];
  #begunSlice = []; // the rows of the slice that is computed at the moment
  #answers = null;
  #begun = false; // whether the ranges of the pictures are to be chosen again
  #frame = 0;
  #speaking = 0;

  constructor(model, file) {
    this.model = model;
    this.file = file;
    this.choice = new Choice(model);
    const {inputs, discrete, outputs} = this.choice;
    this.answers = new Answers(outputs);
    this.controls = inputs.map((input, k) => new Control(input, k, (...change) => this.move(...change)));
    this.profiles = new Profiles(byId("profiles"), inputs, outputs,
      (k, value, settled) => this.move(k, roundedWithin(inputs[k], value), settled));
    this.selects = discrete.map((input, k) => this.#select(input, k));
    byId("inputs").append(...this.controls.map((control) => control.element));
    byId("combination").append(...this.selects.map((select) => select.parentElement));
    byId("inputs").hidden = inputs.length === 0;
    byId("combination").hidden = discrete.length === 0;
    byId("profiler").hidden = inputs.length === 0;
    this.#listen();
    this.prepare();
  }

  #select(input, index) {
    const options = input.values.map((value) => make("option", {value, textContent: value}));
    const select = make("select", {}, ...options);
    make("label", {title: input.caption}, make("span", {className: "id", textContent: input.id}), select);
    select.addEventListener("change", () => {
      this.choice.combination[index] = Number(select.value);
      this.prepare();
    });
    return select;
  }

  #listen() {
    byId("controls").addEventListener("submit", (event) => event.preventDefault());
    byId("all-digits").addEventListener("change", () => this.#showAnswers());
    byId("reset").addEventListener("click", () => {
      this.choice.toMiddle();
      this.#restart();
    });
    byId("copy").addEventListener("click", copyCommand);
    byId("evaluate-anyway").addEventListener("click", () => {
      this.#limit = UNLIMITED;
      this.prepare();
    });
    let width = 0;
    new ResizeObserver(() => {
      const room = byId("profiles").clientWidth;
      if (room === 0 || room === width) return;
      width = room;
      this.profiles.layOut();
      this.#draw();
    }).observe(byId("profiles"));
  }

  /// The chosen combination, made ready; or why there is none.
  prepare() {
    this.#prepared?.free();
    this.#prepared = null;
    this.#refusal = "";
    if (this.choice.isFitted()) this.#prepareFitted(this.choice.namedCombination());
    byId("evaluate-anyway").hidden = this.#refusal === "";
    this.selects.forEach((select, k) => {
      select.value = this.choice.combination[k];
    });
    this.#restart();
  }

  #prepareFitted(combination) {
    try {
      this.#cost = this.model.cost(combination);
      this.#prepared = this.model.prepare(combination, {limit: this.#limit});
      const {errorOrigin, sampleRanges} = this.#prepared;
      const {inputs, outputs} = this.choice;
      this.#origins = outputs.map(({name}) => errorOrigin[name]);
      this.#ranges = outputs.map(({name}) => (
        sampleRanges[name] && inputs.map((input) => sampleRanges[name][input.name])));
    } catch (error) {
      this.#refusal = `this page does not evaluate the model on its own. ${error.message}`;
    }
  }

  /// For each point of a table, row by row, the answer of each output: {status, value, error, lower, upper}.
  #predict(table) {
    const {rows, statuses, values, errors, lower, upper} =
      this.#prepared.predict(Float64Array.from(table), {error: true});
    return Array.from({length: rows}, (_, row) => this.choice.outputs.map(({name}) => ({
      status: statuses[name][row],
      value: values[name][row],
      error: errors[name][row],
      lower: lower[name][row],
      upper: upper[name][row],
    })));
  }

  /// The distances from the chosen point to the samples; not known where they would cost too much.
  #locate() {
    const {outputs, point} = this.choice;
    try {
      const {distance} = this.#prepared.predict(Float64Array.from(point), {location: true});
      return outputs.map(({name}) => distance[name][0]);
    } catch {
      return outputs.map(() => NaN);
    }
  }

  /// The inputs of the chosen point that lie outside the samples of an output.
  #outsideSamples(output) {
    const {inputs, point} = this.choice;
    const ranges = this.#ranges[output];
    return inputs.map((input, k) => ({input, value: point[k], range: ranges?.[k]})).filter(
      ({value, range}) => range && (value < range[0] || value > range[1]));
  }

  move(index, value, settled) {
    if (value !== this.choice.point[index]) {
      this.choice.point[index] = value;
      // The slice along an input does not depend on its value, except for its range.
      this.#slices = this.#slices.map((slice, k) => (
        k === index && slice !== null && this.#covers(slice, k) ? slice : null));
      this.#begunSlice = [];
      this.#show();
    }
    if (settled) {
      this.#begun = true;
      this.#show();
    }
  }

  #covers(slice, index) {
    const [low, high] = rangeOf(this.choice.inputs[index], this.choice.point[index]);
    return slice[0].at === low && slice[slice.length - 1].at === high;
  }

  #restart() {
    this.#slices = this.choice.inputs.map(() => null);
    this.#begunSlice = [];
    this.#begun = true;
    this.#show();
  }

  #show() {
    const {choice} = this;
    this.#answers = this.#prepared === null ? null : this.#predict(choice.point)[0];
    this.#distances = this.#prepared === null ? [] : this.#locate();
    const ranges = this.#prepared === null ? [] : this.#ranges.filter((range) => range !== null);
    this.controls.forEach((control, k) => {
      control.show(choice.point[k]);
      control.shade(commonRange(ranges.map((range) => range[k])));
    });
    this.#showAnswers();
    byId("command").textContent = choice.commandLine(this.file);
    cancelAnimationFrame(this.#frame);
    this.#frame = requestAnimationFrame(() => this.#continueSlices());
    clearTimeout(this.#speaking);
    this.#speaking = setTimeout(() => {
      byId("spoken").textContent = this.answers.spoken(this.#answers);
    }, SPEAK_AFTER);
  }

  #showAnswers() {
    const outside = this.choice.outputs.map((_, k) => this.#outsideSamples(k).map(({input}) => input.id));
    this.answers.show(this.#answers, this.#origins, outside);
    byId("notes").replaceChildren(...this.#notes().map((text) => make("li", {textContent: text})));
  }

  /// In the words of the command.
  #notes() {
    const {choice} = this;
    if (this.#prepared === null) return [this.#refusal || choice.refusal()];
    const combination = choice.combinationText();
    const failed = choice.outputs.filter((_, k) => this.#answers[k].status === STATUS.failed).map(({id}) => (
      `the library can't evaluate the output "${id}"${combination && ` of ${combination}`}: `
      + "one of its surfaces is damaged, stopped or not ready"));
    const outside = choice.outsideBounds().map((input) => (
      `${input.id} lies outside its bounds, ${boundsOf(input)}: the surfaces extrapolate`));
    const pictures = this.#hasSlices() ? [] : ["the pictures are left out: they would take too long"];
    return [...failed, ...outside, ...this.#notesOnSamples(), ...pictures];
  }

  /// What lies outside the samples of which outputs, most of which have the same samples.
  #notesOnSamples() {
    const {outputs} = this.choice;
    const idsOf = new Map();
    outputs.forEach(({id}, k) => {
      const inputs = this.#outsideSamples(k).map(({input, value, range: [lower, upper]}) => (
        `${input.id}=${shown(value, VALUE_DIGITS)} (${boundsOf({...input, lower, upper})})`));
      if (inputs.length === 0) return;
      const place = `${listed(inputs)} ${inputs.length === 1 ? "lies" : "lie"} outside the samples of `;
      const distance = Number.isNaN(this.#distances[k]) ? ""
        : `; the nearest sample is ${shown(this.#distances[k], ERROR_DIGITS)} typical spacings away`;
      const note = JSON.stringify([place, distance]);
      idsOf.set(note, [...idsOf.get(note) ?? [], id]);
    });
    return [...idsOf].map(([note, ids]) => {
      const [place, distance] = JSON.parse(note);
      return place + (ids.length === outputs.length ? "all outputs" : listed(ids)) + distance;
    });
  }

  #hasSlices() {
    const points = this.choice.inputs.length * POINTS_PER_SLICE;
    return this.#prepared !== null && this.#cost.operations * points <= MOST_FOR_SLICES;
  }

  /// Computes slices for as long as a frame has time, and continues in the next.
  #continueSlices() {
    byId("profiles").hidden = !this.#hasSlices();
    if (!this.#hasSlices()) return;
    const end = performance.now() + FRAME_BUDGET;
    let missing = this.#slices.indexOf(null);
    while (missing >= 0 && performance.now() < end) {
      this.#continueSlice(missing);
      missing = this.#slices.indexOf(null);
    }
    this.#draw();
    if (missing >= 0) this.#frame = requestAnimationFrame(() => this.#continueSlices());
  }

  /// Computes some more points of a slice, as many as are computed at a time.
  #continueSlice(index) {
    const {inputs, point} = this.choice;
    const [low, high] = rangeOf(inputs[index], point[index]);
    const last = POINTS_PER_SLICE - 1;
    const ats = Array.from({length: POINTS_PER_SLICE},
      (_, k) => (k === last ? high : between(low, high, k, last)));
    const done = this.#begunSlice.length;
    const piece = ats.slice(done, done + Math.max(1, Math.floor(PIECE / this.#cost.operations)));
    const points = piece.flatMap((at) => point.map((value, k) => (k === index ? at : value)));
    this.#begunSlice.push(...this.#predict(points).map((answers, k) => ({at: piece[k], answers})));
    if (this.#begunSlice.length < POINTS_PER_SLICE) return;
    this.#slices[index] = this.#begunSlice;
    this.#begunSlice = [];
  }

  #draw() {
    if (!this.#hasSlices()) return;
    const complete = !this.#slices.includes(null);
    const anew = this.#begun && complete;
    this.profiles.draw(this.#slices, this.choice.point, this.#answers, this.#ranges, anew);
    if (complete) this.#begun = false;
  }
}

async function copyCommand() {
  const command = byId("command");
  try {
    await navigator.clipboard.writeText(command.textContent);
    byId("copy").textContent = "Copied";
  } catch {
    getSelection().selectAllChildren(command);
    byId("copy").textContent = "Selected: copy it";
  }
  setTimeout(() => {
    byId("copy").textContent = "Copy";
  }, 2000);
}

async function start() {
  const state = byId("live-state");
  state.textContent = "Loading the model\u2026";
  try {
    const load = await loaderOf(await unzipped(bytesOfBase64(byId("module").textContent)));
    const file = new TextDecoder().decode(embeddedBytes("file"));
    const model = await load(embeddedBytes("database"));
    byId("live-body").hidden = false;
    new Page(model, file);
    state.textContent = `Every number here is computed in this page by pxrom ${model.version} itself.`;
  } catch (error) {
    byId("live-body").hidden = true;
    state.textContent = `This page can't evaluate the model: ${error.message}`;
  }
}

// A printed page shows what is folded on the screen.
addEventListener("beforeprint", () => {
  document.querySelectorAll("details").forEach((details) => {
    details.open = true;
  });
});

start();
