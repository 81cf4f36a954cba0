// SPDX-License-Identifier: MIT
#include "dct4/recording.h"

#include <algorithm>
#include <bit>
#include <set>
#include <stdexcept>

#include "dct4/flows/dct4.h"
#include "dct4/flows/joinstage.h"
#include "dct4/flows/oddfrequency.h"
#include "dct4/flows/stagetwo.h"

namespace orvgen::test::dct4 {
namespace {

using orvgen::dct4::Trig;
using Kind = Recording::Kind;

Recording* current = nullptr;

// A value of the current recording.
struct Recorded {
    int index;
};

[[gnu::noinline]] Recorded record(Kind kind, int a, int b) {
    current->values.push_back({kind, a, b});
    return {static_cast<int>(current->values.size()) - 1};
}

Recorded input(int number) {
    current->order.push_back(number);
    return record(Kind::input, number, 0);
}

Recorded constant(Trig which, int num, int den) {
    current->constants.push_back({which, num, den});
    return record(Kind::constant, static_cast<int>(current->constants.size()) - 1, 0);
}

Recorded zero() { return record(Kind::zero, 0, 0); }

Recorded operator+(Recorded a, Recorded b) { return record(Kind::add, a.index, b.index); }
Recorded operator-(Recorded a, Recorded b) { return record(Kind::subtract, a.index, b.index); }
Recorded operator*(Recorded a, Recorded b) { return record(Kind::multiply, a.index, b.index); }

}  // namespace
}  // namespace orvgen::test::dct4

template <>
struct orvgen::dct4::Values<orvgen::test::dct4::Recorded> {
    using Recorded = orvgen::test::dct4::Recorded;
    template <Trig which, int num, int den>
    static Recorded of(Constant<which, num, den>) {
        return orvgen::test::dct4::constant(which, num, den);
    }
    static Recorded zero() { return orvgen::test::dct4::zero(); }
};

namespace orvgen::test::dct4 {
namespace {

using Pair = orvgen::dct4::Complex<Recorded>;

// Takes the results of the current recording.
void give(int number, Recorded value) {
    int& result = current->results.at(static_cast<std::size_t>(number));
    if (result >= 0) throw std::logic_error("a result is given twice");
    result = value.index;
}

void givePair(int number, Pair value) {
    give(2 * number, value.re);
    give(2 * number + 1, value.im);
}

template <class Flow>
Recording recordingOf(int results, const Flow& flow) {
    Recording recording;
    recording.results.assign(static_cast<std::size_t>(results), -1);
    current = &recording;
    flow();
    if (std::count(recording.results.begin(), recording.results.end(), -1) != 0) {
        throw std::logic_error("a result is not given");
    }
    recording.inputs =
        static_cast<long>(std::set(recording.order.begin(), recording.order.end()).size());
    return recording;
}

template <int N>
Recording body() {
    return recordingOf(N, [] { orvgen::dct4::dct4<N, Recorded>(input, give); });
}

template <int n>
Recording oddFrequency() {
    return recordingOf(n, [] { orvgen::dct4::oddFrequency<n, Recorded>(input, givePair); });
}

template <int r>
Recording stageTwo() {
    return recordingOf(2 * r, [] {
        int twiddle = 2 * r;
        const auto V = [&](int p) {
            const Pair z{input(p), input(r + p)};
            const Recorded c = input(twiddle), s = input(twiddle + 1);
            twiddle += 2;
            return rotate(z, c, s);
        };
        orvgen::dct4::stageTwo<r, Recorded>(V, [](int u, Recorded y) { give(r + u, y); });
    });
}

template <int R>
Recording join() {
    return recordingOf(2 * R, [] {
        const auto turn = [](Pair z, int twiddle) {
            const Recorded c = input(twiddle), s = input(twiddle + 1);
            return rotate(z, c, s);
        };
        int first = 2 * R;
        constexpr int second = 2 * R + 2 * firstTwiddles(R);
        orvgen::dct4::joinStage<R, Recorded>(
            [](int s) {
                return Pair{input(s), input(R + s)};
            },
            [&](Pair z) {
                const int twiddle = first;
                first += 2;
                return turn(z, twiddle);
            },
            [&](Pair z, int k) { return turn(z, second + 2 * (k - 1)); }, givePair);
    });
}

int powerOf(int size) { return std::countr_zero(static_cast<unsigned>(size)); }

}  // namespace

long Recording::count(Kind kind) const {
    return std::count_if(values.begin(), values.end(),
                         [&](const Value& value) { return value.kind == kind; });
}

const Recording& bodyRecording(int N) {
    static const Recording sizes[] = {body<2>(), body<4>(), body<8>(), body<16>(), body<32>()};
    return sizes[powerOf(N) - 1];
}

const Recording& oddFrequencyRecording(int n) {
    static const Recording sizes[] = {oddFrequency<2>(),  oddFrequency<4>(),  oddFrequency<8>(),
                                      oddFrequency<16>(), oddFrequency<32>(), oddFrequency<64>()};
    return sizes[powerOf(n) - 1];
}

const Recording& stageTwoRecording(int r) {
    static const Recording sizes[] = {stageTwo<1>(), stageTwo<2>(),  stageTwo<4>(),
                                      stageTwo<8>(), stageTwo<16>(), stageTwo<32>()};
    return sizes[powerOf(r)];
}

const Recording& joinRecording(int R) {
    static const Recording sizes[] = {join<2>(), join<4>(), join<8>(), join<16>(), join<32>()};
    return sizes[powerOf(R) - 1];
}

Quad valueOf(const Recording::Angle& angle) {
    switch (angle.which) {
        case Trig::cosine:
            return cosPi(angle.num, angle.den);
        case Trig::sine:
            return sinPi(angle.num, angle.den);
        default:
            return tanPi(angle.num, angle.den);
    }
}

}  // namespace orvgen::test::dct4
