// SPDX-License-Identifier: MIT
// The page of a kernel has the same lines in every family, and none that contradicts another.
#include "generator/page.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "generator/head.h"
#include "generator/registry.h"

namespace orvgen::generator {
namespace {

struct Page {
    std::vector<std::string> labels;              // in their order, those of the tables once
    std::map<std::string, std::string> line;      // by label
    std::map<std::string, std::string> required;  // cells of the tables, by column
    std::string assembly;
};

Page pageOf(const KernelFamily& family, int number) {
    std::ostringstream text;
    printPage(text, family, number, ORVGEN_TEST_DATA);
    std::istringstream lines(text.str());
    Page page;
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line, memberName(*family.info, number));
    while (std::getline(lines, line) && !line.empty()) {
        const std::string label = line.substr(2, line.find("  ", 2) - 2);
        if (page.labels.empty() || page.labels.back() != label) page.labels.push_back(label);
        const std::string rest = line.substr(19);
        page.line[label] = rest;
        std::istringstream cells(rest);
        for (std::string cell; label == "the table says" && std::getline(cells, cell, ';');) {
            std::istringstream words(cell);
            std::string column, value;
            if (words >> column >> value) page.required[column] = value;
        }
    }
    std::getline(lines, page.assembly, '\0');
    return page;
}

int firstNumber(const std::string& text) { return std::stoi(text); }

TEST(Page, HasTheSameLinesInEveryFamilyAndAgreesWithTheTables) {
    const std::vector<std::string> labels = {"computed as",  "additions",      "multiplications",
                                             "conversions",  "the table says", "error bound",
                                             "instructions", "frame",          "cycles"};
    for (const KernelFamily& family : allFamilies()) {
        for (const int length : {3, 5, 9, 12}) {
            SCOPED_TRACE(memberName(*family.info, length));
            Page page = pageOf(family, length);
            EXPECT_EQ(page.labels, labels);
            const auto agrees = [&](const char* label, int besides = 0) {
                if (page.required.contains(label)) {
                    EXPECT_EQ(firstNumber(page.line[label]) - besides,
                              std::stoi(page.required[label]));
                }
            };
            // The tables of the complex binary32 kernels leave the scale out.
            const bool lanes = family.info->isComplex() && family.info->isSingle();
            agrees("additions");
            agrees("multiplications", lanes ? 2 * length : 0);
            if (!lanes) agrees("conversions");
            // What the assembly's head says is what the page says.
            const kernelgen::KernelFigures head = figuresInHead(page.assembly);
            EXPECT_EQ(firstNumber(page.line["instructions"]), head.instructions);
            std::ostringstream frame, cycles;
            frame << head.frameBytes << " bytes, " << head.spills << " spills";
            cycles << head.modelCycles << " by the core model, port bound " << head.portBound;
            EXPECT_EQ(page.line["frame"], frame.str());
            EXPECT_EQ(page.line["cycles"], cycles.str());
        }
    }
}

}  // namespace
}  // namespace orvgen::generator
