// SPDX-License-Identifier: MIT
#include "forward.h"

namespace orvgen::realdft {

using kernelgen::Arithmetic;
using kernelgen::Graph;
using kernelgen::Value;

Graph forwardGraph(int n, PackedFormat format, Arithmetic arithmetic) {
    Graph graph(arithmetic);
    std::vector<Value> x;
    for (int t = 0; t < n; ++t) x.emplace_back(graph, graph.input(t));
    const flows::Sequence<Value> bins = forwardBins(n, x, &graph);
    graph.stage("scale and store");
    const auto scale = [](const Value& v) { return scaled(v); };
    for (const auto& term : forwardTerms(bins, scale)) {
        const int place = term.isImaginary ? imaginaryPosition(format, n, term.bin)
                                           : realPosition(format, n, term.bin);
        graph.output(place, term.value.id());
    }
    for (const int place : zeroPositions(format, n))
        graph.output(place, graph.zero(graph.elementType()));
    return graph;
}

}  // namespace orvgen::realdft
