// SPDX-License-Identifier: MIT
// The batch library as a file: what it exports and needs, and that it holds one mutable word.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "orvgen_batch.h"
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

TEST(BatchLibrary, IsNotLarge) {
    std::uint64_t loaded = 0;
    for (const auto& s : file().sections())
        if ((s.sh_flags & SHF_ALLOC) != 0) loaded += s.sh_size;
    EXPECT_GT(loaded, 0U);
    EXPECT_LT(loaded, std::uint64_t{24} << 20);
}

}  // namespace
}  // namespace orvgen::test::batch
