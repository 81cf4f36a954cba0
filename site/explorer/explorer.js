// SPDX-License-Identifier: MIT
// The one global of the explorer: the data that the scripts of the folder data/ hand in, and the
// loading of more of them. A page opened from disk may not fetch, but it may add scripts.
"use strict";

const explorer = (() => {
  const kTransforms = {
    DFTFwd_CToC: "Complex DFT, forward",
    DFTInv_CToC: "Complex DFT, inverse",
    DFTFwd_RToCCS: "Real DFT, forward, to CCS",
    DFTFwd_RToPack: "Real DFT, forward, to Pack",
    DFTFwd_RToPerm: "Real DFT, forward, to Perm",
    DFTInv_CCSToR: "Real DFT, inverse, from CCS",
    DFTInv_PackToR: "Real DFT, inverse, from Pack",
    DFTInv_PermToR: "Real DFT, inverse, from Perm",
    Hartley: "Hartley",
    WHT: "Walsh-Hadamard",
  };
  const kTypes = {
    "32f": "32f, binary32",
    "64f": "64f, binary64",
    "32fc": "32fc, complex binary32",
    "64fc": "64fc, complex binary64",
  };
  const kColumns = ["plan", "additions", "multiplications", "conversions", "instructions", "spills",
    "frame", "model", "bound", "errorBound"];

  const state = {
    transforms: kTransforms,
    types: kTypes,
    list: [],  // all kernels, in the order of the families
    byName: new Map(),
    marks: [],
    others: [],  // functions that are not generated: name and page
    pagesOf: {},  // of the transforms
    measurement: {libraries: [], kernels: {}},
    pages: new Map(),  // by name, once loaded
    waiting: new Map(),
  };

  // orvgDFTFwd_CToC_32fc is transform DFTFwd_CToC and type 32fc.
  function family(name) {
    const at = name.lastIndexOf("_");
    return {name, transform: name.slice("orvg".length, at), type: name.slice(at + 1)};
  }

  // data/kernels.js
  state.kernels = ({families, marks, rows}) => {
    state.marks = marks;
    const list = families.map(family);
    for (const [place, length, ...cells] of rows) {
      const {transform, type, name: byLength} = list[place];
      const kernel = {name: `orvg${transform}_${length}_${type}`, byLength, transform, type, length};
      kernel.points = transform === "WHT" ? 2 ** length : length;
      kColumns.forEach((column, i) => { kernel[column] = cells[i]; });
      Object.assign(kernel, state.measurement.kernels[kernel.name]);
      state.list.push(kernel);
      state.byName.set(kernel.name, kernel);
    }
  };

  // data/measured.js
  state.measured = (measurement) => { state.measurement = measurement; };

  // data/functions.js
  state.functions = ({pages, others}) => Object.assign(state, {pagesOf: pages, others});

  // data/kernels/NAME.js
  state.kernel = (name, page) => {
    state.pages.set(name, page);
    state.waiting.get(name)?.(page);
    state.waiting.delete(name);
  };

  // The page of a kernel, by a script of its own.
  state.load = (name) => new Promise((resolve, reject) => {
    if (state.pages.has(name)) {
      resolve(state.pages.get(name));
      return;
    }
    state.waiting.set(name, resolve);
    const script = document.createElement("script");
    script.src = `data/kernels/${name}.js`;
    script.onload = () => script.remove();
    script.onerror = () => {
      script.remove();
      state.waiting.delete(name);
      reject(new Error(`no data for ${name}`));
    };
    document.head.append(script);
  });

  state.isPerOrder = (kernel) => kernel.transform === "WHT";
  return state;
})();
