/* SPDX-License-Identifier: MIT */
/* A program with functions of its own that bear names of the plan machine's. */
#include <orvgen.h>
#include <stdio.h>

static int added = 0;

void EnvList_add(void* list, void* value) {
    (void)list;
    (void)value;
    ++added;
}
void* orvgArenaMalloc(void* arena, unsigned long size) {
    (void)size;
    return arena;
}

int main(void) {
    static Orv32f x[4096] = {1}, y[4096];
    OrvDCT4Spec_32f* plan = NULL;
    OrvStatus status = orvgDCT4InitAlloc_32f(&plan, 4096);
    if (status == orvOk) status = orvgDCT4_32f(x, y, plan);
    orvgDCT4Free_32f(plan);
    EnvList_add(orvgArenaMalloc(x, 0), y);
    /* cos(pi / 16384) rounds to 1. */
    printf("plan: status %d, y[0] = %g, %d calls of this program's own\n", status, y[0], added);
    return !(status == orvOk && y[0] > 0.99 && y[0] <= 1 && added == 1);
}
