// SPDX-License-Identifier: MIT
// The rows of the tables of design counts that speak of a kernel, for `show`.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "frame/families.h"

namespace orvgen::generator {

struct DesignRow {
    std::string table;
    std::vector<std::pair<std::string, std::string>> cells;  // column, value
};

// The rows of a length or order in the tables (CSV files in `folder`) of its family.
std::vector<DesignRow> designRows(const std::string& folder, const FamilyInfo& family, int number);

}  // namespace orvgen::generator
