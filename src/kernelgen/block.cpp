// SPDX-License-Identifier: MIT
#include "block.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

#include "core_model.h"
#include "layout.h"

namespace orvgen::kernelgen {

namespace {

constexpr double kSpillWeight = 0.1;
constexpr double kInstructionWeight = 0.02;
// Of two forms with pairs that the models find alike the one with fewer instructions was faster,
// measured over some two hundred kernels: it weighs on the front end, which they leave out.
constexpr double kPairsInstructionWeight = 0.06;

// Some processors lower their clock for a while after any instruction on vectors of 32 bytes, by 15
// percent at most; newer ones do not, and weigh more.
constexpr double kWideClockLoss = 1.03;
// The cycles of the vzeroupper that follows them.
constexpr double kUppersCleared = 1.0;

// Pairs make fewer instructions that wait longer for one another; calls in a row overlap less on a
// core than in a model.
constexpr double kAloneWeight = 0.05;

// What a form may cost more than another in few orders and yet be tried in many.
constexpr double kPromising = 1.1;

bool isWide(const Code& code) {
    return std::ranges::any_of(code.instructions,
                               [](const Instruction& i) { return i.width == 32; });
}

// What forms with pairs and without are compared by.
double costOfPairs(const Code& form, const Block& block, const Target& target) {
    const auto [one, other] = coresOf(target);
    const double alone = (aloneCycles(block.instructions, one, target) +
                          aloneCycles(block.instructions, other, target)) /
                         2;
    const double cost = block.cost + kAloneWeight * alone;
    return isWide(form) ? cost * kWideClockLoss + kUppersCleared : cost;
}

// The forms that few orders leave a chance beside the others.
std::vector<const Code*> promising(const std::vector<Code>& forms, const Target& target,
                                   const AllocationOptions& options, int frameLimit) {
    std::vector<std::pair<double, const Code*>> tried;
    double least = std::numeric_limits<double>::infinity();
    for (const Code& form : forms) {
        const auto block = tryBlock(form, target, options, frameLimit, Search::Short);
        // Where none of few orders keeps within the frame, one of many may.
        const double cost = block ? costOfPairs(form, *block, target) : 0.0;
        if (block) least = std::min(least, cost);
        tried.emplace_back(cost, &form);
    }
    std::vector<const Code*> left;
    for (const auto& [cost, form] : tried)
        if (cost <= kPromising * least) left.push_back(form);
    return left;
}

}  // namespace

std::optional<Block> tryBlock(const Code& code, const Target& target,
                              const AllocationOptions& options, int frameLimit, Search search) {
    std::optional<Allocation> best;
    Block block;
    const auto cores = coresOf(target);
    const double instructionWeight = target.pairs ? kPairsInstructionWeight : kInstructionWeight;
    for (const std::vector<int>& order : candidateOrders(code, target, search)) {
        Allocation allocation = allocate(code, order, target, options);
        const int frame = frameBytes(allocation.slotSizes);
        if (frameLimit >= 0 && frame > frameLimit) continue;
        const auto mean = [&](auto figure) {
            return (figure(allocation.instructions, cores[0], target) +
                    figure(allocation.instructions, cores[1], target)) /
                   2;
        };
        const double cycles = mean(modelCycles);
        const double cost = cycles + kSpillWeight * allocation.spills +
                            instructionWeight * static_cast<double>(allocation.instructions.size());
        if (best && cost >= block.cost) continue;
        block.frameBytes = frame;
        block.spills = allocation.spills;
        block.modelCycles = cycles;
        block.portBound = mean(portBound);
        block.cost = cost;
        best = std::move(allocation);
    }
    if (!best) return std::nullopt;
    layOutFrame(*best);
    block.instructions = std::move(best->instructions);
    renumberRegisters(block.instructions, target);
    block.stages = code.stages;
    block.pool = code.pool;
    block.scale = code.scale;
    return block;
}

Block compileBlock(const Code& code, const Target& target, const AllocationOptions& options,
                   int frameLimit, Search search) {
    std::optional<Block> block = tryBlock(code, target, options, frameLimit, search);
    if (!block) throw std::runtime_error("no order of the kernel keeps within its frame");
    return *std::move(block);
}

Block compileForms(const std::vector<Code>& forms, const Target& target,
                   const AllocationOptions& options, int frameLimit) {
    std::vector<const Code*> tried;
    if (target.pairs && forms.size() > 1) {
        tried = promising(forms, target, options, frameLimit);
    } else {
        for (const Code& form : forms) tried.push_back(&form);
    }
    std::optional<Block> best;
    for (const Code* form : tried) {
        std::optional<Block> block = tryBlock(*form, target, options, frameLimit);
        if (!block) continue;
        if (target.pairs) block->cost = costOfPairs(*form, *block, target);
        if (!best || block->cost < best->cost) best = std::move(block);
    }
    if (!best) throw std::runtime_error("no order of the kernel keeps within its frame");
    return *std::move(best);
}

}  // namespace orvgen::kernelgen
