// SPDX-License-Identifier: MIT
// The smallest real transforms, written down by hand in plain C++: what the kernels of these
// lengths compute, rounding by rounding. They share nothing with the flows.
//
// A set of rules says in which type each kind of value lives. Mixed is what binary32 kernels do:
// sums of samples in float; every product by a transform constant in double, with a double
// constant; the expression that the product belongs to in double up to one rounding to float. The
// other sets each get one of these wrong, so that a test can show that it would notice.
#pragma once

#include <array>
#include <boost/multiprecision/cpp_bin_float.hpp>
#include <stdexcept>
#include <vector>

namespace orvgen::test {

struct Mixed {
    using Sample = float;
    using Constant = double;
    using Product = double;                          // one product inside an expression
    using Narrowed = float;                          // the value of an expression that goes on
    using Scale = float;                             // as stored
    static constexpr bool scalesExpressions = true;  // in the type in which they stand (forward)
};
struct AllDouble : Mixed {
    using Sample = double;
    using Narrowed = double;
    using Scale = double;
};
struct FloatConstants : Mixed {
    using Constant = float;
};
struct MissingNarrowing : Mixed {
    using Narrowed = double;
};
struct RoundedProducts : Mixed {
    using Product = float;
};
struct DoubleScale : Mixed {
    using Scale = double;
};
struct ScaleAfterNarrowing : Mixed {
    static constexpr bool scalesExpressions = false;
};

template <class T>
struct HalfSpectrum {
    std::vector<T> re, im;  // bins 0 to N/2; im[0], and im[N/2] of even N, are not used
};

// In what layout the bins came: the order of one sum depends on it.
enum class HalfSpectrumBins { Ccs, PackOrPerm };

// cos and sin of 2 pi num/den without sign, rounded once.
inline double magnitudeOf(long num, long den, bool sine) {
    using Big = boost::multiprecision::cpp_bin_float_50;
    const Big angle = 2 * boost::math::constants::pi<Big>() * (num % den) / den;
    return Big(abs(sine ? sin(angle) : cos(angle))).convert_to<double>();
}

template <class Rules>
struct BaseForms {
    using Sample = typename Rules::Sample;
    using Narrowed = typename Rules::Narrowed;
    using Samples = std::vector<Sample>;
    using Spectrum = HalfSpectrum<Sample>;

    // One term of an expression. The constant keeps its own type up to the product.
    template <class T>
    static double times(double constant, T value) {
        const auto c = static_cast<typename Rules::Constant>(constant);
        return static_cast<double>(static_cast<typename Rules::Product>(
            static_cast<double>(c) * static_cast<double>(value)));
    }
    static Narrowed narrow(double expression) { return static_cast<Narrowed>(expression); }
    static Narrowed lone(double constant, double value) { return narrow(times(constant, value)); }

    // Stored outputs: of a float value, and of an expression that runs on into the scale.
    template <class T>
    static Sample scaled(T value, double scale) {
        return static_cast<Sample>(static_cast<typename Rules::Scale>(scale) * value);
    }
    static Sample scaledExpression(double e, double scale) {
        const auto s = static_cast<typename Rules::Scale>(scale);
        if (Rules::scalesExpressions) return static_cast<Sample>(e * static_cast<double>(s));
        return static_cast<Sample>(s * static_cast<Sample>(e));
    }
    static Sample negated(Sample v) { return Sample(0) - v; }

    static constexpr double kSin60 = 0.8660254037844386;
    static constexpr double kHalfRoot2 = 0.7071067811865476;

    // The magnitude of cos(2 pi ku/N) in a direct block. That of cos(4 pi/7) is stored two units
    // below the nearest double, so that seven equal samples leave exact zeros.
    static double cosine(long ku, long n) {
        const long r = ku % n;
        if (n == 7 && (r == 2 || r == 5)) return 0.22252093395631434;
        return magnitudeOf(r, n, false);
    }
    // First members u of the pairs (u, N-u): powers of the inverse of the smallest primitive root.
    static std::vector<int> pairOrder(int n) {
        const int r = n == 5 ? 3 : n == 7 ? 5 : n == 11 ? 6 : 0;
        if (r == 0) throw std::logic_error("direct blocks are 5, 7 and 11");
        std::vector<int> order;
        for (int u = 1; static_cast<int>(order.size()) < (n - 1) / 2; u = u * r % n)
            order.push_back(u);
        return order;
    }
    // c1 a1 +/- c2 a2 ..., with x0 last after a positive first term, first before a negative one.
    template <class T>
    static double cosineSum(const std::vector<int>& order, const std::vector<T>& a, Sample x0,
                            int k, int n) {
        const auto negative = [&](std::size_t i) {
            const long r = static_cast<long>(order[i]) * k % n;
            return 4 * r > n && 4 * r < 3 * n;
        };
        double e = negative(0) ? static_cast<double>(x0) : 0;
        for (std::size_t i = 0; i < order.size(); ++i) {
            const double p = times(cosine(static_cast<long>(order[i]) * k, n), a[i]);
            if (i == 0 && !negative(0))
                e = p;
            else
                e = negative(i) ? e - p : e + p;
        }
        return negative(0) ? e : e + static_cast<double>(x0);
    }
    // sin(2 pi ku/N) d_u over the pairs, in order. A leading run of negative terms is summed by its
    // magnitudes; `minus` tells that the sum is to be read with a minus.
    struct SignedSum {
        double e = 0;
        bool minus = false;
        double value() const { return minus ? -e : e; }
    };
    enum class Signs { AsTheyAre, Turned };
    template <class T>
    static SignedSum sineSum(const std::vector<int>& order, const std::vector<T>& d, int k, int n,
                             Signs signs) {
        SignedSum sum;
        for (std::size_t i = 0; i < order.size(); ++i) {
            const long r = static_cast<long>(order[i]) * k % n;
            const bool isNegative = (2 * r > n) != (signs == Signs::Turned);
            const double p = times(magnitudeOf(r, n, true), d[i]);
            if (i == 0) {
                sum = {p, isNegative};
            } else if (sum.minus == isNegative) {
                sum.e = sum.e + p;
            } else if (sum.minus) {
                sum = {p - sum.e, false};
            } else {
                sum.e = sum.e - p;
            }
        }
        return sum;
    }

    // ---- forward, and the two sums of a bin: R[k] and -I[k] for Hartley ----

    static Spectrum forward(const Samples& x, double s) {
        const auto n = static_cast<int>(x.size());
        Spectrum X{Samples(x.size() / 2 + 1), Samples(x.size() / 2 + 1)};
        switch (n) {
            case 2:
                X.re[0] = scaled(x[0] + x[1], s);
                X.re[1] = scaled(x[0] - x[1], s);
                return X;
            case 3: {
                const Sample a = x[1] + x[2], d = x[1] - x[2];
                X.re[0] = scaled(x[0] + a, s);
                X.re[1] = scaledExpression(static_cast<double>(x[0]) - times(0.5, a), s);
                X.im[1] = minusExpression(times(kSin60, d), s);
                return X;
            }
            case 4: {
                const Sample a = x[0] + x[2], b = x[1] + x[3];
                const Sample c = x[0] - x[2], d = x[1] - x[3];
                X.re[0] = scaled(a + b, s);
                X.re[1] = scaled(c, s);
                X.im[1] = negated(scaled(d, s));
                X.re[2] = scaled(a - b, s);
                return X;
            }
            case 6: {
                const Three p(x[0], x[2], x[4]), q(x[3], x[5], x[1]);
                X.re[0] = scaled(p.sum + q.sum, s);
                X.re[3] = scaled(p.sum - q.sum, s);
                // bin 1 of the 6 is (1 mod 3, 1 mod 2), bin 2 is (2, 0): conjugate of (1, 0)
                X.re[1] = scaled(p.centre - q.centre, s);
                X.im[1] = negated(scaled(p.sine - q.sine, s));
                X.re[2] = scaled(p.centre + q.centre, s);
                X.im[2] = scaled(p.sine + q.sine, s);
                return X;
            }
            case 8: {
                const Eight t(x);
                X.re[0] = scaled((t.e + t.f) + (t.g + t.h), s);
                X.re[4] = scaled((t.e + t.f) - (t.g + t.h), s);
                X.re[2] = scaled(t.e - t.f, s);
                X.im[2] = negated(scaled(t.g - t.h, s));
                X.re[1] = scaled(t.u + t.p, s);
                X.im[1] = negated(scaled(t.v + t.q, s));
                X.re[3] = scaled(t.u - t.p, s);
                X.im[3] = negated(scaled(t.q - t.v, s));
                return X;
            }
            default:
                return forwardDirect(x, s);
        }
    }

    static Samples hartley(const Samples& x, double s) {
        const auto n = static_cast<int>(x.size());
        Samples H(x.size());
        const auto pair = [&](std::size_t k, Narrowed c, Narrowed sine) {
            putPair(H, k, c, sine, s);
        };
        switch (n) {
            case 2:
                H[0] = scaled(x[0] + x[1], s);
                H[1] = scaled(x[0] - x[1], s);
                return H;
            case 3: {
                const Three p(x[0], x[1], x[2]);
                H[0] = scaled(p.sum, s);
                pair(1, p.centre, p.sine);
                return H;
            }
            case 4: {
                const Sample a = x[0] + x[2], b = x[1] + x[3];
                const Sample c = x[0] - x[2], d = x[1] - x[3];
                H[0] = scaled(a + b, s);
                H[2] = scaled(a - b, s);
                H[1] = scaled(c + d, s);
                H[3] = scaled(c - d, s);
                return H;
            }
            case 6: {
                const Three p(x[0], x[2], x[4]), q(x[3], x[5], x[1]);
                H[0] = scaled(p.sum + q.sum, s);
                H[3] = scaled(p.sum - q.sum, s);
                pair(1, p.centre - q.centre, p.sine - q.sine);
                pair(4, p.centre + q.centre, p.sine + q.sine);
                return H;
            }
            case 8: {
                const Eight t(x);
                H[1] = scaled((t.u + t.p) + (t.v + t.q), s);
                H[7] = scaled((t.u + t.p) - (t.v + t.q), s);
                H[3] = scaled((t.u - t.p) - (t.v - t.q), s);
                H[5] = scaled((t.u - t.p) + (t.v - t.q), s);
                H[0] = scaled((t.e + t.f) + (t.g + t.h), s);
                H[4] = scaled((t.e + t.f) - (t.g + t.h), s);
                H[2] = scaled((t.e - t.f) + (t.g - t.h), s);
                H[6] = scaled((t.e - t.f) - (t.g - t.h), s);
                return H;
            }
            default:
                return hartleyDirect(x, s);
        }
    }

    // ---- inverse ----

    // Order of the real terms in the sums of length 7: 1, 3, 2 from CCS, 1, 2, 3 from the others.
    static Samples inverse(const Spectrum& Z, int n, double s, HalfSpectrumBins bins) {
        Samples y(static_cast<std::size_t>(n));
        const Samples &R = Z.re, &I = Z.im;
        switch (n) {
            case 2:
                y[0] = scaled(R[0] + R[1], s);
                y[1] = scaled(R[0] - R[1], s);
                return y;
            case 3: {
                const Sample A = twice(R[1]);
                const Narrowed C = narrow(static_cast<double>(R[0]) - times(0.5, A));
                const Narrowed B = lone(1.7320508075688772, static_cast<double>(I[1]));
                y[0] = scaled(A + R[0], s);
                y[1] = scaled(C - B, s);
                y[2] = scaled(C + B, s);
                return y;
            }
            case 4: {
                const Sample A = twice(R[1]), B = twice(I[1]);
                const Sample e = R[0] + R[2], f = R[0] - R[2];
                y[0] = scaled(e + A, s);
                y[2] = scaled(e - A, s);
                y[1] = scaled(f - B, s);
                y[3] = scaled(f + B, s);
                return y;
            }
            case 6: {
                const Sample e = R[0] + R[3], f = R[0] - R[3];
                const Sample A1 = twice(R[1]), A2 = twice(R[2]);
                const Sample B1 = twice(I[1]), B2 = twice(I[2]);
                // bins 2 and 5 (1 conjugated) fold: even outputs from their sum, odd ones from
                // their difference
                threeBack(y, {0, 4, 2}, e, A2 + A1, B2 - B1, s);
                threeBack(y, {3, 1, 5}, f, A2 - A1, B2 + B1, s);
                return y;
            }
            case 8: {
                const Sample e = R[0] + R[4], f = R[0] - R[4];
                const Sample A2 = twice(R[2]), B2 = twice(I[2]);
                const Sample A = twice(R[1]) + twice(R[3]), B = twice(I[1]) - twice(I[3]);
                const Sample c = twice(R[1]) - twice(R[3]), d = twice(I[1]) + twice(I[3]);
                const Narrowed p = lone(kHalfRoot2, static_cast<double>(c));
                const Narrowed r = lone(kHalfRoot2, static_cast<double>(d));
                y[0] = scaled((e + A2) + A, s);
                y[4] = scaled((e + A2) - A, s);
                y[2] = scaled((e - A2) - B, s);
                y[6] = scaled((e - A2) + B, s);
                y[1] = scaled((f - B2) + (p - r), s);
                y[5] = scaled((f - B2) - (p - r), s);
                y[3] = scaled((f + B2) - (p + r), s);
                y[7] = scaled((f + B2) + (p + r), s);
                return y;
            }
            default:
                return inverseDirect(Z, n, s, bins);
        }
    }

  private:
    // ---- lengths 5, 7 and 11 ----

    static Spectrum forwardDirect(const Samples& x, double s) {
        const auto n = static_cast<int>(x.size());
        Spectrum X{Samples(x.size() / 2 + 1), Samples(x.size() / 2 + 1)};
        const Direct block(x);
        X.re[0] = scaled(block.sum, s);
        for (std::size_t k = 1; k < X.re.size(); ++k) {
            const int bin = static_cast<int>(k);
            X.re[k] = scaledExpression(cosineSum(block.order, block.a, x[0], bin, n), s);
            // the terms of I[k] are those of the sine sum with a minus; where three negative terms
            // lead and a positive one follows, the signs stay those of the sine sum
            SignedSum I = sineSum(block.order, block.d, bin, n, Signs::Turned);
            if (threeLeadNegative(block.order, bin, n)) {
                I = sineSum(block.order, block.d, bin, n, Signs::AsTheyAre);
                I.minus = !I.minus;
            }
            X.im[k] = I.minus ? minusExpression(I.e, s) : scaledExpression(I.e, s);
        }
        return X;
    }

    static Samples hartleyDirect(const Samples& x, double s) {
        const auto n = static_cast<int>(x.size());
        Samples H(x.size());
        const Direct block(x);
        H[0] = scaled(block.sum, s);
        for (int k = 1; 2 * k < n; ++k) {
            const SignedSum sine = sineSum(block.order, block.d, k, n, Signs::AsTheyAre);
            putPair(H, static_cast<std::size_t>(k),
                    narrow(cosineSum(block.order, block.a, x[0], k, n)), narrow(sine.value()), s);
        }
        return H;
    }
    // Elements k and N - k.
    static void putPair(Samples& H, std::size_t k, Narrowed c, Narrowed sine, double s) {
        H[k] = scaled(c + sine, s);
        H[H.size() - k] = scaled(c - sine, s);
    }

    static Samples inverseDirect(const Spectrum& Z, int n, double s, HalfSpectrumBins bins) {
        Samples y(static_cast<std::size_t>(n));
        const Samples &R = Z.re, &I = Z.im;
        if (n != 5 && n != 7) throw std::logic_error("no base form of this length");
        const std::vector<int> imaginary = n == 5 ? std::vector{1, 2} : std::vector{1, 2, 3};
        const std::vector<int> real =
            n == 7 && bins == HalfSpectrumBins::Ccs ? std::vector{1, 3, 2} : imaginary;
        Samples A, B;
        for (const int k : real) A.push_back(twice(R[static_cast<std::size_t>(k)]));
        for (const int k : imaginary) B.push_back(twice(I[static_cast<std::size_t>(k)]));
        Sample sum = A[0];
        for (std::size_t i = 1; i < A.size(); ++i) sum = sum + A[i];
        y[0] = scaled(sum + R[0], s);
        for (int j = 1; 2 * j < n; ++j) {
            const Narrowed C = narrow(cosineSum(real, A, R[0], j, n));
            const Narrowed S = narrow(sineSum(imaginary, B, j, n, Signs::AsTheyAre).value());
            y[static_cast<std::size_t>(j)] = scaled(C - S, s);
            y[static_cast<std::size_t>(n - j)] = scaled(C + S, s);
        }
        return y;
    }

    static Sample twice(Sample v) { return Sample(2) * v; }

    // 0.0 - s e, in the type in which the expression stands.
    static Sample minusExpression(double e, double scale) {
        const auto s = static_cast<typename Rules::Scale>(scale);
        if (Rules::scalesExpressions) return static_cast<Sample>(0.0 - e * static_cast<double>(s));
        return negated(scaledExpression(e, scale));
    }

    // x0 + a; x0 - 0.5 a; sin60 (x1 - x2): a 3-point block that has something behind it.
    struct Three {
        Sample sum;
        Narrowed centre, sine;
        Three(Sample x0, Sample x1, Sample x2) {
            const Sample a = x1 + x2, d = x1 - x2;
            sum = x0 + a;
            centre = narrow(static_cast<double>(x0) - times(0.5, a));
            sine = lone(kSin60, static_cast<double>(d));
        }
    };
    // Three outputs of a 3-point inverse.
    static void threeBack(Samples& y, const std::array<std::size_t, 3>& at, Sample Z0, Sample A,
                          Sample B, double s) {
        const Narrowed C = narrow(static_cast<double>(Z0) - times(0.5, A));
        const Narrowed S = lone(kSin60, static_cast<double>(B));
        y[at[0]] = scaled(Z0 + A, s);
        y[at[1]] = scaled(C - S, s);
        y[at[2]] = scaled(C + S, s);
    }
    struct Eight {
        Sample e, f, g, h, u, v;
        Narrowed p, q;
        explicit Eight(const Samples& x) {
            const Narrowed t1 = lone(kHalfRoot2, static_cast<double>(Sample(x[1] - x[5])));
            const Narrowed t2 = lone(kHalfRoot2, static_cast<double>(Sample(x[3] - x[7])));
            e = x[0] + x[4];
            f = x[2] + x[6];
            g = x[1] + x[5];
            h = x[3] + x[7];
            u = x[0] - x[4];
            v = x[2] - x[6];
            p = t1 - t2;
            q = t1 + t2;
        }
    };
    struct Direct {
        std::vector<int> order;
        Samples a, d;
        Sample sum;
        explicit Direct(const Samples& x) : order(pairOrder(static_cast<int>(x.size()))) {
            for (const int u : order) {
                const auto i = static_cast<std::size_t>(u), j = x.size() - i;
                a.push_back(x[i] + x[j]);
                d.push_back(x[i] - x[j]);
            }
            sum = a[0];
            for (std::size_t i = 1; i < a.size(); ++i) sum = sum + a[i];
            sum = sum + x[0];
        }
    };
    // The first three terms of I[k] = -(sine sum) are negative, and a later one is positive.
    static bool threeLeadNegative(const std::vector<int>& order, int k, int n) {
        bool leads = order.size() > 3, follows = false;
        for (std::size_t i = 0; i < order.size(); ++i) {
            const bool positiveSine = 2 * (static_cast<long>(order[i]) * k % n) < n;
            if (i < 3) leads = leads && positiveSine;
            if (i >= 3) follows = follows || !positiveSine;
        }
        return leads && follows;
    }
};

}  // namespace orvgen::test
