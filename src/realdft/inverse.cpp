// SPDX-License-Identifier: MIT
#include "inverse.h"

namespace orvgen::realdft {

using kernelgen::Graph;
using kernelgen::Value;

Graph inverseGraph(int n, PackedFormat format, kernelgen::Arithmetic arithmetic) {
    Graph graph(arithmetic);
    const flows::Sequence<Value> bins =
        packedBins<Value>(n, format, [&](int i) { return Value(graph, graph.input(i)); });
    const std::vector<Value> y = inverseSamples(*inversePlans(format).plan(n), bins, &graph);
    graph.stage("scale and store");
    for (int t = 0; t < n; ++t) graph.output(t, scaled(y[static_cast<std::size_t>(t)]).id());
    return graph;
}

}  // namespace orvgen::realdft
