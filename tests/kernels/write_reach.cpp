// SPDX-License-Identifier: MIT
// Prints tests/data/reach.csv for the kernels as they are now.
#include <iostream>

#include "reach.h"

int main() {
    using orvgen::test::pairsIn;
    std::cout
        << "# How far special values reach in every kernel: pairs of an input and a result, both real\n"
           "# numbers, the other inputs being positive and finite. nan: a NaN makes the result a NaN;\n"
           "# infinite: an infinity makes it infinite; undefined: an infinity makes it a NaN. Written by:\n"
           "# ./dev figures\n"
           "name,nan,infinite,undefined\n";
    for (const orvgen::test::ListedKernel& k : orvgen::test::listedKernels()) {
        const orvgen::test::Reach reach = reachOf(k);
        std::cout << k.name << ',' << pairsIn(reach.nan) << ',' << pairsIn(reach.infinite) << ','
                  << pairsIn(reach.undefined) << '\n';
    }
    return 0;
}
