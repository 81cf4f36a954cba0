// SPDX-License-Identifier: MIT
// The version record, byte for byte.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "orvgen.h"

namespace {

TEST(Version, RecordIsExact) {
    const OrvLibraryVersion* v = orvgenGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->versionMajor, 6);
    EXPECT_EQ(v->versionMinor, 1);
    EXPECT_EQ(v->buildMajor, 137);
    EXPECT_EQ(v->buildMinor, 336);
    EXPECT_EQ(std::memcmp(v->cpuTag, "m7\0\0\0\0\0\0", 8), 0);
    EXPECT_STREQ(v->libraryName, "liborvgenm7.so.6.1");
    EXPECT_STREQ(v->versionText, "6.1 build 137.56");
    EXPECT_STREQ(v->buildDate, "Mar 17 2010");
}

TEST(Version, MacrosOfTheReleaseAgree) {
    const std::string text = std::to_string(ORVGEN_VERSION_MAJOR) + "." +
                             std::to_string(ORVGEN_VERSION_MINOR) + "." +
                             std::to_string(ORVGEN_VERSION_PATCH);
    EXPECT_EQ(text, ORVGEN_VERSION_TEXT);
#if ORVGEN_VERSION < 10000 || ORVGEN_VERSION != ORVGEN_VERSION_MAJOR * 10000 +   \
                                                    ORVGEN_VERSION_MINOR * 100 + \
                                                    ORVGEN_VERSION_PATCH
    ADD_FAILURE() << ORVGEN_VERSION;
#endif
}

TEST(Version, RecordHasTheStatedLayout) {
    EXPECT_EQ(offsetof(OrvLibraryVersion, versionMajor), 0U);
    EXPECT_EQ(offsetof(OrvLibraryVersion, versionMinor), 4U);
    EXPECT_EQ(offsetof(OrvLibraryVersion, buildMajor), 8U);
    EXPECT_EQ(offsetof(OrvLibraryVersion, buildMinor), 12U);
    EXPECT_EQ(offsetof(OrvLibraryVersion, cpuTag), 16U);
    EXPECT_EQ(offsetof(OrvLibraryVersion, libraryName), 24U);
    EXPECT_EQ(offsetof(OrvLibraryVersion, versionText), 32U);
    EXPECT_EQ(offsetof(OrvLibraryVersion, buildDate), 40U);
    EXPECT_EQ(sizeof(OrvLibraryVersion), 48U);
}

}  // namespace
