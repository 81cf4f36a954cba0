// SPDX-License-Identifier: MIT
// The complex binary32 kernels: the shortest on scalars, which take any alignment, from length 6 up
// in lanes.
#include "bluestein.h"
#include "butterflies.h"
#include "families.h"
#include "lane_walk.h"
#include "plan/notation.h"
#include "rader.h"
#include "single_kernels.h"
#include "single_lengths.h"

namespace orvgen::dft {

using kernelgen::Arithmetic;
using kernelgen::Kernel;

Graph scalarFlow(Direction direction, int length) {
    Graph graph(Arithmetic::Single);
    std::vector<Complex<Value>> x;
    for (int n = 0; n < length; ++n)
        x.push_back({Value(graph, graph.input(2 * n)), Value(graph, graph.input(2 * n + 1))});
    const std::vector<Complex<Value>> y = scalarTransform(direction, x);
    for (std::size_t k = 0; k < y.size(); ++k) {
        graph.output(static_cast<int>(2 * k), scaled(y[k].re).id());
        graph.output(static_cast<int>(2 * k + 1), scaled(y[k].im).id());
    }
    return graph;
}

Graph laneFlow(Direction direction, int length) {
    const plan::PlanPtr plan = singleLength(length).plan;
    const auto n = static_cast<std::size_t>(length);
    Graph graph(Arithmetic::SingleLanes);
    Lanes lanes(graph);
    if (const auto* chirp = plan->as<plan::Bluestein>()) {
        lanes.store(bluestein(lanes, *chirp, direction, lanes.load(n + 1)));
    } else if (const auto* prime = plan->as<plan::ComplexRader>()) {
        lanes.store(rader(lanes, *prime, direction, lanes.load(n)));
    } else {
        EmptyLanes leftovers(lanes, direction);
        lanes.store(LaneWalk(lanes, direction, leftovers).run(plan, lanes.load(n)));
    }
    graph.removeDeadNodes();
    return graph;
}

namespace {

Kernel kernel(const FamilyInfo& family, int length) {
    const Direction direction =
        family.direction == orvgen::Direction::Forward ? Direction::Forward : Direction::Inverse;
    const bool scalar = family.alignmentOf(length) == Alignment::Any;
    const SingleLength facts = singleLength(length);
    Kernel k = kernelOf(family, length, plan::notation(*facts.plan),
                        scalar ? scalarFlow(direction, length) : laneFlow(direction, length));
    k.halvesOnly = facts.halvesOnly;
    k.registersOnly = facts.registersOnly;
    return k;
}

}  // namespace

std::vector<KernelFamily> complexSingleFamilies() {
    std::vector<KernelFamily> families;
    for (const FamilyInfo& f : kFamilies)
        if (f.isComplex() && f.isSingle())
            families.push_back({&f, [&f](int n) { return kernel(f, n); }});
    return families;
}

}  // namespace orvgen::dft
