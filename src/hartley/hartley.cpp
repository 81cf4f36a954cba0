// SPDX-License-Identifier: MIT
#include "hartley.h"

#include "transform.h"

namespace orvgen::hartley {

using kernelgen::Graph;
using kernelgen::Value;

template std::vector<Value> transform(int n, const std::vector<Value>& x, Graph* graph);

Graph hartleyGraph(int n, kernelgen::Arithmetic arithmetic) {
    Graph graph(arithmetic);
    std::vector<Value> x;
    for (int t = 0; t < n; ++t) x.emplace_back(graph, graph.input(t));
    const std::vector<Value> h = transform(n, x, &graph);
    graph.stage("scale and store");
    for (int k = 0; k < n; ++k) graph.output(k, scaled(h[static_cast<std::size_t>(k)]).id());
    return graph;
}

}  // namespace orvgen::hartley
