// SPDX-License-Identifier: MIT
// The names that users call kernels by.
#include "generator/names.h"

#include <gtest/gtest.h>

namespace orvgen::test {
namespace {

using namespace orvgen::generator;

using Names = std::vector<std::string>;

Names namesOf(const std::vector<Member>& members) {
    Names names;
    for (const Member& m : members) names.push_back(m.name());
    return names;
}

// A part of the library is enough, and shortens the lists.
const std::vector<Member>& members() {
    static const std::vector<Member> some = [] {
        std::vector<Member> list;
        for (const FamilyInfo* family :
             {&familyOf("DFTFwd_CToC", "32fc"), &familyOf("DFTFwd_CToC", "64fc"),
              &familyOf("DFTInv_CToC", "32fc"), &familyOf("DFTInv_CToC", "64fc"),
              &familyOf("WHT", "64f")})
            for (const Member& m : membersOf(*family)) list.push_back(m);
        return list;
    }();
    return some;
}

Names called(const Names& words) { return namesOf(calledBy(members(), words)); }

TEST(Names, CallOneKernelInFullAndShort) {
    for (const char* word : {"orvgDFTInv_CToC_64_32fc", "DFTInv_CToC_64_32fc",
                             "dftinv_ctoc_64_32FC", "*Inv*_64_32fc", "DFTInv_CToC_?4_32fc"}) {
        const Names found = called({word});
        EXPECT_TRUE(std::find(found.begin(), found.end(), "orvgDFTInv_CToC_64_32fc") != found.end())
            << word;
        EXPECT_EQ(found.size(), std::string(word).find('?') == std::string::npos ? 1U : 6U);
    }
    EXPECT_EQ(called({"CToC_64_32fc"}),
              (Names{"orvgDFTFwd_CToC_64_32fc", "orvgDFTInv_CToC_64_32fc"}));
}

TEST(Names, CallAFamilyAndSeveralInTheirOrderAndOnce) {
    EXPECT_EQ(called({"WHT_64f"}).size(), 13U);
    EXPECT_EQ(called({"CToC_64fc"}).size(), 126U);
    EXPECT_EQ(called({"WHT"}).size(), 13U);
    EXPECT_EQ(called({"DFTInv_CToC"}).size(), 126U);
    EXPECT_EQ(called({"WHT_13_64f", "WHT_2_64f", "wht_?_64f"}).size(), 10U);
    EXPECT_EQ(called({"WHT_13_64f", "WHT_2_64f"}), (Names{"orvgWHT_2_64f", "orvgWHT_13_64f"}));
    EXPECT_EQ(calledBy(members(), {}), members());
}

TEST(Names, WhatCallsNoneGetsTheNearestAndAList) {
    const auto message = [](const std::string& word) -> std::string {
        try {
            called({"WHT_2_64f", word});
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
    EXPECT_EQ(message(""), "a name is empty" + list);
    for (const char* word : {"64fc", "64f", "32fc", "orvg"})
        EXPECT_EQ(message(word).substr(0, 20), "no kernel is called ") << word;
}

TEST(Names, AreComposed) {
    EXPECT_EQ(memberName(familyOf("DFTFwd_CToC", "32fc"), 64), "orvgDFTFwd_CToC_64_32fc");
    EXPECT_EQ(twinName(familyOf("WHT", "64f"), 13), "owngWHT_13_64f_unaligned");
    EXPECT_EQ(nameOf(familyOf("DCT4", "32f")), "orvgDCT4_32f");
    EXPECT_EQ(shortName(familyOf("Hartley", "64f")), "Hartley_64f");
}

}  // namespace
}  // namespace orvgen::test
