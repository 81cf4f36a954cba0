/* SPDX-License-Identifier: MIT */
/* Not compiled: cmake/OrvgenExports.cmake preprocesses this file and takes every name that stands
 * behind the word EXPORTED, and behind DISPATCHER the line that makes a by-length function. */
#include "orvgen.h"

#define MEMBER(NAME, N, T) EXPORTED orvg##NAME##_##N##_##T
#define BY_NUMBER(NAME, T, LIST) LIST(MEMBER, NAME, T) EXPORTED orvg##NAME##_##T
#define LENGTH_FAMILY(NAME, T, LIST) \
    BY_NUMBER(NAME, T, LIST) DISPATCHER ORVGEN_LENGTH_DISPATCHER(NAME, T, LIST)
#define ORDER_FAMILY(NAME, T, LIST) \
    BY_NUMBER(NAME, T, LIST)        \
    EXPORTED orvg##NAME##GetBufferSize_##T DISPATCHER ORVGEN_ORDER_DISPATCHER(NAME, T, LIST)
#define DCT4_FAMILY(NAME, T)                                                \
    EXPORTED orvg##NAME##GetSize_##T EXPORTED orvg##NAME##Init_##T EXPORTED \
        orvg##NAME##InitAlloc_##T EXPORTED orvg##NAME##Free_##T EXPORTED orvg##NAME##_##T

EXPORTED orvgenGetLibVersion ORVGEN_LENGTH_FAMILIES(LENGTH_FAMILY)
    ORVGEN_ORDER_FAMILIES(ORDER_FAMILY) ORVGEN_DCT4_FAMILIES(DCT4_FAMILY)
