// SPDX-License-Identifier: MIT
// The machine code of the build for x86-64-v3, instruction by instruction: no encoding of two
// operands, which would wait for the upper half of its target; no fused multiply-add, which rounds
// once where the contract rounds twice; nothing beyond the level; and upper halves are left clear.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "machine/library.h"
#include "support/disassembly.h"

namespace orvgen::test {
namespace {

using Sentences = std::vector<std::string>;

bool contains(std::string_view text, std::string_view part) { return text.find(part) != text.npos; }

// Reads a disassembly line by line and keeps, rule by rule, what breaks it.
class Reader {
  public:
    explicit Reader(const std::vector<std::string>& lines) {
        for (const std::string& line : lines) take(line);
    }

    Sentences unknown, legacy, forbidden, beyond, full;
    std::size_t vectors = 0, kernels = 0;

  private:
    void take(const std::string& line) {
        if (line.ends_with(">:")) {
            name_ = line.substr(line.find('<') + 1);
            name_.resize(name_.size() - 2);
            kernels += name_.starts_with("orvg");
            full_ = false;
            return;
        }
        const std::size_t colon = line.find(":\t");
        if (colon != line.npos) instruction(line.substr(colon + 2));
    }

    void instruction(const std::string& text) {
        const std::string mnemonic = text.substr(0, text.find(' '));
        const std::string operands = text.substr(mnemonic.size());
        const auto complain = [&](Sentences& list) {
            if (list.size() < 10) list.push_back(name_ + ": " + text);
        };
        const bool vector = contains(operands, "mm");
        vectors += vector;
        if (contains(text, "(bad)")) complain(unknown);
        if (vector && !mnemonic.starts_with("v")) complain(legacy);
        if (roundsOtherwise(mnemonic)) complain(forbidden);
        if (areOfAvx512(operands)) complain(beyond);

        // Straight through, since a gate's early returns stand in front of the body or behind it.
        if (mnemonic == "vzeroupper" || mnemonic == "vzeroall") full_ = false;
        if (contains(operands, "ymm")) full_ = true;
        const bool leaves = mnemonic.starts_with("ret") || mnemonic.starts_with("call") ||
                            (mnemonic == "jmp" && !contains(operands, "<" + name_));
        if (full_ && leaves) complain(full);
    }

    std::string name_;
    bool full_ = false;
};

const Reader& secondBuild() {
    static const Reader reader(disassembly(secondBuildFile(ORVGEN_SECOND_BUILD)));
    return reader;
}

TEST(SecondBuild, CanBeRead) {
    EXPECT_EQ(secondBuild().unknown, Sentences{});
    EXPECT_GE(secondBuild().kernels, 1193U);
    EXPECT_GT(secondBuild().vectors, 300000U);
}

TEST(SecondBuild, HasNoInstructionOfTwoOperands) { EXPECT_EQ(secondBuild().legacy, Sentences{}); }

TEST(SecondBuild, HasNoFusedMultiplyAddAndNoApproximation) {
    EXPECT_EQ(secondBuild().forbidden, Sentences{});
}

TEST(SecondBuild, StaysWithinItsLevel) { EXPECT_EQ(secondBuild().beyond, Sentences{}); }

TEST(SecondBuild, ClearsTheUpperHalvesBeforeItReturnsOrCalls) {
    EXPECT_EQ(secondBuild().full, Sentences{});
}

// The reader sees what it is to see.
TEST(SecondBuild, IsReadWithOpenEyes) {
    const Reader reader(
        {"0000000000001000 <orvgOne>:", "  1000:\taddps  %xmm1,%xmm2",
         "  1003:\tvfmadd231ps %xmm1,%xmm2,%xmm3", "  1008:\tvaddps %zmm1,%zmm2,%zmm3",
         "  100e:\tvaddps %xmm1,%xmm2,%xmm23", "  1014:\t(bad)",
         "0000000000001020 <orvgTwo>:", "  1020:\tvaddps %ymm1,%ymm2,%ymm3",
         "  1024:\tjmp    1020 <orvgTwo>", "  1026:\tcall   2000 <orvFree@plt>",
         "  102b:\tjmp    1000 <orvgOne>", "  1030:\tret", "  1031:\tvzeroupper", "  1034:\tret"});
    EXPECT_EQ(reader.legacy.size(), 1U);
    EXPECT_EQ(reader.forbidden.size(), 1U);
    EXPECT_EQ(reader.beyond.size(), 2U);
    EXPECT_EQ(reader.unknown.size(), 1U);
    EXPECT_EQ(reader.full.size(), 3U);
    EXPECT_EQ(reader.kernels, 2U);
}

}  // namespace
}  // namespace orvgen::test
