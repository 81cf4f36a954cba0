// SPDX-License-Identifier: MIT
// Cooley-Tukey joins: N = R M, twiddles between the stages (plan::CooleyTukeyMap).
//
// Of real samples row k = 0 stays real, and so does row R/2. The twiddles of that one, w(2M)^(-c),
// belong to a transform at odd frequencies, and so do those of the middle row of a transform at
// odd frequencies: bin k + R q of it has the frequency 2k+1 + 2R q of period 2N, row k the twiddles
// w(2N)^(-(2k+1) c).
//
// J. W. Cooley, J. W. Tukey, An algorithm for the machine calculation of complex Fourier series,
// Math. Comp. 19, 1965.
#pragma once

#include "rotation.h"
#include "rows.h"

namespace orvgen::flows {

// z by the twiddle of column c and row k, or by its conjugate (sign = -1, 1).
template <class V>
Bin<V> twiddled(const Plan& plan, const plan::CooleyTukeyMap& map, long sign, long c, long k,
                const Bin<V>& z) {
    const long N = map.R * map.M;
    if (plan.transform == Transform::Odd || plan.transform == Transform::InverseOdd)
        return rotate(z, sign * (2 * k + 1) * c, 2 * N);
    return rotate(z, sign * map.twiddle(c, k), N);
}

template <class V>
Sequence<V> cooleyTukey(Flow<V>& flow, const Plan& plan, const plan::CooleyTukey& join, long e,
                        const Sequence<V>& x) {
    const auto &columns = join.first, &rows = join.second;
    const long R = columns[0]->length, M = rows[0]->length, N = R * M;
    const plan::CooleyTukeyMap map{R, M};

    flow.stage(pointBlocks(R));
    std::vector<Sequence<V>> u;  // u[c][k]
    for (long c = 0; c < M; ++c) {
        Sequence<V> column;
        for (long t = 0; t < R; ++t) column.push_back(x[map.sample(c, t)]);
        u.push_back(flow.run(*columns[c], e, column));
    }
    flow.stage("twiddles and " + pointBlocks(M));
    Sequence<V> y(keptBins(plan.transform, N));
    for (long k = 0; k < std::ssize(rows); ++k) {
        Sequence<V> row = rowOf(*rows[k], u, k);
        if (rows[k]->transform == Transform::Complex)
            for (long c = 0; c < M; ++c) row[c] = twiddled(plan, map, -e, c, k, row[c]);
        const Sequence<V> v = flow.run(*rows[k], e, row);
        for (long q = 0; q < std::ssize(v); ++q) setBin(plan.transform, y, N, map.bin(k, q), v[q]);
    }
    return y;
}

// The mirror: M-point transforms of the rows, then twiddles, then R-point transforms of the
// columns. A complex row may be taken by the row of the conjugate bins.
template <class V>
Sequence<V> inverseCooleyTukey(Flow<V>& flow, const Plan& plan, const plan::CooleyTukey& join,
                               long e, const Sequence<V>& z) {
    const auto &rows = join.first, &columns = join.second;
    const long M = rows[0]->length, R = columns[0]->length, N = R * M;
    const plan::CooleyTukeyMap map{R, M};

    flow.stage(pointBlocks(M) + " and twiddles");
    std::vector<Sequence<V>> u(M);  // u[c][k]
    for (long k = 0; k < std::ssize(rows); ++k) {
        const bool isComplex = rows[k]->transform == Transform::Complex;
        const bool byConjugate = isComplex && join.conjugateRows;
        const long own = byConjugate ? conjugateBin(plan.transform, R, k) : k;
        Sequence<V> row;
        for (long q = 0; q < keptBins(rows[k]->transform, M); ++q)
            row.push_back(binAt(plan.transform, z, N, map.bin(own, q)));
        const Sequence<V> v = backwards(flow, *rows[k], e, row);
        for (long c = 0; c < M; ++c) {
            const Bin<V> turned = isComplex ? twiddled(plan, map, e, c, own, v[c]) : v[c];
            u[c].push_back(byConjugate ? conj(turned) : turned);
        }
    }
    flow.stage(pointBlocks(R));
    Sequence<V> x(N);
    for (long c = 0; c < M; ++c) {
        const Sequence<V> column = flow.run(*columns[c], e, u[c]);
        for (long t = 0; t < R; ++t) x[map.sample(c, t)] = column[t];
    }
    return x;
}

}  // namespace orvgen::flows
