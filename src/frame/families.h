// What the library's own code and its tests know about the families beyond the lists of the public header.

#ifndef ORVGEN_FRAME_FAMILIES_H
#define ORVGEN_FRAME_FAMILIES_H

#include "orvgen.h"

namespace orvgen {

constexpr int firstLength = 2;
constexpr int lastLength = 64;
constexpr int firstOrder = 1;
constexpr int lastOrder = 13;

}  // namespace orvgen

#endif
