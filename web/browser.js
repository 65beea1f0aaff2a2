// The package in a browser, and for bundlers, which look for these forms of `new URL`.

import {hasVectors, loaderOf, STATUS} from "./pxrom.js";

let loader;

async function fetched() {
  const address = hasVectors()
    ? new URL("./pxrom-simd.wasm", import.meta.url)
    : new URL("./pxrom.wasm", import.meta.url);
  const response = await fetch(address);
  if (!response.ok) throw new Error(`can't load ${address}: status ${response.status}`);
  return loaderOf(await response.arrayBuffer());
}

export async function load(text, options) {
  // A request that failed is tried again by the next call.
  loader ??= fetched().catch((error) => {
    loader = undefined;
    throw error;
  });
  return (await loader)(text, options);
}

export {STATUS};
