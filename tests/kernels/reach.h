// SPDX-License-Identifier: MIT
// How far an input that is no number, or infinite, reaches in a kernel.
#pragma once

#include <string>
#include <vector>

#include "kernel_list.h"

namespace orvgen::test {

// [input][output], in reals; inputs that are never read reach nothing.
using Reached = std::vector<std::vector<bool>>;

// By the definition: the result has the input with a factor other than 0. Read off the answers to
// unit vectors, whose smallest such factor is far above the error.
Reached reachByDefinition(const ListedKernel& k);
// By the flow: the result is computed out of the input, lane by lane. This is how far a NaN goes.
Reached reachByFlow(const ListedKernel& k);

// Of the kernel itself, all other inputs being positive and finite.
struct Reach {
    Reached nan;        // results that a NaN makes a NaN
    Reached infinite;   // results that an infinity makes infinite,
    Reached undefined;  // ... or a NaN: 0 times infinity, or infinities of both signs
};
Reach reachOf(const ListedKernel& k);

long pairsIn(const Reached& reached);

}  // namespace orvgen::test
