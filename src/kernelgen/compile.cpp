// SPDX-License-Identifier: MIT
#include "compile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "count.h"
#include "layout.h"
#include "lower.h"
#include "pair.h"
#include "real.h"

namespace orvgen::kernelgen {

namespace {

constexpr int kScalarFrame = 688;  // what a kernel of scalar code may need of the stack

// A flow as one straight pass.
Passes straight(const Kernel& kernel) {
    const Graph& flow = kernel.flow;
    const bool scalar =
        flow.arithmetic() == Arithmetic::Single || flow.arithmetic() == Arithmetic::Double;
    Passes passes;
    passes.last.forms = {lower(flow, {kernel.halvesOnly})};
    passes.last.allocation = {.foldSrc = scalar,
                              .storesEndAllOfSrc = kernel.readsAllFirst,
                              .loadSrcOnce = flow.arithmetic() == Arithmetic::DoublePair};
    if (scalar) passes.last.frameLimit = kScalarFrame;
    if (kernel.registersOnly) passes.last.frameLimit = 0;
    return passes;
}

class KernelCompiler {
  public:
    KernelCompiler(const Kernel& kernel, const Target& target) : kernel_(kernel), target_(target) {}

    CompiledKernel run() {
        const Passes passes = kernel_.passes ? *kernel_.passes : straight(kernel_);
        for (const Pass& pass : passes.tile) body_.tile.push_back(step(pass));
        body_.last = step(passes.last);
        body_.tiles = passes.tiles;
        body_.tileBytes = passes.tileBytes;
        body_.bufferBytes = passes.bufferBytes;
        body_.scratchAt = passes.scratchAt;
        const ScaleForm& scale = body_.last.block.scale;
        body_.scaleStride = scale.stride();
        const int scaleBytes = (3 * body_.scaleStride + 15) / 16 * 16;
        Block& block = body_.last.block;
        const PoolLayout layout = layOutPool(block.pool, block.instructions, scaleBytes);
        body_.poolBytes = layout.size;

        CompiledKernel result;
        result.figures = figures();
        result.assembly = head(result.figures) + "\t.text\n\t.intel_syntax noprefix\n\n" +
                          printFunctions(kernel_, body_, target_) + pool(layout);
        return result;
    }

  private:
    Step step(const Pass& pass) const {
        AllocationOptions allocation = pass.allocation;
        if (target_.unalignedOperands) {  // src is at hand in memory whatever its alignment
            allocation.foldSrc = true;
            allocation.loadSrcOnce = false;
        }
        if (target_.pairs) return pairedStep(pass, allocation);
        return {pass, compileForms(pass.forms, target_, allocation, pass.frameLimit)};
    }

    // With pairs among the forms, and of two trips of a loop with the pairs of them. Pairs take
    // twice the room of what they are made of.
    Step pairedStep(const Pass& pass, const AllocationOptions& allocation) const {
        std::vector<Code> forms = pass.forms;
        for (const Code& form : pass.forms)
            std::ranges::move(pairForms(form), std::back_inserter(forms));
        Step once{pass, compileForms(forms, target_, allocation, 2 * pass.frameLimit)};
        if (pass.trips % 2 != 0) return once;
        std::vector<Code> pairs;
        for (const Code& form : pass.forms)
            for (Code& code : pairForms(twoTrips(form, pass))) pairs.push_back(std::move(code));
        if (pairs.empty()) return once;
        Step twice{pass, compileForms(pairs, target_, allocation, 2 * pass.frameLimit)};
        twice.pass.trips /= 2;
        twice.pass.advance *= 2;
        return twice.block.cost < 2 * once.block.cost ? twice : once;
    }

    KernelFigures figures() const {
        KernelFigures f;
        const auto add = [&](const Step& step, int times) {
            const Block& block = step.block;
            f.instructions += instructionCount(block.instructions, target_);
            f.spills += block.spills;
            f.modelCycles += times * block.modelCycles;
            f.portBound += times * block.portBound;
        };
        for (const Step& s : body_.tile) add(s, body_.tiles * s.pass.trips);
        add(body_.last, body_.last.pass.trips);
        f.frameBytes = body_.frameBytes();
        return f;
    }

    std::string head(const KernelFigures& f) const {
        char bound[64];
        std::snprintf(bound, sizeof bound, "%.0f cycles by the model, port bound %.0f",
                      f.modelCycles, f.portBound);
        std::string text = "# " + kernel_.name.exported() + "\n";
        text += "# Length " + std::to_string(kernel_.length) + ": " + kernel_.method + ".\n";
        if (!kernel_.passes) text += "# " + counts(kernel_.flow) + ".\n";
        text += "# " + std::to_string(f.instructions) + " instructions, frame " +
                std::to_string(f.frameBytes) + " bytes, " + std::to_string(f.spills) + " spills; " +
                bound + ".\n";
        return text;
    }

    static std::string counts(const Graph& flow) {
        if (flow.arithmetic() == Arithmetic::SingleLanes) {
            const LaneCounts c = countLanes(flow);
            return std::to_string(c.distinctAdditions) + " additions and " +
                   std::to_string(c.distinctMultiplications) +
                   " multiplications on distinct values, " + std::to_string(c.executedAdditions) +
                   " and " + std::to_string(c.executedMultiplications) +
                   " in all lanes, the scale apart";
        }
        const Counts c = countOperations(flow);
        return std::to_string(c.additions) + " additions, " + std::to_string(c.multiplications()) +
               " multiplications, " + std::to_string(c.conversions()) + " conversions" +
               (flow.arithmetic() == Arithmetic::DoublePair
                    ? " (of vectors: twice as many real ones)"
                    : "");
    }

    std::string pool(const PoolLayout& layout) const {
        std::string text =
            "\t.section\t.rodata\n\t.p2align\t6\n" + poolLabel(kernel_.name.exported()) + ":\n";
        text += scale(ScaleKind::None, "scale 1");
        text += scale(ScaleKind::BySqrtN, "scale 1/sqrt(N)");
        text += scale(ScaleKind::ByN, "scale 1/N");
        text += "\t.balign\t16\n";
        for (const std::size_t i : layout.order)
            text += printPoolEntry(body_.last.block.pool[i]) + "\n";
        return text + "\n\t.section\t.note.GNU-stack, \"\", @progbits\n";
    }

    // The scale in the form that the body multiplies by: in all lanes of the element type, and
    // where it is wanted once more as binary64.
    std::string scale(ScaleKind kind, const char* what) const {
        const ScaleForm& form = body_.last.block.scale;
        const double value = storedScale(kind, kernel_.length, isSingle(form.type));
        const auto lanes = static_cast<std::size_t>(form.copies * lanesOf(form.type));
        PoolEntry entry{form.type, std::vector<double>(lanes, value), what};
        if (!form.widened) return printPoolEntry(entry) + "\n";
        while (entry.bytes() < form.widenedAt()) entry.lanes.push_back(0.0);
        const bool vector = lanesOf(form.type) > 1;
        const auto widened = static_cast<std::size_t>(form.widenedCopies * (vector ? 2 : 1));
        return printPoolEntry(entry) + "\n" +
               printPoolEntry({vector ? Type::F64x2 : Type::F64,
                               std::vector<double>(widened, value), "the same, widened"}) +
               "\n";
    }

    const Kernel& kernel_;
    const Target& target_;
    CompiledBody body_;
};

}  // namespace

CompiledKernel compileKernel(const Kernel& kernel, const Target& target) {
    return KernelCompiler(kernel, target).run();
}

double storedScale(ScaleKind kind, int length, bool single) {
    if (kind == ScaleKind::None) return 1.0;
    if (kind == ScaleKind::ByN) {
        const Constant c = ratio(1, length);
        return single ? static_cast<double>(c.asFloat()) : c.asDouble();
    }
    if (single)
        return static_cast<double>(Constant(ExactReal{1 / sqrt(Real(length))}, "").asFloat());
    // In binary64 the square root is rounded before the division is.
    return 1.0 / std::sqrt(static_cast<double>(length));
}

}  // namespace orvgen::kernelgen
