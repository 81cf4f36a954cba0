#include "constant.h"

#include <map>
#include <numeric>
#include <tuple>

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

}  // namespace

// A zero is stored as +0.0, also where it came out as minus the sine of nothing.
float Constant::asFloat() const { return isZero() ? 0.0F : value_.convert_to<float>(); }

double Constant::asDouble() const {
    if (stored_) return *stored_;
    return isZero() ? 0.0 : value_.convert_to<double>();
}

Constant Constant::pinnedTo(double stored) const {
    Constant c = *this;
    c.stored_ = stored;
    return c;
}

Constant Constant::magnitude() const { return isNegative() ? -*this : *this; }

Constant operator-(const Constant& a) {
    Constant c(-a.value_, a.formula_.rfind("-", 0) == 0 ? a.formula_.substr(1) : "-" + a.formula_);
    if (a.stored_) c.stored_ = -*a.stored_;
    return c;
}

Constant operator*(const Constant& a, const Constant& b) {
    return {a.value_ * b.value_, a.formula_ + "*" + b.formula_};
}

Constant operator+(const Constant& a, const Constant& b) {
    return {a.value_ + b.value_, "(" + a.formula_ + " + " + b.formula_ + ")"};
}

Constant operator-(const Constant& a, const Constant& b) {
    return {a.value_ - b.value_, "(" + a.formula_ + " - " + b.formula_ + ")"};
}

Constant cosTurn(long num, long den) { return {cosineOf(num, den), turnText("cos", num, den)}; }

Constant sinTurn(long num, long den) {
    // sin(a) = cos(a - quarter), as integers over 4 den
    return {cosineOf(4 * num - den, 4 * den), turnText("sin", num, den)};
}

Constant ratio(long num, long den) {
    const std::string text =
        den == 1 ? std::to_string(num) : std::to_string(num) + "/" + std::to_string(den);
    return {Real(num) / den, text};
}

Constant squareRoot(long n) { return {sqrt(Real(n)), "sqrt(" + std::to_string(n) + ")"}; }

}  // namespace orvgen::kernelgen
