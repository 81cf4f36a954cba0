// SPDX-License-Identifier: MIT
// The binary32 real transform and its inverse of every length, in the three layouts.
#include "cpp/real.h"

namespace orvgen::test {
namespace {

using E = float;

COMPARE_REAL(Ccs32, ccs, CCS, 32f)
COMPARE_REAL(Pack32, pack, Pack, 32f)
COMPARE_REAL(Perm32, perm, Perm, 32f)

}  // namespace
}  // namespace orvgen::test
