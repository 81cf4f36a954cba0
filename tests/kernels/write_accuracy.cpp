// SPDX-License-Identifier: MIT
// Prints the page of docs/accuracy.md, freshly measured.
#include <iostream>

#include "accuracy_page.h"

using namespace orvgen::test;

namespace {

template <class T>
void measureOrders(const std::string& family, AccuracyCells& cells) {
    for (const OrderFunctions<T>& f : orderFunctions<T>())
        cells[{family, f.order}] = accuracyCell(measureAccuracy(f));
}

}  // namespace

int main() {
    AccuracyCells cells;
    for (const ListedKernel& k : listedKernels())
        cells[{k.family, k.length}] = accuracyCell(measureAccuracy(k));
    measureOrders<Orv32f>("orvgWHT_32f", cells);
    measureOrders<Orv64f>("orvgWHT_64f", cells);
    std::cout << accuracyPage(cells);
    return 0;
}
