// SPDX-License-Identifier: MIT
#include "accuracy_page.h"

#include <cstdio>
#include <sstream>

namespace orvgen::test {

const std::vector<AccuracyColumn>& accuracyColumns() {
    static const std::vector<AccuracyColumn> columns = {
        {"orvgDFTFwd_CToC_32fc", "complex fwd 32fc"}, {"orvgDFTInv_CToC_32fc", "complex inv 32fc"},
        {"orvgDFTFwd_CToC_64fc", "complex fwd 64fc"}, {"orvgDFTInv_CToC_64fc", "complex inv 64fc"},
        {"orvgDFTFwd_RToPack_32f", "real fwd 32f"},   {"orvgDFTFwd_RToPack_64f", "real fwd 64f"},
        {"orvgDFTInv_PackToR_32f", "real inv 32f"},   {"orvgDFTInv_PackToR_64f", "real inv 64f"},
        {"orvgHartley_32f", "Hartley 32f"},           {"orvgHartley_64f", "Hartley 64f"},
    };
    return columns;
}

std::string accuracyCell(const Accuracy& measured) {
    char cell[16];
    std::snprintf(cell, sizeof cell, "%.2f", measured.relativeL2);
    return cell;
}

std::string accuracyPage(const AccuracyCells& cells) {
    std::string page =
        "# Accuracy\n\n"
        "The relative error of every kernel in the L2 norm, |computed - exact| / |exact|, over random inputs uniform\n"
        "in [-1, 1] (at least 16, and as many as give a thousand results), against the definition evaluated in\n"
        "binary128; in units of u = 2^-24 (32f, 32fc) and 2^-53 (64f, 64fc). Constants, inputs and rounding are\n"
        "fixed, so the figures are the same on every machine; a test measures them again and compares. Written by\n"
        "`./dev accuracy`.\n\n"
        "Two bounds hold the kernels. What is to be expected: sqrt(log2 N), at primes from 7 on 1.3 sqrt(log2 N), 2.4\n"
        "and 3.2 at the longest lengths, is above every figure of this table. What is possible: the a-priori bound that\n"
        "`./dev show NAME` prints, of one real of a result for inputs of at most 1, is above the largest error measured\n"
        "with the same inputs.\n\n| N |";
    for (const AccuracyColumn& c : accuracyColumns()) page += " " + c.heading + " |";
    page += "\n|---|";
    for (std::size_t i = 0; i < accuracyColumns().size(); ++i) page += "---|";
    page += "\n";
    for (const int n : kLengths) {
        page += "| " + std::to_string(n) + " |";
        for (const AccuracyColumn& c : accuracyColumns()) {
            page += " " + cells.at({c.family, n}) + " |";
        }
        page += "\n";
    }
    return page;
}

AccuracyCells readAccuracyPage(const std::string& page) {
    AccuracyCells cells;
    std::istringstream lines(page);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream row(line);
        std::string bar, cell;
        int n = 0;
        if (!(row >> bar >> n) || bar != "|") continue;
        for (const AccuracyColumn& c : accuracyColumns()) {
            row >> bar >> cell;
            cells[{c.family, n}] = cell;
        }
    }
    return cells;
}

}  // namespace orvgen::test
