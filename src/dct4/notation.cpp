// SPDX-License-Identifier: MIT
#include "dct4/notation.h"

#include <stdexcept>

#include "dct4/radix.h"

namespace orvgen::dct4 {

namespace {

std::int32_t radixOfHalf(std::int32_t h) {
    std::int32_t r = 0;
    if (divisorsIntNonTriv(&r, h) != planned) {
        throw std::logic_error("a length without a plan");
    }
    return r;
}

// An odd-frequency transform of n points.
std::string oddFrequency(std::int32_t n) {
    if (ruleOfOddFrequency(n) != recursionRule) {
        return std::to_string(n);
    }
    const std::int32_t r = radixOfHalf(n / 2);
    const bool isJoin = ruleOfOddFrequency(n / r) == recursionRule;
    const std::string inner = oddFrequency(n / r);
    return (isJoin ? "(" + inner + ")" : inner) + " T " + std::to_string(r);
}

std::string number(std::int32_t n) { return std::to_string(n); }

// `count` odd-frequency transforms of n points below a node `node`.
void addOddFrequency(std::vector<std::string>& lines, const std::string& indent,
                     const std::string& node, std::int32_t count, std::int32_t n) {
    const std::string what =
        number(count) + " odd-frequency transforms of " + number(n) + " points";
    if (ruleOfOddFrequency(n) != recursionRule) {
        lines.push_back(indent + node + ": " + what + ", oddFrequency<" + number(n) +
                        "> in flows/oddfrequency.h");
        return;
    }
    const std::int32_t r = radixOfHalf(n / 2);
    lines.push_back(indent + node + ", env7: " + what + ", each of " + number(r) + " parts");
    addOddFrequency(lines, indent + "  ", "env9", r, n / r);
    lines.push_back(indent + "  env8: " + number(n / r / 2) + " joins of " + number(r) +
                    " results, joinStage<" + number(r) + "> in flows/joinstage.h");
}

}  // namespace

std::string notation(std::int32_t length) {
    if (ruleOfLength(length) != treeRule) {
        return "straight line";
    }
    const std::int32_t r = radixOfHalf(length / 2);
    return "r = " + std::to_string(r) + ", n = " + oddFrequency(length / r);
}

std::vector<std::string> planNodes(std::int32_t length) {
    const std::string whole = "env1: " + number(length) + " points";
    if (ruleOfLength(length) != treeRule) {
        return {whole + ", straight line, dct4<" + number(length) + "> in flows/dct4.h"};
    }
    const std::int32_t r = radixOfHalf(length / 2);
    const std::int32_t n = length / r;
    std::vector<std::string> lines = {whole + " = 2 r m, in two stages, twoStages in run.h"};
    addOddFrequency(lines, "  ", "env3, env5", r, n);
    lines.push_back("  env2, env4: " + number(n / 2) + " blocks of " + number(r) +
                    " values, twiddles and stageTwo<" + number(r) + "> in flows/stagetwo.h");
    return lines;
}

}  // namespace orvgen::dct4
