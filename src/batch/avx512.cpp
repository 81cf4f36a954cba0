// SPDX-License-Identifier: MIT
// The batches in 512-bit vectors. Compiled for processors that have them: nothing of this is called
// before targets.cpp has asked, and nothing of it is shared with code for other processors, so that
// all stands in a namespace of its own.
#include <array>
#include <bit>
#include <limits>

#include "batch/direct.h"
#include "batch/few.h"
#include "batch/lanes_avx512.h"
#include "batch/targets.h"
#include "frame/families.h"

namespace orvgen::batch::avx512 {

// clang-format off
#define ORVGEN_BATCH_TARGET avx512
// Vectors of 64 bytes take short rows faster transposed.
#define ORVGEN_BATCH_SHORT_ROWS(F, NAME, T)
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

}  // namespace orvgen::batch::avx512

namespace orvgen::batch {

template <class R>
std::size_t runBlocksAvx512(const Task<R>& task) {
    return avx512::runTask(task);
}
template <class R>
std::size_t runBlocksAvx512(const WhtTask<R>& task) {
    return avx512::runWht(task);
}
template <class R>
std::size_t runBlocksAvx512(const Dct4Task<R>& task) {
    return avx512::runDct4(task);
}

template std::size_t runBlocksAvx512(const Task<float>&);
template std::size_t runBlocksAvx512(const Task<double>&);
template std::size_t runBlocksAvx512(const WhtTask<float>&);
template std::size_t runBlocksAvx512(const WhtTask<double>&);
template std::size_t runBlocksAvx512(const Dct4Task<float>&);
template std::size_t runBlocksAvx512(const Dct4Task<double>&);

template <class R>
constinit const std::array<Direct<R>, directForms> DirectsAvx512<R>::of = avx512::directs<R>();
template struct DirectsAvx512<float>;
template struct DirectsAvx512<double>;

}  // namespace orvgen::batch
