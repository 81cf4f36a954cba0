// SPDX-License-Identifier: MIT
// The page of one kernel.
"use strict";

explorer.kernelView = (() => {
  const {make, table, number, options} = explorer.elements;
  const at = (id) => document.getElementById(id);

  const section = (id, title, ...content) => make("section", {"aria-labelledby": id},
    make("h2", {id}, title), ...content);

  function summary(kernel) {
    const what = explorer.isPerOrder(kernel) ? `order ${kernel.length}, ${kernel.points} points`
      : `${kernel.length} points`;
    return make("p", {}, `${explorer.transforms[kernel.transform]}, ${what}, type ` +
      `${explorer.types[kernel.type]}. Definition and layout: `,
      make("a", {href: `../${explorer.pagesOf[kernel.transform]}`},
        "the page of the family"), ".");
  }

  function branch(node) {
    const text = [node.role === undefined ? undefined : make("span", {class: "role"}, `${node.role}: `),
      node.what, node.plan === undefined ? undefined : make("code", {}, node.plan)];
    if (!node.parts) return make("li", {}, text);
    return make("li", {}, make("details", {open: true}, make("summary", {}, text),
      make("ul", {}, node.parts.map(branch))));
  }

  const plan = (kernel, page) => section("plan", "Plan",
    make("p", {}, "Computed as ", make("code", {}, kernel.plan), "; ",
      make("a", {href: "../docs/plans.html"}, "the notation"), "."),
    make("ul", {class: "tree"}, branch(page.tree)));

  function operations(kernel, page) {
    const o = page.operations;
    const rows = [
      ["Additions and subtractions", o.additions, "of these " + number(o.signSteps) + " sign steps"],
      ["Products by constants", o.constantProducts, ""],
      ["Doublings", o.doublings, ""],
      ["Products by the scale", o.scaleProducts, ""],
      ["Conversions", o.conversions, ""],
    ];
    const notes = [];
    if (o.inPairs) notes.push("Real and imaginary parts share a vector: two operations in an instruction.");
    if (o.executedAdditions !== undefined) {
      notes.push("Counted are operations on distinct values. In the four lanes together " +
        `${number(o.executedAdditions)} additions and ${number(o.executedProducts)} products run. ` +
        "The scale is multiplied in where results are stored; the drawing leaves that out.");
    }
    return [table("Real operations of the kernel", ["Operation", "Number", ""], rows),
      ...notes.map((note) => make("p", {}, note)),
      ...page.tables.map(([name, text]) => make("p", {}, `The design, in the table ${name}: ${text}.`))];
  }

  const kClaims = {
    "lower bound": "lower bound: no algorithm takes fewer",
    "fewest known": "fewest known to us at this length",
    "known method": "count of a known method",
  };

  function known(kernel, page) {
    const rows = page.known.map((k) => {
      const condition = k.holds ? k.condition
        : `${k.condition}: does not hold here, the largest is ${number(page.largestConstant)}`;
      return [k.counted, k.ours, k.count, k.holds && k.count > 0 ? k.ours / k.count : "",
        kClaims[k.claim], condition, k.source];
    });
    const growing = make("p", {}, "With growing length fewer are known to be enough (Alman and Rao, Faster " +
      "Walsh-Hadamard and discrete Fourier transforms from matrix non-rigidity, STOC 2023), by an " +
      "unknown number at short ones.");
    const missing = page.known.some((k) => k.claim === "fewest known") ? growing
      : make("p", {}, "No count of the fewest known operations is cited for this length.");
    return [
      make("p", {}, "Here the scale is left out, signs are free, and a doubling is an addition. " +
        "A bound on one kind of operation lets the other kind be as many as it likes, so that no " +
        "algorithm need meet both."),
      table("Operations beside what the literature knows",
        ["Counted", "Here", "Known", "Ratio", "Kind of claim", "Condition", "Source"], rows),
      missing,
    ];
  }

  function measurements(kernel) {
    const {libraries} = explorer.measurement;
    const rows = [["By the model", kernel.model, "mean of two models of wide cores"],
      ["Port bound of the model", kernel.bound, "what the ports allow for these operations"]];
    if (kernel.cycles !== undefined) {
      rows.push(["Measured", kernel.cycles, "of calls in long bursts"]);
      if (kernel.coreBound)
        rows.push(["Bound on that core", kernel.coreBound, "by its measured port table"]);
      if (kernel.secondBuild)
        rows.push(["Measured, build for x86-64-v3", kernel.secondBuild, "the same calls"]);
      (kernel.others ?? []).forEach((cycles, i) => {
        if (cycles !== null)
          rows.push([libraries[i], cycles, `${number(cycles / kernel.cycles)} times ours`]);
      });
    }
    return [
      table("Cycles of a call", ["Cycles", "Number", ""], rows),
      kernel.cycles === undefined
        ? make("p", {}, "No measurement was there when the site was built; ",
          make("code", {}, `./dev bench ${kernel.name.slice(4)}`), " makes one.") : undefined,
    ];
  }

  const figures = (kernel, page) => section("figures", "Figures",
    table("Code and precision", ["Figure", "Number", ""], [
      ["Instructions", kernel.instructions, "of the body for aligned buffers"],
      ["Spills", kernel.spills, "values that wait on the stack"],
      ["Frame", kernel.frame, "bytes"],
      ["Error, measured", kernel.error, "u, relative in the L2 norm, over random inputs"],
      ["Error, bound", kernel.errorBound,
        `u, of the worst output, inputs of at most 1; that output is at most ${number(page.magnitude)}`],
    ]), ...measurements(kernel));

  // Buttons that show one stage alone, in the drawing and in the assembly.
  function stageTable(flow, counts, choose) {
    const buttons = flow.stages.map((name, stage) => make("button",
      {type: "button", "aria-pressed": "false", onclick: () => choose(stage)},
      `${explorer.flow.numberOf(flow, stage)}  ${name || "start"}`));
    const rows = counts.map((c, stage) =>
      [buttons[stage], c.sum, c.product, c.scale, c.conversion, c.move]);
    const filled = rows.filter((row) => row.slice(1).some((count) => count > 0));
    return {buttons, element: table("Values of each stage; choose one to see it alone",
      ["Stage", "Sums", "Products", "By the scale", "Conversions", "Lanes, signs"], filled)};
  }

  function drawn(kernel, page) {
    const flow = page.flow;
    if (!flow) {
      const assembly = explorer.assembly.view(kernel, page.assembly, []);
      return [section("flow", "Flow", make("p", {},
        "The kernel is loops over its buffer; the passes stand above. The drawing of all layers is " +
        "there up to 128 points.")), section("assembly", "Assembly", assembly.element)];
    }
    const drawing = explorer.flow.view(kernel, flow);
    const assembly = explorer.assembly.view(kernel, page.assembly, flow.stages);
    let chosen;
    const choose = (stage) => {
      chosen = chosen === stage ? undefined : stage;
      explorer.flow.highlight(drawing.svg, chosen);
      explorer.assembly.highlight(assembly.element,
        chosen === undefined ? undefined : flow.stages[chosen]);
      stages.buttons.forEach((button, i) => button.setAttribute("aria-pressed", i === chosen));
    };
    const stages = stageTable(flow, drawing.counts, choose);
    return [
      section("flow", "Flow", stages.element, drawing.element),
      section("assembly", "Assembly",
        make("p", {}, "As the build emitted it for the first build of the library. The compiler " +
          "mixes the stages to keep all units of the core busy; comments say which one a line " +
          "belongs to."), assembly.element),
    ];
  }

  // The other kernels by transform, length and type; a type that a transform does not have gives
  // way to one that it has.
  function chooser(kernel) {
    const transforms = [...new Set(explorer.list.map((k) => k.transform))];
    const same = explorer.list.filter((k) => k.transform === kernel.transform);
    options(at("choose-transform"), transforms.map((t) => [t, explorer.transforms[t]]),
      kernel.transform);
    options(at("choose-length"), same.filter((k) => k.type === kernel.type)
      .map((k) => [k.length, explorer.isPerOrder(k) ? `order ${k.length}` : k.length]), kernel.length);
    options(at("choose-type"), [...new Set(same.map((k) => k.type))]
      .map((t) => [t, explorer.types[t]]), kernel.type);
    for (const [id, step] of [["previous", -1], ["next", 1]]) {
      const name = nameOf(kernel.transform, kernel.length + step, kernel.type);
      at(id).disabled = !explorer.byName.has(name);
      at(id).onclick = () => { location.hash = name; };
    }
  }

  const nameOf = (transform, length, type) => `orvg${transform}_${length}_${type}`;

  function chosenName() {
    const transform = at("choose-transform").value;
    const [length, type] = [Number(at("choose-length").value), at("choose-type").value];
    const candidates = explorer.list.filter((k) => k.transform === transform);
    const distance = (k) => 100 * Math.abs(k.length - length) +
      (k.type === type ? 0 : k.type.slice(0, 2) === type.slice(0, 2) ? 1 : 2);
    return candidates.reduce((best, k) => distance(k) < distance(best) ? k : best).name;
  }

  function start() {
    at("chooser").addEventListener("submit", (event) => event.preventDefault());
    at("chooser").addEventListener("change", () => { location.hash = chosenName(); });
  }

  async function show(name) {
    const kernel = explorer.byName.get(name);
    // Long names break behind an underscore.
    at("kernel-title").replaceChildren(...name.split(/(?<=_)/).flatMap((part) => [part, make("wbr")]));
    at("page").replaceChildren(make("p", {}, "Loading …"));
    if (!kernel) {
      at("page").replaceChildren(make("p", {}, `There is no kernel ${name}. `,
        make("a", {href: "#"}, "All kernels")));
      return;
    }
    chooser(kernel);
    let page;
    try {
      page = await explorer.load(name);
    } catch (error) {
      at("page").replaceChildren(make("p", {role: "alert"}, `${error.message}.`));
      return;
    }
    if (at("kernel-title").textContent !== name) return;  // another one was chosen meanwhile
    at("page").replaceChildren(summary(kernel), figures(kernel, page), plan(kernel, page),
      section("operations", "Operations", ...operations(kernel, page),
        ...known(kernel, page).filter(Boolean)), ...drawn(kernel, page));
    at("page").dataset.shown = name;
  }

  return {start, show};
})();
