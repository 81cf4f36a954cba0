// SPDX-License-Identifier: MIT
#include "known_counts.h"

#include <bit>
#include <cmath>

namespace orvgen::site {

namespace {

bool isPowerOfTwo(int n) { return std::has_single_bit(static_cast<unsigned>(n)); }

int divisors(int n) {
    int count = 0;
    for (int d = 1; d <= n; ++d) count += n % d == 0;
    return count;
}

bool isPrime(int n) { return divisors(n) == 2; }

// Additions. An addition of two values, each times a constant of at most 1, at most doubles the
// largest determinant that the values computed so far can form; so there are at least log2 |det|
// (Morgenstern 1973). The rows of each matrix are orthogonal, which gives its determinant:
//
//   complex, as a real matrix of 2N rows      N^N
//   Hartley, Walsh-Hadamard                   N^(N/2)
//   half spectrum of real samples             N^(N/2) / 2^(M), M = floor((N-1)/2) full bins
//   real samples of a half spectrum           N^(N/2) 2^M
double log2OfDeterminant(Kind kind, int N) {
    const double half = N / 2.0 * std::log2(N);
    const int M = (N - 1) / 2;
    switch (kind) {
        case Kind::Complex:
            return 2 * half;
        case Kind::Real:
            return half - M;
        case Kind::InverseReal:
            return half + M;
        default:
            return half;
    }
}

KnownCount leastAdditions(Kind kind, int N) {
    return {Claim::LowerBound, Counted::Additions, std::ceil(log2OfDeterminant(kind, N) - 1e-9),
            "no constant above 1 in magnitude",
            "Morgenstern, Note on a lower bound of the linear complexity of the fast Fourier "
            "transform, J. ACM 20 (1973)"};
}

// Multiplications by numbers that are not rational, of real data; complex data take twice as many.
// p prime: the DFT is a cyclic convolution of p - 1 points, each of the divisors of p - 1 gives one
// irreducible factor, and that of u - 1 brings rational numbers only: 2 (p - 1) - d(p - 1) - 1.
int leastProductsOfPrime(int p) { return 2 * (p - 1) - divisors(p - 1) - 1; }

// N = 2^m: 2 N - m^2 - m - 2.
int leastProductsOfPower(int N) {
    const int m = std::countr_zero(static_cast<unsigned>(N));
    return 2 * N - m * m - m - 2;
}

std::vector<KnownCount> leastProducts(Kind kind, int N) {
    const int times = kind == Kind::Complex ? 2 : 1;
    if (isPowerOfTwo(N))
        return {{Claim::LowerBound, Counted::Multiplications,
                 static_cast<double>(times * leastProductsOfPower(N)),
                 "rational constants are free",
                 "Heideman and Burrus, On the number of multiplications necessary to compute a "
                 "length-2^n DFT, IEEE Trans. ASSP 34 (1986)"}};
    if (isPrime(N))
        return {{Claim::LowerBound, Counted::Multiplications,
                 static_cast<double>(times * leastProductsOfPrime(N)),
                 "rational constants are free",
                 "Winograd, On the multiplicative complexity of the discrete Fourier transform, "
                 "Advances in Mathematics 32 (1979)"}};
    return {};
}

// N = 2^m, complex: 4 N m - 6 N + 8.
double splitRadix(int N) {
    const double m = std::log2(N);
    return 4 * N * m - 6 * N + 8;
}

double tangent(int N) {
    const double m = std::log2(N);
    const double sign = std::countr_zero(static_cast<unsigned>(N)) % 2 == 0 ? 1 : -1;
    return std::round(34 * N * m / 9 - 124.0 * N / 27 - 2 * m - 2 * sign * m / 9 + 16 * sign / 27 +
                      8);
}

// Of real samples half the complex count less N - 2; the Hartley transform N - 2 additions more.
double ofKind(Kind kind, int N, double complex) {
    if (kind == Kind::Complex) return complex;
    return kind == Kind::Hartley ? complex / 2 : complex / 2 - (N - 2);
}

}  // namespace

std::vector<KnownCount> knownCounts(Kind kind, int N) {
    std::vector<KnownCount> list = {leastAdditions(kind, N)};
    if (kind == Kind::WalshHadamard) {
        list.push_back({Claim::FewestKnown, Counted::Additions, N * std::log2(N), "",
                        "N log2 N, the fast Walsh-Hadamard transform: Shanks, IEEE Trans. "
                        "Computers 18 (1969)"});
        return list;
    }
    for (const KnownCount& count : leastProducts(kind, N)) list.push_back(count);
    if (!isPowerOfTwo(N)) return list;
    list.push_back({Claim::FewestKnown, Counted::Both, ofKind(kind, N, tangent(N)), "",
                    "Johnson and Frigo, A modified split-radix FFT with fewer arithmetic "
                    "operations, IEEE Trans. Signal Processing 55 (2007)"});
    list.push_back(
        {Claim::KnownMethod, Counted::Both, ofKind(kind, N, splitRadix(N)), "",
         "split radix: Yavne 1968; Duhamel and Hollmann, Electronics Letters 20 (1984)"});
    return list;
}

}  // namespace orvgen::site
