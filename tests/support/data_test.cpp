// SPDX-License-Identifier: MIT
// The tables by themselves: they are whole, and what two of them say about one thing agrees.
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

TEST(Tables, HoldEveryLengthOnce) {
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

TEST(Tables, AgreeWithEachOther) {
    const DataTable& forward = dataTable("real_forward");
    for (const DataRow& row : forward.rows()) {
        const long n = row.integer("length");
        EXPECT_EQ(row.integer("multiplications"), row.integer("constant_products") + n) << n;
    }
    for (const DataRow& row : dataTable("real_inverse").rows()) {
        const long n = row.integer("length");
        EXPECT_EQ(row.integer("multiplications"),
                  row.integer("constant_products") + row.integer("doublings") + n)
            << n;
    }
    for (const DataRow& row : dataTable("hartley").rows()) {
        const long n = row.integer("length");
        EXPECT_EQ(row.integer("multiplications"), row.integer("constant_products") + n) << n;
    }
    for (const DataRow& row : dataTable("complex_f64").rows()) {
        const long n = row.integer("length");
        EXPECT_EQ(row.integer("swaps"), (n - 1) / 2) << n;
        const long real = forward.row("length", n).integer("multiplications");
        EXPECT_EQ(row.integer("multiplications") == 2 * real, row.flag("twice_real")) << n;
        const DataRow* prime = dataTable("complex_f64_primes").find("length", n);
        if (prime) {
            EXPECT_EQ(prime->integer("additions"), row.integer("additions")) << n;
            EXPECT_EQ(prime->integer("multiplications"), row.integer("multiplications")) << n;
        }
    }
    for (const DataRow& row : dataTable("complex_f32_mixed_products").rows()) {
        const long n = row.integer("length");
        const DataRow& all = dataTable("complex_f32_composite").row("length", n);
        EXPECT_EQ(row.integer("all"), all.integer("multiplications")) << n;
        EXPECT_LE(row.integer("mixed"), row.integer("all")) << n;
    }
    long products = 0;
    for (const DataRow& row : dataTable("complex_f32_factor13_constants").rows()) {
        products += row.integer("products");
    }
    EXPECT_EQ(
        2 * products,
        dataTable("complex_f32_factors").row("factor", 13).integer("embedded_multiplications"));
}

// The complex kernels of both precisions, scale included: both counts are the same where the list
// says so. (Not only there: the list counts trivial twiddles that run in lanes, the table does
// not.)
TEST(Tables, ComplexFamiliesAgreeWhereListed) {
    for (const DataRow& row : dataTable("complex_f64").rows()) {
        const long n = row.integer("length");
        long additions = 0, multiplications = 0;
        if (const DataRow* c = dataTable("complex_f32_composite").find("length", n)) {
            additions = c->integer("additions");
            multiplications = c->integer("multiplications") + 2 * n;
        } else if (const DataRow* b = dataTable("complex_f32_base").find("length", n); b && n < 6) {
            additions = b->integer("additions");
            multiplications = b->integer("multiplications") + 2 * n;
        } else {
            const bool rader = dataTable("complex_f32_rader").find("length", n) != nullptr;
            const DataRow& p =
                dataTable(rader ? "complex_f32_rader" : "complex_f32_bluestein").row("length", n);
            additions = p.integer("live_additions");
            multiplications = p.integer("live_multiplications");
        }
        const bool same = additions == row.integer("additions") &&
                          multiplications == row.integer("multiplications");
        EXPECT_TRUE(same || !row.flag("same_as_f32")) << n;
    }
}

TEST(Tables, WalshHadamardPassesCoverTheArray) {
    for (const DataRow& row : dataTable("wht_passes").rows()) {
        const long order = row.integer("order"), points = 1L << order;
        const long lanes = row.text("type") == "f32" ? 4 : 2;
        const std::vector<long> layers = row.integers("layers");
        EXPECT_EQ(std::accumulate(layers.begin(), layers.end(), 0L), order);
        const long tiles = row.integer("tiles");
        EXPECT_EQ((tiles ? tiles : 1) * row.integer("blocks") * row.integer("block_size"), points);
        EXPECT_EQ(row.integer("last_steps") * lanes * row.integer("last_radix"), points);
        EXPECT_EQ(row.integer("last_radix") * row.integer("last_stride"), points);
        EXPECT_EQ(1L << layers.back(), row.integer("last_radix"));
        const DataRow& buffer = dataTable("wht_buffer").row("order", order);
        const std::string& type = row.text("type");
        const long tile = buffer.integer(type + "_tile");
        EXPECT_EQ(buffer.integer(type + "_bytes"), (points + tile) * (type == "f32" ? 4 : 8));
        EXPECT_EQ(tile, tiles ? 8 * row.integer("block_size") : 0) << order;
    }
}

}  // namespace
}  // namespace orvgen::test
