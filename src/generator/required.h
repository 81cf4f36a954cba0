// SPDX-License-Identifier: MIT
// The rows of the count tables that speak of a kernel, for `show`.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace orvgen::generator {

struct RequiredRow {
    std::string table;
    std::vector<std::pair<std::string, std::string>> cells;  // column, value
};

// The rows of a length in the tables (CSV files in `folder`) of a kernel's family.
std::vector<RequiredRow> requiredRows(const std::string& folder, const std::string& kernel,
                                      int length);

}  // namespace orvgen::generator
