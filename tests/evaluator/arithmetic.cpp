// SPDX-License-Identifier: MIT
#include "evaluator/arithmetic.h"

#include <emmintrin.h>

#include <map>

#include "evaluator/vectors.h"

namespace orvgen::test::evaluator {
namespace {

// The instructions themselves: a compiler may turn the operands of a sum round, which the payload
// of a NaN shows, and knows nothing of the control word.
#define OPERATION(NAME, SINGLE, DOUBLE)                        \
    struct NAME {                                              \
        static __m128 of(__m128 a, __m128 b) {                 \
            asm volatile(SINGLE " %1, %0" : "+x"(a) : "x"(b)); \
            return a;                                          \
        }                                                      \
        static __m128d of(__m128d a, __m128d b) {              \
            asm volatile(DOUBLE " %1, %0" : "+x"(a) : "x"(b)); \
            return a;                                          \
        }                                                      \
    };
OPERATION(Add, "addps", "addpd")
OPERATION(Subtract, "subps", "subpd")
OPERATION(Multiply, "mulps", "mulpd")
#undef OPERATION

template <class T>
struct Part;
template <>
struct Part<float> {
    using Type = __m128;
};
template <>
struct Part<double> {
    using Type = __m128d;
};

// Of elements of type T. Where there are fewer than fill 16 bytes, zeros stand beside them, of
// which no operation here raises anything.
template <class Operator, class T>
auto apply(const Vector& a, const Vector& b, int at, int bytes) {
    typename Part<T>::Type x{}, y{};
    copyBytes(&x, bytesOf(a) + at, bytes);
    copyBytes(&y, bytesOf(b) + at, bytes);
    return Operator::of(x, y);
}

template <class Operator, class T>
void packed(State& s, const Operation& op) {
    Vector room, r;
    const Vector& a = source(s, op, 1, room);
    const Vector& b = source(s, op, 2, room);
    for (int at = 0; at < op.width; at += 16) {
        const auto part = apply<Operator, T>(a, b, at, 16);
        std::memcpy(bytesOf(r) + at, &part, 16);
    }
    put(s, op, r);
}

// The first element; those behind it go on from the first source.
template <class Operator, class T>
void scalar(State& s, const Operation& op) {
    Vector room, r = s.vectors[op.first];
    const Vector& b = source(s, op, 2, room);
    const auto part = apply<Operator, T>(r, b, 0, sizeof(T));
    std::memcpy(&r, &part, sizeof(T));
    put(s, op, r);
}

// Between elements of 4 and of 8 bytes, half a vector of the shorter ones; two at a time.
void widen(State& s, const Operation& op) {
    Vector room, r;
    const Vector& x = source(s, op, 1, room);
    for (int i = 0; 16 * i < op.width; ++i) {
        __m128 from{};
        std::memcpy(&from, &x.words[static_cast<std::size_t>(2 * i)], 8);
        __m128d to;
        asm volatile("cvtps2pd %1, %0" : "=x"(to) : "x"(from));
        std::memcpy(&r.words[static_cast<std::size_t>(4 * i)], &to, 16);
    }
    put(s, op, r);
}
void narrow(State& s, const Operation& op) {
    Vector room, r = {};
    const Vector& x = source(s, op, 1, room);
    for (int i = 0; 8 * i < op.width; ++i) {
        __m128d from;
        std::memcpy(&from, &x.words[static_cast<std::size_t>(4 * i)], 16);
        __m128 to;
        asm volatile("cvtpd2ps %1, %0" : "=x"(to) : "x"(from));
        std::memcpy(&r.words[static_cast<std::size_t>(2 * i)], &to, 8);
    }
    put(s, op, r);
}

// A number of another type as the first element.
template <class To, class Convert>
void convertFirst(State& s, const Operation& op, const Convert& convert) {
    Vector r = s.vectors[op.first];
    typename Part<To>::Type to;
    std::memcpy(&to, &r, sizeof to);
    convert(to);
    std::memcpy(&r, &to, sizeof to);
    put(s, op, r);
}
void narrowFirst(State& s, const Operation& op) {
    Vector room;
    __m128d from{};
    std::memcpy(&from, &source(s, op, 2, room), 8);
    convertFirst<float>(s, op, [&](__m128& to) {
        asm volatile("cvtsd2ss %1, %0" : "+x"(to) : "x"(from));
    });
}
std::int64_t integerOf(const State& s, const Operation& op) {
    std::int64_t whole = 0;
    std::int32_t half = 0;
    const void* const from =
        op.memoryOperand == 2 ? static_cast<const void*>(memoryOf(s, op)) : &s.general[op.second];
    if (op.secondBytes == 8) return std::memcpy(&whole, from, 8), whole;
    return std::memcpy(&half, from, 4), half;
}
// Also of four bytes, which are as many numbers in eight.
void singleFromInteger(State& s, const Operation& op) {
    const std::int64_t from = integerOf(s, op);
    convertFirst<float>(s, op, [&](__m128& to) {
        asm volatile("cvtsi2ssq %1, %0" : "+x"(to) : "r"(from));
    });
}
void doubleFromInteger(State& s, const Operation& op) {
    const std::int64_t from = integerOf(s, op);
    convertFirst<double>(s, op, [&](__m128d& to) {
        asm volatile("cvtsi2sdq %1, %0" : "+x"(to) : "r"(from));
    });
}

const std::map<std::string_view, Handler> table = {
    {"addpd", packed<Add, double>},
    {"addps", packed<Add, float>},
    {"addsd", scalar<Add, double>},
    {"addss", scalar<Add, float>},
    {"cvtps2pd", widen},
    {"cvtsd2ss", narrowFirst},
    {"cvtsi2sd", doubleFromInteger},
    {"cvtsi2ss", singleFromInteger},
    {"mulpd", packed<Multiply, double>},
    {"mulps", packed<Multiply, float>},
    {"mulsd", scalar<Multiply, double>},
    {"mulss", scalar<Multiply, float>},
    {"subpd", packed<Subtract, double>},
    {"subps", packed<Subtract, float>},
    {"subsd", scalar<Subtract, double>},
    {"subss", scalar<Subtract, float>},
};

}  // namespace

Handler arithmeticHandler(std::string_view name, const Operation& op) {
    // Of 16 bytes it would leave half of the result empty.
    if (name == "cvtpd2ps") return op.secondBytes == 2 * op.width ? narrow : nullptr;
    const auto it = table.find(name);
    return it == table.end() ? nullptr : it->second;
}

}  // namespace orvgen::test::evaluator
