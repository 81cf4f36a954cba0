// SPDX-License-Identifier: MIT
// What tests ask of plans: all nodes of a tree, equality, the choices made in it, and the words by
// which the tables of tests/data name a decomposition.
#pragma once

#include <functional>
#include <string>

#include "plan/plan.h"

namespace orvgen::test {

// The parts of a node, as often as they run.
std::vector<plan::PlanPtr> partsOf(const plan::Plan& plan);
void forEachNode(const plan::Plan& plan, const std::function<void(const plan::Plan&)>& visit);

// Whether two trees are the same in every node and choice.
bool sameTree(const plan::Plan& a, const plan::Plan& b);

// How many values are rounded for a sum and go on unrounded as well.
int unroundedValues(const plan::Plan& plan);

// "good-thomas 3 5 4", "twiddled 5 5", "rader 12", "binary", "butterfly", "direct": nested joins of
// one kind by their blocks, in the order in which these run.
std::string methodWords(const plan::Plan& plan);

}  // namespace orvgen::test
