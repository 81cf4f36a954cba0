// SPDX-License-Identifier: MIT
#include "lower_wide.h"

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
