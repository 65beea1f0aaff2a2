// The library as a WebAssembly module, through its C interface (include/pxrom/pxrom_c.h). The library
// holds all formulas: nothing here computes with the numbers of a model.

const LIST = {inputs: 1, discrete: 2, outputs: 3};
const POINT = {ok: 0, withoutError: -2, failed: 1};
const EXACT = 0;
const MESSAGE_SIZE = 512;
const EBADF = 8;
const UNLIMITED = {operations: Infinity, bytes: Infinity};

// Offsets of the fields of pxrom_parameter; module.cpp checks them.
const PARAMETER = {
  size: 56, id: 0, unit: 4, caption: 8, hasBounds: 28, lower: 32, upper: 40, values: 48, count: 52,
};

// Of pxrom_cost.
const COST = {size: 16, operations: 0, bytes: 8};
const LARGEST_COUNT = (1n << 64n) - 1n;

function bytesOfBase64(text) {
  return Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0));
}

async function unzipped(bytes) {
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

// The library reads no files and prints nothing, so all calls of the system are refused.
function importsOf(module) {
  const imports = {};
  for (const {module: from, name} of WebAssembly.Module.imports(module)) {
    imports[from] ??= {};
    imports[from][name] = () => EBADF;
  }
  return imports;
}

class Library {
  #exports;
  #message;

  static async load(base64) {
    const module = await WebAssembly.compile(await unzipped(bytesOfBase64(base64)));
    return new Library(await WebAssembly.instantiate(module, importsOf(module)));
  }

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
    return address;
  }

  free(...addresses) {
    addresses.forEach((address) => this.#exports.free(address));
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
    this.#view.setBigUint64(address, count === Infinity ? LARGEST_COUNT : BigInt(count), true);
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
    const address = this.allocate(size);
    try {
      this.call(name, ...given, address);
      return read(address);
    } finally {
      this.free(address);
    }
  }

  version() {
    return this.textAt(this.ask("pxrom_version"));
  }
}

class Model {
  #library;
  #model;

  constructor(library, bytes) {
    this.#library = library;
    const text = library.allocate(bytes.length);
    library.bytesAt(text, bytes.length).set(bytes);
    try {
      this.#model = library.result(4, (at) => library.sizeAt(at), "pxrom_model_read", text, bytes.length);
    } finally {
      library.free(text);
    }
  }

  parameters(list) {
    const count = this.#count("pxrom_model_count", list);
    return Array.from({length: count}, (_, index) => this.#library.result(
      PARAMETER.size, (at) => this.#parameterAt(at), "pxrom_model_parameter", this.#model, list, index));
  }

  /// The values of each combination, in the order of the discrete inputs.
  combinations(width) {
    const count = this.#count("pxrom_model_combination_count");
    const library = this.#library;
    // One place for all results: there may be a great many.
    const at = library.allocate(4);
    try {
      return Array.from({length: count}, (_, index) => {
        library.call("pxrom_model_combination", this.#model, index, at);
        return this.#integers(library.sizeAt(at), width);
      });
    } finally {
      library.free(at);
    }
  }

  /// The cost of an evaluation: {operations, bytes}.
  cost(combination) {
    const library = this.#library;
    const costAt = (at) => ({
      operations: library.countAt(at + COST.operations), bytes: library.countAt(at + COST.bytes)});
    return this.#withValues(combination, (values) => library.result(
      COST.size, costAt, "pxrom_model_cost", this.#model, 0, values, combination.length));
  }

  /// Throws the message of the library if an evaluation costs more than `limit`.
  prepare(combination, limit) {
    const library = this.#library;
    const most = library.allocate(COST.size);
    library.setCountAt(most + COST.operations, limit.operations);
    library.setCountAt(most + COST.bytes, limit.bytes);
    try {
      const handle = this.#withValues(combination, (values) => library.result(
        4, (at) => library.sizeAt(at), "pxrom_model_prepare_within", this.#model, 0, values,
        combination.length, most));
      return new Prepared(library, handle);
    } finally {
      library.free(most);
    }
  }

  #withValues(combination, call) {
    const values = this.#library.allocate(4 * combination.length);
    this.#library.integersAt(values, combination.length).set(combination);
    try {
      return call(values);
    } finally {
      this.#library.free(values);
    }
  }

  #count(name, ...given) {
    return this.#library.result(4, (at) => this.#library.sizeAt(at), name, this.#model, ...given);
  }

  #integers(address, count) {
    return count === 0 ? [] : Array.from(this.#library.integersAt(address, count));
  }

  #parameterAt(at) {
    const library = this.#library;
    const [name, unit, caption] = [PARAMETER.id, PARAMETER.unit, PARAMETER.caption].map(
      (place) => library.textAt(library.sizeAt(at + place)));
    return {
      name, // as the library knows it; the others are shown
      id: visible(name),
      unit: visible(unit),
      caption: visible(caption),
      hasBounds: library.integerAt(at + PARAMETER.hasBounds) === 1,
      lower: library.doubleAt(at + PARAMETER.lower),
      upper: library.doubleAt(at + PARAMETER.upper),
      values: this.#integers(library.sizeAt(at + PARAMETER.values), library.sizeAt(at + PARAMETER.count)),
    };
  }
}

/// One combination, prepared for evaluation.
class Prepared {
  #library;
  #handle;
  #outputs;

  constructor(library, handle) {
    this.#library = library;
    this.#handle = handle;
    this.#outputs = library.ask("pxrom_prepared_output_count", handle);
    this.errorInUnit = Array.from({length: this.#outputs},
      (_, output) => library.ask("pxrom_prepared_error_in_unit", handle, output) === 1);
  }

  free() {
    this.#library.ask("pxrom_prepared_free", this.#handle);
  }

  /// For each of `rows` points a row of answers: {status, value, error}; a missing value or error is
  /// NaN.
  predict(points, rows) {
    const answers = this.#evaluate(points, rows, true);
    if (answers.every((answer) => answer.status !== POINT.failed)) return this.#byRow(answers);
    // Families without an error have values if they are not asked for one.
    const alone = this.#evaluate(points, rows, false);
    answers.forEach((answer, k) => {
      if (answer.status !== POINT.failed || alone[k].status !== POINT.ok) return;
      answers[k] = {...alone[k], status: POINT.withoutError};
    });
    return this.#byRow(answers);
  }

  #byRow(answers) {
    const rows = [];
    for (let k = 0; k < answers.length; k += this.#outputs) rows.push(answers.slice(k, k + this.#outputs));
    return rows;
  }

  #evaluate(points, rows, withErrors) {
    const library = this.#library;
    const count = rows * this.#outputs;
    const [at, values, errors, statuses] =
      [8 * points.length, 8 * count, 8 * count, 4 * count].map((size) => library.allocate(size));
    try {
      library.doublesAt(at, points.length).set(points);
      library.call("pxrom_prepared_evaluate", this.#handle, at, rows, EXACT, values,
        withErrors ? errors : 0, statuses);
      const [value, error] = [values, errors].map((address) => library.doublesAt(address, count));
      return Array.from(library.integersAt(statuses, count), (status, k) => (
        {status, value: value[k], error: withErrors && status === POINT.ok ? error[k] : NaN}));
    } finally {
      library.free(at, values, errors, statuses);
    }
  }
}
