/* SPDX-License-Identifier: MIT */
/* The batch library, used from C: rows, columns, a split transform, and what it refuses. */
#include <orvgen_batch.h>
#include <stdio.h>

static int failures = 0;

static void expect(int condition, const char* what) {
    if (!condition) {
        printf("FAILED: %s\n", what);
        ++failures;
    }
}

int main(void) {
    static Orv32f x[100][16], y[16][100];
    static Orv32fc bins[100][9];
    static Orv64f re[20][8], im[20][8];
    int t, j;
    for (t = 0; t < 100; ++t)
        for (j = 0; j < 16; ++j) x[t][j] = (Orv32f)(t + 1);
    for (t = 0; t < 20; ++t) re[t][t % 8] = 1;

    expect(orvgBatchDFTFwd_RToCCS_32f(x[0], 1, 16, bins[0], 1, 9, 16, 100, orvScaleNone) == orvOk,
           "rows");
    expect(orvgBatchHartley_32f(x[0], 1, 16, y[0], 100, 1, 16, 100, orvScaleFwdByN) == orvOk,
           "to columns");
    for (t = 0; t < 100; ++t) {
        expect(bins[t][0].re == 16 * (Orv32f)(t + 1) && bins[t][1].re == 0,
               "spectrum of a constant");
        expect(y[0][t] == (Orv32f)(t + 1) && y[5][t] == 0, "Hartley transform of a constant");
    }
    expect(orvgBatchSplitDFTFwd_CToC_64f(re[0], im[0], 1, 8, re[0], im[0], 1, 8, 8, 20,
                                         orvScaleNone) == orvOk,
           "split arrays in place");
    for (t = 0; t < 20; ++t) expect(re[t][0] == 1 && im[t][0] == 0, "spectrum of an impulse");

    expect(orvgBatchWHT_64f(NULL, 1, 1, NULL, 1, 1, 14, 0, orvScaleNone) == orvErrSize, "order 14");
    expect(orvgBatchTargets() & orvTargetSSE2, "targets");
    expect(orvgBatchUse(orvTargetSSE2) == orvOk, "the choice of a target");
    printf("batches: %s, %d failures\n", orvgBatchStatusText(orvOk), failures);
    return failures != 0;
}
