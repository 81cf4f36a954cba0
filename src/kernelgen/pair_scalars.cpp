// SPDX-License-Identifier: MIT
// Two scalars to a vector.
#include <map>
#include <optional>
#include <stdexcept>

#include "lower.h"
#include "pair.h"

namespace orvgen::kernelgen {

namespace {

std::size_t at(int i) { return static_cast<std::size_t>(i); }

// Selections of lanes.
constexpr int kExchange = 0b01;         // shufpd: upper lane of the first, lower of the second
constexpr int kUpperOfSecond = 0b10;    // blends
constexpr int kUpperToLower = 0x55;     // shufps
constexpr int kExchangeSingles = 0xE1;  // shufps: lanes 0 and 1, zeros stay
// insertps: lane of the second, lane that it goes to, lanes that become zero.
constexpr int insertion(int from, int to) { return from << 6 | to << 4 | 0b1100; }

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

class ScalarPairs {
  public:
    ScalarPairs(const Code& code, const DataFlow& flow, const Pairing& pairing)
        : code_(code),
          flow_(flow),
          pairing_(pairing),
          pool_(out_),
          done_(code.instructions.size(), false),
          scalar_(code.instructions.size(), kNoRegister) {
        out_.stages = code.stages;
        out_.scale = code.scale;
        out_.scale.type = code.scale.type == Type::F64 ? Type::F64x2 : Type::F32x4;
    }

    Code run() {
        const int n = static_cast<int>(code_.instructions.size());
        for (int i = 0; i < n; ++i)
            if (isStore(instruction(i).op) && !flow_.operands[at(i)].empty())
                stores_[{operandOf(i), instruction(i).address.offset}] = i;
        for (int i = 0; i < n; ++i) emit(i);
        return std::move(out_);
    }

  private:
    const Instruction& instruction(int i) const { return code_.instructions[at(i)]; }
    int operandOf(int i) const { return flow_.operands[at(i)].front(); }
    bool isLoadAt(int i) const { return isLoad(instruction(i).op); }
    bool isDouble(int i) const { return resultSize(instruction(i).op) == 8; }
    bool isPairedValue(int i) const { return !isLoadAt(i) && pairing_.isPaired(i); }

    Instruction& push(Opcode op, int stage) {
        Instruction i{};
        i.op = op;
        i.stage = stage;
        out_.instructions.push_back(i);
        return out_.instructions.back();
    }
    Register combine(Opcode op, Register a, Register b, int immediate = 0) {
        Instruction& i = push(op, stage_);
        i.a = a;
        i.b = b;
        i.immediate = immediate;
        return i.dst = out_.fresh();
    }
    Register load(Opcode op, Address address, Address high = {}) {
        Instruction& i = push(op, stage_);
        i.hasAddress = op != Opcode::Zero;
        i.address = address;
        i.high = high;
        return i.dst = out_.fresh();
    }

    // ---- values

    // The pair that an instruction is in, by its lower one.
    Register whole(int i) const {
        return pairs_.at(pairing_.isUpper(i) ? std::pair(pairing_.mate[at(i)], i)
                                             : std::pair(i, pairing_.mate[at(i)]));
    }

    // A register with the value in its lowest lane.
    Register scalar(int i) {
        Register& r = scalar_[at(i)];
        if (r != kNoRegister) return r;
        if (isLoadAt(i)) return r = load(instruction(i).op, instruction(i).address);
        const Register v = whole(i);
        if (!pairing_.isUpper(i)) return r = v;
        if (!isDouble(i)) return r = combine(Opcode::Shufps, v, v, kUpperToLower);
        r = combine(Opcode::Unpckhpd, v, v);
        pairs_[{i, i}] = r;
        return r;
    }

    // A register with the two values in its lanes.
    Register both(int a, int b) {
        if (const auto found = pairs_.find({a, b}); found != pairs_.end()) return found->second;
        const Register r = isLoadAt(a) && isLoadAt(b) ? loadBoth(a, b)
                           : isDouble(a)              ? gatherDoubles(a, b)
                                                      : gatherSingles(a, b);
        return pairs_[{a, b}] = r;
    }

    Register loadBoth(int a, int b) {
        const Instruction& x = instruction(a);
        const Instruction& y = instruction(b);
        if (x.op == Opcode::Zero && y.op == Opcode::Zero) return load(Opcode::Zero, {});
        if (x.op == Opcode::Zero || y.op == Opcode::Zero)
            return isDouble(a) || isDouble(b)
                       ? combine(Opcode::JoinSD, scalar(a), scalar(b))
                       : combine(Opcode::JoinSS, scalar(a), scalar(b), insertion(0, 1));
        const int size = accessSize(x.op);
        const bool wide = size == 8;
        if (y.address.offset == x.address.offset + size)
            return load(wide ? Opcode::Load16 : Opcode::LoadHalf, x.address);
        if (x.address.offset == y.address.offset + size) {
            const Register v = both(b, a);
            return wide ? combine(Opcode::Shufpd, v, v, kExchange)
                        : combine(Opcode::Shufps, v, v, kExchangeSingles);
        }
        if (!wide) return combine(Opcode::JoinSS, scalar(a), scalar(b), insertion(0, 1));
        return a == b ? load(Opcode::SpreadSD, x.address)
                      : load(Opcode::LoadHalves, x.address, y.address);
    }

    bool standsAbove(int i) const { return isPairedValue(i) && pairing_.isUpper(i); }
    // The pair, or the scalar alone.
    Register holder(int i) { return isPairedValue(i) ? whole(i) : scalar(i); }

    Register gatherDoubles(int a, int b) {
        if (a == b && standsAbove(a)) return scalar(a);
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
            return combine(Opcode::JoinSS, scalar(a), holder(b), insertion(0, 1));
        }
        const Register x = holder(a);
        const Register y = holder(b);
        if (standsAbove(a)) return combine(Opcode::InsertSS, y, x, insertion(1, 0));
        if (!standsAbove(b)) return combine(Opcode::JoinSS, x, y, insertion(0, 1));
        return isPairedValue(a) ? combine(Opcode::BlendPS, x, y, kUpperOfSecond)
                                : combine(Opcode::InsertSS, x, y, insertion(1, 1));
    }

    // How near at hand two values are as a pair.
    int nearness(int a, int b) const {
        if (pairs_.contains({a, b}) || pairing_.isPair(a, b)) return 3;
        if (isLoadAt(a) && isLoadAt(b))
            return instruction(b).address.offset ==
                           instruction(a).address.offset + accessSize(instruction(a).op)
                       ? 2
                       : 1;
        return 0;
    }

    // ---- instructions

    void emit(int i) {
        if (done_[at(i)] || isLoadAt(i)) return;
        const bool paired = pairing_.isPaired(i) && !isStore(instruction(i).op);
        const int lower = paired && pairing_.isUpper(i) ? pairing_.mate[at(i)] : i;
        const int upper = paired ? pairing_.mate[at(lower)] : lower;
        for (const int member : {lower, upper}) {
            done_[at(member)] = true;
            for (const int o : flow_.operands[at(member)]) emit(o);
        }
        stage_ = instruction(i).stage;
        if (isStore(instruction(i).op))
            emitStore(i);
        else if (paired)
            emitPair(lower, upper);
        else
            emitScalar(i);
    }

    void emitScalar(int i) {
        Instruction x = instruction(i);
        const std::vector<int>& operands = flow_.operands[at(i)];
        x.a = scalar(operands[0]);
        if (operands.size() > 1) x.b = scalar(operands[1]);
        if (x.hasAddress && x.address.base == Base::Pool)
            x.address = pool_.entry(code_.pool[at(x.address.offset)]);
        x.dst = scalar_[at(i)] = out_.fresh();
        out_.instructions.push_back(x);
    }

    void emitPair(int lower, int upper) {
        const Instruction& x = instruction(lower);
        Instruction pair{};
        pair.op = forBoth(x.op);
        pair.stage = stage_;
        const std::vector<int>& a = flow_.operands[at(lower)];
        const std::vector<int>& b = flow_.operands[at(upper)];
        if (a.size() == 1) {
            pair.a = both(a[0], b[0]);
        } else {
            const bool crossed =
                rowOf(x.op).commutes && nearness(a[1], b[0]) + nearness(a[0], b[1]) >
                                            nearness(a[0], b[0]) + nearness(a[1], b[1]);
            pair.a = both(a[crossed ? 1 : 0], b[0]);
            pair.b = both(a[crossed ? 0 : 1], b[1]);
        }
        if (x.hasAddress) {
            pair.hasAddress = true;
            pair.address = x.address.base == Base::Pool
                               ? constants(x.address, instruction(upper).address)
                               : x.address;
        }
        pairs_[{lower, upper}] = pair.dst = out_.fresh();
        out_.instructions.push_back(pair);
    }

    Address constants(const Address& a, const Address& b) {
        const PoolEntry& x = code_.pool[at(a.offset)];
        const PoolEntry& y = code_.pool[at(b.offset)];
        const std::string text = x.text == y.text ? x.text : x.text + ", " + y.text;
        if (x.type == Type::F64) return pool_.entry({Type::F64x2, {x.lanes[0], y.lanes[0]}, text});
        return pool_.entry({Type::F32x4, {x.lanes[0], y.lanes[0], 0.0, 0.0}, text});
    }

    // Neighbours that stand side by side in a register go by one store, others by one each.
    void emitStore(int i) {
        const Instruction& x = instruction(i);
        if (flow_.operands[at(i)].empty()) {
            out_.instructions.push_back(x);
            return;
        }
        const int value = operandOf(i);
        const int size = accessSize(x.op);
        const int offset = x.address.offset;
        for (const auto& [pair, r] : pairsOf(value)) {
            const int first = pair.first == value ? offset : offset - size;
            const auto other =
                stores_.find(pair.first == value ? std::pair(pair.second, offset + size)
                                                 : std::pair(pair.first, first));
            if (other == stores_.end() || done_[at(other->second)]) continue;
            done_[at(other->second)] = true;
            storeTo({Base::Dst, first}, size == 8 ? Opcode::Store16 : Opcode::StoreLow, r);
            return;
        }
        if (size == 8 && standsAbove(value))
            storeTo(x.address, Opcode::StoreHigh, whole(value));
        else
            storeTo(x.address, x.op, scalar(value));
    }
    // The pairs at hand that the value is in.
    std::vector<std::pair<std::pair<int, int>, Register>> pairsOf(int value) const {
        std::vector<std::pair<std::pair<int, int>, Register>> found;
        for (const auto& entry : pairs_)
            if (entry.first.first != entry.first.second &&
                (entry.first.first == value || entry.first.second == value))
                found.push_back(entry);
        return found;
    }
    void storeTo(const Address& address, Opcode op, Register r) {
        Instruction& i = push(op, stage_);
        i.a = r;
        i.hasAddress = true;
        i.address = address;
    }

    const Code& code_;
    const DataFlow& flow_;
    const Pairing& pairing_;
    Code out_;
    PoolBuilder pool_;
    std::vector<bool> done_;
    std::vector<Register> scalar_;                   // by value: where it is the lowest lane
    std::map<std::pair<int, int>, Register> pairs_;  // by values: where they are the lanes
    std::map<std::pair<int, int>, int> stores_;      // by value and place
    int stage_ = 0;
};

}  // namespace

Code writeScalarPairs(const Code& code, const DataFlow& flow, const Pairing& pairing) {
    return ScalarPairs(code, flow, pairing).run();
}

}  // namespace orvgen::kernelgen
