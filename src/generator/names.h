// SPDX-License-Identifier: MIT
// The names that users call kernels by. Of orvgDFTFwd_CToC_64_32fc: this name; what of it stands
// behind the prefix or behind any underscore (DFTFwd_CToC_64_32fc, CToC_64_32fc, 64_32fc); the same
// of its family, for every length, with or without the element type (DFTFwd_CToC_32fc, CToC); and
// patterns of all these with * and ?.
// Large and small letters are alike.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "frame/names.h"

namespace orvgen::generator {

// A word that calls no kernel; says so with the nearest names and a list of the families.
class UnknownName : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Those of the members that one of the words calls, in their order; without words all.
std::vector<Member> calledBy(const std::vector<Member>& members,
                             const std::vector<std::string>& words);

}  // namespace orvgen::generator
