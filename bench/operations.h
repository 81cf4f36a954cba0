// SPDX-License-Identifier: MIT
// The operations of a kernel's own machine code, in the classes of the port tables.
#pragma once

#include <string>

#include "port_table.h"

namespace orvgen::test {
class MachineCode;
}

namespace orvgen::bench {

// Of one call on aligned buffers; empty where the library holds no such function, or where the call
// cannot be followed (a plan's).
OperationCounts operationsOf(const test::MachineCode& code, const std::string& kernel);

}  // namespace orvgen::bench
