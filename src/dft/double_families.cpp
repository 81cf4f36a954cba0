// SPDX-License-Identifier: MIT
// The complex binary64 kernels: two bodies in one function up to length 4, twins from 5 up.
#include "double_flow.h"
#include "double_plans.h"
#include "families.h"
#include "plan/notation.h"

namespace orvgen::dft {

using flows::Direction;
using kernelgen::Alignment;
using kernelgen::Family;
using kernelgen::Kernel;
using kernelgen::ScaleRule;

namespace {

Family family(const std::string& name, Direction direction) {
    Family f;
    f.name = name;
    for (int n = 2; n <= 64; ++n) f.lengths.push_back(n);
    f.kernel = [name, direction](int n) {
        return Kernel{
            kernelgen::memberName(name, n),
            n,
            plan::notation(*doublePlans().plan(n)),
            direction == Direction::Forward ? ScaleRule::ForwardByN : ScaleRule::InverseByN,
            n < 5 ? Alignment::TwoBodies : Alignment::Twin,
            false,
            true,
            doubleFlow(direction, n)};
    };
    return f;
}

}  // namespace

std::vector<Family> complexDoubleFamilies() {
    return {family("orvgDFTFwd_CToC_64fc", Direction::Forward),
            family("orvgDFTInv_CToC_64fc", Direction::Inverse)};
}

}  // namespace orvgen::dft
