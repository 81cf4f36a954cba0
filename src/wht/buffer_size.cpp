// SPDX-License-Identifier: MIT
// The size of the buffer that a caller may provide.

#include "orvgen.h"
#include "wht/arrangement.h"

namespace {

using orvgen::wht::Element;

constexpr int first = orvgen::kOrders.first;
constexpr int orders = orvgen::kOrders.count();

struct Sizes {
    int32_t bytes[orders] = {};

    constexpr explicit Sizes(Element element) {
        for (int i = 0; i < orders; ++i) bytes[i] = orvgen::wht::bufferBytes(element, first + i);
    }

    OrvStatus query(int32_t order, int32_t* size) const {
        // As an unsigned value an order below the first is out of range as well.
        const uint32_t row = static_cast<uint32_t>(order) - first;
        if (row >= orders) return orvErrSize;
        *size = bytes[row];
        return orvOk;
    }
};

constexpr Sizes sizes32f(Element::F32);
constexpr Sizes sizes64f(Element::F64);

}  // namespace

OrvStatus orvgWHTGetBufferSize_32f(int32_t order, int32_t* size) {
    return sizes32f.query(order, size);
}

OrvStatus orvgWHTGetBufferSize_64f(int32_t order, int32_t* size) {
    return sizes64f.query(order, size);
}
