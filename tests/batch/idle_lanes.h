// SPDX-License-Identifier: MIT
// The exceptions that batches do not raise, because in the single kernel they come from lanes that
// no result depends on (tests/data/batch_flags.csv).
#pragma once

#include <cstdint>
#include <map>

#include "support/data_table.h"

namespace orvgen::test::batch {

// Flags of the control word, by length of the complex binary32 transform.
inline const std::map<int, std::uint32_t>& flagsOfIdleLanes() {
    static const auto flags = [] {
        std::map<int, std::uint32_t> byLength;
        for (const DataRow& row : dataTable("batch_flags").rows())
            byLength[static_cast<int>(row.integer("length"))] =
                (row.integer("overflow") != 0 ? 8U : 0U) | (row.integer("invalid") != 0 ? 1U : 0U);
        return byLength;
    }();
    return flags;
}

inline std::uint32_t flagsOfIdleLanes(int length) {
    const auto found = flagsOfIdleLanes().find(length);
    return found == flagsOfIdleLanes().end() ? 0 : found->second;
}

}  // namespace orvgen::test::batch
