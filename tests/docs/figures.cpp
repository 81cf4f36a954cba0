// SPDX-License-Identifier: MIT
// Figures in the documentation that the code can tell: they are worked out here and looked for in
// the text.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <vector>

#include "dft/single_lengths.h"
#include "frame/families.h"
#include "hartley/hartley.h"
#include "page.h"
#include "realdft/packed_format.h"
#include "realdft/plans.h"
#include "support/data_table.h"
#include "support/plan_tree.h"
#include "wht/arrangement.h"

namespace orvgen::test {
namespace {

std::string number(long n) { return std::to_string(n); }

template <class Chosen>
std::vector<int> lengthsWhere(const Chosen& chosen) {
    std::vector<int> list;
    for (const int n : kLengths)
        if (chosen(n)) list.push_back(n);
    return list;
}

// "2, 3, 4"
std::string listed(const std::vector<int>& numbers) {
    std::string text;
    for (const int n : numbers) text += (text.empty() ? "" : ", ") + number(n);
    return text;
}

// "2 to 4, 7, 8", three neighbours or more being a range.
std::string ranges(const std::vector<int>& numbers) {
    std::string text;
    for (std::size_t i = 0; i < numbers.size();) {
        std::size_t end = i + 1;
        while (end < numbers.size() && numbers[end] == numbers[end - 1] + 1) ++end;
        if (end - i < 3) end = i + 1;
        text += (text.empty() ? "" : ", ") + number(numbers[i]);
        if (end > i + 1) text += " to " + number(numbers[end - 1]);
        i = end;
    }
    return text;
}

// "5, 7, 8 and 11"
std::string spoken(const std::vector<int>& numbers) {
    std::string text = listed(numbers);
    const std::size_t last = text.rfind(", ");
    return last == std::string::npos ? text : text.replace(last, 2, " and ");
}

std::string word(long n) {
    static const std::array<const char*, 21> words = {
        "no",       "one",     "two",     "three",     "four",     "five",     "six",
        "seven",    "eight",   "nine",    "ten",       "eleven",   "twelve",   "thirteen",
        "fourteen", "fifteen", "sixteen", "seventeen", "eighteen", "nineteen", "twenty"};
    return words.at(static_cast<std::size_t>(n));
}

TEST(Figures, OfTheHartleyTransformsAreDocumented) {
    EXPECT_TRUE(says("docs/hartley.md", "Through the forward transform** (" +
                                            ranges(lengthsWhere(hartley::runsForwardFlow)) + ")."))
        << ranges(lengthsWhere(hartley::runsForwardFlow));
    EXPECT_TRUE(says("docs/hartley.md", "At N = " + spoken(lengthsWhere(hartley::hasOwnLastLayer)) +
                                            " the last layer is written out"));
}

std::string layers(const wht::Cut& cut) {
    std::vector<int> list(cut.layers, cut.layers + cut.passes());
    return listed(list);
}

TEST(Figures, OfTheWalshHadamardTransformsAreDocumented) {
    using enum wht::Element;
    int straight = 0;
    for (const int k : kOrders) {
        if (wht::cutOf(F32, k).passes() == 1) {
            EXPECT_EQ(wht::bufferBytes(F32, k) + wht::bufferBytes(F64, k), 0);
            EXPECT_EQ(++straight, k);
            continue;
        }
        std::string row = "| " + number(k);
        for (const wht::Element e : {F32, F64})
            row += " | " + layers(wht::cutOf(e, k)) + " | " + number(wht::bufferBytes(e, k));
        EXPECT_TRUE(says("docs/walsh-hadamard.md", row + " |")) << row;
    }
    EXPECT_TRUE(
        says("docs/walsh-hadamard.md", "| 1 to " + number(straight) + " | all | 0 | all | 0 |"));
}

// What the flows of the kernels are counted against.
std::string operations(const char* table, std::string_view size, std::size_t row) {
    const DataTable& data = dataTable(table);
    if (row >= data.rows().size()) return " | | | |";
    std::string text;
    for (const std::string_view column : {size, {"add"}, {"sub"}, {"mul"}})
        text += " | " + number(data.rows()[row].integer(column));
    return text;
}

TEST(Figures, OfTheDct4KernelsAreDocumented) {
    const std::size_t kernels = dataTable("dct4/odd_frequency").rows().size();
    ASSERT_EQ(kernels, 6U);
    for (std::size_t i = 0; i < kernels; ++i) {
        const std::string row = operations("dct4/odd_frequency", "n", i).substr(1) + " |" +
                                operations("dct4/stage_two", "r", i) + " |" +
                                operations("dct4/joins", "r", i) + (i + 1 < kernels ? " |" : "");
        EXPECT_TRUE(says("docs/dct4.md", row)) << row;
    }
    std::string lengths = "| Length", products = "| products",
                sums = "| additions and subtractions";
    for (const DataRow& row : dataTable("dct4/bodies").rows()) {
        lengths += " | " + number(row.integer("length"));
        products += " | " + number(row.integer("multiplications"));
        sums += " | " + number(row.integer("additions"));
    }
    EXPECT_TRUE(says("docs/dct4.md", lengths + " |"));
    EXPECT_TRUE(says("docs/dct4.md", products + " |")) << products;
    EXPECT_TRUE(says("docs/dct4.md", sums + " |")) << sums;
}

// "At nine lengths (19, 37 ..."
void expectCarries(const std::string& path, const plan::Table& plans, bool howMany) {
    const auto values = [&](int n) { return unroundedValues(*plans.plan(n)); };
    const std::vector<int> lengths = lengthsWhere([&](int n) { return values(n) > 0; });
    std::string text = word(std::ssize(lengths)) + " lengths (" + listed(lengths) + ")";
    if (howMany) {
        const auto [least, most] = std::ranges::minmax(lengths, {}, values);
        text += " " + word(values(least)) + " to " + word(values(most)) + " values";
    }
    EXPECT_TRUE(says(path, text)) << path << ": " << text;
}

TEST(Figures, OfCarriedValuesAreDocumented) {
    expectCarries("docs/real.md", realdft::forwardPlans(), false);
    for (const auto format : realdft::kPackedFormats)
        expectCarries("docs/real.md", realdft::inversePlans(format), true);
}

TEST(Figures, OfReadsBehindTheSourceAreDocumented) {
    const std::vector<int> lengths = lengthsWhere(
        [](int n) { return dft::singleLength(n).plan->as<plan::Bluestein>() != nullptr; });
    EXPECT_TRUE(says("include/orvgen.h", "At lengths " + spoken(lengths) +
                                             " the _32fc kernels also read the 8 bytes behind src"))
        << spoken(lengths);
    EXPECT_TRUE(says("include/orvgen_batch.h",
                     "(Lengths " + spoken(lengths) + " of the complex transform in binary32"));
}

long linesOf(const std::string& path) {
    std::ifstream file(std::string(ORVGEN_TREE) + "/" + path);
    long lines = 0;
    for (std::string line; std::getline(file, line);) ++lines;
    return lines;
}

#define COUNT(NAME, T, LIST) ++count;
constexpr int families() {
    int count = 0;
    ORVGEN_LENGTH_FAMILIES(COUNT)
    return count;
}
#undef COUNT

TEST(Figures, OfFunctionsAndFamiliesAreDocumented) {
    const std::string functions = number(linesOf("tests/frame/exports.txt"));
    EXPECT_TRUE(says("README.md", functions + " functions")) << functions;
    EXPECT_TRUE(says("docs/architecture.md", "all " + functions + " names")) << functions;
    EXPECT_TRUE(says("docs/kernel-compiler.md", "all " + number(families()) + " families"));
}

}  // namespace
}  // namespace orvgen::test
