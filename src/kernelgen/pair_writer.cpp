// SPDX-License-Identifier: MIT
#include "pair_writer.h"

namespace orvgen::kernelgen {

namespace {

std::size_t at(int i) { return static_cast<std::size_t>(i); }

}  // namespace

PairWriter::PairWriter(const Code& code, const DataFlow& flow, const Pairing& pairing)
    : code_(code),
      flow_(flow),
      pairing_(pairing),
      pool_(out_),
      done_(code.instructions.size(), false),
      alone_(code.instructions.size(), kNoRegister) {
    out_.stages = code.stages;
    out_.scale = code.scale;
}

Code PairWriter::run() {
    const int n = static_cast<int>(code_.instructions.size());
    for (int i = 0; i < n; ++i)
        if (isStore(instruction(i).op) && !flow_.operands[at(i)].empty())
            stores_[{flow_.operands[at(i)].front(), instruction(i).address.offset}] = i;
    for (int i = 0; i < n; ++i) emit(i);
    return std::move(out_);
}

// ---- values

const Instruction& PairWriter::instruction(int i) const { return code_.instructions[at(i)]; }

bool PairWriter::areNeighbours(int lower, int upper) const {
    return kernelgen::areNeighbours(instruction(lower), instruction(upper), flow_.grain);
}

Register PairWriter::whole(int i) const {
    const int mate = pairing_.mate[at(i)];
    return pairs_.at(pairing_.isUpper(i) ? Values(mate, i) : Values(i, mate));
}

Register PairWriter::alone(int i) {
    if (alone_[at(i)] != kNoRegister) return alone_[at(i)];
    const Register r = isLoadAt(i)      ? loadAlone(i)
                       : standsAbove(i) ? upperAlone(i, whole(i))
                                        : whole(i);
    return alone_[at(i)] = r;
}

Register PairWriter::both(int a, int b) {
    if (const auto found = pairs_.find({a, b}); found != pairs_.end()) return found->second;
    const Register r = isLoadAt(a) && isLoadAt(b) ? loadBoth(a, b) : gather(a, b);
    keep(a, b, r);
    return r;
}

// How near at hand two values are as a pair.
int PairWriter::nearness(int a, int b) const {
    if (pairs_.contains({a, b}) || pairing_.isPair(a, b)) return 3;
    if (isLoadAt(a) && isLoadAt(b)) return areNeighbours(a, b) ? 2 : 1;
    return 0;
}

// ---- instructions

Instruction& PairWriter::push(Opcode op) {
    Instruction i{};
    i.op = op;
    i.stage = stage_;
    i.width = width_;
    out_.instructions.push_back(i);
    return out_.instructions.back();
}

Register PairWriter::combine(Opcode op, Register a, Register b, int immediate) {
    Instruction& i = push(op);
    i.a = a;
    i.b = b;
    i.immediate = immediate;
    return i.dst = out_.fresh();
}

Register PairWriter::load(Opcode op, const Address& address, const Address& high) {
    Instruction& i = push(op);
    i.hasAddress = op != Opcode::Zero;
    i.address = address;
    i.high = high;
    return i.dst = out_.fresh();
}

void PairWriter::store(Opcode op, const Address& address, Register r) {
    Instruction& i = push(op);
    i.a = r;
    i.hasAddress = true;
    i.address = address;
}

// Both of a pair, after everything that either of them waits for.
void PairWriter::emit(int i) {
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
        emitAlone(i);
}

void PairWriter::emitAlone(int i) {
    Instruction x = instruction(i);
    const std::vector<int>& operands = flow_.operands[at(i)];
    x.a = x.b = kNoRegister;
    takeOperands(x, operands);
    if (x.a == kNoRegister) x.a = alone(operands[0]);
    if (operands.size() > 1 && x.b == kNoRegister) x.b = alone(operands[1]);
    if (x.hasAddress && x.address.base == Base::Pool)
        x.address = pool_.entry(code_.pool[at(x.address.offset)]);
    x.dst = alone_[at(i)] = out_.fresh();
    out_.instructions.push_back(x);
}

void PairWriter::emitPair(int lower, int upper) {
    const Instruction& x = instruction(lower);
    Instruction pair = wide(x);
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
    if (x.hasAddress && x.address.base == Base::Pool)
        pair.address = constant(x.address, instruction(upper).address);
    // It names first what comes out above; no wider form of it does.
    if (x.op == Opcode::Movhlps) std::swap(pair.a, pair.b);
    pair.dst = out_.fresh();
    keep(lower, upper, pair.dst);
    out_.instructions.push_back(pair);
}

Address PairWriter::constant(const Address& a, const Address& b) {
    const PoolEntry& x = code_.pool[at(a.offset)];
    const PoolEntry& y = code_.pool[at(b.offset)];
    PoolEntry entry = joined(x, y);
    entry.text = x.text == y.text ? x.text : x.text + ", " + y.text;
    return pool_.entry(entry);
}

// Neighbours that stand side by side in a register go by one store, others by one each.
void PairWriter::emitStore(int i) {
    const Instruction& x = instruction(i);
    if (flow_.operands[at(i)].empty()) {
        out_.instructions.push_back(x);
        return;
    }
    const int value = flow_.operands[at(i)].front();
    const int size = accessSize(x.op, x.width);
    const int offset = x.address.offset;
    for (const auto& [values, r] : pairsOf(value)) {
        const bool below = values.first == value;
        const auto other = stores_.find(below ? std::pair(values.second, offset + size)
                                              : std::pair(values.first, offset - size));
        if (other == stores_.end() || done_[at(other->second)]) continue;
        const Instruction& lower = below ? x : instruction(other->second);
        if (!kernelgen::areNeighbours(lower, below ? instruction(other->second) : x, flow_.grain))
            continue;
        done_[at(other->second)] = true;
        storeBoth(lower, r);
        return;
    }
    if (standsAbove(value) && storeUpper(x, whole(value))) return;
    Instruction one = x;
    one.a = alone(value);
    out_.instructions.push_back(one);
}

// The pairs at hand that the value is in.
std::vector<std::pair<PairWriter::Values, Register>> PairWriter::pairsOf(int value) const {
    std::vector<std::pair<Values, Register>> found;
    for (const auto& entry : pairs_) {
        const auto& [a, b] = entry.first;
        if (a != b && (a == value || b == value)) found.push_back(entry);
    }
    return found;
}

}  // namespace orvgen::kernelgen
