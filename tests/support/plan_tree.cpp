// SPDX-License-Identifier: MIT
#include "support/plan_tree.h"

namespace orvgen::test {

using plan::Plan;
using plan::PlanPtr;
using plan::Unrounded;

std::vector<PlanPtr> partsOf(const Plan& plan) {
    std::vector<PlanPtr> parts;
    const auto take = [&](const plan::Stage& stage) {
        parts.insert(parts.end(), stage.begin(), stage.end());
    };
    const auto takeJoin = [&](const auto& join) {
        take(join.first);
        take(join.second);
    };
    if (const auto* node = plan.as<plan::GoodThomas>()) takeJoin(*node);
    if (const auto* node = plan.as<plan::CooleyTukey>()) takeJoin(*node);
    if (const auto* node = plan.as<plan::RealRader>()) take({node->cycle, node->even, node->odd});
    if (const auto* node = plan.as<plan::InverseRealRader>()) {
        take({node->even, node->odd});
        if (node->cycle)
            take({node->cycle});
        else
            take({node->cycleEven, node->cycleOdd});
    }
    if (const auto* node = plan.as<plan::ComplexRader>()) take({node->cycle, node->back});
    if (const auto* node = plan.as<plan::Bluestein>()) take({node->forward, node->back});
    if (const auto* node = plan.as<plan::Lanes>()) take({node->re, node->im});
    if (const auto* node = plan.as<plan::Alternating>()) take({node->plan});
    if (const auto* node = plan.as<plan::Renumbered>()) take({node->plan});
    return parts;
}

void forEachNode(const Plan& plan, const std::function<void(const Plan&)>& visit) {
    visit(plan);
    for (const PlanPtr& part : partsOf(plan)) forEachNode(*part, visit);
}

namespace {

bool sameChoices(const Plan& a, const Plan& b) {
    if (const auto* x = a.as<plan::Block>())
        return x->unrounded == b.as<plan::Block>()->unrounded &&
               x->sums == b.as<plan::Block>()->sums;
    if (const auto* x = a.as<plan::CooleyTukey>()) {
        const auto* y = b.as<plan::CooleyTukey>();
        return x->columns == y->columns && x->rows == y->rows &&
               x->twiddleLanes == y->twiddleLanes && x->conjugateRows == y->conjugateRows;
    }
    if (const auto* x = a.as<plan::InverseRealRader>())
        return x->unrounded == b.as<plan::InverseRealRader>()->unrounded &&
               !x->cycle == !b.as<plan::InverseRealRader>()->cycle;
    if (const auto* x = a.as<plan::ComplexRader>())
        return x->form == b.as<plan::ComplexRader>()->form;
    if (const auto* x = a.as<plan::LaneRader>())
        return x->offset == b.as<plan::LaneRader>()->offset &&
               x->sineFolds == b.as<plan::LaneRader>()->sineFolds;
    if (const auto* x = a.as<plan::Renumbered>()) return x->what == b.as<plan::Renumbered>()->what;
    return true;
}

template <class Join>
void collectBlocks(const Plan& plan, std::string& words) {
    const auto* join = plan.as<Join>();
    if (join == nullptr) {
        words += " " + std::to_string(plan.length);
        return;
    }
    collectBlocks<Join>(*join->first[0], words);
    collectBlocks<Join>(*join->second[0], words);
}

}  // namespace

bool sameTree(const Plan& a, const Plan& b) {
    if (a.transform != b.transform || a.length != b.length || a.node.index() != b.node.index() ||
        !sameChoices(a, b))
        return false;
    const auto x = partsOf(a), y = partsOf(b);
    if (x.size() != y.size()) return false;
    for (std::size_t i = 0; i < x.size(); ++i)
        if (!sameTree(*x[i], *y[i])) return false;
    return true;
}

int unroundedValues(const Plan& plan) {
    int count = 0;
    forEachNode(plan, [&](const Plan& node) {
        Unrounded which = Unrounded::None;
        if (const auto* block = node.as<plan::Block>()) which = block->unrounded;
        if (const auto* rader = node.as<plan::InverseRealRader>()) which = rader->unrounded;
        // the operands of a two-point block then are not rounded at all
        count += which != Unrounded::None && which != Unrounded::Both;
    });
    return count;
}

std::string methodWords(const Plan& plan) {
    const int n = plan.length;
    const bool isBinary = (n & (n - 1)) == 0;
    std::string words;
    if (plan.as<plan::GoodThomas>()) {
        collectBlocks<plan::GoodThomas>(plan, words);
        return "good-thomas" + words;
    }
    if (plan.as<plan::CooleyTukey>()) {
        if (isBinary) return "binary";
        collectBlocks<plan::CooleyTukey>(plan, words);
        return "twiddled" + words;
    }
    if (plan.as<plan::Block>()) return n == 2 ? "butterfly" : isBinary ? "binary" : "direct";
    return "rader " + std::to_string(n - 1);
}

}  // namespace orvgen::test
