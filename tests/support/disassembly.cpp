// SPDX-License-Identifier: MIT
#include "support/disassembly.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace orvgen::test {

std::vector<std::string> disassembly(const std::string& file) {
    FILE* const code = popen(("objdump -d --no-show-raw-insn '" + file + "'").c_str(), "r");
    if (code == nullptr) throw std::runtime_error("no objdump");
    std::vector<std::string> lines;
    char line[512];
    while (std::fgets(line, sizeof line, code) != nullptr) {
        std::string text = line;
        while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
        lines.push_back(std::move(text));
    }
    if (pclose(code) != 0) throw std::runtime_error("objdump failed");
    return lines;
}

bool roundsOtherwise(std::string_view mnemonic) {
    for (const char* start : {"vfm", "vfnm", "vrcp", "vrsqrt", "vreduce", "rcp", "rsqrt", "vdpp",
                              "dpp", "vhadd", "vhsub", "hadd", "hsub"})
        if (mnemonic.starts_with(start)) return true;
    return false;
}

bool areOfAvx512(const std::string& operands) {
    for (const char* mark : {"zmm", "{", "%k"})
        if (operands.find(mark) != operands.npos) return true;
    for (std::size_t at = operands.find("mm"); at != operands.npos;
         at = operands.find("mm", at + 2))
        if (std::atoi(operands.c_str() + at + 2) > 15) return true;
    return false;
}

}  // namespace orvgen::test
