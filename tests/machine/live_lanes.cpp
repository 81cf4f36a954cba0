// SPDX-License-Identifier: MIT
#include "live_lanes.h"

#include <array>
#include <bitset>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace orvgen::test {
namespace {

// Lanes of four bytes; a binary64 number is two.
constexpr int laneCount = 8;
using Lanes8 = std::bitset<laneCount>;

// A lane of an operand that is read.
struct From {
    int source;
    int lane;
};
// For each lane of the result what it is made of; nothing: it is zero.
using Origins = std::array<std::vector<From>, laneCount>;

// The lanes of the result that come from where, by the instruction's name. The sources are its
// operands that are read, in order: for a result that is merged into, the first is the destination.
class Shuffle {
  public:
    Shuffle(const Instruction& in, int sources) : in_(in), m_(in.mnemonic), last_(sources - 1) {
        const int words = in.width / 4;
        if (move() || shuffle(words)) return;
        throw std::runtime_error("its lanes are not known: " + in.text);
    }
    const Origins& origins() const { return origins_; }

  private:
    const Instruction& in_;
    const std::string& m_;
    int last_;
    Origins origins_;

    void set(int to, int source, int lane) {
        origins_[static_cast<std::size_t>(to)] = {{source, lane}};
    }
    void copy(int to, int source, int lane, int count) {
        for (int i = 0; i < count; ++i) set(to + i, source, lane + i);
    }
    bool is(std::initializer_list<const char*> names) const {
        for (const char* name : names)
            if (m_ == name) return true;
        return false;
    }
    int immediate() const {
        return static_cast<int>(in_.operands[static_cast<std::size_t>(in_.operandCount - 1)].value);
    }

    bool move() {
        if (is({"movaps", "movups", "movapd", "movupd", "movdqa", "movdqu"})) {
            copy(0, last_, 0, in_.width / 4);
        } else if (is({"movss", "movd"})) {
            copy(0, 0, 0, last_ == 0 ? 0 : 4);
            set(0, last_, 0);
        } else if (is({"movsd", "movq"})) {
            copy(0, 0, 0, last_ == 0 ? 0 : 4);
            copy(0, last_, 0, 2);
        } else if (is({"movlps", "movlpd"})) {
            copy(2, 0, 2, 2);
            copy(0, last_, 0, 2);
        } else if (is({"movhps", "movhpd", "movlhps"})) {
            copy(0, 0, 0, 2);
            copy(2, last_, 0, 2);
        } else if (m_ == "movhlps") {
            copy(0, last_, 2, 2);
            copy(2, 0, 2, 2);
        } else if (m_ == "broadcastss") {
            for (int i = 0; i < in_.width / 4; ++i) set(i, 0, 0);
        } else if (m_ == "broadcastsd") {
            for (int i = 0; i < in_.width / 4; i += 2) copy(i, 0, 0, 2);
        } else if (m_ == "broadcastf128") {
            copy(0, 0, 0, 4);
            copy(4, 0, 0, 4);
        } else {
            return false;
        }
        return true;
    }

    // Within each 16 bytes, beginning at lane b; then across them.
    bool shuffle(int words) {
        for (int b = 0; b < words; b += 4)
            if (!within(b)) return across();
        return true;
    }

    bool within(int b) {
        const int imm = immediate();
        if (is({"unpcklps", "unpckhps"})) {
            const int from = b + (m_ == "unpckhps" ? 2 : 0);
            for (int i = 0; i < 4; ++i) set(b + i, i % 2 == 0 ? 0 : last_, from + i / 2);
        } else if (is({"unpcklpd", "unpckhpd"})) {
            const int from = b + (m_ == "unpckhpd" ? 2 : 0);
            copy(b, 0, from, 2);
            copy(b + 2, last_, from, 2);
        } else if (m_ == "shufps") {
            for (int i = 0; i < 4; ++i) set(b + i, i < 2 ? 0 : last_, b + (imm >> (2 * i) & 3));
        } else if (is({"permilps", "pshufd"})) {
            for (int i = 0; i < 4; ++i) set(b + i, 0, b + (imm >> (2 * i) & 3));
        } else if (is({"shufpd", "permilpd"})) {
            const int second = m_ == "shufpd" ? last_ : 0;
            copy(b, 0, b + 2 * (imm >> (b / 2) & 1), 2);
            copy(b + 2, second, b + 2 * (imm >> (b / 2 + 1) & 1), 2);
        } else if (m_ == "movddup") {
            copy(b, 0, b, 2);
            copy(b + 2, 0, b, 2);
        } else if (is({"movsldup", "movshdup"})) {
            for (int i = 0; i < 4; ++i) set(b + i, 0, b + i / 2 * 2 + (m_ == "movshdup"));
        } else if (m_ == "blendps") {
            for (int i = b; i < b + 4; ++i) set(i, (imm >> i & 1) != 0 ? last_ : 0, i);
        } else if (m_ == "blendpd") {
            for (int i = b; i < b + 4; i += 2) copy(i, (imm >> (i / 2) & 1) != 0 ? last_ : 0, i, 2);
        } else {
            return false;
        }
        return true;
    }

    bool across() {
        const int imm = immediate();
        if (m_ == "insertps") {
            copy(0, 0, 0, 4);
            set(imm >> 4 & 3, last_, in_.memory() ? 0 : imm >> 6 & 3);
            for (int i = 0; i < 4; ++i)
                if ((imm >> i & 1) != 0) origins_[static_cast<std::size_t>(i)].clear();
        } else if (m_ == "insertf128") {
            copy(0, 0, 0, laneCount);
            copy(4 * (imm & 1), last_, 0, 4);
        } else if (m_ == "extractf128") {
            copy(0, 0, 4 * (imm & 1), 4);
        } else if (m_ == "psrldq") {
            copy(0, 0, imm / 4, 4 - imm / 4);
        } else if (m_ == "perm2f128") {
            for (int b = 0; b < 2; ++b) {
                const int select = imm >> (4 * b);
                if ((select & 8) != 0) continue;
                copy(4 * b, (select & 2) != 0 ? last_ : 0, 4 * (select & 1), 4);
            }
        } else if (m_ == "permpd") {
            for (int i = 0; i < 4; ++i) copy(2 * i, 0, 2 * (imm >> (2 * i) & 3), 2);
        } else {
            return false;
        }
        return true;
    }
};

class Walk {
  public:
    explicit Walk(const Trace& trace) {
        for (auto step = trace.steps.rbegin(); step != trace.steps.rend(); ++step) back(*step);
    }
    LiveCounts counts;

  private:
    using Place = std::pair<Region, std::int64_t>;
    std::array<Lanes8, 16> registers_;
    // Of dst everything is wanted in the end, of the frame and the buffer nothing.
    std::set<Place> wanted_, overwritten_;

    bool isWanted(const Place& p) const {
        return p.first == Region::dst ? !overwritten_.contains(p) : wanted_.contains(p);
    }
    void want(const Place& p) {
        p.first == Region::dst ? (void)overwritten_.erase(p) : (void)wanted_.insert(p);
    }
    void write(const Place& p) {
        p.first == Region::dst ? (void)overwritten_.insert(p) : (void)wanted_.erase(p);
    }

    void read(const Step& step, const Operand& o, int lane) {
        if (o.type == Operand::Type::vector) {
            registers_[static_cast<std::size_t>(o.number)].set(static_cast<std::size_t>(lane));
        } else if (4 * lane < step.access->size) {
            want({step.access->region, step.access->offset + 4 * lane});
        }
    }

    // The lanes of the result that somebody wants, which nobody does before this instruction.
    Lanes8 takeResult(const Step& step) {
        const Operand& to = step.instruction->operands[0];
        Lanes8 live;
        if (to.type == Operand::Type::vector) {
            std::swap(live, registers_[static_cast<std::size_t>(to.number)]);
            return live;
        }
        for (int lane = 0; 4 * lane < step.access->size; ++lane) {
            const Place p{step.access->region, step.access->offset + 4 * lane};
            live.set(static_cast<std::size_t>(lane), isWanted(p));
            write(p);
        }
        return live;
    }

    void back(const Step& step) {
        const Instruction& in = *step.instruction;
        if (!in.vector()) {
            if (step.access && step.access->store)
                for (std::int64_t at = 0; at < step.access->size; at += 4)
                    write({step.access->region, step.access->offset + at});
            return;
        }
        const Lanes8 live = takeResult(step);
        if (in.clears) return;
        std::vector<const Operand*> sources;
        for (int i = in.mergesFirst && !in.vex ? 0 : 1; i < in.operandCount; ++i) {
            const Operand& o = in.operands[static_cast<std::size_t>(i)];
            if (o.type == Operand::Type::vector || o.type == Operand::Type::memory)
                sources.push_back(&o);
        }
        if (in.stores()) {
            const int first = in.mnemonic.starts_with("movh") ? 2
                              : in.mnemonic == "extractf128"
                                  ? 4 * static_cast<int>(in.operands[2].value)
                                  : 0;
            for (int i = 0; i < laneCount; ++i)
                if (live[static_cast<std::size_t>(i)]) read(step, *sources.back(), first + i);
            return;
        }
        const bool computes = in.kind == Kind::add || in.kind == Kind::multiply ||
                              in.kind == Kind::logic || in.kind == Kind::convert;
        if (computes) {
            compute(step, live, sources);
            return;
        }
        const Origins origins = Shuffle(in, static_cast<int>(sources.size())).origins();
        for (std::size_t i = 0; i < laneCount; ++i) {
            if (!live[i]) continue;
            for (const From& f : origins[i])
                read(step, *sources[static_cast<std::size_t>(f.source)], f.lane);
        }
    }

    // Each number of the result from the numbers in the same place; sizes may differ.
    void compute(const Step& step, const Lanes8& live, const std::vector<const Operand*>& sources) {
        const Instruction& in = *step.instruction;
        const bool scalar = in.lanes == test::Lanes::scalar32 || in.lanes == test::Lanes::scalar64;
        const bool wide = in.lanes == test::Lanes::scalar64 || in.lanes == test::Lanes::packed64;
        const bool converts = in.kind == Kind::convert;
        const int to = wide ? 2 : 1, from = converts ? 3 - to : to;
        // Where conversions are of vectors there is as much of the larger type as fits.
        const int numbers = scalar ? 1 : converts ? in.width / 8 : in.width / (4 * to);
        for (int i = 0; i < numbers; ++i) {
            bool isLive = false;
            for (int k = 0; k < to; ++k) isLive |= live[static_cast<std::size_t>(i * to + k)];
            if (!isLive) continue;
            count(in.kind, wide);
            for (const Operand* o : sources) {
                if (converts && scalar && o != sources.back()) continue;
                for (int k = 0; k < from; ++k) read(step, *o, i * from + k);
            }
        }
        // Above a scalar the first source goes on.
        if (!scalar || sources.size() < 2) return;
        for (int i = to; i < 4; ++i)
            if (live[static_cast<std::size_t>(i)]) read(step, *sources[0], i);
    }

    void count(Kind kind, bool wide) {
        if (kind == Kind::add) ++(wide ? counts.additions64 : counts.additions32);
        if (kind == Kind::multiply) ++(wide ? counts.multiplications64 : counts.multiplications32);
        if (kind == Kind::convert) ++(wide ? counts.widenings : counts.narrowings);
    }
};

}  // namespace

LiveCounts liveCounts(const Trace& trace) { return Walk(trace).counts; }

}  // namespace orvgen::test
