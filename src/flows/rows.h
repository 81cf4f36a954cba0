// SPDX-License-Identifier: MIT
// The rows of a join, and how they pass between its two stages.
#pragma once

#include "flow.h"

namespace orvgen::flows {

inline std::string pointBlocks(long n) { return std::to_string(n) + "-point blocks"; }

// Row k across the columns. A row of real numbers is formed.
template <class V>
Sequence<V> rowOf(const Plan& block, const std::vector<Sequence<V>>& u, long k) {
    Sequence<V> row;
    for (const Sequence<V>& column : u)
        row.push_back(block.transform == Transform::Complex ? column[k]
                                                            : realNumber<V>(column[k].re.formed()));
    return row;
}

// A row of an inverse transform. The inverse complex transform is the forward one, backwards.
template <class V>
Sequence<V> backwards(Flow<V>& flow, const Plan& block, long e, const Sequence<V>& row) {
    const Sequence<V> y = flow.run(block, e, row);
    if (block.transform != Transform::Complex) return y;
    Sequence<V> turned;
    for (std::size_t c = 0; c < y.size(); ++c) turned.push_back(y[(y.size() - c) % y.size()]);
    return turned;
}

}  // namespace orvgen::flows
