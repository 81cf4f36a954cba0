#include "required.h"

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

std::vector<std::string> tablesOf(const std::string& kernel) {
    const auto has = [&](const char* part) { return kernel.find(part) != std::string::npos; };
    if (has("CToC") && has("_32fc"))
        return {"complex_f32_base", "complex_f32_composite", "complex_f32_rader",
                "complex_f32_bluestein"};
    if (has("CToC")) return {"complex_f64", "complex_f64_primes"};
    if (has("Hartley")) return {"hartley"};
    if (has("DFTFwd")) return {"real_forward"};
    if (has("DFTInv")) return {"real_inverse"};
    return {};
}

}  // namespace

std::vector<RequiredRow> requiredRows(const std::string& folder, const std::string& kernel,
                                      int length) {
    std::vector<RequiredRow> rows;
    for (const std::string& table : tablesOf(kernel)) {
        std::ifstream file(folder + "/" + table + ".csv");
        std::vector<std::string> columns;
        for (std::string line; std::getline(file, line);) {
            if (line.empty() || line[0] == '#') continue;
            const std::vector<std::string> values = fields(line);
            if (columns.empty()) {
                columns = values;
                continue;
            }
            if (values[0] != std::to_string(length)) continue;
            RequiredRow row{table, {}};
            for (std::size_t i = 1; i < values.size() && i < columns.size(); ++i)
                row.cells.emplace_back(columns[i], values[i]);
            rows.push_back(row);
        }
    }
    return rows;
}

}  // namespace orvgen::generator
