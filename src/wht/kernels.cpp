// The kernels as assembly: the gate, then one straight body or the loops of the passes.
//
// General registers of the kernels with passes. All of them belong to the callee, and none is
// needed across a call of the allocator but what the frame keeps.
//
//     rdi  src, running        rcx  buffer             r8   what a pass reads from or writes to
//     rsi  dst, running        rdx  frame              r9   steps left of the pass
//     rax  the scale's address                         r10  buffer, running through the tiles
//                                                      r11  tiles left
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "kernelgen/compile.h"
#include "wht/families.h"
#include "wht/passes.h"

namespace orvgen::wht {

namespace {

using kernelgen::Addressing;
using kernelgen::Base;
using kernelgen::MachineInstruction;
using kernelgen::Opcode;
using kernelgen::Variant;

constexpr int kBias = 128;  // one-byte displacements reach from -128 to 127
constexpr int kVectorBytes = 16;
constexpr int kTileBlocks = 8;

// Furthest place that a pass touches behind a pointer to its first row.
int extent(const Pass& pass) { return ((1 << pass.rows) - 1) * pass.spacing; }
int biasOf(const Pass& pass) { return extent(pass) >= kBias ? kBias : 0; }

std::string number(long n) { return std::to_string(n); }
std::string line(const std::string& text) { return "\t" + text + "\n"; }
std::string label(const std::string& name) { return name + ":\n"; }
// [reg + offset]
std::string at(const std::string& reg, long offset) {
    return "[" + reg + (offset ? (offset < 0 ? " - " : " + ") + number(std::abs(offset)) : "") +
           "]";
}
std::string plus(const std::string& reg, long n) {
    // 128 fits into one byte as -128 only.
    if (n == 0) return "";
    return n == kBias ? line("sub\t" + reg + ", -128") : line("add\t" + reg + ", " + number(n));
}
std::string address(const std::string& reg, const std::string& base, long offset) {
    return offset ? line("lea\t" + reg + ", " + at(base, offset))
                  : line("mov\t" + reg + ", " + base);
}

class WalshHadamardKernel {
  public:
    WalshHadamardKernel(Element element, int order)
        : element_(element),
          order_(order),
          cut_(cutOf(element, order)),
          name_("orvgWHT_" + number(order) + (element == Element::F32 ? "_32f" : "_64f")) {
        compilePasses();
    }

    std::string assembly() const {
        std::string text = head();
        text += "\t.text\n\t.intel_syntax noprefix\n\n";
        if (isScalar(element_, order_)) {
            text += function(name_, true, {Variant::AnyAlignment});
        } else if (element_ == Element::F64 && order_ == 3) {
            text += function(name_, true, {Variant::Aligned, Variant::AnyAlignment});
        } else {
            text += function(name_, true, {Variant::Aligned});
            text += function(kernelgen::twinName(name_), false, {Variant::AnyAlignment});
        }
        return text + pool();
    }

  private:
    struct Step {
        Pass pass;
        CompiledPass compiled;
        int trips = 1;  // for one tile where there are tiles
        int advance = 0;
        std::string what;
    };

    // ---- passes

    void compilePasses() {
        const long blockPoints = 1L << cut_.layers[0];
        const long tilePoints = blockPoints << cut_.layers[1];
        if (isScalar(element_, order_)) {
            add(scalarPass(element_, order_), 1, 0, "element by element");
            return;
        }
        Pass first = blockPass(element_, cut_.layers[0]);
        if (cut_.passes() == 1) {
            first.scale = ScaleFrom::Spread;
            add(first, 1, 0, "one block");
            return;
        }
        const bool tiled = cut_.passes() == 3;
        first.to = tiled ? Base::Tile : Base::Buffer;
        const long blocks = tiled ? kTileBlocks : points() / blockPoints;
        add(first, blocks, blockPoints * bytesOf(element_),
            number(blocks) + " blocks of " + number(blockPoints));
        if (tiled) addColumns(blockPoints, cut_.layers[1], Base::Tile, Base::Buffer);
        addColumns(tiled ? tilePoints : blockPoints, cut_.layers[tiled ? 2 : 1], Base::Buffer,
                   Base::Dst);
    }

    void addColumns(long stride, int layers, Base from, Base to) {
        int firstLayer = 0;
        while (1L << firstLayer < stride) ++firstLayer;
        Pass pass = columnPass(element_, layers, firstLayer);
        pass.from = from;
        pass.to = to;
        if (to == Base::Dst) pass.scale = ScaleFrom::Parked;
        const long steps = stride * bytesOf(element_) / kVectorBytes;
        add(pass, steps, kVectorBytes,
            number(steps) + " steps of radix " + number(1 << layers) + " at stride " +
                number(stride));
    }

    void add(const Pass& pass, long trips, long advance, const std::string& what) {
        steps_.push_back(
            {pass, compilePass(pass), static_cast<int>(trips), static_cast<int>(advance), what});
        spillBytes_ = std::max(spillBytes_, steps_.back().compiled.block.frameBytes);
    }

    long points() const { return 1L << order_; }
    long tiles() const {
        return cut_.passes() == 3 ? points() >> (cut_.layers[0] + cut_.layers[1]) : 1;
    }

    // ---- frame: [parked scale] [spill slots] [saved registers], up from rsp

    bool passes() const { return cut_.passes() > 1; }
    int slotsAt() const { return passes() ? kVectorBytes : 0; }
    int savedAt() const { return slotsAt() + spillBytes_; }
    // The stack is 8 above a multiple of 16 at entry; an odd number of quadwords aligns it.
    int frameBytes() const {
        return passes() ? savedAt() + 5 * 8 : spillBytes_ ? spillBytes_ + 8 : 0;
    }
    int frameBias() const { return savedAt() > kBias ? kBias : 0; }
    std::string saved(int i) const { return "qword ptr " + at("rsp", savedAt() + 8 * i); }
    static constexpr int kCallersBuffer = 0, kBlock = 1, kSrc = 2, kDst = 3, kScale = 4;

    // ---- text

    std::string head() const {
        const long n = points();
        std::string text = "# " + name_ + "\n# Walsh-Hadamard transform of " + number(n) +
                           " points: " + number(n * order_) + " additions, " + number(n) +
                           " multiplications.\n";
        if (tiles() > 1)
            text += "# " + number(tiles()) + " tiles, each in two passes; a last pass.\n";
        for (const Step& s : steps_) {
            const kernelgen::Block& b = s.compiled.block;
            const int last = s.pass.firstLayer + s.pass.layers() - 1;
            char figures[160];
            std::snprintf(figures, sizeof figures,
                          "%zu instructions, %d spills, %.0f cycles by the model, port bound %.0f",
                          b.instructions.size(), b.spills, b.modelCycles, b.portBound);
            text += "# Layers " + number(s.pass.firstLayer) + " to " + number(last) + ": " +
                    s.what + "; " + figures + ".\n";
        }
        return text + "# Frame of " + number(frameBytes()) + " bytes, buffer of " +
               number(bufferBytes(element_, order_)) + ".\n";
    }

    std::string function(const std::string& name, bool exported,
                         const std::vector<Variant>& variants) const {
        const std::string local = ".L" + name;
        std::string text = kernelgen::functionHead(name, exported);
        if (variants.front() == Variant::Aligned) {
            text += line("mov\teax, edi") + line("or\teax, esi") + line("test\tal, 15");
            text += line("jne\t" +
                         (variants.size() > 1 ? local + "_unaligned" : kernelgen::twinName(name)));
        }
        for (std::size_t v = 0; v < variants.size(); ++v) {
            const std::string suffix = v == 0 ? "" : "_2";
            if (v > 0) text += label(local + "_unaligned");
            text += gate(local, suffix);
            text += passes() ? passBodies(local, variants[v]) : straightBody(variants[v]);
        }
        text += label(local + "_null") + line("mov\teax, -8") + line("ret");
        return text + kernelgen::functionTail(name);
    }

    std::string gate(const std::string& local, const std::string& suffix) const {
        const int size = bytesOf(element_);
        std::string text = line("test\trdi, rdi") + line("je\t" + local + "_null");
        text += line("test\trsi, rsi") + line("je\t" + local + "_null");
        text += line("lea\tr8, [rip + .L" + name_ + "_pool]");
        text += kernelgen::printFlagGate({0, size, 2 * size}, kernelgen::ScaleRule::BothByN,
                                         {"r8", 0}, local + "_body" + suffix);
        return text + label(local + "_body" + suffix);
    }

    std::string enterFrame() const {
        if (frameBytes() == 0) return "";
        return line("sub\trsp, " + number(frameBytes())) +
               line(".cfi_adjust_cfa_offset\t" + number(frameBytes()));
    }
    std::string leave() const {
        std::string text = line("xor\teax, eax");
        if (frameBytes())
            text += line("add\trsp, " + number(frameBytes())) +
                    line(".cfi_adjust_cfa_offset\t-" + number(frameBytes()));
        return text + line("ret");
    }

    std::string straightBody(Variant variant) const {
        const Step& step = steps_.front();
        const int bias = biasOf(step.pass);
        std::string text = enterFrame();
        if (frameBytes()) text += address("rdx", "rsp", frameBias());
        text += plus("rdi", bias) + plus("rsi", bias);
        text += body(step, variant,
                     {{Base::Src, {"rdi", bias}},
                      {Base::Dst, {"rsi", bias}},
                      {Base::Scale, {"rax", 0}},
                      {Base::Frame, {"rdx", frameBias()}}});
        return text + leave();
    }

    std::string passBodies(const std::string& local, Variant variant) const {
        std::string text = enterFrame() + obtainBuffer(local);
        text += address("rdx", "rsp", frameBias());
        text += parkScale();
        const Step& last = steps_.back();
        const long pointsBytes = points() * bytesOf(element_);
        text += plus("rdi", biasOf(steps_[0].pass));
        if (tiles() > 1) {
            const Step& columns = steps_[1];
            text += address("r10", "rcx", biasOf(columns.pass));
            text += line("mov\tr11d, " + number(tiles()));
            text += "\t.p2align\t4\n" + label(local + "_tiles");
            text += loop(local + "_blocks", steps_[0], variant, "rdi", "r8", pointsBytes);
            text += loop(local + "_columns", columns, variant, "r8", "r10", pointsBytes);
            text += plus("r10", kTileBlocks * steps_[0].advance - columns.trips * columns.advance);
            text += line("sub\tr11d, 1") + line("jne\t" + local + "_tiles");
        } else {
            text += loop(local + "_blocks", steps_[0], variant, "rdi", "r8", 0);
        }
        text += plus("rsi", biasOf(last.pass));
        text += loop(local + "_last", last, variant, "r8", "rsi", 0);
        return text + releaseBuffer(local) + leave();
    }

    // One pass as a counted loop; r8 starts `offset` bytes into the buffer.
    std::string loop(const std::string& start, const Step& step, Variant variant,
                     const std::string& from, const std::string& to, long offset) const {
        const int bias = biasOf(step.pass);
        std::string text = address("r8", "rcx", offset + bias);
        text += line("mov\tr9d, " + number(step.trips));
        text += "\t.p2align\t6\n" + label(start);
        text += body(step, variant,
                     {{step.pass.from, {from, bias}},
                      {step.pass.to, {to, bias}},
                      {Base::Scale, {"rdx", frameBias()}},
                      {Base::Frame, {"rdx", frameBias() - slotsAt()}}});
        text += plus(from, step.advance) + plus(to, step.advance);
        return text + line("sub\tr9d, 1") + line("jne\t" + start);
    }

    std::string body(const Step& step, Variant variant, const Addressing& addressing) const {
        std::string text;
        int stage = -1;
        for (const MachineInstruction& m : step.compiled.block.instructions) {
            if (m.stage != stage)
                text += "\t# " + step.compiled.stages[static_cast<std::size_t>(m.stage)] + "\n";
            stage = m.stage;
            for (const std::string& l : kernelgen::printInstruction(m, addressing, variant))
                text += l + "\n";
        }
        return text;
    }

    // A null buffer: a block of this call's own. What the allocator returns is not tested.
    std::string obtainBuffer(const std::string& local) const {
        std::string text = line("mov\t" + saved(kCallersBuffer) + ", rcx");
        text += line("test\trcx, rcx") + line("jne\t" + local + "_buffer");
        text += line("mov\t" + saved(kSrc) + ", rdi") + line("mov\t" + saved(kDst) + ", rsi");
        text += line("mov\t" + saved(kScale) + ", rax");
        text += line("mov\tedi, " + number(bufferBytes(element_, order_)));
        text += line("call\torvMalloc@PLT");
        text += line("mov\trcx, rax");
        text += line("mov\trdi, " + saved(kSrc)) + line("mov\trsi, " + saved(kDst));
        text += line("mov\trax, " + saved(kScale));
        return text + label(local + "_buffer") + line("mov\t" + saved(kBlock) + ", rcx");
    }
    std::string releaseBuffer(const std::string& local) const {
        return line("cmp\t" + saved(kCallersBuffer) + ", 0") + line("jne\t" + local + "_done") +
               line("mov\trdi, " + saved(kBlock)) + line("call\torvFree@PLT") +
               label(local + "_done");
    }

    // The scale as a vector in the frame, where the last pass reads it.
    std::string parkScale() const {
        MachineInstruction spread{};
        spread.op = element_ == Element::F32 ? Opcode::SpreadSS : Opcode::SpreadSD;
        spread.dst = 0;
        spread.hasAddress = true;
        spread.address = {Base::Scale, 0};
        MachineInstruction park{};
        park.op = Opcode::StoreAligned;
        park.src = 0;
        park.hasAddress = true;
        park.address = {Base::Frame, 0};
        std::string text;
        for (const MachineInstruction& m : {spread, park})
            for (const std::string& l : kernelgen::printInstruction(
                     m, {{Base::Scale, {"rax", 0}}, {Base::Frame, {"rdx", frameBias()}}},
                     Variant::Aligned))
                text += l + "\n";
        return text;
    }

    std::string pool() const {
        const bool single = element_ == Element::F32;
        const auto type = single ? kernelgen::Type::F32 : kernelgen::Type::F64;
        const auto scale = [&](kernelgen::ScaleKind kind, const char* what) {
            const double value = kernelgen::storedScale(kind, static_cast<int>(points()), single);
            return kernelgen::printPoolEntry({type, {value}, what}) + "\n";
        };
        return "\t.section\t.rodata\n\t.p2align\t6\n" + label(".L" + name_ + "_pool") +
               scale(kernelgen::ScaleKind::None, "scale 1") +
               scale(kernelgen::ScaleKind::BySqrtN, "scale 1/sqrt(N)") +
               scale(kernelgen::ScaleKind::ByN, "scale 1/N") +
               "\n\t.section\t.note.GNU-stack, \"\", @progbits\n";
    }

    Element element_;
    int order_;
    const Cut& cut_;
    std::string name_;
    std::vector<Step> steps_;
    int spillBytes_ = 0;
};

kernelgen::Family family(Element element) {
    kernelgen::Family f;
    f.name = element == Element::F32 ? "orvgWHT_32f" : "orvgWHT_64f";
    for (int k = firstOrder; k <= lastOrder; ++k) f.lengths.push_back(k);
    f.assembly = [element](int order) { return WalshHadamardKernel(element, order).assembly(); };
    return f;
}

}  // namespace

std::vector<kernelgen::Family> walshHadamardFamilies() {
    return {family(Element::F32), family(Element::F64)};
}

}  // namespace orvgen::wht
