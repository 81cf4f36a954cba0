// SPDX-License-Identifier: MIT
// The run: the one operation that a plan is built for.
#pragma once

#include "dct4/elements.h"
#include "dct4/flows/dct4.h"
#include "dct4/operations.h"
#include "dct4/radix.h"
#include "orvgen.h"

namespace orvgen::dct4 {

template <int N, class Real>
ORVGEN_DCT4_INLINE OrvStatus body(const Real* src, Real* dst) {
    dct4<N, Real>([&](auto j) ORVGEN_DCT4_INLINE_LAMBDA { return loadElement(src + j); },
                  [&](auto k, Real y) ORVGEN_DCT4_INLINE_LAMBDA { storeElement(dst + k, y); });
    return orvOk;
}

// First stage into the scratch, second stage out of it. A stage whose wrapper is not active is left
// out. Not inlined, so that the straight-line bodies keep the run function to themselves.
template <class Real>
[[gnu::noinline]] OrvStatus twoStages(const Env1<Real>& plan, const Real* src, Real* dst) {
    const auto& stageOne = childOf<Env3<Real>>(plan.stageOneRole);
    if (stageOne.active == 1) {
        const auto& transform = childOf<Env5<Real>>(stageOne.transformRole);
        const OrvStatus status = Operations<Env5<Real>>::compute(&transform, plan.scratch, src);
        if (status != orvOk) {
            return status;
        }
    }
    const auto& stageTwo = childOf<Env2<Real>>(plan.stageTwoRole);
    if (stageTwo.active == 1) {
        const auto& kernel = childOf<Env4<Real>>(stageTwo.kernelRole);
        return Operations<Env4<Real>>::compute(&kernel, dst, plan.scratch);
    }
    return orvOk;
}

// Inlined into the exported function: a short length costs no call.
template <class Real, class Spec>
ORVGEN_DCT4_INLINE OrvStatus runPlan(const Real* src, Real* dst, const Spec* spec) {
    if (spec == nullptr || src == nullptr || dst == nullptr) {
        return orvErrNullPtr;
    }
    const Env1<Real>& plan = *reinterpret_cast<const Env1<Real>*>(spec);
    switch (plan.rule) {
        case 1:
            return body<2>(src, dst);
        case 2:
            return body<4>(src, dst);
        case 3:
            return body<8>(src, dst);
        case 4:
            return body<16>(src, dst);
        case 5:
            return body<32>(src, dst);
        case treeRule:
            return twoStages(plan, src, dst);
        default:
            return orvErrPlan;
    }
}

}  // namespace orvgen::dct4
