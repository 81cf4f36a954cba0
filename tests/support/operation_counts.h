// SPDX-License-Identifier: MIT
// The operations of a flow of real numbers against its row, as far as the tables have the same
// columns.
#pragma once

#include <gtest/gtest.h>

#include "kernelgen/count.h"
#include "support/count_check.h"

namespace orvgen::test {

inline void compareOperations(CountCheck& check, const DataRow& row,
                              const kernelgen::Graph& graph) {
    const kernelgen::Counts c = kernelgen::countOperations(graph);
    const long n = row.integer("length");
    const auto compare = [&](const char* column, long found) {
        check.compare(n, column, row.integer(column), found);
    };
    compare("additions", c.additions);
    compare("constant_products", c.constantProducts);
    compare("multiplications", c.multiplications());
    if (graph.elementType() == kernelgen::Type::F32)
        compare("conversions", c.conversions());
    else
        EXPECT_EQ(c.conversions(), 0) << n;
}

}  // namespace orvgen::test
