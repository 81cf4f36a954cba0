// SPDX-License-Identifier: MIT
// A flow as the list of operations that it does, in their order. Each flow is run once, over a
// value type that writes down what is done with it; the tests count this list, and carry it out in
// binary128 or in the element types.
#pragma once

#include <vector>

#include "dct4/flows/constants.h"
#include "dct4/quad.h"

namespace orvgen::test::dct4 {

struct Recording {
    enum class Kind { input, zero, constant, add, subtract, multiply };
    // The operands of an operation, earlier values of the list; a: the number of an input or of a
    // constant.
    struct Value {
        Kind kind;
        int a, b;
    };
    struct Angle {
        orvgen::dct4::Trig which;
        int num, den;
    };

    std::vector<Value> values;
    std::vector<Angle> constants;
    std::vector<int> results;  // which value is result 0, 1, ...
    std::vector<int> order;    // of the numbers by which the flow asked for its inputs
    long inputs = 0;           // different ones

    long count(Kind kind) const;
};

// Inputs x[0 .. N - 1], results y[0 .. N - 1].
const Recording& bodyRecording(int N);

// Inputs w[0 .. n - 1], results Re Z(0), Im Z(0), Re Z(1), ..
const Recording& oddFrequencyRecording(int n);

// With the twiddle of V. Inputs Re V_0 .. Re V_r-1, Im V_0 .. Im V_r-1, then cosine and sine of the
// first, the second .. V asked for; results Y_-r .. Y_r-1.
const Recording& stageTwoRecording(int r);

// Inputs Re Z_0 .. Re Z_R-1, Im Z_0 .. Im Z_R-1, then cosines and sines of the first table in the
// order of use, then of the second; results Re D(0), Im D(0), ..
const Recording& joinRecording(int R);

// How many twiddles of the first table a join takes.
constexpr int firstTwiddles(int R) { return R <= 8 ? R - 1 : 3 * (R / 4); }

Quad valueOf(const Recording::Angle& angle);

// The flow on numbers: its results for input(number), with the constants rounded to T beforehand.
template <class T>
class Evaluation {
  public:
    explicit Evaluation(const Recording& flow) : recording(flow) {
        for (const Recording::Angle& angle : flow.constants) {
            constants.push_back(static_cast<T>(valueOf(angle)));
        }
    }

    template <class Input>
    std::vector<T> operator()(const Input& input) const {
        std::vector<T> values;
        values.reserve(recording.values.size());
        for (const Recording::Value& value : recording.values) {
            const auto operand = [&](int index) { return values[static_cast<std::size_t>(index)]; };
            switch (value.kind) {
                case Recording::Kind::input:
                    values.push_back(input(value.a));
                    break;
                case Recording::Kind::zero:
                    values.push_back(T{0});
                    break;
                case Recording::Kind::constant:
                    values.push_back(constants[static_cast<std::size_t>(value.a)]);
                    break;
                case Recording::Kind::add:
                    values.push_back(operand(value.a) + operand(value.b));
                    break;
                case Recording::Kind::subtract:
                    values.push_back(operand(value.a) - operand(value.b));
                    break;
                case Recording::Kind::multiply:
                    values.push_back(operand(value.a) * operand(value.b));
                    break;
            }
        }
        std::vector<T> results;
        for (const int result : recording.results) {
            results.push_back(values[static_cast<std::size_t>(result)]);
        }
        return results;
    }

  private:
    const Recording& recording;
    std::vector<T> constants;
};

}  // namespace orvgen::test::dct4
