// SPDX-License-Identifier: MIT
// How many of the nearest vectors are still found once the vectors are quantised to a few bits an
// element.

#ifndef ROTATION_RECALL_H
#define ROTATION_RECALL_H

#include "spectra.h"

// Each element rounded to one of 2^bits levels, 1 to 4 bits: steps that suit a normal distribution
// with the vector's own variance.
Vectors quantised(const Vectors& vectors, int bits);

// The share of the 10 vectors with the largest inner products that a search among `stored` finds
// too; every 16th vector is a query, kept exact.
double recall(const Vectors& exact, const Vectors& stored);

#endif
