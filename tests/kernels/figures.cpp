// SPDX-License-Identifier: MIT
#include "figures.h"

#include <fstream>
#include <regex>
#include <stdexcept>

#include "generator/registry.h"

namespace orvgen::test {
namespace {

// The sum of all numbers that stand in front of (or behind) `words`.
double sumOf(const std::string& text, const std::string& pattern) {
    const std::regex numbers(pattern);
    double sum = 0;
    std::sregex_iterator at(text.begin(), text.end(), numbers);
    if (at == std::sregex_iterator()) throw std::runtime_error("no '" + pattern + "': " + text);
    for (; at != std::sregex_iterator(); ++at) sum += std::stod((*at)[1]);
    return sum;
}

std::string headOf(const std::string& kernel) {
    std::ifstream file(ORVGEN_KERNEL_DIR "/" + kernel + ".s");
    std::string head;
    for (std::string line; std::getline(file, line) && line.starts_with('#');) head += line + "\n";
    if (head.empty()) throw std::runtime_error("no head: " + kernel);
    return head;
}

}  // namespace

std::vector<std::string> kernelsWithFigures() {
    std::vector<std::string> names;
    for (const kernelgen::Family& f : generator::allFamilies()) {
        for (const int n : f.lengths) names.push_back(kernelgen::memberName(f.name, n));
    }
    return names;
}

KernelFigures figuresOf(const std::string& kernel) {
    const std::string head = headOf(kernel);
    KernelFigures f;
    f.instructions = static_cast<int>(sumOf(head, R"((\d+) instructions)"));
    f.spills = static_cast<int>(sumOf(head, R"((\d+) spills)"));
    f.frame = static_cast<int>(sumOf(head, R"([Ff]rame (?:of )?(\d+) bytes)"));
    f.cycles = sumOf(head, R"(([\d.]+) cycles by the model)");
    return f;
}

}  // namespace orvgen::test
