// SPDX-License-Identifier: MIT
// Two vectors of 16 bytes to one of 32.
#include <set>

#include "pair_writer.h"

namespace orvgen::kernelgen {

namespace {

// Selections of halves.
constexpr int kUpperThenLower = 0x21;  // perm2f128: upper half of the first, lower of the second
constexpr int kUpperHalves = 0x31;
constexpr int kUpperOfSecond = 0b1100;  // blendpd: the upper two lanes

using Wanted = std::set<std::pair<int, int>>;

class VectorPairs : public PairWriter {
  public:
    // `wanted`: what will have to be brought together, as far as it is known.
    VectorPairs(const Code& code, const DataFlow& flow, const Pairing& pairing,
                const Wanted& wanted)
        : PairWriter(code, flow, pairing), known_(wanted) {
        width_ = 32;
        out_.scale.copies = 2;
    }
    const Wanted& wanted() const { return wanted_; }

  private:
    Instruction wide(const Instruction& one) const override {
        Instruction pair = one;
        pair.width = 32;
        if (one.op == Opcode::Shufpd) pair.immediate |= one.immediate << 2;
        // Moves between the halves of a vector of 16 bytes have no wider form, but are unpacks.
        if (one.op == Opcode::Movlhps) pair.op = Opcode::Unpcklpd;
        if (one.op == Opcode::Movhlps) pair.op = Opcode::Unpckhpd;
        return pair;
    }
    PoolEntry joined(const PoolEntry& x, const PoolEntry& y) const override {
        PoolEntry entry{x.type, x.lanes, {}};
        entry.lanes.insert(entry.lanes.end(), y.lanes.begin(), y.lanes.end());
        return entry;
    }

    Register narrow(Instruction one) {
        one.dst = out_.fresh();
        out_.instructions.push_back(one);
        return one.dst;
    }
    static bool isWholeLoad(Opcode op) {
        return op == Opcode::Load16 || op == Opcode::Load16Split || op == Opcode::LoadAligned;
    }
    static bool isSpread(Opcode op) {
        return op == Opcode::SpreadSS || op == Opcode::SpreadSD || op == Opcode::Zero;
    }

    Register loadAlone(int i) override {
        // One register for either width.
        return isSpread(instruction(i).op) ? both(i, i) : narrow(instruction(i));
    }
    Register upperAlone(int, Register whole) override {
        return combine(Opcode::UpperHalf, whole, kNoRegister);
    }

    Register loadBoth(int a, int b) override {
        const Instruction& x = instruction(a);
        const Instruction& y = instruction(b);
        if (a == b && isSpread(x.op)) return load(x.op, x.address);
        if (a == b && isWholeLoad(x.op)) return load(Opcode::LoadTwice, x.address);
        if (isWholeLoad(x.op) && isWholeLoad(y.op) && areNeighbours(a, b))
            return load(Opcode::Load16, x.address);
        const Register lower = alone(a);
        return combine(Opcode::JoinHalves, lower, alone(b));
    }

    Register gather(int a, int b) override {
        wanted_.insert({a, b});
        const Register x = holder(a);
        const Register y = holder(b);
        if (standsAbove(b) && !standsAbove(a))
            return combine(Opcode::BlendPD, x, y, kUpperOfSecond);
        if (standsAbove(a) && !standsAbove(b))
            return combine(Opcode::HalvesOfTwo, x, y, kUpperThenLower);
        // Both lower halves and both upper halves of the same two: one exchange and two blends.
        if (isPairedValue(a) && isPairedValue(b) && a != b &&
            known_.contains({pairing_.mate[static_cast<std::size_t>(a)],
                             pairing_.mate[static_cast<std::size_t>(b)]})) {
            Register& exchanged = exchanged_.try_emplace({x, y}, kNoRegister).first->second;
            if (exchanged == kNoRegister)
                exchanged = combine(Opcode::HalvesOfTwo, x, y, kUpperThenLower);
            return standsAbove(a) ? combine(Opcode::BlendPD, exchanged, y, kUpperOfSecond)
                                  : combine(Opcode::BlendPD, x, exchanged, kUpperOfSecond);
        }
        return standsAbove(a) ? combine(Opcode::HalvesOfTwo, x, y, kUpperHalves)
                              : combine(Opcode::JoinHalves, x, y);
    }

    void storeBoth(const Instruction& lower, Register pair) override {
        store(Opcode::Store16, lower.address, pair);
    }
    bool storeUpper(const Instruction& one, Register pair) override {
        if (accessSize(one.op, one.width) != 16) return false;
        store(Opcode::StoreUpper, one.address, pair);
        return true;
    }

    const Wanted& known_;
    Wanted wanted_;
    std::map<std::pair<Register, Register>, Register> exchanged_;
};

}  // namespace

Code writeVectorPairs(const Code& code, const DataFlow& flow, const Pairing& pairing) {
    const Wanted nothing;
    VectorPairs first(code, flow, pairing, nothing);
    first.run();
    return VectorPairs(code, flow, pairing, first.wanted()).run();
}

}  // namespace orvgen::kernelgen
