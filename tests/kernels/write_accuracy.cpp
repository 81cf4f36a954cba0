// SPDX-License-Identifier: MIT
// Prints the page of docs/accuracy.md, freshly measured.
#include <iostream>

#include "accuracy_page.h"

using namespace orvgen::test;

int main() {
    AccuracyCells cells;
    for (const ListedKernel& k : listedKernels()) {
        for (const AccuracyColumn& c : accuracyColumns()) {
            if (k.family == c.family)
                cells[{c.family, k.length}] = accuracyCell(measureAccuracy(k));
        }
    }
    std::cout << accuracyPage(cells);
    return 0;
}
