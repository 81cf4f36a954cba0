// SPDX-License-Identifier: MIT
// The digests of a library: for every exported function one of its results over the fixed inputs of
// each kind, under four flags and four rounding modes, and one of the statuses that it gives.
#pragma once

#include <string>
#include <vector>

#include "digests/library.h"

namespace orvgen::test {

struct DigestRow {
    std::string name;
    std::vector<std::string> digests;  // one for each of digestColumns; empty: not kept
};

inline const std::vector<std::string> digestColumns = {"normal", "wide",       "denormal",
                                                       "zeros",  "not_finite", "statuses"};

// The parts of the library, for those who run them one by one: the families' names and "others".
std::vector<std::string> digestGroups();
std::vector<DigestRow> digestRows(const LoadedLibrary& library, const std::string& group);

}  // namespace orvgen::test
