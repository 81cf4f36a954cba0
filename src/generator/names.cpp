// SPDX-License-Identifier: MIT
#include "names.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <numeric>

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

// A member with all that calls it, composed once.
struct Called {
    explicit Called(const Member& m) : member(m), name(m.name()), ofName(formsOf(name)) {
        forms = ofName;
        const std::vector<std::string> more = formsOf(nameOf(*m.family));
        forms.insert(forms.end(), more.begin(), more.end());
        // Not the element type alone, which would be half of the library.
        std::erase_if(forms, [](const std::string& f) { return f.find('_') == std::string::npos; });
        const std::vector<std::string> untyped = formsOf("orvg" + std::string(m.family->name));
        forms.insert(forms.end(), untyped.begin(), untyped.end());
    }

    Member member;
    std::string name;
    std::vector<std::string> ofName;
    std::vector<std::string> forms;
};

bool anyMatches(const std::string& word, const std::vector<std::string>& forms) {
    return std::any_of(forms.begin(), forms.end(), [&](const std::string& form) {
        return matches(word.c_str(), form.c_str());
    });
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

// The number that the user meant; 0 where there is none.
int numberIn(const std::string& word) {
    for (std::size_t at = word.find('_'); at != std::string::npos; at = word.find('_', at + 1)) {
        const int number = std::atoi(word.c_str() + at + 1);
        // The element types begin with digits too, and stand last.
        if (number > 0 && word.find('_', at + 1) != std::string::npos) return number;
    }
    return 0;
}

// Some names that are nearly what the word says; of equally near ones those whose length is nearer.
std::string nearest(const std::vector<Called>& members, const std::string& word) {
    constexpr std::size_t shown = 4;
    const std::size_t bearable = std::max<std::size_t>(1, word.size() / 3);
    struct Near {
        std::size_t letters;
        int length;
        std::string name;
    };
    std::vector<Near> found;
    for (const Called& c : members) {
        std::size_t letters = bearable + 1;
        for (const std::string& form : c.ofName) letters = std::min(letters, distance(form, word));
        if (letters <= bearable)
            found.push_back({letters, std::abs(c.member.number - numberIn(word)), c.name});
    }
    std::stable_sort(found.begin(), found.end(), [](const Near& a, const Near& b) {
        return std::pair(a.letters, a.length) < std::pair(b.letters, b.length);
    });
    std::string text;
    for (std::size_t i = 0; i < std::min(shown, found.size()); ++i)
        text += (i > 0 ? ", " : "; the nearest: ") + found[i].name;
    return text;
}

std::string listOf(const std::vector<Called>& members) {
    struct Reach {
        const FamilyInfo* family;
        int first, last;
    };
    std::vector<Reach> reach;
    for (const Called& c : members) {
        const auto [family, number] = c.member;
        const auto at = std::ranges::find(reach, family, &Reach::family);
        if (at == reach.end())
            reach.push_back({family, number, number});
        else
            at->last = number;
    }
    std::string text;
    for (const auto& [family, first, last] : reach)
        text +=
            "\n  " + nameOf(*family) + ", " + std::to_string(first) + " to " + std::to_string(last);
    return text;
}

}  // namespace

std::vector<Member> calledBy(const std::vector<Member>& members,
                             const std::vector<std::string>& words) {
    if (words.empty()) return members;
    const std::vector<Called> all(members.begin(), members.end());
    std::vector<bool> isCalled(all.size());
    for (const std::string& word : words) {
        bool any = false;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (!anyMatches(lower(word), all[i].forms)) continue;
            isCalled[i] = any = true;
        }
        if (!any)
            throw UnknownName((word.empty() ? "a name is empty" : "no kernel is called " + word) +
                              nearest(all, lower(word)) + "\nthere are:" + listOf(all));
    }
    std::vector<Member> chosen;
    for (std::size_t i = 0; i < all.size(); ++i)
        if (isCalled[i]) chosen.push_back(members[i]);
    return chosen;
}

}  // namespace orvgen::generator
