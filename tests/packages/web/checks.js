// What holds of the package wherever it runs: node.test.js and browser.html run it. `load` is the
// package's, and `read(path)` gives the text of a file of tests/data/models or examples.

function expectEqual(got, wanted, what) {
  if (!Object.is(got, wanted)) throw new Error(`${what}: ${got} instead of ${wanted}`);
}

function expectNear(got, wanted, tolerance, what) {
  if (!(Math.abs(got - wanted) <= tolerance * Math.max(1, Math.abs(wanted)))) {
    throw new Error(`${what}: ${got} instead of ${wanted}`);
  }
}

/// Predicts what the tool predicts that fitted the model (tests/data/models/README.md).
export async function likeTheTool(load, read, name) {
  const model = await load(await read(`${name}/model.pxdb`));
  for (const {discrete, continuous, outputs, errors, ...wanted} of JSON.parse(await read(`${name}/cases.json`))) {
    const got = model.predict(discrete, [continuous], {error: errors !== null});
    expectEqual(Object.keys(got.values).length, Object.keys(outputs).length, `${name}, outputs`);
    for (const [id, value] of Object.entries(outputs)) {
      expectNear(got.values[id][0], value, wanted.tolerance, `${name}, ${id}`);
      if (errors === null) continue;
      // The tools have none for an ensemble of which one surface alone has an error.
      if (got.errorOrigin[id].kind === "one surface") {
        expectEqual(Object.hasOwn(errors, id), false, `${name}, error of ${id}`);
        continue;
      }
      const without = !Object.hasOwn(errors, id);
      expectEqual(got.statuses[id][0], without ? -2 : 0, `${name}, status of ${id}`);
      if (without) expectEqual(got.errors[id][0], NaN, `${name}, error of ${id}`);
      else expectNear(got.rawErrors[id][0], errors[id], wanted.error_tolerance, `${name}, error of ${id}`);
    }
  }
}

/// The gradient is the limit of quotients of differences.
export async function gradientsFit(load, read) {
  const model = await load(await read("beam.pxdb"));
  const [combination, point] = [{Material: 1, Holes: 2}, {L: 1.5, b: 45, h: 90, F: 3000}];
  const {values: here, gradients} = model.predict(combination, point, {gradient: true});
  for (const {id, bounds} of model.inputs) {
    const range = bounds[1] - bounds[0];
    const step = 1e-5 * range;
    const ends = [point[id] - step, point[id] + step];
    const {values} = model.predict(combination, {...point, [id]: ends});
    for (const output of Object.keys(values)) {
      const quotient = (values[output][1] - values[output][0]) / (ends[1] - ends[0]);
      const scale = range / Math.abs(here[output][0]);
      expectNear(scale * gradients[output][id][0], scale * quotient, 1e-7, `d${output}/d${id}`);
    }
  }
}
