/* Not compiled: cmake/OrvgenExports.cmake preprocesses this file and takes every name behind the word EXPORTED. */
#include "orvgen.h"

#define NAME_OF_MEMBER(NAME, N, T) EXPORTED orvg##NAME##_##N##_##T
#define NAMES_OF_LENGTH_FAMILY(NAME, T, LIST) LIST(NAME_OF_MEMBER, NAME, T) EXPORTED orvg##NAME##_##T
#define NAMES_OF_ORDER_FAMILY(NAME, T, LIST) \
    LIST(NAME_OF_MEMBER, NAME, T) EXPORTED orvg##NAME##_##T EXPORTED orvg##NAME##GetBufferSize_##T
#define NAMES_OF_DCT4_FAMILY(T)                                                             \
    EXPORTED orvgDCT4GetSize_##T EXPORTED orvgDCT4Init_##T EXPORTED orvgDCT4InitAlloc_##T   \
    EXPORTED orvgDCT4Free_##T EXPORTED orvgDCT4_##T

EXPORTED orvgenGetLibVersion
ORVGEN_LENGTH_FAMILIES(NAMES_OF_LENGTH_FAMILY)
ORVGEN_ORDER_FAMILIES(NAMES_OF_ORDER_FAMILY)
ORVGEN_DCT4_FAMILIES(NAMES_OF_DCT4_FAMILY)
