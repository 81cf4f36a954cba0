#include "core_model.h"

#include <algorithm>
#include <array>
#include <bit>
#include <map>
#include <set>

namespace orvgen::kernelgen {

namespace {

constexpr int kGateInstructions = 12;

// What an instruction asks of the vector unit.
enum class Unit : std::uint8_t { None, Add, Mul, Shuffle, Interleave, Logic, Convert, Count };

struct UnitModel {
    unsigned ports;
    int latency;
};

struct CoreModel {
    int width;              // instructions a cycle
    std::size_t scheduler;  // instructions that wait for operands
    int loadPorts, storePorts;
    int loadLatency, forwardLatency;
    std::array<UnitModel, static_cast<std::size_t>(Unit::Count)> units;

    const UnitModel& of(Unit u) const { return units[static_cast<std::size_t>(u)]; }
};

// Ports are bits; the order of the units is that of the enumeration.
constexpr CoreModel kThreePipe{
    6, 97, 3, 2, 5, 5, {{{0, 0}, {6, 3}, {3, 4}, {6, 1}, {4, 1}, {7, 1}, {4, 5}}}};
constexpr CoreModel kFourPipe{
    8, 160, 2, 2, 7, 8, {{{0, 0}, {12, 3}, {3, 3}, {6, 1}, {6, 1}, {15, 1}, {12, 4}}}};

const CoreModel& modelOf(CoreKind kind) {
    return kind == CoreKind::ThreePipe ? kThreePipe : kFourPipe;
}

struct Work {
    Unit unit = Unit::None;
    int operations = 0;
    int loads = 0;
    int stores = 0;
};

Work workOf(const MachineInstruction& m) {
    Work w;
    switch (m.op) {
        case Opcode::AddSS:
        case Opcode::SubSS:
        case Opcode::AddSD:
        case Opcode::SubSD:
        case Opcode::AddPS:
        case Opcode::SubPS:
        case Opcode::AddPD:
        case Opcode::SubPD:
            w = {Unit::Add, 1};
            break;
        case Opcode::MulSS:
        case Opcode::MulSD:
        case Opcode::MulPS:
        case Opcode::MulPD:
            w = {Unit::Mul, 1};
            break;
        case Opcode::XorPS:
            w = {Unit::Logic, 1};
            break;
        case Opcode::Widen:
        case Opcode::Narrow:
            w = {Unit::Convert, 1};
            break;
        case Opcode::Shufps:
        case Opcode::Shufpd:
            w = {Unit::Shuffle, 1};
            break;
        case Opcode::Unpcklps:
        case Opcode::Unpckhps:
        case Opcode::Unpcklpd:
        case Opcode::Unpckhpd:
        case Opcode::Movlhps:
        case Opcode::Movhlps:
            w = {Unit::Interleave, 1};
            break;
        case Opcode::LoadHalves:
            return {Unit::Interleave, 1, 2};
        case Opcode::SpreadSS:
            return {Unit::Interleave, 2, 1};
        case Opcode::Zero:
        case Opcode::Move:
            return w;
        default:
            if (isStore(m.op)) return {Unit::None, 0, 0, 1};
            return {Unit::None, 0, 1};
    }
    if (m.hasAddress) w.loads = 1;
    return w;
}

class Core {
  public:
    explicit Core(const CoreModel& model) : model_(model) {}

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
        while (waiting_.size() >= model_.scheduler) nextCycle(*waiting_.begin());
        return cycle_;
    }
    void nextCycle(int cycle) {
        cycle_ = cycle;
        inCycle_ = 1;
        leave();
    }
    void leave() { waiting_.erase(waiting_.begin(), waiting_.upper_bound(cycle_)); }

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
        if (m.clearsFirst || m.op == Opcode::LoadHalves) dispatch();  // two instructions
        const int start = dispatch();
        const Work w = workOf(m);
        int ready = start;
        if (m.src >= 0) ready = std::max(ready, registers_[static_cast<std::size_t>(m.src)]);
        const bool readsDst = m.dst >= 0 && !isLoad(m.op) && m.op != Opcode::Move && !m.clearsFirst;
        if (readsDst) ready = std::max(ready, registers_[static_cast<std::size_t>(m.dst)]);
        const bool inFrame = m.hasAddress && m.address.base == Base::Frame;
        if (w.stores > 0) {
            const int c = takeSlot(stores_, model_.storePorts, ready);
            waiting_.insert(c);
            if (inFrame) slots_[m.address.offset] = c + model_.forwardLatency;
            finish_ = std::max(finish_, c + 1);
            return;
        }
        for (int l = 0; l < w.loads; ++l) {
            int from = start;
            if (inFrame) from = std::max(from, slots_[m.address.offset] - model_.loadLatency);
            ready = std::max(ready, takeSlot(loads_, model_.loadPorts, from) + model_.loadLatency);
        }
        const UnitModel& unit = model_.of(w.unit);
        int issue = ready;
        for (int u = 0; u < w.operations; ++u) issue = takePort(unit.ports, issue);
        if (w.operations > 0 || w.loads > 0) waiting_.insert(issue);
        const int done = issue + (w.operations > 0 ? unit.latency : 0);
        if (m.dst >= 0) registers_[static_cast<std::size_t>(m.dst)] = done;
        finish_ = std::max(finish_, done);
    }

    const CoreModel& model_;
    std::array<int, 16> registers_{};
    std::map<int, int> slots_;
    std::vector<unsigned> vector_;  // ports taken, by cycle
    std::vector<int> loads_, stores_;
    std::multiset<int> waiting_;  // cycles in which dispatched instructions issue
    int cycle_ = 0;
    int inCycle_ = 0;
    int finish_ = 0;
};

}  // namespace

double modelCycles(const std::vector<MachineInstruction>& block, CoreKind kind) {
    Core core(modelOf(kind));
    core.run(block);
    const int first = core.finish();
    core.run(block);
    return core.finish() - first;
}

double portBound(const std::vector<MachineInstruction>& block, CoreKind kind) {
    const CoreModel& model = modelOf(kind);
    // Operations by the set of ports that can do them: any group of ports must do at least the work
    // that nobody else can.
    std::map<unsigned, int> work;
    int loads = 0, stores = 0;
    for (const MachineInstruction& m : block) {
        const Work w = workOf(m);
        loads += w.loads;
        stores += w.stores;
        if (w.operations > 0) work[model.of(w.unit).ports] += w.operations;
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

}  // namespace orvgen::kernelgen
