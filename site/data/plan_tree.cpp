// SPDX-License-Identifier: MIT
#include "plan_tree.h"

#include <stdexcept>

#include "dft/double_plans.h"
#include "dft/single_lengths.h"
#include "hartley/hartley.h"
#include "plan/notation.h"
#include "realdft/plans.h"

namespace orvgen::site {

using namespace plan;

namespace {

std::string points(const Plan& plan) {
    const std::string n = std::to_string(plan.length);
    switch (plan.transform) {
        case plan::Transform::Real:
            return n + " real points";
        case plan::Transform::InverseReal:
            return n + " real points, inverse";
        case plan::Transform::Odd:
            return n + " real points, odd frequencies";
        case plan::Transform::InverseOdd:
            return n + " real points, odd frequencies, inverse";
        default:
            return n + " complex points";
    }
}

std::string text(const Plan& plan) { return notation(plan); }

Branch part(const std::string& role, const PlanPtr& plan) {
    Branch branch = branchOf(*plan);
    branch.role = role;
    return branch;
}

// The blocks of a stage, neighbours with the same plan together.
void addStage(Branch& join, const std::string& role, const Stage& stage) {
    for (std::size_t i = 0, end = 0; i < stage.size(); i = end) {
        while (end < stage.size() && stage[end]->transform == stage[i]->transform &&
               text(*stage[end]) == text(*stage[i]))
            ++end;
        join.parts.push_back(part(
            role + ", " + (end - i == 1 ? "once" : std::to_string(end - i) + " times"), stage[i]));
    }
}

struct Describer {
    const Plan& plan;

    Branch made(const std::string& what) const { return {"", what + points(plan), text(plan)}; }

    Branch operator()(const Block&) const { return made("Direct block of "); }

    template <class Join>
    Branch stages(const Join& join, const char* what) const {
        Branch branch = made(what);
        addStage(branch, "first", join.first);
        addStage(branch, "second", join.second);
        return branch;
    }
    Branch operator()(const GoodThomas& join) const {
        return stages(join, "Good-Thomas join, no twiddles, of ");
    }
    Branch operator()(const CooleyTukey& join) const {
        return stages(join, "Cooley-Tukey join, with twiddles, of ");
    }

    Branch operator()(const RealRader& rader) const {
        Branch branch = made("Rader block of ");
        branch.parts = {part("transform of the cycle", rader.cycle),
                        part("back, even frequencies", rader.even),
                        part("back, odd frequencies", rader.odd)};
        return branch;
    }

    Branch operator()(const InverseRealRader& rader) const {
        Branch branch = made("Rader block, mirrored, of ");
        branch.parts = {part("even part of the cycle", rader.even),
                        part("odd part of the cycle", rader.odd)};
        if (rader.cycle) branch.parts.push_back(part("back through the cycle", rader.cycle));
        if (rader.cycleEven) branch.parts.push_back(part("back, even", rader.cycleEven));
        if (rader.cycleOdd) branch.parts.push_back(part("back, odd", rader.cycleOdd));
        return branch;
    }

    Branch operator()(const ComplexRader& rader) const {
        Branch branch = made("Rader block of ");
        branch.parts = {part("transform of the cycle", rader.cycle),
                        part("back through the cycle", rader.back)};
        return branch;
    }

    Branch operator()(const LaneRader&) const {
        return made("Rader block with the cycle in real lanes, of ");
    }

    Branch operator()(const Bluestein& chirp) const {
        Branch branch = made("Bluestein's algorithm for ");
        branch.parts = {part("transform of the padded sequence", chirp.forward),
                        part("the way back", chirp.back)};
        return branch;
    }

    Branch operator()(const Lanes& lanes) const {
        Branch branch = made("Real and imaginary parts as two real transforms: ");
        if (text(*lanes.re) == text(*lanes.im)) {
            branch.parts = {part("each of both", lanes.re)};
        } else {
            branch.parts = {part("real parts", lanes.re), part("imaginary parts", lanes.im)};
        }
        return branch;
    }

    Branch operator()(const Alternating& odd) const {
        Branch branch = made("Alternating signs, then an ordinary transform: ");
        branch.parts = {part("then", odd.plan)};
        return branch;
    }

    Branch operator()(const Renumbered& block) const {
        Branch branch = made(block.what == Renumbered::What::Samples ? "Samples renumbered: "
                                                                     : "Bins renumbered: ");
        branch.parts = {part("then", block.plan)};
        return branch;
    }
};

Branch passesOf(const kernelgen::Kernel& kernel, const kernelgen::Passes& passes) {
    Branch root{"", "Layers of butterflies over " + std::to_string(kernel.length) + " points",
                kernel.method};
    const std::string each =
        passes.tiles > 1 ? "for each of " + std::to_string(passes.tiles) + " tiles" : "first";
    for (const kernelgen::Pass& pass : passes.tile) root.parts.push_back({each, pass.what, ""});
    root.parts.push_back({passes.tile.empty() ? "all" : "last",
                          passes.last.what.empty() ? "one straight block" : passes.last.what, ""});
    return root;
}

}  // namespace

PlanPtr planOf(const FamilyInfo& family, int length) {
    switch (family.transform) {
        case orvgen::Transform::Dft:
            if (family.isComplex())
                return family.isSingle() ? dft::singleLength(length).plan
                                         : dft::doublePlans().plan(length);
            return family.direction == Direction::Forward
                       ? realdft::forwardPlans().plan(length)
                       : realdft::inversePlans(family.src).plan(length);
        case orvgen::Transform::Hartley:
            return hartley::planOf(length);
        default:
            return nullptr;
    }
}

Branch branchOf(const Plan& plan) { return std::visit(Describer{plan}, plan.node); }

Branch branchOf(const kernelgen::Kernel& kernel, const FamilyInfo& family, int length) {
    if (kernel.passes) return passesOf(kernel, *kernel.passes);
    const Branch plan = branchOf(*planOf(family, length));
    const std::string n = std::to_string(length);
    Branch root{"", "", kernel.method, {plan}};
    if (family.isComplex() && !family.isSingle())
        root.what = "Complex transform of " + n +
                    " points: the real flow on pairs of a real and an imaginary part, then "
                    "y[k], y[N-k] = P +- i Q";
    else if (family.transform == orvgen::Transform::Hartley)
        root.what = "Hartley transform of " + n + " points through the " +
                    (hartley::runsForwardFlow(length) ? "forward" : "inverse") + " real transform";
    else
        return plan;
    return root;
}

}  // namespace orvgen::site
