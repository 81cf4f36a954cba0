// SPDX-License-Identifier: MIT
// The packed half spectra as the tables packed_positions and packed_sizes state them, for tests
// only: an account of the layouts that owes nothing to the product.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "support/proof.h"

namespace orvgen::test {

class PackedFormat {
  public:
    // `name` is ccs, pack or perm.
    PackedFormat(const std::string& name, int length);

    const std::string& name() const { return formatName; }
    int length() const { return n; }
    int size() const { return static_cast<int>(elements.size()); }
    // Bins 1 to M have a real and an imaginary part.
    int pairs() const { return (n - 1) / 2; }
    // The term at an element; none where a constant zero is written and nothing is read.
    const std::optional<Term>& at(int element) const {
        return elements[static_cast<std::size_t>(element)];
    }
    // The element of a term that the format stores.
    int indexOf(const Term& term) const;
    // Elements that hold a term, ascending: what an inverse kernel reads.
    std::vector<int> stored() const;

  private:
    std::string formatName;
    int n;
    std::vector<std::optional<Term>> elements;
};

inline const std::vector<std::string> kFormats = {"ccs", "pack", "perm"};

}  // namespace orvgen::test
