// SPDX-License-Identifier: MIT
// Scalar flows by their bits: what the tests of the forward, the inverse and the Hartley flows
// share.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <tuple>
#include <type_traits>
#include <vector>

#include "kernelgen/number.h"
#include "support/flow_rules.h"
#include "support/real_base_forms.h"

namespace orvgen::test {

using Elements = testing::Types<float, double>;

template <class T>
inline constexpr bool isSingle = sizeof(T) == 4;
template <class T>
inline constexpr kernelgen::Arithmetic arithmeticOf =
    isSingle<T> ? kernelgen::Arithmetic::Single : kernelgen::Arithmetic::Double;
// The rules of the hand-written forms, and the unit of rounding.
template <class T>
using RulesOf = std::conditional_t<isSingle<T>, Mixed, AllDouble>;
template <class T>
inline constexpr double unitOf = isSingle<T> ? 0x1p-24 : 0x1p-53;

template <class T>
std::vector<T> randomValues(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-1, 1);
    std::vector<T> x(static_cast<std::size_t>(count));
    for (T& v : x) v = static_cast<T>(uniform(random));
    return x;
}

// 0, -0, 1 and -1 at random: sums of these show the sign of each zero.
template <class T>
std::vector<T> signedUnits(int count, unsigned seed) {
    std::mt19937 random(seed);
    const T units[] = {T(0), -T(0), T(1), T(-1)};
    std::vector<T> x(static_cast<std::size_t>(count));
    for (T& v : x) v = units[random() % (seed % 2 == 0 ? 2 : 4)];
    return x;
}

// The three factors that the flags select, as the kernels store them.
template <class T>
std::vector<double> storedScales(int n) {
    return {scaleOf(Scaling::One, n, isSingle<T>), scaleOf(Scaling::ByN, n, isSingle<T>),
            scaleOf(Scaling::BySqrtN, n, isSingle<T>)};
}

// Equal in every bit; any NaN equals any NaN.
template <class T>
bool sameBits(T a, T b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}
template <class T>
bool sameBits(const std::vector<T>& a, const std::vector<T>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](T x, T y) { return sameBits(x, y); });
}

// The samples as plain numbers that round as the flow's values do, and results of such a run,
// scaled and stored.
template <class T>
using PlainNumber = kernelgen::Number<arithmeticOf<T>>;
template <class T>
std::vector<PlainNumber<T>> plainNumbers(const std::vector<T>& x) {
    std::vector<PlainNumber<T>> plain;
    for (const T v : x) plain.emplace_back(static_cast<double>(v));
    return plain;
}
template <class T>
std::vector<T> storedNumbers(const std::vector<PlainNumber<T>>& values, double scale) {
    std::vector<T> stored;
    for (const auto& v : values) stored.push_back(static_cast<T>(scaledBy(scale, v).value()));
    return stored;
}

// |x - y| / |x| in the L2 norm, in units of rounding.
template <class T>
double relativeError(const std::vector<T>& x, const std::vector<T>& y) {
    double norm = 0, error = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double d = static_cast<double>(x[i]) - static_cast<double>(y[i]);
        norm += static_cast<double>(x[i]) * static_cast<double>(x[i]);
        error += d * d;
    }
    return std::sqrt(error / norm) / unitOf<T>;
}

// Graphs, each built when first asked for.
template <class... Key>
class Graphs {
  public:
    explicit Graphs(std::function<kernelgen::Graph(Key...)> build) : build_(std::move(build)) {}
    const kernelgen::Graph& operator()(Key... key) {
        const auto place = built_.find({key...});
        if (place != built_.end()) return place->second;
        return built_.emplace(std::tuple{key...}, build_(key...)).first->second;
    }

  private:
    std::function<kernelgen::Graph(Key...)> build_;
    std::map<std::tuple<Key...>, kernelgen::Graph> built_;
};

}  // namespace orvgen::test
