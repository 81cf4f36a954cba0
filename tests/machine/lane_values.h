// SPDX-License-Identifier: MIT
// What the lanes of a complex binary32 kernel hold, read from its machine code: one run of the
// instructions (integer_core.h) with expressions of the input in place of numbers. Every addition
// and every product of every lane is seen, whatever brought its operands there.
//
// Equal operations on equal values are one expression; a value and its negation are one expression
// with two signs. A sum with zero is the other term; a product by zero is zero, by 1 and -1 the
// value itself.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "support/integer_core.h"

namespace orvgen::test {

constexpr std::size_t maxElements = 66;  // of src, with the one behind it
using Elements = std::bitset<maxElements>;

struct LaneValue {
    int id = 0;  // 0: the number zero
    int sign = 1;
    bool operator==(const LaneValue&) const = default;
};

struct LaneExpression {
    enum class Form { zero, constant, scale, input, sum, product, scaled };
    Form form = Form::zero;
    int a = 0, b = 0;    // operands; of an input the element and the part
    int relative = 1;    // of a sum: sign of b against a
    float constant = 0;  // not negative
    Elements elements;   // of src that it depends on
    bool real = false;   // depends on a real part
    bool imaginary = false;
};

struct LaneTotals {
    long additions = 0;
    long multiplications = 0;
    bool operator==(const LaneTotals&) const = default;
};

class LaneRun {
  public:
    LaneRun(const MachineCode& code, const Trace& trace);

    // Products by the scale are in none of these.
    LaneTotals executed() const { return executed_; }  // in all lanes
    LaneTotals live() const { return live_; }          // whose result is not zero
    LaneTotals distinct() const;                       // different expressions
    // Of the distinct products those of a value that depends on real and on imaginary parts.
    long mixed() const;
    // Different products by this constant, within `tolerance`, up to sign.
    long productsBy(double magnitude, double tolerance) const;

    const std::vector<LaneExpression>& expressions() const { return expressions_; }
    // What stands in dst at the end, real and imaginary parts in turn: the product of a value and
    // the scale. Throws where it is anything else.
    std::vector<LaneValue> results() const;
    // For each expression the elements of dst that depend on it.
    std::vector<Elements> reached() const;

  private:
    using Four = std::array<LaneValue, 4>;
    using Key = std::tuple<LaneExpression::Form, int, int, int, float>;

    void run(const Step& step);
    Four load(const Access& access);
    void store(const Access& access, const LaneValue* lanes);
    void arithmetic(const std::string& operation, Four& a, const Four& b);

    LaneValue expression(const LaneExpression& e);
    LaneValue constant(float value);
    LaneValue input(std::int64_t offset);
    LaneValue sum(const LaneValue& a, const LaneValue& b);
    LaneValue product(const LaneValue& a, const LaneValue& b);
    const LaneExpression& of(const LaneValue& v) const {
        return expressions_[static_cast<std::size_t>(v.id)];
    }

    const MachineCode& code_;
    std::vector<LaneExpression> expressions_;
    std::map<Key, int> numbers_;
    std::array<Four, 16> registers_{};
    std::map<std::int64_t, LaneValue> frame_, dst_;  // by byte offset
    LaneTotals executed_, live_;
};

}  // namespace orvgen::test
