// SPDX-License-Identifier: MIT
// A library answers as it did when its digests were written. The library is one of those that are
// built here, or that of the argument, which is another build of the same functions.
#include "digests/digests.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include "digests/plans.h"
#include "digests/results.h"
#include "support/data_table.h"
#include "support/library_file.h"

namespace orvgen::test {
namespace {

std::string fileUnderTest = libraryFile();

const LoadedLibrary& library() {
    static const LoadedLibrary loaded(fileUnderTest);
    return loaded;
}

// Two files of one name in a process: each is what it was asked for as.
TEST(Library, IsTheFileThatIsAskedFor) {
    for (const std::string& file : {fileUnderTest, std::string(ORVGEN_LIBRARY_FILE)}) {
        auto* const version = LoadedLibrary(file).function<void()>("orvgenGetLibVersion");
        Dl_info mapped{};
        ASSERT_NE(dladdr(reinterpret_cast<void*>(version), &mapped), 0);
        EXPECT_TRUE(std::filesystem::equivalent(mapped.dli_fname, file)) << mapped.dli_fname;
    }
}

class Digests : public testing::TestWithParam<std::string> {};

TEST_P(Digests, AreThoseKept) {
    std::map<std::string, const DataRow*> kept;
    for (const DataRow& row : dataTable("digests").rows()) kept[row.text("name")] = &row;
    std::string changes;
    for (const DigestRow& row : digestRows(library(), GetParam())) {
        ASSERT_TRUE(kept.count(row.name)) << row.name;
        std::string columns;
        for (std::size_t i = 0; i < digestColumns.size(); ++i) {
            if (kept[row.name]->text(digestColumns[i]) != row.digests[i]) {
                columns += " " + digestColumns[i];
            }
        }
        if (!columns.empty()) changes += row.name + ":" + columns + "\n";
    }
    EXPECT_EQ(changes, "") << "where this is meant: ./dev digests";
}

INSTANTIATE_TEST_SUITE_P(Of, Digests, testing::ValuesIn(digestGroups()),
                         [](const auto& p) { return p.param; });

TEST(DigestTable, HasEveryExport) {
    std::ifstream file(ORVGEN_EXPORT_LIST);
    std::multiset<std::string> exports, rows;
    for (std::string name; std::getline(file, name);) exports.insert(name);
    for (const DataRow& row : dataTable("digests").rows()) rows.insert(row.text("name"));
    EXPECT_EQ(exports, rows);
}

// Their tables come from the mathematical library, whose last bit may depend on the processor: so
// runs are compared with each other, in memory of either kind, and of either library.
class LongPlans : public testing::TestWithParam<bool> {};

TEST_P(LongPlans, GiveTheSameBitsWhereverTheyLie) {
    const bool single = GetParam();
    const LoadedLibrary built(ORVGEN_LIBRARY_FILE);
    const PlanFunctions ours(library(), single), theirs(built, single);
    for (std::int32_t n = 64; n <= 65536; n *= 2) {
        for (const InputKind kind : {InputKind::Normal, InputKind::Wide, InputKind::Zeros,
                                     InputKind::Denormal, InputKind::NotFinite}) {
            if (n > 1024 && kind != InputKind::Normal) continue;
            const auto digest = [&](const PlanFunctions& f, PlanFunctions::Memory memory) {
                return resultDigest(f.plan(n, memory), kind);
            };
            const std::uint64_t expected = digest(theirs, PlanFunctions::Memory::OfTheLibrary);
            EXPECT_EQ(digest(ours, PlanFunctions::Memory::OfTheCaller), expected) << n;
            EXPECT_EQ(digest(ours, PlanFunctions::Memory::OfTheLibrary), expected) << n;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Of, LongPlans, testing::Bool(),
                         [](const auto& p) { return p.param ? "DCT4_32f" : "DCT4_64f"; });

}  // namespace
}  // namespace orvgen::test

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    if (count > 1) orvgen::test::fileUnderTest = arguments[1];
    return RUN_ALL_TESTS();
}
