// SPDX-License-Identifier: MIT
// The batch library as a file: what it exports and needs, that it holds one mutable word, and in
// its machine code: no fused multiply-add, wide vectors only behind their targets, no unprobed
// frames.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "orvgen_batch.h"
#include "support/disassembly.h"
#include "support/elf_file.h"

namespace orvgen::test::batch {
namespace {

const ElfFile& file() {
    static const ElfFile library(ORVGEN_BATCH_LIBRARY);
    return library;
}

using Names = std::set<std::string>;

// Parentheses: no comma is missing between the parts.
#define NAME_OF(NAME, T, S, D) ("orvgBatch" #NAME "_" #T),
#define SPLIT_NAME_OF(NAME, T, R) ("orvgBatchSplit" #NAME "_" #T),
const Names documented = {
    ORVGEN_BATCH_LENGTH_FAMILIES(NAME_OF)       //
    ORVGEN_BATCH_SPLIT_FAMILIES(SPLIT_NAME_OF)  //
    "orvgBatchWHT_32f",
    "orvgBatchWHT_64f",
    "orvgBatchDCT4_32f",
    "orvgBatchDCT4_64f",
    "orvgBatchTargets",
    "orvgBatchUse",
    "orvgBatchStatusText",
};

TEST(BatchLibrary, ExportsWhatTheHeaderDocuments) {
    Names exported;
    for (const auto& [name, entry] : file().symbols(SHT_DYNSYM))
        if (entry.st_shndx != SHN_UNDEF) exported.insert(name);
    EXPECT_EQ(exported, documented);
    EXPECT_EQ(documented.size(), 29U);
}

TEST(BatchLibrary, NeedsTheProductAndCallsOnlyItsExports) {
    EXPECT_EQ(file().dynamicTexts(DT_SONAME), std::vector<std::string>{"liborvgenbatch.so.1"});
    Names needed;
    for (const std::string& name : file().dynamicTexts(DT_NEEDED)) needed.insert(name);
    EXPECT_TRUE(needed.contains("liborvgenm7.so.6.1"));
    needed.erase("liborvgenm7.so.6.1");
    needed.erase("libc.so.6");
    EXPECT_EQ(needed, Names{});
    EXPECT_EQ(file().dynamicTexts(DT_RUNPATH), std::vector<std::string>{"$ORIGIN"});
    // Memory is moved by the C library's functions; nothing is allocated.
    const Names ofC = {"memcpy", "memset", "memmove"};
    for (const auto& [name, entry] : file().symbols(SHT_DYNSYM))
        EXPECT_TRUE(entry.st_shndx != SHN_UNDEF || name.starts_with("orvg") || ofC.contains(name))
            << name;
}

TEST(BatchLibrary, HasOneMutableWordAndNothingToInitialise) {
    for (const auto tag : {DT_INIT, DT_FINI, DT_INIT_ARRAY, DT_FINI_ARRAY, DT_TEXTREL})
        EXPECT_TRUE(file().dynamicValues(tag).empty()) << tag;
    std::uint64_t relroBegin = 0, relroEnd = 0;
    for (const auto& p : file().segments())
        if (p.p_type == PT_GNU_RELRO) {
            relroBegin = p.p_vaddr;
            relroEnd = p.p_vaddr + p.p_memsz;
        }
    std::uint64_t writable = 0;
    for (const auto& s : file().sections()) {
        if ((s.sh_flags & SHF_ALLOC) == 0 || (s.sh_flags & SHF_WRITE) == 0) continue;
        if (s.sh_addr >= relroBegin && s.sh_addr + s.sh_size <= relroEnd) continue;
        writable += s.sh_size;
    }
    EXPECT_GT(writable, 0U);
    EXPECT_LE(writable, 8U);
}

// What the machine code, as binutils disassemble it, holds against the rules; by rule, a sentence
// for each instruction.
struct Complaints {
    std::vector<std::string> unknown, forbidden, wide, full, unprobed;
    std::size_t instructions = 0;
};

bool contains(std::string_view text, std::string_view part) { return text.find(part) != text.npos; }

// Fused multiply-adds and approximations.
bool isForbidden(std::string_view mnemonic) {
    for (const char* start :
         {"vfm", "vfnm", "vrcp", "vrsqrt", "vreduce", "rcp", "rsqrt", "vdpp", "dpp"})
        if (mnemonic.starts_with(start)) return true;
    return false;
}

// Registers and operands that 256-bit code without AVX-512 does not have.
bool isOfAvx512(const std::string& operands) {
    for (const char* mark : {"zmm", "{", "%k"})
        if (contains(operands, mark)) return true;
    for (std::size_t at = operands.find("mm"); at != operands.npos;
         at = operands.find("mm", at + 2))
        if (std::atoi(operands.c_str() + at + 2) > 15) return true;
    return false;
}

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
        if (isForbidden(mnemonic)) complain(found.forbidden);
        if (!isAvx2_ && !isAvx512_ && mnemonic.starts_with("v")) complain(found.wide);
        if (isAvx2_ && isOfAvx512(operands)) complain(found.wide);

        // Upper halves left full make the caller's 128-bit code slow.
        if (mnemonic == "vzeroupper") full_ = false;
        if (contains(operands, "ymm") || contains(operands, "zmm")) full_ = true;
        const bool isEntry = name_.starts_with("owngBatch") || contains(name_, "runBlocks");
        if (isEntry && full_ && mnemonic.starts_with("ret")) complain(found.full);

        // A frame of more than a page that is taken at once could jump over the guard page.
        unsigned long size = 0;
        if (mnemonic == "sub" && contains(operands, ",%rsp"))
            std::sscanf(operands.c_str(), " $0x%lx", &size);
        if (size > 4096) complain(found.unprobed);
    }

    std::string name_;
    bool isAvx2_ = false, isAvx512_ = false, full_ = false;
};

const Complaints& complaints() {
    static const Complaints found = [] {
        Reader reader;
        for (const std::string& line : disassembly(ORVGEN_BATCH_LIBRARY)) reader.take(line);
        return std::move(reader.found);
    }();
    return found;
}

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

TEST(BatchMachineCode, ProbesLargeFrames) { EXPECT_EQ(complaints().unprobed, Sentences{}); }

// The reader sees what it is to see.
TEST(BatchMachineCode, IsReadWithOpenEyes) {
    Reader reader;
    for (const char* line :
         {"0000000000001000 <owngBatchX_avx2>:", "  1000:\tvfmadd231ps %ymm1,%ymm2,%ymm3",
          "  1006:\tvaddps %zmm1,%zmm2,%zmm3", "  100c:\tvaddps %ymm1,%ymm2,%ymm23", "  1012:\tret",
          "0000000000001020 <plain>:", "  1020:\tvaddss %xmm1,%xmm2,%xmm3",
          "  1024:\tsub    $0x2000,%rsp", "  102b:\t(bad)", "0000000000001030 <owngBatchY_avx2>:",
          "  1030:\tvaddps %ymm2,%ymm3,%ymm12", "  1034:\tvzeroupper", "  1037:\tret"})
        reader.take(line);
    EXPECT_EQ(reader.found.forbidden.size(), 1U);
    EXPECT_EQ(reader.found.wide.size(), 3U);
    EXPECT_EQ(reader.found.full.size(), 1U);
    EXPECT_EQ(reader.found.unprobed.size(), 1U);
    EXPECT_EQ(reader.found.unknown.size(), 1U);
    EXPECT_EQ(reader.found.instructions, 10U);
}

}  // namespace
}  // namespace orvgen::test::batch
