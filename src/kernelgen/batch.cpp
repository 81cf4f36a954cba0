// SPDX-License-Identifier: MIT
#include "batch.h"

#include <bit>
#include <optional>
#include <utility>

#include "lower_parts.h"
#include "strided.h"
#include "wide_text.h"

namespace orvgen::kernelgen {

namespace {

// General registers.
//
//     rdi, rsi, rdx   srcRe, srcIm, srcStep        r10   three times srcStep
//     rcx, r8, r9     dstRe, dstIm, dstStep        r11   three times dstStep
//     rax             pool                         rbx   address of the scale
//     rbp             the caller's frame, above    rsp   spill slots
//                     it scale, blocks, srcBlock, dstBlock
//     r12 to r15, and rsi and r8 where they are free: elements of src and dst

// Of arguments from the caller's frame.
constexpr int kScaleAt = 16, kBlocksAt = 24, kSrcBlockAt = 32, kDstBlockAt = 40;

enum Side : std::size_t { SrcRe, SrcIm, DstRe, DstIm };

class BatchPrinter {
  public:
    // A side that is Layout::Real has one pointer.
    BatchPrinter(const Kernel& kernel, const Target& target, std::string name, const Code& code,
                 Layout src, Layout dst)
        : kernel_(kernel), target_(target), name_(std::move(name)) {
        AllocationOptions allocation;
        allocation.foldSrc = true;
        allocation.storesEndAllOfSrc = false;
        block_ = compileBlock(code, target, allocation, -1, Search::Short);
        pool_.emplace(block_, target);
        isSrcReal_ = src == Layout::Real;
        isDstReal_ = dst == Layout::Real;
        std::vector<std::string> spare;
        if (isSrcReal_) spare.push_back("rsi");
        if (isDstReal_) spare.push_back("r8");
        callerSaved_ = spare.size();
        for (const char* reg : {"r12", "r13", "r14", "r15"}) spare.push_back(reg);
        pointers_ = StridedPointers({{"rdi", "rdx", "r10"},
                                     {"rsi", "rdx", "r10"},
                                     {"rcx", "r9", "r11"},
                                     {"r8", "r9", "r11"}},
                                    spare);
        spare_ = spare;
    }

    CompiledKernel run(int transforms) {
        const std::string body = instructions();
        CompiledKernel result;
        result.figures = {.instructions = instructions_,
                          .frameBytes = block_.frameBytes,
                          .spills = block_.spills,
                          .modelCycles = block_.modelCycles,
                          .portBound = block_.portBound};
        result.assembly = wideHead(name_, kernel_, result.figures, transforms) + enter() +
                          openLoop() + body + leave() + pool_->print(name_, kernel_.length);
        return result;
    }

  private:
    // ---- entry and return

    bool isInSlots(const Address& a) const { return a.base == Base::Src || a.base == Base::Dst; }

    // Registers of the caller that the body needs, but for rbp.
    std::vector<std::string> saved() const {
        std::vector<std::string> list = {"rbx"};
        for (std::size_t i = callerSaved_; i < pointers_.sparesUsed(); ++i)
            list.push_back(spare_[i]);
        return list;
    }

    std::string enter() const {
        std::string text = openFunction(name_);
        int at = -16;
        for (const std::string& reg : saved()) {
            at -= 8;
            text += line("push\t" + reg) + line(".cfi_offset " + reg + ", " + std::to_string(at));
        }
        text += line("movsxd\trbx, dword ptr [rbp + " + std::to_string(kScaleAt) + "]");
        text += line("lea\trax, [rip + " + poolLabel(name_) + "]");
        text +=
            line("shl\trbx, " + std::to_string(std::countr_zero(unsigned(pool_->scaleStride()))));
        text += line("add\trbx, rax");
        if (pool_->bias()) text += line("add\trax, " + std::to_string(pool_->bias()));
        text += line("lea\tr10, [rdx + rdx*2]") + line("lea\tr11, [r9 + r9*2]");
        return text + openFrame(block_.frameBytes, target_);
    }

    // ---- the loop over blocks

    static std::string argument(int at) { return "qword ptr [rbp + " + std::to_string(at) + "]"; }

    std::string untilLastBlock() const {
        const auto advance = [](const char* pointer, int step) {
            return line("add\t" + std::string(pointer) + ", " + argument(step));
        };
        std::string text = advance("rdi", kSrcBlockAt);
        if (!isSrcReal_) text += advance("rsi", kSrcBlockAt);
        text += advance("rcx", kDstBlockAt);
        if (!isDstReal_) text += advance("r8", kDstBlockAt);
        return text + closeLoop(argument(kBlocksAt));
    }

    std::string leave() const {
        std::string text = untilLastBlock();
        const std::vector<std::string> list = saved();
        int at = 0;
        for (const std::string& reg : list) {
            at -= 8;
            text += line("mov\t" + reg + ", qword ptr [rbp - " + std::to_string(-at) + "]");
        }
        return text + closeFunction(name_);
    }

    // ---- body

    static Side sideOf(const Address& a, bool imaginary) {
        if (a.base == Base::Src) return imaginary ? SrcIm : SrcRe;
        return imaginary ? DstIm : DstRe;
    }
    StridedPointers::Element elementOf(const Address& a) const {
        const int slot = a.offset / target_.vectorBytes;
        const bool imaginary = slot >= kImaginarySlots;
        return {sideOf(a, imaginary), imaginary ? slot - kImaginarySlots : slot};
    }

    std::string instructions() {
        std::vector<StridedPointers::Element> accesses;
        for (const MachineInstruction& m : block_.instructions)
            if (m.hasAddress && isInSlots(m.address)) accesses.push_back(elementOf(m.address));
        pointers_.plan(std::move(accesses));
        Addressing addressing = {{Base::Pool, {"rax", pool_->bias()}},
                                 {Base::Scale, {"rbx", 0}},
                                 {Base::WidenedScale, {"rbx", -pool_->widenedAt()}},
                                 {Base::Frame, {"rsp", 0}}};
        std::string text;
        int stage = -1;
        for (const MachineInstruction& m : block_.instructions) {
            const std::string& name = block_.stages[static_cast<std::size_t>(m.stage)];
            if (m.stage != stage && !name.empty()) text += "\t# " + name + "\n";
            stage = m.stage;
            if (m.hasAddress && isInSlots(m.address)) {
                const StridedPointers::Access access = pointers_.next();
                for (const std::string& l : access.before) text += l + "\n";
                instructions_ += static_cast<int>(access.before.size());
                addressing[m.address.base] = {access.expression, m.address.offset};
            }
            for (const std::string& l :
                 printInstruction(m, addressing, target_, Variant::AnyAlignment)) {
                text += l + "\n";
                ++instructions_;
            }
        }
        return text;
    }

    const Kernel& kernel_;
    const Target& target_;
    std::string name_;
    Block block_;
    std::optional<WidePool> pool_;
    std::vector<std::string> spare_;
    bool isSrcReal_ = false, isDstReal_ = false;
    std::size_t callerSaved_ = 0;  // of the spare registers
    StridedPointers pointers_{{}, {}};
    int instructions_ = 0;
};

CompiledKernel compileWide(const Kernel& kernel, const Target& target, const std::string& name,
                           WideOptions options) {
    options.length = kernel.length;
    options.halvesOnly = kernel.halvesOnly;
    return BatchPrinter(kernel, target, name, lowerWide(kernel.flow, target, options), options.src,
                        options.dst)
        .run(batchWidth(kernel.flow, target));
}

}  // namespace

std::string batchName(const KernelName& kernel, const Target& target) {
    return kernel.ofBatch("Batch", target.name);
}

CompiledKernel compileBatch(const Kernel& kernel, const Target& target, WideOptions options) {
    return compileWide(kernel, target, batchName(kernel.name, target), options);
}

std::string pairsName(const KernelName& kernel, const Target& target) {
    return kernel.ofBatch("Pairs", target.name);
}

CompiledKernel compilePairs(const Kernel& kernel, const Target& target, WideOptions options) {
    const std::string name = pairsName(kernel.name, target);
    if (kernel.flow.arithmetic() == Arithmetic::DoublePair)
        return BatchPrinter(kernel, target, name, lowerParts(kernel.flow, target, Parts::OfColumns),
                            Layout::Real, Layout::Real)
            .run(target.vectorBytes / kPartBytes);
    options.complexes = Complexes::Interleaved;
    return compileWide(kernel, target, name, options);
}

}  // namespace orvgen::kernelgen
