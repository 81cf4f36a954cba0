// SPDX-License-Identifier: MIT
// Values written as JSON, for scripts that a page opened from disk can load.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace orvgen::site {

// Something already written as JSON.
struct Json {
    std::string text;
};

Json quoted(const std::string& text);
Json number(double value);  // as short as it may be, two digits behind the point at most
Json array(const std::vector<Json>& items);
// Members whose value is empty are left out.
Json object(const std::vector<std::pair<std::string, Json>>& members);

}  // namespace orvgen::site
