// Cooley-Tukey joins: n = R M, R-point blocks first, twiddles between.
//
// Samples t = c + M t', bins k + R q:
//   w(n)^(e t k) = w(R)^(e t' k) w(n)^(e c k) w(M)^(e c q).
// Of real samples the row k = 0 stays real; the row k = R/2 is real too and, since its twiddles are
// w(2M)^(e c), it is a transform at odd frequencies; the other rows stand for k and R - k.
//
// J. W. Cooley, J. W. Tukey, An algorithm for the machine calculation of complex Fourier series,
// Math. Comp. 19, 1965.
#pragma once

#include "flow.h"
#include "good_thomas.h"
#include "rotation.h"

namespace orvgen::flows {

template <class V>
Bins<V> cooleyTukeyReal(Flow<V>& flow, const Plan& plan, long e, const std::vector<V>& x) {
    const int n = plan.length;
    const int r = plan.parts[0]->length;
    const int m = plan.parts[1]->length;
    flow.stage(std::to_string(r) + "-point blocks");
    std::vector<Bins<V>> u;  // by c
    for (int c = 0; c < m; ++c) {
        std::vector<V> row;
        for (int t = 0; t < r; ++t) row.push_back(x[static_cast<std::size_t>(c + m * t)]);
        const typename Flow<V>::Scope scope(flow, "first" + std::to_string(c));
        u.push_back(flow.real(plan.parts[0], e, row));
    }
    flow.stage("twiddles and " + std::to_string(m) + "-point blocks");
    Bins<V> half(binCount(n));
    for (int k = 0; 2 * k <= r; ++k) {
        const typename Flow<V>::Scope scope(flow, "second" + std::to_string(k));
        const auto row = static_cast<std::size_t>(k);
        if (k == 0 || 2 * k == r) {
            if (k == 0) {
                std::vector<V> across;
                for (const Bins<V>& bins : u) across.push_back(bins[row].re.formed());
                const Bins<V> y = flow.real(plan.parts[1], e, across);
                for (int q = 0; 2 * q <= m; ++q)
                    setBin(half, n, r * q, y[static_cast<std::size_t>(q)]);
            } else {
                Samples<V> across;
                for (const Bins<V>& bins : u) across.push_back(bins[row].re.formed());
                const Bins<V> y = flow.odd(plan.parts[1], across);
                for (int f = 1; f <= m; f += 2) setBin(half, n, r / 2 * f, oddBinAt(y, m, e * f));
            }
        } else {
            Bins<V> across;
            for (int c = 0; c < m; ++c)
                across.push_back(rotate(u[static_cast<std::size_t>(c)][row], -e * k * c, n));
            const Bins<V> y = flow.complex(plan.parts[1], plan.complexParts[1], e, across);
            for (int q = 0; q < m; ++q) setBin(half, n, k + r * q, y[static_cast<std::size_t>(q)]);
        }
    }
    return half;
}

// The mirror: n = M R, the M-point blocks across the bins first, then twiddles, then R-point
// blocks.
template <class V>
std::vector<V> cooleyTukeyInverseReal(Flow<V>& flow, const Plan& plan, long e, const Bins<V>& z) {
    const int n = plan.length;
    const int m = plan.parts[0]->length;
    const int r = plan.parts[1]->length;
    flow.stage(std::to_string(m) + "-point blocks and twiddles");
    std::vector<Bins<V>> u(static_cast<std::size_t>(m));  // by c, half spectra over k
    for (int k = 0; 2 * k <= r; ++k) {
        const typename Flow<V>::Scope scope(flow, "first" + std::to_string(k));
        if (k == 0 || 2 * k == r) {
            std::vector<V> y;
            if (k == 0) {
                Bins<V> row;
                for (int q = 0; 2 * q <= m; ++q) row.push_back(binAt(z, n, r * q));
                y = flow.inverseReal(plan.parts[0], e, row);
            } else {
                Bins<V> row(oddBinCount(m));
                for (int f = 1; f <= m; f += 2) setOddBin(row, m, e * f, binAt(z, n, r / 2 * f));
                y = flow.inverseOdd(plan.parts[0], row);
            }
            for (std::size_t c = 0; c < u.size(); ++c) u[c].push_back({y[c], {}});
        } else {
            const int own = plan.conjugateRows ? r - k : k;
            Bins<V> row;
            for (int q = 0; q < m; ++q) row.push_back(binAt(z, n, own + r * q));
            const Bins<V> y = flow.inverseComplex(plan.parts[0], plan.complexParts[0], e, row);
            for (int c = 0; c < m; ++c) {
                const auto i = static_cast<std::size_t>(c);
                const Bin<V> turned = rotate(y[i], e * own * c, n);
                u[i].push_back(plan.conjugateRows ? conj(turned) : turned);
            }
        }
    }
    flow.stage(std::to_string(r) + "-point blocks");
    std::vector<V> x(static_cast<std::size_t>(n));
    for (int c = 0; c < m; ++c) {
        const typename Flow<V>::Scope scope(flow, "second" + std::to_string(c));
        const std::vector<V> y = flow.inverseReal(plan.parts[1], e, u[static_cast<std::size_t>(c)]);
        for (int t = 0; t < r; ++t)
            x[static_cast<std::size_t>(c + m * t)] = y[static_cast<std::size_t>(t)];
    }
    return x;
}

template <class V>
Bins<V> cooleyTukeyComplex(Flow<V>& flow, const Plan& plan, long e, const Bins<V>& z) {
    const int n = plan.length;
    const int r = plan.parts[0]->length;
    const int m = plan.parts[1]->length;
    std::vector<Bins<V>> u;  // by c
    for (int c = 0; c < m; ++c) {
        Bins<V> row;
        for (int t = 0; t < r; ++t) row.push_back(z[static_cast<std::size_t>(c + m * t)]);
        const typename Flow<V>::Scope scope(flow, "first" + std::to_string(c));
        u.push_back(flow.complex(plan.parts[0], plan.complexParts[0], e, row));
    }
    Bins<V> y(static_cast<std::size_t>(n));
    for (int k = 0; k < r; ++k) {
        Bins<V> across;
        for (int c = 0; c < m; ++c)
            across.push_back(
                rotate(u[static_cast<std::size_t>(c)][static_cast<std::size_t>(k)], -e * k * c, n));
        const typename Flow<V>::Scope scope(flow, "second" + std::to_string(k));
        const Bins<V> v = flow.complex(plan.parts[1], plan.complexParts[1], e, across);
        for (int q = 0; q < m; ++q)
            y[static_cast<std::size_t>(k + r * q)] = v[static_cast<std::size_t>(q)];
    }
    return y;
}

// Odd frequencies 2 (j + R q) + 1: R-point blocks at odd frequencies, twiddles w(2n)^(-(2j+1) c),
// complex M-point blocks; the middle row of an odd R is real and at odd frequencies again.
template <class V>
Bins<V> cooleyTukeyOdd(Flow<V>& flow, const Plan& plan, const Samples<V>& x) {
    const int n = plan.length;
    const int r = plan.parts[0]->length;
    const int m = plan.parts[1]->length;
    std::vector<Bins<V>> u;  // by c
    for (int c = 0; c < m; ++c) {
        Samples<V> row;
        for (int t = 0; t < r; ++t) row.push_back(x[static_cast<std::size_t>(c + m * t)]);
        const typename Flow<V>::Scope scope(flow, "first" + std::to_string(c));
        u.push_back(flow.odd(plan.parts[0], row));
    }
    Bins<V> half(oddBinCount(n));
    for (int j = 0; 2 * j + 1 <= r; ++j) {
        const typename Flow<V>::Scope scope(flow, "second" + std::to_string(j));
        const auto row = static_cast<std::size_t>(j);
        if (2 * j + 1 == r) {
            Samples<V> across;
            for (const Bins<V>& bins : u) across.push_back(bins[row].re.formed());
            const Bins<V> y = flow.odd(plan.parts[1], across);
            for (int f = 1; f <= m; f += 2) setOddBin(half, n, r * f, oddBinAt(y, m, f));
        } else {
            Bins<V> across;
            for (int c = 0; c < m; ++c)
                across.push_back(
                    rotate(u[static_cast<std::size_t>(c)][row], -(2 * j + 1) * c, 2 * n));
            const Bins<V> y = flow.complex(plan.parts[1], plan.complexParts[1], 1, across);
            for (int q = 0; q < m; ++q)
                setOddBin(half, n, 2 * (j + r * q) + 1, y[static_cast<std::size_t>(q)]);
        }
    }
    return half;
}

template <class V>
std::vector<V> cooleyTukeyInverseOdd(Flow<V>& flow, const Plan& plan, const Bins<V>& z) {
    const int n = plan.length;
    const int m = plan.parts[0]->length;
    const int r = plan.parts[1]->length;
    std::vector<Bins<V>> u(static_cast<std::size_t>(m));  // by c, odd half spectra over j
    for (int j = 0; 2 * j + 1 <= r; ++j) {
        const typename Flow<V>::Scope scope(flow, "first" + std::to_string(j));
        if (2 * j + 1 == r) {
            Bins<V> row(oddBinCount(m));
            for (int f = 1; f <= m; f += 2) setOddBin(row, m, f, oddBinAt(z, n, r * f));
            const std::vector<V> y = flow.inverseOdd(plan.parts[0], row);
            for (std::size_t c = 0; c < u.size(); ++c) u[c].push_back({y[c], {}});
        } else {
            const int own = plan.conjugateRows ? r - 1 - j : j;
            Bins<V> row;
            for (int q = 0; q < m; ++q) row.push_back(oddBinAt(z, n, 2 * (own + r * q) + 1));
            const Bins<V> y = flow.inverseComplex(plan.parts[0], plan.complexParts[0], 1, row);
            for (int c = 0; c < m; ++c) {
                const auto i = static_cast<std::size_t>(c);
                const Bin<V> turned = rotate(y[i], (2 * own + 1) * c, 2 * n);
                u[i].push_back(plan.conjugateRows ? conj(turned) : turned);
            }
        }
    }
    std::vector<V> x(static_cast<std::size_t>(n));
    for (int c = 0; c < m; ++c) {
        const typename Flow<V>::Scope scope(flow, "second" + std::to_string(c));
        const std::vector<V> y = flow.inverseOdd(plan.parts[1], u[static_cast<std::size_t>(c)]);
        for (int t = 0; t < r; ++t)
            x[static_cast<std::size_t>(c + m * t)] = y[static_cast<std::size_t>(t)];
    }
    return x;
}

}  // namespace orvgen::flows
