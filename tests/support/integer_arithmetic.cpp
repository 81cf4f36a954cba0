// SPDX-License-Identifier: MIT
#include "support/integer_arithmetic.h"

namespace orvgen::test {
namespace {

// A result of `size` bytes, with what the result alone does not say of the flags.
struct Calculation {
    Value value;
    bool carry = false, overflow = false;
    bool keepsCarry = false;
    bool isWritten = true;
};

std::uint64_t signBit(int size) { return std::uint64_t{1} << (8 * size - 1); }

Calculation sum(const std::string& m, Value x, Value y, int size) {
    const bool counts = m == "inc";
    if (counts) y.bits = 1;
    Calculation c{.value = {(x.bits + y.bits) & mask(size), x.known && y.known}};
    c.carry = c.value.bits < x.bits;
    c.overflow = (~(x.bits ^ y.bits) & (x.bits ^ c.value.bits) & signBit(size)) != 0;
    c.keepsCarry = counts;
    return c;
}

// `isSame`: of a register and itself.
Calculation difference(const std::string& m, Value x, Value y, int size, bool isSame) {
    const bool known = x.known && y.known;
    std::uint64_t from = x.bits;
    if (m == "dec") y.bits = 1;
    if (m == "neg") from = 0, y.bits = x.bits;
    Calculation c{.value = {(from - y.bits) & mask(size), known}};
    c.carry = from < y.bits;
    c.overflow = ((from ^ y.bits) & (from ^ c.value.bits) & signBit(size)) != 0;
    c.keepsCarry = m == "dec";
    c.isWritten = m != "cmp";
    if (isSame) c.value = {0, true}, c.carry = c.overflow = false;
    return c;
}

Calculation bitwise(const std::string& m, Value x, Value y, bool isSame) {
    const std::uint64_t bits = m == "or"    ? x.bits | y.bits
                               : m == "xor" ? x.bits ^ y.bits
                                            : x.bits & y.bits;
    Calculation c{.value = {bits, x.known && y.known}};
    if (m == "xor" && isSame) c.value = {0, true};
    c.isWritten = m != "test";
    return c;
}

// By one bit and more.
Calculation shift(const std::string& m, Value x, unsigned count, int size, bool isKnown) {
    const auto value = static_cast<std::int64_t>(signExtend(x.bits, size));
    if (m == "shr")
        return {.value = {x.bits >> count, isKnown}, .carry = ((x.bits >> (count - 1)) & 1) != 0};
    if (m == "sar")
        return {.value = {static_cast<std::uint64_t>(value >> count) & mask(size), isKnown},
                .carry = ((value >> (count - 1)) & 1) != 0};
    return {.value = {(x.bits << count) & mask(size), isKnown},
            .carry = ((x.bits << (count - 1)) & signBit(size)) != 0};
}

}  // namespace

Outcome calculate(const Instruction& in, Value x, Value second, Value third, Flags flags) {
    const std::string& m = in.mnemonic;
    const Operand &a = in.operands[0], &b = in.operands[1];
    const int size = a.size;
    Value y = second;
    y.bits &= mask(size);
    // A register combined with itself: the result is known whatever it holds.
    const bool isSame = in.operandCount == 2 && b.type == Operand::Type::general &&
                        a.type == Operand::Type::general && a.number == b.number;
    Calculation c;
    if (m == "add" || m == "inc") {
        c = sum(m, x, y, size);
    } else if (m == "sub" || m == "cmp" || m == "dec" || m == "neg") {
        c = difference(m, x, y, size, isSame);
    } else if (m == "and" || m == "test" || m == "or" || m == "xor") {
        c = bitwise(m, x, y, isSame);
    } else if (m == "not") {
        return {Value{~x.bits, x.known}, flags};
    } else if (m == "shl" || m == "sal" || m == "shr" || m == "sar") {
        const unsigned count = static_cast<unsigned>(y.bits) & (size == 8 ? 63U : 31U);
        if (in.operandCount < 2) throw Stop{"shift not understood"};
        if (count == 0) return {{}, flags};
        c = shift(m, x, count, size, x.known && y.known);
    } else if (m == "imul") {
        if (in.operandCount == 1) throw Stop{"product not understood"};
        const Value p = in.operandCount == 3 ? second : x;
        const Value q = in.operandCount == 3 ? third : y;
        flags.known = false;
        return {Value{p.bits * q.bits, p.known && q.known}, flags};
    } else if (m == "bt") {
        const std::uint64_t bit = y.bits & static_cast<unsigned>(8 * size - 1);
        flags.carry = ((x.bits >> bit) & 1) != 0;
        flags.known = x.known && y.known;
        return {{}, flags};
    } else {
        throw Stop{"instruction not understood"};
    }
    const bool old = flags.carry;
    flags.setResult(c.value.bits, size);
    flags.carry = c.keepsCarry ? old : c.carry;
    flags.overflow = c.overflow;
    flags.known = c.value.known;
    return {c.isWritten ? std::optional(c.value) : std::nullopt, flags};
}

}  // namespace orvgen::test
