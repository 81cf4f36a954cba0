// SPDX-License-Identifier: MIT
// The tables of tests/data: comma-separated files with a legend in '#' lines and a line of column
// names. A file, a column or a row that is not there, and a field that is not what the reader asks
// for, throw: a test never runs on a table that it could not read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvgen::test {

class DataTable;

class DataRow {
  public:
    const std::string& text(std::string_view column) const;
    bool empty(std::string_view column) const { return text(column).empty(); }
    long integer(std::string_view column) const;
    double number(std::string_view column) const;
    unsigned long long bits(std::string_view column) const;  // 0x...
    bool flag(std::string_view column) const;                // 0 or 1
    // Fields of several parts, separated by blanks.
    std::vector<std::string> words(std::string_view column) const;
    std::vector<long> integers(std::string_view column) const;
    std::vector<double> numbers(std::string_view column) const;

  private:
    friend class DataTable;
    const DataTable* table = nullptr;
    int line = 0;
    std::vector<std::string> fields;

    [[noreturn]] void fail(std::string_view column, const std::string& what) const;
};

class DataTable {
  public:
    // `name` without folder and ending, for example "real_forward".
    explicit DataTable(const std::string& name);
    DataTable(const std::string& name, const std::string& folder);
    DataTable(const DataTable&) = delete;
    DataTable& operator=(const DataTable&) = delete;

    const std::string& name() const { return tableName; }
    const std::vector<std::string>& columns() const { return columnNames; }
    const std::vector<DataRow>& rows() const { return tableRows; }
    std::size_t column(std::string_view name) const;
    // The one row whose `column` holds `value`.
    const DataRow& row(std::string_view column, long value) const;
    const DataRow* find(std::string_view column, long value) const;
    // All values of a column of integers, in order.
    std::vector<long> list(std::string_view column) const;

  private:
    std::string tableName;
    std::vector<std::string> columnNames;
    std::vector<DataRow> tableRows;
};

// One table a name, read at first use and kept.
const DataTable& dataTable(const std::string& name);

}  // namespace orvgen::test
