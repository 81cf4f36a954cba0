// SPDX-License-Identifier: MIT
#include "count.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

namespace orvgen::kernelgen {

Counts countOperations(const Graph& graph) {
    Counts c;
    for (const Node& n : graph.nodes()) {
        switch (n.op) {
            case Op::Add:
                ++c.additions;
                break;
            case Op::Sub:
                ++c.additions;
                if (graph.node(n.a).op == Op::Zero) ++c.signSteps;
                break;
            case Op::Mul:
                if (graph.constant(n).lane(0).equals(2))
                    ++c.doublings;
                else
                    ++c.constantProducts;
                break;
            case Op::MulScale:
                ++c.scaleProducts;
                break;
            case Op::Widen:
                if (graph.node(n.a).op != Op::Scale) ++c.widenings;
                break;
            case Op::Narrow:
                ++c.narrowings;
                break;
            case Op::Swap:
                ++c.swaps;
                break;
            case Op::FlipLow:
            case Op::FlipHigh:
                ++c.flips;
                break;
            default:
                break;
        }
    }
    return c;
}

namespace {

// A lane's value up to sign. Identity 0 is the number zero.
struct Symbol {
    int id = 0;
    int sign = 1;
};

// Numbers the values that lanes take, so that equal values have equal numbers.
class Symbols {
  public:
    static constexpr unsigned kReal = 1;
    static constexpr unsigned kImaginary = 2;

    Symbol input(int element, int part) {
        return {number({0, element, part, 0.0}, part == 0 ? kReal : kImaginary).first, 1};
    }

    Symbol sum(const Symbol& a, const Symbol& b) {
        if (a.id == 0) return b;
        if (b.id == 0) return a;
        Symbol first = a;
        Symbol second = b;
        if (first.id > second.id) std::swap(first, second);
        const int relative = first.sign * second.sign;
        const auto [id, isNew] = number({1 + (relative < 0), first.id, second.id, 0.0},
                                        parts(first.id) | parts(second.id));
        if (isNew) ++additions;
        return {id, first.sign};
    }

    Symbol product(const Symbol& a, double c) {
        if (a.id == 0 || c == 0) return {};
        const int sign = c < 0 ? -a.sign : a.sign;
        if (c == 1 || c == -1) return {a.id, sign};
        const auto [id, isNew] = number({3, a.id, 0, c < 0 ? -c : c}, parts(a.id));
        if (isNew) {
            ++multiplications;
            if (parts(a.id) == (kReal | kImaginary)) ++mixed;
        }
        return {id, sign};
    }

    int additions = 0;
    int multiplications = 0;
    int mixed = 0;

  private:
    using Key = std::tuple<int, int, int, double>;

    std::pair<int, bool> number(const Key& key, unsigned parts) {
        const auto [place, isNew] =
            numbers_.try_emplace(key, static_cast<int>(numbers_.size()) + 1);
        if (isNew) parts_.push_back(parts);
        return {place->second, isNew};
    }
    unsigned parts(int id) const { return parts_[static_cast<std::size_t>(id - 1)]; }

    std::map<Key, int> numbers_;
    std::vector<unsigned> parts_;
};

}  // namespace

LaneCounts countLanes(const Graph& graph) {
    if (graph.arithmetic() != Arithmetic::SingleLanes)
        throw std::logic_error("lanes are counted in four-lane graphs");
    LaneCounts c;
    Symbols symbols;
    std::vector<std::array<Symbol, 4>> values(graph.nodes().size());
    const auto valueOf = [&](NodeId id) -> const std::array<Symbol, 4>& {
        return values[static_cast<std::size_t>(id)];
    };
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Node& n = graph.nodes()[i];
        for (std::size_t l = 0; l < 4; ++l) {
            Symbol& v = values[i][l];
            switch (n.op) {
                case Op::Input:
                    if (l < 2) v = symbols.input(n.index, static_cast<int>(l));
                    break;
                case Op::Pack: {
                    const Lane& lane = graph.lanes(n)[l];
                    v = valueOf(lane.node)[static_cast<std::size_t>(lane.lane)];
                    break;
                }
                case Op::Add:
                case Op::Sub: {
                    Symbol second = valueOf(n.b)[l];
                    if (n.op == Op::Sub) second.sign = -second.sign;
                    v = symbols.sum(valueOf(n.a)[l], second);
                    ++c.executedAdditions;
                    if (v.id != 0) ++c.liveAdditions;
                    break;
                }
                case Op::Mul:
                    v = symbols.product(valueOf(n.a)[l],
                                        static_cast<double>(graph.constant(n).lane(l).asFloat()));
                    ++c.executedMultiplications;
                    if (v.id != 0) ++c.liveMultiplications;
                    break;
                default:
                    break;
            }
        }
    }
    c.distinctAdditions = symbols.additions;
    c.distinctMultiplications = symbols.multiplications;
    c.mixedMultiplications = symbols.mixed;
    return c;
}

}  // namespace orvgen::kernelgen
