// SPDX-License-Identifier: MIT
#include "support/closed_sets.h"

#include <stdexcept>

#include "flows/number_theory.h"

namespace orvgen::test {

using flows::powerModulo;
using kernelgen::Graph;
using kernelgen::kNone;
using kernelgen::Node;
using kernelgen::NodeId;
using kernelgen::Op;

namespace {

using Set = ElementSet;

Set bit(int element) {
    if (element < 0 || element >= 64) throw std::logic_error("elements 0 to 63 only");
    return Set{1} << element;
}

std::size_t at(NodeId id) { return static_cast<std::size_t>(id); }

void refuseLanes(const Graph& graph) {
    for (const Node& n : graph.nodes())
        if (n.op == Op::Pack) throw std::logic_error("closed sets are a matter of scalar flows");
}

// For each value the elements that it is made of.
std::vector<Set> supports(const Graph& graph) {
    refuseLanes(graph);
    std::vector<Set> made(graph.nodes().size(), 0);
    for (std::size_t i = 0; i < made.size(); ++i) {
        const Node& n = graph.nodes()[i];
        if (n.op == Op::Input) made[i] = bit(n.index);
        if (n.a != kNone) made[i] |= made[at(n.a)];
        if (n.b != kNone) made[i] |= made[at(n.b)];
    }
    return made;
}

// For each value the outputs that it goes into.
std::vector<Set> consumers(const Graph& graph) {
    refuseLanes(graph);
    std::vector<Set> goes(graph.nodes().size(), 0);
    for (std::size_t i = goes.size(); i-- > 0;) {
        const Node& n = graph.nodes()[i];
        if (n.op == Op::Output) goes[i] = bit(n.index);
        if (n.a != kNone) goes[at(n.a)] |= goes[i];
        if (n.b != kNone) goes[at(n.b)] |= goes[i];
    }
    return goes;
}

// Whether some of the sets, all of one size, cover `rest` exactly and without overlap.
bool divide(Set rest, const std::vector<Set>& sets) {
    if (rest == 0) return true;
    const Set lowest = rest & (~rest + 1);
    for (const Set s : sets)
        if ((s & lowest) != 0 && (s & ~rest) == 0 && divide(rest & ~s, sets)) return true;
    return false;
}

std::vector<long> sizes(const std::vector<Set>& found, int first, int length) {
    Set all = 0;
    for (int i = first; i < length; ++i) all |= bit(i);
    const std::set<Set> distinct(found.begin(), found.end());
    std::vector<long> result;
    const int count = length - first;
    for (int d = 2; d < count; ++d) {
        if (count % d != 0) continue;
        std::vector<Set> sets;
        for (const Set s : distinct)
            if ((s & ~all) == 0 && __builtin_popcountll(s) == d) sets.push_back(s);
        if (divide(all, sets)) result.push_back(d);
    }
    return result;
}

}  // namespace

ElementSet elementSet(const std::vector<int>& elements) {
    Set set = 0;
    for (const int e : elements) set |= bit(e);
    return set;
}

std::set<ElementSet> inputSets(const Graph& graph) {
    const std::vector<Set> sets = supports(graph);
    return {sets.begin(), sets.end()};
}

std::set<ElementSet> outputSets(const Graph& graph) {
    const std::vector<Set> sets = consumers(graph);
    return {sets.begin(), sets.end()};
}

std::vector<long> closedInputSets(const Graph& graph, int first, int length) {
    return sizes(supports(graph), first, length);
}

std::vector<long> closedOutputSets(const Graph& graph, int first, int length) {
    return sizes(consumers(graph), first, length);
}

std::vector<ElementSet> evenSets(int d, int length) {
    std::set<Set> sets;
    for (int first = firstOfSets(length); first < length; ++first) {
        Set set = 0;
        for (int e = firstOfSets(length); e < length; ++e) {
            // a prime: e/first is of the subgroup if its power d is 1
            const bool together = firstOfSets(length) == 0
                                      ? (e - first) % (length / d) == 0
                                      : powerModulo(e, d, length) == powerModulo(first, d, length);
            if (together) set |= bit(e);
        }
        sets.insert(set);
    }
    return {sets.begin(), sets.end()};
}

int firstOfSets(int length) {
    for (int d = 2; d * d <= length; ++d)
        if (length % d == 0) return 0;
    return 1;
}

}  // namespace orvgen::test
