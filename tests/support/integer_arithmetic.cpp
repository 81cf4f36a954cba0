// SPDX-License-Identifier: MIT
#include "support/integer_arithmetic.h"

namespace orvgen::test {

Outcome calculate(const Instruction& in, Value x, Value second, Value third, Flags flags) {
    const std::string& m = in.mnemonic;
    const Operand &a = in.operands[0], &b = in.operands[1];
    const int size = a.size;
    Value y = second;
    y.bits &= mask(size);
    // A register combined with itself: the result is known whatever it holds.
    const bool same = in.operandCount == 2 && b.type == Operand::Type::general &&
                      a.type == Operand::Type::general && a.number == b.number;
    Value r{0, x.known && y.known};
    const std::uint64_t sign = std::uint64_t{1} << (8 * size - 1);
    bool writes = true, carry = false, overflow = false, keepCarry = false;
    if (m == "add" || m == "inc") {
        if (m == "inc") y.bits = 1, keepCarry = true;
        r.bits = (x.bits + y.bits) & mask(size);
        carry = r.bits < x.bits;
        overflow = (~(x.bits ^ y.bits) & (x.bits ^ r.bits) & sign) != 0;
    } else if (m == "sub" || m == "cmp" || m == "dec" || m == "neg") {
        std::uint64_t from = x.bits;
        if (m == "dec") y.bits = 1, keepCarry = true;
        if (m == "neg") from = 0, y.bits = x.bits;
        r.bits = (from - y.bits) & mask(size);
        carry = from < y.bits;
        overflow = ((from ^ y.bits) & (from ^ r.bits) & sign) != 0;
        writes = m != "cmp";
        if (same) r = {0, true}, carry = overflow = false;
    } else if (m == "and" || m == "test" || m == "or" || m == "xor") {
        r.bits = m == "or" ? x.bits | y.bits : m == "xor" ? x.bits ^ y.bits : x.bits & y.bits;
        if (m == "xor" && same) r = {0, true};
        writes = m != "test";
    } else if (m == "not") {
        return {Value{~x.bits, x.known}, flags};
    } else if (m == "shl" || m == "sal" || m == "shr" || m == "sar") {
        const unsigned count = static_cast<unsigned>(y.bits) & (size == 8 ? 63U : 31U);
        if (in.operandCount < 2) throw Stop{"shift not understood"};
        if (count == 0) return {{}, flags};
        const auto value = static_cast<std::int64_t>(signExtend(x.bits, size));
        if (m == "shr") {
            r.bits = x.bits >> count;
            carry = ((x.bits >> (count - 1)) & 1) != 0;
        } else if (m == "sar") {
            r.bits = static_cast<std::uint64_t>(value >> count) & mask(size);
            carry = ((value >> (count - 1)) & 1) != 0;
        } else {
            r.bits = (x.bits << count) & mask(size);
            carry = ((x.bits << (count - 1)) & sign) != 0;
        }
    } else if (m == "imul") {
        if (in.operandCount == 1) throw Stop{"product not understood"};
        const Value p = in.operandCount == 3 ? second : x;
        const Value q = in.operandCount == 3 ? third : y;
        flags.known = false;
        return {Value{p.bits * q.bits, p.known && q.known}, flags};
    } else if (m == "bt") {
        const std::uint64_t bit = y.bits & static_cast<unsigned>(8 * size - 1);
        flags.carry = ((x.bits >> bit) & 1) != 0;
        flags.known = r.known;
        return {{}, flags};
    } else {
        throw Stop{"instruction not understood"};
    }
    const bool old = flags.carry;
    flags.setResult(r.bits, size);
    flags.carry = keepCarry ? old : carry;
    flags.overflow = overflow;
    flags.known = r.known;
    return {writes ? std::optional(r) : std::nullopt, flags};
}

}  // namespace orvgen::test
