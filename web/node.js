// The package in Node.js.

import {readFile} from "node:fs/promises";
import {hasVectors, loaderOf, STATUS} from "./pxrom.js";

let loader;

export async function load(text, options) {
  const name = hasVectors() ? "pxrom-simd.wasm" : "pxrom.wasm";
  loader ??= readFile(new URL(name, import.meta.url)).then(loaderOf);
  return (await loader)(text, options);
}

export {STATUS};
