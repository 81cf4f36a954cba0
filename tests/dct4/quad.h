// SPDX-License-Identifier: MIT
// binary128 arithmetic for references: constants of exact angles, and the DCT-IV itself.
#pragma once

#include <cstdint>
#include <vector>

namespace orvgen::test::dct4 {

using Quad = __float128;

// cos(pi num / den) and its like, rounded to binary128 from a wider value.
Quad cosPi(std::int64_t num, std::int64_t den);
Quad sinPi(std::int64_t num, std::int64_t den);
Quad tanPi(std::int64_t num, std::int64_t den);

Quad magnitude(Quad x);

struct QuadPair {
    Quad re, im;
};

// The points exp(i pi k / halfTurn) for all integers k, to a few roundings of binary128: products
// of two rounded points, a coarse and a fine one.
class UnitCircle {
  public:
    explicit UnitCircle(std::int64_t halfTurn);
    QuadPair point(std::int64_t k) const;
    Quad cosine(std::int64_t k) const { return point(k).re; }
    Quad sine(std::int64_t k) const { return point(k).im; }

  private:
    std::int64_t turn, step;
    std::vector<QuadPair> coarse, fine;
};

// The DCT-IV by its definition, one output at a time; every angle an exact multiple of pi / (4N).
class DirectDct4 {
  public:
    explicit DirectDct4(std::int64_t length) : N(length), circle(4 * N) {}
    Quad operator()(const std::vector<Quad>& x, std::int64_t k) const;

  private:
    std::int64_t N;
    UnitCircle circle;
};

// All outputs in N log N operations, by a complex Fourier transform of N/2 points.
std::vector<Quad> fastDct4(const std::vector<Quad>& x);

}  // namespace orvgen::test::dct4
