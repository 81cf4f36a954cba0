// SPDX-License-Identifier: MIT
#include "support/count_check.h"

#include <algorithm>
#include <utility>

namespace orvgen::test {

CountCheck::CountCheck(std::string name)
    : CountCheck(std::move(name), dataTable("known_differences")) {}

CountCheck::CountCheck(std::string name, const DataTable& knownDifferences)
    : family(std::move(name)) {
    for (const DataRow& row : knownDifferences.rows()) {
        if (row.text("family") != family) continue;
        const auto key = std::make_pair(row.integer("row"), row.text("column"));
        const Entry entry{row.integer("required"), row.integer("achieved"), false};
        const std::string label = family + " " + std::to_string(key.first) + " " + key.second;
        if (entry.required == entry.achieved) {
            found.push_back(label + ": known difference without a difference");
        }
        if (row.empty("reason")) found.push_back(label + ": known difference without a reason");
        if (!known.emplace(key, entry).second) found.push_back(label + ": listed twice");
    }
}

void CountCheck::compare(long row, const std::string& column, long required, long achieved) {
    ++compared;
    const std::string label = family + " " + std::to_string(row) + " " + column + ": required " +
                              std::to_string(required) + ", found " + std::to_string(achieved);
    const auto it = known.find({row, column});
    if (it == known.end()) {
        if (required != achieved) found.push_back(label);
        return;
    }
    it->second.used = true;
    if (it->second.required != required || it->second.achieved != achieved) {
        found.push_back(label + "; the known difference says " +
                        std::to_string(it->second.required) + " and " +
                        std::to_string(it->second.achieved));
    }
}

std::vector<std::string> CountCheck::complaints() const {
    std::vector<std::string> columns;
    for (const auto& [key, entry] : known) columns.push_back(key.second);
    return countComplaints(columns);
}

std::vector<std::string> CountCheck::countComplaints(
    const std::vector<std::string>& columns) const {
    std::vector<std::string> result = found;
    for (const auto& [key, entry] : known) {
        if (std::find(columns.begin(), columns.end(), key.second) == columns.end()) continue;
        if (!entry.used) {
            result.push_back(family + " " + std::to_string(key.first) + " " + key.second +
                             ": known difference that no count was compared with");
        }
    }
    if (compared == 0) result.push_back(family + ": nothing was compared");
    return result;
}

std::string CountCheck::report() const {
    std::string text;
    for (const std::string& s : complaints()) text += s + "\n";
    return text;
}

}  // namespace orvgen::test
