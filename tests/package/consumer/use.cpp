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
    std::printf("used from C++: %d failures\n", failures);
    return failures != 0;
}
