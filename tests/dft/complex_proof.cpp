// SPDX-License-Identifier: MIT
#include "dft/complex_proof.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "kernelgen/evaluate_exactly.h"

namespace orvgen::test {

using flows::Direction;
using kernelgen::cosTurn;
using kernelgen::Graph;
using kernelgen::Node;
using kernelgen::Op;
using kernelgen::Real;
using kernelgen::sinTurn;
using kernelgen::Type;

namespace {

// One complex element per index, or two real ones in scalar flows.
std::set<int> elements(const Graph& graph, Op op) {
    std::set<int> found;
    for (const Node& n : graph.nodes()) {
        if (n.op != op) continue;
        const bool paired = op == Op::Output && n.type == Type::F32Pair;
        if (!found.insert(paired ? graph.pairOutput(n).element : n.index).second)
            throw std::logic_error("an element is accessed twice");
    }
    return found;
}

void requireExactly(const std::set<int>& found, int count) {
    if (found.size() != static_cast<std::size_t>(count) || *found.begin() != 0 ||
        *found.rbegin() != count - 1)
        throw std::logic_error("not exactly the elements of the buffer");
}

}  // namespace

Real complexProofError(const Graph& graph, Direction direction, int length) {
    const int count = graph.elementType() == Type::F32 ? 2 * length : length;
    // Bluestein's kernels read one element beyond the end.
    const bool readsBeyond = elements(graph, Op::Input).contains(length) && count == length;
    if (readsBeyond && length != 47 && length != 59) throw std::logic_error("an over-read");
    requireExactly(elements(graph, Op::Input), count + readsBeyond);
    requireExactly(elements(graph, Op::Output), count);

    Real worst = 0;
    std::vector<Real> unit(2 * static_cast<std::size_t>(length + readsBeyond), Real(0));
    for (int n = 0; n < length; ++n)
        for (const bool imaginary : {false, true}) {
            Real& one = unit[static_cast<std::size_t>(2 * n + imaginary)];
            one = 1;
            const std::vector<Real> y = kernelgen::evaluateExactly(graph, unit);
            one = 0;
            for (int k = 0; k < length; ++k) {
                const long turn = static_cast<long>(n) * k % length;
                const Real c = cosTurn(turn, length).exact().value;
                const Real s = direction == Direction::Forward
                                   ? -sinTurn(turn, length).exact().value
                                   : sinTurn(turn, length).exact().value;
                const Real re = imaginary ? Real(-s) : c;
                const Real im = imaginary ? c : s;
                const auto at = 2 * static_cast<std::size_t>(k);
                worst = std::max({worst, Real(abs(y[at] - re)), Real(abs(y[at + 1] - im))});
            }
        }
    return worst;
}

}  // namespace orvgen::test
