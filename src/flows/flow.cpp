// SPDX-License-Identifier: MIT
#include "flow.h"

#include "blocks.h"

namespace orvgen::flows {

template class Flow<kernelgen::Value>;

}  // namespace orvgen::flows
