// Checked by the TypeScript compiler against the types of the package, not run.

import {load, type Model, type Prediction, STATUS} from "pxrom";

const model: Model = await load(new Uint8Array(), {limit: {operations: 1e9}});
const bounds: readonly [number, number] | null = model.inputs[0]!.bounds;
const values: readonly number[] = model.discreteInputs[0]!.values;
const prediction: Prediction = model.predict({Material: 1}, [{L: 1.5}], {error: true, gradient: true});
const slope: Float64Array | undefined = prediction.gradients?.["mass"]?.["L"];
model.predict({}, {L: [1, 2], b: 45, h: new Float64Array(2)}, {fast: true});
model.prepare(model.combinations[0]).predict(new Float64Array(4)).statuses["mass"]?.includes(STATUS.withoutError);

const kind: "none" | "cross-validation" | "all surfaces" | "one surface" | undefined =
  prediction.errorOrigin?.["mass"]?.kind;
const lowest: number | undefined = model.sampleRanges({Material: 1})["mass"]?.["L"]?.[0];

// @ts-expect-error A combination holds numbers.
model.predict({Material: "steel"}, []);
// @ts-expect-error There is no such option.
model.predict({}, [], {errors: true});
// @ts-expect-error Without a question, errors may be missing.
prediction.errors["mass"];

export {bounds, kind, lowest, slope, values};
