// SPDX-License-Identifier: MIT
// The batches in 256-bit vectors. Compiled for processors that have them: nothing of this is called
// before targets.cpp has asked, and nothing of it is shared with code for other processors, so that
// all stands in a namespace of its own.
#include <array>
#include <bit>
#include <limits>

#include "batch/direct.h"
#include "batch/few.h"
#include "batch/lanes_avx2.h"
#include "batch/targets.h"
#include "frame/families.h"

namespace orvgen::batch::avx2 {

// clang-format off
#define ORVGEN_BATCH_TARGET avx2
#define ORVGEN_BATCH_SHORT_ROWS(F, NAME, T) F(NAME, 8, T) F(NAME, 16, T)
#include "batch/kernels.h"
#include "batch/layout.h"
#include "batch/far_rows.h"
#include "batch/blocks.h"
#include "batch/forms.h"
#include "batch/far_columns.h"
#include "batch/tiles.h"
#include "batch/pairs.h"
#include "batch/lane_transforms.h"
// clang-format on

}  // namespace orvgen::batch::avx2

namespace orvgen::batch {

template <class R>
std::size_t runBlocksAvx2(const Task<R>& task) {
    return avx2::runTask(task);
}
template <class R>
std::size_t runBlocksAvx2(const WhtTask<R>& task) {
    return avx2::runWht(task);
}
template <class R>
std::size_t runBlocksAvx2(const Dct4Task<R>& task) {
    return avx2::runDct4(task);
}

template std::size_t runBlocksAvx2(const Task<float>&);
template std::size_t runBlocksAvx2(const Task<double>&);
template std::size_t runBlocksAvx2(const WhtTask<float>&);
template std::size_t runBlocksAvx2(const WhtTask<double>&);
template std::size_t runBlocksAvx2(const Dct4Task<float>&);
template std::size_t runBlocksAvx2(const Dct4Task<double>&);

template <class R>
constinit const std::array<Direct<R>, directForms> DirectsAvx2<R>::of = avx2::directs<R>();
template struct DirectsAvx2<float>;
template struct DirectsAvx2<double>;

}  // namespace orvgen::batch
