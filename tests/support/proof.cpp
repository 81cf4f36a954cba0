// SPDX-License-Identifier: MIT
#include "support/proof.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <stdexcept>

#include "kernelgen/evaluate_exactly.h"

namespace orvgen::test {

using kernelgen::cosTurn;
using kernelgen::Graph;
using kernelgen::Node;
using kernelgen::Op;
using kernelgen::sinTurn;

namespace {

std::vector<int> elements(const Graph& graph, Op op) {
    std::set<int> found;
    for (const Node& n : graph.nodes())
        if (n.op == op) found.insert(n.index);
    return {found.begin(), found.end()};
}

// nk modulo N, so that coefficients which are equal are equal in every digit.
long turn(int length, int n, int k) { return static_cast<long>(n) * k % length; }

}  // namespace

std::vector<int> elementsRead(const Graph& graph) { return elements(graph, Op::Input); }
std::vector<int> elementsWritten(const Graph& graph) { return elements(graph, Op::Output); }

Real proofError(const Graph& graph, int inputs, int outputs, const Matrix& matrix) {
    const std::vector<int> read = elementsRead(graph);
    if (!read.empty() && read.back() >= inputs)
        throw std::logic_error("the flow reads element " + std::to_string(read.back()));
    std::vector<int> all(static_cast<std::size_t>(outputs));
    std::iota(all.begin(), all.end(), 0);
    if (elementsWritten(graph) != all)
        throw std::logic_error("the flow does not write exactly " + std::to_string(outputs) +
                               " elements");
    Real worst = 0;
    std::vector<Real> unit(static_cast<std::size_t>(inputs), Real(0));
    for (int i = 0; i < inputs; ++i) {
        unit[static_cast<std::size_t>(i)] = 1;
        const std::vector<Real> column = kernelgen::evaluateExactly(graph, unit);
        for (int o = 0; o < outputs; ++o)
            worst = std::max(worst, Real(abs(column[static_cast<std::size_t>(o)] - matrix(o, i))));
        unit[static_cast<std::size_t>(i)] = 0;
    }
    return worst;
}

Real forwardCoefficient(int length, const Term& term, int sample) {
    const long t = turn(length, sample, term.bin);
    return term.imaginary ? -sinTurn(t, length).exact().value : cosTurn(t, length).exact().value;
}

Real inverseCoefficient(int length, int sample, const Term& term) {
    const bool alone = term.bin == 0 || 2 * term.bin == length;
    if (alone && term.imaginary) return 0;
    const long t = turn(length, sample, term.bin);
    const Real c =
        term.imaginary ? -sinTurn(t, length).exact().value : cosTurn(t, length).exact().value;
    return alone ? c : Real(2 * c);
}

Real hartleyCoefficient(int length, int bin, int sample) {
    const long t = turn(length, sample, bin);
    return cosTurn(t, length).exact().value + sinTurn(t, length).exact().value;
}

}  // namespace orvgen::test
