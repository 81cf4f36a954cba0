/* SPDX-License-Identifier: MIT */
/* One kernel and nothing else. */
#include <orvgen.h>

int main(void) {
    static Orv32fc x[12], y[12];
    return orvgDFTFwd_CToC_12_32fc(x, y, orvScaleNone) != orvOk;
}
