#include "core_model.h"

#include <algorithm>
#include <map>
#include <set>

namespace orvgen::kernelgen {

namespace {

// The core: six instructions a cycle into a scheduler of 60; add and shuffle share two ports, mul
// has two, logic three, loads three, stores two, and some shuffles and the conversions one.
constexpr int kWidth = 6;
constexpr std::size_t kScheduler = 60;
constexpr int kGateInstructions = 12;
constexpr int kLoadLatency = 5;
constexpr int kForwardLatency = 5;

enum Port : unsigned { P0 = 1, P1 = 2, P5 = 4, Load = 8, Store = 16 };
constexpr int kLoadPorts = 3;
constexpr int kStorePorts = 2;

struct Work {
    unsigned ports = 0;  // vector ports that may do it; 0: none needed
    int latency = 0;
    int units = 1;  // vector operations
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
            w = {P1 | P5, 3};
            break;
        case Opcode::MulSS:
        case Opcode::MulSD:
        case Opcode::MulPS:
        case Opcode::MulPD:
            w = {P0 | P1, 4};
            break;
        case Opcode::XorPS:
            w = {P0 | P1 | P5, 1};
            break;
        case Opcode::Widen:
        case Opcode::Narrow:
            w = {P5, 5};
            break;
        case Opcode::Shufps:
        case Opcode::Shufpd:
            w = {P1 | P5, 1};
            break;
        case Opcode::Unpcklps:
        case Opcode::Unpckhps:
        case Opcode::Unpcklpd:
        case Opcode::Unpckhpd:
        case Opcode::Movlhps:
        case Opcode::Movhlps:
            w = {P5, 1};
            break;
        case Opcode::LoadHalves:
            w = {P5, 1, 1, 2};
            break;
        case Opcode::Load16At8:
            w = {P1 | P5, 2, 3, 2};
            break;
        case Opcode::SpreadSS:
            w = {P5, 2, 2, 1};
            break;
        case Opcode::LoadSS:
        case Opcode::LoadSD:
        case Opcode::LoadHalf:
        case Opcode::Load16:
        case Opcode::Load16Split:
        case Opcode::LoadAligned:
        case Opcode::SpreadSD:
            w = {0, 0, 0, 1};
            break;
        case Opcode::StoreSS:
        case Opcode::StoreSD:
        case Opcode::StoreLow:
        case Opcode::StoreHigh:
        case Opcode::Store16:
        case Opcode::Store16At8:
        case Opcode::Store16Split:
        case Opcode::StoreAligned:
        case Opcode::StoreZero4:
        case Opcode::StoreZero8:
            return {0, 0, 0, 0, 1};
        case Opcode::Zero:
        case Opcode::Move:
            w = {0, 0, 0, 0};
            break;
    }
    if (m.hasAddress && w.loads == 0) w.loads = 1;
    return w;
}

class Core {
  public:
    void run(const std::vector<MachineInstruction>& block) {
        registers_.fill(0);
        slots_.clear();
        for (int i = 0; i < kGateInstructions; ++i) dispatch();
        for (const MachineInstruction& m : block) step(m);
    }
    int finish() const { return finish_; }

  private:
    int dispatch() {
        if (++inCycle_ > kWidth) {
            ++cycle_;
            inCycle_ = 1;
        }
        while (!unissued_.empty() && *unissued_.begin() <= cycle_)
            unissued_.erase(unissued_.begin());
        while (unissued_.size() >= kScheduler) {
            cycle_ = *unissued_.begin();
            inCycle_ = 1;
            while (!unissued_.empty() && *unissued_.begin() <= cycle_)
                unissued_.erase(unissued_.begin());
        }
        return cycle_;
    }

    // The first cycle from `from` on in which a unit out of `ports` is free; takes it.
    int takeVector(unsigned ports, int from) {
        for (int c = from;; ++c) {
            unsigned& busy = entry(vector_, c);
            // The port with the fewest other uses first: P0 last for what may go elsewhere.
            for (const unsigned p : {static_cast<unsigned>(P5), static_cast<unsigned>(P0),
                                     static_cast<unsigned>(P1)}) {
                if ((ports & p) && !(busy & p)) {
                    busy |= p;
                    return c;
                }
            }
        }
    }
    template <class T>
    static T& entry(std::vector<T>& units, int cycle) {
        const auto c = static_cast<std::size_t>(cycle);
        if (units.size() <= c) units.resize(2 * c + 64);
        return units[c];
    }
    static int takeCount(std::vector<int>& units, int limit, int from) {
        for (int c = std::max(from, 0);; ++c)
            if (entry(units, c) < limit) {
                ++entry(units, c);
                return c;
            }
    }

    void step(const MachineInstruction& m) {
        if (m.clearsFirst) dispatch();
        const int start = dispatch();
        const Work w = workOf(m);
        int ready = start;
        const bool store = isStore(m.op);
        if (m.src >= 0) ready = std::max(ready, registers_[static_cast<std::size_t>(m.src)]);
        const bool readsDst = m.dst >= 0 && !isLoad(m.op) && m.op != Opcode::Move &&
                              !((m.op == Opcode::Widen || m.op == Opcode::Narrow) && m.clearsFirst);
        if (readsDst) ready = std::max(ready, registers_[static_cast<std::size_t>(m.dst)]);
        if (store) {
            const int c = takeCount(stores_, kStorePorts, ready);
            unissued_.insert(c);
            if (m.address.base == Base::Frame) slots_[m.address.offset] = c + kForwardLatency;
            finish_ = std::max(finish_, c + 1);
            return;
        }
        for (int l = 0; l < w.loads; ++l) {
            int from = start;
            if (m.hasAddress && m.address.base == Base::Frame)
                from = std::max(from, slots_[m.address.offset] - kLoadLatency);
            ready = std::max(ready, takeCount(loads_, kLoadPorts, from) + kLoadLatency);
        }
        int issue = ready;
        for (int u = 0; u < w.units && w.ports; ++u) issue = takeVector(w.ports, issue);
        if (w.ports || w.loads) unissued_.insert(issue);
        if (m.dst >= 0) registers_[static_cast<std::size_t>(m.dst)] = issue + w.latency;
        finish_ = std::max(finish_, issue + w.latency);
    }

    std::array<int, 16> registers_{};
    std::map<int, int> slots_;
    std::vector<unsigned> vector_;  // ports taken, by cycle
    std::vector<int> loads_, stores_;
    std::multiset<int> unissued_;
    int cycle_ = 0;
    int inCycle_ = 0;
    int finish_ = 0;
};

}  // namespace

double modelCycles(const std::vector<MachineInstruction>& block) {
    Core core;
    core.run(block);
    const int first = core.finish();
    core.run(block);
    return core.finish() - first;
}

double portBound(const std::vector<MachineInstruction>& block) {
    int addShuffle = 0, mul = 0, logic = 0, one = 0, loads = 0, stores = 0;
    for (const MachineInstruction& m : block) {
        const Work w = workOf(m);
        loads += w.loads;
        stores += w.stores;
        if (w.ports == P5) one += w.units;
        if (w.ports == (P1 | P5)) addShuffle += w.units;
        if (w.ports == (P0 | P1)) mul += w.units;
        if (w.ports == (P0 | P1 | P5)) logic += w.units;
    }
    return std::max({(addShuffle + one) / 2.0, (addShuffle + mul + logic + one) / 3.0,
                     static_cast<double>(one), loads / 3.0, stores / 2.0});
}

}  // namespace orvgen::kernelgen
