// SPDX-License-Identifier: MIT
#include "lower_wide.h"

#include <bit>
#include <map>
#include <stdexcept>
#include <tuple>

#include "lower.h"

namespace orvgen::kernelgen {

namespace {

// One real number that the transform computes.
struct Scalar {
    enum class Kind : std::uint8_t { Input, Zero, Add, Sub, Mul, Scale, Negate, Widen, Narrow };
    Kind kind;
    bool isDouble = false;
    int a = -1, b = -1;
    int slot = 0;              // of an input
    double constant = 0;       // of a product
    std::string formula = {};  // of the constant
    int stage = 0;
};

// A number with a minus sign that is still to be taken.
struct Signed {
    int value = -1;
    bool negative = false;
    Signed operator-() const { return {value, !negative}; }
};

// The graph taken apart into real numbers.
class Scalars {
  public:
    Scalars(const Graph& graph, const WideOptions& options) : graph_(graph), options_(options) {
        values_.resize(graph.nodes().size());
        for (std::size_t i = 0; i < graph.nodes().size(); ++i) expand(i);
        dropUnused();
    }

    struct Output {
        int slot;
        int value;
        int stage;
    };
    const std::vector<Scalar>& list() const { return list_; }
    const std::vector<Output>& outputs() const { return outputs_; }

  private:
    using Kind = Scalar::Kind;

    const Scalar& at(int i) const { return list_[static_cast<std::size_t>(i)]; }

    using Key = std::tuple<Kind, bool, int, int, int, std::uint64_t>;
    static Key keyOf(const Scalar& s, int a, int b) {
        return {s.kind, s.isDouble, a, b, s.slot, std::bit_cast<std::uint64_t>(s.constant)};
    }

    int intern(Scalar s) {
        s.stage = stage_;
        const auto find = [&](int a, int b) {
            const auto found = interned_.find(keyOf(s, a, b));
            return found == interned_.end() ? -1 : found->second;
        };
        if (const int i = find(s.a, s.b); i >= 0) return i;
        if (s.kind == Kind::Add)
            if (const int i = find(s.b, s.a); i >= 0) return i;
        list_.push_back(s);
        const int id = static_cast<int>(list_.size()) - 1;
        interned_.emplace(keyOf(s, s.a, s.b), id);
        return id;
    }

    // The number with its sign taken.
    int plain(Signed s) {
        if (!s.negative) return s.value;
        return intern({.kind = Kind::Negate, .isDouble = at(s.value).isDouble, .a = s.value});
    }

    Signed sum(Signed x, Signed y) {
        const bool isDouble = at(x.value).isDouble;
        if (x.negative && y.negative) x = {plain(x), false};
        if (x.negative) std::swap(x, y);
        const Kind kind = y.negative ? Kind::Sub : Kind::Add;
        return {intern({.kind = kind, .isDouble = isDouble, .a = x.value, .b = y.value}), false};
    }

    Signed product(Signed x, const Constant& c, bool isDouble) {
        double value = isDouble ? c.asDouble() : static_cast<double>(c.asFloat());
        const bool isInput = at(x.value).kind == Kind::Input;
        if ((value == 1 || value == -1) && !isInput) return value < 0 ? -x : x;
        std::string formula = c.formula();
        if (x.negative) {
            value = -value;
            formula = "-(" + formula + ")";
        }
        return {intern({.kind = Kind::Mul,
                        .isDouble = isDouble,
                        .a = x.value,
                        .constant = value,
                        .formula = formula}),
                false};
    }

    // Where lane `lane` of an element stands.
    static int slotOf(int element, int lane, int lanes, Layout layout) {
        if (lanes == 2) return lane * kImaginarySlots + element;
        if (layout == Layout::Real) return element;
        if (layout == Layout::PackedBins && element > 0) ++element;
        return element % 2 * kImaginarySlots + element / 2;
    }

    void expand(std::size_t i) {
        const Node& n = graph_.nodes()[i];
        stage_ = n.stage;
        if (n.op == Op::Output) return output(n);
        const int lanes = lanesOf(n.type);
        const bool isDouble = !isSingle(n.type);
        std::vector<Signed>& result = values_[i];
        for (int l = 0; l < lanes; ++l) {
            const auto lane = static_cast<std::size_t>(l);
            const auto operand = [&](NodeId id, std::size_t at) {
                return values_[static_cast<std::size_t>(id)][at];
            };
            result.push_back([&]() -> Signed {
                switch (n.op) {
                    case Op::Input:
                        if (lanes == 2 && n.index >= options_.length)
                            return {intern({.kind = Kind::Zero, .isDouble = isDouble}), false};
                        return {intern({.kind = Kind::Input,
                                        .isDouble = isDouble,
                                        .slot = slotOf(n.index, l, lanes, options_.src)}),
                                false};
                    case Op::Zero:
                        return {intern({.kind = Kind::Zero, .isDouble = isDouble}), false};
                    case Op::Pack: {
                        const Lane& from = graph_.lanes(n)[lane];
                        return operand(from.node, static_cast<std::size_t>(from.lane));
                    }
                    case Op::Add:
                        return sum(operand(n.a, lane), operand(n.b, lane));
                    case Op::Sub:
                        return sum(operand(n.a, lane), -operand(n.b, lane));
                    case Op::Mul:
                        return product(operand(n.a, lane), graph_.constant(n).lane(lane), isDouble);
                    case Op::MulScale:
                        return {scaled(operand(n.a, lane), isDouble), false};
                    case Op::Widen:
                        if (graph_.node(n.a).op == Op::Scale) return {};
                        return {intern({.kind = Kind::Widen,
                                        .isDouble = true,
                                        .a = plain(operand(n.a, 0))}),
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
            }());
        }
    }

    int scaled(Signed x, bool isDouble) {
        return intern({.kind = Kind::Scale, .isDouble = isDouble, .a = plain(x)});
    }

    void output(const Node& n) {
        if (n.type == Type::F32Pair) {
            const Graph::PairOutput& pair = graph_.pairOutput(n);
            int part = 0;
            for (const Lane& lane : {pair.re, pair.im}) {
                const Signed x = values_[static_cast<std::size_t>(lane.node)]
                                        [static_cast<std::size_t>(lane.lane)];
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
                 plain(values_[static_cast<std::size_t>(n.a)][static_cast<std::size_t>(l)]),
                 stage_});
    }

    void dropUnused() {
        std::vector<bool> used(list_.size(), false);
        const auto use = [&](int i) {
            if (i >= 0) used[static_cast<std::size_t>(i)] = true;
        };
        for (const Output& o : outputs_) use(o.value);
        for (std::size_t i = list_.size(); i-- > 0;) {
            if (!used[i]) continue;
            use(list_[i].a);
            use(list_[i].b);
        }
        std::vector<int> renamed(list_.size(), -1);
        std::vector<Scalar> kept;
        for (std::size_t i = 0; i < list_.size(); ++i) {
            if (!used[i]) continue;
            Scalar s = list_[i];
            for (int* operand : {&s.a, &s.b})
                if (*operand >= 0) *operand = renamed[static_cast<std::size_t>(*operand)];
            renamed[i] = static_cast<int>(kept.size());
            kept.push_back(s);
        }
        list_ = std::move(kept);
        for (Output& o : outputs_) o.value = renamed[static_cast<std::size_t>(o.value)];
    }

    const Graph& graph_;
    const WideOptions& options_;
    std::vector<std::vector<Signed>> values_;  // by node and lane
    std::vector<Scalar> list_;
    std::vector<Output> outputs_;
    std::map<Key, int> interned_;
    int stage_ = 0;
};

// The instructions. A binary64 value of a binary32 transform takes two vectors, the lower and the
// upper half of the transforms.
class WideLowering {
  public:
    WideLowering(const Graph& graph, const Target& target, const WideOptions& options)
        : scalars_(graph, options), target_(target), pool_(code_) {
        isSingle_ = isSingle(graph.elementType());
        code_.stages = graph.stages();
        code_.scale.type = isSingle_ ? Type::F32 : Type::F64;
    }

    Code run() {
        for (const Scalar& s : scalars_.list()) lower(s);
        for (const Scalars::Output& o : scalars_.outputs()) {
            Instruction i = instruction(Opcode::Store16, o.stage);
            i.a = registers_[static_cast<std::size_t>(o.value)].front();
            inMemory(i, {Base::Dst, o.slot * target_.vectorBytes});
            code_.instructions.push_back(i);
        }
        return std::move(code_);
    }

  private:
    using Kind = Scalar::Kind;

    Instruction instruction(Opcode op, int stage) const {
        Instruction i{};
        i.op = op;
        i.stage = stage;
        i.width = target_.vectorBytes;
        return i;
    }
    static void inMemory(Instruction& i, Address address) {
        i.hasAddress = true;
        i.address = address;
    }
    Register push(Instruction i) {
        i.dst = code_.fresh();
        code_.instructions.push_back(i);
        return i.dst;
    }

    // A number that all transforms have in common: one in memory for all lanes, or a vector of it.
    void constantOperand(Instruction& i, double value, bool isDouble, const std::string& formula) {
        const Type type = isDouble ? Type::F64 : Type::F32;
        const auto lanes =
            static_cast<std::size_t>(target_.broadcasts ? 1 : target_.vectorBytes / bytesOf(type));
        inMemory(i, pool_.entry(PoolEntry{type, std::vector<double>(lanes, value), formula}));
        i.broadcast = target_.broadcasts;
    }

    void lower(const Scalar& s) {
        // The vectors of the result.
        const int parts = s.isDouble && isSingle_ ? 2 : 1;
        std::vector<Register> result;
        for (int part = 0; part < parts; ++part) result.push_back(lowerPart(s, part));
        registers_.push_back(std::move(result));
    }

    Register operand(int value, int part) const {
        const std::vector<Register>& parts = registers_[static_cast<std::size_t>(value)];
        return parts[static_cast<std::size_t>(part)];
    }

    Register lowerPart(const Scalar& s, int part) {
        const auto either = [&](Opcode single, Opcode twice) {
            Instruction i = instruction(s.isDouble ? twice : single, s.stage);
            if (s.a >= 0 && s.kind != Kind::Widen && s.kind != Kind::Narrow)
                i.a = operand(s.a, part);
            if (s.b >= 0) i.b = operand(s.b, part);
            return i;
        };
        switch (s.kind) {
            case Kind::Input: {
                Instruction i = instruction(Opcode::Load16, s.stage);
                inMemory(i, {Base::Src, s.slot * target_.vectorBytes});
                return push(i);
            }
            case Kind::Zero:
                return push(instruction(Opcode::Zero, s.stage));
            case Kind::Add:
                return push(either(Opcode::AddPS, Opcode::AddPD));
            case Kind::Sub:
                return push(either(Opcode::SubPS, Opcode::SubPD));
            case Kind::Mul: {
                Instruction i = either(Opcode::MulPS, Opcode::MulPD);
                constantOperand(i, s.constant, s.isDouble, s.formula);
                return push(i);
            }
            case Kind::Negate: {
                Instruction i = either(Opcode::XorPS, Opcode::XorPD);
                constantOperand(i, -0.0, s.isDouble, "sign");
                return push(i);
            }
            case Kind::Scale: {
                Instruction i = either(Opcode::MulPS, Opcode::MulPD);
                const bool widened = s.isDouble && isSingle_;
                if (widened) code_.scale.widened = true;
                inMemory(i, {widened ? Base::WidenedScale : Base::Scale, 0});
                i.broadcast = target_.broadcasts;
                return push(i);
            }
            case Kind::Widen: {
                Instruction i =
                    instruction(part == 0 ? Opcode::WidenPS : Opcode::WidenUpperPS, s.stage);
                i.a = operand(s.a, 0);
                return push(i);
            }
            case Kind::Narrow: {
                Instruction join = instruction(Opcode::JoinHalves, s.stage);
                for (int half = 0; half < 2; ++half) {
                    Instruction i = instruction(Opcode::NarrowPD, s.stage);
                    i.a = operand(s.a, half);
                    (half == 0 ? join.a : join.b) = push(i);
                }
                return push(join);
            }
        }
        throw std::logic_error("unknown kind of number");
    }

    Scalars scalars_;
    const Target& target_;
    bool isSingle_ = false;
    Code code_;
    PoolBuilder pool_;
    std::vector<std::vector<Register>> registers_;
};

}  // namespace

int batchWidth(const Graph& graph, const Target& target) {
    return target.vectorBytes / (isSingle(graph.elementType()) ? 4 : 8);
}

Code lowerWide(const Graph& graph, const Target& target, const WideOptions& options) {
    return WideLowering(graph, target, options).run();
}

}  // namespace orvgen::kernelgen
