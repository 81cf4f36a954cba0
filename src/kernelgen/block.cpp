// SPDX-License-Identifier: MIT
#include "block.h"

#include <algorithm>
#include <stdexcept>

#include "core_model.h"
#include "layout.h"

namespace orvgen::kernelgen {

namespace {

constexpr double kSpillWeight = 0.1;
constexpr double kInstructionWeight = 0.02;
// Some processors lower their clock for a while after any instruction on vectors of 32 bytes, by 15
// percent at most; newer ones do not, and count twice.
constexpr double kWideClockLoss = 1.05;

// Pairs make fewer instructions that wait longer for one another; calls in a row overlap less on a
// core than in a model.
constexpr double kAloneWeight = 0.05;

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
    return (block.cost + kAloneWeight * alone) * (isWide(form) ? kWideClockLoss : 1.0);
}

}  // namespace

std::optional<Block> tryBlock(const Code& code, const Target& target,
                              const AllocationOptions& options, int frameLimit, Search search) {
    std::optional<Allocation> best;
    Block block;
    const auto cores = coresOf(target);
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
        const double cost =
            cycles + kSpillWeight * allocation.spills +
            kInstructionWeight * static_cast<double>(allocation.instructions.size());
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
    std::optional<Block> best;
    for (const Code& form : forms) {
        std::optional<Block> block = tryBlock(form, target, options, frameLimit);
        if (!block) continue;
        if (target.pairs) block->cost = costOfPairs(form, *block, target);
        if (!best || block->cost < best->cost) best = std::move(block);
    }
    if (!best) throw std::runtime_error("no order of the kernel keeps within its frame");
    return *std::move(best);
}

}  // namespace orvgen::kernelgen
