// SPDX-License-Identifier: MIT
#include "table.h"

#include <stdexcept>
#include <string>

namespace orvgen::plan {

bool isBlock(int length) {
    switch (length) {
        case 1:
        case 2:
        case 3:
        case 4:
        case 5:
        case 7:
        case 11:
            return true;
        default:
            return false;
    }
}

Table::Table(Transform transform, const std::vector<Row>& rows, const Table* base)
    : transform_(transform), base_(base) {
    for (const Row& row : rows) {
        const std::string name = "the row of length " + std::to_string(row.length);
        if (row.term.length() != row.length)
            throw std::logic_error(name + " makes " + std::to_string(row.term.length()));
        if (!terms_.emplace(row.length, row.term).second)
            throw std::logic_error(name + " stands twice");
    }
    for (const Row& row : rows) plan(row.length);
}

PlanPtr Table::plan(int length) const {
    if (const auto row = terms_.find(length); row != terms_.end()) {
        const auto [known, isNew] = plans_.emplace(length, nullptr);
        if (isNew) known->second = row->second.resolve(transform_, *this);
        if (!known->second)
            throw std::logic_error("the row of length " + std::to_string(length) + " names itself");
        return known->second;
    }
    if (base_ != nullptr) return base_->plan(length);
    if (!isBlock(length))
        throw std::logic_error("no row and no block of length " + std::to_string(length));
    return block(length).resolve(transform_, *this);
}

}  // namespace orvgen::plan
