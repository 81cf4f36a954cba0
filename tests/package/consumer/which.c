/* SPDX-License-Identifier: MIT */
/* Prints which file of the library it runs with, having computed something by it. With an argument
 * it loads that file. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <orvgen.h>
#include <stdio.h>

int main(int count, char** arguments) {
    typedef OrvStatus Transform(const Orv32fc*, Orv32fc*, int32_t);
    Transform* transform = orvgDFTFwd_CToC_48_32fc;
    Orv32fc x[48] = {{0}}, y[48];
    Dl_info mapped;
    int k;
    if (count > 1) {
        void* library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
        if (library == NULL) {
            fprintf(stderr, "%s\n", dlerror());
            return 1;
        }
        *(void**)&transform = dlsym(library, "orvgDFTFwd_CToC_48_32fc");
    }
    x[0].re = 1;
    if (transform == NULL || transform(x, y, orvScaleNone) != orvOk) return 1;
    for (k = 0; k < 48; ++k)
        if (y[k].re != 1 || y[k].im != 0) return 1;
    if (dladdr(*(void**)&transform, &mapped) == 0) return 1;
    puts(mapped.dli_fname);
    return 0;
}
