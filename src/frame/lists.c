/* SPDX-License-Identifier: MIT */
/* Not compiled: cmake/OrvgenExports.cmake preprocesses this file. Behind the word MEMBER stand the
 * name, the element type and the number of a kernel, behind DISPATCHER the line that makes a
 * by-length function; and the declarations of the header name all that is exported. */
#include "orvgen.h"

#define MEMBER_ROW(NAME, N, T) MEMBER NAME T N
#define OF_LENGTHS(NAME, T, LIST) \
    LIST(MEMBER_ROW, NAME, T) DISPATCHER ORVGEN_LENGTH_DISPATCHER(NAME, T, LIST)
#define OF_ORDERS(NAME, T, LIST) \
    LIST(MEMBER_ROW, NAME, T) DISPATCHER ORVGEN_ORDER_DISPATCHER(NAME, T, LIST)

ORVGEN_LENGTH_FAMILIES(OF_LENGTHS)
ORVGEN_ORDER_FAMILIES(OF_ORDERS)
