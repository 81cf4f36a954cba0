// SPDX-License-Identifier: MIT
// The column of flags.csv that speaks of a family.
#pragma once

#include "frame/families.h"

namespace orvgen::test {

inline const char* scaleColumn(const FamilyInfo& family) {
    if (family.transform == Transform::Hartley) return "hartley";
    if (family.transform == Transform::WalshHadamard) return "wht";
    return family.direction == Direction::Inverse ? "inverse" : "forward";
}

}  // namespace orvgen::test
