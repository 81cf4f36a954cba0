// SPDX-License-Identifier: MIT
// The tables of docs/accuracy.md: one row for each length or order, columns of families.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "accuracy.h"

namespace orvgen::test {

// The families that a column speaks of, whose figures are the same; the first one is measured for
// the page.
struct AccuracyColumn {
    std::string heading;
    std::vector<std::string> families;
};

struct AccuracyTable {
    std::string text;  // in front of it
    std::string number;
    std::vector<int> numbers;
    std::vector<AccuracyColumn> columns;
};

const std::vector<AccuracyTable>& accuracyTables();

// What the page says, by family and length or order.
using AccuracyCells = std::map<std::pair<std::string, int>, std::string>;

std::string accuracyCell(const Accuracy& measured);
std::string accuracyPage(const AccuracyCells& cells);
AccuracyCells readAccuracyPage(const std::string& page);

}  // namespace orvgen::test
