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
        const Entry entry{row.integer("design"), row.integer("found"), false};
        const std::string label = family + " " + std::to_string(key.first) + " " + key.second;
        if (entry.design == entry.found) {
            complained.push_back(label + ": known difference without a difference");
        }
        if (row.empty("reason"))
            complained.push_back(label + ": known difference without a reason");
        if (!known.emplace(key, entry).second) complained.push_back(label + ": listed twice");
    }
}

void CountCheck::compare(long row, const std::string& column, long design, long found) {
    ++compared;
    const std::string label = family + " " + std::to_string(row) + " " + column + ": design " +
                              std::to_string(design) + ", found " + std::to_string(found);
    const auto it = known.find({row, column});
    if (it == known.end()) {
        if (design != found) complained.push_back(label);
        return;
    }
    it->second.used = true;
    if (it->second.design != design || it->second.found != found) {
        complained.push_back(label + "; the known difference says " +
                             std::to_string(it->second.design) + " and " +
                             std::to_string(it->second.found));
    }
}

std::vector<std::string> CountCheck::complaints() const {
    std::vector<std::string> columns;
    for (const auto& [key, entry] : known) columns.push_back(key.second);
    return countComplaints(columns);
}

std::vector<std::string> CountCheck::countComplaints(
    const std::vector<std::string>& columns) const {
    std::vector<std::string> result = complained;
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
