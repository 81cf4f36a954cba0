// The by-length dispatchers: one range test, one table of kernel addresses, one call. They test neither pointers nor
// flag; the kernel does.

#include "frame/families.h"

namespace {

using orvgen::firstLength;
using orvgen::firstOrder;
using orvgen::lastLength;
using orvgen::lastOrder;

// Rows for the numbers first to last; null where the family has no such member.
template <class Kernel, int first, int last>
struct Table {
    struct Row {
        int number;
        Kernel* kernel;
    };

    Kernel* kernel[last - first + 1] = {};

    template <int rows>
    constexpr explicit Table(const Row (&list)[rows]) {
        for (const Row& row : list) kernel[row.number - first] = row.kernel;
    }

    Kernel* find(int32_t number) const {
        const uint32_t row = static_cast<uint32_t>(number) - first;
        return row <= last - first ? kernel[row] : nullptr;
    }
};

}  // namespace

#define ROW(NAME, N, T) {N, orvg##NAME##_##N##_##T},

#define LENGTH_DISPATCHER(NAME, T, LIST)                                                       \
    OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst, int32_t len, int32_t flag) {    \
        using Kernel = OrvStatus(const Orv##T*, Orv##T*, int32_t);                             \
        using Rows = Table<Kernel, firstLength, lastLength>;                                   \
        static constexpr Rows table({LIST(ROW, NAME, T)});                                     \
        Kernel* const kernel = table.find(len);                                                \
        return kernel ? kernel(src, dst, flag) : orvErrSize;                                   \
    }
ORVGEN_LENGTH_FAMILIES(LENGTH_DISPATCHER)

#define ORDER_DISPATCHER(NAME, T, LIST)                                                        \
    OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst, int32_t order, int32_t flag,    \
                               uint8_t* buffer) {                                              \
        using Kernel = OrvStatus(const Orv##T*, Orv##T*, int32_t, uint8_t*);                   \
        using Rows = Table<Kernel, firstOrder, lastOrder>;                                     \
        static constexpr Rows table({LIST(ROW, NAME, T)});                                     \
        Kernel* const kernel = table.find(order);                                              \
        return kernel ? kernel(src, dst, flag, buffer) : orvErrSize;                           \
    }
ORVGEN_ORDER_FAMILIES(ORDER_DISPATCHER)
