/* The public header and the library, used from C: every listed family answers. */
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
    printf("used from C: %d failures\n", failures);
    return failures != 0;
}
