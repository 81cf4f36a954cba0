// SPDX-License-Identifier: MIT
#include "plan.h"

#include <stdexcept>

namespace orvgen::plan {

namespace {

PlanPtr make(int length, Node node) {
    return std::make_shared<const Plan>(Plan{Transform::Complex, length, std::move(node)});
}

// The stage that mirrors another one: its plan, as many times as the other stage has points.
Stage stageOf(const Stage& mirroredOne, const Stage& otherOne) {
    return {static_cast<std::size_t>(otherOne.front()->length), mirrored(mirroredOne.front())};
}

}  // namespace

PlanPtr mirrored(const PlanPtr& plan) {
    if (plan->transform != Transform::Complex)
        throw std::logic_error("complex transforms have a mirror");
    if (const auto* join = plan->as<GoodThomas>())
        return make(plan->length, GoodThomas{.first = stageOf(join->second, join->first),
                                             .second = stageOf(join->first, join->second)});
    if (const auto* join = plan->as<CooleyTukey>())
        return make(plan->length,
                    CooleyTukey{.first = stageOf(join->second, join->first),
                                .second = stageOf(join->first, join->second),
                                .columns = join->rows,
                                .rows = join->columns,
                                .twiddleLanes = join->twiddleLanes == TwiddleLanes::Rows
                                                    ? TwiddleLanes::Columns
                                                    : TwiddleLanes::Rows});
    return plan;
}

}  // namespace orvgen::plan
