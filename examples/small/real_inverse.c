/* SPDX-License-Identifier: MIT */
/* The inverse real transform: samples out of a half spectrum in the Pack format, R[0] R[1] I[1]
 * R[2] I[2] ... R[8]. */
#include <orvgen.h>
#include <stdio.h>

int main(void) {
    Orv32f spectrum[16] = {0}, x[16];
    spectrum[0] = 1;    /* a constant of 1 */
    spectrum[1] = 0.5f; /* and a cosine of one turn: half of it in bin 1, the other half in its
                           mirror image */
    if (orvgDFTInv_PackToR_16_32f(spectrum, x, orvScaleNone) != orvOk) return 1;
    for (int n = 0; n < 16; n += 4) printf(" %.2f", x[n]);
    printf("\n");
    return 0;
}
