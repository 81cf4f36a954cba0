// SPDX-License-Identifier: MIT
#include "script.h"

#include <cstdio>

namespace orvgen::site {

Json quoted(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            out += {'\\', c};
        else if (c == '\n')
            out += "\\n";
        else if (c == '\t')
            out += "\\t";
        else
            out += c;
    }
    return {out + "\""};
}

Json number(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", value);
    std::string digits = text;
    while (digits.ends_with('0')) digits.pop_back();
    if (digits.ends_with('.')) digits.pop_back();
    return {digits};
}

Json array(const std::vector<Json>& items) {
    std::string out;
    for (const Json& item : items) out += (out.empty() ? "" : ",") + item.text;
    return {"[" + out + "]"};
}

Json object(const std::vector<std::pair<std::string, Json>>& members) {
    std::string out;
    for (const auto& [name, value] : members)
        if (!value.text.empty())
            out += (out.empty() ? "" : ",") + quoted(name).text + ":" + value.text;
    return {"{" + out + "}"};
}

}  // namespace orvgen::site
