// SPDX-License-Identifier: MIT
#include "support/packed_format.h"

#include <stdexcept>

#include "support/data_table.h"

namespace orvgen::test {

namespace {

// A position such as 2k-1, N+1 or 0.
int position(const std::string& formula, int length, int bin) {
    int value = 0;
    int sign = 1;
    int factor = 0;
    bool hasFactor = false;
    const auto add = [&] {
        if (hasFactor) value += sign * factor;
        factor = 0;
        hasFactor = false;
    };
    for (const char c : formula) {
        if (c >= '0' && c <= '9') {
            factor = 10 * factor + (c - '0');
            hasFactor = true;
        } else if (c == 'k' || c == 'N') {
            value += sign * (hasFactor ? factor : 1) * (c == 'k' ? bin : length);
            factor = 0;
            hasFactor = false;
        } else if (c == '+' || c == '-') {
            add();
            sign = c == '+' ? 1 : -1;
        } else {
            throw std::runtime_error("no position: " + formula);
        }
    }
    add();
    return value;
}

}  // namespace

PackedFormat::PackedFormat(const std::string& name, int length) : formatName(name), n(length) {
    const bool even = length % 2 == 0;
    std::string upper = name == "ccs" ? "CCS" : name == "pack" ? "Pack" : "Perm";
    for (const DataRow& row : dataTable("packed_sizes").rows())
        if (row.text("format") == upper)
            elements.resize(static_cast<std::size_t>(length + row.integer(even ? "even" : "odd")));
    const std::string column = name == "perm" ? (even ? "perm_even" : "perm_odd") : name;
    std::vector<bool> filled(elements.size(), false);
    for (const DataRow& row : dataTable("packed_positions").rows()) {
        const std::string& formula = row.text(column);
        const std::string& which = row.text("lengths");
        if (formula.empty() || (which == "even" && !even)) continue;
        const int first = which == "k" ? 1 : which == "even" ? length / 2 : 0;
        const int last = which == "k" ? pairs() : first;
        for (int k = first; k <= last; ++k) {
            const auto i = static_cast<std::size_t>(position(formula, length, k));
            if (i >= elements.size() || filled[i])
                throw std::logic_error("two terms at one element, or one outside: " + name);
            filled[i] = true;
            if (!row.flag("zero")) elements[i] = Term{k, row.text("term")[0] == 'I'};
        }
    }
    for (const bool f : filled)
        if (!f) throw std::logic_error("an element without a term: " + name);
}

int PackedFormat::indexOf(const Term& term) const {
    for (std::size_t i = 0; i < elements.size(); ++i)
        if (elements[i] == term) return static_cast<int>(i);
    throw std::logic_error("no such term in the format");
}

std::vector<int> PackedFormat::stored() const {
    std::vector<int> result;
    for (std::size_t i = 0; i < elements.size(); ++i)
        if (elements[i]) result.push_back(static_cast<int>(i));
    return result;
}

}  // namespace orvgen::test
