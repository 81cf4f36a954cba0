// SPDX-License-Identifier: MIT
// The transforms of the real, the Hartley and the binary64 complex kernels on plain numbers,
// written from their formulas and rules of rounding. They share nothing with the flows: what is
// computed with them is an expectation of its own.
//
// Rounding. T is the type of the samples. Sums of values of T round to T. A product by a constant
// opens an expression of binary64, which its sums stay in until it is rounded to T, once. A minus
// costs nothing: it stands in front of the value and goes into the next sum.
#pragma once

#include <map>
#include <tuple>
#include <vector>

#include "support/real_base_forms.h"

namespace orvgen::test::written {

template <class T>
struct Value {
    double magnitude = 0;  // what the value is without the minus
    bool open = false;     // an expression that is not rounded yet
    bool minus = false;

    Value() = default;
    explicit Value(T v) : magnitude(static_cast<double>(v)) {}

    T sample() const { return static_cast<T>(minus ? -magnitude : magnitude); }

    friend Value operator-(Value a) {
        a.minus = !a.minus;
        return a;
    }
    friend Value operator+(const Value& a, const Value& b) {
        if (a.minus == b.minus) return result('+', a, b, a.minus);
        return a.minus ? result('-', b, a, false) : result('-', a, b, false);
    }
    friend Value operator-(const Value& a, const Value& b) { return a + -b; }
    friend Value operator*(double c, const Value& a) {
        const double positive = c < 0 ? -c : c;
        Value product;
        product.magnitude = positive * a.magnitude;
        product.open = sizeof(T) == 4;
        product.minus = a.minus != (c < 0);
        return product;
    }
    friend Value narrow(Value a) {
        if (!a.open) return a;
        a.magnitude = static_cast<double>(static_cast<T>(a.magnitude));
        a.open = false;
        return a;
    }
    friend Value twice(Value a) {
        a.magnitude = static_cast<double>(static_cast<T>(2) * static_cast<T>(a.magnitude));
        return a;
    }

  private:
    static Value result(char operation, const Value& a, const Value& b, bool minus) {
        Value r;
        r.open = a.open || b.open;
        r.minus = minus;
        const T x = static_cast<T>(a.magnitude), y = static_cast<T>(b.magnitude);
        if (operation == '+')
            r.magnitude = r.open ? a.magnitude + b.magnitude : static_cast<double>(x + y);
        else
            r.magnitude = r.open ? a.magnitude - b.magnitude : static_cast<double>(x - y);
        return r;
    }
};

// Constants are computed once: from many digits they take longer than all that is done with them.
template <class Compute>
double constant(char kind, long num, long den, Compute compute) {
    static std::map<std::tuple<char, long, long>, double> known;
    const auto [place, isNew] = known.try_emplace({kind, num, den});
    if (isNew) place->second = compute();
    return place->second;
}
inline double cosine(long num, long den) {
    num = (num % den + den) % den;
    const double c = constant('c', num, den, [&] { return magnitudeOf(num, den, false); });
    return 4 * num > den && 4 * num < 3 * den ? -c : c;
}
inline double sine(long num, long den) {
    num = (num % den + den) % den;
    const double s = constant('s', num, den, [&] { return magnitudeOf(num, den, true); });
    return 2 * num > den ? -s : s;
}
// That of a direct block, one of which is not rounded to nearest.
inline double directCosine(long num, long den) {
    const double c = constant('d', (num % den + den) % den, den,
                              [&] { return BaseForms<AllDouble>::cosine(num, den); });
    return cosine(num, den) < 0 ? -c : c;
}

// sin(pi/3) times the cosine or the sine, rounded once.
inline double timesSineOf60(long num, long den, bool ofSine) {
    using Big = boost::multiprecision::cpp_bin_float_50;
    return constant(ofSine ? 'S' : 'C', num, den, [&] {
        const Big angle = 2 * boost::math::constants::pi<Big>() * num / den;
        return Big(sqrt(Big(3)) / 2 * (ofSine ? sin(angle) : cos(angle)))
            .template convert_to<double>();
    });
}

template <class T>
struct RealBin {
    Value<T> re, im;
    // Where the bin is (a + i b) turned by num/den: the imaginary part times sin(pi/3) is a sum of
    // two products, too, with the constants multiplied out.
    Value<T> a, b;
    long num = 0, den = 0;
    bool conjugated = false;

    RealBin() = default;
    RealBin(const Value<T>& real) : re(real) {}
    RealBin(const Value<T>& real, const Value<T>& imaginary) : re(real), im(imaginary) {}

    friend RealBin conj(RealBin z) {
        z.im = -z.im;
        z.conjugated = !z.conjugated;
        return z;
    }
    friend Value<T> sineOf60TimesIm(const RealBin& z) {
        if (z.den == 0) return sine(1, 6) * narrow(z.im);
        const Value<T> p = timesSineOf60(z.num, z.den, false) * z.b;
        const Value<T> q = timesSineOf60(z.num, z.den, true) * z.a;
        return z.conjugated ? -p + -q : p + q;
    }
};
template <class T>
using Spectrum = std::vector<RealBin<T>>;  // bins 0 to n/2
template <class T>
using Values = std::vector<Value<T>>;

template <class T>
RealBin<T> binOf(const Spectrum<T>& half, long n, long k) {
    k = (k % n + n) % n;
    return 2 * k <= n ? half[static_cast<std::size_t>(k)]
                      : conj(half[static_cast<std::size_t>(n - k)]);
}
template <class T>
void setBin(Spectrum<T>& half, long n, long k, const RealBin<T>& z) {
    k = (k % n + n) % n;
    half[static_cast<std::size_t>(2 * k <= n ? k : n - k)] = 2 * k <= n ? z : conj(z);
}

// z exp(2 pi i num/den)
template <class T>
RealBin<T> rotated(const RealBin<T>& z, long num, long den) {
    num = (num % den + den) % den;
    RealBin<T> y;
    switch (4 * num % den == 0 ? 4 * num / den : -1) {
        case 0:
            return z;
        case 1:
            y.re = -z.im;
            y.im = z.re;
            return y;
        case 2:
            y.re = -z.re;
            y.im = -z.im;
            return y;
        case 3:
            y.re = z.im;
            y.im = -z.re;
            return y;
        default:
            break;
    }
    if (8 * num % den == 0) {
        const double root = cosine(1, 8);
        const Value<T> p = narrow(root * narrow(z.re)), r = narrow(root * narrow(z.im));
        const long octant = 8 * num / den;
        // 45 and 225 degrees; the others are these behind a quarter turn.
        y.re = octant == 1 || octant == 3 ? p - r : p + r;
        y.im = octant == 1 || octant == 3 ? r + p : r - p;
        if (octant == 3) return rotated(y, 1, 4);
        if (octant == 5) return rotated(y, 3, 4);
        return y;
    }
    const double c = cosine(num, den), s = sine(num, den);
    y.num = num;
    y.den = den;
    y.a = narrow(z.re);
    y.b = narrow(z.im);
    y.re = c * y.a + -s * y.b;
    y.im = c * y.b + s * y.a;
    return y;
}

}  // namespace orvgen::test::written
