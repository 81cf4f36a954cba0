// SPDX-License-Identifier: MIT
// Rules of precision that hold in every scalar flow of binary32 data, read from the value graph.
#pragma once

#include <string>
#include <vector>

#include "kernelgen/evaluate.h"

namespace orvgen::test {

struct PrecisionReport {
    // What is against the rules, a line each: a product by a transform constant that is not
    // binary64, or by 0, 1 or a negative number; a sum in binary64 that no product leads to; a
    // rounding that rounds nothing; an output that is not one product by the scale. Empty when all
    // is well.
    std::string complaints;
    // Expressions that are rounded for some of their uses and go on unrounded into others.
    int carried = 0;
    int scaledInSingle = 0, scaledInDouble = 0;
};
PrecisionReport checkPrecision(const kernelgen::Graph& graph);

// The stored scale of the flags: 1, 1/N and 1/sqrt(N), in a binary32 or a binary64 kernel.
enum class Scaling { One, ByN, BySqrtN };
double scaleOf(Scaling scaling, int length, bool single);

// Runs a graph on data of its own element type.
template <class T>
std::vector<T> runGraph(const kernelgen::Graph& graph, const std::vector<T>& src,
                        std::size_t outputs, double scale) {
    std::vector<T> dst(outputs);
    kernelgen::evaluate(graph, src.data(), dst.data(), scale);
    return dst;
}

}  // namespace orvgen::test
