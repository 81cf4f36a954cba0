// SPDX-License-Identifier: MIT
// How each order of the Walsh-Hadamard transform is cut into passes over memory.
//
// The transform of N = 2^k elements has k layers of two-point butterflies, one for each bit of the
// index, from bit 0 up. A pass does a few layers in a row and stands between two arrays:
//
//     one pass     src -> dst, one straight body
//     two passes   blocks of B elements: src -> buffer; columns at stride B: buffer -> dst
//     three        for each tile of T = 8 B elements: blocks of B: src -> tile scratch, columns of
//                  radix 8 at stride B: tile scratch -> buffer; then columns at stride T: -> dst
//
// Every pass leaves each element at its own index, so that the array between two passes is the
// array of the layer-by-layer transform after as many layers.
//
// This header is read by the product (sizes of the buffer) and by the kernel compiler.
#pragma once

#include <cstdint>

#include "frame/families.h"

namespace orvgen::wht {

enum class Element : std::uint8_t { F32, F64 };

constexpr int bytesOf(Element element) { return element == Element::F32 ? 4 : 8; }

// The layers that each pass does, in order; 0: no further pass.
struct Cut {
    int layers[3];

    constexpr int passes() const { return layers[1] == 0 ? 1 : layers[2] == 0 ? 2 : 3; }
    constexpr int order() const { return layers[0] + layers[1] + layers[2]; }
};

// The usual block is 256 bytes, which sixteen registers just hold. Binary64 takes blocks of 1 KB at
// orders 10 and 13, so that the last pass there keeps to radix 8.
constexpr Cut cuts32f[] = {{{1, 0, 0}}, {{2, 0, 0}}, {{3, 0, 0}}, {{4, 0, 0}}, {{5, 0, 0}},
                           {{6, 0, 0}}, {{7, 0, 0}}, {{5, 3, 0}}, {{6, 3, 0}}, {{6, 4, 0}},
                           {{6, 5, 0}}, {{6, 3, 3}}, {{6, 3, 4}}};
constexpr Cut cuts64f[] = {{{1, 0, 0}}, {{2, 0, 0}}, {{3, 0, 0}}, {{4, 0, 0}}, {{5, 0, 0}},
                           {{6, 0, 0}}, {{7, 0, 0}}, {{5, 3, 0}}, {{5, 4, 0}}, {{7, 3, 0}},
                           {{5, 3, 3}}, {{5, 3, 4}}, {{7, 3, 3}}};

constexpr const Cut& cutOf(Element element, int order) {
    return (element == Element::F32 ? cuts32f : cuts64f)[order - kOrders.first];
}

// Orders whose body works on single elements: too few of them, or not enough to gain by vectors.
// They are the ones that any alignment suits.
constexpr bool isScalar(Element element, int order) {
    const FamilyInfo& family =
        element == Element::F32 ? familyOf("WHT", "32f") : familyOf("WHT", "64f");
    return family.alignmentOf(order) == Alignment::Any;
}

// Elements of the buffer: the array between the passes, and behind it the scratch of one tile.
constexpr int bufferElements(const Cut& cut) {
    const int points = 1 << cut.order();
    const int tile = 1 << (cut.layers[0] + cut.layers[1]);
    return cut.passes() == 1 ? 0 : cut.passes() == 2 ? points : points + tile;
}

constexpr int bufferBytes(Element element, int order) {
    return bufferElements(cutOf(element, order)) * bytesOf(element);
}

}  // namespace orvgen::wht
