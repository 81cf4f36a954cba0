// How a complex transform is made of shorter ones, as data.
//
// There are two joins of R-point transforms, run first, and M-point transforms, N = R M.
//
// Good-Thomas, for coprime R and M, without twiddles:
//   u[k1][n2] = sum over n1 of x[(M n1 + R n2) mod N] exp(-2 pi i n1 k1 / R)
//   y[k]      = sum over n2 of u[k1][n2] exp(-2 pi i n2 k2 / M), k = k1 mod R and = k2 mod M.
//
// Cooley-Tukey, with column c represented by C[c] = e c mod M, e prime to M, and row k by
// K[k] = k mod R:
//   u[c][k] = sum over t of x[(C[c] + M t) mod N] exp(-2 pi i t k / R)
//   v[c][k] = u[c][k] exp(-2 pi i C[c] K[k] / N)
//   y[(K[k] + R q) mod N] = sum over c of v[c][k] exp(-2 pi i c p / M), p = e q mod M.
// The representatives are 0, 1, 2 .. unless others are named.
//
// The twiddle vectors hold rows (the lanes of the second stage) unless they hold columns (the lanes
// of the first stage, as in a transform that mirrors another one).
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace orvgen::dft {

enum class Join {
    None,  // a butterfly or, from 13 up, Rader's algorithm
    GoodThomas,
    CooleyTukey,
};

enum class TwiddleLanes { Rows, Columns };

struct Decomposition;
using Part = std::shared_ptr<const Decomposition>;

struct Decomposition {
    std::size_t length;
    Join join = Join::None;
    Part first, second;
    std::vector<std::size_t> columns, rows;  // representatives C and K
    TwiddleLanes twiddleLanes = TwiddleLanes::Rows;

    std::size_t R() const { return first->length; }
    std::size_t M() const { return second->length; }
    // Which x is input t of R-point transform c, and which y is output p of M-point transform k.
    std::size_t input(std::size_t t, std::size_t c) const;
    std::size_t output(std::size_t k, std::size_t p) const;
    // The twiddle of column c and row k is exp(-+ 2 pi i twiddle(c, k) / length).
    std::size_t twiddle(std::size_t c, std::size_t k) const;

    // The stages in the order in which data pass: "5, 2 T 4".
    std::string stages() const;
};

// The pieces that decompositions are written with.
Part block(std::size_t length);
Part goodThomas(const Part& first, const Part& second);
Part cooleyTukey(const Part& first, const Part& second, std::vector<std::size_t> columns = {},
                 std::vector<std::size_t> rows = {},
                 TwiddleLanes twiddleLanes = TwiddleLanes::Rows);

// The transform that runs the same stages backwards: outputs become inputs.
Part mirrored(const Part& part);

}  // namespace orvgen::dft
