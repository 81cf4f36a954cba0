// A value that counts what a flow does with it: additions, subtractions, products, the magnitudes
// of its constants, and which pairs of inputs meet in one operation.
#pragma once

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "dct4/flows/complex.h"

namespace orvgen::test::dct4 {

struct Tally {
    long add = 0, sub = 0, mul = 0;
    std::set<double> magnitudes;          // of built-in multipliers
    std::set<std::pair<int, int>> pairs;  // inputs that meet, the larger number first
};

class Counted {
  public:
    Counted() = default;
    static Counted input(int number) { return Counted(number, 0); }
    static Counted constant(double value) { return Counted(-1, value); }

    static Tally& tally() {
        static Tally current;
        return current;
    }

    friend Counted operator+(Counted a, Counted b) {
        ++tally().add;
        return met(a, b);
    }
    friend Counted operator-(Counted a, Counted b) {
        ++tally().sub;
        return met(a, b);
    }
    friend Counted operator*(Counted a, Counted) {
        ++tally().mul;
        if (a.value != 0) tally().magnitudes.insert(std::abs(a.value));
        return {};
    }

  private:
    Counted(int inputNumber, double constantValue) : number(inputNumber), value(constantValue) {}
    static Counted met(Counted a, Counted b) {
        if (a.number >= 0 && b.number >= 0) {
            tally().pairs.insert({std::max(a.number, b.number), std::min(a.number, b.number)});
        }
        return {};
    }

    int number = -1;   // of an input of the flow
    double value = 0;  // of a built-in constant
};

}  // namespace orvgen::test::dct4

template <>
struct orvgen::dct4::Values<orvgen::test::dct4::Counted> {
    template <Trig which, int num, int den>
    static orvgen::test::dct4::Counted of(Constant<which, num, den> constant) {
        return orvgen::test::dct4::Counted::constant(valueOf<double>(constant));
    }
    static orvgen::test::dct4::Counted zero() { return {}; }
};
