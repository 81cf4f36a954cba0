// SPDX-License-Identifier: MIT
// The page of a kernel has the same lines in every family, and none that contradicts another.
#include "generator/page.h"

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "generator/head.h"
#include "generator/registry.h"
#include "support/text_file.h"

namespace orvgen::test {
namespace {

using namespace orvgen::generator;

struct Page {
    std::vector<std::string> labels;            // in their order, those of the tables once
    std::map<std::string, std::string> line;    // by label
    std::map<std::string, std::string> design;  // cells of the tables, by column
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
        for (std::string cell; label == "design" && std::getline(cells, cell, ';');) {
            std::istringstream words(cell);
            std::string column, value;
            if (words >> column >> value) page.design[column] = value;
        }
    }
    std::getline(lines, page.assembly, '\0');
    return page;
}

int firstNumber(const std::string& text) { return std::stoi(text); }

TEST(Page, HasTheSameLinesInEveryFamilyAndAgreesWithTheTables) {
    const std::vector<std::string> labels = {"computed as",  "additions", "multiplications",
                                             "conversions",  "design",    "error bound",
                                             "instructions", "frame",     "cycles"};
    for (const KernelFamily& family : allFamilies()) {
        for (const int length : {3, 5, 9, 12}) {
            SCOPED_TRACE(memberName(*family.info, length));
            Page page = pageOf(family, length);
            EXPECT_EQ(page.labels, labels);
            const auto agrees = [&](const char* label, int besides = 0) {
                if (page.design.contains(label)) {
                    EXPECT_EQ(firstNumber(page.line[label]) - besides,
                              std::stoi(page.design[label]));
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

std::string planPageOf(int length) {
    std::ostringstream text;
    printPlanPage(text, {&familyOf("DCT4", "32f"), length});
    return text.str();
}

TEST(PlanPage, SaysWhichFunctionsRun) {
    EXPECT_EQ(planPageOf(16),
              "orvgDCT4_32f of 16\n"
              "  computed as      straight line\n"
              "  plan             nodes and functions, files in src/dct4:\n"
              "                   env1: 16 points, straight line, dct4<16> in flows/dct4.h\n");
    const std::string page = planPageOf(131072);
    for (const char* line :
         {"env1: 131072 points = 2 r m, in two stages, twoStages in run.h\n",
          "env3, env5, env7: 32 odd-frequency transforms of 4096 points, each of "
          "32 parts\n",
          "env9, env7: 32 odd-frequency transforms of 128 points, each of 8 parts\n",
          "env9: 8 odd-frequency transforms of 16 points, oddFrequency<16> in "
          "flows/oddfrequency.h\n",
          "env8: 8 joins of 8 results, joinStage<8> in flows/joinstage.h\n",
          "env8: 64 joins of 32 results, joinStage<32> in flows/joinstage.h\n",
          "env2, env4: 2048 blocks of 32 values, twiddles and stageTwo<32> in "
          "flows/stagetwo.h\n"})
        EXPECT_NE(page.find(line), std::string::npos) << line << page;
}

// Every function that a page names stands in the file that it names.
TEST(PlanPage, LeadsToFunctions) {
    const std::regex place("([A-Za-z0-9]+)(<[0-9]+>)? in ([a-z/0-9]+[.]h)");
    std::set<std::string> found;
    for (const int length : {2, 64, 1024, 65536}) {
        const std::string page = planPageOf(length);
        for (auto at = std::sregex_iterator(page.begin(), page.end(), place);
             at != std::sregex_iterator(); ++at) {
            const std::string text = textOf(ORVGEN_DCT4_SOURCES "/" + (*at)[3].str());
            EXPECT_NE(text.find(" " + (*at)[1].str() + "("), std::string::npos) << (*at)[0];
            found.insert((*at)[1]);
        }
    }
    EXPECT_EQ(found, (std::set<std::string>{"dct4", "joinStage", "oddFrequency", "stageTwo",
                                            "twoStages"}));
}

}  // namespace
}  // namespace orvgen::test
