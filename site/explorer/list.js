// SPDX-License-Identifier: MIT
// The list of all kernels: searched, filtered, sorted by any column.
"use strict";

explorer.listView = (() => {
  const {make, number, options} = explorer.elements;
  const at = (id) => document.getElementById(id);

  const kColumns = [
    {key: "name", title: "Kernel"},
    {key: "points", title: "Points"},
    {key: "plan", title: "Plan"},
    {key: "additions", title: "Additions"},
    {key: "multiplications", title: "Products"},
    {key: "conversions", title: "Conversions"},
    {key: "instructions", title: "Instructions"},
    {key: "spills", title: "Spills"},
    {key: "model", title: "Cycles by the model"},
    {key: "cycles", title: "Cycles measured"},
    {key: "error", title: "Error"},
    {key: "errorBound", title: "Error bound"},
  ];
  const sorting = {column: undefined, descending: false};
  const rows = new Map();  // by kernel, made once

  function row(kernel) {
    if (!rows.has(kernel)) {
      const cells = kColumns.map(({key}, i) => {
        if (i === 0) {
          return make("th", {scope: "row"},
            make("a", {href: `#${kernel.name}`}, kernel.name.slice("orvg".length)));
        }
        const value = kernel[key];
        return typeof value === "string" ? make("td", {title: value}, value)
          : make("td", {class: "number"}, number(value));
      });
      rows.set(kernel, make("tr", {}, cells));
    }
    return rows.get(kernel);
  }

  // All words must be found in the name or in the plan; * and ? are any characters and one.
  function wordsOf(text) {
    const escaped = (word) => word.replace(/[.+^${}()|[\]\\]/g, "\\$&")
      .replace(/\*/g, ".*").replace(/\?/g, ".");
    return text.trim().split(/\s*[,;]\s*|\s{2,}/).filter(Boolean)
      .map((word) => new RegExp(escaped(word), "i"));
  }

  function chosen() {
    const words = wordsOf(at("search").value);
    const transform = at("filter-transform").value;
    const type = at("filter-type").value;
    const length = at("filter-length").value;
    const list = explorer.list.filter((kernel) =>
      (!transform || kernel.transform === transform) && (!type || kernel.type === type) &&
      (!length || kernel.length === Number(length)) &&
      words.every((word) => word.test(kernel.name) || word.test(kernel.plan)));
    const {column, descending} = sorting;
    if (column) {
      // Kernels without a figure stand last either way.
      const missing = (kernel) => kernel[column] === undefined;
      list.sort((a, b) => {
        if (missing(a) || missing(b)) return missing(a) - missing(b);
        const order = typeof a[column] === "string"
          ? a[column].localeCompare(b[column], "en", {numeric: true}) : a[column] - b[column];
        return descending ? -order : order;
      });
    }
    return list;
  }

  function show() {
    const list = chosen();
    document.querySelector("#kernels tbody").replaceChildren(...list.map(row));
    at("count").value = `${number(list.length)} of ${number(explorer.list.length)} kernels`;
    document.querySelectorAll("#kernels thead th").forEach((head) => {
      const sorted = head.dataset.key === sorting.column;
      head.setAttribute("aria-sort",
        !sorted ? "none" : sorting.descending ? "descending" : "ascending");
    });
  }

  function sortBy(column) {
    sorting.descending = sorting.column === column && !sorting.descending;
    sorting.column = column;
    show();
  }

  function start() {
    const transforms = [...new Set(explorer.list.map((kernel) => kernel.transform))];
    const types = [...new Set(explorer.list.map((kernel) => kernel.type))];
    options(at("filter-transform"),
      [["", "all"], ...transforms.map((t) => [t, explorer.transforms[t]])], "");
    options(at("filter-type"), [["", "all"], ...types.map((t) => [t, explorer.types[t]])], "");
    document.querySelector("#kernels thead").replaceChildren(make("tr", {},
      kColumns.map(({key, title}) => make("th", {scope: "col", "data-key": key},
        make("button", {type: "button", onclick: () => sortBy(key)}, title)))));
    at("others").replaceChildren(...explorer.others.map(([name, page]) =>
      make("li", {}, make("a", {href: `../${page}`}, name))));
    at("filter").addEventListener("submit", (event) => event.preventDefault());
    for (const event of ["input", "change"]) at("filter").addEventListener(event, show);
    at("filter").addEventListener("reset", () => setTimeout(show));
    show();
  }

  return {start, show};
})();
