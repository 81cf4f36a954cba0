// SPDX-License-Identifier: MIT
// The complex binary32 kernels: lengths 2 to 5 on scalars, from 6 up in lanes.
#include "bluestein.h"
#include "butterflies.h"
#include "families.h"
#include "lane_walk.h"
#include "plan/notation.h"
#include "rader.h"
#include "single_kernels.h"
#include "single_lengths.h"

namespace orvgen::dft {

using kernelgen::Alignment;
using kernelgen::Arithmetic;
using kernelgen::Family;
using kernelgen::Kernel;
using kernelgen::ScaleRule;

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

Kernel kernel(const std::string& family, Direction direction, int length) {
    const bool scalar = length <= 5;
    const SingleLength facts = singleLength(length);
    return {
        .name = kernelgen::memberName(family, length),
        .length = length,
        .method = plan::notation(*facts.plan),
        .scale = direction == Direction::Forward ? ScaleRule::ForwardByN : ScaleRule::InverseByN,
        .alignment = scalar ? Alignment::Any : Alignment::Twin,
        .halvesOnly = facts.halvesOnly,
        .readsAllFirst = true,
        .flow = scalar ? scalarFlow(direction, length) : laneFlow(direction, length),
        .registersOnly = facts.registersOnly,
    };
}

Family family(const std::string& name, Direction direction, const std::vector<int>& lengths) {
    return {name, lengths, [name, direction](int n) { return kernel(name, direction, n); }};
}

}  // namespace

std::vector<Family> complexSingleFamilies() {
    std::vector<int> lengths;
    for (int n = 2; n <= 64; ++n) lengths.push_back(n);
    return {family("orvgDFTFwd_CToC_32fc", Direction::Forward, lengths),
            family("orvgDFTInv_CToC_32fc", Direction::Inverse, lengths)};
}

}  // namespace orvgen::dft
