#include "allocate.h"

#include <algorithm>
#include <limits>
#include <map>
#include <stdexcept>

namespace orvgen::kernelgen {

namespace {

constexpr int kRegisters = 16;
constexpr int kNever = std::numeric_limits<int>::max() / 2;
// Values in memory are evicted as if their next use were this much further away.
constexpr double kCleanPreference = 1.3;
// A memory value that is used again this soon is loaded rather than read twice.
constexpr int kReloadDistance = 12;
// A vector of two halves that is used again this soon is not loaded a second time.
constexpr int kKeepDistance = 24;
// A conversion into a register that was written this recently clears it first.
constexpr int kRecentWrite = 12;

class Allocator {
  public:
    Allocator(const Code& code, const std::vector<int>& order, const AllocationOptions& options)
        : code_(code), order_(order), options_(options) {
        values_.resize(static_cast<std::size_t>(code.registers));
        owner_.fill(kNoRegister);
        lastWrite_.fill(-1000);
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
            else if (i.op == Opcode::Widen || i.op == Opcode::Narrow)
                convert(i);
            else
                twoOperand(i);
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
        return code_
            .instructions[static_cast<std::size_t>(order_[static_cast<std::size_t>(position)])];
    }
    Value& value(Register r) { return values_[static_cast<std::size_t>(r)]; }
    const Instruction& definition(Register r) {
        return code_.instructions[static_cast<std::size_t>(value(r).definition)];
    }

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
                const int size = accessSize(load.op);
                if (options_.storesEndAllOfSrc ||
                    overlap(load.address, size, s.address, accessSize(s.op)) ||
                    (load.op == Opcode::LoadHalves &&
                     overlap(load.high, size, s.address, accessSize(s.op)))) {
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
        return isLoad(d.op) && d.op != Opcode::SpreadSS && d.op != Opcode::SpreadSD &&
               !isLoadedOnce(r);
    }
    bool isLoadedOnce(Register r) {
        const Instruction& d = definition(r);
        return options_.loadSrcOnce && isLoad(d.op) && d.address.base == Base::Src;
    }
    // The address from which an instruction can read the value, if it can.
    bool memoryOperand(Register r, Address& address) {
        Value& v = value(r);
        const Instruction& d = definition(r);
        const bool scalar = d.op == Opcode::LoadSS || d.op == Opcode::LoadSD;
        if (v.barrier >= position_ &&
            ((scalar && (d.address.base != Base::Src || options_.foldSrc)) ||
             d.op == Opcode::LoadAligned)) {
            address = d.address;
            return true;
        }
        if (v.slot < 0) return false;
        address = {Base::Frame, v.slot};
        return true;
    }

    MachineInstruction& emit(Opcode op) {
        MachineInstruction m{};
        m.op = op;
        m.stage = stage_;
        result_.instructions.push_back(m);
        return result_.instructions.back();
    }
    void wrote(int reg) {
        lastWrite_[static_cast<std::size_t>(reg)] = static_cast<int>(result_.instructions.size());
    }

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
        const Register r = owner_[static_cast<std::size_t>(reg)];
        Value& v = value(r);
        const bool reloadable = isClean(r) && nextUse(r) < v.barrier;
        if (v.slot < 0 && !reloadable) {
            const int size = resultSize(definition(r).op);
            v.slot = newSlot(size);
            MachineInstruction& m = emit(size == 4   ? Opcode::StoreSS
                                         : size == 8 ? Opcode::StoreSD
                                                     : Opcode::StoreAligned);
            m.src = reg;
            m.hasAddress = true;
            m.address = {Base::Frame, v.slot};
            ++result_.spills;
        }
        v.reg = -1;
        owner_[static_cast<std::size_t>(reg)] = kNoRegister;
    }

    // A register for a new value: a free one, else that of the value needed last.
    int take(Register r, bool leastRecent = false) {
        int best = -1;
        for (int reg = 0; reg < kRegisters; ++reg) {
            const auto at = static_cast<std::size_t>(reg);
            if (owner_[at] != kNoRegister || locked_[at]) continue;
            if (best < 0 ||
                (leastRecent && lastWrite_[at] < lastWrite_[static_cast<std::size_t>(best)]))
                best = reg;
        }
        if (best < 0) {
            double furthest = -1;
            for (int reg = 0; reg < kRegisters; ++reg) {
                if (locked_[static_cast<std::size_t>(reg)]) continue;
                const Register o = owner_[static_cast<std::size_t>(reg)];
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
            owner_[static_cast<std::size_t>(best)] = r;
            value(r).reg = best;
        }
        return best;
    }

    void lock(int reg) { locked_[static_cast<std::size_t>(reg)] = true; }
    void unlockAll() { locked_.fill(false); }

    // Puts the value of r from memory into `reg`.
    void loadInto(Register r, int reg) {
        const Value& v = value(r);
        const Instruction& d = definition(r);
        if (v.slot >= 0 && !(isClean(r) && v.barrier >= position_)) {
            const int size = resultSize(d.op);
            MachineInstruction& m = emit(size == 4   ? Opcode::LoadSS
                                         : size == 8 ? Opcode::LoadSD
                                                     : Opcode::LoadAligned);
            m.dst = reg;
            m.hasAddress = true;
            m.address = {Base::Frame, v.slot};
        } else {
            if (!isLoad(d.op) || v.barrier < position_)
                throw std::logic_error("a value is neither in a register nor in memory");
            MachineInstruction& m = emit(d.op);
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
        if (v.reg >= 0) owner_[static_cast<std::size_t>(v.reg)] = kNoRegister;
        v.reg = -1;
        if (v.slot >= 0) {
            freeSlots_[result_.slotSizes[static_cast<std::size_t>(v.slot)]].push_back(v.slot);
            v.slot = -1;
        }
    }

    static bool takesMemoryOperand(Opcode op) {
        return op != Opcode::Movlhps && op != Opcode::Movhlps;
    }

    double costAsTied(Register r) { return value(r).reg >= 0 ? (dies(r) ? 0.0 : 0.6) : 1.0; }
    double costAsOther(Register r, Opcode op) {
        if (value(r).reg >= 0) return 0.0;
        Address unused;
        return takesMemoryOperand(op) && memoryOperand(r, unused) ? 0.2 : 1.0;
    }

    void twoOperand(const Instruction& i) {
        Register x = i.a;
        Register y = i.b;
        if (y != kNoRegister && x != y && options_.commute && isCommutative(i.op) &&
            costAsTied(y) + costAsOther(x, i.op) < costAsTied(x) + costAsOther(y, i.op))
            std::swap(x, y);

        bool fromMemory = i.hasAddress;
        Address address = i.address;
        if (value(x).reg < 0 && value(x).slot < 0 && (isLoadedOnce(x) || isWorthKeeping(x)))
            ensure(x);
        if (value(x).reg >= 0) lock(value(x).reg);
        int other = -1;
        if (y != kNoRegister && y != x) {
            if (value(y).reg < 0 && takesMemoryOperand(i.op) && memoryOperand(y, address) &&
                !(useAfter(y) - position_ <= kReloadDistance && hasFree())) {
                fromMemory = true;
            } else {
                other = ensure(y);
                lock(other);
            }
        }
        int target = value(x).reg;
        if (target >= 0 && dies(x)) {
            owner_[static_cast<std::size_t>(target)] = i.dst;
            value(x).reg = -1;
            value(i.dst).reg = target;
        } else if (target >= 0) {
            const int from = target;
            target = take(i.dst);
            MachineInstruction& m = emit(Opcode::Move);
            m.dst = target;
            m.src = from;
            wrote(target);
        } else {
            target = take(i.dst);
            loadInto(x, target);
        }
        if (y == x) other = target;
        MachineInstruction& m = emit(i.op);
        m.dst = target;
        m.src = other;
        m.hasAddress = fromMemory;
        m.address = address;
        m.immediate = i.immediate;
        wrote(target);
        unlockAll();
        release(x);
        if (y != x) release(y);
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

    void convert(const Instruction& i) {
        const Register x = i.a;
        const int from = value(x).reg;
        int target = -1;
        bool fromMemory = false;
        Address address;
        if (from >= 0 && dies(x)) {
            target = from;
            owner_[static_cast<std::size_t>(target)] = i.dst;
            value(x).reg = -1;
            value(i.dst).reg = target;
        } else {
            if (from >= 0) lock(from);
            fromMemory = from < 0 && memoryOperand(x, address);
            if (from < 0 && !fromMemory) lock(ensure(x));
            target = take(i.dst, true);
        }
        const bool recent = static_cast<int>(result_.instructions.size()) -
                                lastWrite_[static_cast<std::size_t>(target)] <
                            kRecentWrite;
        MachineInstruction& m = emit(i.op);
        m.dst = target;
        m.src = fromMemory ? -1 : (value(x).reg >= 0 ? value(x).reg : target);
        m.hasAddress = fromMemory;
        m.address = address;
        m.clearsFirst = m.src != target && recent;
        wrote(target);
        unlockAll();
        release(x);
    }

    void store(const Instruction& i) {
        if (i.a != kNoRegister) lock(ensure(i.a));
        if (const auto found = barriers_.find(position_); found != barriers_.end()) {
            for (const Register r : found->second) {
                if (useAfter(r) == kNever) continue;
                if (value(r).reg < 0 && value(r).slot < 0) ensure(r);
            }
        }
        MachineInstruction& m = emit(i.op);
        m.src = i.a == kNoRegister ? -1 : value(i.a).reg;
        m.hasAddress = true;
        m.address = i.address;
        unlockAll();
        release(i.a);
    }

    const Code& code_;
    const std::vector<int>& order_;
    AllocationOptions options_;
    std::vector<Value> values_;
    std::array<Register, kRegisters> owner_;
    std::array<int, kRegisters> lastWrite_;
    std::array<bool, kRegisters> locked_{};
    std::map<int, std::vector<Register>> barriers_;
    std::map<int, std::vector<int>> freeSlots_;
    Allocation result_;
    int position_ = 0;
    int stage_ = 0;
};

}  // namespace

Allocation allocate(const Code& code, const std::vector<int>& order,
                    const AllocationOptions& options) {
    return Allocator(code, order, options).run();
}

}  // namespace orvgen::kernelgen
