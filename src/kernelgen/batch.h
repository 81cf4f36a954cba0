// SPDX-License-Identifier: MIT
// A kernel for batches: W transforms at once, one in each lane of the widest vectors of a target.
//
//     void f(const R* srcRe, const R* srcIm, ptrdiff_t srcStep,
//            R* dstRe, R* dstIm, ptrdiff_t dstStep, int32_t scale,
//            size_t blocks, ptrdiff_t srcBlock, ptrdiff_t dstBlock);
//
// Element n of the W transforms is one vector, aligned or not, at srcRe + n srcStep (its real part,
// or the real element) and srcIm + n srcStep (the imaginary part); results likewise. Steps are in
// bytes. A side of real numbers has no second pointer: what is passed for it is not used. `scale`
// is a ScaleKind. The same is done `blocks` times, at least once, the pointers moved on by srcBlock
// and dstBlock bytes each time. Equal pointers and steps on both sides are harmless, any other
// overlap is not.
//
// A kernel on pairs is called in the same way for interleaved complex elements, of which those of
// the transforms stand side by side. In binary32 and in mixed families it works on W transforms:
// srcIm (dstIm) is one vector behind srcRe (dstRe), and the half spectrum is written with its
// zeros. In complex binary64 it works on as many transforms as a vector has parts of 16 bytes, as
// the kernels for rows do, and takes srcRe and dstRe only.
#pragma once

#include "compile.h"
#include "lower_wide.h"

namespace orvgen::kernelgen {

// orvgHartley_16_32f on the target avx2 is owngBatchHartley_16_32f_avx2.
std::string batchName(const KernelName& kernel, const Target& target);

// Which sides are complex is `options`' to say; the flow is the single kernel's own.
CompiledKernel compileBatch(const Kernel& kernel, const Target& target, WideOptions options);

std::string pairsName(const KernelName& kernel, const Target& target);
CompiledKernel compilePairs(const Kernel& kernel, const Target& target, WideOptions options);

}  // namespace orvgen::kernelgen
