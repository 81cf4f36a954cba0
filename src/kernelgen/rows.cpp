// SPDX-License-Identifier: MIT
#include "rows.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

#include "lower.h"
#include "wide_text.h"

namespace orvgen::kernelgen {

namespace {

// General registers.
//
//     rdi, rsi   src, srcDistance          r10   three times srcDistance
//     rdx, rcx   dst, dstDistance          r11   three times dstDistance
//     r8         address of the scale      r9    blocks to go
//     rax        pool                      rbp   the caller's frame, rsp spill slots

constexpr int kPart = 16;

// The single kernel's code with each of its vectors repeated in every part of a wider one.
class RowsLowering {
  public:
    RowsLowering(const Graph& graph, const Target& target)
        : target_(target), code_(lower(graph, {})) {}

    Code run() {
        code_.scale.type = isSingle(code_.scale.type) ? Type::F32 : Type::F64;
        for (PoolEntry& entry : code_.pool) repeat(entry);
        std::erase_if(code_.instructions, [&](const Instruction& i) {
            const bool isScale = i.op == Opcode::SpreadSS;
            if (isScale) scale_ = i.dst;
            return isScale;
        });
        for (Instruction& i : code_.instructions) widen(i);
        return std::move(code_);
    }

  private:
    static bool isOneNumber(const PoolEntry& entry) {
        return std::ranges::all_of(entry.lanes, [&](double x) {
            return std::bit_cast<std::uint64_t>(x) ==
                   std::bit_cast<std::uint64_t>(entry.lanes.front());
        });
    }

    void repeat(PoolEntry& entry) {
        if (target_.broadcasts && isOneNumber(entry)) {
            entry.lanes.resize(1);
            return;
        }
        const std::vector<double> part = entry.lanes;
        for (int bytes = kPart; bytes < target_.vectorBytes; bytes += kPart)
            entry.lanes.insert(entry.lanes.end(), part.begin(), part.end());
    }

    void widen(Instruction& i) {
        i.width = target_.vectorBytes;
        switch (i.op) {
            case Opcode::Load16:
            case Opcode::Load16Split:
                i.op = Opcode::LoadRows;
                return;
            case Opcode::Store16:
            case Opcode::Store16At8:
            case Opcode::Store16Split:
                i.op = Opcode::StoreRows;
                return;
            case Opcode::Shufpd: {
                const int part = i.immediate;
                for (int p = 1; p < target_.vectorBytes / kPart; ++p) i.immediate |= part << 2 * p;
                return;
            }
            case Opcode::Movlhps:
                i.op = Opcode::Unpcklpd;
                return;
            case Opcode::Movhlps:
                i.op = Opcode::Unpckhpd;
                std::swap(i.a, i.b);
                return;
            default:
                break;
        }
        if (i.b != kNoRegister && i.b == scale_) {
            i.b = kNoRegister;
            i.hasAddress = true;
            i.address = {Base::Scale, 0};
        }
        if (!i.hasAddress) return;
        if (i.address.base == Base::Scale) i.broadcast = target_.broadcasts;
        if (i.address.base == Base::Pool)
            i.broadcast = code_.pool[static_cast<std::size_t>(i.address.offset)].lanes.size() == 1;
    }

    const Target& target_;
    Code code_;
    Register scale_ = kNoRegister;
};

Block rowsBlock(const Kernel& kernel, const Target& target) {
    AllocationOptions allocation;
    allocation.storesEndAllOfSrc = false;
    allocation.loadSrcOnce = true;
    return compileBlock(RowsLowering(kernel.flow, target).run(), target, allocation, -1,
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

std::string rowsName(const std::string& kernel, const Target& target) {
    return "owngRows" + kernel.substr(4) + "_" + target.name;
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
    a = wideHead(name, kernel, result.figures, target.vectorBytes / kPart) + openFunction(name);
    a += line("movsxd\tr8, r8d") + line("lea\trax, [rip + " + poolLabel(name) + "]");
    a += line("shl\tr8, " + std::to_string(std::countr_zero(unsigned(pool.scaleStride()))));
    a += line("add\tr8, rax");
    if (pool.bias()) a += line("add\trax, " + std::to_string(pool.bias()));
    const bool four = target.vectorBytes == 4 * kPart;
    if (four) a += line("lea\tr10, [rsi + rsi*2]") + line("lea\tr11, [rcx + rcx*2]");
    a += openFrame(block.frameBytes, target) + openLoop() + text;
    const std::string advance = four ? "*4]" : "*2]";
    a += line("lea\trdi, [rdi + rsi" + advance) + line("lea\trdx, [rdx + rcx" + advance);
    a += closeLoop("r9") + closeFunction(name) + pool.print(name, kernel.length);
    return result;
}

}  // namespace orvgen::kernelgen
