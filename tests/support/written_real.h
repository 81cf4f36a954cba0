// SPDX-License-Identifier: MIT
// The real transforms by their formulas, on written values: direct blocks, Good-Thomas and
// Cooley-Tukey joins, forward and inverse, at ordinary and at odd frequencies, and complex ones
// made of them.
#pragma once

#include <cstddef>
#include <map>
#include <vector>

#include "support/written_values.h"

namespace orvgen::test::written {

// How lengths are made of shorter ones; those that are not named are blocks.
struct Join {
    int first, second;
    bool twiddles;
    bool renumbered = false;  // the first factor's bins: root exponent 1, bin k taken as bin e k
};
using Joins = std::map<int, Join>;

constexpr Join twiddled(int first, int second) {
    return {.first = first, .second = second, .twiddles = true};
}
constexpr Join coprime(int first, int second) {
    return {.first = first, .second = second, .twiddles = false};
}
constexpr Join renumbered(Join join) {
    join.renumbered = true;
    return join;
}

// The sums of direct blocks: their pairs along the powers of the inverse of a primitive root, or
// upwards, a sum of sines then beginning with its first plus or minus.
enum class DirectSums { ByPowers, UpwardsPlusFirst, UpwardsMinusFirst };

// `e` is the exponent of the root of unity; with w = exp(2 pi
// i / n) the forward ones have w^(-e ...), the inverse ones w^(e ...).
template <class T>
class Transforms {
    using V = Value<T>;
    using Bin = RealBin<T>;

  public:
    Transforms(const Joins& forward, const Joins& inverse, const Joins& complexRows,
               DirectSums sums = DirectSums::ByPowers)
        : forwardJoins(forward),
          inverseJoins(inverse),
          complexJoins(complexRows),
          directSums(sums) {}

    // X[k] = sum of x[t] w^(-e t k)
    Spectrum<T> real(int n, long e, Values<T> x) const {
        for (V& v : x) v = narrow(v);
        e = (e % n + n) % n;
        const auto join = forwardJoins.find(n);
        if (join != forwardJoins.end()) {
            const Join& j = join->second;
            return j.twiddles ? cooleyTukey(n, j, e, x) : goodThomas(n, j, e, x);
        }
        switch (n) {
            case 2:
                return {{x[0] + x[1]}, {x[0] - x[1]}};
            case 3: {
                const V a = x[1] + x[2], d = x[1] - x[2], p = sine(1, 6) * d;
                return {{x[0] + a}, {x[0] - 0.5 * a, e == 1 ? -p : p}};
            }
            case 4: {
                const V a = x[0] + x[2], b = x[1] + x[3], c = x[0] - x[2], d = x[1] - x[3];
                return {{a + b}, {c, e == 1 ? -d : d}, {a - b}};
            }
            default:
                return direct(n, e, x);
        }
    }

    // Y[k] = sum of z[t] w^(-e t k), by the real transform of either part
    Spectrum<T> complex(int n, long e, const Spectrum<T>& z) const {
        const auto join = complexJoins.find(n);
        if (join != complexJoins.end()) return complexCooleyTukey(n, join->second, e, z);
        Values<T> re, im;
        for (const Bin& bin : z) {
            re.push_back(bin.re);
            im.push_back(bin.im);
        }
        const Spectrum<T> a = real(n, e, re), b = real(n, e, im);
        Spectrum<T> y(z.size());
        for (std::size_t k = 0; k < a.size(); ++k) {
            if (k == 0 || 2 * k == y.size()) {
                y[k] = {a[k].re, b[k].re};
                continue;
            }
            const V ar = narrow(a[k].re), ai = narrow(a[k].im);
            const V br = narrow(b[k].re), bi = narrow(b[k].im);
            y[k] = {ar - bi, ai + br};
            y[y.size() - k] = {ar + bi, br - ai};
        }
        return y;
    }

    // y[t] = Z[0] + sum over 0 < k < n/2 of Re(Z[k] w^(e t k)) + (-1)^t Z[n/2]
    Values<T> inverse(int n, long e, const Spectrum<T>& z) const {
        e = (e % n + n) % n;
        const auto join = inverseJoins.find(n);
        if (join != inverseJoins.end()) {
            const Join& j = join->second;
            return j.twiddles ? inverseCooleyTukey(n, j, e, z) : inverseGoodThomas(n, j, e, z);
        }
        const V z0 = narrow(z[0].re);
        switch (n) {
            case 2:
                return {z0 + narrow(z[1].re), z0 - narrow(z[1].re)};
            case 3: {
                const V u = narrow(z[1].re), m = narrow(z0 - 0.5 * u);
                const V p = narrow(sineOf60TimesIm(z[1]));
                if (e == 1) return {z0 + u, m - p, m + p};
                return {z0 + u, m + p, m - p};
            }
            case 4: {
                const V g = z0 + narrow(z[2].re), f = z0 - narrow(z[2].re);
                const V re = narrow(z[1].re), im = e == 1 ? narrow(z[1].im) : -narrow(z[1].im);
                return {g + re, f - im, g - re, f + im};
            }
            default:
                return inverseDirect(n, e, z);
        }
    }

  private:
    const Joins& forwardJoins;
    const Joins& inverseJoins;
    const Joins& complexJoins;
    DirectSums directSums;

    static std::size_t at(long i, long n) { return static_cast<std::size_t>((i % n + n) % n); }

    // c1 a1 + c2 a2 + ..., x0 behind a first term that is positive and else in front.
    static V cosineSum(int n, long f, const std::vector<int>& order, const Values<T>& a, V x0) {
        V sum;
        for (std::size_t i = 0; i < order.size(); ++i) {
            const V term = directCosine(f * order[i], n) * a[i];
            if (i > 0)
                sum = sum + term;
            else
                sum = term.minus ? x0 + term : term;
        }
        return cosine(f * order[0], n) < 0 ? sum : sum + x0;
    }
    V sineSum(int n, long f, const std::vector<int>& order, const Values<T>& d) const {
        Values<T> terms;
        for (std::size_t i = 0; i < order.size(); ++i)
            terms.push_back(sine(f * order[i], n) * d[i]);
        std::size_t first = 0;
        if (directSums != DirectSums::ByPowers) {
            const bool wanted = directSums == DirectSums::UpwardsMinusFirst;
            while (first < terms.size() && terms[first].minus != wanted) ++first;
            if (first == terms.size()) first = 0;
        }
        V sum = terms[first];
        for (std::size_t i = 0; i < terms.size(); ++i)
            if (i != first) sum = sum + terms[i];
        return sum;
    }
    std::vector<int> pairs(int n) const {
        if (directSums == DirectSums::ByPowers) return BaseForms<AllDouble>::pairOrder(n);
        std::vector<int> upwards;
        for (int u = 1; 2 * u < n; ++u) upwards.push_back(u);
        return upwards;
    }
    static V sumOf(const Values<T>& a) {
        V sum = a[0];
        for (std::size_t i = 1; i < a.size(); ++i) sum = sum + a[i];
        return sum;
    }

    Spectrum<T> direct(int n, long e, const Values<T>& x) const {
        const std::vector<int> order = pairs(n);
        Values<T> a, d;
        for (const int u : order) {
            a.push_back(x[at(u, n)] + x[at(-u, n)]);
            d.push_back(x[at(u, n)] - x[at(-u, n)]);
        }
        Spectrum<T> X = {{sumOf(a) + x[0]}};
        for (long k = 1; 2 * k < n; ++k)
            X.push_back({cosineSum(n, e * k, order, a, x[0]), sineSum(n, -e * k, order, d)});
        return X;
    }

    Values<T> inverseDirect(int n, long e, const Spectrum<T>& z) const {
        const std::vector<int> order = pairs(n);
        const V z0 = narrow(z[0].re);
        Values<T> a, d;
        for (const int u : order) {
            const Bin bin = binOf(z, n, u);
            a.push_back(narrow(bin.re));
            d.push_back(narrow(bin.im));
        }
        Values<T> y(static_cast<std::size_t>(n));
        y[0] = sumOf(a) + z0;
        for (long q = 1; 2 * q < n; ++q) {
            const V c = narrow(cosineSum(n, e * q, order, a, z0));
            const V s = narrow(sineSum(n, e * q, order, d));
            y[at(q, n)] = c - s;
            y[at(-q, n)] = c + s;
        }
        return y;
    }

    // Samples t = b t1 + a t2, bins k = b k1 + a k2.
    Spectrum<T> goodThomas(int n, const Join& join, long e, const Values<T>& x) const {
        const int a = join.first, b = join.second;
        std::vector<Spectrum<T>> u;
        for (int t2 = 0; t2 < b; ++t2) {
            Values<T> row;
            for (int t1 = 0; t1 < a; ++t1) row.push_back(x[at(b * t1 + a * t2, n)]);
            u.push_back(real(a, join.renumbered ? 1 : e * b, row));
            if (!join.renumbered) continue;
            const Spectrum<T> plain = u.back();
            for (int k = 0; 2 * k <= a; ++k) u.back()[at(k, a)] = binOf(plain, a, e * b * k);
        }
        Spectrum<T> X(static_cast<std::size_t>(n / 2 + 1));
        for (int k1 = 0; 2 * k1 <= a; ++k1) {
            Spectrum<T> across;
            Values<T> parts;
            for (const Spectrum<T>& bins : u) {
                across.push_back(bins[at(k1, a)]);
                parts.push_back(across.back().re);
            }
            const bool isReal = k1 == 0 || 2 * k1 == a;
            const Spectrum<T> y = isReal ? real(b, e * a, parts) : complex(b, e * a, across);
            for (std::size_t k2 = 0; k2 < y.size(); ++k2)
                setBin(X, n, b * k1 + a * static_cast<long>(k2), y[k2]);
        }
        return X;
    }

    Values<T> inverseGoodThomas(int n, const Join& join, long e, const Spectrum<T>& z) const {
        const int a = join.first, b = join.second;
        std::vector<Spectrum<T>> u(static_cast<std::size_t>(a));
        for (int k2 = 0; 2 * k2 <= b; ++k2) {
            Spectrum<T> row;
            for (int k1 = 0; k1 < a; ++k1) row.push_back(binOf(z, n, b * k1 + a * k2));
            if (k2 == 0 || 2 * k2 == b) {
                row.resize(static_cast<std::size_t>(a / 2 + 1));
                const Values<T> y = inverse(a, e * b, row);
                for (std::size_t t1 = 0; t1 < u.size(); ++t1) u[t1].push_back({y[t1]});
            } else {
                const Spectrum<T> y = complex(a, e * b, row);
                for (int t1 = 0; t1 < a; ++t1) u[at(t1, a)].push_back(y[at(-t1, a)]);
            }
        }
        Values<T> x(static_cast<std::size_t>(n));
        for (int t1 = 0; t1 < a; ++t1) {
            const Values<T> y = inverse(b, e * a, u[at(t1, a)]);
            for (int t2 = 0; t2 < b; ++t2) x[at(b * t1 + a * t2, n)] = y[at(t2, b)];
        }
        return x;
    }

    // X[j] = sum of x[t] exp(-2 pi i (2j+1) t / (2n)) for the lengths that even radices leave over:
    // 2, and 4 as 2 T 2. Bin n-1-j is the conjugate of bin j.
    static Spectrum<T> odd(const Values<T>& x) {
        if (x.size() == 2) return {{narrow(x[0]), -narrow(x[1])}};
        Bin u[2];
        for (std::size_t c = 0; c < 2; ++c) {
            u[c] = {narrow(x[c]), -narrow(x[c + 2])};
            u[c] = rotated(u[c], -static_cast<long>(c), 8);
        }
        return {{u[0].re + u[1].re, u[0].im + u[1].im},
                conj(Bin{u[0].re - u[1].re, u[0].im - u[1].im})};
    }
    static Bin oddBinOf(const Spectrum<T>& half, long n, long f) {
        f = (f % (2 * n) + 2 * n) % (2 * n);
        return f < n ? half[static_cast<std::size_t>((f - 1) / 2)]
                     : conj(half[static_cast<std::size_t>((2 * n - f - 1) / 2)]);
    }

    // Samples t = c + M t', bins k + R q.
    Spectrum<T> cooleyTukey(int n, const Join& join, long e, const Values<T>& x) const {
        const int R = join.first, M = join.second;
        std::vector<Spectrum<T>> u;
        for (int c = 0; c < M; ++c) {
            Values<T> column;
            for (int t = 0; t < R; ++t) column.push_back(x[at(c + M * t, n)]);
            u.push_back(real(R, e, column));
        }
        Spectrum<T> X(static_cast<std::size_t>(n / 2 + 1));
        for (int k = 0; 2 * k <= R; ++k) {
            Spectrum<T> across;
            Values<T> parts;
            for (int c = 0; c < M; ++c) {
                const Bin& bin = u[at(c, M)][at(k, R)];
                parts.push_back(bin.re);
                across.push_back(rotated(bin, -e * k * c, n));
            }
            if (2 * k == R) {
                const Spectrum<T> y = odd(parts);
                for (int q = 0; 2 * q < M; ++q)
                    setBin(X, n, k + R * q, oddBinOf(y, M, e * (2 * q + 1)));
                continue;
            }
            const Spectrum<T> y = k == 0 ? real(M, e, parts) : complex(M, e, across);
            for (std::size_t q = 0; q < y.size(); ++q)
                setBin(X, n, k + R * static_cast<long>(q), y[q]);
        }
        return X;
    }

    Spectrum<T> complexCooleyTukey(int n, const Join& join, long e, const Spectrum<T>& z) const {
        const int R = join.first, M = join.second;
        std::vector<Spectrum<T>> u;
        for (int c = 0; c < M; ++c) {
            Spectrum<T> column;
            for (int t = 0; t < R; ++t) column.push_back(z[at(c + M * t, n)]);
            u.push_back(complex(R, e, column));
        }
        Spectrum<T> y(z.size());
        for (int k = 0; k < R; ++k) {
            Spectrum<T> row;
            for (int c = 0; c < M; ++c)
                row.push_back(rotated(u[at(c, M)][at(k, R)], -e * k * c, n));
            const Spectrum<T> out = complex(M, e, row);
            for (int q = 0; q < M; ++q) y[at(k + R * q, n)] = out[at(q, M)];
        }
        return y;
    }

    // The mirror of odd(): y[t] = sum over j < n/2 of Re(Z[j] exp(2 pi i (2j+1) t / (2n))); 4 and 8
    // by complex transforms of half the length.
    Values<T> inverseOdd(int n, const Spectrum<T>& z) const {
        if (n == 2) return {narrow(z[0].re), -narrow(z[0].im)};
        const int M = n / 2;
        Spectrum<T> row;
        for (int q = 0; q < M; ++q) row.push_back(oddBinOf(z, n, 4 * q + 1));
        const Spectrum<T> y = complex(M, 1, row);
        Values<T> x(static_cast<std::size_t>(n));
        for (int c = 0; c < M; ++c) {
            const Bin v = rotated(y[at(-c, M)], c, 2 * n);
            x[at(c, n)] = v.re;
            x[at(c + M, n)] = -v.im;
        }
        return x;
    }

    // The join's first factor is M, the one that runs first.
    Values<T> inverseCooleyTukey(int n, const Join& join, long e, const Spectrum<T>& z) const {
        const int M = join.first, R = join.second;
        std::vector<Spectrum<T>> u(static_cast<std::size_t>(M));
        for (int k = 0; 2 * k <= R; ++k) {
            Spectrum<T> row;
            for (int q = 0; q < M; ++q) row.push_back(binOf(z, n, k + R * q));
            if (k == 0 || 2 * k == R) {
                Spectrum<T> half(static_cast<std::size_t>(k == 0 ? M / 2 + 1 : M / 2));
                for (std::size_t q = 0; q < half.size(); ++q) {
                    half[q] = k == 0 ? row[q] : Bin{};
                }
                for (int q = 0; k > 0 && 2 * q < M; ++q) {
                    // The frequency e (2q + 1) of period 2M.
                    const long f = (e * (2 * q + 1) % (2 * M) + 2 * M) % (2 * M);
                    half[static_cast<std::size_t>(f < M ? (f - 1) / 2 : (2 * M - f - 1) / 2)] =
                        f < M ? row[at(q, M)] : conj(row[at(q, M)]);
                }
                const Values<T> y = k == 0 ? inverse(M, e, half) : inverseOdd(M, half);
                for (std::size_t c = 0; c < u.size(); ++c) u[c].push_back({y[c]});
            } else {
                const Spectrum<T> y = complex(M, e, row);
                for (int c = 0; c < M; ++c)
                    u[at(c, M)].push_back(rotated(y[at(-c, M)], e * k * c, n));
            }
        }
        Values<T> x(static_cast<std::size_t>(n));
        for (int c = 0; c < M; ++c) {
            const Values<T> y = inverse(R, e, u[at(c, M)]);
            for (int t = 0; t < R; ++t) x[at(c + M * t, n)] = y[at(t, R)];
        }
        return x;
    }
};

}  // namespace orvgen::test::written
