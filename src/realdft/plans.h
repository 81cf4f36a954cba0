// SPDX-License-Identifier: MIT
// How each length of the real transforms is made.
#pragma once

#include "packed_format.h"
#include "plan/table.h"

namespace orvgen::realdft {

// In either element type and every format.
const plan::Table& forwardPlans();
// A decomposition of its own, not the forward one run backwards: the order of the factors is often
// another.
const plan::Table& inversePlans(PackedFormat format);

}  // namespace orvgen::realdft
