// SPDX-License-Identifier: MIT
#include "rows.h"

#include <algorithm>
#include <bit>

#include "lower.h"
#include "lower_parts.h"
#include "wide_text.h"

namespace orvgen::kernelgen {

namespace {

// General registers.
//
//     rdi, rsi   src, srcDistance          r10   three times srcDistance
//     rdx, rcx   dst, dstDistance          r11   three times dstDistance
//     r8         address of the scale      r9    blocks to go
//     rax        pool                      rbp   the caller's frame, rsp spill slots

Block rowsBlock(const Kernel& kernel, const Target& target) {
    AllocationOptions allocation;
    allocation.storesEndAllOfSrc = false;
    allocation.loadSrcOnce = true;
    return compileBlock(lowerParts(kernel.flow, target, Parts::OfRows), target, allocation, -1,
                        Search::Short);
}

Binding rows(const std::string& base, const std::string& distance, const std::string& three) {
    const auto behind = [&](const std::string& bytes) { return Binding{base + " + " + bytes}; };
    return {base, 0, {behind(distance), behind(distance + "*2"), behind(three)}};
}

std::string body(const Block& block, const WidePool& pool, const Target& target,
                 int& instructions) {
    const Addressing addressing = {{Base::Src, rows("rdi", "rsi", "r10")},
                                   {Base::Dst, rows("rdx", "rcx", "r11")},
                                   {Base::Pool, {"rax", pool.bias()}},
                                   {Base::Scale, {"r8", 0}},
                                   {Base::Frame, {"rsp", 0}}};
    std::string text;
    int stage = -1;
    for (const MachineInstruction& m : block.instructions) {
        const std::string& name = block.stages[static_cast<std::size_t>(m.stage)];
        if (m.stage != stage && !name.empty()) text += "\t# " + name + "\n";
        stage = m.stage;
        for (const std::string& l :
             printInstruction(m, addressing, target, Variant::AnyAlignment)) {
            text += l + "\n";
            ++instructions;
        }
    }
    return text;
}

}  // namespace

std::string rowsName(const KernelName& kernel, const Target& target) {
    return kernel.ofBatch("Rows", target.name);
}

bool hasRows(const Kernel& kernel) {
    if (kernel.passes) return false;
    if (kernel.flow.arithmetic() == Arithmetic::DoublePair) return true;
    if (kernel.flow.arithmetic() != Arithmetic::SingleLanes) return false;
    const Code code = lower(kernel.flow, {});
    return std::ranges::none_of(code.instructions, [](const Instruction& i) {
        return i.op == Opcode::LoadHalf || i.op == Opcode::LoadHalves || i.op == Opcode::StoreLow ||
               i.op == Opcode::StoreHigh;
    });
}

CompiledKernel compileRows(const Kernel& kernel, const Target& target) {
    const std::string name = rowsName(kernel.name, target);
    Block block = rowsBlock(kernel, target);
    const WidePool pool(block, target);
    int instructions = 0;
    const std::string text = body(block, pool, target, instructions);

    CompiledKernel result;
    result.figures = {.instructions = instructions,
                      .frameBytes = block.frameBytes,
                      .spills = block.spills,
                      .modelCycles = block.modelCycles,
                      .portBound = block.portBound};
    std::string& a = result.assembly;
    a = wideHead(name, kernel, result.figures, target.vectorBytes / kPartBytes) +
        openFunction(name);
    a += line("movsxd\tr8, r8d") + line("lea\trax, [rip + " + poolLabel(name) + "]");
    a += line("shl\tr8, " + std::to_string(std::countr_zero(unsigned(pool.scaleStride()))));
    a += line("add\tr8, rax");
    if (pool.bias()) a += line("add\trax, " + std::to_string(pool.bias()));
    const bool four = target.vectorBytes == 4 * kPartBytes;
    if (four) a += line("lea\tr10, [rsi + rsi*2]") + line("lea\tr11, [rcx + rcx*2]");
    a += openFrame(block.frameBytes, target) + openLoop() + text;
    const std::string advance = four ? "*4]" : "*2]";
    a += line("lea\trdi, [rdi + rsi" + advance) + line("lea\trdx, [rdx + rcx" + advance);
    a += closeLoop("r9") + closeFunction(name) + pool.print(name, kernel.length);
    return result;
}

}  // namespace orvgen::kernelgen
