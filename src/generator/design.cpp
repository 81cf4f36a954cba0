// SPDX-License-Identifier: MIT
#include "design.h"

#include <fstream>

namespace orvgen::generator {

namespace {

// The fields of a line; a comma inside quotes separates nothing.
std::vector<std::string> fields(const std::string& line) {
    std::vector<std::string> list(1);
    bool quoted = false;
    for (const char c : line) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ',' && !quoted)
            list.emplace_back();
        else
            list.back() += c;
    }
    return list;
}

std::vector<std::string> tablesOf(const FamilyInfo& family) {
    switch (family.transform) {
        case Transform::Dft:
            if (family.isComplex() && family.isSingle())
                return {"complex_f32_base", "complex_f32_composite", "complex_f32_rader",
                        "complex_f32_bluestein"};
            if (family.isComplex()) return {"complex_f64", "complex_f64_primes"};
            return {family.direction == Direction::Forward ? "real_forward" : "real_inverse"};
        case Transform::Hartley:
            return {"hartley"};
        case Transform::WalshHadamard:
            return {"wht_bodies", "wht_straight", "wht_passes", "wht_buffer"};
        default:
            return {};
    }
}

}  // namespace

std::vector<DesignRow> designRows(const std::string& folder, const FamilyInfo& family, int number) {
    const bool wide = !family.isSingle();
    std::vector<DesignRow> rows;
    for (const std::string& table : tablesOf(family)) {
        std::ifstream file(folder + "/" + table + ".csv");
        std::vector<std::string> columns;
        for (std::string line; std::getline(file, line);) {
            if (line.empty() || line[0] == '#') continue;
            const std::vector<std::string> values = fields(line);
            if (columns.empty()) {
                columns = values;
                continue;
            }
            // The number stands first, or behind the element type.
            const std::size_t at = columns[0] == "type" ? 1 : 0;
            if (values[at] != std::to_string(number) ||
                (at == 1 && values[0] != (wide ? "f64" : "f32")))
                continue;
            DesignRow row{table, {}};
            for (std::size_t i = at + 1; i < values.size() && i < columns.size(); ++i) {
                // Some tables serve both types and count the conversions of binary32.
                if (!values[i].empty() && (!wide || columns[i] != "conversions"))
                    row.cells.emplace_back(columns[i], values[i]);
            }
            rows.push_back(row);
        }
    }
    return rows;
}

}  // namespace orvgen::generator
