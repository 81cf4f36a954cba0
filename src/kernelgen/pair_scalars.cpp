// SPDX-License-Identifier: MIT
// Two scalars to a vector of 16 bytes.
#include <stdexcept>

#include "pair_writer.h"

namespace orvgen::kernelgen {

namespace {

// Selections of lanes.
constexpr int kExchange = 0b01;       // shufpd: upper lane of the first, lower of the second
constexpr int kUpperOfSecond = 0b10;  // blends
constexpr int kUpperToLower = 0x55;   // shufps
// insertps: lane of the second, lane that it goes to, lanes that become zero.
constexpr int insertion(int from, int to) { return from << 6 | to << 4 | 0b1100; }
constexpr int kJoin = insertion(0, 1);

// The instruction that does for two lanes what this one does for one.
Opcode forBoth(Opcode op) {
    switch (op) {
        case Opcode::AddSS:
            return Opcode::AddPS;
        case Opcode::SubSS:
            return Opcode::SubPS;
        case Opcode::MulSS:
            return Opcode::MulPS;
        case Opcode::AddSD:
            return Opcode::AddPD;
        case Opcode::SubSD:
            return Opcode::SubPD;
        case Opcode::MulSD:
            return Opcode::MulPD;
        case Opcode::Widen:
            return Opcode::WidenPS;
        case Opcode::Narrow:
            return Opcode::NarrowPD;
        default:
            throw std::logic_error("no instruction for two lanes");
    }
}

// Two numbers of binary32 stand in the lower half of a vector whose upper half is zero. What stands
// alone may have anything above it.
class ScalarPairs : public PairWriter {
  public:
    ScalarPairs(const Code& code, const DataFlow& flow, const Pairing& pairing)
        : PairWriter(code, flow, pairing) {
        out_.scale.type = code.scale.type == Type::F64 ? Type::F64x2 : Type::F32x4;
    }

  private:
    bool isDouble(int i) const { return resultSize(instruction(i).op) == 8; }
    bool isZero(int i) const { return instruction(i).op == Opcode::Zero; }

    Instruction wide(const Instruction& one) const override {
        Instruction pair = one;
        pair.op = forBoth(one.op);
        return pair;
    }
    PoolEntry joined(const PoolEntry& x, const PoolEntry& y) const override {
        if (x.type == Type::F64) return {Type::F64x2, {x.lanes[0], y.lanes[0]}, {}};
        return {Type::F32x4, {x.lanes[0], y.lanes[0], 0.0, 0.0}, {}};
    }

    Register loadAlone(int i) override { return load(instruction(i).op, instruction(i).address); }
    Register upperAlone(int i, Register whole) override {
        if (!isDouble(i)) return combine(Opcode::Shufps, whole, whole, kUpperToLower);
        const Register r = combine(Opcode::Unpckhpd, whole, whole);
        keep(i, i, r);
        return r;
    }

    Register loadBoth(int a, int b) override {
        const Instruction& x = instruction(a);
        const Instruction& y = instruction(b);
        if (isZero(a) && isZero(b)) return load(Opcode::Zero, {});
        const bool wide = isDouble(a) || isDouble(b);
        if (isZero(a) || isZero(b)) return join(wide, a, b);
        if (areNeighbours(a, b)) return load(wide ? Opcode::Load16 : Opcode::LoadHalf, x.address);
        if (areNeighbours(b, a)) {
            const Register v = both(b, a);
            return wide ? combine(Opcode::Shufpd, v, v, kExchange)
                        : combine(Opcode::Shufps, v, v, kExchangeSingles);
        }
        if (!wide) return join(wide, a, b);
        return a == b ? load(Opcode::SpreadSD, x.address)
                      : load(Opcode::LoadHalves, x.address, y.address);
    }
    Register join(bool wide, int a, int b) {
        const Register x = alone(a);
        return combine(wide ? Opcode::JoinSD : Opcode::JoinSS, x, alone(b), wide ? 0 : kJoin);
    }

    Register gather(int a, int b) override {
        return isDouble(a) || isDouble(b) ? gatherDoubles(a, b) : gatherSingles(a, b);
    }
    Register gatherDoubles(int a, int b) {
        if (a == b && standsAbove(a)) return alone(a);
        const Register x = holder(a);
        const Register y = holder(b);
        if (standsAbove(a))
            return standsAbove(b) ? combine(Opcode::Unpckhpd, x, y)
                                  : combine(Opcode::Shufpd, x, y, kExchange);
        return standsAbove(b) ? combine(Opcode::BlendPD, x, y, kUpperOfSecond)
                              : combine(Opcode::JoinSD, x, y);
    }
    Register gatherSingles(int a, int b) {
        if (standsAbove(a) && !standsAbove(b)) {
            if (isPairedValue(b) && whole(a) == whole(b))
                return combine(Opcode::Shufps, whole(a), whole(a), kExchangeSingles);
            const Register x = alone(a);
            return combine(Opcode::JoinSS, x, holder(b), kJoin);
        }
        const Register x = holder(a);
        const Register y = holder(b);
        if (standsAbove(a)) return combine(Opcode::InsertSS, y, x, insertion(1, 0));
        if (!standsAbove(b)) return combine(Opcode::JoinSS, x, y, kJoin);
        return isPairedValue(a) ? combine(Opcode::BlendPS, x, y, kUpperOfSecond)
                                : combine(Opcode::InsertSS, x, y, insertion(1, 1));
    }

    void storeBoth(const Instruction& lower, Register pair) override {
        store(lower.op == Opcode::StoreSD ? Opcode::Store16 : Opcode::StoreLow, lower.address,
              pair);
    }
    bool storeUpper(const Instruction& one, Register pair) override {
        if (one.op != Opcode::StoreSD) return false;
        store(Opcode::StoreHigh, one.address, pair);
        return true;
    }
};

}  // namespace

Code writeScalarPairs(const Code& code, const DataFlow& flow, const Pairing& pairing) {
    return ScalarPairs(code, flow, pairing).run();
}

}  // namespace orvgen::kernelgen
