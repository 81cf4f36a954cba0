// SPDX-License-Identifier: MIT
// The version record. buildMinor and the number behind the point in versionText are two different
// quantities.

#include "orvgen.h"

namespace {

constexpr OrvLibraryVersion record = {
    .versionMajor = 6,
    .versionMinor = 1,
    .buildMajor = 137,
    .buildMinor = 336,
    .cpuTag = "m7",
    .libraryName = "liborvgenm7.so.6.1",
    .versionText = "6.1 build 137.56",
    .buildDate = "Mar 17 2010",
};

}  // namespace

const OrvLibraryVersion* orvgenGetLibVersion() { return &record; }
