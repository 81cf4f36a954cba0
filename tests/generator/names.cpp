// SPDX-License-Identifier: MIT
// The names that users call kernels by.
#include "generator/names.h"

#include <gtest/gtest.h>

namespace orvgen::generator {
namespace {

using Names = std::vector<std::string>;

const Names& names() {
    static const Names all = [] {
        Names list;
        for (const char* family : {"orvgDFTFwd_CToC", "orvgDFTInv_CToC"})
            for (const char* type : {"32fc", "64fc"})
                for (int n = 2; n <= 64; ++n)
                    list.push_back(family + ("_" + std::to_string(n) + "_") + type);
        for (int k = 1; k <= 13; ++k) list.push_back("orvgWHT_" + std::to_string(k) + "_64f");
        return list;
    }();
    return all;
}

TEST(Names, CallOneKernelInFullAndShort) {
    for (const char* word : {"orvgDFTInv_CToC_64_32fc", "DFTInv_CToC_64_32fc",
                             "dftinv_ctoc_64_32FC", "*Inv*_64_32fc", "DFTInv_CToC_?4_32fc"}) {
        const Names called = calledBy(names(), {word});
        EXPECT_TRUE(std::find(called.begin(), called.end(), "orvgDFTInv_CToC_64_32fc") !=
                    called.end())
            << word;
        EXPECT_EQ(called.size(), std::string(word).find('?') == std::string::npos ? 1U : 6U);
    }
    EXPECT_EQ(calledBy(names(), {"CToC_64_32fc"}),
              (Names{"orvgDFTFwd_CToC_64_32fc", "orvgDFTInv_CToC_64_32fc"}));
}

TEST(Names, CallAFamilyAndSeveralInTheirOrderAndOnce) {
    EXPECT_EQ(calledBy(names(), {"WHT_64f"}).size(), 13U);
    EXPECT_EQ(calledBy(names(), {"CToC_64fc"}).size(), 126U);
    EXPECT_EQ(calledBy(names(), {"WHT"}).size(), 13U);
    EXPECT_EQ(calledBy(names(), {"DFTInv_CToC"}).size(), 126U);
    EXPECT_EQ(calledBy(names(), {"WHT_13_64f", "WHT_2_64f", "wht_?_64f"}).size(), 10U);
    EXPECT_EQ(calledBy(names(), {"WHT_13_64f", "WHT_2_64f"}),
              (Names{"orvgWHT_2_64f", "orvgWHT_13_64f"}));
    EXPECT_EQ(calledBy(names(), {}), names());
}

TEST(Names, WhatCallsNoneGetsTheNearestAndAList) {
    const auto message = [](const std::string& word) -> std::string {
        try {
            calledBy(names(), {"WHT_2_64f", word});
        } catch (const UnknownName& e) {
            return e.what();
        }
        return "";
    };
    const std::string list =
        "\nthere are:"
        "\n  orvgDFTFwd_CToC_32fc, 2 to 64\n  orvgDFTFwd_CToC_64fc, 2 to 64"
        "\n  orvgDFTInv_CToC_32fc, 2 to 64\n  orvgDFTInv_CToC_64fc, 2 to 64"
        "\n  orvgWHT_64f, 1 to 13";
    EXPECT_EQ(message("DFTFwd_CToC_65_32fc"),
              "no kernel is called DFTFwd_CToC_65_32fc; the nearest: orvgDFTFwd_CToC_64_32fc, "
              "orvgDFTFwd_CToC_63_32fc, orvgDFTFwd_CToC_62_32fc, orvgDFTFwd_CToC_61_32fc" +
                  list);
    EXPECT_EQ(message("rubbish"), "no kernel is called rubbish" + list);
    for (const char* word : {"", "64fc", "64f", "32fc", "orvg"})
        EXPECT_EQ(message(word).substr(0, 20), "no kernel is called ") << word;
}

TEST(Names, OfTheFamily) {
    EXPECT_EQ(familyOf("orvgDFTFwd_CToC_64_32fc"), "orvgDFTFwd_CToC_32fc");
    EXPECT_EQ(familyOf("orvgWHT_13_64f"), "orvgWHT_64f");
    EXPECT_EQ(familyOf("orvgDCT4_32f"), "orvgDCT4_32f");
}

}  // namespace
}  // namespace orvgen::generator
