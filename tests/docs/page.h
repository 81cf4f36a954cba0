// SPDX-License-Identifier: MIT
// A page of the documentation as one line of text: where its lines break does not matter.
#pragma once

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace orvgen::test {

// `path` is that of the tree. Comments of C are taken as they read, without the stars before lines.
inline std::string page(const std::string& path) {
    std::ifstream file(std::string(ORVGEN_TREE) + "/" + path);
    std::string text;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string word;
        bool first = true;
        while (words >> word) {
            if (first && word == "*") continue;
            first = false;
            text += word + " ";
        }
    }
    if (text.empty()) throw std::runtime_error("no page " + path);
    return text;
}

inline bool says(const std::string& path, const std::string& words) {
    return page(path).find(words) != std::string::npos;
}

}  // namespace orvgen::test
