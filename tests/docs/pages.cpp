// SPDX-License-Identifier: MIT
// That the pages know the tree: links lead to files, and every room is on its map.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "page.h"

namespace orvgen::test {
namespace {

namespace fs = std::filesystem;
const fs::path kTree = ORVGEN_TREE;

TEST(Pages, LinkToFilesThatExist) {
    std::vector<fs::path> pages = {"README.md", "CONTRIBUTING.md", "CHANGELOG.md"};
    for (const auto& entry : fs::directory_iterator(kTree / "docs"))
        if (entry.path().extension() == ".md") pages.push_back(fs::relative(entry.path(), kTree));
    const std::regex link(R"(\]\(([^)#:]+)(#[^)]*)?\))");
    int links = 0;
    for (const fs::path& path : pages) {
        const std::string text = page(path.string());
        for (auto at = std::sregex_iterator(text.begin(), text.end(), link);
             at != std::sregex_iterator(); ++at, ++links)
            EXPECT_TRUE(fs::exists(kTree / path.parent_path() / (*at)[1].str()))
                << path << " links to " << (*at)[1];
    }
    EXPECT_GT(links, 60);
}

void expectFoldersOn(const std::string& map, const fs::path& folder, const std::string& prefix) {
    const std::string text = page(map);
    for (const auto& entry : fs::directory_iterator(kTree / folder)) {
        if (!entry.is_directory() || fs::is_empty(entry.path())) continue;
        const std::string name = "`" + prefix + entry.path().filename().string() + "/`";
        EXPECT_NE(text.find(name), std::string::npos) << map << " lacks " << name;
    }
}

TEST(Pages, NameEveryRoom) {
    expectFoldersOn("docs/architecture.md", "src", "src/");
    expectFoldersOn("docs/tests.md", "tests", "");
}

}  // namespace
}  // namespace orvgen::test
