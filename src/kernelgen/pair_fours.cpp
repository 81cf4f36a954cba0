// SPDX-License-Identifier: MIT
// Two pairs of numbers to a vector of four lanes: binary32 in 16 bytes, binary64 in 32.
#include "pair_writer.h"

namespace orvgen::kernelgen {

namespace {

// Selections of pairs.
constexpr int kUpperThenLower = 0b01;        // shufpd: upper pair of the first, lower of the second
constexpr int kUpperOfSecond = 0b10;         // blendpd
constexpr int kHalvesUpperThenLower = 0x21;  // perm2f128
constexpr int kUpperHalves = 0x31;
constexpr int kUpperHalfOfSecond = 0b1100;  // blendpd
constexpr int kExchangeInBoth = 0xB1;       // shufps
// Selections of numbers: shufps, insertps.
constexpr int kUpperToLower = 0x55;
constexpr int kUpperOfAbove = 0xFF;
constexpr int kTwoLanesUp = 2 << 6;
constexpr int kZerosAbove = 0b1100;

// Pairs of binary32 have zeros above them wherever they stand alone.
class FourLanes : public PairWriter {
  public:
    FourLanes(const Code& code, const DataFlow& flow, const Pairing& pairing)
        : PairWriter(code, flow, pairing) {
        (isSingle(out_.scale.type) ? out_.scale.widenedCopies : out_.scale.copies) = 2;
    }

  private:
    bool isZero(int i) const { return instruction(i).op == Opcode::Zero; }
    bool isDouble(int i) const {
        switch (instruction(i).op) {
            case Opcode::LoadHalf:
            case Opcode::AddPS:
            case Opcode::SubPS:
            case Opcode::MulPS:
            case Opcode::NarrowPD:
            case Opcode::Shufps:
            case Opcode::JoinSS:
            case Opcode::InsertSS:
            case Opcode::BlendPS:
                return false;
            default:
                return !isZero(i);
        }
    }
    void setWidth(bool ofDoubles) { width_ = ofDoubles ? 32 : 16; }

    Instruction wide(const Instruction& one) const override {
        Instruction four = one;
        switch (one.op) {
            case Opcode::Shufps:
                four.immediate = kExchangeInBoth;
                break;
            case Opcode::Shufpd:
            case Opcode::BlendPD:
                four.immediate |= one.immediate << 2;
                four.width = 32;
                break;
            case Opcode::BlendPS:
                four.immediate |= one.immediate << 2;
                break;
            case Opcode::AddPD:
            case Opcode::SubPD:
            case Opcode::MulPD:
            case Opcode::Unpckhpd:
            case Opcode::WidenPS:
            case Opcode::NarrowPD:
                four.width = 32;
                break;
            default:
                break;
        }
        return four;
    }
    PoolEntry joined(const PoolEntry& x, const PoolEntry& y) const override {
        if (x.type == Type::F32x4)
            return {x.type, {x.lanes[0], x.lanes[1], y.lanes[0], y.lanes[1]}, {}};
        PoolEntry entry{x.type, x.lanes, {}};
        entry.lanes.insert(entry.lanes.end(), y.lanes.begin(), y.lanes.end());
        return entry;
    }

    Register loadAlone(int i) override {
        Instruction one = instruction(i);
        one.dst = out_.fresh();
        out_.instructions.push_back(one);
        return one.dst;
    }
    Register upperAlone(int i, Register whole) override {
        setWidth(isDouble(i));
        return combine(isDouble(i) ? Opcode::UpperHalf : Opcode::UpperPair, whole, kNoRegister);
    }

    Register loadBoth(int a, int b) override {
        const Instruction& x = instruction(a);
        const Instruction& y = instruction(b);
        const bool doubles = isDouble(a) || isDouble(b);
        setWidth(doubles);
        if (isZero(a) && isZero(b)) return load(Opcode::Zero, {});
        const Opcode one = doubles ? Opcode::Load16 : Opcode::LoadHalf;
        if (x.op == one && y.op == one) {
            if (areNeighbours(a, b)) return load(Opcode::Load16, x.address);
            if (a == b) return load(doubles ? Opcode::LoadTwice : Opcode::SpreadSD, x.address);
            if (!doubles) return load(Opcode::LoadHalves, x.address, y.address);
        }
        if (a == b && x.op == Opcode::SpreadSD) return load(x.op, x.address);
        return join(doubles, alone(a), alone(b));
    }
    Register join(bool doubles, Register x, Register y) {
        setWidth(doubles);
        return combine(doubles ? Opcode::JoinHalves : Opcode::JoinSD, x, y);
    }

    Register gather(int a, int b) override {
        const bool doubles = isDouble(a) || isDouble(b);
        const Register x = holder(a);
        const Register y = holder(b);
        setWidth(doubles);
        const bool fromAbove = standsAbove(a);
        if (!fromAbove && !standsAbove(b)) return join(doubles, x, y);
        if (fromAbove && standsAbove(b))
            return doubles ? combine(Opcode::HalvesOfTwo, x, y, kUpperHalves)
                           : combine(Opcode::Unpckhpd, x, y);
        if (fromAbove)
            return doubles ? combine(Opcode::HalvesOfTwo, x, y, kHalvesUpperThenLower)
                           : combine(Opcode::Shufpd, x, y, kUpperThenLower);
        return combine(Opcode::BlendPD, x, y, doubles ? kUpperHalfOfSecond : kUpperOfSecond);
    }

    // Single numbers of binary32 are taken out of the upper pair where they stand. What works on
    // all of 16 bytes gets the lower pair with zeros above, not with the upper one.
    void takeOperands(Instruction& one, const std::vector<int>& operands) override {
        const bool above = operands.size() == 2 && standsAbove(operands[1]);
        switch (one.op) {
            case Opcode::JoinSS:
            case Opcode::InsertSS:
                if (!above) return;
                // Out of memory there would be no lane to choose.
                one.op = Opcode::InsertSS;
                one.b = whole(operands[1]);
                one.immediate += kTwoLanesUp;
                return;
            case Opcode::Shufps:
                if (one.immediate == kUpperToLower) {
                    if (!above) return;
                    one.a = one.b = whole(operands[1]);
                    one.immediate = kUpperOfAbove;
                    return;
                }
                break;
            case Opcode::AddPS:
            case Opcode::SubPS:
            case Opcode::MulPS:
            case Opcode::BlendPS:
                break;
            default:
                return;
        }
        one.a = cleared(operands[0]);
        if (operands.size() > 1) one.b = cleared(operands[1]);
    }
    Register cleared(int i) {
        if (!isPairedValue(i) || standsAbove(i)) return alone(i);
        Register& r = cleared_.try_emplace(i, kNoRegister).first->second;
        setWidth(false);
        if (r == kNoRegister) r = combine(Opcode::InsertSS, whole(i), whole(i), kZerosAbove);
        return r;
    }

    void storeBoth(const Instruction& lower, Register four) override {
        setWidth(lower.op == Opcode::Store16);
        store(Opcode::Store16, lower.address, four);
    }
    bool storeUpper(const Instruction& one, Register four) override {
        if (one.op != Opcode::Store16 && one.op != Opcode::StoreLow) return false;
        setWidth(one.op == Opcode::Store16);
        store(one.op == Opcode::Store16 ? Opcode::StoreUpper : Opcode::StoreHigh, one.address,
              four);
        return true;
    }

    std::map<int, Register> cleared_;  // by value
};

}  // namespace

Code writeFours(const Code& code, const DataFlow& flow, const Pairing& pairing) {
    return FourLanes(code, flow, pairing).run();
}

}  // namespace orvgen::kernelgen
