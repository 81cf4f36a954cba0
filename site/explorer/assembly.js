// SPDX-License-Identifier: MIT
// The emitted assembly: functions and pool one after another, the lines of each stage together in
// an element, so that a stage can be shown alone.
"use strict";

explorer.assembly = (() => {
  const {make, number} = explorer.elements;

  // Undoes what kernel_data.h calls marks.
  function textOf(kernel, marked) {
    const text = [...explorer.marks].reverse()
      .reduce((whole, [mark, meaning]) => whole.replaceAll(mark, meaning), marked);
    return text.replaceAll("&", kernel.name.slice("orvg".length));
  }

  // Head, functions, pool: each begins behind an empty line.
  function parts(text) {
    return text.trim().split(/\n\n+/).map((part) => {
      const label = part.match(/^(\w+|\.\w+_pool):$/m)?.[1];
      const title = !label ? (part.startsWith("#") ? "Head" : "End of the file")
        : label.startsWith(".") ? "Constants" : label;
      return {title, text: part};
    });
  }

  // Lines by stage: a comment on a line of its own names the stage of those behind it, up to the
  // next one or a label.
  function runs(text, stages) {
    const list = [];
    let stage;
    for (const line of text.split("\n")) {
      const comment = line.match(/^\t# (.*)$/)?.[1];
      const named = comment === undefined ? -1 : stages.indexOf(comment);
      if (comment !== undefined) stage = named < 0 ? undefined : comment;
      else if (/^\S/.test(line) || line.startsWith("\txor\teax, eax")) stage = undefined;
      if (list.length === 0 || list.at(-1).stage !== stage) list.push({stage, lines: []});
      list.at(-1).lines.push(line);
    }
    return list;
  }

  function code(text, stages) {
    return make("pre", {tabindex: "0"}, make("code", {}, runs(text, stages).map((run) =>
      make("span", {class: run.stage === undefined ? undefined : "run", "data-name": run.stage},
        `${run.lines.join("\n")}\n`))));
  }

  function view(kernel, marked, stages) {
    const text = textOf(kernel, marked);
    const element = make("div", {class: "assembly"}, parts(text).map((part, i) => {
      const lines = part.text.split("\n").length;
      const details = make("details", {open: i < 2},
        make("summary", {}, `${part.title}, ${number(lines)} lines`));
      // Long twins are written only when they are opened.
      const write = () => {
        if (details.open && details.childElementCount === 1) details.append(code(part.text, stages));
      };
      details.addEventListener("toggle", write);
      write();
      return details;
    }));
    const save = make("button", {type: "button", onclick: () => {
      const link = make("a", {
        href: URL.createObjectURL(new Blob([text], {type: "text/plain"})),
        download: `${kernel.name}.s`,
      });
      link.click();
      setTimeout(() => URL.revokeObjectURL(link.href), 1000);
    }}, "Save as a file");
    return {element: make("div", {}, make("p", {class: "buttons"}, save), element)};
  }

  // Shows the lines of one stage, by its name, or all (undefined).
  function highlight(element, name) {
    const box = element.querySelector(".assembly");
    box.classList.toggle("some", name !== undefined);
    for (const run of box.querySelectorAll(".run"))
      run.classList.toggle("on", run.dataset.name === name);
  }

  return {view, highlight, textOf};
})();
