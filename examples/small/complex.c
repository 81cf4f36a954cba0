/* SPDX-License-Identifier: MIT */
/* The complex transform: a phasor that turns five times is one line of its spectrum, and comes back
 * from it. */
#include <math.h>
#include <orvgen.h>
#include <stdio.h>

int main(void) {
    Orv32fc x[64], y[64];
    for (int n = 0; n < 64; ++n) {
        x[n].re = cosf(6.2831853f * 5 * n / 64);
        x[n].im = sinf(6.2831853f * 5 * n / 64);
    }
    if (orvgDFTFwd_CToC_64_32fc(x, y, orvScaleFwdByN) != orvOk) return 1;
    for (int k = 0; k < 64; ++k)
        if (hypotf(y[k].re, y[k].im) > 1e-3f) printf("bin %d: %.3f\n", k, hypotf(y[k].re, y[k].im));
    if (orvgDFTInv_CToC_64_32fc(y, x, orvScaleFwdByN) != orvOk) return 1;
    printf("sample 8: %.3f %+.3f i\n", x[8].re, x[8].im);
    return 0;
}
