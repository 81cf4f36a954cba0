// SPDX-License-Identifier: MIT
#include "lower_wide.h"

#include <bit>
#include <cstdint>
#include <map>
#include <stdexcept>

#include "lower.h"
#include "scalars.h"

namespace orvgen::kernelgen {

namespace {

// The instructions. A binary64 value of a binary32 transform takes two vectors, the lower and the
// upper half of the transforms.
class WideLowering {
  public:
    WideLowering(const Graph& graph, const Target& target, const WideOptions& options)
        : options_(options), scalars_(graph, options), target_(target), pool_(code_) {
        isSingle_ = isSingle(graph.elementType());
        code_.stages = graph.stages();
        code_.scale.type = isSingle_ ? Type::F32 : Type::F64;
    }

    Code run() {
        for (const Scalar& s : scalars_.list()) lower(s);
        if (isInterleaved(options_.dst))
            storePairs();
        else
            for (const Scalars::Output& o : scalars_.outputs())
                store(o.slot, inMemoryOrder(operand(o.value, 0), o.stage), o.stage);
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

    // ---- elements in memory

    bool isInterleaved(Layout side) const {
        return options_.complexes == Complexes::Interleaved && side != Layout::Real;
    }

    Register load(int slot, int stage) {
        const auto [at, isNew] = loaded_.try_emplace(slot, kNoRegister);
        if (isNew) {
            Instruction i = instruction(Opcode::Load16, stage);
            inMemory(i, {Base::Src, slot * target_.vectorBytes});
            at->second = push(i);
        }
        return at->second;
    }
    void store(int slot, Register value, int stage) {
        Instruction i = instruction(Opcode::Store16, stage);
        i.a = value;
        inMemory(i, {Base::Dst, slot * target_.vectorBytes});
        code_.instructions.push_back(i);
    }

    Register shuffled(Opcode op, Register a, Register b, int immediate, int stage) {
        Instruction i = instruction(op, stage);
        i.a = a;
        i.b = b;
        i.immediate = immediate;
        return push(i);
    }

    Register input(const Scalar& s) {
        if (!isInterleaved(options_.src)) return inOrderOfPairs(load(s.slot, s.stage), s.stage);
        const bool isImaginary = s.slot >= kImaginarySlots;
        const int element = s.slot % kImaginarySlots;
        const Register first = load(element, s.stage);
        const Register second = load(kImaginarySlots + element, s.stage);
        if (isSingle_)
            return shuffled(Opcode::Shufps, first, second, isImaginary ? 0xdd : 0x88, s.stage);
        return shuffled(isImaginary ? Opcode::Unpckhpd : Opcode::Unpcklpd, first, second, 0,
                        s.stage);
    }

    void storePairs() {
        struct Pair {
            Register re = kNoRegister, im = kNoRegister;
            int stage = 0;
        };
        std::map<int, Pair> pairs;
        for (const Scalars::Output& o : scalars_.outputs()) {
            Pair& pair = pairs[o.slot % kImaginarySlots];
            (o.slot < kImaginarySlots ? pair.re : pair.im) = operand(o.value, 0);
            pair.stage = o.stage;
        }
        for (const auto& [element, values] : pairs) {
            const Pair& pair = values;
            // The half spectrum's imaginary parts that are always zero.
            const Register im =
                pair.im != kNoRegister ? pair.im : push(instruction(Opcode::Zero, pair.stage));
            const auto half = [&](Opcode single, Opcode twice) {
                return shuffled(isSingle_ ? single : twice, pair.re, im, 0, pair.stage);
            };
            store(element, half(Opcode::Unpcklps, Opcode::Unpcklpd), pair.stage);
            store(kImaginarySlots + element, half(Opcode::Unpckhps, Opcode::Unpckhpd), pair.stage);
        }
    }

    // ---- the order of the transforms: taken apart, pairs leave the first and the second half of
    // the transforms alternating by 8 bytes

    bool isMixed() const { return isInterleaved(options_.src) != isInterleaved(options_.dst); }
    int eights() const { return target_.vectorBytes / 8; }
    Register inOrderOfPairs(Register x, int stage) {
        return isMixed() ? permuted(x, stage, [&](int i) { return i / 2 + i % 2 * eights() / 2; })
                         : x;
    }
    Register inMemoryOrder(Register x, int stage) {
        return isMixed()
                   ? permuted(x, stage, [&](int i) { return 2 * i % eights() + 2 * i / eights(); })
                   : x;
    }
    // 8 bytes from place from(i) come to place i.
    template <class From>
    Register permuted(Register x, int stage, const From& from) {
        if (order_ == kNoRegister) {
            PoolEntry places{Type::F32, {}, "order of transforms"};
            for (int i = 0; i < eights(); ++i)
                for (int half = 0; half < 2; ++half)
                    places.lanes.push_back(static_cast<double>(
                        std::bit_cast<float>(static_cast<std::uint32_t>(2 * from(i) + half))));
            Instruction i = instruction(Opcode::LoadAligned, stage);
            inMemory(i, pool_.entry(places));
            order_ = push(i);
        }
        return shuffled(Opcode::PermutePS, order_, x, 0, stage);
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
            case Kind::Input:
                return input(s);
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

    const WideOptions& options_;
    Scalars scalars_;
    const Target& target_;
    bool isSingle_ = false;
    Code code_;
    PoolBuilder pool_;
    std::vector<std::vector<Register>> registers_;
    std::map<int, Register> loaded_;  // by slot of src
    Register order_ = kNoRegister;    // of the transforms
};

}  // namespace

int batchWidth(const Graph& graph, const Target& target) {
    return target.vectorBytes / (isSingle(graph.elementType()) ? 4 : 8);
}

Code lowerWide(const Graph& graph, const Target& target, const WideOptions& options) {
    return WideLowering(graph, target, options).run();
}

}  // namespace orvgen::kernelgen
