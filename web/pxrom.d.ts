/** Reads a database of fitted response surfaces. Throws an Error with the library's sentence. */
export function load(text: string | Uint8Array | ArrayBuffer, options?: { limit?: Limit }): Promise<Model>;

/** The most that one evaluation may cost; without a number there is no limit. */
export interface Limit {
  /** Floating-point operations at one point. */
  operations?: number;
  /** Bytes of memory in addition to the model. */
  bytes?: number;
}

export interface Parameter {
  readonly id: string;
  /** "" without. */
  readonly unit: string;
  readonly caption: string;
}

export interface Input extends Parameter {
  /** Shown and never enforced; null without. */
  readonly bounds: readonly [lower: number, upper: number] | null;
}

export interface DiscreteInput extends Parameter {
  /** Those that occur in the combinations, ascending. */
  readonly values: readonly number[];
}

/** One integer for each discrete input. */
export type Combination = Readonly<Record<string, number>>;

/**
 * Points in physical units:
 * a list with one object for each point;
 * columns, each with a number for each point, or with one number for all;
 * a table row by row, with the inputs in the order of `Model.inputs`.
 */
export type Points =
  | readonly Readonly<Record<string, number>>[]
  | Readonly<Record<string, number | ArrayLike<number>>>
  | Float64Array;

export interface PredictOptions {
  /** Also the predicted errors, in the units of their outputs. */
  error?: boolean;
  /** Also where the points are relative to the samples that each output was fitted to. */
  location?: boolean;
  /** Also the derivatives with respect to the inputs, in physical units. */
  gradient?: boolean;
  /** Values within 1e-11 of the largest one of the output in the batch, instead of the exact ones. */
  fast?: boolean;
}

/** By the ID of the output, and in each array one number for each point. */
export interface Prediction {
  readonly rows: number;
  /** NaN where a point could not be evaluated. */
  readonly values: Readonly<Record<string, Float64Array>>;
  readonly statuses: Readonly<Record<string, Int32Array>>;
  /**
   * In the unit of the output and never negative; NaN where there is no error. Null unless `error` was asked for,
   * as are the next four.
   */
  readonly errors: Readonly<Record<string, Float64Array>> | null;
  /** The ends of the interval that the error means; through an output transformation it is not symmetric. */
  readonly lower: Readonly<Record<string, Float64Array>> | null;
  readonly upper: Readonly<Record<string, Float64Array>> | null;
  /** As the surfaces report them: in a scaled space, unless they come from cross-validation. */
  readonly rawErrors: Readonly<Record<string, Float64Array>> | null;
  readonly errorOrigin: Readonly<Record<string, ErrorOrigin>> | null;
  /** `gradients[output][input]`; NaN where there is no derivative. Null unless asked for. */
  readonly gradients: Readonly<Record<string, Readonly<Record<string, Float64Array>>>> | null;
  /**
   * Whether all inputs are within the ranges of the samples; null where the database holds no samples. Bounds of
   * the inputs play no role. Null unless `location` was asked for, as are the next two.
   */
  readonly inside: Readonly<Record<string, readonly (boolean | null)[]>> | null;
  /**
   * To the nearest sample, in units of the median distance of a sample to its nearest neighbour, with inputs
   * scaled by the ranges of the samples. NaN without two different samples.
   */
  readonly distance: Readonly<Record<string, Float64Array>> | null;
  /** `sides[output][input]`: -1 below the range of the samples, 1 above, else 0. */
  readonly sides: Readonly<Record<string, Readonly<Record<string, Int8Array>>>> | null;
}

/** Whose error the error of an output is. */
export interface ErrorOrigin {
  /** "one surface": the others report none, so it is not that of the ensemble. */
  readonly kind: "none" | "cross-validation" | "all surfaces" | "one surface";
  /** The number of that one surface, from 0; else null. */
  readonly surface: number | null;
  /** Whether it went through an output transformation by its derivative. */
  readonly firstOrder: boolean;
}

/**
 * The lowest and the highest value of each input in the samples, by output and input; null for an output without
 * samples in the database.
 */
export type SampleRanges = Readonly<
  Record<string, Readonly<Record<string, readonly [lowest: number, highest: number]>> | null>>;

/** A database that was read. Its memory is freed with the object. */
export interface Model {
  /** The version of the library. */
  readonly version: string;
  readonly inputs: readonly Input[];
  readonly discreteInputs: readonly DiscreteInput[];
  readonly outputs: readonly Parameter[];
  readonly combinations: readonly Combination[];
  /** The cost of an evaluation of all outputs at a point, without evaluating. */
  cost(combination?: Combination): Required<Limit>;
  /** Prepares the combination, and keeps the last few of them. */
  predict(combination: Combination | null, points: Points, options?: PredictOptions): Prediction;
  sampleRanges(combination?: Combination): SampleRanges;
  /** The same in two steps. Throws if an evaluation costs more than the limit. */
  prepare(combination?: Combination, options?: { limit?: Limit }): Prepared;
}

/** One combination, ready for any number of points. */
export interface Prepared {
  readonly errorOrigin: Readonly<Record<string, ErrorOrigin>>;
  readonly sampleRanges: SampleRanges;
  predict(points: Points, options?: PredictOptions): Prediction;
  /** Frees its memory before the model's; it can't predict afterwards. */
  free(): void;
}

/** What a status says of an output at a point. */
export const STATUS: {
  readonly ok: 0;
  /** The value is valid, and there is no predicted error. */
  readonly withoutError: -2;
  readonly failed: 1;
};
