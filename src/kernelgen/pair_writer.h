// SPDX-License-Identifier: MIT
// What writing pairs of scalars and of vectors has in common: which values stand where, and what
// goes with what. The two kinds differ in the instructions.
#pragma once

#include <map>
#include <utility>
#include <vector>

#include "lower.h"
#include "pair.h"

namespace orvgen::kernelgen {

class PairWriter {
  public:
    PairWriter(const Code& code, const DataFlow& flow, const Pairing& pairing);
    virtual ~PairWriter() = default;
    PairWriter(const PairWriter&) = delete;
    PairWriter& operator=(const PairWriter&) = delete;

    Code run();

  protected:
    using Values = std::pair<int, int>;  // the lower, the upper

    // The instruction for both of a pair; its operands and constants come later.
    virtual Instruction wide(const Instruction& one) const = 0;
    virtual PoolEntry joined(const PoolEntry& lower, const PoolEntry& upper) const = 0;
    // A register with the value of a load, or of the upper half of `whole`, at its lower end.
    virtual Register loadAlone(int i) = 0;
    virtual Register upperAlone(int i, Register whole) = 0;
    // Two values, neither of them a pair as it stands, brought together.
    virtual Register loadBoth(int a, int b) = 0;
    virtual Register gather(int a, int b) = 0;
    // Operands that an instruction that stays alone takes in another way than by alone().
    virtual void takeOperands(Instruction& /*one*/, const std::vector<int>& /*operands*/) {}
    virtual void storeBoth(const Instruction& lower, Register pair) = 0;
    // Whether the upper half could be stored where it stands.
    virtual bool storeUpper(const Instruction& one, Register pair) = 0;

    const Instruction& instruction(int i) const;
    bool isLoadAt(int i) const { return isLoad(instruction(i).op); }
    bool isPairedValue(int i) const { return !isLoadAt(i) && pairing_.isPaired(i); }
    bool standsAbove(int i) const { return isPairedValue(i) && pairing_.isUpper(i); }
    // Whether the two lie side by side in memory.
    bool areNeighbours(int lower, int upper) const;

    Register alone(int i);
    Register both(int a, int b);
    // The pair that a value is in; that, or the value alone.
    Register whole(int i) const;
    Register holder(int i) { return isPairedValue(i) ? whole(i) : alone(i); }
    // To be had from now on as this pair too.
    void keep(int a, int b, Register r) { pairs_[{a, b}] = r; }

    Instruction& push(Opcode op);
    Register combine(Opcode op, Register a, Register b, int immediate = 0);
    Register load(Opcode op, const Address& address, const Address& high = {});
    void store(Opcode op, const Address& address, Register r);

    const Code& code_;
    const DataFlow& flow_;
    const Pairing& pairing_;
    Code out_;
    int width_ = 16;  // of the vectors that are written

  private:
    void emit(int i);
    void emitAlone(int i);
    void emitPair(int lower, int upper);
    void emitStore(int i);
    Address constant(const Address& a, const Address& b);
    int nearness(int a, int b) const;
    std::vector<std::pair<Values, Register>> pairsOf(int value) const;

    PoolBuilder pool_;
    std::vector<bool> done_;
    std::vector<Register> alone_;                // by value: where it is at the lower end
    std::map<Values, Register> pairs_;           // by values: where they are the halves
    std::map<std::pair<int, int>, int> stores_;  // by value and place
    int stage_ = 0;
};

}  // namespace orvgen::kernelgen
