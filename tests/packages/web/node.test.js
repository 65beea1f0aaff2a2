// The package as it was installed into a project: script/test-packages runs this there.

import assert from "node:assert/strict";
import {readFile} from "node:fs/promises";
import {test} from "node:test";
import {load, STATUS} from "pxrom";
import {gradientsFit, likeTheTool} from "./checks.js";

const read = (path) => readFile(`files/${path}`, "utf8");
const BEAM = await read("beam.pxdb");
const COMBINATION = {Material: 1, Holes: 2};
const POINT = {L: 1.5, b: 45, h: 90, F: 3000};

for (const name of JSON.parse(await read("models.json"))) {
  test(`${name}: the numbers of its tool`, () => likeTheTool(load, read, name));
}

test("gradients", () => gradientsFit(load, read));

test("what a model has", async () => {
  const model = await load(BEAM);
  assert.deepEqual(model.inputs[2], {id: "L", unit: "m", caption: "Beam length", bounds: [1, 2]});
  assert.deepEqual(model.discreteInputs.map(({id, values}) => [id, values]), [["Holes", [0, 2, 4]], ["Material", [1, 2]]]);
  assert.deepEqual(model.outputs.map(({id}) => id), ["deflection", "mass", "stress"]);
  assert.deepEqual(model.combinations[3], {Holes: 2, Material: 2});
});

test("three forms of points, one result", async () => {
  const model = await load(new TextEncoder().encode(BEAM));
  const rows = model.predict(COMBINATION, [POINT, {...POINT, L: 1.8}], {error: true});
  const columns = model.predict(COMBINATION, {...POINT, L: Float64Array.of(1.5, 1.8)}, {error: true});
  const order = model.inputs.map(({id}) => id);
  const table = Float64Array.from([1.5, 1.8].flatMap((L) => order.map((id) => ({...POINT, L})[id])));
  assert.deepEqual(columns, rows);
  assert.deepEqual(model.predict(COMBINATION, table, {error: true}), rows);
  assert.equal(rows.rows, 2);
});

test("errors in units, and whose they are", async () => {
  const model = await load(BEAM);
  const {values, errors, lower, upper, rawErrors, errorOrigin} = model.predict(COMBINATION, POINT, {error: true});
  assert.deepEqual(errorOrigin.mass, {kind: "all surfaces", surface: null, firstOrder: false});
  assert.equal(errorOrigin.stress.kind, "cross-validation");
  assert.deepEqual(errors.stress, rawErrors.stress);
  assert.ok(errors.mass[0] > rawErrors.mass[0]);
  assert.equal(lower.mass[0], values.mass[0] - errors.mass[0]);
  assert.equal(upper.mass[0], values.mass[0] + errors.mass[0]);
});

test("points among the samples", async () => {
  const model = await load(BEAM);
  const {inside, distance, sides} = model.predict(COMBINATION, {...POINT, L: [0.5, 1.5, 2.5]}, {location: true});
  assert.deepEqual(inside.mass, [false, true, false]);
  assert.deepEqual([...sides.mass.L], [-1, 0, 1]);
  assert.deepEqual([...sides.mass.b], [0, 0, 0]);
  assert.ok(distance.mass[0] > distance.mass[1]);
  const [lowest, highest] = model.sampleRanges(COMBINATION).mass.L;
  const ends = model.predict(COMBINATION, {...POINT, L: [lowest, highest]}, {location: true});
  assert.deepEqual(ends.inside.mass, [true, true]);
  assert.ok(lowest < highest);
});

test("statuses", async () => {
  const model = await load(await read("mls_np_franke_linear_gauss/model.pxdb"));
  const [first, second] = model.inputs.map(({id}) => id);
  const [output] = model.outputs.map(({id}) => id);
  const {statuses, values} = model.predict({}, {[first]: [0.5, 1e300], [second]: 0.5}, {error: true});
  assert.deepEqual([...statuses[output]], [STATUS.withoutError, STATUS.failed]);
  assert.ok(values[output][0] > 0);
  assert.ok(Number.isNaN(values[output][1]));
});

test("refusals in sentences", async () => {
  const model = await load(BEAM);
  const refused = (sentence, ...given) => assert.throws(() => model.predict(...given), {message: sentence});
  refused("there is no discrete input 'Materal'; the discrete inputs are: Holes, Material", {Materal: 1}, POINT);
  refused("the combination needs an integer for the discrete input 'Holes'", {Material: 1}, POINT);
  refused("there is no input 'l'; the inputs are: h, F, L, b", COMBINATION, [{...POINT, l: 1}]);
  refused("the point 0 needs a number for the input 'b'", COMBINATION, [{...POINT, b: "45"}]);
  refused("the column 'b' has 3 rows and 'L' has 2", COMBINATION, {...POINT, L: [1, 2], b: [1, 2, 3]});
  refused("a table of points has 4 numbers for each point, one for each input; this one has 5 in all",
    COMBINATION, new Float64Array(5));
  await assert.rejects(load("no database"), Error);
  const limited = await load(BEAM, {limit: {operations: 1000}});
  assert.throws(() => limited.predict(COMBINATION, POINT), /the limit is 1000/);
  assert.ok(limited.cost(COMBINATION).operations > 1000);
});

test("with vectors and without: the same bits", async () => {
  const folder = new URL("node_modules/pxrom/", import.meta.url);
  const {loaderOf, hasVectors} = await import(new URL("pxrom.js", folder));
  assert.ok(hasVectors());
  const points = Array.from({length: 100}, (_, k) => ({...POINT, L: 1 + k / 100}));
  const predictions = await Promise.all(["pxrom.wasm", "pxrom-simd.wasm"].map(async (name) => {
    const model = await (await loaderOf(await readFile(new URL(name, folder))))(BEAM);
    return model.predict(COMBINATION, points, {error: true, gradient: true});
  }));
  assert.deepEqual(predictions[0], predictions[1]);
});

test("combinations that are prepared again", async () => {
  const model = await load(BEAM);
  const first = model.predict(model.combinations[0], POINT);
  for (const combination of model.combinations) model.predict(combination, POINT);
  assert.deepEqual(model.predict(model.combinations[0], POINT), first);
});
