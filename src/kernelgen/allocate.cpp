// SPDX-License-Identifier: MIT
#include "allocate.h"

#include <algorithm>
#include <limits>
#include <map>
#include <stdexcept>

namespace orvgen::kernelgen {

namespace {

constexpr int kNever = std::numeric_limits<int>::max() / 2;
// Values in memory are evicted as if their next use were this much further away.
constexpr double kCleanPreference = 1.3;
// A memory value that is used again this soon is loaded rather than read twice.
constexpr int kReloadDistance = 12;
// A vector of two halves that is used again this soon is not loaded a second time.
constexpr int kKeepDistance = 24;
// A conversion into a register that was written this recently clears it first.
constexpr int kRecentWrite = 12;

std::size_t at(int i) { return static_cast<std::size_t>(i); }

class Allocator {
  public:
    Allocator(const Code& code, const std::vector<int>& order, const Target& target,
              const AllocationOptions& options)
        : code_(code),
          order_(order),
          target_(target),
          options_(options),
          owner_(at(target.registers), kNoRegister),
          lastWrite_(at(target.registers), -1000),
          locked_(at(target.registers), false) {
        values_.resize(at(code.registers));
        collectUses();
        findBarriers();
    }

    Allocation run() {
        for (position_ = 0; position_ < static_cast<int>(order_.size()); ++position_) {
            const Instruction& i = instructionAt(position_);
            stage_ = i.stage;
            if (isLoad(i.op)) continue;
            if (isStore(i.op))
                store(i);
            else if (rowOf(i.op).form == Form::Unary)
                convert(i);
            else
                combine(i);
        }
        return std::move(result_);
    }

  private:
    struct Value {
        int definition = -1;  // index of the instruction
        std::vector<int> uses;
        std::size_t next = 0;  // first use not yet passed
        int reg = -1;
        int slot = -1;
        int barrier = kNever;  // a src load is not possible from this position on
    };

    const Instruction& instructionAt(int position) const {
        return code_.instructions[at(order_[at(position)])];
    }
    Value& value(Register r) { return values_[at(r)]; }
    const Instruction& definition(Register r) {
        return code_.instructions[at(value(r).definition)];
    }
    int sizeOf(Register r) { return resultSize(definition(r).op, definition(r).width); }

    void collectUses() {
        for (std::size_t i = 0; i < code_.instructions.size(); ++i)
            if (code_.instructions[i].dst != kNoRegister)
                value(code_.instructions[i].dst).definition = static_cast<int>(i);
        for (int p = 0; p < static_cast<int>(order_.size()); ++p) {
            const Instruction& i = instructionAt(p);
            if (i.a != kNoRegister) value(i.a).uses.push_back(p);
            if (i.b != kNoRegister && i.b != i.a) value(i.b).uses.push_back(p);
        }
    }

    static bool overlap(const Address& a, int aSize, const Address& b, int bSize) {
        return a.offset < b.offset + bSize && b.offset < a.offset + aSize;
    }

    // The position of the first store that may destroy what a src load reads.
    void findBarriers() {
        std::vector<int> stores;
        for (int p = 0; p < static_cast<int>(order_.size()); ++p) {
            const Instruction& i = instructionAt(p);
            if (isStore(i.op) && i.address.base == Base::Dst) stores.push_back(p);
        }
        for (Register r = 0; r < code_.registers; ++r) {
            Value& v = value(r);
            if (v.definition < 0) continue;
            const Instruction& load = definition(r);
            if (!isLoad(load.op) || load.op == Opcode::Zero || load.address.base != Base::Src)
                continue;
            for (const int p : stores) {
                const Instruction& s = instructionAt(p);
                const int size = accessSize(load.op, load.width);
                const int stored = accessSize(s.op, s.width);
                if (options_.storesEndAllOfSrc || overlap(load.address, size, s.address, stored) ||
                    (load.op == Opcode::LoadHalves &&
                     overlap(load.high, size, s.address, stored))) {
                    v.barrier = p;
                    break;
                }
            }
            if (v.barrier != kNever) barriers_[v.barrier].push_back(r);
        }
    }

    int nextUse(Register r) {
        Value& v = value(r);
        while (v.next < v.uses.size() && v.uses[v.next] < position_) ++v.next;
        return v.next < v.uses.size() ? v.uses[v.next] : kNever;
    }
    int useAfter(Register r) {
        const int now = nextUse(r);
        if (now != position_) return now;
        const Value& v = value(r);
        return v.next + 1 < v.uses.size() ? v.uses[v.next + 1] : kNever;
    }
    bool dies(Register r) { return useAfter(r) == kNever; }

    // The value can be had from memory without having been stored by us.
    bool isClean(Register r) {
        const Instruction& d = definition(r);
        const bool spread = d.op == Opcode::SpreadSS || d.op == Opcode::SpreadSD;
        return isLoad(d.op) && !(spread && !target_.threeOperands()) && !isLoadedOnce(r);
    }
    bool isLoadedOnce(Register r) {
        const Instruction& d = definition(r);
        return options_.loadSrcOnce && isLoad(d.op) && d.address.base == Base::Src;
    }
    // Whether an instruction may read in memory what the load reads.
    bool isOperand(Opcode load) const {
        if (load == Opcode::Load16 || load == Opcode::Load16Split) return target_.unalignedOperands;
        return load == Opcode::LoadSS || load == Opcode::LoadSD || load == Opcode::LoadHalf ||
               load == Opcode::LoadAligned;
    }
    // The address from which an instruction can read so many bytes of the value, if it can.
    bool memoryOperand(Register r, int bytes, Address& address) {
        Value& v = value(r);
        const Instruction& d = definition(r);
        if (v.barrier >= position_ && isOperand(d.op) && bytes <= accessSize(d.op, d.width) &&
            (d.address.base != Base::Src || options_.foldSrc)) {
            address = d.address;
            return true;
        }
        if (v.slot < 0 || bytes > sizeOf(r)) return false;
        address = {Base::Frame, v.slot};
        return true;
    }

    MachineInstruction& emit(Opcode op, int width) {
        MachineInstruction m{};
        m.op = op;
        m.stage = stage_;
        m.width = width;
        result_.instructions.push_back(m);
        return result_.instructions.back();
    }
    void wrote(int reg) { lastWrite_[at(reg)] = static_cast<int>(result_.instructions.size()); }

    int newSlot(int size) {
        auto& free = freeSlots_[size];
        if (!free.empty()) {
            const int slot = free.back();
            free.pop_back();
            return slot;
        }
        result_.slotSizes.push_back(size);
        return static_cast<int>(result_.slotSizes.size()) - 1;
    }

    void evict(int reg) {
        const Register r = owner_[at(reg)];
        Value& v = value(r);
        const bool reloadable = isClean(r) && nextUse(r) < v.barrier;
        if (v.slot < 0 && !reloadable) {
            const int size = sizeOf(r);
            v.slot = newSlot(size);
            MachineInstruction& m = emit(size == 4   ? Opcode::StoreSS
                                         : size == 8 ? Opcode::StoreSD
                                                     : Opcode::StoreAligned,
                                         size);
            m.src = reg;
            m.hasAddress = true;
            m.address = {Base::Frame, v.slot};
            ++result_.spills;
        }
        v.reg = -1;
        owner_[at(reg)] = kNoRegister;
    }

    // A register for a new value: a free one, else that of the value needed last.
    int take(Register r, bool leastRecent = false) {
        int best = -1;
        for (int reg = 0; reg < target_.registers; ++reg) {
            const std::size_t i = at(reg);
            if (owner_[i] != kNoRegister || locked_[i]) continue;
            if (best < 0 || (leastRecent && lastWrite_[i] < lastWrite_[at(best)])) best = reg;
        }
        if (best < 0) {
            double furthest = -1;
            for (int reg = 0; reg < target_.registers; ++reg) {
                if (locked_[at(reg)]) continue;
                const Register o = owner_[at(reg)];
                const Value& v = value(o);
                const int use = nextUse(o);
                const bool clean = v.slot >= 0 || (isClean(o) && use < v.barrier);
                const double distance =
                    static_cast<double>(use - position_ + 1) * (clean ? kCleanPreference : 1.0);
                if (distance > furthest) {
                    furthest = distance;
                    best = reg;
                }
            }
            evict(best);
        }
        if (r != kNoRegister) {
            owner_[at(best)] = r;
            value(r).reg = best;
        }
        return best;
    }

    void lock(int reg) { locked_[at(reg)] = true; }
    void unlockAll() { locked_.assign(locked_.size(), false); }

    // Puts the value of r from memory into `reg`.
    void loadInto(Register r, int reg) {
        const Value& v = value(r);
        const Instruction& d = definition(r);
        if (v.slot >= 0 && !(isClean(r) && v.barrier >= position_)) {
            const int size = sizeOf(r);
            MachineInstruction& m = emit(size == 4   ? Opcode::LoadSS
                                         : size == 8 ? Opcode::LoadSD
                                                     : Opcode::LoadAligned,
                                         size);
            m.dst = reg;
            m.hasAddress = true;
            m.address = {Base::Frame, v.slot};
        } else {
            if (!isLoad(d.op) || v.barrier < position_)
                throw std::logic_error("a value is neither in a register nor in memory");
            MachineInstruction& m = emit(d.op, d.width);
            m.dst = reg;
            m.hasAddress = d.hasAddress;
            m.address = d.address;
            m.high = d.high;
        }
        wrote(reg);
    }

    int ensure(Register r) {
        Value& v = value(r);
        if (v.reg < 0) {
            const int reg = take(r);
            loadInto(r, reg);
        }
        return v.reg;
    }

    // Ends the life of an operand whose last use this was.
    void release(Register r) {
        if (r == kNoRegister || !dies(r)) return;
        Value& v = value(r);
        if (v.reg >= 0) owner_[at(v.reg)] = kNoRegister;
        v.reg = -1;
        if (v.slot >= 0) {
            freeSlots_[result_.slotSizes[at(v.slot)]].push_back(v.slot);
            v.slot = -1;
        }
    }

    double costAsFirst(Register r) {
        if (value(r).reg < 0) return 1.0;
        return target_.threeOperands() || dies(r) ? 0.0 : 0.6;
    }
    double costAsSecond(Register r, const Instruction& i) {
        if (value(r).reg >= 0) return 0.0;
        Address unused;
        return rowOf(i.op).fromMemory && memoryOperand(r, accessSize(i.op, i.width), unused) ? 0.2
                                                                                             : 1.0;
    }

    // An operation on two values, or on one and a constant in memory.
    void combine(const Instruction& i) {
        const OpcodeRow& row = rowOf(i.op);
        Register x = i.a;
        Register y = i.b;
        if (y != kNoRegister && x != y && options_.commute && row.commutes &&
            costAsFirst(y) + costAsSecond(x, i) < costAsFirst(x) + costAsSecond(y, i))
            std::swap(x, y);

        bool fromMemory = i.hasAddress;
        Address address = i.address;
        if (value(x).reg < 0 && value(x).slot < 0 && (isLoadedOnce(x) || isWorthKeeping(x)))
            ensure(x);
        if (value(x).reg >= 0) lock(value(x).reg);
        int second = -1;
        if (y != kNoRegister && y != x) {
            if (value(y).reg < 0 && row.fromMemory &&
                memoryOperand(y, accessSize(i.op, i.width), address) &&
                !(useAfter(y) - position_ <= kReloadDistance && hasFree())) {
                fromMemory = true;
            } else {
                second = ensure(y);
                lock(second);
            }
        }
        const auto [target, first] =
            target_.threeOperands() ? anyTarget(i, x, y) : tiedTarget(i, x);
        MachineInstruction& m = emit(i.op, i.width);
        m.dst = target;
        m.first = first;
        m.src = y == x ? first : second;
        m.hasAddress = fromMemory;
        m.address = address;
        m.immediate = i.immediate;
        m.broadcast = i.broadcast;
        wrote(target);
        unlockAll();
        release(x);
        if (y != x) release(y);
        release(i.dst);  // a result that nothing takes, computed for its exceptions
    }

    struct Places {
        int target, first;
    };
    // Two operands: the first one is in the register of the result, and overwritten.
    Places tiedTarget(const Instruction& i, Register x) {
        const int from = value(x).reg;
        if (from >= 0 && dies(x)) {
            handOver(x, i.dst);
            return {from, from};
        }
        const int target = take(i.dst);
        if (from >= 0) {
            MachineInstruction& m = emit(Opcode::Move, 16);
            m.dst = target;
            m.src = from;
            wrote(target);
        } else {
            loadInto(x, target);
        }
        return {target, target};
    }
    // Three operands: the result may take the register of an operand that ends here, or any other.
    Places anyTarget(const Instruction& i, Register x, Register y) {
        int first = value(x).reg;
        if (first < 0 && !dies(x) && hasFree()) lock(first = ensure(x));
        if (first < 0) {
            const int target = take(i.dst);
            loadInto(x, target);
            return {target, target};
        }
        for (const Register r : {x, y}) vacate(r);
        return {take(i.dst), first};
    }

    // The register of a value whose last use this is becomes another value's, or free.
    void handOver(Register from, Register to) {
        const int reg = value(from).reg;
        owner_[at(reg)] = to;
        value(from).reg = -1;
        value(to).reg = reg;
    }
    void vacate(Register r) {
        if (r == kNoRegister || value(r).reg < 0 || !dies(r)) return;
        owner_[at(value(r).reg)] = kNoRegister;
        locked_[at(value(r).reg)] = false;
        value(r).reg = -1;
    }

    // Two halves take two instructions to load, and a copy is one: if the vector is wanted again
    // soon, and there is room for it and for the copy, it is loaded once.
    bool isWorthKeeping(Register r) {
        return definition(r).op == Opcode::LoadHalves && useAfter(r) - position_ <= kKeepDistance &&
               std::ranges::count(owner_, kNoRegister) >= 2;
    }

    bool hasFree() const {
        return std::find(owner_.begin(), owner_.end(), kNoRegister) != owner_.end();
    }

    // Half of a vector is converted out of memory where it stands there: the upper half would have
    // to be moved down first.
    void convert(const Instruction& i) {
        const Register x = i.a;
        int from = value(x).reg;
        Address address;
        const bool wantsMemory = from < 0 || i.op == Opcode::WidenUpperPS;
        const bool scalar = i.op == Opcode::Widen || i.op == Opcode::Narrow;
        const bool fromMemory = rowOf(i.op).fromMemory && wantsMemory &&
                                !(scalar && target_.threeOperands() && oldestWritten() < 0) &&
                                memoryOperand(x, accessSize(i.op, i.width), address);
        if (fromMemory) from = -1;
        int target = -1;
        if (!target_.threeOperands() && from >= 0 && dies(x)) {
            target = from;
            handOver(x, i.dst);
        } else {
            if (from < 0 && !fromMemory) from = ensure(x);
            if (from >= 0) lock(from);
            if (target_.threeOperands()) vacate(x);
            target = take(i.dst, true);
        }
        MachineInstruction m{};
        m.op = i.op;
        m.stage = stage_;
        m.width = i.width;
        m.dst = target;
        m.src = from;
        m.hasAddress = fromMemory;
        m.address = address;
        if (scalar) keepRest(m);
        result_.instructions.push_back(m);
        wrote(target);
        unlockAll();
        release(x);
    }

    // A scalar conversion leaves the rest of its register as it was, or takes it from another one;
    // that must not make it wait for a result that has nothing to do with it.
    void keepRest(MachineInstruction& m) {
        if (target_.threeOperands()) {
            m.first = m.src;
            if (m.src >= 0) return;
            m.first = oldestWritten();
            return;
        }
        if (m.src == m.dst) return;
        const int age = static_cast<int>(result_.instructions.size()) - lastWrite_[at(m.dst)];
        m.clearsFirst = age < kRecentWrite;
        if (!m.clearsFirst) m.first = m.dst;
    }

    // The register that was written longest ago, of those that were not just written; -1 if there
    // is none. What the block has not written yet may be what the call before ended with.
    int oldestWritten() const {
        int oldest = -1;
        for (int r = 0; r < target_.registers; ++r) {
            const int age = static_cast<int>(result_.instructions.size()) - lastWrite_[at(r)];
            if (lastWrite_[at(r)] < 0 || age < kRecentWrite) continue;
            if (oldest < 0 || lastWrite_[at(r)] < lastWrite_[at(oldest)]) oldest = r;
        }
        return oldest;
    }

    void store(const Instruction& i) {
        if (i.a != kNoRegister) lock(ensure(i.a));
        if (const auto found = barriers_.find(position_); found != barriers_.end()) {
            for (const Register r : found->second) {
                if (useAfter(r) == kNever) continue;
                if (value(r).reg < 0 && value(r).slot < 0) ensure(r);
            }
        }
        MachineInstruction& m = emit(i.op, i.width);
        m.src = i.a == kNoRegister ? -1 : value(i.a).reg;
        m.hasAddress = true;
        m.address = i.address;
        unlockAll();
        release(i.a);
    }

    const Code& code_;
    const std::vector<int>& order_;
    const Target& target_;
    AllocationOptions options_;
    std::vector<Value> values_;
    std::vector<Register> owner_;
    std::vector<int> lastWrite_;
    std::vector<bool> locked_;
    std::map<int, std::vector<Register>> barriers_;
    std::map<int, std::vector<int>> freeSlots_;
    Allocation result_;
    int position_ = 0;
    int stage_ = 0;
};

}  // namespace

Allocation allocate(const Code& code, const std::vector<int>& order, const Target& target,
                    const AllocationOptions& options) {
    return Allocator(code, order, target, options).run();
}

}  // namespace orvgen::kernelgen
