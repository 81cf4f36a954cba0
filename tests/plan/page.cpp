// SPDX-License-Identifier: MIT
// The page of all plans in the documentation is the one that the program prints, and its links lead
// somewhere.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "generator/plans_page.h"
#include "generator/registry.h"
#include "support/text_file.h"

namespace orvgen::test {
namespace {

const std::filesystem::path kDocs = ORVGEN_DOCS;

std::string documented() { return textOf(kDocs / "plans.md"); }

TEST(PlansPage, IsTheOneOfTheDocumentation) {
    EXPECT_EQ(generator::plansPage(generator::allFamilies()), documented())
        << "./dev show --all-plans > docs/plans.md";
}

TEST(PlansPage, LinksLeadToFiles) {
    const std::string page = documented();
    const std::regex link("\\]\\(([^)]*)\\)");
    int links = 0;
    for (auto at = std::sregex_iterator(page.begin(), page.end(), link);
         at != std::sregex_iterator(); ++at, ++links)
        EXPECT_TRUE(std::filesystem::exists(kDocs / (*at)[1].str())) << (*at)[1];
    EXPECT_GT(links, 10);
}

}  // namespace
}  // namespace orvgen::test
