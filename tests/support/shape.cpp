// SPDX-License-Identifier: MIT
#include "support/shape.h"

#include <algorithm>
#include <map>
#include <set>

namespace orvgen::test {
namespace {

using Texts = std::vector<std::string>;

std::string describe(const Step& step) {
    std::string text = step.instruction->text;
    if (step.access) {
        text += std::string(" (") + regionName(step.access->region) + " at " +
                std::to_string(step.access->offset) + ", " + std::to_string(step.access->size) +
                " bytes)";
    }
    return text;
}

bool data(const Step& step) {
    return step.access &&
           (step.access->region == Region::src || step.access->region == Region::dst ||
            step.access->region == Region::buffer);
}

// Which bytes of a buffer have been touched, and how often.
class ByteMap {
  public:
    explicit ByteMap(std::int64_t size) : counts(static_cast<std::size_t>(size)) {}
    bool holds(const Access& a) const {
        return a.offset >= 0 && a.offset + a.size <= static_cast<std::int64_t>(counts.size());
    }
    void add(const Access& a) {
        for (int i = 0; i < a.size; ++i) ++counts[static_cast<std::size_t>(a.offset + i)];
    }
    bool any(const Access& a) const {
        for (std::int64_t i = a.offset; i < a.offset + a.size; ++i) {
            if (at(i) > 0) return true;
        }
        return false;
    }
    bool all(const Access& a) const {
        for (std::int64_t i = a.offset; i < a.offset + a.size; ++i) {
            if (at(i) == 0) return false;
        }
        return true;
    }
    int at(std::int64_t i) const {
        return i < 0 || i >= size() ? 0 : counts[static_cast<std::size_t>(i)];
    }
    std::int64_t size() const { return static_cast<std::int64_t>(counts.size()); }

  private:
    std::vector<int> counts;
};

class BodyCheck {
  public:
    BodyCheck(const Trace& t, const ShapeRules& r)
        : trace(t),
          rules(r),
          srcRead(r.srcBytes + r.srcBeyond),
          dstWritten(std::max(r.dstBytes, r.srcBytes)),
          bufferWritten(r.bufferBytes) {}

    Texts run() {
        for (const std::string& s : trace.complaints) add(s);
        if (trace.status != 0) add("status " + std::to_string(trace.status));
        flow();
        for (const Step& step : trace.steps) {
            if (step.access) access(step);
        }
        coverage();
        if (rules.frameLimit >= 0 && trace.frameBytes > rules.frameLimit) {
            add("frame of " + std::to_string(trace.frameBytes) + " bytes");
        }
        return texts;
    }

  private:
    const Trace& trace;
    const ShapeRules& rules;
    Texts texts;
    ByteMap srcRead, dstWritten, bufferWritten;
    bool stored = false;

    void add(const std::string& s) {
        if (texts.size() < 20) texts.push_back(s);
    }

    void flow() {
        if (!rules.straight) return;
        const auto first = std::find_if(trace.steps.begin(), trace.steps.end(), data);
        if (first == trace.steps.end()) add("touches no data");
        for (auto it = first; it != trace.steps.end(); ++it) {
            const bool last = it + 1 == trace.steps.end();
            if (it->instruction->flow() && !(last && it->instruction->kind == Kind::ret)) {
                add("control flow after the gate: " + it->instruction->text);
            }
        }
        std::vector<const Instruction*> all;
        for (const Step& step : trace.steps) all.push_back(step.instruction);
        std::sort(all.begin(), all.end());
        const auto twice = std::adjacent_find(all.begin(), all.end());
        if (twice != all.end()) add("runs twice: " + (*twice)->text);
    }

    void access(const Step& step) {
        const Access& a = *step.access;
        switch (a.region) {
            case Region::src:
                if (a.store) add("writes src: " + describe(step));
                if (!srcRead.holds(a)) {
                    add("outside src: " + describe(step));
                } else {
                    srcRead.add(a);
                }
                if (rules.allReadsFirst ? stored : dstWritten.any(a)) {
                    add("reads src after a store to dst: " + describe(step));
                }
                element(step);
                if (!a.vector) add("data in a general register: " + describe(step));
                break;
            case Region::dst:
                if (a.load) add("reads dst: " + describe(step));
                if (a.offset < 0 || a.offset + a.size > rules.dstBytes) {
                    add("outside dst: " + describe(step));
                } else {
                    dstWritten.add(a);
                }
                stored = true;
                element(step);
                break;
            case Region::buffer:
                if (!bufferWritten.holds(a)) {
                    add("outside buffer: " + describe(step));
                    break;
                }
                if (a.load && !bufferWritten.all(a)) {
                    add("reads what the buffer held before: " + describe(step));
                }
                if (a.store) bufferWritten.add(a);
                break;
            case Region::constants:
                if (a.store) add("writes constants: " + describe(step));
                break;
            case Region::frame:
                break;
            case Region::unknown:
                add("access to nobody's memory: " + describe(step));
                break;
        }
        if (rules.scalar && a.size > 8) add("16-byte access: " + describe(step));
    }

    void element(const Step& step) {
        if (rules.elementBytes != 0 && step.access->size != rules.elementBytes) {
            add("no single element: " + describe(step));
        }
    }

    void coverage() {
        for (std::int64_t i = 0; i < rules.dstBytes; ++i) {
            if (dstWritten.at(i) == 1) continue;
            add("byte " + std::to_string(i) + " of dst written " +
                std::to_string(dstWritten.at(i)) + " times");
            break;
        }
        const auto skipped = [this](std::int64_t i) {
            return std::any_of(rules.neverRead.begin(), rules.neverRead.end(),
                               [i](const auto& r) { return i >= r.first && i < r.second; });
        };
        for (std::int64_t i = 0; i < rules.srcBytes; ++i) {
            if ((srcRead.at(i) > 0) != skipped(i)) continue;
            add("byte " + std::to_string(i) + " of src " +
                (srcRead.at(i) ? "read though it never is" : "not read"));
            break;
        }
    }
};

bool scalarAllowed(const Instruction& in) {
    const Operand* memory = in.memory();
    if (memory && memory->size > 8) return false;
    if (in.lanes == Lanes::scalar32 || in.lanes == Lanes::scalar64) {
        // Half moves are for vectors; the others are moves, arithmetic, conversions.
        return in.kind == Kind::move
                   ? !in.mnemonic.starts_with("movl") && !in.mnemonic.starts_with("movh")
                   : true;
    }
    if (memory) return false;
    if (in.mnemonic == "movaps") return true;
    return in.mnemonic == "xorps" && in.operands[0].number == in.operands[1].number;
}

}  // namespace

std::vector<std::string> checkBody(const Trace& trace, const ShapeRules& rules) {
    return BodyCheck(trace, rules).run();
}

std::vector<std::string> checkInstructions(const Function& function, const ShapeRules& rules) {
    Texts texts;
    for (const Instruction& in : function.instructions) {
        if (in.kind == Kind::foreign) {
            texts.push_back(function.label(in) + ": no kernel may hold it");
        } else if (in.vector() && in.vex != rules.threeOperands) {
            texts.push_back(function.label(in) + ": no kernel may hold it in this encoding");
        } else if (in.sse3 && !rules.movddup) {
            texts.push_back(function.label(in) + ": SSE3");
        } else if (rules.scalar && in.vector() && !scalarAllowed(in)) {
            texts.push_back(function.label(in) + ": not scalar");
        }
    }
    return texts;
}

void Coverage::add(const Trace& trace) {
    // Most follow the one before them in memory, too.
    auto place = ran.begin();
    for (const Step& step : trace.steps) {
        place = ran.insert(place, step.instruction);
        ++place;
    }
}

std::vector<std::string> Coverage::missing(const Function& function) const {
    Texts texts;
    for (const Instruction& in : function.instructions) {
        if (in.kind != Kind::nop && !ran.count(&in)) {
            texts.push_back(function.label(in) + ": never runs");
        }
    }
    return texts;
}

namespace {

// One kernel under all gates and flags.
class KernelCheck {
  public:
    KernelCheck(const MachineCode& c, const KernelFacts& f) : code(c), facts(f) {}

    Texts run() {
        const std::string& name = facts.name;
        const bool twin = !facts.twin.empty();
        const Texts through = twin ? Texts{name, facts.twin} : Texts{name};
        const ShapeRules& other = twin || facts.twoBodies ? facts.twinRules : facts.rules;
        gate(name, {name}, 0, "");
        bodies(name, {}, {name}, facts.rules, "");
        std::set<int> offsets{facts.pointerStep, 8};
        for (const int off : offsets) {
            const std::string by = " off by " + std::to_string(off);
            bodies(name, misaligned(off, off), through, other, by);
            bodies(name, misaligned(off, 0), through, other, " src" + by);
            bodies(name, misaligned(0, off), through, other, " dst" + by);
        }
        gate(name, through, 8, " misaligned");
        if (twin) {
            gate(facts.twin, {facts.twin}, 0, " twin");
            bodies(facts.twin, {}, {facts.twin}, facts.twinRules, " twin");
        }
        add("", checkInstructions(code.function(name), facts.rules));
        add("", coverage.missing(code.function(name)));
        if (twin) {
            add("", checkInstructions(code.function(facts.twin), facts.twinRules));
            add("", coverage.missing(code.function(facts.twin)));
        }
        return texts;
    }

  private:
    const MachineCode& code;
    const KernelFacts& facts;
    Texts texts;
    Coverage coverage;
    std::map<std::int32_t, Trace> alignedTraces;  // by flag, of a kernel without a second body

    void add(const std::string& where, const Texts& list) {
        for (const std::string& s : list) {
            if (texts.size() < 30) texts.push_back(facts.name + where + ": " + s);
        }
    }

    Trace trace(const std::string& function, const CallSetup& setup) {
        Trace t = runIntegers(code, function, setup);
        coverage.add(t);
        return t;
    }

    void expectEntered(const Trace& t, const Texts& names, const std::string& where) {
        if (t.entered == names) return;
        std::string list;
        for (const std::string& s : t.entered) list.append(" ").append(s);
        add(where, {"runs through" + list});
    }

    static CallSetup misaligned(int src, int dst) {
        CallSetup s;
        s.srcMisalignment = src;
        s.dstMisalignment = dst;
        return s;
    }

    static bool sameInstructions(const Trace& a, const Trace& b) {
        return std::equal(
            a.steps.begin(), a.steps.end(), b.steps.begin(), b.steps.end(),
            [](const Step& x, const Step& y) { return x.instruction == y.instruction; });
    }

    void refuses(const std::string& function, const CallSetup& setup, int status,
                 const Texts& names, const std::string& where) {
        const Trace t = trace(function, setup);
        add(where, t.complaints);
        if (t.status != status) add(where, {"status " + std::to_string(t.status)});
        if (std::any_of(t.steps.begin(), t.steps.end(), data) || !t.calls.empty()) {
            add(where, {"touches data"});
        }
        expectEntered(t, names, where);
    }

    // Null pointers and flags of one entry, with pointers `off` bytes from a 16-byte boundary.
    void gate(const std::string& function, const Texts& names, int off, const std::string& where) {
        for (const std::int32_t flag : {8, 3, 0}) {
            for (int nulls = 1; nulls < 4; ++nulls) {
                CallSetup s = misaligned(off, off);
                s.flag = flag;
                s.srcNull = (nulls & 1) != 0;
                s.dstNull = (nulls & 2) != 0;
                const bool stays = off == 0 || nulls == 3;  // null is aligned
                refuses(function, s, -8, stays ? Texts{function} : names, where + " null");
            }
        }
        for (const std::int32_t flag :
             {0, 3, 5, 6, 7, 9, 10, 12, 16, 32, -1, -8, 0x108, INT32_MIN, INT32_MAX}) {
            CallSetup s = misaligned(off, off);
            s.flag = flag;
            refuses(function, s, -16, names, where + " flag " + std::to_string(flag));
            flagOrder(runIntegers(code, function, s), where);
        }
    }

    // The most usual flag is recognised first.
    void flagOrder(const Trace& t, const std::string& where) {
        std::vector<std::int64_t> compared;
        for (const Step& step : t.steps) {
            const Operand& a = step.instruction->operands[0];
            const Operand& b = step.instruction->operands[1];
            if (step.instruction->mnemonic == "cmp" && a.type == Operand::Type::general &&
                b.type == Operand::Type::immediate) {
                compared.push_back(b.value);
            }
        }
        if (compared != std::vector<std::int64_t>{8, 4, 1, 2}) {
            add(where, {"flag not compared with 8, 4, 1 and 2 in turn"});
        }
    }

    void bodies(const std::string& function, CallSetup setup, const Texts& names,
                const ShapeRules& rules, const std::string& where) {
        for (const std::int32_t flag : {1, 2, 4, 8}) {
            setup.flag = flag;
            const std::string here = where + " flag " + std::to_string(flag);
            const Trace t = trace(function, setup);
            add(here, checkBody(t, rules));
            expectEntered(t, names, here);
            if (!t.calls.empty()) add(here, {"calls " + t.calls[0].name});
            // Without a twin or a second body there is no alignment test: the same instructions
            // run.
            if (facts.twin.empty() && !facts.twoBodies) {
                const auto [aligned, first] = alignedTraces.try_emplace(flag);
                if (first) {
                    CallSetup onBoundary;
                    onBoundary.flag = flag;
                    aligned->second = runIntegers(code, function, onBoundary);
                }
                if (!sameInstructions(t, aligned->second)) {
                    add(here, {"another way than for aligned buffers"});
                }
            }
        }
        if (!facts.takesBuffer) return;
        setup.bufferNull = true;
        const Trace t = trace(function, setup);
        add(where + " own buffer", checkBody(t, rules));
        const bool pair = t.calls.size() == 2 && t.calls[0].name == "orvMalloc" &&
                          t.calls[0].argument == rules.bufferBytes &&
                          t.calls[1].name == "orvFree" && t.calls[1].argument == 0;
        if (!pair) add(where + " own buffer", {"not one block of the exact size, released"});
    }
};

}  // namespace

std::vector<std::string> checkKernel(const MachineCode& code, const KernelFacts& facts) {
    return KernelCheck(code, facts).run();
}

BodyCounts::BodyCounts(const Trace& trace) : frameBytes(trace.frameBytes) {
    for (const Step& step : trace.steps) {
        const Instruction& in = *step.instruction;
        ++instructions;
        ++kinds[{in.kind, in.lanes}];
        ++mnemonics[in.mnemonic];
        if (!step.access || !in.vector()) continue;
        if (step.access->load) ++accesses[{step.access->region, step.access->size, false}];
        if (step.access->store) ++accesses[{step.access->region, step.access->size, true}];
    }
}

long BodyCounts::count(Kind kind, Lanes lanes) const {
    const auto it = kinds.find({kind, lanes});
    return it == kinds.end() ? 0 : it->second;
}

long BodyCounts::mnemonic(const std::string& name) const {
    const auto it = mnemonics.find(name);
    return it == mnemonics.end() ? 0 : it->second;
}

long BodyCounts::stackStores() const {
    return stores(Region::frame, 4) + stores(Region::frame, 8) + stores(Region::frame, 16);
}

long BodyCounts::shuffles() const {
    return count(Kind::shuffle, Lanes::packed32) + count(Kind::shuffle, Lanes::packed64) +
           count(Kind::shuffle, Lanes::whole);
}

long BodyCounts::access(Region region, int size, bool store) const {
    const auto it = accesses.find({region, size, store});
    return it == accesses.end() ? 0 : it->second;
}

}  // namespace orvgen::test
