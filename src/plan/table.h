// SPDX-License-Identifier: MIT
// The plans of a family: one row for each length that is no block, and no other place to look.
#pragma once

#include <map>

#include "terms.h"

namespace orvgen::plan {

struct Row {
    int length;
    Term term;
};

// The lengths for which there is a block: butterflies and direct forms.
bool isBlock(int length);

class Table {
  public:
    // Rows of transforms of one kind. Lengths without a row are those of `base`, and blocks.
    Table(Transform transform, const std::vector<Row>& rows, const Table* base = nullptr);

    Transform transform() const { return transform_; }
    PlanPtr plan(int length) const;

  private:
    Transform transform_;
    std::map<int, Term> terms_;
    const Table* base_;
    mutable std::map<int, PlanPtr> plans_;  // all rows, once the constructor is done
};

}  // namespace orvgen::plan
