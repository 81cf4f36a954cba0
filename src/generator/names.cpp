// SPDX-License-Identifier: MIT
#include "names.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>
#include <numeric>
#include <set>

namespace orvgen::generator {

namespace {

std::string lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// * stands for any characters, ? for one.
bool matches(const char* pattern, const char* text) {
    if (*pattern == '*') return matches(pattern + 1, text) || (*text && matches(pattern, text + 1));
    if (*text == 0) return *pattern == 0;
    return (*pattern == '?' || *pattern == *text) && matches(pattern + 1, text + 1);
}

// The name, and what of it stands behind the prefix or behind an underscore.
std::vector<std::string> formsOf(const std::string& name) {
    const std::string whole = lower(name);
    std::vector<std::string> forms = {whole};
    if (whole.starts_with("orvg")) forms.push_back(whole.substr(4));
    for (std::size_t at = whole.find('_'); at != std::string::npos; at = whole.find('_', at + 1))
        forms.push_back(whole.substr(at + 1));
    return forms;
}

bool anyMatches(const std::string& word, const std::vector<std::string>& forms) {
    return std::any_of(forms.begin(), forms.end(), [&](const std::string& form) {
        return matches(word.c_str(), form.c_str());
    });
}

// By itself, by its family, or by its family without the element type; but not by the element type
// alone, which would be half of the library.
bool calls(const std::string& word, const std::string& name) {
    const std::string family = familyOf(name);
    std::vector<std::string> forms = formsOf(name), more = formsOf(family);
    forms.insert(forms.end(), more.begin(), more.end());
    std::erase_if(forms, [](const std::string& f) { return f.find('_') == std::string::npos; });
    return anyMatches(word, forms) ||
           anyMatches(word, formsOf(family.substr(0, family.rfind('_'))));
}

// Letters to change, to insert or to leave out (Levenshtein).
std::size_t distance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t k = 0; k < b.size(); ++k) {
            const std::size_t change = diagonal + (a[i] == b[k] ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({change, row[k] + 1, row[k + 1] + 1});
        }
    }
    return row.back();
}

// The number between the family's two halves; 0 where there is none.
int numberOf(const std::string& name) {
    const std::string family = familyOf(name);
    return family == name ? 0 : std::atoi(name.c_str() + family.rfind('_') + 1);
}

// Some names that are nearly what the word says; of equally near ones those whose length is nearer.
std::string nearest(const std::vector<std::string>& names, const std::string& word) {
    constexpr std::size_t shown = 4;
    const std::size_t bearable = std::max<std::size_t>(1, word.size() / 3);
    struct Near {
        std::size_t letters;
        int length;
        std::string name;
    };
    std::vector<Near> found;
    for (const std::string& name : names) {
        std::size_t letters = bearable + 1;
        for (const std::string& form : formsOf(name))
            letters = std::min(letters, distance(form, word));
        if (letters <= bearable)
            found.push_back({letters, std::abs(numberOf(name) - numberOf(word)), name});
    }
    std::stable_sort(found.begin(), found.end(), [](const Near& a, const Near& b) {
        return std::pair(a.letters, a.length) < std::pair(b.letters, b.length);
    });
    std::string text;
    for (std::size_t i = 0; i < std::min(shown, found.size()); ++i)
        text += (i > 0 ? ", " : "; the nearest: ") + found[i].name;
    return text;
}

std::string listOf(const std::vector<std::string>& names) {
    std::map<std::string, std::pair<int, int>> reach;
    std::vector<std::string> order;
    for (const std::string& name : names) {
        const auto [at, fresh] = reach.try_emplace(familyOf(name), numberOf(name), numberOf(name));
        at->second.second = numberOf(name);
        if (fresh) order.push_back(at->first);
    }
    std::string text;
    for (const std::string& family : order) {
        text += "\n  " + family + ", " + std::to_string(reach[family].first) + " to " +
                std::to_string(reach[family].second);
    }
    return text;
}

}  // namespace

std::string familyOf(const std::string& name) {
    const std::size_t type = name.rfind('_');
    if (type == std::string::npos || type == 0) return name;
    const std::size_t number = name.rfind('_', type - 1);
    if (number == std::string::npos) return name;
    const bool digits = std::all_of(name.begin() + static_cast<std::ptrdiff_t>(number) + 1,
                                    name.begin() + static_cast<std::ptrdiff_t>(type),
                                    [](char c) { return c >= '0' && c <= '9'; });
    return digits ? name.substr(0, number) + name.substr(type) : name;
}

std::vector<std::string> calledBy(const std::vector<std::string>& names,
                                  const std::vector<std::string>& words) {
    if (words.empty()) return names;
    std::set<std::string> called;
    for (const std::string& word : words) {
        bool any = false;
        for (const std::string& name : names) {
            if (!calls(lower(word), name)) continue;
            called.insert(name);
            any = true;
        }
        if (!any)
            throw UnknownName("no kernel is called " + word + nearest(names, lower(word)) +
                              "\nthere are:" + listOf(names));
    }
    std::vector<std::string> chosen;
    std::copy_if(names.begin(), names.end(), std::back_inserter(chosen),
                 [&](const std::string& name) { return called.contains(name); });
    return chosen;
}

}  // namespace orvgen::generator
