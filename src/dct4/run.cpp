// The run: the one operation that a plan is built for.
#include "dct4/elements.h"
#include "dct4/flows/dct4.h"
#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

namespace {

template <int N>
ORVGEN_DCT4_INLINE OrvStatus body(const Real* src, Real* dst) {
    dct4<N, Real>([&](auto j) ORVGEN_DCT4_INLINE_LAMBDA { return loadElement(src + j); },
                  [&](auto k, Real y) ORVGEN_DCT4_INLINE_LAMBDA { storeElement(dst + k, y); });
    return orvOk;
}

// First stage into the scratch, second stage out of it. A stage whose wrapper is not active is left
// out. Not inlined, so that the straight-line bodies keep the run function to themselves.
[[gnu::noinline]] OrvStatus twoStages(const Env1* plan, const Real* src, Real* dst) {
    const Env3* stageOne = static_cast<const Env3*>(EnvList_get(plan->stageOneRole, 0));
    if (stageOne->active == 1) {
        const Env5* transform = static_cast<const Env5*>(EnvList_get(stageOne->transformRole, 0));
        const OrvStatus status = FAMILY(env5_compute)(transform, plan->scratch, src);
        if (status != orvOk) {
            return status;
        }
    }
    const Env2* stageTwo = static_cast<const Env2*>(EnvList_get(plan->stageTwoRole, 0));
    if (stageTwo->active == 1) {
        const Env4* kernel = static_cast<const Env4*>(EnvList_get(stageTwo->kernelRole, 0));
        return FAMILY(env4_compute)(kernel, dst, plan->scratch);
    }
    return orvOk;
}

}  // namespace
}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4

using namespace orvgen::dct4;

OrvStatus EXPORTED(DCT4)(const Real* src, Real* dst, Spec* spec) {
    if (spec == nullptr || src == nullptr || dst == nullptr) {
        return orvErrNullPtr;
    }
    const Env1* plan = reinterpret_cast<const Env1*>(spec);
    switch (plan->rule) {
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
