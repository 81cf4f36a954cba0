// SPDX-License-Identifier: MIT
#include "core_model.h"

#include <algorithm>
#include <array>
#include <bit>
#include <map>

namespace orvgen::kernelgen {

namespace {

constexpr int kGateInstructions = 12;
constexpr int kWideBytes = 64;

// What an instruction asks of a core.
struct Work {
    Unit unit = Unit::None;
    int operations = 0;
    int loads = 0;
    int stores = 0;
    int instructions = 1;  // that are dispatched
    bool crosses = false;  // a movement between the parts of a vector goes before
};

Work workOf(const MachineInstruction& m, const CoreModel& core, const Target& target) {
    const OpcodeRow& row = rowOf(m.op);
    Work w{.unit = row.unit, .operations = row.operations};
    if (row.form == Form::Store)
        w.stores = m.op == Opcode::StoreRows ? m.width / 16 : 1;
    else if (m.op == Opcode::LoadHalves)
        w.loads = 2;
    else if (m.op == Opcode::LoadRows)
        w.loads = m.width / 16;
    else if (m.hasAddress)
        w.loads = 1;
    if (m.op == Opcode::SpreadSS && target.threeOperands()) w.operations = 0;
    w.crosses = (m.op == Opcode::WidenUpperPS && !m.hasAddress) ||
                (core.conversionsCross && m.width == 32 && row.unit == Unit::Convert);
    if (m.clearsFirst || m.op == Opcode::LoadHalves || w.crosses) w.instructions = 2;
    if (m.op == Opcode::LoadRows || m.op == Opcode::StoreRows) w.instructions = m.width / 16;
    return w;
}

const UnitModel& unitOf(const CoreModel& core, Unit unit, int width) {
    const Units& units = width == kWideBytes ? core.wideUnits : core.units;
    switch (unit) {
        case Unit::Add:
            return units.add;
        case Unit::Mul:
            return units.mul;
        case Unit::Shuffle:
            return units.shuffle;
        case Unit::Interleave:
            return units.interleave;
        case Unit::Logic:
            return units.logic;
        case Unit::Convert:
            return units.convert;
        case Unit::Cross:
            return units.cross;
        default: {
            static constexpr UnitModel kNothing{};
            return kNothing;
        }
    }
}

class Core {
  public:
    Core(const CoreModel& model, const Target& target) : model_(model), target_(target) {}

    void run(const std::vector<MachineInstruction>& block) {
        registers_.fill(0);
        slots_.clear();
        for (int i = 0; i < kGateInstructions; ++i) dispatch();
        for (const MachineInstruction& m : block) step(m);
    }
    int finish() const { return finish_; }

  private:
    int dispatch() {
        if (++inCycle_ > model_.width) nextCycle(cycle_ + 1);
        leave();
        while (waiting_ >= model_.scheduler) nextCycle(nextIssue());
        return cycle_;
    }
    void nextCycle(int cycle) {
        cycle_ = cycle;
        inCycle_ = 1;
        leave();
    }
    // An instruction waits from its dispatch to the cycle in which it issues.
    void wait(int issue) {
        if (issue <= left_) return;
        ++entry(issuing_, issue);
        ++waiting_;
    }
    void leave() {
        while (left_ < cycle_) waiting_ -= entry(issuing_, ++left_);
    }
    int nextIssue() {
        int cycle = left_ + 1;
        while (entry(issuing_, cycle) == 0) ++cycle;
        return cycle;
    }

    template <class T>
    static T& entry(std::vector<T>& units, int cycle) {
        const auto c = static_cast<std::size_t>(cycle);
        if (units.size() <= c) units.resize(2 * c + 64);
        return units[c];
    }

    // The first cycle from `from` on in which one of `ports` is free; takes it. A port that fewer
    // kinds of work can use goes first: those at the ends of the mask.
    int takePort(unsigned ports, int from) {
        for (int c = from;; ++c) {
            unsigned& busy = entry(vector_, c);
            const unsigned free = ports & ~busy;
            if (!free) continue;
            const unsigned lowest = free & (0U - free);
            const unsigned highest = std::bit_floor(free);
            busy |= (highest == 4U || highest == 8U) ? highest : lowest;
            return c;
        }
    }
    static int takeSlot(std::vector<int>& units, int limit, int from) {
        for (int c = std::max(from, 0);; ++c)
            if (entry(units, c) < limit) {
                ++entry(units, c);
                return c;
            }
    }

    void step(const MachineInstruction& m) {
        const Work w = workOf(m, model_, target_);
        int start = 0;
        for (int i = 0; i < w.instructions; ++i) start = dispatch();
        int ready = start;
        for (const int operand : {m.src, m.first})
            if (operand >= 0)
                ready = std::max(ready, registers_[static_cast<std::size_t>(operand)]);
        const bool inFrame = m.hasAddress && m.address.base == Base::Frame;
        if (w.stores > 0) {
            int c = ready;
            for (int i = 0; i < w.stores; ++i) c = takeSlot(stores_, model_.storePorts, ready);
            wait(c);
            if (inFrame) slots_[m.address.offset] = c + model_.forwardLatency;
            finish_ = std::max(finish_, c + 1);
            return;
        }
        for (int l = 0; l < w.loads; ++l) {
            int from = start;
            if (inFrame) from = std::max(from, slots_[m.address.offset] - model_.loadLatency);
            ready = std::max(ready, takeSlot(loads_, model_.loadPorts, from) + model_.loadLatency);
        }
        if (w.crosses) {
            const UnitModel& cross = unitOf(model_, Unit::Cross, m.width);
            ready = takePort(cross.ports, ready) + cross.latency;
        }
        const UnitModel& unit = unitOf(model_, w.unit, m.width);
        int issue = ready;
        for (int u = 0; u < w.operations; ++u) issue = takePort(unit.ports, issue);
        if (w.operations > 0 || w.loads > 0) wait(issue);
        const int done = issue + (w.operations > 0 ? unit.latency : 0);
        if (m.dst >= 0) registers_[static_cast<std::size_t>(m.dst)] = done;
        finish_ = std::max(finish_, done);
    }

    const CoreModel& model_;
    const Target& target_;
    std::array<int, kMostRegisters> registers_{};
    std::map<int, int> slots_;
    std::vector<unsigned> vector_;  // ports taken, by cycle
    std::vector<int> loads_, stores_;
    std::vector<int> issuing_;  // dispatched instructions by the cycle in which they issue
    int waiting_ = 0;           // those of them that issue after left_
    int left_ = -1;             // the cycle up to which they have left
    int cycle_ = 0;
    int inCycle_ = 0;
    int finish_ = 0;
};

}  // namespace

std::array<CoreModel, 2> coresOf(const Target& target) {
    return {kThreePipe, target.pairs ? kFourPipeShort : kFourPipe};
}

double modelCycles(const std::vector<MachineInstruction>& block, const CoreModel& model,
                   const Target& target) {
    Core core(model, target);
    core.run(block);
    const int first = core.finish();
    core.run(block);
    return core.finish() - first;
}

double aloneCycles(const std::vector<MachineInstruction>& block, const CoreModel& model,
                   const Target& target) {
    Core core(model, target);
    core.run(block);
    return core.finish();
}

double portBound(const std::vector<MachineInstruction>& block, const CoreModel& model,
                 const Target& target) {
    // Operations by the set of ports that can do them: any group of ports must do at least the work
    // that nobody else can.
    std::map<unsigned, int> work;
    int loads = 0, stores = 0;
    for (const MachineInstruction& m : block) {
        const Work w = workOf(m, model, target);
        loads += w.loads;
        stores += w.stores;
        if (w.operations > 0) work[unitOf(model, w.unit, m.width).ports] += w.operations;
        if (w.crosses) ++work[unitOf(model, Unit::Cross, m.width).ports];
    }
    double bound = std::max(static_cast<double>(loads) / model.loadPorts,
                            static_cast<double>(stores) / model.storePorts);
    for (unsigned group = 1; group < 16; ++group) {
        int sum = 0;
        for (const auto& [ports, operations] : work)
            if ((ports & ~group) == 0) sum += operations;
        bound = std::max(bound, static_cast<double>(sum) / std::popcount(group));
    }
    return bound;
}

int orderLatency(Opcode op) { return std::max(1, unitOf(kThreePipe, rowOf(op).unit, 16).latency); }

}  // namespace orvgen::kernelgen
