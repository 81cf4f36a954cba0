// SPDX-License-Identifier: MIT
#include "scalars.h"

#include <array>
#include <bit>
#include <stdexcept>

#include "lower.h"

namespace orvgen::kernelgen {

namespace {

// Where lane `lane` of an element stands.
int slotOf(int element, int lane, int lanes, Layout layout) {
    if (lanes == 2) return lane * kImaginarySlots + element;
    if (layout == Layout::Real) return element;
    if (layout == Layout::PackedBins && element > 0) ++element;
    return element % 2 * kImaginarySlots + element / 2;
}

}  // namespace

Scalars::Scalars(const Graph& graph, const WideOptions& options)
    : graph_(graph), options_(options) {
    values_.resize(graph.nodes().size());
    for (std::size_t i = 0; i < graph.nodes().size(); ++i) expand(i);
    for (const Output& o : outputs_) kept_.push_back(o.value);
    if (graph.arithmetic() == Arithmetic::SingleLanes) addIdleLanes();
    dropUnused();
}

int Scalars::intern(Scalar s) {
    s.stage = stage_;
    const auto keyOf = [&](int a, int b) {
        return Key{s.kind, s.isDouble, a, b, s.slot, std::bit_cast<std::uint64_t>(s.constant)};
    };
    const auto find = [&](int a, int b) {
        const auto found = interned_.find(keyOf(a, b));
        return found == interned_.end() ? -1 : found->second;
    };
    if (const int i = find(s.a, s.b); i >= 0) return i;
    if (s.kind == Kind::Add)
        if (const int i = find(s.b, s.a); i >= 0) return i;
    const int id = static_cast<int>(list_.size());
    interned_.emplace(keyOf(s.a, s.b), id);
    list_.push_back(std::move(s));
    return id;
}

// The number with its sign taken.
int Scalars::plain(Signed s) {
    if (!s.negative) return s.value;
    return intern({.kind = Kind::Negate, .isDouble = at(s.value).isDouble, .a = s.value});
}

Signed Scalars::zero(bool isDouble) {
    return {intern({.kind = Kind::Zero, .isDouble = isDouble}), false};
}

Signed Scalars::input(int element, int lane, int lanes, bool isDouble) {
    if (lanes == 2 && element >= options_.length) return zero(isDouble);
    return {intern({.kind = Kind::Input,
                    .isDouble = isDouble,
                    .slot = slotOf(element, lane, lanes, options_.src)}),
            false};
}

Signed Scalars::sum(Signed x, Signed y) {
    const bool isDouble = at(x.value).isDouble;
    if (x.negative && y.negative) x = {plain(x), false};
    if (x.negative) std::swap(x, y);
    const Kind kind = y.negative ? Kind::Sub : Kind::Add;
    return {intern({.kind = kind, .isDouble = isDouble, .a = x.value, .b = y.value}), false};
}

Signed Scalars::product(Signed x, double value, std::string formula, bool isDouble) {
    const bool isInput = at(x.value).kind == Kind::Input;
    if ((value == 1 || value == -1) && !isInput) return value < 0 ? -x : x;
    if (x.negative) {
        value = -value;
        formula = "-(" + formula + ")";
    }
    return {intern({.kind = Kind::Mul,
                    .isDouble = isDouble,
                    .a = x.value,
                    .constant = value,
                    .formula = std::move(formula)}),
            false};
}

int Scalars::scaled(Signed x, bool isDouble) {
    return intern({.kind = Kind::Scale, .isDouble = isDouble, .a = plain(x)});
}

void Scalars::expand(std::size_t i) {
    const Node& n = graph_.nodes()[i];
    stage_ = n.stage;
    if (n.op == Op::Output) return output(n);
    for (int l = 0; l < lanesOf(n.type); ++l) values_[i].push_back(expandLane(n, l));
}

Signed Scalars::expandLane(const Node& n, int l) {
    const bool isDouble = !isSingle(n.type);
    const auto lane = static_cast<std::size_t>(l);
    const auto operand = [&](NodeId id, std::size_t which) {
        return values_[static_cast<std::size_t>(id)][which];
    };
    switch (n.op) {
        case Op::Input:
            return input(n.index, l, lanesOf(n.type), isDouble);
        case Op::Zero:
            return zero(isDouble);
        case Op::Pack: {
            const Lane& from = graph_.lanes(n)[lane];
            return operand(from.node, static_cast<std::size_t>(from.lane));
        }
        case Op::Add:
            return sum(operand(n.a, lane), operand(n.b, lane));
        case Op::Sub:
            return sum(operand(n.a, lane), -operand(n.b, lane));
        case Op::Mul: {
            const Constant& c = graph_.constant(n).lane(lane);
            return product(operand(n.a, lane),
                           isDouble ? c.asDouble() : static_cast<double>(c.asFloat()), c.formula(),
                           isDouble);
        }
        case Op::MulScale:
            return {scaled(operand(n.a, lane), isDouble), false};
        case Op::Widen:
            if (graph_.node(n.a).op == Op::Scale) return {};
            return {intern({.kind = Kind::Widen, .isDouble = true, .a = plain(operand(n.a, 0))}),
                    false};
        case Op::Narrow:
            return {intern({.kind = Kind::Narrow, .a = plain(operand(n.a, 0))}), false};
        case Op::Swap:
            return operand(n.a, 1 - lane);
        case Op::FlipLow:
        case Op::FlipHigh: {
            const bool flips = (n.op == Op::FlipHigh) == (l == 1);
            const Signed x = operand(n.a, lane);
            return flips ? -x : x;
        }
        case Op::Scale:
        case Op::Output:
            return {};
    }
    throw std::logic_error("unknown operation");
}

void Scalars::output(const Node& n) {
    if (n.type == Type::F32Pair) {
        const Graph::PairOutput& pair = graph_.pairOutput(n);
        int part = 0;
        for (const Lane& lane : {pair.re, pair.im}) {
            const Signed x =
                values_[static_cast<std::size_t>(lane.node)][static_cast<std::size_t>(lane.lane)];
            outputs_.push_back(
                {slotOf(pair.element, part++, 2, Layout::Complex), scaled(x, false), stage_});
        }
        return;
    }
    // The zeros of a half spectrum are the caller's.
    if (graph_.node(n.a).op == Op::Zero) return;
    const int lanes = lanesOf(n.type);
    for (int l = 0; l < lanes; ++l)
        outputs_.push_back(
            {slotOf(n.index, l, lanes, options_.dst),
             plain(values_[static_cast<std::size_t>(n.a)][static_cast<std::size_t>(l)]), stage_});
}

// What a lane of the single kernel computes. `exact` is a number that it equals but for the sign of
// a zero, if there is one, with no exception raised on the way: it stands for what only idle lanes
// compute.
Signed Scalars::laneResult(Signed computed, std::optional<Signed> exact) {
    if (isNeeded(computed)) return computed;
    if (exact) return *exact;
    kept_.push_back(computed.value);
    return computed;
}

// Zero and a computed number; an input may be denormal, and is flushed by a sum.
Signed Scalars::laneSum(Signed x, Signed y) {
    const Signed computed = sum(x, y);
    if (isZero(x)) std::swap(x, y);
    const bool isExact = isZero(y) && at(x.value).kind != Kind::Input;
    return laneResult(computed, isExact ? std::optional(x) : std::nullopt);
}

Signed Scalars::laneProduct(Signed x, Signed computed) {
    return laneResult(computed, isZero(x) ? std::optional(x) : std::nullopt);
}

Scalars::Lanes Scalars::loadedLanes(const Instruction& i) {
    const auto element = [&](const Address& address) {
        return std::array<Signed, 2>{input(address.offset / 8, 0, 2, false),
                                     input(address.offset / 8, 1, 2, false)};
    };
    const auto x = element(i.address);
    if (i.op == Opcode::LoadHalf) return {x[0], x[1], zero(false), zero(false)};
    const auto y =
        element(i.op == Opcode::LoadHalves ? i.high : Address{Base::Src, i.address.offset + 8});
    return {x[0], x[1], y[0], y[1]};
}

namespace {

// What a shuffle of four lanes makes of two vectors.
std::array<Signed, 4> shuffled(const Instruction& i, const std::array<Signed, 4>& a,
                               const std::array<Signed, 4>& b) {
    switch (i.op) {
        case Opcode::Shufps: {
            const auto lane = [&](int l) {
                return static_cast<std::size_t>(i.immediate >> 2 * l & 3);
            };
            return {a[lane(0)], a[lane(1)], b[lane(2)], b[lane(3)]};
        }
        case Opcode::Unpcklps:
            return {a[0], b[0], a[1], b[1]};
        case Opcode::Unpckhps:
            return {a[2], b[2], a[3], b[3]};
        case Opcode::Movlhps:
            return {a[0], a[1], b[0], b[1]};
        case Opcode::Movhlps:
            return {b[2], b[3], a[2], a[3]};
        default:
            throw std::logic_error("not an instruction of a four-lane kernel");
    }
}

}  // namespace

// What the single kernel's own instructions do in each of their four lanes. Most of it is there
// already.
void Scalars::addIdleLanes() {
    needed_ = withOperands(kept_);
    const Code code = lowerLanes(graph_, {options_.halvesOnly});
    std::vector<Lanes> registers(static_cast<std::size_t>(code.registers));
    Register scale = kNoRegister;
    const auto lanesIn = [&](Register r) {
        return r == kNoRegister ? Lanes{} : registers[static_cast<std::size_t>(r)];
    };
    const auto each = [](const auto& result) {
        return Lanes{result(0), result(1), result(2), result(3)};
    };
    const auto valueOf = [&](const Instruction& i) -> Lanes {
        const Lanes a = lanesIn(i.a), b = lanesIn(i.b);
        switch (i.op) {
            case Opcode::SpreadSS:
                scale = i.dst;
                return {};
            case Opcode::Zero:
                return each([&](std::size_t) { return zero(false); });
            case Opcode::LoadHalf:
            case Opcode::Load16:
            case Opcode::LoadHalves:
                return loadedLanes(i);
            case Opcode::AddPS:
                return each([&](std::size_t l) { return laneSum(a[l], b[l]); });
            case Opcode::SubPS:
                return each([&](std::size_t l) { return laneSum(a[l], -b[l]); });
            case Opcode::MulPS:
                if (i.b != kNoRegister && i.b == scale)
                    return each([&](std::size_t l) {
                        return laneProduct(a[l], Signed{scaled(a[l], false), false});
                    });
                return each([&](std::size_t l) {
                    const PoolEntry& c = code.pool[static_cast<std::size_t>(i.address.offset)];
                    return laneProduct(a[l], product(a[l], c.lanes[l], "in an idle lane", false));
                });
            default:
                return shuffled(i, a, b);
        }
    };
    for (const Instruction& i : code.instructions) {
        if (isStore(i.op)) continue;
        stage_ = i.stage;
        registers[static_cast<std::size_t>(i.dst)] = valueOf(i);
    }
}

std::vector<bool> Scalars::withOperands(const std::vector<int>& numbers) const {
    std::vector<bool> used(list_.size(), false);
    const auto use = [&](int i) {
        if (i >= 0) used[static_cast<std::size_t>(i)] = true;
    };
    for (const int i : numbers) use(i);
    for (std::size_t i = list_.size(); i-- > 0;) {
        if (!used[i]) continue;
        use(list_[i].a);
        use(list_[i].b);
    }
    return used;
}

void Scalars::dropUnused() {
    const std::vector<bool> used = withOperands(kept_);
    std::vector<int> renamed(list_.size(), -1);
    std::vector<Scalar> kept;
    for (std::size_t i = 0; i < list_.size(); ++i) {
        if (!used[i]) continue;
        Scalar s = list_[i];
        for (int* operand : {&s.a, &s.b})
            if (*operand >= 0) *operand = renamed[static_cast<std::size_t>(*operand)];
        renamed[i] = static_cast<int>(kept.size());
        kept.push_back(std::move(s));
    }
    list_ = std::move(kept);
    for (Output& o : outputs_) o.value = renamed[static_cast<std::size_t>(o.value)];
}

}  // namespace orvgen::kernelgen
