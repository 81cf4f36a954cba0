// SPDX-License-Identifier: MIT
#include "operations.h"

#include "support/integer_core.h"

namespace orvgen::bench {

using test::Kind;

OperationCounts operationsOf(const test::MachineCode& code, const std::string& kernel) {
    OperationCounts counts;
    if (!code.has(kernel)) return counts;
    const test::Trace trace = test::runIntegers(code, kernel, {});
    if (trace.status != 0 || !trace.complaints.empty()) return counts;
    for (const test::Step& step : trace.steps) {
        const test::Instruction& in = *step.instruction;
        counts["issue"] += 1;
        if (step.access && step.access->load) counts["load"] += 1;
        if (step.access && step.access->store) counts["store"] += 1;
        const bool unpacks = in.mnemonic.starts_with("unpck") || in.mnemonic == "movhlps";
        // A half load into a register is a load and a shuffle.
        const bool halfLoad = in.kind == Kind::move && in.mergesFirst && in.loads();
        if (in.kind == Kind::add) counts["add"] += 1;
        if (in.kind == Kind::multiply) counts["multiply"] += 1;
        if (in.kind == Kind::logic && in.mergesFirst) counts["logic"] += 1;
        if (in.kind == Kind::convert) counts["convert"] += 1;
        if (halfLoad || (in.kind == Kind::shuffle && unpacks)) {
            counts["unpack"] += 1;
        } else if (in.kind == Kind::shuffle && !(in.sse3 && in.memory())) {
            counts["shuffle"] += 1;
        }
    }
    return counts;
}

}  // namespace orvgen::bench
