// SPDX-License-Identifier: MIT
// The binary64 real transform and its inverse of every length, in the three layouts.
#include "cpp/real.h"

namespace orvgen::test {
namespace {

using E = double;

COMPARE_REAL(Ccs64, ccs, CCS, 64f)
COMPARE_REAL(Pack64, pack, Pack, 64f)
COMPARE_REAL(Perm64, perm, Perm, 64f)

}  // namespace
}  // namespace orvgen::test
