// The library as a WebAssembly module, through its C interface (include/pxrom/pxrom_c.h). The library
// holds all formulas: nothing here computes with the numbers of a model. Loads nothing itself: node.js
// and browser.js pass the bytes of the module, as the page of `pxrom report` does.

const LIST = {inputs: 1, discrete: 2, outputs: 3};
const MODE = {exact: 0, fast: 1};
const MESSAGE_SIZE = 512;
const EBADF = 8;
const NO_LIMIT = {operations: Infinity, bytes: Infinity};
const MOST_PREPARED = 4;
const MOST_NAMED = 20;

/// By the numbers of pxrom_error_origin.
const ORIGINS = ["none", "cross-validation", "all surfaces", "one surface"];
const NO_SAMPLES = -1;

/// The status of an output at a point.
const STATUS = {ok: 0, withoutError: -2, failed: 1};

// Offsets of the fields of pxrom_parameter; module/module.cpp checks them.
const PARAMETER = {
  size: 56, id: 0, unit: 4, caption: 8, hasBounds: 28, lower: 32, upper: 40, values: 48, count: 52,
};

// Of pxrom_cost.
const COST = {size: 16, operations: 0, bytes: 8};
const LARGEST_COUNT = (1n << 64n) - 1n;

/// A module with one operation on a vector: only an engine that has vectors accepts it.
const VECTOR_MODULE = Uint8Array.of(
  0, 97, 115, 109, 1, 0, 0, 0, 1, 5, 1, 96, 0, 1, 123, 3, 2, 1, 0, 10, 10, 1, 8, 0, 65, 0, 253, 15, 253, 98, 11);

const hasVectors = () => WebAssembly.validate(VECTOR_MODULE);

// The library reads no files and prints nothing, so all calls of the system are refused.
function importsOf(module) {
  const imports = {};
  for (const {module: from, name} of WebAssembly.Module.imports(module)) {
    imports[from] ??= {};
    imports[from][name] = () => EBADF;
  }
  return imports;
}

/// A loader of models from the bytes of the WebAssembly module.
async function loaderOf(bytes) {
  const module = await WebAssembly.compile(bytes);
  // Each model has an instance of its own, whose memory goes when the model does.
  return async (text, {limit} = {}) => {
    const instance = await WebAssembly.instantiate(module, importsOf(module));
    return new Model(new Library(instance), bytesOf(text), {...NO_LIMIT, ...limit});
  };
}

function bytesOf(text) {
  if (typeof text === "string") return new TextEncoder().encode(text);
  if (text instanceof Uint8Array) return text;
  if (text instanceof ArrayBuffer) return new Uint8Array(text);
  throw new TypeError("a database is a string, a Uint8Array or an ArrayBuffer");
}

/// An instance of the module: its memory, and calls of the C interface.
class Library {
  #exports;
  #message;

  constructor(instance) {
    this.#exports = instance.exports;
    this.#exports._initialize();
    this.#message = this.allocate(MESSAGE_SIZE);
  }

  // Memory may grow with every call, so views of it are never kept.
  get #view() {
    return new DataView(this.#exports.memory.buffer);
  }

  allocate(size) {
    const address = this.#exports.malloc(Math.max(size, 1));
    if (address === 0) throw new Error("out of memory");
    // Addresses are unsigned; JavaScript gets them as signed numbers.
    return address >>> 0;
  }

  free(...addresses) {
    addresses.forEach((address) => this.#exports.free(address));
  }

  /// Calls use(...addresses) with room for each size, which is freed afterwards.
  with(sizes, use) {
    const addresses = [];
    try {
      for (const size of sizes) addresses.push(this.allocate(size));
      return use(...addresses);
    } finally {
      this.free(...addresses);
    }
  }

  bytesAt(address, size) {
    return new Uint8Array(this.#exports.memory.buffer, address, size);
  }

  doublesAt(address, count) {
    return new Float64Array(this.#exports.memory.buffer, address, count);
  }

  integersAt(address, count) {
    return new Int32Array(this.#exports.memory.buffer, address, count);
  }

  signsAt(address, count) {
    return new Int8Array(this.#exports.memory.buffer, address, count);
  }

  integerAt(address) {
    return this.#view.getInt32(address, true);
  }

  sizeAt(address) {
    return this.#view.getUint32(address, true);
  }

  doubleAt(address) {
    return this.#view.getFloat64(address, true);
  }

  /// A count of 64 bits, as a number.
  countAt(address) {
    return Number(this.#view.getBigUint64(address, true));
  }

  setCountAt(address, count) {
    this.#view.setBigUint64(address, count === Infinity ? LARGEST_COUNT : BigInt(Math.ceil(count)), true);
  }

  textAt(address) {
    const bytes = new Uint8Array(this.#exports.memory.buffer, address);
    return new TextDecoder().decode(bytes.slice(0, bytes.indexOf(0)));
  }

  /// Calls an operation that returns a plain value.
  ask(name, ...given) {
    return this.#exports[name](...given);
  }

  /// Calls an operation that has a status and a message.
  call(name, ...given) {
    if (this.#exports[name](...given, this.#message, MESSAGE_SIZE) !== 0) {
      throw new Error(this.textAt(this.#message));
    }
  }

  /// Calls an operation that writes one result of `size` bytes, and returns read(address).
  result(size, read, name, ...given) {
    return this.with([size], (address) => {
      this.call(name, ...given, address);
      return read(address);
    });
  }

  version() {
    return this.textAt(this.ask("pxrom_version"));
  }
}

/// A database that was read. `load` makes it.
class Model {
  #library;
  #model;
  #limit;
  #prepared = new Map(); // the combinations of `predict`, the last one used at the end
  #combinations = null;

  constructor(library, bytes, limit) {
    this.#library = library;
    this.#limit = limit;
    this.#model = library.with([bytes.length], (text) => {
      library.bytesAt(text, bytes.length).set(bytes);
      return library.result(4, (at) => library.sizeAt(at), "pxrom_model_read", text, bytes.length);
    });
    this.version = library.version();
    this.inputs = this.#parameters(LIST.inputs, (at) => ({bounds: this.#boundsAt(at)}));
    this.discreteInputs = this.#parameters(LIST.discrete, (at) => ({values: this.#valuesAt(at)}));
    this.outputs = this.#parameters(LIST.outputs, () => ({}));
  }

  get combinations() {
    const ids = this.discreteInputs.map(({id}) => id);
    this.#combinations ??= this.#allValues().map((values) => (
      Object.fromEntries(values.map((value, k) => [ids[k], value]))));
    return this.#combinations;
  }

  cost(combination = {}) {
    const library = this.#library;
    const costAt = (at) => ({
      operations: library.countAt(at + COST.operations), bytes: library.countAt(at + COST.bytes)});
    return this.#withValues(this.#valuesOf(combination), (values, count) => library.result(
      COST.size, costAt, "pxrom_model_cost", this.#model, 0, values, count));
  }

  prepare(combination = {}, {limit = this.#limit} = {}) {
    const library = this.#library;
    const {operations, bytes} = {...NO_LIMIT, ...limit};
    const handle = library.with([COST.size], (most) => {
      library.setCountAt(most + COST.operations, operations);
      library.setCountAt(most + COST.bytes, bytes);
      return this.#withValues(this.#valuesOf(combination), (values, count) => library.result(
        4, (at) => library.sizeAt(at), "pxrom_model_prepare_within", this.#model, 0, values, count, most));
    });
    return new Prepared(library, handle, this.inputs, this.outputs);
  }

  predict(combination, points, options) {
    return this.#preparedOf(combination).predict(points, options);
  }

  sampleRanges(combination = {}) {
    return this.#preparedOf(combination).sampleRanges;
  }

  #preparedOf(combination) {
    const key = this.#valuesOf(combination).join();
    const prepared = this.#prepared.get(key) ?? this.prepare(combination);
    this.#prepared.delete(key);
    this.#prepared.set(key, prepared);
    if (this.#prepared.size > MOST_PREPARED) {
      const [oldest, least] = this.#prepared.entries().next().value;
      this.#prepared.delete(oldest);
      least.free();
    }
    return prepared;
  }

  /// The values of a combination in the order of the discrete inputs.
  #valuesOf(combination) {
    const given = combination ?? {};
    refuseUnknown("discrete input", Object.keys(given), this.discreteInputs);
    return this.discreteInputs.map(({id}) => {
      const value = Object.hasOwn(given, id) ? given[id] : undefined;
      if (Number.isInteger(value) && value === (value | 0)) return value;
      throw new TypeError(`the combination needs an integer for the discrete input '${id}'`);
    });
  }

  #withValues(given, call) {
    return this.#library.with([4 * given.length], (values) => {
      this.#library.integersAt(values, given.length).set(given);
      return call(values, given.length);
    });
  }

  #count(name, ...given) {
    return this.#library.result(4, (at) => this.#library.sizeAt(at), name, this.#model, ...given);
  }

  #allValues() {
    const count = this.#count("pxrom_model_combination_count");
    const library = this.#library;
    // One place for all results: there may be a great many.
    return library.with([4], (at) => Array.from({length: count}, (_, index) => {
      library.call("pxrom_model_combination", this.#model, index, at);
      return this.#integers(library.sizeAt(at), this.discreteInputs.length);
    }));
  }

  #parameters(list, more) {
    const library = this.#library;
    const textAt = (at) => library.textAt(library.sizeAt(at));
    const parameterAt = (at) => ({
      id: textAt(at + PARAMETER.id),
      unit: textAt(at + PARAMETER.unit),
      caption: textAt(at + PARAMETER.caption),
      ...more(at),
    });
    const count = this.#count("pxrom_model_count", list);
    return Array.from({length: count}, (_, index) => library.result(
      PARAMETER.size, parameterAt, "pxrom_model_parameter", this.#model, list, index));
  }

  #boundsAt(at) {
    const library = this.#library;
    if (library.integerAt(at + PARAMETER.hasBounds) !== 1) return null;
    return [library.doubleAt(at + PARAMETER.lower), library.doubleAt(at + PARAMETER.upper)];
  }

  #valuesAt(at) {
    const library = this.#library;
    return this.#integers(library.sizeAt(at + PARAMETER.values), library.sizeAt(at + PARAMETER.count));
  }

  #integers(address, count) {
    return count === 0 ? [] : Array.from(this.#library.integersAt(address, count));
  }
}

/// One combination, ready for any number of points. `Model.prepare` makes it.
class Prepared {
  #library;
  #handle;
  #inputs;
  #outputs;

  constructor(library, handle, inputs, outputs) {
    this.#library = library;
    this.#handle = handle;
    this.#inputs = inputs;
    this.#outputs = outputs;
    const byOutput = (read) => Object.fromEntries(outputs.map(({id}, k) => [id, read(k)]));
    this.errorOrigin = byOutput((k) => this.#originOf(k));
    this.sampleRanges = byOutput((k) => this.#rangesOf(k));
  }

  free() {
    this.#library.ask("pxrom_prepared_free", this.#handle);
    this.#handle = 0;
  }

  predict(points, {error = false, gradient = false, location = false, fast = false} = {}) {
    const {table, rows} = tableOf(points, this.#inputs);
    const library = this.#library;
    return library.with([8 * table.length], (at) => {
      library.doublesAt(at, table.length).set(table);
      return {
        rows,
        ...this.#evaluate(at, rows, error, fast ? MODE.fast : MODE.exact),
        gradients: gradient ? this.#gradients(at, rows) : null,
        ...(location ? this.#locate(at, rows) : {inside: null, distance: null, sides: null}),
      };
    });
  }

  #evaluate(at, rows, error, mode) {
    const library = this.#library;
    const count = rows * this.#outputs.length;
    const sizes = [4 * count, ...Array(error ? 5 : 1).fill(8 * count)];
    return library.with(sizes, (statuses, values, errors, lower, upper, rawErrors) => {
      if (error) {
        library.call("pxrom_prepared_evaluate_with_units", this.#handle, at, rows, mode,
          values, errors, lower, upper, rawErrors, statuses);
      } else {
        library.call("pxrom_prepared_evaluate", this.#handle, at, rows, mode, values, 0, statuses);
      }
      const numbersAt = (address) => this.#byOutput(library.doublesAt(address, count), rows);
      return {
        values: numbersAt(values),
        statuses: this.#byOutput(library.integersAt(statuses, count), rows),
        errors: error ? numbersAt(errors) : null,
        lower: error ? numbersAt(lower) : null,
        upper: error ? numbersAt(upper) : null,
        rawErrors: error ? numbersAt(rawErrors) : null,
        errorOrigin: error ? this.errorOrigin : null,
      };
    });
  }

  #gradients(at, rows) {
    const library = this.#library;
    const count = rows * this.#outputs.length * this.#inputs.length;
    return library.with([8 * count], (slopes) => {
      library.call("pxrom_prepared_gradients", this.#handle, at, rows, slopes, 0);
      return this.#byOutputAndInput(library.doublesAt(slopes, count), rows);
    });
  }

  #locate(at, rows) {
    const library = this.#library;
    const count = rows * this.#outputs.length;
    const all = count * this.#inputs.length;
    return library.with([4 * count, 8 * count, all], (inside, distances, sides) => {
      library.call("pxrom_prepared_locate", this.#handle, at, rows, inside, distances, sides);
      const places = Array.from(library.integersAt(inside, count),
        (place) => (place === NO_SAMPLES ? null : place === 1));
      return {
        inside: this.#byOutput(places, rows),
        distance: this.#byOutput(library.doublesAt(distances, count), rows),
        sides: this.#byOutputAndInput(library.signsAt(sides, all), rows),
      };
    });
  }

  #originOf(output) {
    const library = this.#library;
    return library.with([4, 4], (surface, firstOrder) => {
      const kind = ORIGINS[library.ask("pxrom_prepared_error_origin", this.#handle, output, surface, firstOrder)];
      return {
        kind,
        surface: kind === "one surface" ? library.sizeAt(surface) : null,
        firstOrder: library.integerAt(firstOrder) === 1,
      };
    });
  }

  /// Null where the model holds no samples: that is the one refusal for a known output.
  #rangesOf(output) {
    const library = this.#library;
    const width = this.#inputs.length;
    return library.with([8 * width, 8 * width], (lower, upper) => {
      if (library.ask("pxrom_prepared_sample_ranges", this.#handle, output, lower, upper, 0, 0) !== 0) return null;
      const [lowest, highest] = [lower, upper].map((at) => library.doublesAt(at, width));
      return Object.fromEntries(this.#inputs.map(({id}, k) => [id, [lowest[k], highest[k]]]));
    });
  }

  #byOutput(numbers, rows) {
    const columns = this.#outputs.length;
    return Object.fromEntries(this.#outputs.map(({id}, k) => [id, strided(numbers, k, columns, rows)]));
  }

  #byOutputAndInput(numbers, rows) {
    const width = this.#inputs.length;
    const step = this.#outputs.length * width;
    return Object.fromEntries(this.#outputs.map(({id}, output) => [
      id,
      Object.fromEntries(this.#inputs.map((input, k) => [
        input.id, strided(numbers, output * width + k, step, rows)])),
    ]));
  }
}

function strided(numbers, first, step, count) {
  const taken = new numbers.constructor(count);
  for (let k = 0; k < count; ++k) taken[k] = numbers[first + k * step];
  return taken;
}

function refuseUnknown(kind, names, parameters) {
  const known = new Set(parameters.map(({id}) => id));
  const unknown = names.find((name) => !known.has(name));
  if (unknown === undefined) return;
  const list = [...known].slice(0, MOST_NAMED).join(", ") || "none";
  throw new TypeError(`there is no ${kind} '${unknown}'; the ${kind}s are: ${list}`);
}

/// Points as a table, row by row in the order of the inputs: from such a table, from a list of
/// {input: number}, or from columns, {input: numbers or one number for all rows}.
function tableOf(points, inputs) {
  const width = inputs.length;
  if (points instanceof Float64Array) {
    // Without inputs there is one point, as with columns.
    const rows = width === 0 ? 1 : points.length / width;
    if (rows * width !== points.length || !Number.isInteger(rows)) {
      throw new RangeError(`a table of points has ${width} numbers for each point, one for each input; `
        + `this one has ${points.length} in all`);
    }
    return {table: points, rows};
  }
  if (Array.isArray(points)) return tableOfRows(points, inputs);
  return tableOfColumns(points ?? {}, inputs);
}

function tableOfRows(points, inputs) {
  const table = new Float64Array(points.length * inputs.length);
  points.forEach((point, row) => {
    refuseUnknown("input", Object.keys(point), inputs);
    inputs.forEach(({id}, k) => {
      table[row * inputs.length + k] = numberOf(Object.hasOwn(point, id) ? point[id] : undefined, id, row);
    });
  });
  return {table, rows: points.length};
}

function tableOfColumns(columns, inputs) {
  refuseUnknown("input", Object.keys(columns), inputs);
  const lengths = Object.entries(columns).filter(([, numbers]) => typeof numbers !== "number");
  const rows = lengths.length === 0 ? 1 : lengths[0][1].length;
  for (const [id, numbers] of lengths) {
    if (numbers.length !== rows) {
      throw new RangeError(`the column '${id}' has ${numbers.length} rows and '${lengths[0][0]}' has ${rows}`);
    }
  }
  const table = new Float64Array(rows * inputs.length);
  inputs.forEach(({id}, k) => {
    const numbers = Object.hasOwn(columns, id) ? columns[id] : undefined;
    const isColumn = typeof numbers === "object" && numbers !== null;
    for (let row = 0; row < rows; ++row) {
      table[row * inputs.length + k] = numberOf(isColumn ? numbers[row] : numbers, id, row);
    }
  });
  return {table, rows};
}

function numberOf(value, id, row) {
  if (typeof value === "number") return value;
  throw new TypeError(`the point ${row} needs a number for the input '${id}'`);
}

export {STATUS, hasVectors, loaderOf};
