// SPDX-License-Identifier: MIT
// The machine code of the batch library: no fused multiply-add, wide vectors only behind their
// targets, upper halves cleared at the end, frames probed and small.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "batch/frames.h"
#include "support/disassembly.h"

namespace orvgen::test::batch {
namespace {

// What the machine code, as binutils disassemble it, holds against the rules; by rule, a sentence
// for each instruction.
struct Complaints {
    std::vector<std::string> unknown, forbidden, wide, full;
    std::size_t instructions = 0;
};

bool contains(std::string_view text, std::string_view part) { return text.find(part) != text.npos; }

class Reader {
  public:
    void take(const std::string& line) {
        if (line.ends_with(">:")) {
            name_ = line.substr(line.find('<') + 1);
            isAvx2_ = contains(name_, "avx2") || contains(name_, "Avx2");
            isAvx512_ = contains(name_, "avx512") || contains(name_, "Avx512");
            full_ = false;
            return;
        }
        const std::size_t colon = line.find(":\t");
        if (colon == line.npos) return;
        instruction(line.substr(colon + 2));
    }
    Complaints found;

  private:
    void instruction(const std::string& text) {
        ++found.instructions;
        const std::string mnemonic = text.substr(0, text.find(' '));
        const std::string operands = text.substr(mnemonic.size());
        const auto complain = [&](std::vector<std::string>& list) {
            if (list.size() < 10) list.push_back(name_ + " " + text);
        };
        if (contains(text, "(bad)")) complain(found.unknown);
        if (roundsOtherwise(mnemonic)) complain(found.forbidden);
        if (!isAvx2_ && !isAvx512_ && mnemonic.starts_with("v")) complain(found.wide);
        if (isAvx2_ && areOfAvx512(operands)) complain(found.wide);

        // Upper halves left full make the caller's 128-bit code slow.
        if (mnemonic == "vzeroupper") full_ = false;
        if (contains(operands, "ymm") || contains(operands, "zmm")) full_ = true;
        const bool isEntry = name_.starts_with("owng") || contains(name_, "runBlocks");
        if (isEntry && full_ && mnemonic.starts_with("ret")) complain(found.full);
    }

    std::string name_;
    bool isAvx2_ = false, isAvx512_ = false, full_ = false;
};

struct Code {
    Reader reader;
    Frames frames;
};
const Code& code() {
    static const Code read = [] {
        Code all;
        for (const std::string& line : disassembly(ORVGEN_BATCH_LIBRARY)) {
            all.reader.take(line);
            all.frames.take(line);
        }
        return all;
    }();
    return read;
}
const Complaints& complaints() { return code().reader.found; }

using Sentences = std::vector<std::string>;

TEST(BatchMachineCode, CanBeRead) {
    EXPECT_GT(complaints().instructions, 5000U);
    EXPECT_EQ(complaints().unknown, Sentences{});
}

TEST(BatchMachineCode, HasNoFusedMultiplyAddAndNoApproximation) {
    EXPECT_EQ(complaints().forbidden, Sentences{});
}

TEST(BatchMachineCode, HasWideVectorsBehindTheirTargetsOnly) {
    EXPECT_EQ(complaints().wide, Sentences{});
}

TEST(BatchMachineCode, ClearsTheUpperHalvesBeforeItReturns) {
    EXPECT_EQ(complaints().full, Sentences{});
}

TEST(BatchMachineCode, ProbesLargeFrames) {
    EXPECT_EQ(code().frames.unprobed(), Sentences{});
    EXPECT_EQ(code().frames.unknown(), Sentences{});
}

// The single functions take a little more, which stack.cpp measures as they run.
TEST(BatchMachineCode, TakesLittleStack) {
    std::size_t most = 0;
    for (const std::string& name : code().frames.namesFrom("orvgBatch")) {
        const std::size_t bytes = code().frames.deepest(name);
        EXPECT_LE(bytes, 256U << 10) << name;
        most = std::max(most, bytes);
    }
    // The buffers of the single Walsh-Hadamard transform, of 128 KB and more, must be among them.
    EXPECT_GT(most, 128U << 10);
    std::printf("at most %zu bytes of stack by the machine code\n", most);
}

// The reader sees what it is to see.
TEST(BatchMachineCode, IsReadWithOpenEyes) {
    Reader reader;
    for (const char* line :
         {"0000000000001000 <owngBatchX_avx2>:", "  1000:\tvfmadd231ps %ymm1,%ymm2,%ymm3",
          "  1006:\tvaddps %zmm1,%zmm2,%zmm3", "  100c:\tvaddps %ymm1,%ymm2,%ymm23", "  1012:\tret",
          "0000000000001020 <plain>:", "  1020:\tvaddss %xmm1,%xmm2,%xmm3", "  102b:\t(bad)",
          "0000000000001030 <owngBatchY_avx2>:", "  1030:\tvaddps %ymm2,%ymm3,%ymm12",
          "  1034:\tvzeroupper", "  1037:\tret"})
        reader.take(line);
    EXPECT_EQ(reader.found.forbidden.size(), 1U);
    EXPECT_EQ(reader.found.wide.size(), 3U);
    EXPECT_EQ(reader.found.full.size(), 1U);
    EXPECT_EQ(reader.found.unknown.size(), 1U);
    EXPECT_EQ(reader.found.instructions, 9U);
}

// Of a function of these instructions.
Frames framesOf(std::initializer_list<std::string> texts) {
    Frames frames;
    frames.take("0000000000001000 <f>:");
    for (const std::string& text : texts) frames.take("  1000:\t" + text);
    return frames;
}

TEST(Frames, AddUpAlongCalls) {
    Frames frames;
    for (const char* line : {"0000000000001000 <owngBatchX>:",
                             "  1000:\tpush   %rbx",
                             "  1001:\tsub    $0x1000,%rsp",
                             "  1008:\torq    $0x0,(%rsp)",
                             "  100d:\tsub    $0x800,%rsp",
                             "  1014:\tret",
                             "0000000000001020 <loop>:",
                             "  1020:\tlea    -0x5000(%rsp),%r11",
                             "  1028:\tsub    $0x1000,%rsp",
                             "  102f:\torq    $0x0,(%rsp)",
                             "  1034:\tcmp    %r11,%rsp",
                             "  1037:\tjne    1028 <loop+0x8>",
                             "  1039:\tsub    $0x40,%rsp",
                             "  103d:\tcall   *%rax",
                             "  103f:\tret",
                             "0000000000001040 <orvgBatchY>:",
                             "  1040:\tadd    $0xffffffffffffff80,%rsp",
                             "  1044:\tand    $0xffffffffffffffc0,%rsp",
                             "  1048:\tcall   1020 <loop>",
                             "  104d:\tjmp    1060 <jump>",
                             "0000000000001060 <jump>:",
                             "  1060:\tret"})
        frames.take(line);
    EXPECT_EQ(frames.unprobed(), Sentences{});
    EXPECT_EQ(frames.unknown(), Sentences{});
    // With return addresses; what is called by its address is the deepest leaf.
    constexpr std::size_t leaf = 8 + 8 + 0x1800, loop = 8 + 0x5040, top = 8 + 0x80 + 0x3f;
    EXPECT_EQ(frames.deepest("owngBatchX"), leaf);
    EXPECT_EQ(frames.deepest("loop"), loop + leaf);
    EXPECT_EQ(frames.deepest("orvgBatchY"), top + loop + leaf);
    EXPECT_EQ(frames.namesFrom("orvgBatch"), Sentences{"orvgBatchY"});
}

TEST(Frames, OfMoreThanAPageWantProbes) {
    for (const char* text : {"sub    $0x2000,%rsp", "add    $0xffffffffffffe000,%rsp",
                             "and    $0xffffffffffffc000,%rsp"})
        EXPECT_EQ(framesOf({text}).unprobed().size(), 1U) << text;
    // Twice three quarters of a page: no harm where the stack is touched at its end in between.
    const auto unprobedAfter = [](const char* between) {
        return framesOf({"sub    $0xc00,%rsp", between, "sub    $0xc00,%rsp"}).unprobed().size();
    };
    EXPECT_EQ(unprobedAfter("mov    %rax,(%rsp)"), 0U);
    EXPECT_EQ(unprobedAfter("mov    %rax,0xb00(%rsp)"), 1U);
    EXPECT_EQ(unprobedAfter("mov    %rax,(%rsp,%rdx,8)"), 1U);
    EXPECT_EQ(unprobedAfter("lea    (%rsp),%rax"), 1U);
}

TEST(Frames, OfUnknownSizeAreSeen) {
    for (const char* text :
         {"sub    %rax,%rsp", "mov    %rax,%rsp", "lea    -0x2000(%rsp),%rsp", "xchg   %rax,%rsp"})
        EXPECT_EQ(framesOf({text}).unknown().size(), 1U) << text;
}

}  // namespace
}  // namespace orvgen::test::batch
