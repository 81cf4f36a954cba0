// SPDX-License-Identifier: MIT
// Elements of the page, made in one expression.
"use strict";

explorer.elements = (() => {
  function fill(element, attributes, children) {
    for (const [name, value] of Object.entries(attributes)) {
      if (value === undefined || value === false) continue;
      if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
      else element.setAttribute(name, value === true ? "" : value);
    }
    element.append(...children.flat().filter((child) => child !== undefined));
    return element;
  }

  const make = (tag, attributes = {}, ...children) =>
    fill(document.createElement(tag), attributes, children);
  const draw = (tag, attributes = {}, ...children) =>
    fill(document.createElementNS("http://www.w3.org/2000/svg", tag), attributes, children);

  // A table of rows of cells; the first cell of a row is its head.
  function table(caption, heads, rows) {
    const cells = (row) => row.map((cell, i) => {
      const attributes = typeof cell === "number" ? {class: "number"} : {};
      const content = typeof cell === "number" ? number(cell) : cell ?? "";
      return i === 0 ? make("th", {scope: "row"}, content) : make("td", attributes, content);
    });
    return make("div", {class: "wide", role: "region", tabindex: "0", "aria-label": caption},
      make("table", {},
        make("caption", {}, caption),
        make("thead", {}, make("tr", {}, heads.map((head) => make("th", {scope: "col"}, head)))),
        make("tbody", {}, rows.map((row) => make("tr", {}, cells(row))))));
  }

  const format = new Intl.NumberFormat("en", {maximumFractionDigits: 2});
  const number = (value) => value === undefined || value === null ? "" : format.format(value);

  function options(select, entries, chosen) {
    select.replaceChildren(...entries.map(([value, text]) =>
      make("option", {value, selected: String(value) === String(chosen)}, text)));
  }

  return {make, draw, table, number, options};
})();
