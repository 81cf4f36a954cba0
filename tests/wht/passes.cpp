// SPDX-License-Identifier: MIT
// The machine code of the kernels, read back: how the layers are cut into passes,
// what each step of a pass reads, writes and does, which moves and shuffles there are.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "support/shape.h"
#include "wht/kernel.h"

namespace orvgen::test::wht {
namespace {

class Machine : public testing::TestWithParam<Kernel> {};

// ---- The steps of the passes

// Eight bytes of an array.
using Place = std::pair<Region, std::int64_t>;

// One block, or one step of a column pass: what it reads and writes, all of it and nothing else.
struct PassStep {
    std::string what;
    std::set<Place> reads, writes;
    std::map<std::string, long> operations;
    bool parkedScale = false;  // a frame load that is no spill
    bool spills = true;        // it may
};

struct Array {
    Region region;
    std::int64_t offset;  // bytes
};

void addPlaces(std::set<Place>& places, const Array& array, std::int64_t at, std::int64_t bytes) {
    for (std::int64_t i = 0; i < bytes; i += 8) places.emplace(array.region, array.offset + at + i);
}

PassStep blockStep(const Kernel& k, const std::string& what, Array from, Array to, long elements) {
    PassStep step;
    step.what = what;
    addPlaces(step.reads, from, 0, elements * k.size());
    addPlaces(step.writes, to, 0, elements * k.size());
    if (k.single)
        for (const char* shuffle : {"unpcklps", "unpckhps", "movlhps", "shufps"})
            step.operations[shuffle] = elements / 4;
    else
        for (const char* shuffle : {"unpcklpd", "unpckhpd"})
            step.operations[shuffle] = elements / 2;
    long layers = 0;
    while (1L << layers < elements) ++layers;
    step.operations["add"] = elements * layers / k.lanes();
    return step;
}

PassStep columnStep(const Kernel& k, const std::string& what, Array from, Array to, long column,
                    long radix, long stride) {
    PassStep step;
    step.what = what;
    for (long row = 0; row < radix; ++row) {
        addPlaces(step.reads, from, 16 * column + row * stride * k.size(), 16);
        addPlaces(step.writes, to, 16 * column + row * stride * k.size(), 16);
    }
    long layers = 0;
    while (1L << layers < radix) ++layers;
    step.operations["add"] = radix * layers;
    step.spills = radix > 8;
    return step;
}

// The steps in the order in which they run, by the table.
std::vector<PassStep> stepsOf(const Kernel& k) {
    const Array src{Region::src, 0}, dst{Region::dst, 0}, main{Region::buffer, 0};
    const auto at = [&](Array a, long elements) {
        return Array{a.region, a.offset + elements * k.size()};
    };
    const auto named = [](const char* what, long i) { return what + (" " + std::to_string(i)); };
    std::vector<PassStep> steps;
    if (!k.passes()) {
        PassStep step = blockStep(k, "the body", src, dst, k.points());
        step.operations["multiply"] = k.points() / k.lanes();
        step.parkedScale = true;
        steps.push_back(step);
        return steps;
    }
    const DataRow& row = k.row("wht_passes");
    const long blocks = row.integer("blocks"), size = row.integer("block_size");
    const long tiles = row.integer("tiles");
    const Array scratch = at(main, k.points());
    for (long t = 0; t < std::max(tiles, 1L); ++t) {
        const long tile = t * blocks * size;
        for (long b = 0; b < blocks; ++b)
            steps.push_back(blockStep(k, named("block", t * blocks + b), at(src, tile + b * size),
                                      tiles ? at(scratch, b * size) : at(main, b * size), size));
        if (!tiles) continue;
        EXPECT_EQ(row.integer("tile_steps"), row.integer("tile_stride") / k.lanes());
        for (long c = 0; c < row.integer("tile_steps"); ++c)
            steps.push_back(columnStep(k, named("tile column", c), scratch, at(main, tile), c,
                                       row.integer("tile_radix"), row.integer("tile_stride")));
    }
    EXPECT_EQ(row.integer("last_steps"), row.integer("last_stride") / k.lanes());
    for (long c = 0; c < row.integer("last_steps"); ++c) {
        const long radix = row.integer("last_radix");
        steps.push_back(columnStep(k, named("last column", c), main, dst, c, radix,
                                   row.integer("last_stride")));
        steps.back().operations["multiply"] = radix;
        steps.back().parkedScale = true;
    }
    return steps;
}

bool isData(const Step& step) {
    return step.access &&
           (step.access->region == Region::src || step.access->region == Region::dst ||
            step.access->region == Region::buffer);
}

// How data is moved by the aligned body and by the twin.
enum class Form { Aligned, Twin };

std::string checkMove(const Kernel& k, const Step& step, Form form) {
    const Access& a = *step.access;
    const Instruction& in = *step.instruction;
    const std::set<std::string> halves{"movsd", "movlps", "movhps"};
    const bool isAligned = a.region == Region::buffer || form == Form::Aligned;
    const bool good = !in.vector() ? false
                      : isAligned  ? a.size == 16 && in.aligned
                      : k.single   ? in.mnemonic == "movups"
                                   : halves.contains(in.mnemonic);
    return good ? "" : "moves data by " + in.text;
}

// A pointer or counter set or moved on, with nothing looked up; the loop's branch.
bool runsOn(const Instruction& in) {
    if (in.mnemonic == "jne") return true;
    if (in.mnemonic == "lea") return in.operands[1].index < 0;
    return (in.mnemonic == "add" || in.mnemonic == "sub" || in.mnemonic == "mov") &&
           in.operands[0].type == Operand::Type::general &&
           in.operands[1].type == Operand::Type::immediate;
}

// What a run has done of one step.
class StepProgress {
  public:
    StepProgress(const Kernel& k, const PassStep& step, Form form)
        : kernel_(k), step_(step), left_(step.writes), form_(form) {}

    bool isDone() const { return left_.empty(); }

    // What is wrong with the next instruction, empty when all is well.
    std::string take(const Step& at) {
        const Instruction& in = *at.instruction;
        // Between data: pointers and counters move on by constants, up to two loops at once.
        if (!in.vector() && in.kind != Kind::nop && kernel_.passes() &&
            (!runsOn(in) || ++integers_ > 10))
            return step_.what + ": index arithmetic, " + in.text;
        if (in.kind == Kind::shuffle) ++done_[in.mnemonic];
        if (in.kind == Kind::add) ++done_["add"];
        if (in.kind == Kind::multiply) ++done_["multiply"];
        const bool isOther = in.kind == Kind::logic || in.kind == Kind::convert ||
                             (in.mnemonic == "shufps" && in.operands[2].value != 0xee);
        const bool usesFrame = at.access && at.access->region == Region::frame && in.vector();
        if (isOther || (usesFrame && at.access->size == 16 && !in.aligned))
            return step_.what + ": " + in.text;
        if (usesFrame) {
            storesToFrame_ |= at.access->store;
            if (at.access->load) frameLoads_.insert(at.access->offset);
        }
        return isData(at) ? takeData(at) : "";
    }

    // What is wrong with the whole.
    std::string conclusion() const {
        if (!isDone()) return step_.what + " is not finished";
        if (read_ != step_.reads) return step_.what + " does not read all of its elements";
        if (done_ != step_.operations) {
            std::string text = step_.what + " does:";
            for (const auto& [name, count] : done_)
                text += " " + std::to_string(count) + " " + name;
            return text;
        }
        const std::size_t parked = step_.parkedScale ? 1 : 0;
        if (!step_.spills && (storesToFrame_ || frameLoads_.size() > parked))
            return step_.what + " spills";
        return "";
    }

  private:
    std::string takeData(const Step& at) {
        const std::string move = checkMove(kernel_, at, form_);
        if (!move.empty()) return step_.what + ": " + move;
        for (std::int64_t i = 0; i < at.access->size; i += 8) {
            const Place place{at.access->region, at.access->offset + i};
            if (at.access->store ? left_.erase(place) == 0 : step_.reads.count(place) == 0)
                return step_.what + ": " + at.instruction->text + " at " +
                       std::to_string(place.second) + " of " + regionName(place.first);
            if (at.access->load) read_.insert(place);
        }
        return "";
    }

    const Kernel& kernel_;
    const PassStep& step_;
    std::set<Place> left_;  // not written yet
    Form form_;
    std::set<Place> read_;
    std::map<std::string, long> done_;
    std::set<std::int64_t> frameLoads_;
    int integers_ = 0;
    bool storesToFrame_ = false;
};

// Follows a run through the steps; what is wrong, empty when all is well.
std::string followSteps(const Kernel& k, const Trace& trace, Form form) {
    auto at = trace.steps.begin();
    const auto end = trace.steps.end();
    std::map<std::string, long> outside;  // shuffles before the first data is touched
    if (k.passes())
        for (; at != end && !isData(*at); ++at)
            if (at->instruction->kind == Kind::shuffle) ++outside[at->instruction->mnemonic];
    const std::map<std::string, long> spread = k.single
                                                   ? std::map<std::string, long>{{"unpcklps", 2}}
                                                   : std::map<std::string, long>{{"movddup", 1}};
    if (k.passes() && outside != spread) return "the scale is not spread once before the passes";

    for (PassStep step : stepsOf(k)) {
        if (!k.passes())
            for (const auto& [name, count] : spread) step.operations[name] += count;
        StepProgress progress(k, step, form);
        for (; at != end && !progress.isDone(); ++at)
            if (const std::string wrong = progress.take(*at); !wrong.empty()) return wrong;
        if (const std::string wrong = progress.conclusion(); !wrong.empty()) return wrong;
    }
    for (; at != end; ++at)
        if (at->instruction->vector()) return "after the last step: " + at->instruction->text;
    return "";
}

class VectorMachine : public Machine {};

TEST_P(VectorMachine, TakesTheStepsOfThePasses) {
    const Kernel& k = GetParam();
    for (const std::int32_t flag : {8, 4, 1, 2}) {
        CallSetup setup;
        setup.flag = flag;
        EXPECT_EQ(followSteps(k, runIntegers(library(), k.name(), setup), Form::Aligned), "")
            << k.name();
        if (k.hasTwin()) {
            EXPECT_EQ(followSteps(k, runIntegers(library(), k.twin(), setup), Form::Twin), "")
                << k.twin();
        }
        setup.srcMisalignment = 8;
        EXPECT_EQ(followSteps(k, runIntegers(library(), k.name(), setup), Form::Twin), "")
            << k.name();
        setup.bufferNull = true;
        EXPECT_EQ(followSteps(k, runIntegers(library(), k.name(), setup), Form::Twin), "")
            << k.name();
    }
}

// The whole run: N k additions, N multiplications whatever the flag, the shuffles of the transposes
// and of the scale, and no other arithmetic.
TEST_P(Machine, DoesTheListedOperations) {
    const Kernel& k = GetParam();
    const long n = k.points(), lanes = k.scalar() ? 1 : k.lanes();
    for (const std::string& name : k.functions()) {
        for (const std::int32_t flag : {8, 4, 1, 2}) {
            CallSetup setup;
            setup.flag = flag;
            const BodyCounts c(runIntegers(library(), name, setup));
            const auto kind = [&](Kind what) {
                long sum = 0;
                for (const Lanes l : {Lanes::scalar32, Lanes::scalar64, Lanes::packed32,
                                      Lanes::packed64, Lanes::whole})
                    sum += c.count(what, l);
                return sum;
            };
            const Lanes type = k.scalar() ? (k.single ? Lanes::scalar32 : Lanes::scalar64)
                                          : (k.single ? Lanes::packed32 : Lanes::packed64);
            EXPECT_EQ(c.count(Kind::add, type) * lanes, n * k.order) << name;
            EXPECT_EQ(c.count(Kind::multiply, type) * lanes, n) << name;
            EXPECT_EQ(kind(Kind::add), c.count(Kind::add, type)) << name;
            EXPECT_EQ(kind(Kind::multiply), c.count(Kind::multiply, type)) << name;
            EXPECT_EQ(kind(Kind::convert), 0) << name;
            EXPECT_EQ(kind(Kind::logic), 0) << name;

            std::map<std::string, long> shuffles;
            if (!k.scalar() && k.single)
                shuffles = {{"unpcklps", n / 4 + 2},
                            {"unpckhps", n / 4},
                            {"movlhps", n / 4},
                            {"shufps", n / 4}};
            if (!k.scalar() && !k.single)
                shuffles = {{"unpcklpd", n / 2}, {"unpckhpd", n / 2}, {"movddup", 1}};
            long all = 0;
            for (const auto& [mnemonic, count] : shuffles) {
                EXPECT_EQ(c.mnemonic(mnemonic), count) << name << ", " << mnemonic;
                all += count;
            }
            EXPECT_EQ(kind(Kind::shuffle), all) << name;
        }
    }
}

// Straight-line bodies by the table: scalar or vector, as many vectors of data.
TEST_P(Machine, RunsStraightBodies) {
    const Kernel& k = GetParam();
    if (k.passes()) {
        EXPECT_EQ(k.find("wht_straight"), nullptr);
        return;
    }
    const DataRow& row = k.row("wht_straight");
    EXPECT_EQ(row.text("body") == "scalar", k.scalar());
    const BodyCounts c(runIntegers(library(), k.name(), CallSetup{}));
    if (k.scalar())
        EXPECT_EQ(c.stores(Region::dst, static_cast<int>(k.size())), k.points());
    else
        EXPECT_EQ(c.stores(Region::dst, 16), row.integer("vectors"));
    // More vectors than registers: some wait on the stack.
    EXPECT_EQ(c.stackStores() > 0, !k.scalar() && row.integer("vectors") >= 16);
}

std::vector<Kernel> vectorKernels() {
    std::vector<Kernel> list = allKernels();
    std::erase_if(list, [](const Kernel& k) { return k.scalar(); });
    return list;
}

INSTANTIATE_TEST_SUITE_P(Kernels, VectorMachine, testing::ValuesIn(vectorKernels()),
                         [](const auto& p) { return p.param.name(); });
INSTANTIATE_TEST_SUITE_P(Kernels, Machine, testing::ValuesIn(allKernels()),
                         [](const auto& p) { return p.param.name(); });

}  // namespace
}  // namespace orvgen::test::wht
