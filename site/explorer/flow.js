// SPDX-License-Identifier: MIT
// The flow of a kernel drawn stage by stage: data go from left to right, a column for each step
// within a stage.
"use strict";

explorer.flow = (() => {
  const {make, draw} = explorer.elements;

  const kColumn = 34, kRow = 11, kTop = 26, kSide = 16, kRadius = 3.6;
  const kKinds = {
    I: ["end", "element of src"], O: ["end", "element of dst"], Q: ["end", "element of dst"],
    Z: ["end", "zero"], "+": ["sum", "sum"], "-": ["sum", "difference"],
    "*": ["product", "product by a constant"], s: ["scale", "product by the scale"],
    W: ["conversion", "widened to binary64"], N: ["conversion", "rounded to binary32"],
    X: ["move", "lanes exchanged"], L: ["move", "sign of the low lane"],
    H: ["move", "sign of the high lane"], P: ["move", "four lanes put together"],
  };
  const kLegend = [["sum", "sum, difference"], ["product", "product by a constant"],
    ["scale", "product by the scale"], ["conversion", "conversion"], ["move", "lanes, signs"],
    ["end", "src, dst"]];

  // The text of data/kernels/NAME.js as nodes; see flow_data.h for its letters.
  function nodesOf(flow) {
    return flow.nodes.split(";").map((text, number) => {
      const kind = text[0];
      const [stage, ...values] = text.slice(1).split(",").map(Number);
      const node = {number, kind, stage, operands: values, uses: []};
      if ("IOQ".includes(kind)) node.element = node.operands.shift();
      if (kind === "*") node.constant = flow.constants[node.operands.shift()];
      if ("PQ".includes(kind)) {
        node.lanes = node.operands;
        node.operands = [...new Set(node.lanes.map((lane) => Math.floor(lane / 4)))];
      }
      return node;
    });
  }

  // Columns: src, then the steps of each stage, then dst. Rows: near what a node is made of.
  function place(nodes, stages) {
    const width = new Array(stages).fill(0);
    for (const node of nodes) {
      for (const operand of node.operands) nodes[operand].uses.push(node.number);
      if ("IZOQ".includes(node.kind)) continue;
      const before = node.operands.map((o) => nodes[o])
        .filter((o) => o.stage === node.stage && o.step !== undefined);
      node.step = Math.max(-1, ...before.map((o) => o.step)) + 1;
      width[node.stage] = Math.max(width[node.stage], node.step + 1);
    }
    const first = [];
    width.reduce((column, steps, stage) => { first[stage] = column; return column + steps; }, 1);
    const last = 1 + width.reduce((a, b) => a + b, 0);
    const columns = Array.from({length: last + 1}, () => []);
    for (const node of nodes) {
      node.column = "IZ".includes(node.kind) ? 0 : "OQ".includes(node.kind) ? last
        : first[node.stage] + node.step;
      columns[node.column].push(node);
    }
    const rows = Math.max(...columns.map((column) => column.length));
    const height = rows * kRow;
    for (const column of columns) {
      for (const node of column) {
        const near = node.operands.map((o) => nodes[o].y);
        node.wish = node.element ?? (near.length ? near.reduce((a, b) => a + b) / near.length : -1);
      }
      column.sort((a, b) => a.wish - b.wish || a.number - b.number);
      column.forEach((node, i) => {
        node.row = i;
        node.x = kSide + node.column * kColumn;
        node.y = kTop + (i + 0.5) * height / column.length;
      });
    }
    return {columns, first, width, size: [2 * kSide + last * kColumn, kTop + height + kSide]};
  }

  const edge = (a, b) => {
    const middle = (a.x + b.x) / 2;
    return `M${a.x} ${a.y.toFixed(1)}C${middle} ${a.y.toFixed(1)} ${middle} ${b.y.toFixed(1)} ` +
      `${b.x} ${b.y.toFixed(1)}`;
  };

  // In words: "sum of 4 and 7".
  function words(node, nodes, stages) {
    const name = (number) => {
      const operand = nodes[number];
      return operand.kind === "I" ? `src[${operand.element}]` : `${operand.number}`;
    };
    const operands = node.lanes
      ? node.lanes.map((lane) => `${name(Math.floor(lane / 4))} lane ${lane % 4}`).join(", ")
      : node.operands.map(name).join(node.kind === "-" ? " less " : " and ");
    const [, what] = kKinds[node.kind];
    if (node.kind === "I") return `src[${node.element}], used ${node.uses.length} times`;
    if ("OQ".includes(node.kind)) return `dst[${node.element}] is ${operands}`;
    const constant = node.constant === undefined ? "" : ` ${node.constant}`;
    return `Value ${node.number}, ${stages[node.stage]}: ${what}${constant}` +
      (operands ? ` of ${operands}` : "");
  }

  // What a stage does, for its row in the table.
  function countsOf(nodes, stages) {
    const counts = stages.map(() => ({sum: 0, product: 0, scale: 0, conversion: 0, move: 0, end: 0}));
    for (const node of nodes) ++counts[node.stage][kKinds[node.kind][0]];
    return counts;
  }

  // A chosen node, the edges around it, and what it is in words. Arrows walk: left to an operand,
  // right to a use, up and down in the column.
  function walker(svg, status, nodes, columns, stages) {
    const mark = draw("g", {class: "chosen"});
    svg.append(mark);
    let chosen;
    const choose = (node) => {
      if (!node) return;
      chosen = node;
      const around = [...node.operands.map((o) => edge(nodes[o], node)),
        ...node.uses.map((u) => edge(node, nodes[u]))].join("");
      mark.replaceChildren(draw("path", {d: around || `M${node.x} ${node.y}`}),
        draw("circle", {cx: node.x, cy: node.y, r: kRadius + 3}));
      status.textContent = words(node, nodes, stages);
    };
    svg.addEventListener("pointerover", (event) => choose(nodes[event.target.dataset?.node]));
    svg.addEventListener("click", (event) => choose(nodes[event.target.dataset?.node]));
    svg.addEventListener("keydown", (event) => {
      const step = {
        ArrowLeft: () => nodes[chosen.operands[0]],
        ArrowRight: () => nodes[chosen.uses[0]],
        ArrowUp: () => columns[chosen.column][chosen.row - 1],
        ArrowDown: () => columns[chosen.column][chosen.row + 1],
      }[event.key];
      if (!step) return;
      event.preventDefault();
      choose(chosen ? step() : nodes[0]);
    });
    svg.addEventListener("focus", () => { if (!chosen) choose(nodes[0]); });
  }

  // Elements of src are used first where the flow begins, in a stage without a name.
  const numberOf = (flow, stage) => stage + (flow.stages[0] === "" ? 0 : 1);

  function bands(layout, flow) {
    return flow.stages.map((name, stage) => {
      if (layout.width[stage] === 0) return undefined;
      const x = kSide + (layout.first[stage] - 0.5) * kColumn;
      const width = layout.width[stage] * kColumn;
      return draw("g", {class: stage % 2 ? "band odd" : "band", "data-stage": stage},
        draw("rect", {x, y: 0, width, height: layout.size[1]}),
        draw("text", {x: x + width / 2, y: 16}, String(numberOf(flow, stage))),
        draw("title", {}, name));
    });
  }

  function picture(nodes, layout, flow, title) {
    const [width, height] = layout.size;
    const edges = flow.stages.map((_, stage) => draw("path", {
      class: "edges", "data-stage": stage,
      d: nodes.filter((node) => node.stage === stage)
        .flatMap((node) => node.operands.map((o) => edge(nodes[o], node))).join("") || undefined,
    }));
    const circles = nodes.map((node) => draw("circle", {
      class: kKinds[node.kind][0], cx: node.x, cy: node.y.toFixed(1), r: kRadius,
      "data-node": node.number, "data-stage": node.stage,
    }));
    return draw("svg", {
      class: "flow", viewBox: `0 0 ${width} ${height}`, width, height, tabindex: "0", role: "application",
      "aria-label": title,
    }, bands(layout, flow), edges, circles);
  }

  // The drawing, its legend and a line that says what the pointer is at.
  function view(kernel, flow) {
    const nodes = nodesOf(flow);
    const layout = place(nodes, flow.stages.length);
    const svg = picture(nodes, layout, flow,
      `Flow of ${kernel.name}: ${nodes.length} values in ${flow.stages.length} stages. ` +
      "Arrow keys walk from value to value.");
    const status = make("p", {class: "status", "aria-live": "polite"},
      "Point at a value, or go there by the arrow keys.");
    walker(svg, status, nodes, layout.columns, flow.stages);
    const zoom = (factor) => {
      svg.setAttribute("width", factor === 0 ? "100%" : layout.size[0] * factor);
      svg.setAttribute("height", factor === 0 ? "auto" : layout.size[1] * factor);
      svg.style.height = factor === 0 ? "auto" : "";
    };
    const sizes = [["Whole width", 0], ["Half size", 0.5], ["Full size", 1], ["Double size", 2]];
    const element = make("div", {class: "flow-view"},
      make("p", {class: "buttons"}, sizes.map(([text, factor]) =>
        make("button", {type: "button", onclick: () => zoom(factor)}, text))),
      make("ul", {class: "legend"}, kLegend.map(([kind, text]) => make("li", {},
        draw("svg", {width: 12, height: 12, viewBox: "0 0 12 12", "aria-hidden": "true"},
          draw("circle", {class: kind, cx: 6, cy: 6, r: 5})), ` ${text}`))),
      make("div", {class: "wide drawing"}, svg), status);
    return {element, svg, counts: countsOf(nodes, flow.stages)};
  }

  // Shows one stage alone, or all (undefined).
  function highlight(svg, stage) {
    svg.classList.toggle("some", stage !== undefined);
    for (const part of svg.querySelectorAll("[data-stage]"))
      part.classList.toggle("on", Number(part.dataset.stage) === stage);
  }

  return {view, highlight, numberOf};
})();
