// binary128 arithmetic for references: angles exact multiples of pi, and the direct sums.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace orvgen::test::dct4 {

using Quad = __float128;

// cos(pi num / den) and its like, rounded to binary128 from a wider value.
Quad cosPi(std::int64_t num, std::int64_t den);
Quad sinPi(std::int64_t num, std::int64_t den);
Quad tanPi(std::int64_t num, std::int64_t den);
Quad squareRoot(double x);

Quad magnitude(Quad x);

// cos(pi k / halfTurn) for all integers k, from a table over one quadrant.
class CosineTable {
  public:
    explicit CosineTable(std::int64_t halfTurn);
    Quad cosine(std::int64_t k) const;
    // sin(x) = cos(x - pi / 2); the half turn must be even.
    Quad sine(std::int64_t k) const { return cosine(k - steps / 2); }

  private:
    std::int64_t steps;
    std::vector<Quad> quadrant;
};

// The DCT-IV by its definition, one output at a time.
class DirectDct4 {
  public:
    explicit DirectDct4(std::int64_t N);

    template <class Real>
    Quad operator()(const std::vector<Real>& x, std::int64_t k) const {
        // The angle (2j + 1)(2k + 1) pi / (4N) in steps of pi / (4N), a turn being 8N of them.
        const auto turn = cosines.size();
        const auto step = static_cast<std::size_t>(4 * k + 2) % turn;
        std::size_t angle = static_cast<std::size_t>(2 * k + 1) % turn;
        Quad sum = 0;
        for (const Real value : x) {
            sum += static_cast<Quad>(value) * cosines[angle];
            angle += step;
            angle -= angle >= turn ? turn : 0;
        }
        return sum;
    }

  private:
    std::vector<Quad> cosines;
};

}  // namespace orvgen::test::dct4
