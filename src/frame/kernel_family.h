// SPDX-License-Identifier: MIT
// A family with the flows of its members, as a room of transforms hands it to the kernel compiler.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "frame/names.h"
#include "kernelgen/kernel.h"

namespace orvgen {

// The flow of a number is built when asked for.
struct KernelFamily {
    const FamilyInfo* info;
    std::function<kernelgen::Kernel(int number)> kernel;
};

inline kernelgen::ScaleRule scaleRuleOf(const FamilyInfo& family) {
    switch (family.scale) {
        case ScaleRule::ForwardByN:
            return kernelgen::ScaleRule::ForwardByN;
        case ScaleRule::InverseByN:
            return kernelgen::ScaleRule::InverseByN;
        case ScaleRule::BothByN:
            return kernelgen::ScaleRule::BothByN;
        default:
            throw std::logic_error("a kernel without a scale");
    }
}

inline kernelgen::Alignment alignmentOf(const FamilyInfo& family, int number) {
    switch (family.alignmentOf(number)) {
        case Alignment::Twin:
            return kernelgen::Alignment::Twin;
        case Alignment::TwoBodies:
            return kernelgen::Alignment::TwoBodies;
        default:
            return kernelgen::Alignment::Any;
    }
}

// A member as the table describes it: what else there is to say of it is the room's.
inline kernelgen::Kernel kernelOf(const FamilyInfo& family, int number, std::string method,
                                  kernelgen::Graph flow) {
    return {.name = kernelName(family, number),
            .length = family.points(number),
            .method = std::move(method),
            .scale = scaleRuleOf(family),
            .alignment = alignmentOf(family, number),
            .readsAllFirst = family.readsAllFirst,
            .flow = std::move(flow)};
}

}  // namespace orvgen
