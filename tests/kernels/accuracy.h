// SPDX-License-Identifier: MIT
// The measured error of a kernel over random inputs, against the definition in binary128.
#pragma once

#include "direct_transform.h"
#include "kernel_list.h"
#include "wht/functions.h"

namespace orvgen::test {

// In units of u: 2^-24 for binary32, 2^-53 for binary64.
struct Accuracy {
    double relativeL2 = 0;  // |error| / |result| over all inputs together, L2 norms
    double largest = 0;     // largest error of a real over the root mean square of the results
    double absolute = 0;    // largest error of a real
};

// Sums up the errors of results.
class ErrorSum {
  public:
    void add(Quad result, Quad exact);
    Accuracy inUnitsOf(Quad u) const;

  private:
    Quad errors_ = 0, results_ = 0, largest_ = 0;
    std::size_t count_ = 0;
};

// Uniform inputs in [-1, 1], the same for all kernels of a length and type.
Accuracy measureAccuracy(const ListedKernel& k);
// The same of a Walsh-Hadamard kernel.
template <class T>
Accuracy measureAccuracy(const OrderFunctions<T>& f);

// What relativeL2 may be at most for so many points: sqrt(log2 N), primes of 7 and more 1.3 times
// that.
double accuracyLimit(int points);

}  // namespace orvgen::test
