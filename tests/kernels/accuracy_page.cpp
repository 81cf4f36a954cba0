// SPDX-License-Identifier: MIT
#include "accuracy_page.h"

#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace orvgen::test {

namespace {

const char* const kHead =
    "# Accuracy\n\n"
    "The relative error of every kernel in the L2 norm, |computed - exact| / |exact|, over random inputs uniform\n"
    "in [-1, 1] (at least 16, and as many as give a thousand results), against the definition evaluated in\n"
    "binary128; in units of u = 2^-24 (32f, 32fc) and 2^-53 (64f, 64fc). Constants, inputs and rounding are\n"
    "fixed, so the figures are the same on every machine; a test measures them again and compares. Written by\n"
    "`./dev accuracy`.\n\n"
    "Two bounds hold the kernels. What is to be expected: sqrt(log2 N), at primes from 7 on 1.3 sqrt(log2 N), 2.4\n"
    "and 3.2 at the longest lengths, is above every figure of this page. What is possible: the a-priori bound that\n"
    "`./dev show NAME` prints, of one real of a result for inputs of at most 1, is above the largest error measured\n"
    "with the same inputs.\n";

const char* const kLayouts =
    "## Other layouts\n\n"
    "The real transforms do the same operations in the three layouts (but for the inverse from CCS at 7 and 49 points,\n"
    "which sums in an order of its own), so that the forward figures above hold for all. The inverse ones are of spectra\n"
    "in Pack; drawn in the order of another layout the same random numbers make another spectrum.\n";

const char* const kHadamard =
    "## Walsh-Hadamard\n\n"
    "By orders: 2^order points.\n";

std::vector<int> listOf(const Numbers& numbers) {
    std::vector<int> list;
    for (const int n : numbers) list.push_back(n);
    return list;
}

std::vector<AccuracyColumn> columnsOfLengths() {
    std::vector<AccuracyColumn> columns = {{"complex fwd 32fc", {"orvgDFTFwd_CToC_32fc"}},
                                           {"complex inv 32fc", {"orvgDFTInv_CToC_32fc"}},
                                           {"complex fwd 64fc", {"orvgDFTFwd_CToC_64fc"}},
                                           {"complex inv 64fc", {"orvgDFTInv_CToC_64fc"}}};
    for (const std::string type : {"32f", "64f"})
        columns.push_back({"real fwd " + type,
                           {"orvgDFTFwd_RToPack_" + type, "orvgDFTFwd_RToCCS_" + type,
                            "orvgDFTFwd_RToPerm_" + type}});
    for (const std::string type : {"32f", "64f"})
        columns.push_back({"real inv " + type, {"orvgDFTInv_PackToR_" + type}});
    columns.push_back({"Hartley 32f", {"orvgHartley_32f"}});
    columns.push_back({"Hartley 64f", {"orvgHartley_64f"}});
    return columns;
}

}  // namespace

const std::vector<AccuracyTable>& accuracyTables() {
    static const std::vector<AccuracyTable> tables = {
        {.text = kHead, .number = "N", .numbers = listOf(kLengths), .columns = columnsOfLengths()},
        {.text = kLayouts,
         .number = "N",
         .numbers = listOf(kLengths),
         .columns = {{"inv CCS 32f", {"orvgDFTInv_CCSToR_32f"}},
                     {"inv CCS 64f", {"orvgDFTInv_CCSToR_64f"}},
                     {"inv Perm 32f", {"orvgDFTInv_PermToR_32f"}},
                     {"inv Perm 64f", {"orvgDFTInv_PermToR_64f"}}}},
        {.text = kHadamard,
         .number = "order",
         .numbers = listOf(kOrders),
         .columns = {{"WHT 32f", {"orvgWHT_32f"}}, {"WHT 64f", {"orvgWHT_64f"}}}}};
    return tables;
}

std::string accuracyCell(const Accuracy& measured) {
    char cell[16];
    std::snprintf(cell, sizeof cell, "%.2f", measured.relativeL2);
    return cell;
}

std::string accuracyPage(const AccuracyCells& cells) {
    std::string page;
    for (const AccuracyTable& table : accuracyTables()) {
        page += (page.empty() ? "" : "\n") + table.text + "\n| " + table.number + " |";
        for (const AccuracyColumn& c : table.columns) page += " " + c.heading + " |";
        page += "\n|---|";
        for (std::size_t i = 0; i < table.columns.size(); ++i) page += "---|";
        page += "\n";
        for (const int n : table.numbers) {
            page += "| " + std::to_string(n) + " |";
            for (const AccuracyColumn& c : table.columns)
                page += " " + cells.at({c.families.front(), n}) + " |";
            page += "\n";
        }
    }
    return page;
}

AccuracyCells readAccuracyPage(const std::string& page) {
    AccuracyCells cells;
    std::istringstream lines(page);
    std::size_t heads = 0;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream row(line);
        std::string bar, cell;
        int n = 0;
        if (line.starts_with("|---")) ++heads;
        if (!(row >> bar >> n) || bar != "|") continue;
        if (heads == 0 || heads > accuracyTables().size())
            throw std::runtime_error("a row of no table: " + line);
        for (const AccuracyColumn& c : accuracyTables()[heads - 1].columns) {
            row >> bar >> cell;
            for (const std::string& family : c.families) cells[{family, n}] = cell;
        }
    }
    return cells;
}

}  // namespace orvgen::test
