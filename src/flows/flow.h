// SPDX-License-Identifier: MIT
// A flow: runs plans on values of some kind, V = Value for the graph of a kernel or plain numbers.
//
// A block reads its operands as binary32 values (it narrows them, once per value) and hands its
// results on as they stand, which may be double expressions that nobody has rounded yet.
#pragma once

#include <stdexcept>
#include <string>

#include "kernelgen/graph.h"
#include "spectrum.h"

namespace orvgen::flows {

using plan::Plan;
using plan::SumOrder;
using plan::Unrounded;

template <class V>
class Flow {
  public:
    // Blocks that name no order of their sums take this one.
    explicit Flow(kernelgen::Graph* graph = nullptr, const SumOrder& sums = {})
        : graph_(graph), sums_(sums) {}

    // The transform of a plan: bins of samples, or samples of bins. `e` is the exponent of the root
    // of unity (see plan::Transform).
    Sequence<V> run(const Plan& plan, long e, const Sequence<V>& x);

    const SumOrder& sums() const { return sums_; }

    // Names what follows, for the comments of the emitted kernel; of the outermost plan only.
    void stage(const std::string& name) {
        if (graph_ != nullptr && depth_ == 1) graph_->stage(name);
    }

  private:
    Sequence<V> runNode(const Plan& plan, long e, const Sequence<V>& x);

    kernelgen::Graph* graph_;
    SumOrder sums_;
    int depth_ = 0;
};

// The flows that kernels are made of are compiled in flow.cpp.
extern template class Flow<kernelgen::Value>;

inline bool isInverse(Transform transform) {
    return transform == Transform::InverseReal || transform == Transform::InverseOdd;
}

// An operand as a double expression takes it: rounded, or as it stands where the plan says so.
template <class V>
V operand(const Expression<V>& e, bool unrounded) {
    if (!unrounded) return narrow(e);
    const V open = e.formed();
    if (!open.isDouble()) throw std::logic_error("a value that is rounded already is carried on");
    return open;
}

}  // namespace orvgen::flows
