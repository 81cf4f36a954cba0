// SPDX-License-Identifier: MIT
// A file's machine code as binutils disassemble it, which know every instruction.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvgen::test {

// The lines of objdump -d, without blanks at their ends: "0000000000001000 <name>:" in front of
// each function, "  1000:\tvaddps %ymm1,%ymm2,%ymm3" for each instruction. Throws where objdump
// fails.
std::vector<std::string> disassembly(const std::string& file);

// Fused multiply-adds and approximations, which round otherwise than the contract, and sums within
// a vector, whose order is the processor's.
bool roundsOtherwise(std::string_view mnemonic);

// Registers and operands that 256-bit code without AVX-512 does not have.
bool areOfAvx512(const std::string& operands);

}  // namespace orvgen::test
