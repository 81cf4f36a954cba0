// SPDX-License-Identifier: MIT
#include "port_table.h"

#include <cpuid.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace orvgen::bench {
namespace {

struct Core {
    std::string vendor;
    unsigned family = 0;
    unsigned model = 0;
};

Core thisCore() {
    Core core;
    unsigned a = 0, b = 0, c = 0, d = 0;
    __get_cpuid(0, &a, &b, &c, &d);
    for (const unsigned part : {b, d, c}) {
        for (int i = 0; i < 4; ++i) core.vendor += static_cast<char>(part >> (8 * i));
    }
    __get_cpuid(1, &a, &b, &c, &d);
    core.family = (a >> 8) & 15;
    core.model = (a >> 4) & 15;
    if (core.family == 15) core.family += (a >> 20) & 255;
    if (core.family == 6 || core.family >= 15) core.model += ((a >> 16) & 15) << 4;
    return core;
}

// Those that come with the project, in order.
std::string tables() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(ORVGEN_PORT_TABLES))
        names.insert(entry.path().stem().string());
    std::string text;
    for (const std::string& name : names) text += " " + name;
    return text;
}

}  // namespace

PortTable PortTable::read(const std::string& name) {
    const std::string known = std::string(ORVGEN_PORT_TABLES) + "/" + name + ".csv";
    const std::string path = std::filesystem::exists(known) ? known : name;
    std::ifstream in(path);
    if (!in || std::filesystem::is_directory(path))
        throw std::runtime_error("no port table " + name + "; there are" + tables());
    PortTable table;
    table.tableName = std::filesystem::path(path).stem().string();
    bool header = true;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        const std::size_t comma = line.find(',');
        if (comma == std::string::npos) throw std::runtime_error(path + ": no comma in " + line);
        if (header) {
            header = false;
            continue;
        }
        Row row;
        std::istringstream words(line.substr(0, comma));
        for (std::string word; words >> word;) row.classes.push_back(word);
        row.perCycle = std::stod(line.substr(comma + 1));
        if (row.classes.empty() || row.perCycle <= 0) throw std::runtime_error(path + ": " + line);
        table.rows.push_back(std::move(row));
    }
    if (table.rows.empty()) throw std::runtime_error(path + ": no rows");
    return table;
}

PortTable PortTable::detected() {
    const Core core = thisCore();
    return read(core.vendor == "AuthenticAMD" ? "zen5" : "golden-cove");
}

double PortTable::bound(const OperationCounts& counts) const {
    double most = 0;
    for (const Row& row : rows) {
        double sum = 0;
        for (const std::string& name : row.classes) {
            const auto it = counts.find(name);
            if (it != counts.end()) sum += it->second;
        }
        most = std::max(most, sum / row.perCycle);
    }
    return most;
}

}  // namespace orvgen::bench
