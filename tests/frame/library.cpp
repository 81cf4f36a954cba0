// SPDX-License-Identifier: MIT
// The shape of the shared library: what it needs, what it exports, what the loader has to do.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "frame/names.h"
#include "support/elf_file.h"
#include "support/library_file.h"

namespace {

using orvgen::test::ElfFile;
using Names = std::set<std::string>;

const ElfFile& library() {
    static const ElfFile file(orvgen::test::libraryFile());
    return file;
}

Names sectionNames() {
    Names names;
    for (const auto& s : library().sections()) names.insert(library().sectionName(s));
    return names;
}

// What the lists of the header say.
#define MEMBER(NAME, N, T) names.insert("orvg" #NAME "_" #N "_" #T);
#define LENGTH_FAMILY(NAME, T, LIST) \
    LIST(MEMBER, NAME, T)            \
    names.insert("orvg" #NAME "_" #T);
#define ORDER_FAMILY(NAME, T, LIST) \
    LENGTH_FAMILY(NAME, T, LIST)    \
    names.insert("orvg" #NAME "GetBufferSize_" #T);
#define DCT4_FAMILY(NAME, T)                                                \
    for (const char* what : {"GetSize", "Init", "InitAlloc", "Free", ""}) { \
        names.insert(std::string("orvg" #NAME) + what + "_" #T);            \
    }

Names listedNames() {
    Names names = {"orvgenGetLibVersion"};
    ORVGEN_LENGTH_FAMILIES(LENGTH_FAMILY)
    ORVGEN_ORDER_FAMILIES(ORDER_FAMILY)
    ORVGEN_DCT4_FAMILIES(DCT4_FAMILY)
    return names;
}
#undef MEMBER
#undef LENGTH_FAMILY
#undef ORDER_FAMILY

Names listedTwins() {
    Names names;
    for (const orvgen::Member& m : orvgen::allKernels())
        if (m.family->hasTwin(m.number)) names.insert(orvgen::twinName(*m.family, m.number));
    return names;
}

Names exportedNames() {
    Names names;
    for (const auto& [name, entry] : library().symbols(SHT_DYNSYM)) {
        if (entry.st_shndx != SHN_UNDEF) names.insert(name);
    }
    return names;
}

std::vector<std::string> namesOfTheTree() {
    std::ifstream in(ORVGEN_EXPORT_LIST);
    std::vector<std::string> names;
    for (std::string line; std::getline(in, line);) names.push_back(line);
    return names;
}

TEST(Exports, ListOfTheTreeIsSortedAndWhole) {
    const auto names = namesOfTheTree();
    EXPECT_EQ(names.size(), 1193U);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

TEST(Exports, AreExactlyTheListsOfTheHeader) { EXPECT_EQ(exportedNames(), listedNames()); }

TEST(Exports, AreExactlyTheListOfTheTree) {
    const auto names = namesOfTheTree();
    EXPECT_EQ(exportedNames(), Names(names.begin(), names.end()));
}

TEST(Exports, AreFunctionsAndTheVersionQuery) {
    for (const auto& [name, entry] : library().symbols(SHT_DYNSYM)) {
        if (entry.st_shndx == SHN_UNDEF) continue;
        EXPECT_EQ(ELF64_ST_TYPE(entry.st_info), STT_FUNC) << name;
        EXPECT_EQ(ELF64_ST_BIND(entry.st_info), STB_GLOBAL) << name;
        EXPECT_GT(entry.st_size, 0U) << name;
    }
}

TEST(Symbols, TwinsAreLocalFunctions) {
    Names local;
    for (const auto& [name, entry] : library().symbols(SHT_SYMTAB)) {
        if (name.starts_with("owng") && name.ends_with("_unaligned")) {
            EXPECT_EQ(ELF64_ST_BIND(entry.st_info), STB_LOCAL) << name;
            EXPECT_EQ(ELF64_ST_TYPE(entry.st_info), STT_FUNC) << name;
            EXPECT_GT(entry.st_size, 0U) << name;
            local.insert(name);
        }
    }
    EXPECT_EQ(local, listedTwins());
}

TEST(Symbols, OnlyTheAllocatorAndTheFourTrigonometricFunctionsAreImported) {
    const Names allowed = {"orvMalloc", "orvFree", "cos", "sin", "cosf", "sinf"};
    for (const auto& [name, entry] : library().symbols(SHT_DYNSYM)) {
        if (entry.st_shndx == SHN_UNDEF) {
            EXPECT_TRUE(allowed.contains(name)) << name;
        }
    }
}

TEST(Loading, GoesByNameAndNeeds) {
    EXPECT_EQ(library().dynamicTexts(DT_SONAME), std::vector<std::string>{"liborvgenm7.so.6.1"});
    auto needed = library().dynamicTexts(DT_NEEDED);
    std::sort(needed.begin(), needed.end());
    EXPECT_EQ(needed,
              (std::vector<std::string>{"libc.so.6", "libm.so.6", "liborvcorexwide.so.6.1"}));
}

// The folder of the library, and of the second build, which stands two folders below, the first
// one's; nothing more: an empty element would stand for any current folder.
TEST(Loading, SearchesItsOwnFolder) {
    const char* path = orvgen::test::isSecondBuild() ? "$ORIGIN:$ORIGIN/../.." : "$ORIGIN";
    EXPECT_EQ(library().dynamicTexts(DT_RUNPATH), std::vector<std::string>{path});
    EXPECT_TRUE(library().dynamicTexts(DT_RPATH).empty());
}

TEST(Loading, RunsNoInitialiserAndWritesNoData) {
    const Names sections = sectionNames();
    for (const char* name : {".init", ".fini", ".init_array", ".fini_array", ".preinit_array",
                             ".ctors", ".dtors", ".data", ".bss", ".tdata", ".tbss"}) {
        EXPECT_FALSE(sections.contains(name)) << name;
    }
    for (const auto tag : {DT_INIT, DT_FINI, DT_INIT_ARRAY, DT_FINI_ARRAY}) {
        EXPECT_TRUE(library().dynamicValues(tag).empty()) << tag;
    }
}

TEST(Loading, LeavesNothingWritableBehind) {
    std::vector<Elf64_Phdr> relro;
    for (const auto& p : library().segments()) {
        if (p.p_type == PT_GNU_RELRO) relro.push_back(p);
    }
    ASSERT_EQ(relro.size(), 1U);
    const auto begin = relro[0].p_vaddr;
    const auto end = begin + relro[0].p_memsz;
    int seen = 0;
    for (const auto& s : library().sections()) {
        if ((s.sh_flags & SHF_ALLOC) == 0 || (s.sh_flags & SHF_WRITE) == 0) continue;
        ++seen;
        EXPECT_GE(s.sh_addr, begin) << library().sectionName(s);
        EXPECT_LE(s.sh_addr + s.sh_size, end) << library().sectionName(s);
    }
    EXPECT_GT(seen, 0);
}

TEST(Loading, BindsEverything) {
    const auto flags = library().dynamicValues(DT_FLAGS);
    ASSERT_EQ(flags.size(), 1U);
    EXPECT_NE(flags[0] & DF_BIND_NOW, 0U);
    const auto flags1 = library().dynamicValues(DT_FLAGS_1);
    ASSERT_EQ(flags1.size(), 1U);
    EXPECT_NE(flags1[0] & DF_1_NOW, 0U);
}

TEST(Loading, RelocatesNoTextAndWantsNoExecutableStack) {
    EXPECT_TRUE(library().dynamicValues(DT_TEXTREL).empty());
    for (const auto flags : library().dynamicValues(DT_FLAGS)) EXPECT_EQ(flags & DF_TEXTREL, 0U);
    int stacks = 0;
    for (const auto& p : library().segments()) {
        EXPECT_FALSE((p.p_flags & PF_W) && (p.p_flags & PF_X));
        if (p.p_type == PT_GNU_STACK) {
            ++stacks;
            EXPECT_EQ(p.p_flags & PF_X, 0U);
        }
    }
    EXPECT_EQ(stacks, 1);
}

TEST(Loading, RelocatesRelativelyButForImports) {
    Names exported;
    for (const auto& [name, entry] : library().symbols(SHT_DYNSYM))
        if (entry.st_shndx != SHN_UNDEF) exported.insert(name);
    for (const auto& [entry, symbol] : library().relocations()) {
        const auto type = ELF64_R_TYPE(entry.r_info);
        if (type == R_X86_64_RELATIVE) continue;
        EXPECT_TRUE(type == R_X86_64_JUMP_SLOT || type == R_X86_64_GLOB_DAT) << type;
        EXPECT_NE(symbol, "");
        EXPECT_FALSE(exported.contains(symbol)) << symbol;
    }
}

}  // namespace
