// SPDX-License-Identifier: MIT
#include "lane_values.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <span>
#include <stdexcept>

namespace orvgen::test {

namespace {

using Form = LaneExpression::Form;

}  // namespace

LaneRun::LaneRun(const MachineCode& code, const Trace& trace) : code_(code) {
    expressions_.emplace_back();
    for (const Step& step : trace.steps)
        if (step.instruction->vector()) run(step);
}

// ---- expressions

LaneValue LaneRun::expression(const LaneExpression& e) {
    const auto [place, isNew] = numbers_.try_emplace({e.form, e.a, e.b, e.relative, e.constant},
                                                     static_cast<int>(expressions_.size()));
    if (isNew) expressions_.push_back(e);
    return {place->second, 1};
}

LaneValue LaneRun::constant(float value) {
    if (value == 0) return {};
    LaneExpression e;
    e.form = Form::constant;
    e.constant = std::abs(value);
    LaneValue v = expression(e);
    v.sign = value < 0 ? -1 : 1;
    return v;
}

LaneValue LaneRun::input(std::int64_t offset) {
    LaneExpression e;
    e.form = Form::input;
    e.a = static_cast<int>(offset / 8);
    e.b = static_cast<int>(offset / 4 % 2);
    e.elements.set(static_cast<std::size_t>(e.a));
    (e.b == 0 ? e.real : e.imaginary) = true;
    return expression(e);
}

LaneValue LaneRun::sum(const LaneValue& a, const LaneValue& b) {
    if (a.id == 0) return b;
    if (b.id == 0) return a;
    const bool inOrder = a.id <= b.id;
    const LaneValue &first = inOrder ? a : b, &second = inOrder ? b : a;
    LaneExpression e;
    e.form = Form::sum;
    e.a = first.id;
    e.b = second.id;
    e.relative = first.sign * second.sign;
    e.elements = of(a).elements | of(b).elements;
    e.real = of(a).real || of(b).real;
    e.imaginary = of(a).imaginary || of(b).imaginary;
    return {expression(e).id, first.sign};
}

LaneValue LaneRun::product(const LaneValue& a, const LaneValue& b) {
    const bool bIsFactor = of(b).form == Form::constant || of(b).form == Form::scale;
    const LaneValue &value = bIsFactor ? a : b, &factor = bIsFactor ? b : a;
    if (a.id == 0 || b.id == 0) return {};
    const LaneExpression &f = of(factor), &v = of(value);
    const bool scales = f.form == Form::scale;
    if (!scales && f.form != Form::constant) throw std::runtime_error("a product of two values");
    if (v.form == Form::constant || v.form == Form::scale || v.form == Form::scaled)
        throw std::runtime_error("a product of no value of the transform");
    const int sign = value.sign * factor.sign;
    if (!scales && f.constant == 1) return {value.id, sign};
    LaneExpression e = v;
    e.form = scales ? Form::scaled : Form::product;
    e.a = value.id;
    e.b = 0;
    e.relative = 1;
    e.constant = scales ? 0 : f.constant;
    return {expression(e).id, sign};
}

// ---- instructions

// As many lanes as are read; the others are zero.
LaneRun::Four LaneRun::load(const Access& access) {
    Four lanes{};
    const auto count = static_cast<std::size_t>(access.size / 4);
    const auto bytes = access.region == Region::constants
                           ? code_.image().bytes(static_cast<std::uint64_t>(access.offset),
                                                 static_cast<std::uint64_t>(access.size))
                           : std::span<const std::uint8_t>();
    for (std::size_t i = 0; i < count; ++i) {
        const std::int64_t at = access.offset + static_cast<std::int64_t>(4 * i);
        switch (access.region) {
            case Region::src:
                lanes[i] = input(at);
                break;
            case Region::frame:
                lanes[i] = frame_.at(at);
                break;
            case Region::constants:
                // The one constant that is loaded by itself is the scale.
                if (access.size == 4) {
                    LaneExpression e;
                    e.form = Form::scale;
                    lanes[i] = expression(e);
                } else {
                    float value = 0;
                    std::memcpy(&value, bytes.data() + 4 * i, sizeof value);
                    lanes[i] = constant(value);
                }
                break;
            default:
                throw std::runtime_error("a load from nowhere");
        }
    }
    return lanes;
}

void LaneRun::store(const Access& access, const LaneValue* lanes) {
    auto& memory = access.region == Region::dst ? dst_ : frame_;
    if (access.region != Region::dst && access.region != Region::frame)
        throw std::runtime_error("a store to nowhere");
    for (int i = 0; i < access.size / 4; ++i) memory[access.offset + 4 * i] = lanes[i];
}

void LaneRun::arithmetic(const std::string& operation, Four& a, const Four& b) {
    const bool multiplies = operation == "mulps";
    for (std::size_t i = 0; i < 4; ++i) {
        LaneValue second = b[i];
        if (operation == "subps") second.sign = -second.sign;
        const bool scales = of(a[i]).form == Form::scale || of(second).form == Form::scale;
        a[i] = multiplies ? product(a[i], second) : sum(a[i], second);
        if (scales) continue;
        const long isLive = a[i].id != 0;
        (multiplies ? executed_.multiplications : executed_.additions) += 1;
        (multiplies ? live_.multiplications : live_.additions) += isLive;
    }
}

void LaneRun::run(const Step& step) {
    const Instruction& in = *step.instruction;
    const std::string& m = in.mnemonic;
    const Operand &to = in.operands[0], &from = in.operands[1];
    if (in.stores()) {
        const Four& v = registers_[static_cast<std::size_t>(from.number)];
        store(*step.access, v.data() + (m == "movhps" ? 2 : 0));
        return;
    }
    const bool memory = from.type == Operand::Type::memory;
    const Four b = memory ? load(*step.access) : registers_[static_cast<std::size_t>(from.number)];
    Four& a = registers_[static_cast<std::size_t>(to.number)];
    if (m == "movaps" || m == "movups" || (memory && (m == "movss" || m == "movsd"))) {
        a = b;
    } else if ((memory && m == "movlps") || (!memory && m == "movsd")) {
        a = {b[0], b[1], a[2], a[3]};
    } else if ((memory && m == "movhps") || m == "movlhps") {
        a = {a[0], a[1], b[0], b[1]};
    } else if (m == "movhlps") {
        a = {b[2], b[3], a[2], a[3]};
    } else if (m == "unpcklps") {
        a = {a[0], b[0], a[1], b[1]};
    } else if (m == "unpckhps") {
        a = {a[2], b[2], a[3], b[3]};
    } else if (m == "shufps") {
        const auto lane = [&](int i) {
            return static_cast<std::size_t>(in.operands[2].value >> (2 * i) & 3);
        };
        a = {a[lane(0)], a[lane(1)], b[lane(2)], b[lane(3)]};
    } else if (in.clears) {
        a = {};
    } else if (m == "addps" || m == "subps" || m == "mulps") {
        arithmetic(m, a, b);
    } else {
        throw std::runtime_error("no instruction of a complex binary32 kernel: " + in.text);
    }
}

// ---- what came out

LaneTotals LaneRun::distinct() const {
    LaneTotals t;
    for (const LaneExpression& e : expressions_) {
        t.additions += e.form == Form::sum;
        t.multiplications += e.form == Form::product;
    }
    return t;
}

long LaneRun::mixed() const {
    return std::ranges::count_if(expressions_, [](const LaneExpression& e) {
        return e.form == Form::product && e.real && e.imaginary;
    });
}

long LaneRun::productsBy(double magnitude, double tolerance) const {
    return std::ranges::count_if(expressions_, [&](const LaneExpression& e) {
        return e.form == Form::product &&
               std::abs(static_cast<double>(e.constant) - magnitude) <= tolerance;
    });
}

std::vector<LaneValue> LaneRun::results() const {
    std::vector<LaneValue> values;
    for (const auto& [offset, value] : dst_) {
        if (offset != static_cast<std::int64_t>(4 * values.size()))
            throw std::runtime_error("a gap in dst");
        const LaneExpression& e = of(value);
        if (e.form != Form::scaled)
            throw std::runtime_error("a result that the scale was not multiplied into last");
        values.push_back({e.a, value.sign});
    }
    return values;
}

std::vector<Elements> LaneRun::reached() const {
    std::vector<Elements> reach(expressions_.size());
    for (const auto& [offset, value] : dst_)
        reach[static_cast<std::size_t>(value.id)].set(static_cast<std::size_t>(offset / 8));
    // An expression is made after its operands.
    for (std::size_t i = expressions_.size(); i-- > 0;) {
        const LaneExpression& e = expressions_[i];
        const bool isSum = e.form == Form::sum;
        if (!isSum && e.form != Form::product && e.form != Form::scaled) continue;
        reach[static_cast<std::size_t>(e.a)] |= reach[i];
        if (isSum) reach[static_cast<std::size_t>(e.b)] |= reach[i];
    }
    return reach;
}

}  // namespace orvgen::test
