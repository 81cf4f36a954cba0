// SPDX-License-Identifier: MIT
// The index maps of the two joins, N = R M.
//
// A transform of N points has R-point transforms of M columns c = 0 .. M-1 and M-point transforms
// of R rows k = 0 .. R-1. Column c holds the samples t = 0 .. R-1, row k gives the bins
// q = 0 .. M-1:
//
//     u[c][k] = sum over t of x[sample(c, t)] w(R)^(e_R t k)
//     y[bin(k, q)] = sum over c of u[c][k] w(N)^(e twiddle(c, k)) w(M)^(e_M c q).
//
// An inverse transform takes the same maps the other way round: the rows first, then the columns.
#pragma once

namespace orvgen::plan {

inline long modulo(long k, long n) { return (k % n + n) % n; }

// Coprime R and M, no twiddles: w(N)^(n k) with n = M t + R c and k = M k' + R q is
// w(R)^(M t k') w(M)^(R c q). So the R-point transforms have the root exponent e_R = e M and the
// M-point ones e_M = e R.
struct GoodThomasMap {
    long R, M;

    long sample(long c, long t) const { return modulo(M * t + R * c, R * M); }
    long bin(long k, long q) const { return modulo(M * k + R * q, R * M); }
    // Where both exponents are 1 instead: the bin that is k modulo R and q modulo M.
    long binOfResidues(long k, long q) const {
        long index = modulo(k, R);
        while (index % M != modulo(q, M)) index += R;
        return index;
    }
};

// w(N)^(n k) with n = c + M t and k = k' + R q is w(R)^(t k') w(N)^(c k') w(M)^(c q): e_R = e_M =
// e. A column and a row may be named by any representatives c and k of their residues.
struct CooleyTukeyMap {
    long R, M;

    long sample(long c, long t) const { return modulo(c + M * t, R * M); }
    long bin(long k, long q) const { return modulo(k + R * q, R * M); }
    long twiddle(long c, long k) const { return modulo(c * k, R * M); }
};

}  // namespace orvgen::plan
