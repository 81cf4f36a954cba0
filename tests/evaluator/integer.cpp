// SPDX-License-Identifier: MIT
#include "evaluator/integer.h"

#include <bit>
#include <map>
#include <utility>

namespace orvgen::test::evaluator {
namespace {

using Word = std::uint64_t;
using Signed = std::int64_t;

constexpr Word maskOf(int bytes) { return bytes == 8 ? ~Word{0} : (Word{1} << (8 * bytes)) - 1; }
constexpr Word signOf(int bytes) { return Word{1} << (8 * bytes - 1); }
constexpr Signed extended(Word value, int bytes) {
    const Word low = value & maskOf(bytes);
    return static_cast<Signed>((low ^ signOf(bytes)) - signOf(bytes));
}

Word readRegister(const State& s, std::uint8_t number, int bytes) {
    if (number >= kHigh) return s.general[number - kHigh] >> 8 & 0xff;
    return s.general[number] & maskOf(bytes);
}
void writeRegister(State& s, std::uint8_t number, int bytes, Word value) {
    if (number >= kHigh) {
        Word& whole = s.general[number - kHigh];
        whole = (whole & ~Word{0xff00}) | (value & 0xff) << 8;
        return;
    }
    Word& whole = s.general[number];
    // Four bytes clear the upper half, fewer leave what is above them.
    whole = bytes >= 4 ? value & maskOf(bytes) : (whole & ~maskOf(bytes)) | (value & maskOf(bytes));
}

Word readMemory(const State& s, const Operation& op, int bytes) {
    Word value = 0;
    copyNumber(&value, pointer<void>(addressOf(s, op)), bytes);
    return value;
}

// The operands in their order.
Word first(const State& s, const Operation& op) {
    return op.memoryOperand == 0 ? readMemory(s, op, op.width) : readRegister(s, op.to, op.width);
}
void setFirst(State& s, const Operation& op, Word value) {
    if (op.memoryOperand != 0) return writeRegister(s, op.to, op.width, value);
    copyNumber(pointer<void>(addressOf(s, op)), &value, op.width);
}
Word second(const State& s, const Operation& op) {
    if (op.memoryOperand == 1) return readMemory(s, op, op.secondBytes);
    if (op.first != kNone) return readRegister(s, op.first, op.secondBytes);
    return static_cast<Word>(op.immediate);
}

void setResult(State& s, Word result, int bytes) {
    result &= maskOf(bytes);
    s.zero = result == 0;
    s.sign = (result & signOf(bytes)) != 0;
    s.parity = std::popcount(result & 0xff) % 2 == 0;
}

// Sum and difference with all their flags.
Word sum(State& s, Word x, Word y, int bytes) {
    const Word mask = maskOf(bytes);
    x &= mask;
    y &= mask;
    const Word r = (x + y) & mask;
    s.carry = r < x;
    s.overflow = (~(x ^ y) & (x ^ r) & signOf(bytes)) != 0;
    setResult(s, r, bytes);
    return r;
}
Word difference(State& s, Word x, Word y, bool borrow, int bytes) {
    const Word mask = maskOf(bytes);
    x &= mask;
    y &= mask;
    const Word r = (x - y - (borrow ? 1 : 0)) & mask;
    s.carry = x < y || (borrow && x == y);
    s.overflow = ((x ^ y) & (x ^ r) & signOf(bytes)) != 0;
    setResult(s, r, bytes);
    return r;
}
Word bits(State& s, Word r, int bytes) {
    s.carry = s.overflow = false;
    setResult(s, r, bytes);
    return r;
}

void add(State& s, const Operation& op) {
    setFirst(s, op, sum(s, first(s, op), second(s, op), op.width));
}
template <bool withBorrow>
void subtract(State& s, const Operation& op) {
    setFirst(s, op, difference(s, first(s, op), second(s, op), withBorrow && s.carry, op.width));
}
void compare(State& s, const Operation& op) {
    difference(s, first(s, op), second(s, op), false, op.width);
}
void bitAnd(State& s, const Operation& op) {
    setFirst(s, op, bits(s, first(s, op) & second(s, op), op.width));
}
void bitOr(State& s, const Operation& op) {
    setFirst(s, op, bits(s, first(s, op) | second(s, op), op.width));
}
void bitXor(State& s, const Operation& op) {
    setFirst(s, op, bits(s, first(s, op) ^ second(s, op), op.width));
}
void test(State& s, const Operation& op) { bits(s, first(s, op) & second(s, op), op.width); }
void bitNot(State& s, const Operation& op) { setFirst(s, op, ~first(s, op)); }
void negate(State& s, const Operation& op) {
    setFirst(s, op, difference(s, 0, first(s, op), false, op.width));
}
template <bool up>
void step(State& s, const Operation& op) {
    const bool carry = s.carry;  // is not touched
    const Word x = first(s, op);
    setFirst(s, op, up ? sum(s, x, 1, op.width) : difference(s, x, 1, false, op.width));
    s.carry = carry;
}

void move(State& s, const Operation& op) { setFirst(s, op, second(s, op)); }
void moveSigned(State& s, const Operation& op) {
    setFirst(s, op, static_cast<Word>(extended(second(s, op), op.secondBytes)));
}
void loadAddress(State& s, const Operation& op) { setFirst(s, op, addressOf(s, op)); }
void exchange(State& s, const Operation& op) {
    const Word x = first(s, op);
    setFirst(s, op, second(s, op));
    writeRegister(s, op.first, op.width, x);
}
// The evaluator is alone on its memory.
void compareExchange(State& s, const Operation& op) {
    const Word found = first(s, op);
    difference(s, s.general[rax], found, false, op.width);
    if (s.zero)
        setFirst(s, op, second(s, op));
    else
        writeRegister(s, rax, op.width, found);
}

unsigned shiftCount(const State& s, const Operation& op) {
    return static_cast<unsigned>(second(s, op)) & (op.width == 8 ? 63U : 31U);
}
enum class Shift { left, right, arithmetic };
template <Shift which>
void shift(State& s, const Operation& op) {
    const unsigned count = shiftCount(s, op);
    if (count == 0) return;
    const Word x = first(s, op), last = Word{1} << (count - 1);
    Word r = 0;
    if constexpr (which == Shift::left) {
        r = x << count;
        s.carry = (x << (count - 1) & signOf(op.width)) != 0;
        s.overflow = s.carry != ((r & signOf(op.width)) != 0);
    } else if constexpr (which == Shift::right) {
        r = x >> count;
        s.carry = (x & last) != 0;
        s.overflow = (x & signOf(op.width)) != 0;
    } else {
        r = static_cast<Word>(extended(x, op.width) >> count);
        s.carry = (static_cast<Word>(extended(x, op.width)) & last) != 0;
        s.overflow = false;
    }
    setResult(s, r, op.width);
    setFirst(s, op, r);
}
void rotateRight(State& s, const Operation& op) {
    const unsigned count = shiftCount(s, op) % (8U * op.width);
    if (count == 0) return;
    const Word x = first(s, op);
    const Word r = x >> count | x << (8U * op.width - count);
    s.carry = (r & signOf(op.width)) != 0;
    setFirst(s, op, r);
}

__extension__ using Wide = __int128;
__extension__ using UnsignedWide = unsigned __int128;
void multiplyTwo(State& s, const Operation& op) {
    const bool three = op.operands == 3;  // the last one is a number
    const Word x = three ? second(s, op) : first(s, op);
    const Word y = three ? static_cast<Word>(op.immediate) : second(s, op);
    const Wide product = static_cast<Wide>(extended(x, op.width)) * extended(y, op.width);
    const Word r = static_cast<Word>(product);
    s.carry = s.overflow = product != extended(r, op.width);
    setFirst(s, op, r);
}
// By rax, into rdx and rax.
void multiplyOne(State& s, const Operation& op) {
    if (op.width < 4) throw Stop{"a product of short registers"};
    const Wide product =
        static_cast<Wide>(extended(s.general[rax], op.width)) * extended(first(s, op), op.width);
    writeRegister(s, rax, op.width, static_cast<Word>(product));
    writeRegister(s, rdx, op.width, static_cast<Word>(product >> (8 * op.width)));
    s.carry = s.overflow = product != extended(s.general[rax], op.width);
}
template <bool isSigned>
void divide(State& s, const Operation& op) {
    if (op.width < 4) throw Stop{"a quotient of short registers"};
    const Word divisor = first(s, op), mask = maskOf(op.width);
    const auto dividend = static_cast<UnsignedWide>(s.general[rdx] & mask) << (8 * op.width) |
                          (s.general[rax] & mask);
    if (divisor == 0) throw Stop{"a division by zero"};
    if constexpr (isSigned) {
        const int unused = 128 - 16 * op.width;
        const Wide number = static_cast<Wide>(dividend << unused) >> unused;
        const Signed by = extended(divisor, op.width);
        writeRegister(s, rax, op.width, static_cast<Word>(number / by));
        writeRegister(s, rdx, op.width, static_cast<Word>(number % by));
    } else {
        writeRegister(s, rax, op.width, static_cast<Word>(dividend / divisor));
        writeRegister(s, rdx, op.width, static_cast<Word>(dividend % divisor));
    }
}
// The sign of rax in all bits of rdx, and that of eax in the upper half of rax.
void spreadSign(State& s, const Operation&) {
    s.general[rdx] = extended(s.general[rax], 8) < 0 ? ~Word{0} : 0;
}
void extendRax(State& s, const Operation&) {
    s.general[rax] = static_cast<Word>(extended(s.general[rax], 4));
}

void testBit(State& s, const Operation& op) {
    if (op.memoryOperand == 0 && op.first != kNone) throw Stop{"a bit of a string of bits"};
    s.carry = (first(s, op) >> (second(s, op) & (8U * op.width - 1)) & 1) != 0;
}
bool holds(const State& s, std::uint8_t condition) {
    const bool values[] = {s.overflow,
                           s.carry,
                           s.zero,
                           s.carry || s.zero,
                           s.sign,
                           s.parity,
                           s.sign != s.overflow,
                           s.zero || s.sign != s.overflow};
    return values[condition / 2] != (condition % 2 == 1);
}
// By their numbers in the encoding; an odd one is the opposite of the one before it.
const std::map<std::string_view, std::uint8_t> conditions = {
    {"o", 0}, {"no", 1}, {"b", 2},  {"nb", 3},  {"z", 4},  {"nz", 5},  {"be", 6},  {"nbe", 7},
    {"s", 8}, {"ns", 9}, {"p", 10}, {"np", 11}, {"l", 12}, {"nl", 13}, {"le", 14}, {"nle", 15}};

void set(State& s, const Operation& op) { setFirst(s, op, holds(s, op.condition) ? 1 : 0); }
void moveIf(State& s, const Operation& op) {
    // The operand is read in any case, and the upper half of the register is cleared.
    const Word y = second(s, op);
    setFirst(s, op, holds(s, op.condition) ? y : first(s, op));
}
void jumpIf(State& s, const Operation& op) {
    if (holds(s, op.condition)) s.next = static_cast<Word>(op.immediate);
}

Word destination(const State& s, const Operation& op) {
    const bool isRelative = op.memoryOperand == kNone && op.to == kNone;
    return isRelative ? static_cast<Word>(op.immediate) : first(s, op);
}
void jump(State& s, const Operation& op) { s.next = destination(s, op); }
void call(State& s, const Operation& op) {
    const Word to = destination(s, op);
    push(s, s.next);
    s.next = to;
}
void ret(State& s, const Operation&) { s.next = pop(s); }
void pushOperand(State& s, const Operation& op) {
    const bool isImmediate = op.memoryOperand == kNone && op.to == kNone;
    push(s, isImmediate ? static_cast<Word>(op.immediate) : first(s, op));
}
void popOperand(State& s, const Operation& op) { setFirst(s, op, pop(s)); }
void leave(State& s, const Operation&) {
    s.general[rsp] = s.general[rbp];
    s.general[rbp] = pop(s);
}
void nothing(State&, const Operation&) {}

// The answers that tell of wide vectors; all else is zero.
void identify(State& s, const Operation&) {
    const Features& f = s.features;
    const auto leaf = static_cast<std::uint32_t>(s.general[rax]);
    const auto part = static_cast<std::uint32_t>(s.general[rcx]);
    const auto bit = [](bool is, int at) { return is ? Word{1} << at : 0; };
    Word a = 0, b = 0, c = 0, d = 0;
    if (leaf == 0) a = 7;
    if (leaf == 1) c = bit(f.hasAvx, 27) | bit(f.hasAvx, 28);
    if (leaf == 7 && part == 0)
        b = bit(f.hasAvx2, 5) | bit(f.hasAvx512, 16) | bit(f.hasAvx512 && f.hasAvx512Dq, 17) |
            bit(f.hasAvx512, 31);
    s.general[rax] = a;
    s.general[rbx] = b;
    s.general[rcx] = c;
    s.general[rdx] = d;
}
void tellStates(State& s, const Operation&) {
    if (!s.features.hasAvx) throw Stop{"xgetbv on a processor that does not have it"};
    s.general[rax] = 0x3U | (s.features.keepsWide ? 0x4U : 0U) |
                     (s.features.keepsWide && s.features.keepsWidest ? 0xe0U : 0U);
    s.general[rdx] = 0;
}

const std::map<std::string_view, Handler> plain = {
    {"add", add},
    {"and", bitAnd},
    {"bt", testBit},
    {"call", call},
    {"cdqe", extendRax},
    {"cmp", compare},
    {"cmpxchg", compareExchange},
    {"cpuid", identify},
    {"cqo", spreadSign},
    {"dec", step<false>},
    {"div", divide<false>},
    {"endbr64", nothing},
    {"idiv", divide<true>},
    {"inc", step<true>},
    {"jmp", jump},
    {"lea", loadAddress},
    {"leave", leave},
    {"mov", move},
    {"movsx", moveSigned},
    {"movsxd", moveSigned},
    {"movzx", move},
    {"neg", negate},
    {"nop", nothing},
    {"not", bitNot},
    {"or", bitOr},
    {"pop", popOperand},
    {"prefetcht0", nothing},
    {"push", pushOperand},
    {"ret", ret},
    {"ror", rotateRight},
    {"sar", shift<Shift::arithmetic>},
    {"sbb", subtract<true>},
    {"shl", shift<Shift::left>},
    {"shr", shift<Shift::right>},
    {"sub", subtract<false>},
    {"test", test},
    {"xchg", exchange},
    {"xgetbv", tellStates},
    {"xor", bitXor},
};

}  // namespace

Handler integerHandler(std::string_view name, Operation& op) {
    if (const auto it = plain.find(name); it != plain.end()) return it->second;
    if (name == "imul") return op.operands == 1 ? multiplyOne : multiplyTwo;
    const std::pair<std::string_view, Handler> conditional[] = {
        {"cmov", moveIf}, {"set", set}, {"j", jumpIf}};
    for (const auto& [start, handler] : conditional) {
        if (!name.starts_with(start)) continue;
        const auto it = conditions.find(name.substr(start.size()));
        if (it == conditions.end()) continue;
        op.condition = it->second;
        return handler;
    }
    return nullptr;
}

}  // namespace orvgen::test::evaluator
