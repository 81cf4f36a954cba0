/* SPDX-License-Identifier: MIT */
/* The public header and the library, used from C: every listed family answers, and transforms are
 * made, one of them in a block of the core library's. */
#include <orvgen.h>
#include <stdio.h>
#include <string.h>

static int failures = 0;

static void expect(int condition, const char* what) {
    if (!condition) {
        printf("FAILED: %s\n", what);
        ++failures;
    }
}

static void transform(void) {
    static Orv32fc x[64], y[64];
    static Orv64f a[256], b[256];
    int i;
    for (i = 0; i < 64; ++i) x[i].re = 1;
    for (i = 0; i < 256; ++i) a[i] = 1;
    expect(orvgDFTFwd_CToC_64_32fc(x, y, orvScaleNone) == orvOk, "status of the DFT");
    expect(y[0].re == 64 && y[1].re == 0 && y[63].im == 0, "DFT of ones");
    expect(orvgDFTFwd_CToC_32fc(x, y, 64, orvScaleFwdByN) == orvOk, "status by length");
    expect(y[0].re == 1, "DFT of ones, scaled");
    expect(orvgWHT_8_64f(a, b, orvScaleNone, NULL) == orvOk, "status of the WHT");
    expect(b[0] == 256 && b[1] == 0, "WHT of ones");
}

#define REFUSES_LENGTHS(NAME, T, LIST)                                                      \
    expect(orvg##NAME##_##T(NULL, NULL, 1, orvScaleNone) == orvErrSize, #NAME "_" #T " 1"); \
    expect(orvg##NAME##_##T(NULL, NULL, 65, orvScaleNone) == orvErrSize, #NAME "_" #T " 65");
#define REFUSES_ORDERS(NAME, T, LIST)                                                             \
    expect(orvg##NAME##_##T(NULL, NULL, 0, orvScaleNone, NULL) == orvErrSize, #NAME "_" #T " 0"); \
    expect(orvg##NAME##_##T(NULL, NULL, 14, orvScaleNone, NULL) == orvErrSize, #NAME "_" #T " 14");
#define REFUSES_NULL(NAME, T) \
    expect(orvg##NAME##_##T(NULL, NULL, NULL) == orvErrNullPtr, #NAME "_" #T);

int main(void) {
    expect(strcmp(orvgenGetLibVersion()->libraryName, "liborvgenm7.so.6.1") == 0, "version");
    ORVGEN_LENGTH_FAMILIES(REFUSES_LENGTHS)
    ORVGEN_ORDER_FAMILIES(REFUSES_ORDERS)
    ORVGEN_DCT4_FAMILIES(REFUSES_NULL)
    transform();
    printf("used from C: %d failures\n", failures);
    return failures != 0;
}
