// SPDX-License-Identifier: MIT
// The table of docs/accuracy.md: one row for each length, one column for each family.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "accuracy.h"

namespace orvgen::test {

// The families of the table, and the headings of their columns. The layouts of the real transforms
// share their flows, so one stands for the three.
struct AccuracyColumn {
    std::string family;
    std::string heading;
};
const std::vector<AccuracyColumn>& accuracyColumns();

// What the table says, by family and length.
using AccuracyCells = std::map<std::pair<std::string, int>, std::string>;

std::string accuracyCell(const Accuracy& measured);
std::string accuracyPage(const AccuracyCells& cells);
AccuracyCells readAccuracyPage(const std::string& page);

}  // namespace orvgen::test
