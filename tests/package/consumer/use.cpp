// SPDX-License-Identifier: MIT
// The same from C++.
#include <orvgen.h>

#include <cstdio>
#include <cstring>

namespace {

int failures = 0;

void expect(bool condition, const char* what) {
    if (condition) return;
    std::printf("FAILED: %s\n", what);
    ++failures;
}

void transform() {
    static Orv32fc x[64], y[64];
    static Orv64f a[256], b[256];
    for (int i = 0; i < 64; ++i) x[i].re = 1;
    for (int i = 0; i < 256; ++i) a[i] = 1;
    expect(orvgDFTFwd_CToC_64_32fc(x, y, orvScaleNone) == orvOk, "status of the DFT");
    expect(y[0].re == 64 && y[1].re == 0 && y[63].im == 0, "DFT of ones");
    expect(orvgDFTFwd_CToC_32fc(x, y, 64, orvScaleFwdByN) == orvOk, "status by length");
    expect(y[0].re == 1, "DFT of ones, scaled");
    expect(orvgWHT_8_64f(a, b, orvScaleNone, nullptr) == orvOk, "status of the WHT");
    expect(b[0] == 256 && b[1] == 0, "WHT of ones");
}

}  // namespace

#define REFUSES_LENGTHS(NAME, T, LIST)                                                            \
    expect(orvg##NAME##_##T(nullptr, nullptr, 1, orvScaleNone) == orvErrSize, #NAME "_" #T " 1"); \
    expect(orvg##NAME##_##T(nullptr, nullptr, 65, orvScaleNone) == orvErrSize, #NAME "_" #T " 65");
#define REFUSES_ORDERS(NAME, T, LIST)                                                   \
    expect(orvg##NAME##_##T(nullptr, nullptr, 0, orvScaleNone, nullptr) == orvErrSize,  \
           #NAME "_" #T " 0");                                                          \
    expect(orvg##NAME##_##T(nullptr, nullptr, 14, orvScaleNone, nullptr) == orvErrSize, \
           #NAME "_" #T " 14");
#define REFUSES_NULL(NAME, T) \
    expect(orvg##NAME##_##T(nullptr, nullptr, nullptr) == orvErrNullPtr, #NAME "_" #T);

int main() {
    expect(std::strcmp(orvgenGetLibVersion()->versionText, "6.1 build 137.56") == 0, "version");
    ORVGEN_LENGTH_FAMILIES(REFUSES_LENGTHS)
    ORVGEN_ORDER_FAMILIES(REFUSES_ORDERS)
    ORVGEN_DCT4_FAMILIES(REFUSES_NULL)
    transform();
    std::printf("used from C++: %d failures\n", failures);
    return failures != 0;
}
