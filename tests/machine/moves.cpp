// SPDX-License-Identifier: MIT
// How the complex kernels move data: whole aligned vectors, neighbours merged by shifts, halves;
// the twin's moves against the aligned body's; zero vectors; the stack; the precision of the
// arithmetic.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include "kernels/kernel_list.h"
#include "machine/library.h"
#include "support/count_check.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

struct Moves {
    std::multiset<std::int64_t> wholeLoads, halfLoads, wholeStores, halfStores;
    std::set<std::int64_t> alignedStorePlaces;
    bool other = false;  // an access of another size
};

Moves movesOf(const Trace& trace) {
    Moves m;
    for (const Step& s : trace.steps) {
        if (!s.access) continue;
        const Access& a = *s.access;
        if (a.region == Region::src) {
            if (a.size == 16) m.wholeLoads.insert(a.offset);
            if (a.size == 8) m.halfLoads.insert(a.offset);
        } else if (a.region == Region::dst) {
            if (a.size == 16) m.wholeStores.insert(a.offset);
            if (a.size == 8) m.halfStores.insert(a.offset);
            if (a.size == 16 && s.instruction->aligned) m.alignedStorePlaces.insert(a.offset);
        } else {
            continue;
        }
        m.other |= a.size != 8 && a.size != 16;
    }
    return m;
}

const DataRow& shapeRow(int length) { return dataTable("complex_f32_shape").row("length", length); }

// The complex binary32 kernels from the length on; from 6 on they work in vectors.
constexpr int kFirstInVectors = 6;

template <class Check>
void forComplexSingle(int first, Check check) {
    for (const ListedKernel& k : listedKernels()) {
        if (!k.complex || !k.single || k.length < first) continue;
        SCOPED_TRACE(k.name);
        check(k);
    }
}

TEST(ComplexSingle, WholeVectorsAreMovedAsAlignmentAllows) {
    forComplexSingle(kFirstInVectors, [](const ListedKernel& k) {
        const Moves aligned = movesOf(traceOf(k.name));
        const Moves twin = movesOf(traceOf(k.twinName, 8));
        EXPECT_FALSE(aligned.other);
        EXPECT_FALSE(twin.other);
        for (const std::int64_t at : aligned.wholeLoads) EXPECT_EQ(at % 16, 0) << at;
        // Stores at multiples of 16 are aligned, the others cannot be.
        for (const std::int64_t at : aligned.wholeStores) {
            EXPECT_EQ(aligned.alignedStorePlaces.count(at) > 0, at % 16 == 0) << at;
            EXPECT_EQ(at % 8, 0) << at;
        }
        EXPECT_TRUE(twin.alignedStorePlaces.empty());
        EXPECT_EQ(twin.wholeStores, aligned.wholeStores);
        EXPECT_EQ(twin.halfStores, aligned.halfStores);
        EXPECT_EQ(twin.halfLoads, aligned.halfLoads);
        // The twin's one load of two neighbours is an aligned load, or two around them.
        std::set<std::int64_t> wanted;
        for (const std::int64_t at : twin.wholeLoads) {
            wanted.insert(at / 16 * 16);
            if (at % 16 != 0) wanted.insert(at / 16 * 16 + 16);
        }
        EXPECT_EQ(std::set<std::int64_t>(aligned.wholeLoads.begin(), aligned.wholeLoads.end()),
                  wanted);
    });
}

// From the first access to the data on: each instruction and where its memory operand lies.
std::vector<std::string> bodyText(const Trace& trace) {
    std::vector<std::string> body;
    for (const Step& s : trace.steps) {
        const bool data = s.access && s.access->region != Region::constants;
        if (!data && body.empty()) continue;
        std::string text = s.instruction->mnemonic;
        for (const Operand& o : s.instruction->operands) {
            if (o.type == Operand::Type::vector) text += " xmm" + std::to_string(o.number);
            if (o.type == Operand::Type::immediate) text += " " + std::to_string(o.value);
            if (o.type == Operand::Type::memory && s.access) {
                const bool constant = s.access->region == Region::constants;
                text += std::string(" ") + regionName(s.access->region);
                if (!constant) text += " " + std::to_string(s.access->offset);
            }
        }
        body.push_back(text);
    }
    return body;
}

TEST(ComplexSingle, MovesHalvesOnlyWhereListed) {
    forComplexSingle(kFirstInVectors, [](const ListedKernel& k) {
        const bool rader = dataTable("complex_f32_rader").find("length", k.length) != nullptr;
        const bool listed = shapeRow(k.length).flag("half_accesses_only");
        const Moves m = movesOf(traceOf(k.name));
        if (!listed && !rader) return;
        EXPECT_TRUE(m.wholeLoads.empty() && m.wholeStores.empty());
        EXPECT_EQ(bodyText(traceOf(k.twinName)), bodyText(traceOf(k.name)));
    });
}

TEST(ComplexSingle, BluesteinKernelsMoveWholeVectors) {
    forComplexSingle(kFirstInVectors, [](const ListedKernel& k) {
        if (!dataTable("complex_f32_bluestein").find("length", k.length)) return;
        const Moves m = movesOf(traceOf(k.name));
        EXPECT_TRUE(m.halfLoads.empty());
        EXPECT_EQ(m.wholeStores.size() + m.halfStores.size(),
                  static_cast<std::size_t>((k.length + 1) / 2));
        EXPECT_EQ(m.halfStores.size(), 1U);
        EXPECT_EQ(m.halfStores.count(8 * (k.length - 1)), 1U);
        EXPECT_EQ(*m.wholeLoads.rbegin(), 8 * (k.length - 1));
    });
}

TEST(ComplexSingle, ZeroVectorsWhereLanesAreEmpty) {
    CountCheck check("complex_f32_shape");
    forComplexSingle(kFirstInVectors, [&](const ListedKernel& k) {
        for (const std::string& function : {k.name, k.twinName}) {
            bool clears = false;
            for (const Step& s : traceOf(function).steps) {
                const Instruction& in = *s.instruction;
                if (in.kind != Kind::logic) continue;
                const bool clearing = !in.mergesFirst;
                clears |= clearing;
                // The one other bit operation merges shifted neighbours.
                EXPECT_TRUE(clearing || in.mnemonic == "orps" || in.mnemonic == "por") << in.text;
            }
            check.compare(k.length, "zero_vector", shapeRow(k.length).flag("zero_vector"), clears);
        }
    });
    EXPECT_EQ(check.report(), "");
}

// Vectors of constants and temporaries lie on 16-byte boundaries and are read so, by the twin too.
// The scale is one binary32 number, spread to the lanes by two unpacks with itself.
TEST(ComplexSingle, ConstantsAreAlignedVectorsAndTheScaleIsSpread) {
    forComplexSingle(kFirstInVectors, [](const ListedKernel& k) {
        for (const std::string& function : {k.name, k.twinName}) {
            long single = 0, spreads = 0;
            for (const Step& s : traceOf(function, function == k.name ? 0 : 4).steps) {
                const Instruction& in = *s.instruction;
                spreads += in.mnemonic == "unpcklps" &&
                           in.operands[1].type == Operand::Type::vector &&
                           in.operands[0].number == in.operands[1].number;
                if (!s.access || !s.access->vector) continue;
                const Region region = s.access->region;
                if (region != Region::constants && region != Region::frame) continue;
                if (region == Region::constants && s.access->size == 4)
                    ++single;
                else
                    EXPECT_TRUE(s.access->size == 16 && in.aligned) << in.text;
            }
            EXPECT_EQ(single, 1) << function;
            EXPECT_EQ(spreads, 2) << function;
        }
    });
}

TEST(ComplexSingle, NothingIsStoredToTheStackWhereListed) {
    forComplexSingle(kLengths.first, [](const ListedKernel& k) {
        if (!shapeRow(k.length).flag("no_stack_store")) return;
        EXPECT_EQ(BodyCounts(traceOf(k.name)).stackStores(), 0);
        if (!k.twin) return;
        EXPECT_EQ(BodyCounts(traceOf(k.twinName)).stackStores(), 0) << k.twinName;
    });
}

TEST(ComplexSingle, Length64IsNoLongerThanPromised) {
    for (const char* name : {"orvgDFTFwd_CToC_64_32fc", "orvgDFTInv_CToC_64_32fc"}) {
        EXPECT_LE(library().function(name).instructions.size(), 872U);
    }
}

// Scalar code has no twin, and vector code has one.
TEST(ComplexSingle, ScalarCodeAndTwinsAreThoseOfTheTable) {
    forComplexSingle(kLengths.first, [](const ListedKernel& k) {
        const DataRow& row = shapeRow(k.length);
        EXPECT_EQ(library().has(twinName(*k.info, k.length)), row.flag("twin"));
        const Trace trace = traceOf(k.name);
        const BodyCounts c(trace);
        const auto arithmetic = [&](Lanes lanes) {
            return c.count(Kind::add, lanes) + c.count(Kind::multiply, lanes);
        };
        EXPECT_EQ(arithmetic(Lanes::packed32) == 0, row.flag("scalar"));
        EXPECT_EQ(arithmetic(Lanes::scalar32) > 0, row.flag("scalar"));
        bool single = true;  // every access is one of 4 bytes
        for (const Step& s : trace.steps)
            if (s.access && (s.access->region == Region::src || s.access->region == Region::dst))
                single &= s.access->size == 4;
        EXPECT_EQ(single, row.flag("scalar"));
    });
}

// Where the columns of the first stage are a multiple of four, neighbours in memory are neighbours
// in lanes: whole vectors are read, and nothing else.
TEST(ComplexSingle, FullColumnsAreReadByWholeVectors) {
    forComplexSingle(kFirstInVectors, [](const ListedKernel& k) {
        if (k.length % 16 != 0) return;
        const Moves m = movesOf(traceOf(k.name));
        EXPECT_TRUE(m.halfLoads.empty() && m.halfStores.empty());
        EXPECT_EQ(m.wholeStores.size(), static_cast<std::size_t>(k.length / 2));
        std::set<std::int64_t> places(m.wholeLoads.begin(), m.wholeLoads.end());
        EXPECT_EQ(places.size(), static_cast<std::size_t>(k.length / 2));
    });
}

// binary64 at lengths 3 and 5 only; scalars below length 6, vectors from there on.
TEST(ComplexSingle, IsDoneInBinary32AndFourLanes) {
    forComplexSingle(kLengths.first, [](const ListedKernel& k) {
        const BodyCounts c(traceOf(k.name));
        const auto arithmetic = [&](Lanes lanes) {
            return c.count(Kind::add, lanes) + c.count(Kind::multiply, lanes);
        };
        EXPECT_EQ(arithmetic(Lanes::packed64), 0);
        const bool wide = k.length == 3 || k.length == 5;
        EXPECT_EQ(arithmetic(Lanes::scalar64) > 0, wide);
        EXPECT_EQ(c.mnemonic("cvtss2sd") > 0, wide);
        EXPECT_EQ(c.mnemonic("cvtsd2ss") > 0, wide);
        EXPECT_EQ(c.count(Kind::convert, Lanes::packed64) + c.count(Kind::convert, Lanes::packed32),
                  0);
        EXPECT_EQ(arithmetic(Lanes::scalar32) > 0, k.length < 6);
        EXPECT_EQ(arithmetic(Lanes::packed32) > 0, k.length >= 6);
    });
}

// Whole vectors in aligned bodies, pairs of halves in the others; no conversion anywhere.
TEST(ComplexDouble, ElementsAreMovedWholeOrAsHalves) {
    for (const ListedKernel& k : listedKernels()) {
        if (!k.complex || k.single) continue;
        SCOPED_TRACE(k.name);
        const auto n = static_cast<std::size_t>(k.length);
        const Moves aligned = movesOf(traceOf(k.name));
        EXPECT_EQ(aligned.wholeLoads.size(), n);
        EXPECT_EQ(aligned.wholeStores.size(), n);
        EXPECT_TRUE(aligned.halfLoads.empty() && aligned.halfStores.empty() && !aligned.other);
        const Moves other = movesOf(traceOf(k.name, 8));
        EXPECT_EQ(other.halfLoads.size(), 2 * n);
        EXPECT_EQ(other.halfStores.size(), 2 * n);
        EXPECT_TRUE(other.wholeLoads.empty() && other.wholeStores.empty() && !other.other);
    }
}

// Every constant fills both lanes, but for the mask that turns the sign of one lane: the low one in
// forward kernels, the high one in inverse kernels.
TEST(ComplexDouble, ConstantsFillBothLanes) {
    for (const ListedKernel& k : listedKernels()) {
        if (!k.complex || k.single) continue;
        SCOPED_TRACE(k.name);
        const bool forward = k.info->direction == Direction::Forward;
        for (const int off : {0, 8}) {
            for (const Step& s : traceOf(k.name, off).steps) {
                if (!s.access || s.access->region != Region::constants) continue;
                ASSERT_EQ(s.access->size, 16) << s.instruction->text;
                EXPECT_EQ(s.access->offset % 16, 0);
                std::uint64_t lanes[2];
                const auto bytes =
                    library().image().bytes(static_cast<std::uint64_t>(s.access->offset), 16);
                std::memcpy(lanes, bytes.data(), 16);
                const std::uint64_t sign = std::uint64_t{1} << 63;
                if (s.instruction->kind == Kind::logic) {
                    EXPECT_EQ(lanes[0], forward ? sign : 0) << s.instruction->text;
                    EXPECT_EQ(lanes[1], forward ? 0 : sign) << s.instruction->text;
                } else {
                    EXPECT_EQ(lanes[0], lanes[1]) << s.instruction->text;
                }
            }
        }
    }
}

}  // namespace
}  // namespace orvgen::test
