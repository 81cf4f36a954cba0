// SPDX-License-Identifier: MIT
#include "support/data_table.h"

#include <charconv>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

namespace orvgen::test {
namespace {

// One line of comma-separated fields; a field in double quotes may hold commas, "" is a quote.
std::vector<std::string> splitFields(const std::string& line, const std::string& where) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quoted) {
            if (c != '"') {
                fields.back() += c;
            } else if (i + 1 < line.size() && line[i + 1] == '"') {
                fields.back() += line[++i];
            } else {
                quoted = false;
            }
        } else if (c == '"' && fields.back().empty()) {
            quoted = true;
        } else if (c == ',') {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    if (quoted) throw std::runtime_error(where + ": quote not closed");
    return fields;
}

}  // namespace

void DataRow::fail(std::string_view column, const std::string& what) const {
    throw std::runtime_error(table->name() + ".csv line " + std::to_string(line) + ", column " +
                             std::string(column) + ": " + what);
}

const std::string& DataRow::text(std::string_view column) const {
    return fields[table->column(column)];
}

long DataRow::integer(std::string_view column) const {
    const std::string& s = text(column);
    long value = 0;
    const auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), value);
    if (error != std::errc() || end != s.data() + s.size()) fail(column, "no integer: " + s);
    return value;
}

double DataRow::number(std::string_view column) const {
    const std::string& s = text(column);
    double value = 0;
    const auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), value);
    if (error != std::errc() || end != s.data() + s.size()) fail(column, "no number: " + s);
    return value;
}

unsigned long long DataRow::bits(std::string_view column) const {
    const std::string& s = text(column);
    unsigned long long value = 0;
    if (s.size() < 3 || s.compare(0, 2, "0x") != 0) fail(column, "no bit pattern: " + s);
    const auto [end, error] = std::from_chars(s.data() + 2, s.data() + s.size(), value, 16);
    if (error != std::errc() || end != s.data() + s.size()) fail(column, "no bit pattern: " + s);
    return value;
}

bool DataRow::flag(std::string_view column) const {
    const std::string& s = text(column);
    if (s != "0" && s != "1") fail(column, "neither 0 nor 1: " + s);
    return s == "1";
}

std::vector<std::string> DataRow::words(std::string_view column) const {
    std::istringstream in(text(column));
    std::vector<std::string> result;
    for (std::string word; in >> word;) result.push_back(word);
    return result;
}

std::vector<long> DataRow::integers(std::string_view column) const {
    std::vector<long> result;
    for (const std::string& s : words(column)) {
        long value = 0;
        const auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), value);
        if (error != std::errc() || end != s.data() + s.size()) fail(column, "no integer: " + s);
        result.push_back(value);
    }
    return result;
}

std::vector<double> DataRow::numbers(std::string_view column) const {
    std::vector<double> result;
    for (const std::string& s : words(column)) {
        double value = 0;
        const auto [end, error] = std::from_chars(s.data(), s.data() + s.size(), value);
        if (error != std::errc() || end != s.data() + s.size()) fail(column, "no number: " + s);
        result.push_back(value);
    }
    return result;
}

DataTable::DataTable(const std::string& name) : DataTable(name, ORVGEN_TEST_DATA) {}

DataTable::DataTable(const std::string& name, const std::string& folder) : tableName(name) {
    std::ifstream in(folder + "/" + name + ".csv");
    if (!in) throw std::runtime_error("no table " + name + ".csv in " + folder);
    int number = 0;
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (line.empty() || line[0] == '#') continue;
        const std::string where = name + ".csv line " + std::to_string(number);
        std::vector<std::string> fields = splitFields(line, where);
        if (columnNames.empty()) {
            columnNames = std::move(fields);
            continue;
        }
        if (fields.size() != columnNames.size()) {
            throw std::runtime_error(where + ": " + std::to_string(fields.size()) + " fields for " +
                                     std::to_string(columnNames.size()) + " columns");
        }
        DataRow row;
        row.table = this;
        row.line = number;
        row.fields = std::move(fields);
        tableRows.push_back(std::move(row));
    }
    if (columnNames.empty()) throw std::runtime_error(name + ".csv: no line of column names");
}

std::size_t DataTable::column(std::string_view name) const {
    for (std::size_t i = 0; i < columnNames.size(); ++i) {
        if (columnNames[i] == name) return i;
    }
    throw std::runtime_error(tableName + ".csv: no column " + std::string(name));
}

const DataRow* DataTable::find(std::string_view column, long value) const {
    const DataRow* found = nullptr;
    for (const DataRow& row : tableRows) {
        if (row.integer(column) != value) continue;
        if (found) {
            throw std::runtime_error(tableName + ".csv: two rows with " + std::string(column) +
                                     " " + std::to_string(value));
        }
        found = &row;
    }
    return found;
}

const DataRow& DataTable::row(std::string_view column, long value) const {
    const DataRow* found = find(column, value);
    if (!found) {
        throw std::runtime_error(tableName + ".csv: no row with " + std::string(column) + " " +
                                 std::to_string(value));
    }
    return *found;
}

std::vector<long> DataTable::list(std::string_view column) const {
    std::vector<long> result;
    result.reserve(tableRows.size());
    for (const DataRow& row : tableRows) result.push_back(row.integer(column));
    return result;
}

const DataTable& dataTable(const std::string& name) {
    static std::map<std::string, std::unique_ptr<DataTable>> kept;
    std::unique_ptr<DataTable>& slot = kept[name];
    if (!slot) slot = std::make_unique<DataTable>(name);
    return *slot;
}

}  // namespace orvgen::test
