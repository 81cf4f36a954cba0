// SPDX-License-Identifier: MIT
#include "constant.h"

#include <map>
#include <numeric>
#include <tuple>

#include "real.h"

namespace orvgen::kernelgen {

namespace {

const Real& pi() {
    static const Real value = boost::math::constants::pi<Real>();
    return value;
}

// cos(2 pi num/den) for 0 <= num/den <= 1/8, or sin when `sine`.
Real octant(long num, long den, bool sine) {
    if (num == 0) return sine ? Real(0) : Real(1);
    if (12 * num == den && sine) return Real(1) / 2;
    // A flow asks for few angles and for each of them often.
    static std::map<std::tuple<long, long, bool>, Real> known;
    const long common = std::gcd(num, den);
    const auto [place, isNew] = known.try_emplace({num / common, den / common, sine});
    if (isNew) {
        const Real angle = 2 * pi() * num / den;
        place->second = sine ? Real(sin(angle)) : Real(cos(angle));
    }
    return place->second;
}

// cos(2 pi num/den) by reflections: half circle, quarter circle, octant.
Real cosineOf(long num, long den) {
    num %= den;
    if (num < 0) num += den;
    if (2 * num > den) num = den - num;
    if (4 * num > den) return -cosineOf(den - 2 * num, 2 * den);
    if (4 * num == den) return 0;
    if (8 * num <= den) return octant(num, den, false);
    return octant(den - 4 * num, 4 * den, true);  // cos(a) = sin(quarter - a)
}

std::string turnText(const char* function, long num, long den) {
    const long common = std::gcd(num, den);
    return std::string(function) + "(2pi*" + std::to_string(num / common) + "/" +
           std::to_string(den / common) + ")";
}

Constant makeConstant(const Real& value, std::string formula) {
    return {ExactReal{value}, std::move(formula)};
}

}  // namespace

Constant::Constant() : Constant(0) {}

Constant::Constant(int value) : Constant(ExactReal{value}, std::to_string(value)) {}

Constant::Constant(const ExactReal& value, std::string formula)
    : value_(std::make_shared<const ExactReal>(value)), formula_(std::move(formula)) {}

bool Constant::isZero() const { return value_->value == 0; }

bool Constant::isNegative() const { return value_->value < 0; }

bool Constant::equals(int value) const { return value_->value == value; }

// A zero is stored as +0.0, also where it came out as minus the sine of nothing.
float Constant::asFloat() const { return isZero() ? 0.0F : value_->value.convert_to<float>(); }

double Constant::asDouble() const {
    if (stored_) return *stored_;
    return isZero() ? 0.0 : value_->value.convert_to<double>();
}

Constant Constant::pinnedTo(double stored) const {
    Constant c = *this;
    c.stored_ = stored;
    return c;
}

Constant Constant::magnitude() const { return isNegative() ? -*this : *this; }

Constant operator-(const Constant& a) {
    Constant c = makeConstant(
        -a.exact().value, a.formula_.rfind("-", 0) == 0 ? a.formula_.substr(1) : "-" + a.formula_);
    if (a.stored_) c.stored_ = -*a.stored_;
    return c;
}

Constant operator*(const Constant& a, const Constant& b) {
    return makeConstant(a.exact().value * b.exact().value, a.formula_ + "*" + b.formula_);
}

Constant operator+(const Constant& a, const Constant& b) {
    return makeConstant(a.exact().value + b.exact().value,
                        "(" + a.formula_ + " + " + b.formula_ + ")");
}

Constant operator-(const Constant& a, const Constant& b) {
    return makeConstant(a.exact().value - b.exact().value,
                        "(" + a.formula_ + " - " + b.formula_ + ")");
}

Constant cosTurn(long num, long den) {
    return makeConstant(cosineOf(num, den), turnText("cos", num, den));
}

Constant sinTurn(long num, long den) {
    // sin(a) = cos(a - quarter), as integers over 4 den
    return makeConstant(cosineOf(4 * num - den, 4 * den), turnText("sin", num, den));
}

Constant ratio(long num, long den) {
    const std::string text =
        den == 1 ? std::to_string(num) : std::to_string(num) + "/" + std::to_string(den);
    return makeConstant(Real(num) / den, text);
}

Constant squareRoot(long n) {
    return makeConstant(sqrt(Real(n)), "sqrt(" + std::to_string(n) + ")");
}

}  // namespace orvgen::kernelgen
