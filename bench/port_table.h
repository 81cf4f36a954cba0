// SPDX-License-Identifier: MIT
// What a core can do in a cycle, as data: each row names classes of operations and how many of
// them, taken together, one cycle takes. A kernel's own operations then bound its cycles from
// below.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace orvgen::bench {

// add, multiply, shuffle, unpack (the shuffles that some cores do on one port only, half loads
// included), logic, convert, load, store, issue (instructions of any kind)
using OperationCounts = std::map<std::string, double>;

class PortTable {
  public:
    // The name of a table that is there (zen5, golden-cove), or a file.
    static PortTable read(const std::string& name);
    // The table of the core that this runs on, or of the one nearest to it.
    static PortTable detected();

    const std::string& name() const { return tableName; }
    // The most loaded row, in cycles.
    double bound(const OperationCounts& counts) const;

  private:
    struct Row {
        std::vector<std::string> classes;
        double perCycle;
    };
    std::string tableName;
    std::vector<Row> rows;
};

}  // namespace orvgen::bench
