// SPDX-License-Identifier: MIT
// Lowering: from the value graph to instructions on virtual registers.
#pragma once

#include "code.h"
#include "graph.h"

namespace orvgen::kernelgen {

struct LoweringOptions {
    // Touch src and dst by 8-byte halves only, also where neighbours would fill a vector.
    bool halvesOnly = false;
};

Code lower(const Graph& graph, const LoweringOptions& options);

// One of the two halves of lower(): scalar and pair graphs map node by node; four-lane graphs get
// their data movement (loads in pairs, transposes, interleaving) from the lanes that they pack.
Code lowerNodes(const Graph& graph);
Code lowerLanes(const Graph& graph, const LoweringOptions& options);

// The pool entry of a stored constant, shared by equal constants.
class PoolBuilder {
  public:
    explicit PoolBuilder(Code& code) : code_(code) {}
    Address entry(const StoredConstant& constant);
    Address entry(const PoolEntry& entry);

  private:
    Code& code_;
};

}  // namespace orvgen::kernelgen
