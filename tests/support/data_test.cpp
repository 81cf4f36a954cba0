// SPDX-License-Identifier: MIT
// The reader of the tables, what counts are compared by, and that no table lacks a row.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <set>
#include <stdexcept>

#include "support/count_check.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

std::vector<long> range(long first, long last) {
    std::vector<long> r(static_cast<std::size_t>(last - first + 1));
    std::iota(r.begin(), r.end(), first);
    return r;
}

class ScratchFolder {
  public:
    ScratchFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "orvgen-XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::runtime_error("no scratch folder");
        path = name;
    }
    ~ScratchFolder() { std::filesystem::remove_all(path); }
    void write(const std::string& name, const std::string& text) const {
        std::ofstream(path / (name + ".csv")) << text;
    }
    std::filesystem::path path;
};

TEST(DataTable, ReadsQuotesNumbersAndPatterns) {
    const ScratchFolder folder;
    folder.write("t", "# legend\na,b,c,d\n1,\"2, 3\",4 5,0x1F\n-2,\"say \"\"x\"\"\",,0x0\n");
    const DataTable t("t", folder.path);
    ASSERT_EQ(t.rows().size(), 2U);
    EXPECT_EQ(t.row("a", 1).text("b"), "2, 3");
    EXPECT_EQ(t.row("a", 1).integers("c"), (std::vector<long>{4, 5}));
    EXPECT_EQ(t.row("a", 1).bits("d"), 31U);
    EXPECT_EQ(t.row("a", -2).text("b"), "say \"x\"");
    EXPECT_TRUE(t.row("a", -2).empty("c"));
    EXPECT_EQ(t.list("a"), (std::vector<long>{1, -2}));
    EXPECT_EQ(t.find("a", 7), nullptr);
}

TEST(DataTable, ThrowsAtWhatItCannotRead) {
    const ScratchFolder folder;
    folder.write("t", "a,b\n1,x\n1,2\n");
    const DataTable t("t", folder.path);
    EXPECT_THROW(t.column("c"), std::runtime_error);
    EXPECT_THROW(t.row("a", 5), std::runtime_error);
    EXPECT_THROW(t.row("a", 1), std::runtime_error);  // two such rows
    EXPECT_THROW(t.rows()[0].integer("b"), std::runtime_error);
    EXPECT_THROW(t.rows()[0].flag("b"), std::runtime_error);
    EXPECT_THROW(t.rows()[1].bits("b"), std::runtime_error);
    EXPECT_THROW(DataTable("absent", folder.path), std::runtime_error);
    folder.write("short", "a,b\n1\n");
    EXPECT_THROW(DataTable("short", folder.path), std::runtime_error);
    folder.write("open", "a\n\"1\n");
    EXPECT_THROW(DataTable("open", folder.path), std::runtime_error);
    folder.write("empty", "# nothing\n");
    EXPECT_THROW(DataTable("empty", folder.path), std::runtime_error);
}

TEST(CountCheck, TakesKnownDifferencesExactly) {
    const ScratchFolder folder;
    const std::string head = "family,row,column,design,found,reason\n";
    folder.write("k", head + "f,7,mul,10,9,lean\n");
    const DataTable known("k", folder.path);
    CountCheck good("f", known);
    good.compare(5, "mul", 3, 3);
    good.compare(7, "mul", 10, 9);
    EXPECT_EQ(good.report(), "");
    CountCheck unlisted("f", known);
    unlisted.compare(7, "mul", 10, 9);
    unlisted.compare(5, "mul", 3, 4);
    EXPECT_EQ(unlisted.complaints().size(), 1U);
    CountCheck met("f", known);  // the row is met after all: the entry must go
    met.compare(7, "mul", 10, 10);
    EXPECT_EQ(met.complaints().size(), 1U);
    CountCheck other("f", known);  // differs in another way than listed
    other.compare(7, "mul", 10, 8);
    EXPECT_EQ(other.complaints().size(), 1U);
    CountCheck skipped("f", known);  // the row was not looked at
    skipped.compare(5, "mul", 3, 3);
    EXPECT_EQ(skipped.complaints().size(), 1U);
    CountCheck none("g", known);
    EXPECT_EQ(none.complaints().size(), 1U);
    folder.write("bad", head + "f,7,mul,10,10,\n");
    const DataTable bad("bad", folder.path);
    CountCheck useless("f", bad);
    useless.compare(7, "mul", 10, 10);
    EXPECT_EQ(useless.complaints().size(), 2U);
}

// Tests walk over the rows of a table: a row that is missing would be a length that nobody looks
// at.
TEST(Tables, HaveOneRowForEveryLengthAndOrder) {
    for (const char* name : {"complex_f64", "inverse_relations", "complex_f32_shape",
                             "real_forward", "real_inverse", "hartley"}) {
        EXPECT_EQ(dataTable(name).list("length"), range(2, 64)) << name;
    }
    std::set<long> complexF32{2, 3, 5};
    for (const char* name :
         {"complex_f32_composite", "complex_f32_rader", "complex_f32_bluestein"}) {
        for (const long n : dataTable(name).list("length")) {
            EXPECT_TRUE(complexF32.insert(n).second) << name << " " << n;
        }
    }
    const std::vector<long> all = range(2, 64);
    EXPECT_EQ(complexF32, std::set<long>(all.begin(), all.end()));
    for (const char* name : {"wht_buffer", "wht_root_scales"}) {
        EXPECT_EQ(dataTable(name).list("order"), range(1, 13)) << name;
    }
    EXPECT_EQ(dataTable("wht_bodies").rows().size(), 26U);
    EXPECT_EQ(dataTable("wht_straight").rows().size() + dataTable("wht_passes").rows().size(), 26U);
    EXPECT_EQ(dataTable("sqrt_two_roundings").rows().size(), 18U);
    EXPECT_EQ(dataTable("families").rows().size(), 20U);
    EXPECT_EQ(dataTable("complex_f64_primes").rows().size(), 15U);
}

}  // namespace
}  // namespace orvgen::test
