// SPDX-License-Identifier: MIT
// The by-length functions: one range test, one table of kernel addresses, one call. They test
// neither pointers nor flag; the kernel does.
//
// Each stands in an object of its own (CMakeLists.txt writes the sources), so that a program that
// links the archive gets the kernels of the families that it calls, and no others.

#ifndef ORVGEN_FRAME_DISPATCH_H
#define ORVGEN_FRAME_DISPATCH_H

#include "frame/families.h"

namespace orvgen {

// The kernels of the numbers first to last, each in the row of its own number.
template <class Kernel, int first, int last>
struct KernelTable {
    struct Row {
        int number;
        Kernel* kernel;
    };

    static constexpr int rows = last - first + 1;

    Kernel* kernel[rows] = {};

    constexpr explicit KernelTable(const Row (&list)[rows]) {
        for (const Row& row : list) kernel[row.number - first] = row.kernel;
    }

    // A part of the by-length function in every build, so that its machine code can be followed.
    template <class... Arguments>
    [[gnu::always_inline]] OrvStatus call(int32_t number, Arguments... arguments) const {
        // As an unsigned value a number below first is out of range as well.
        const uint32_t row = static_cast<uint32_t>(number) - first;
        return row < rows ? kernel[row](arguments...) : orvErrSize;
    }
};

}  // namespace orvgen

#define ORVGEN_KERNEL_ROW(NAME, N, T) {N, orvg##NAME##_##N##_##T},

#define ORVGEN_LENGTH_DISPATCHER(NAME, T, LIST)                                             \
    OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst, int32_t len, int32_t flag) { \
        using Kernel = OrvStatus(const Orv##T*, Orv##T*, int32_t);                          \
        constexpr orvgen::Numbers numbers = orvgen::familyOf(#NAME, #T).numbers;            \
        using Kernels = orvgen::KernelTable<Kernel, numbers.first, numbers.last>;           \
        static constexpr Kernels table({LIST(ORVGEN_KERNEL_ROW, NAME, T)});                 \
        return table.call(len, src, dst, flag);                                             \
    }

#define ORVGEN_ORDER_DISPATCHER(NAME, T, LIST)                                              \
    OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst, int32_t order, int32_t flag, \
                               uint8_t* buffer) {                                           \
        using Kernel = OrvStatus(const Orv##T*, Orv##T*, int32_t, uint8_t*);                \
        constexpr orvgen::Numbers numbers = orvgen::familyOf(#NAME, #T).numbers;            \
        using Kernels = orvgen::KernelTable<Kernel, numbers.first, numbers.last>;           \
        static constexpr Kernels table({LIST(ORVGEN_KERNEL_ROW, NAME, T)});                 \
        return table.call(order, src, dst, flag, buffer);                                   \
    }

#endif
