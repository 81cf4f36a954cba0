// SPDX-License-Identifier: MIT
// Good-Thomas joins: N = R M with coprime factors, no twiddles (plan::GoodThomasMap).
//
// I. J. Good, The interaction algorithm and practical Fourier analysis, J. R. Statist. Soc. B,
// 1958.
#pragma once

#include "rows.h"

namespace orvgen::flows {

// R-point transforms of the columns, then M-point transforms of the rows.
template <class V>
Sequence<V> goodThomas(Flow<V>& flow, const Plan& plan, const plan::GoodThomas& join, long e,
                       const Sequence<V>& x) {
    const auto& [columns, rows] = join;
    const long R = columns[0]->length, M = rows[0]->length, N = R * M;
    const plan::GoodThomasMap map{R, M};

    flow.stage(pointBlocks(R));
    std::vector<Sequence<V>> u;  // u[c][k]
    for (long c = 0; c < M; ++c) {
        Sequence<V> column;
        for (long t = 0; t < R; ++t) column.push_back(x[map.sample(c, t)]);
        u.push_back(flow.run(*columns[c], e * M, column));
    }
    flow.stage(pointBlocks(M));
    Sequence<V> y(keptBins(plan.transform, N));
    for (long k = 0; k < std::ssize(rows); ++k) {
        const Sequence<V> v = flow.run(*rows[k], e * R, rowOf(*rows[k], u, k));
        for (long q = 0; q < std::ssize(v); ++q) setBin(plan.transform, y, N, map.bin(k, q), v[q]);
    }
    return y;
}

// The mirror: M-point transforms of the rows, then R-point transforms of the columns.
template <class V>
Sequence<V> inverseGoodThomas(Flow<V>& flow, const Plan& plan, const plan::GoodThomas& join, long e,
                              const Sequence<V>& z) {
    const auto& [rows, columns] = join;
    const long M = rows[0]->length, R = columns[0]->length, N = R * M;
    const plan::GoodThomasMap map{R, M};

    flow.stage(pointBlocks(M));
    std::vector<Sequence<V>> u(M);  // u[c][k]
    for (long k = 0; k < std::ssize(rows); ++k) {
        Sequence<V> row;
        for (long q = 0; q < keptBins(rows[k]->transform, M); ++q)
            row.push_back(binAt(plan.transform, z, N, map.bin(k, q)));
        const Sequence<V> v = backwards(flow, *rows[k], e * R, row);
        for (long c = 0; c < M; ++c) u[c].push_back(v[c]);
    }
    flow.stage(pointBlocks(R));
    Sequence<V> x(N);
    for (long c = 0; c < M; ++c) {
        const Sequence<V> column = flow.run(*columns[c], e * M, u[c]);
        for (long t = 0; t < R; ++t) x[map.sample(c, t)] = column[t];
    }
    return x;
}

// Odd frequencies of length N = 2 M, M odd: over the period 4 M of the odd frequencies the samples
// stand at M t + 4 c (beyond N with a minus), and the frequencies f = 1 modulo 4 are one complex
// row, f modulo M being its bin; the others are the conjugates.
inline long oddRowFrequency(long i) { return 4 * i + 1; }

template <class V>
Sequence<V> goodThomasOdd(Flow<V>& flow, const plan::GoodThomas& join, const Sequence<V>& x) {
    const auto& [columns, rows] = join;
    const long M = rows[0]->length, N = 2 * M;
    const auto sample = [&](long n) {
        n = modulo(n, 2 * N);
        return n < N ? x[n] : realNumber<V>(-x[n - N].re);
    };
    std::vector<Sequence<V>> u;
    for (long c = 0; c < M; ++c)
        u.push_back(flow.run(*columns[c], 1, {sample(4 * c), sample(M + 4 * c)}));
    const Sequence<V> v = flow.run(*rows[0], 1, rowOf(*rows[0], u, 0));
    Sequence<V> y(M);
    for (long i = 0; i < M; ++i) setBin(Transform::Odd, y, N, 2 * i, v[oddRowFrequency(i) % M]);
    return y;
}

template <class V>
Sequence<V> inverseGoodThomasOdd(Flow<V>& flow, const plan::GoodThomas& join,
                                 const Sequence<V>& z) {
    const auto& [rows, columns] = join;
    const long M = rows[0]->length, N = 2 * M;
    Sequence<V> row(M);
    for (long i = 0; i < M; ++i)
        row[oddRowFrequency(i) % M] = binAt(Transform::InverseOdd, z, N, 2 * i);
    const Sequence<V> v = backwards(flow, *rows[0], 1, row);
    Sequence<V> x(N);
    const auto setSample = [&](long n, const Expression<V>& value) {
        n = modulo(n, 2 * N);
        x[n % N] = realNumber<V>(n < N ? value : -value);
    };
    for (long c = 0; c < M; ++c) {
        const Sequence<V> column = flow.run(*columns[c], 1, {v[c]});
        setSample(4 * c, column[0].re);
        setSample(M + 4 * c, column[1].re);
    }
    return x;
}

}  // namespace orvgen::flows
