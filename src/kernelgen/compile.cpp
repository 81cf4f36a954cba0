#include "compile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <tuple>

#include "core_model.h"
#include "count.h"
#include "lower.h"
#include "order.h"
#include "real.h"

namespace orvgen::kernelgen {

namespace {

constexpr double kSpillWeight = 0.1;
constexpr double kInstructionWeight = 0.02;
constexpr int kScalarFrame = 688;  // what a kernel of scalar code may need of the stack
constexpr int kBias = 128;         // one-byte displacements reach from -128 to 127
constexpr int kReach = 256;        // so many bytes
constexpr int kLeastUses = 4;      // that pay for a further register: two or three bytes each

}  // namespace

Block compileBlock(const Code& code, const AllocationOptions& options) {
    Block best;
    bool any = false;
    for (const std::vector<int>& order : candidateOrders(code)) {
        Allocation allocation = allocate(code, order, options);
        const std::vector<MachineInstruction>& block = allocation.instructions;
        const double cycles =
            (modelCycles(block, CoreKind::ThreePipe) + modelCycles(block, CoreKind::FourPipe)) / 2;
        const double cost = cycles + kSpillWeight * allocation.spills +
                            kInstructionWeight * static_cast<double>(block.size());
        if (any && cost >= best.cost) continue;
        const double bound =
            (portBound(block, CoreKind::ThreePipe) + portBound(block, CoreKind::FourPipe)) / 2;
        const int frameBytes = layOutFrame(allocation);
        if (options.frameLimit >= 0 && frameBytes > options.frameLimit) continue;
        any = true;
        best = {
            std::move(allocation.instructions), frameBytes, allocation.spills, cycles, bound, cost};
    }
    if (!any) throw std::runtime_error("no order of the kernel keeps within its frame");
    renumberRegisters(best.instructions);
    return best;
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

std::string functionHead(const std::string& name, bool exported) {
    std::string text = "\t.p2align\t6\n";
    text += "\t.globl\t" + name + "\n";
    if (!exported) text += "\t.hidden\t" + name + "\n";
    return text + "\t.type\t" + name + ", @function\n" + name + ":\n\t.cfi_startproc\n";
}

std::string functionTail(const std::string& name) {
    return "\t.cfi_endproc\n\t.size\t" + name + ", . - " + name + "\n\n";
}

std::string printFlagGate(const GateScales& scales, ScaleRule rule, const Binding& pool,
                          const std::string& bodyLabel) {
    const int flag1 = rule == ScaleRule::InverseByN ? scales.none : scales.byN;
    const int flag2 = rule == ScaleRule::ForwardByN ? scales.none : scales.byN;
    std::string text;
    int current = -1;
    const auto test = [&](int flag, int offset) {
        if (offset != current) {
            const int displacement = offset - pool.bias;
            text += "\tlea\trax, [" + pool.reg + (displacement < 0 ? " - " : " + ") +
                    std::to_string(std::abs(displacement)) + "]\n";
            current = offset;
        }
        text += "\tcmp\tedx, " + std::to_string(flag) + "\n\tje\t" + bodyLabel + "\n";
    };
    test(8, scales.none);
    test(4, scales.bySqrtN);
    test(1, flag1);
    test(2, flag2);
    return text + "\tmov\teax, -16\n\tret\n";
}

namespace {

class KernelPrinter {
  public:
    explicit KernelPrinter(const Kernel& kernel) : kernel_(kernel) {}

    CompiledKernel run() {
        const Graph& flow = kernel_.flow;
        const Code code = lower(flow, {kernel_.halvesOnly});
        const bool scalar =
            flow.arithmetic() == Arithmetic::Single || flow.arithmetic() == Arithmetic::Double;
        AllocationOptions options;
        options.foldSrc = scalar;
        options.storesEndAllOfSrc = kernel_.readsAllFirst;
        if (scalar) options.frameLimit = kScalarFrame;
        if (kernel_.registersOnly) options.frameLimit = 0;
        options.loadSrcOnce = flow.arithmetic() == Arithmetic::DoublePair;
        block_ = compileBlock(code, options);
        stages_ = code.stages;
        layOutScales(flow);
        pool_ = layOutPool(code.pool, block_.instructions, scaleBytes_);
        addressing();

        std::string text = head();
        text += "\t.text\n\t.intel_syntax noprefix\n\n";
        switch (kernel_.alignment) {
            case Alignment::Any:
                text += function(kernel_.name, true, {Variant::AnyAlignment});
                break;
            case Alignment::Twin:
                text += function(kernel_.name, true, {Variant::Aligned});
                text += function(twinName(kernel_.name), false, {Variant::AnyAlignment});
                break;
            case Alignment::TwoBodies:
                text += function(kernel_.name, true, {Variant::Aligned, Variant::AnyAlignment});
                break;
        }
        text += pool(code);
        CompiledKernel result{std::move(text), {}};
        result.figures = figures();
        return result;
    }

  private:
    // The scale stands at the head of the pool in the form that the body multiplies by: a scalar; a
    // binary32 scalar and the same value in binary64 where double expressions are scaled; a vector.
    void layOutScales(const Graph& flow) {
        single_ =
            flow.arithmetic() == Arithmetic::Single || flow.arithmetic() == Arithmetic::SingleLanes;
        for (const MachineInstruction& m : block_.instructions)
            if (m.hasAddress && m.address.base == Base::Scale && m.address.offset == 8)
                scaleWidened_ = true;
        pair_ = flow.arithmetic() == Arithmetic::DoublePair;
        const int stride = scaleWidened_ || pair_ ? 16 : single_ ? 4 : 8;
        scales_ = {0, stride, 2 * stride};
        scaleBytes_ = (3 * stride + 15) / 16 * 16;
    }

    void addressing() {
        int srcEnd = 0, dstEnd = 0;
        for (const MachineInstruction& m : block_.instructions) {
            if (!m.hasAddress) continue;
            if (m.address.base == Base::Src) srcEnd = std::max(srcEnd, m.address.offset);
            if (m.op == Opcode::LoadHalves) srcEnd = std::max(srcEnd, m.high.offset);
            if (m.address.base == Base::Dst) dstEnd = std::max(dstEnd, m.address.offset);
        }
        addressing_[Base::Src] = {"rdi", srcEnd >= kBias ? kBias : 0};
        addressing_[Base::Dst] = {"rsi", dstEnd >= kBias ? kBias : 0};
        addressing_[Base::Pool] = {"rcx", pool_.size > kBias ? kBias : 0};
        addressing_[Base::Scale] = {"rax", 0};
        addressing_[Base::Frame] = {"rdx", block_.frameBytes > kBias ? kBias : 0};
        for (const char* reg : {"r8", "r9", "r10", "r11"}) bindFurther(reg);
    }

    // Lets the register point at the most used bytes that no one-byte displacement reaches.
    void bindFurther(const char* reg) {
        std::map<Base, std::map<int, int>> uses;  // of each place out of reach
        const auto count = [&](const Address& a) {
            if (!addressing_.at(a.base).nearest(a.offset).reaches(a.offset))
                ++uses[a.base][a.offset];
        };
        for (const MachineInstruction& m : block_.instructions) {
            if (m.hasAddress) count(m.address);
            if (m.op == Opcode::LoadHalves) count(m.high);
        }
        int most = 0, start = 0;
        Base base{};
        for (const auto& [b, places] : uses) {
            for (const auto& [offset, n] : places) {
                int sum = 0;
                for (auto p = places.find(offset); p != places.end() && p->first < offset + kReach;
                     ++p)
                    sum += p->second;
                if (sum > most) std::tie(most, base, start) = std::tuple(sum, b, offset);
            }
        }
        if (most >= kLeastUses) addressing_[base].further.push_back({reg, start + kBias});
    }

    std::string head() const {
        const LaneCountsText counts(kernel_.flow);
        const KernelFigures f = figures();
        char bound[64];
        std::snprintf(bound, sizeof bound, "%.0f cycles by the model, port bound %.0f",
                      f.modelCycles, f.portBound);
        std::string text = "# " + kernel_.name + "\n";
        text += "# Length " + std::to_string(kernel_.length) + ": " + kernel_.method + ".\n";
        text += "# " + counts.text + ".\n";
        text += "# " + std::to_string(f.instructions) + " instructions, frame " +
                std::to_string(f.frameBytes) + " bytes, " + std::to_string(f.spills) + " spills; " +
                bound + ".\n";
        return text;
    }

    struct LaneCountsText {
        explicit LaneCountsText(const Graph& flow) {
            if (flow.arithmetic() == Arithmetic::SingleLanes) {
                const LaneCounts c = countLanes(flow);
                text = std::to_string(c.distinctAdditions) + " additions and " +
                       std::to_string(c.distinctMultiplications) +
                       " multiplications on distinct values, " +
                       std::to_string(c.executedAdditions) + " and " +
                       std::to_string(c.executedMultiplications) + " in all lanes, the scale apart";
            } else {
                const Counts c = countOperations(flow);
                text = std::to_string(c.additions) + " additions, " +
                       std::to_string(c.multiplications()) + " multiplications, " +
                       std::to_string(c.conversions()) + " conversions";
                if (flow.arithmetic() == Arithmetic::DoublePair)
                    text += " (of vectors: twice as many real ones)";
            }
        }
        std::string text;
    };

    std::string function(const std::string& name, bool exported,
                         const std::vector<Variant>& variants) const {
        const std::string local = ".L" + name;
        std::string text = functionHead(name, exported);
        if (variants.front() == Variant::Aligned) {
            text += "\tmov\teax, edi\n\tor\teax, esi\n\ttest\tal, 15\n";
            text +=
                "\tjne\t" + (variants.size() > 1 ? local + "_unaligned" : twinName(name)) + "\n";
        }
        for (std::size_t v = 0; v < variants.size(); ++v) {
            const std::string suffix = v == 0 ? "" : "_2";
            if (v > 0) text += local + "_unaligned:\n";
            text += body(local, suffix, variants[v]);
        }
        text += local + "_null:\n\tmov\teax, -8\n\tret\n";
        return text + functionTail(name);
    }

    std::string body(const std::string& local, const std::string& suffix, Variant variant) const {
        const Binding& pool = addressing_.at(Base::Pool);
        std::string text;
        text += "\ttest\trdi, rdi\n\tje\t" + local + "_null\n";
        text += "\ttest\trsi, rsi\n\tje\t" + local + "_null\n";
        text += "\tlea\trcx, [rip + .L" + kernel_.name + "_pool" +
                (pool.bias ? " + " + std::to_string(pool.bias) : "") + "]\n";
        text += printFlagGate(scales_, kernel_.scale, pool, local + "_body" + suffix);
        text += local + "_body" + suffix + ":\n";
        // The stack is 8 above a multiple of 16 at entry; the frame makes the slots aligned.
        const int frame = block_.frameBytes ? block_.frameBytes + 8 : 0;
        if (frame) {
            text += "\tsub\trsp, " + std::to_string(frame) + "\n\t.cfi_adjust_cfa_offset " +
                    std::to_string(frame) + "\n";
            const int bias = addressing_.at(Base::Frame).bias;
            text += bias ? "\tlea\trdx, [rsp + " + std::to_string(bias) + "]\n"
                         : std::string("\tmov\trdx, rsp\n");
        }
        if (addressing_.at(Base::Src).bias) text += "\tsub\trdi, -128\n";
        if (addressing_.at(Base::Dst).bias) text += "\tsub\trsi, -128\n";
        for (const auto& [base, binding] : addressing_)
            for (const Binding& b : binding.further)
                text += "\tlea\t" + b.reg + ", [" + binding.reg + " + " +
                        std::to_string(b.bias - binding.bias) + "]\n";
        int stage = -1;
        for (const MachineInstruction& m : block_.instructions) {
            const bool named =
                m.stage != stage && !stages_[static_cast<std::size_t>(m.stage)].empty();
            if (named) text += "\t# " + stages_[static_cast<std::size_t>(m.stage)] + "\n";
            stage = m.stage;
            for (const std::string& l : printInstruction(m, addressing_, variant)) text += l + "\n";
        }
        text += "\txor\teax, eax\n";
        if (frame)
            text += "\tadd\trsp, " + std::to_string(frame) + "\n\t.cfi_adjust_cfa_offset -" +
                    std::to_string(frame) + "\n";
        return text + "\tret\n";
    }

    std::string pool(const Code& code) const {
        std::string text = "\t.section\t.rodata\n\t.p2align\t6\n.L" + kernel_.name + "_pool:\n";
        const auto scale = [&](ScaleKind kind, const char* what) {
            const double value = storedScale(kind, kernel_.length, single_);
            const Type type = single_ ? Type::F32 : pair_ ? Type::F64x2 : Type::F64;
            PoolEntry e{type, {value}, what};
            if (pair_) e.lanes.push_back(value);
            if (!scaleWidened_) {
                text += printPoolEntry(e) + "\n";
                return;
            }
            e.lanes.push_back(0.0);
            text += printPoolEntry(e) + "\n";
            text += printPoolEntry({Type::F64, {value}, "the same, widened"}) + "\n";
        };
        scale(ScaleKind::None, "scale 1");
        scale(ScaleKind::BySqrtN, "scale 1/sqrt(N)");
        scale(ScaleKind::ByN, "scale 1/N");
        text += "\t.balign\t16\n";
        for (const std::size_t i : pool_.order) text += printPoolEntry(code.pool[i]) + "\n";
        return text + "\n\t.section\t.note.GNU-stack, \"\", @progbits\n";
    }

    KernelFigures figures() const {
        int instructions = 0;
        for (const MachineInstruction& m : block_.instructions)
            instructions +=
                static_cast<int>(printInstruction(m, addressing_, Variant::Aligned).size());
        return {instructions, block_.frameBytes, block_.spills, block_.modelCycles,
                block_.portBound};
    }

    const Kernel& kernel_;
    Block block_;
    PoolLayout pool_;
    GateScales scales_;
    int scaleBytes_ = 0;
    bool single_ = false, pair_ = false, scaleWidened_ = false;
    Addressing addressing_;
    std::vector<std::string> stages_;
};

}  // namespace

CompiledKernel compileKernel(const Kernel& kernel) { return KernelPrinter(kernel).run(); }

}  // namespace orvgen::kernelgen
