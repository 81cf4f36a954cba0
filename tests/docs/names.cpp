// SPDX-License-Identifier: MIT
// That what pages name in code's type is there: files, folders, commands, functions and variables.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/text_file.h"

namespace orvgen::test {
namespace {

namespace fs = std::filesystem;
const fs::path kTree = ORVGEN_TREE;
const std::vector<std::string> kRooms = {"bench",  "cmake", "docs", "examples", "include",
                                         "python", "site",  "src",  "tests",    "tools"};

// The tree as pages may speak of it.
class Names {
  public:
    Names() {
        for (const std::string& room : kRooms)
            for (const auto& entry : fs::recursive_directory_iterator(kTree / room)) {
                if (!entry.is_regular_file()) continue;
                files_.insert(entry.path().filename().string());
                // What the pages say themselves is no witness.
                const std::string kind = entry.path().extension().string();
                if (kind != ".md" && kind != ".png" && kind != ".svg") read(textOf(entry.path()));
            }
    }
    bool hasFile(const std::string& name) const { return files_.contains(name); }
    bool hasWord(const std::string& word) const { return words_.contains(word); }

  private:
    void read(const std::string& text) {
        std::string word;
        for (const char c : text) {
            if (std::isalnum(static_cast<unsigned char>(c)) || c == '_') {
                word += c;
            } else if (!word.empty()) {
                words_.insert(word);
                word.clear();
            }
        }
    }

    std::set<std::string> files_, words_;
};

// What stands between backticks, but for blocks of code.
std::vector<std::string> quotedIn(const std::string& page) {
    std::vector<std::string> found;
    std::istringstream lines(page);
    bool inBlock = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("```")) inBlock = !inBlock;
        if (inBlock) continue;
        std::size_t end = 0;
        for (std::size_t at = line.find('`'); at != std::string::npos;
             at = line.find('`', end + 1)) {
            end = line.find('`', at + 1);
            if (end == std::string::npos) break;
            found.push_back(line.substr(at + 1, end - at - 1));
        }
    }
    return found;
}

// NAME.js stands for files of many names.
bool hasPlaceholder(const std::string& path) {
    static const std::regex placeholder("(^|/)[A-Z]{3,}(\\.[a-z]+)?(/|$)");
    return std::regex_search(path, placeholder) && !fs::exists(kTree / path);
}

// Empty where it is there, or is none of these.
std::string missing(const std::string& quoted, const Names& names, int& seen) {
    static const std::regex command("\\./dev ([a-z]+).*"), path("[\\w.+-]+(/[\\w.+-]+)*/?"),
        source("[\\w-]+\\.(h|hpp|cpp|py|cmake)"), identifier("[a-z][a-z0-9]*[A-Z]\\w*");
    std::smatch parts;
    if (std::regex_match(quoted, parts, command)) {
        ++seen;
        return fs::exists(kTree / "tools/dev" / (parts[1].str() + ".sh")) ? "" : "no such command";
    }
    if (std::regex_match(quoted, identifier)) {
        ++seen;
        return names.hasWord(quoted) ? "" : "no source has this word";
    }
    if (std::regex_match(quoted, source)) {
        ++seen;
        return names.hasFile(quoted) ? "" : "no such file";
    }
    const std::string room = quoted.substr(0, quoted.find('/'));
    if (!std::regex_match(quoted, path) || room == quoted ||
        std::ranges::count(kRooms, room) == 0 || hasPlaceholder(quoted))
        return "";
    ++seen;
    // The page of the tests names their rooms.
    return fs::exists(kTree / quoted) || fs::exists(kTree / "tests" / quoted) ? "" : "no such path";
}

TEST(Pages, NameWhatIsThere) {
    std::vector<fs::path> pages = {"README.md", "CONTRIBUTING.md", "SECURITY.md"};
    for (const auto& entry : fs::directory_iterator(kTree / "docs"))
        if (entry.path().extension() == ".md") pages.push_back(fs::relative(entry.path(), kTree));
    const Names names;
    int seen = 0;
    for (const fs::path& page : pages)
        for (const std::string& quoted : quotedIn(textOf(kTree / page)))
            EXPECT_EQ(missing(quoted, names, seen), "") << page << ": `" << quoted << "`";
    EXPECT_GT(seen, 200);
}

TEST(Pages, TellEveryOptionOfCMake) {
    const std::string page = textOf(kTree / "docs/builds.md");
    static const std::regex option("(^|\n)(option|set)\\((ORVGEN_\\w+) [^\n]*");
    int seen = 0;
    for (const char* room : {"cmake", "src", "python"})
        for (const auto& entry : fs::recursive_directory_iterator(kTree / room)) {
            const fs::path& file = entry.path();
            if (file.filename() != "CMakeLists.txt" && file.extension() != ".cmake") continue;
            const std::string text = textOf(file);
            for (std::sregex_iterator at(text.begin(), text.end(), option), end; at != end; ++at) {
                if ((*at)[2] == "set" && at->str().find(" CACHE ") == std::string::npos) continue;
                ++seen;
                EXPECT_NE(page.find("`" + (*at)[3].str() + "`"), std::string::npos) << (*at)[3];
            }
        }
    EXPECT_GE(seen, 11);
}

TEST(Pages, NameNothingElse) {
    const Names names;
    int seen = 0;
    // In two parts, as the tree would know a name that stands here.
    const std::string nobodys = std::string("nobodys") + "Nonsense";
    for (const std::string& wrong :
         {std::string("./dev nonsense"), std::string("src/kernelgen/nonsense.h"),
          std::string("docs/nonsense.md"), std::string("nonsense.cpp"), nobodys,
          std::string("tests/nonsense/")})
        EXPECT_NE(missing(wrong, names, seen), "") << wrong;
    for (const char* right : {"./dev test NAME", "src/kernelgen/", "tools/dev/COMMAND.sh",
                              "lower.cpp", "a b", "n", "directReal", "dft/"})
        EXPECT_EQ(missing(right, names, seen), "") << right;
}

}  // namespace
}  // namespace orvgen::test
