// SPDX-License-Identifier: MIT
// Complex numbers of which some are known to be zero and take no part: a sum with one is the other
// term, a product with one is nothing. For transforms of a sequence that is padded with zeros.
#pragma once

#include <optional>
#include <stdexcept>

#include "butterflies.h"
#include "roots.h"

namespace orvgen::dft {

class Sparse {
  public:
    Sparse() = default;
    explicit Sparse(const Vector& v) : v_(v) {}

    bool present() const { return v_.has_value(); }
    const Vector& vector() const { return v_.value(); }

    friend Sparse operator+(const Sparse& a, const Sparse& b) {
        if (!a.present()) return b;
        return b.present() ? Sparse(*a.v_ + *b.v_) : a;
    }
    friend Sparse operator-(const Sparse& a) { return a.present() ? Sparse(-*a.v_) : a; }
    friend Sparse operator-(const Sparse& a, const Sparse& b) {
        if (!a.present()) return -b;
        return b.present() ? Sparse(*a.v_ - *b.v_) : a;
    }
    friend Sparse operator*(const Constant& c, const Sparse& a) {
        return a.present() ? Sparse(c * *a.v_) : a;
    }

  private:
    std::optional<Vector> v_;
};
using Sparses = std::vector<Sparse>;

inline Vectors vectorsOf(const Sparses& z) {
    Vectors v;
    for (const Sparse& number : z) v.push_back(number.vector());
    return v;
}

inline Sparse narrow(const Sparse& a) { return a; }

inline Sparse timesI(const Sparse& a) {
    return a.present() ? Sparse(kernelgen::timesI(a.vector())) : a;
}
inline Sparse timesMinusI(const Sparse& a) {
    return a.present() ? Sparse(kernelgen::timesMinusI(a.vector())) : a;
}

inline Sparse turnedSum(Direction direction, const std::vector<Constant>& c, const Sparses& d) {
    Sparse sum = c[0] * d[0];
    for (std::size_t j = 1; j < d.size(); ++j) sum = sum + c[j] * d[j];
    return turned(direction, sum);
}

inline Sparse rotated(Direction direction, const Sparse& z, std::size_t num, std::size_t den) {
    return z.present() ? Sparse(rotated(direction, z.vector(), num, den)) : z;
}

// The butterflies that padded sequences meet.
inline Sparses sparseButterfly(Direction direction, const Sparses& z) {
    switch (z.size()) {
        case 2:
            return two(z);
        case 3:
            return three(direction, z);
        case 4:
            return four(direction, z);
        default:
            throw std::logic_error("no sparse butterfly of this length");
    }
}

}  // namespace orvgen::dft
