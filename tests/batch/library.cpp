// The batch library as a file: what it exports and needs, that it holds one mutable word, and in
// its machine code: no fused multiply-add, wide vectors only behind their targets, no unprobed
// frames.
#include <capstone/capstone.h>
#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <set>

#include "frame/elf_file.h"
#include "orvgen_batch.h"
#include "support/elf_image.h"

namespace orvgen::test::batch {
namespace {

const tests::ElfFile& file() {
    static const tests::ElfFile library(ORVGEN_BATCH_LIBRARY);
    return library;
}

using Names = std::set<std::string>;

#define NAME_OF(NAME, T, S, D) "orvgBatch" #NAME "_" #T,
#define SPLIT_NAME_OF(NAME, T, R) "orvgBatchSplit" #NAME "_" #T,
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

TEST(Library, ExportsWhatTheHeaderDocuments) {
    Names exported;
    for (const auto& [name, entry] : file().symbols(SHT_DYNSYM))
        if (entry.st_shndx != SHN_UNDEF) exported.insert(name);
    EXPECT_EQ(exported, documented);
    EXPECT_EQ(documented.size(), 29U);
}

TEST(Library, NeedsTheProductAndCallsOnlyItsExports) {
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

TEST(Library, HasOneMutableWordAndNothingToInitialise) {
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

// Calls look(function's name, instruction) for all of the library's code.
std::size_t overCode(const std::function<void(const std::string&, const cs_insn&)>& look) {
    const ElfImage image(ORVGEN_BATCH_LIBRARY);
    csh decoder = 0;
    if (cs_open(CS_ARCH_X86, CS_MODE_64, &decoder) != CS_ERR_OK)
        throw std::runtime_error("capstone");
    cs_insn* instruction = cs_malloc(decoder);
    std::size_t count = 0;
    for (const Symbol& s : image.symbols()) {
        if (!s.function || s.size == 0) continue;
        const auto code = image.bytes(s.address, s.size);
        const std::uint8_t* at = code.data();
        std::size_t left = code.size();
        std::uint64_t address = s.address;
        while (left > 0 && cs_disasm_iter(decoder, &at, &left, &address, instruction)) {
            look(s.name, *instruction);
            ++count;
        }
        EXPECT_EQ(left, 0U) << s.name << " holds what is no instruction";
    }
    cs_free(instruction, 1);
    cs_close(&decoder);
    return count;
}

bool isWide(const std::string& name) {
    return std::regex_search(name, std::regex("avx2|avx512", std::regex::icase));
}

TEST(MachineCode, HasNoFusedMultiplyAddAndNoApproximation) {
    const std::regex forbidden("^v?(fn?m(add|sub)|rcp|rsqrt|dpp|reduce|range)");
    const std::size_t count = overCode([&](const std::string& name, const cs_insn& i) {
        EXPECT_FALSE(std::regex_search(i.mnemonic, forbidden))
            << name << ": " << i.mnemonic << " " << i.op_str;
    });
    EXPECT_GT(count, 1000U);
}

TEST(MachineCode, HasWideVectorsBehindTheirTargetsOnly) {
    overCode([](const std::string& name, const cs_insn& i) {
        if (isWide(name)) return;
        EXPECT_NE(i.mnemonic[0], 'v') << name << ": " << i.mnemonic << " " << i.op_str;
    });
    // Those of 256 bits leave the 512-bit registers and the masks alone.
    const std::regex avx512("zmm|[xy]mm(1[6-9]|2|3)|\\bk[0-7]\\b|\\{");
    overCode([&](const std::string& name, const cs_insn& i) {
        if (!std::regex_search(name, std::regex("avx2", std::regex::icase))) return;
        EXPECT_FALSE(std::regex_search(i.op_str, avx512))
            << name << ": " << i.mnemonic << " " << i.op_str;
    });
}

// Upper halves left full make the caller's 128-bit code slow.
TEST(MachineCode, ClearsTheUpperHalvesBeforeItReturns) {
    std::string current;
    bool full = false;
    const std::regex wide("[yz]mm");
    overCode([&](const std::string& name, const cs_insn& i) {
        if (name != current) full = false;
        current = name;
        const std::string mnemonic = i.mnemonic;
        if (mnemonic == "vzeroupper") {
            full = false;
        } else if (std::regex_search(i.op_str, wide)) {
            full = true;
        } else if (mnemonic == "ret" &&
                   (name.starts_with("owngBatch") || name.find("runBlocks") != name.npos)) {
            EXPECT_FALSE(full) << name;
        }
    });
}

// A frame of more than a page that is taken at once could jump over the guard page of the stack.
TEST(MachineCode, ProbesLargeFrames) {
    overCode([](const std::string& name, const cs_insn& i) {
        unsigned long size = 0;
        if (std::string(i.mnemonic) == "sub") std::sscanf(i.op_str, "rsp, 0x%lx", &size);
        EXPECT_LE(size, 4096U) << name;
    });
}

}  // namespace
}  // namespace orvgen::test::batch
