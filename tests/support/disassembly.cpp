// SPDX-License-Identifier: MIT
#include "support/disassembly.h"

#include <cstdio>
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

}  // namespace orvgen::test
