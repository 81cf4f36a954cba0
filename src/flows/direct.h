// Direct blocks: lengths 1 to 4, and the symmetric form of the odd primes 5, 7, 11.
//
// Forward, with the pairs a = x[u] + x[n-u], d = x[u] - x[n-u]:
//   X[k] = (x[0] + sum of cos(2 pi e u k/n) a, - sum of sin(2 pi e u k/n) d).
// Inverse, by the same sums over the real and the imaginary parts of the bins:
//   y[q], y[n-q] = C -+ S.
// The pairs follow the powers of the inverse of the smallest primitive root, or go up from 1 where
// the flow asks for it (Flow::positiveFirst). A cosine sum whose first term is positive begins with
// it and takes x[0] last; otherwise it begins with x[0].
#pragma once

#include <stdexcept>

#include "flow.h"
#include "number_theory.h"

namespace orvgen::flows {

// cos(2 pi num/n) as the direct blocks hold it.
//
// A constant input must give +0.0 in every bin but the first. At n = 7, with the sums in their
// order, the rounded products cancel to the last bit only if |cos(4 pi/7)| is stored two units
// below the nearest binary64; the other two cosines are correctly rounded.
inline Constant directCosine(long num, long n) {
    const Constant c = kernelgen::cosTurn(num, n);
    num = modulo(num, n);
    if (n == 7 && (num == 2 || num == 5)) return c.pinnedTo(-0.22252093395631434);
    return c;
}

struct DirectPairs {
    std::vector<long> u;  // the pairs are u and n - u

    // 1, 2, 3, ..
    static DirectPairs ascending(int n) {
        DirectPairs pairs;
        for (long i = 1; i <= n / 2; ++i) pairs.u.push_back(i);
        return pairs;
    }

    explicit DirectPairs(int n, bool inRootOrder = false) {
        const long r = inRootOrder ? smallestRoot(n) : inverseModulo(smallestRoot(n), n);
        long power = 1;
        for (int i = 0; i < n / 2; ++i, power = power * r % n) u.push_back(power);
    }

  private:
    DirectPairs() = default;
};

// x0 + sum of cos(2 pi k u/n) a over the pairs.
template <class V>
V cosineSum(const DirectPairs& pairs, long n, long k, const V& x0, const std::vector<V>& a) {
    const auto term = [&](std::size_t i) { return directCosine(k * pairs.u[i], n) * a[i]; };
    const bool endsWithX0 = !directCosine(k * pairs.u[0], n).isNegative();
    V sum = endsWithX0 ? term(0) : x0 + term(0);
    for (std::size_t i = 1; i < a.size(); ++i) sum = sum + term(i);
    return endsWithX0 ? sum + x0 : sum;
}

// Sum of sin(2 pi k u/n) d over the pairs; k may be negative. A sum that begins with three negative
// terms and has a positive one is formed with all signs turned.
template <class V>
V sineSum(const DirectPairs& pairs, long n, long k, const std::vector<V>& d) {
    std::vector<Constant> s;
    for (const long u : pairs.u) s.push_back(kernelgen::sinTurn(k * u, n));
    bool turned = s.size() > 3 && s[0].isNegative() && s[1].isNegative() && s[2].isNegative();
    if (turned) {
        bool somePositive = false;
        for (const Constant& c : s) somePositive = somePositive || !c.isNegative();
        turned = somePositive;
    }
    if (turned)
        for (Constant& c : s) c = -c;
    V sum = s[0] * d[0];
    for (std::size_t i = 1; i < d.size(); ++i) sum = sum + s[i] * d[i];
    return turned ? -sum : sum;
}

// The same beginning with the first term that is positive in a transform of the given sign, the
// others in order: a sum that has a positive term needs no negation.
template <class V>
V sineSumPositiveFirst(const DirectPairs& pairs, long n, long k, const std::vector<V>& d,
                       int sign) {
    std::vector<V> terms;
    for (std::size_t i = 0; i < d.size(); ++i)
        terms.push_back(kernelgen::sinTurn(k * pairs.u[i], n) * d[i]);
    std::size_t first = 0;
    while (first < terms.size() && terms[first].negative() == (sign > 0)) ++first;
    if (first == terms.size()) first = 0;
    V sum = terms[first];
    for (std::size_t i = 0; i < terms.size(); ++i)
        if (i != first) sum = sum + terms[i];
    return sum;
}

// The order of the pairs and of the sine sums that a flow asks for.
template <class V>
class DirectSums {
  public:
    DirectSums(const Flow<V>& flow, int n, bool inRootOrder = false)
        : n_(n),
          sign_(flow.positiveFirst()),
          pairs_(sign_ == 0 ? DirectPairs(n, inRootOrder) : DirectPairs::ascending(n)) {}

    const std::vector<long>& pairs() const { return pairs_.u; }
    V cosine(long k, const V& x0, const std::vector<V>& a) const {
        return cosineSum(pairs_, n_, k, x0, a);
    }
    V sine(long k, const std::vector<V>& d) const {
        return sign_ == 0 ? sineSum(pairs_, n_, k, d)
                          : sineSumPositiveFirst(pairs_, n_, k, d, sign_);
    }

  private:
    long n_;
    int sign_;
    DirectPairs pairs_;
};

// a = x[u] + x[n-u] and d = x[u] - x[n-u].
template <class V>
struct PairSums {
    std::vector<V> a, d;

    PairSums(const std::vector<long>& pairs, const std::vector<V>& x) {
        for (const long u : pairs) {
            const V first = narrow(x[static_cast<std::size_t>(u)]);
            const V second = narrow(x[x.size() - static_cast<std::size_t>(u)]);
            a.push_back(first + second);
            d.push_back(first - second);
        }
    }
};

template <class V>
V sumOf(const std::vector<V>& a) {
    V sum = a[0];
    for (std::size_t i = 1; i < a.size(); ++i) sum = sum + a[i];
    return sum;
}

inline Constant sineOf60() { return kernelgen::sinTurn(1, 6); }
inline Constant half() { return kernelgen::ratio(1, 2); }

template <class V>
Bins<V> directReal(Flow<V>& flow, int n, long e, const std::vector<V>& x) {
    e = modulo(e, n);
    switch (n) {
        case 1:
            return {{x[0], {}}};
        case 2: {
            const V x0 = flow.operand(x[0]);
            const V x1 = flow.operand(x[1]);
            return {{x0 + x1, {}}, {x0 - x1, {}}};
        }
        case 3: {
            const V x1 = narrow(x[1]);
            const V x2 = narrow(x[2]);
            const V a = x1 + x2;
            const V d = x1 - x2;
            const V sine = sineOf60() * d;
            return {{narrow(x[0]) + a, {}},
                    {flow.operand(x[0]) - half() * a, e == 1 ? -sine : sine}};
        }
        case 4: {
            const V x0 = narrow(x[0]), x1 = narrow(x[1]), x2 = narrow(x[2]), x3 = narrow(x[3]);
            const V a = x0 + x2;
            const V c = x0 - x2;
            const V b = x1 + x3;
            const V d = x1 - x3;
            return {{a + b, {}}, {c, e == 1 ? -d : d}, {a - b, {}}};
        }
        default:
            break;
    }
    if (n != 5 && n != 7 && n != 11) throw std::logic_error("no direct block of this length");
    const DirectSums<V> sums(flow, n);
    const PairSums<V> terms(sums.pairs(), x);
    const V x0 = narrow(x[0]);
    Bins<V> half{{sumOf(terms.a) + x0, {}}};
    for (long k = 1; k <= n / 2; ++k)
        half.push_back(
            {sums.cosine(e * k, flow.operand(x[0]), terms.a), sums.sine(-e * k, terms.d)});
    return half;
}

template <class V>
std::vector<V> directInverseReal(Flow<V>& flow, const Plan& plan, long e, const Bins<V>& z) {
    const int n = plan.length;
    e = modulo(e, n);
    switch (n) {
        case 1:
            return {z[0].re.formed()};
        case 2: {
            const V z0 = flow.operand(z[0].re);
            const V z1 = flow.operand(z[1].re);
            return {z0 + z1, z0 - z1};
        }
        case 3: {
            const V u = narrow(z[1].re);
            const V centre = narrow(flow.operand(z[0].re) - half() * flow.operand(z[1].re, ":re"));
            const V sine = narrow(product(sineOf60(), e == 1 ? z[1].im : -z[1].im));
            return {narrow(z[0].re) + u, centre - sine, centre + sine};
        }
        case 4: {
            const V z0 = narrow(z[0].re), z2 = narrow(z[2].re);
            const V re = narrow(z[1].re);
            const V im = e == 1 ? narrow(z[1].im) : -narrow(z[1].im);
            const V s = z0 + z2;
            const V d = z0 - z2;
            return {s + re, d - im, s - re, d + im};
        }
        default:
            break;
    }
    if (n != 5 && n != 7 && n != 11) throw std::logic_error("no direct block of this length");
    const DirectSums<V> cosines(flow, n, plan.inRootOrder);
    const DirectSums<V> sines(flow, n);
    std::vector<V> a, d;
    for (const long u : cosines.pairs()) a.push_back(narrow(binAt(z, n, u).re));
    for (const long u : sines.pairs()) d.push_back(narrow(binAt(z, n, u).im));
    const V z0 = narrow(z[0].re);
    std::vector<V> y(static_cast<std::size_t>(n));
    y[0] = sumOf(a) + z0;
    for (long q = 1; q <= n / 2; ++q) {
        const V c = narrow(cosines.cosine(e * q, flow.operand(z[0].re), a));
        const V s = narrow(sines.sine(e * q, d));
        y[static_cast<std::size_t>(q)] = c - s;
        y[static_cast<std::size_t>(n - q)] = c + s;
    }
    return y;
}

}  // namespace orvgen::flows
