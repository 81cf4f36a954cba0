// SPDX-License-Identifier: MIT
// Small flows that run through the whole kernel compiler: a real three-point transform followed by
// a rotation by 45 degrees, in any scalar arithmetic; an eight-point complex transform of four-lane
// vectors; and flows that need more registers than there are, or store a zero where they read.
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "frame/kernel_family.h"
#include "kernelgen/value.h"

namespace orvgen::test {

// y0 = x0 + (x1 + x2); y1 = x0 - (x1 + x2)/2; y2 = sin60 (x2 - x1); y3, y4: y0 and x3 turned by 45
// degrees, combined in binary32.
template <class V>
std::array<V, 5> smallRealFlow(const std::array<V, 4>& x) {
    using kernelgen::cosTurn;
    using kernelgen::narrow;
    using kernelgen::ratio;
    using kernelgen::sinTurn;
    const V a = x[1] + x[2];
    const V d = x[1] - x[2];
    const V y0 = x[0] + a;
    const V p = narrow(cosTurn(1, 8) * y0);
    const V r = narrow(cosTurn(1, 8) * x[3]);
    return {y0, x[0] - ratio(1, 2) * a, -(sinTurn(1, 6) * d), p - r, p + r};
}

inline kernelgen::Kernel smallRealKernel(const kernelgen::KernelName& name,
                                         kernelgen::Arithmetic arithmetic) {
    using kernelgen::Value;
    kernelgen::Graph g(arithmetic);
    std::array<Value, 4> x;
    for (int i = 0; i < 4; ++i) x[static_cast<std::size_t>(i)] = Value(g, g.input(i));
    g.stage("three-point butterfly, rotation by 45 degrees");
    const auto y = smallRealFlow(x);
    g.stage("scale");
    for (int i = 0; i < 5; ++i)
        g.output(i, narrow(signStep(scaled(y[static_cast<std::size_t>(i)]))).id());
    g.output(5, g.zero(g.elementType()));
    return {name,  5,     "test flow", kernelgen::ScaleRule::ForwardByN, kernelgen::Alignment::Any,
            false, false, std::move(g)};
}

kernelgen::Kernel smallLaneKernel(const kernelgen::KernelName& name);

// More values are live at once than there are registers: every output takes all of them, each in
// another order. Eighteen sums of neighbours and eighteen products, which in Single arithmetic are
// binary32 and binary64; twenty vectors of four lanes.
inline constexpr int kCrowd = 18;
inline constexpr int kLaneCrowd = 20;
kernelgen::Kernel crowdedRealKernel(const kernelgen::KernelName& name,
                                    kernelgen::Arithmetic arithmetic);
kernelgen::Kernel crowdedLaneKernel(const kernelgen::KernelName& name);
// As many vectors, but each result takes two neighbours only and could be stored at once.
kernelgen::Kernel streamingLaneKernel(const kernelgen::KernelName& name);

// A zero goes to element 1 before anything else is stored, and all outputs take input 1: in place
// it must have been read by then.
kernelgen::Kernel zeroFirstKernel(const kernelgen::KernelName& name,
                                  kernelgen::Arithmetic arithmetic);

// The row of both families of crowded lanes.
constexpr FamilyInfo crowdedInLanes(std::string_view name) {
    return {.name = name,
            .element = "32fc",
            .src = Layout::Complex,
            .dst = Layout::Complex,
            .precision = Precision::Single,
            .numbers = {.first = 2 * kLaneCrowd, .last = 2 * kLaneCrowd},
            .scale = ScaleRule::ForwardByN,
            .alignment = {.twinFrom = 2 * kLaneCrowd},
            .readsAllFirst = true};
}

inline constexpr FamilyInfo kSmallFamilies[] = {
    {.name = "Small",
     .element = "32f",
     .precision = Precision::Single,
     .numbers = {.first = 5, .last = 5},
     .scale = ScaleRule::ForwardByN},
    {.name = "Small",
     .element = "64f",
     .precision = Precision::Double,
     .numbers = {.first = 5, .last = 5},
     .scale = ScaleRule::ForwardByN},
    {.name = "Crowded",
     .element = "32f",
     .precision = Precision::Single,
     .numbers = {.first = 2 * kCrowd, .last = 2 * kCrowd},
     .scale = ScaleRule::ForwardByN},
    {.name = "Crowded",
     .element = "64f",
     .precision = Precision::Double,
     .numbers = {.first = 2 * kCrowd, .last = 2 * kCrowd},
     .scale = ScaleRule::ForwardByN},
    {.name = "ZeroFirst",
     .element = "32f",
     .precision = Precision::Single,
     .numbers = {.first = 8, .last = 8},
     .scale = ScaleRule::ForwardByN},
    {.name = "ZeroFirst",
     .element = "64f",
     .precision = Precision::Double,
     .numbers = {.first = 8, .last = 8},
     .scale = ScaleRule::ForwardByN},
    {.name = "Small",
     .element = "32fc",
     .src = Layout::Complex,
     .dst = Layout::Complex,
     .precision = Precision::Single,
     .numbers = {.first = 8, .last = 8},
     .scale = ScaleRule::ForwardByN,
     .alignment = {.twinFrom = 8},
     .readsAllFirst = true},
    crowdedInLanes("Crowded"),
    crowdedInLanes("Streaming"),
};

inline kernelgen::Kernel smallKernel(const FamilyInfo& family, int number) {
    const kernelgen::KernelName name = kernelName(family, number);
    const auto arithmetic =
        family.isSingle() ? kernelgen::Arithmetic::Single : kernelgen::Arithmetic::Double;
    if (family.name == "Streaming") return streamingLaneKernel(name);
    if (family.isComplex())
        return family.name == "Small" ? smallLaneKernel(name) : crowdedLaneKernel(name);
    if (family.name == "Small") return smallRealKernel(name, arithmetic);
    return family.name == "Crowded" ? crowdedRealKernel(name, arithmetic)
                                    : zeroFirstKernel(name, arithmetic);
}

inline std::vector<KernelFamily> smallFamilies() {
    std::vector<KernelFamily> families;
    for (const FamilyInfo& f : kSmallFamilies)
        families.push_back({&f, [&f](int number) { return smallKernel(f, number); }});
    return families;
}

}  // namespace orvgen::test
