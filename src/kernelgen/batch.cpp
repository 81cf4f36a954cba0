// SPDX-License-Identifier: MIT
#include "batch.h"

#include <bit>
#include <cstdio>

#include "layout.h"
#include "strided.h"

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

constexpr int kPage = 4096;
// Of arguments from the caller's frame.
constexpr int kScaleAt = 16, kBlocksAt = 24, kSrcBlockAt = 32, kDstBlockAt = 40;
constexpr int kShort = 128;  // displacements of one byte reach from -128 to 127

enum Side : std::size_t { SrcRe, SrcIm, DstRe, DstIm };

std::string line(const std::string& text) { return "\t" + text + "\n"; }

class BatchPrinter {
  public:
    BatchPrinter(const Kernel& kernel, const Target& target, const WideOptions& options)
        : kernel_(kernel), target_(target), name_(batchName(kernel.name, target)) {
        AllocationOptions allocation;
        allocation.foldSrc = true;
        allocation.storesEndAllOfSrc = false;
        block_ = compileBlock(lowerWide(kernel.flow, target, options), target, allocation, -1,
                              Search::Short);
        const ScaleForm& scale = block_.scale;
        const int vector = target.broadcasts ? bytesOf(scale.type) : target.vectorBytes;
        scaleStride_ = !scale.widened ? vector : target.broadcasts ? 16 : 2 * vector;
        widenedAt_ = target.broadcasts ? 8 : vector;
        scaleBytes_ = roundUp(3 * scaleStride_, target.vectorBytes);
        layout_ = layOutPool(block_.pool, block_.instructions, scaleBytes_);
        isSrcReal_ = options.src == Layout::Real;
        isDstReal_ = options.dst == Layout::Real;
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

    CompiledKernel run() {
        const std::string body = instructions();
        CompiledKernel result;
        result.figures = {.instructions = instructions_,
                          .frameBytes = block_.frameBytes,
                          .spills = block_.spills,
                          .modelCycles = block_.modelCycles,
                          .portBound = block_.portBound};
        result.assembly = head(result.figures) + "\t.text\n\t.intel_syntax noprefix\n\n" + enter() +
                          nextBlock() + body + leave() + pool();
        return result;
    }

  private:
    static int roundUp(int bytes, int multiple) {
        return (bytes + multiple - 1) / multiple * multiple;
    }

    std::string head(const KernelFigures& f) const {
        char figures[200];
        std::snprintf(figures, sizeof figures,
                      "# %d instructions, frame %d bytes, %d spills; %.1f cycles by the model for "
                      "%d transforms, port bound %.1f.\n",
                      f.instructions, f.frameBytes, f.spills, f.modelCycles,
                      batchWidth(kernel_.flow, target_), f.portBound);
        return "# " + name_ + "\n# Length " + std::to_string(kernel_.length) + ": " +
               kernel_.method + ".\n" + figures;
    }

    // ---- entry and return

    int frameBytes() const { return roundUp(block_.frameBytes, target_.vectorBytes); }
    bool isInSlots(const Address& a) const { return a.base == Base::Src || a.base == Base::Dst; }

    // Registers of the caller that the body needs, but for rbp.
    std::vector<std::string> saved() const {
        std::vector<std::string> list = {"rbx"};
        for (std::size_t i = callerSaved_; i < pointers_.sparesUsed(); ++i)
            list.push_back(spare_[i]);
        return list;
    }

    std::string enter() const {
        std::string text = "\t.p2align\t6\n\t.globl\t" + name_ + "\n\t.hidden\t" + name_ +
                           "\n\t.type\t" + name_ + ", @function\n" + name_ +
                           ":\n\t.cfi_startproc\n";
        text += line("push\trbp") + line(".cfi_def_cfa_offset 16") + line(".cfi_offset rbp, -16");
        text += line("mov\trbp, rsp") + line(".cfi_def_cfa_register rbp");
        int at = -16;
        for (const std::string& reg : saved()) {
            at -= 8;
            text += line("push\t" + reg) + line(".cfi_offset " + reg + ", " + std::to_string(at));
        }
        text += line("movsxd\trbx, dword ptr [rbp + " + std::to_string(kScaleAt) + "]");
        text += line("lea\trax, [rip + " + poolLabel(name_) + "]");
        text += line("shl\trbx, " + std::to_string(std::countr_zero(unsigned(scaleStride_))));
        text += line("add\trbx, rax");
        if (poolBias()) text += line("add\trax, " + std::to_string(poolBias()));
        text += line("lea\tr10, [rdx + rdx*2]") + line("lea\tr11, [r9 + r9*2]");
        if (!frameBytes()) return text;
        text += line("and\trsp, -" + std::to_string(target_.vectorBytes));
        int left = frameBytes();
        for (; left > kPage; left -= kPage)  // every page is touched before the next
            text += line("sub\trsp, " + std::to_string(kPage)) + line("or\tqword ptr [rsp], 0");
        return text + line("sub\trsp, " + std::to_string(left));
    }

    // ---- the loop over blocks

    static std::string argument(int at) { return "qword ptr [rbp + " + std::to_string(at) + "]"; }

    std::string nextBlock() const { return "\t.p2align\t5\n" + std::string(kLoop) + ":\n"; }

    std::string untilLastBlock() const {
        const auto advance = [](const char* pointer, int step) {
            return line("add\t" + std::string(pointer) + ", " + argument(step));
        };
        std::string text = advance("rdi", kSrcBlockAt);
        if (!isSrcReal_) text += advance("rsi", kSrcBlockAt);
        text += advance("rcx", kDstBlockAt);
        if (!isDstReal_) text += advance("r8", kDstBlockAt);
        return text + line("dec\t" + argument(kBlocksAt)) + line("jnz\t" + std::string(kLoop));
    }

    std::string leave() const {
        std::string text = untilLastBlock() + line("vzeroupper");
        const std::vector<std::string> list = saved();
        int at = 0;
        for (const std::string& reg : list) {
            at -= 8;
            text += line("mov\t" + reg + ", qword ptr [rbp - " + std::to_string(-at) + "]");
        }
        text += line("leave") + line(".cfi_def_cfa rsp, 8") + line("ret");
        return text + "\t.cfi_endproc\n\t.size\t" + name_ + ", . - " + name_ + "\n\n";
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

    int poolBias() const { return layout_.size > kShort ? kShort : 0; }

    std::string instructions() {
        std::vector<StridedPointers::Element> accesses;
        for (const MachineInstruction& m : block_.instructions)
            if (m.hasAddress && isInSlots(m.address)) accesses.push_back(elementOf(m.address));
        pointers_.plan(std::move(accesses));
        Addressing addressing = {{Base::Pool, {"rax", poolBias()}},
                                 {Base::Scale, {"rbx", 0}},
                                 {Base::WidenedScale, {"rbx", -widenedAt_}},
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

    // ---- pool

    std::string scale(ScaleKind kind, const char* what) const {
        const bool single = block_.scale.type == Type::F32;
        const double value = storedScale(kind, kernel_.length, single);
        const auto entry = [&](Type type, const char* words) {
            const int lanes = target_.broadcasts ? 1 : target_.vectorBytes / bytesOf(type);
            return printPoolEntry(
                       {type, std::vector<double>(static_cast<std::size_t>(lanes), value), words}) +
                   "\n";
        };
        std::string text = entry(block_.scale.type, what);
        if (!block_.scale.widened) return text;
        if (target_.broadcasts) text += "\t.long\t0\n";
        return text + entry(Type::F64, "the same, widened");
    }

    std::string pool() const {
        std::string text = "\t.section\t.rodata\n\t.p2align\t6\n" + poolLabel(name_) + ":\n";
        text += scale(ScaleKind::None, "scale 1");
        text += scale(ScaleKind::BySqrtN, "scale 1/sqrt(N)");
        text += scale(ScaleKind::ByN, "scale 1/N");
        text += "\t.balign\t" + std::to_string(target_.vectorBytes) + "\n";
        for (const std::size_t i : layout_.order) text += printPoolEntry(block_.pool[i]) + "\n";
        return text + "\n\t.section\t.note.GNU-stack, \"\", @progbits\n";
    }

    static constexpr const char* kLoop = ".Lblock";

    const Kernel& kernel_;
    const Target& target_;
    std::string name_;
    Block block_;
    PoolLayout layout_;
    int scaleStride_ = 0, widenedAt_ = 0, scaleBytes_ = 0;
    std::vector<std::string> spare_;
    bool isSrcReal_ = false, isDstReal_ = false;
    std::size_t callerSaved_ = 0;  // of the spare registers
    StridedPointers pointers_{{}, {}};
    int instructions_ = 0;
};

}  // namespace

std::string batchName(const std::string& kernel, const Target& target) {
    return "owngBatch" + kernel.substr(4) + "_" + target.name;
}

CompiledKernel compileBatch(const Kernel& kernel, const Target& target, WideOptions options) {
    options.length = kernel.length;
    options.halvesOnly = kernel.halvesOnly;
    return BatchPrinter(kernel, target, options).run();
}

}  // namespace orvgen::kernelgen
