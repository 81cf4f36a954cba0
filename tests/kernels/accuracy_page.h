// The table of docs/accuracy.md: one row for each length, one column for each family.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace orvgen::test {

// The families of the table, and the headings of their columns. The layouts of the real transforms
// share their flows, so one stands for the three.
struct AccuracyColumn {
    std::string family;
    std::string heading;
};
const std::vector<AccuracyColumn>& accuracyColumns();

// The whole page, freshly measured. Families that do not exist yet have empty columns.
std::string accuracyPage();

}  // namespace orvgen::test
