// SPDX-License-Identifier: MIT
// How each length of the complex binary64 kernels is made: as the forward real transform, but for
// the rows here.
#pragma once

#include "plan/table.h"

namespace orvgen::dft {

const plan::Table& doublePlans();

}  // namespace orvgen::dft
