// SPDX-License-Identifier: MIT
// The DCT-IV works through a plan, made once. Twice the transform gives back N/2 times the samples.
#include <orvgen.h>

#include <cstdio>
#include <memory>

int main() {
    OrvDCT4Spec_32f* made = nullptr;
    if (orvgDCT4InitAlloc_32f(&made, 8) != orvOk) return 1;
    const std::unique_ptr<OrvDCT4Spec_32f, OrvStatus (*)(OrvDCT4Spec_32f*)> plan(made,
                                                                                 orvgDCT4Free_32f);
    Orv32f x[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    for (int i = 0; i < 2; ++i)
        if (orvgDCT4_32f(x, x, plan.get()) != orvOk) return 1;
    for (const Orv32f sample : x) std::printf(" %.2f", sample / 4);
    std::printf("\n");
}
