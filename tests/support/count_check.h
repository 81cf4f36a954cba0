// SPDX-License-Identifier: MIT
// Comparison of counted operations with a table, row by row and column by column, with the list of
// known differences taken exactly: see known_differences.csv.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/data_table.h"

namespace orvgen::test {

class CountCheck {
  public:
    // `family` is the name of the table, as in the first column of the known differences.
    explicit CountCheck(std::string family);
    CountCheck(std::string family, const DataTable& knownDifferences);

    void compare(long row, const std::string& column, long design, long found);
    // What is wrong: differences not listed, entries not compared or not as found. A check that
    // compared nothing is wrong too.
    std::vector<std::string> complaints() const;
    // The same for a check that compares some columns only: entries of others are not asked for.
    std::vector<std::string> countComplaints(const std::vector<std::string>& columns) const;
    // The complaints, one a line; empty when all is well (for EXPECT_EQ(check.report(), "")).
    std::string report() const;

  private:
    struct Entry {
        long design;
        long found;
        bool used;
    };
    std::string family;
    std::map<std::pair<long, std::string>, Entry> known;
    std::vector<std::string> complained;
    long compared = 0;
};

}  // namespace orvgen::test
