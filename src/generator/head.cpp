// SPDX-License-Identifier: MIT
#include "head.h"

#include <fstream>
#include <iterator>
#include <regex>
#include <stdexcept>

namespace orvgen::generator {

namespace {

double numberIn(const std::string& head, const char* pattern) {
    std::smatch match;
    if (!std::regex_search(head, match, std::regex(pattern)))
        throw std::runtime_error("no '" + std::string(pattern) + "' in the head: " + head);
    return std::stod(match[1]);
}

}  // namespace

std::string assemblyOf(const std::string& folder, const std::string& kernel) {
    const std::string path = folder + "/" + kernel + ".s";
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (text.empty()) throw std::runtime_error("cannot read " + path);
    return text;
}

kernelgen::KernelFigures figuresInHead(const std::string& assembly) {
    std::size_t end = 0;
    while (end < assembly.size() && assembly[end] == '#') end = assembly.find('\n', end) + 1;
    const std::string head = assembly.substr(0, end);
    return {.instructions = static_cast<int>(numberIn(head, R"((\d+) instructions)")),
            .frameBytes = static_cast<int>(numberIn(head, R"(frame (\d+) bytes)")),
            .spills = static_cast<int>(numberIn(head, R"((\d+) spills)")),
            .modelCycles = numberIn(head, R"(([\d.]+) cycles by the model)"),
            .portBound = numberIn(head, R"(port bound ([\d.]+))")};
}

}  // namespace orvgen::generator
