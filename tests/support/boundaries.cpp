// SPDX-License-Identifier: MIT
#include "boundaries.h"

namespace orvgen::test {

std::vector<std::string> offTheirBoundary(const MachineCode& code, const std::string& function) {
    constexpr int rip = 16;
    const Function& f = code.function(function);
    std::vector<std::string> complaints;
    if (f.symbol.address % kCacheLine != 0) complaints.push_back(function + " itself");
    int pools = 0;
    for (const Instruction& i : f.instructions) {
        const Operand* place = i.memory();
        if (i.mnemonic != "lea" || !place || place->base != rip) continue;
        ++pools;
        const auto target = i.address + static_cast<std::uint64_t>(i.length) +
                            static_cast<std::uint64_t>(place->displacement);
        if (target % kCacheLine != 0) complaints.push_back(function + ": " + i.text);
    }
    if (pools == 0) complaints.push_back(function + " has no pool");
    return complaints;
}

}  // namespace orvgen::test
