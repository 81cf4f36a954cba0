// SPDX-License-Identifier: MIT
#include "function.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <tuple>

#include "orvgen.h"

namespace orvgen::kernelgen {

namespace {

// General registers. All of them belong to the callee, and none is needed across a call of the
// allocator but what the frame keeps.
//
//             straight body                   passes
//     rdi     src                             src, running
//     rsi     dst                             dst, running
//     rax     address of the scale            the same, until the scale is parked in the frame
//     rcx     pool                            buffer
//     rdx     flag, then frame                flag, then frame
//     rbp     where the stack pointer was, if the frame holds vectors of 32 bytes
//     r8      }                               the array that a pass reads from or writes to
//     r9      } further parts of the memory   trips left
//     r10     } that the block touches        buffer, running through the tiles
//     r11     }                               tiles left
//
// A function with a buffer among its arguments has its pool, which only the gate reads, in r8.

constexpr int kShort = 128;         // displacements of one byte reach from -128 to 127,
constexpr int kReach = 256;         // so many bytes
constexpr int kLeastUses = 4;       // that pay for a further register: two or three bytes each
constexpr int kSavedBytes = 5 * 8;  // what is kept across a call of the allocator

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
    return n == kShort ? line("sub\t" + reg + ", -128") : line("add\t" + reg + ", " + number(n));
}
std::string address(const std::string& reg, const std::string& base, long offset) {
    return offset ? line("lea\t" + reg + ", " + at(base, offset))
                  : line("mov\t" + reg + ", " + base);
}

// How far a base is moved up, so that one-byte displacements reach more of the bytes from 0 to end.
int biasFor(int end) { return end >= kShort ? kShort : 0; }
int biasOf(const Block& block, Base base, const Target& target) {
    int end = 0;
    for (const MachineInstruction& m : block.instructions)
        for (const Place& place : placesOf(m, target))
            if (place.address.base == base) end = std::max(end, place.address.offset);
    return biasFor(end);
}

// Lets the register point at the most used bytes that no one-byte displacement reaches.
void bindFurther(Addressing& addressing, const char* reg, const Block& block,
                 const Target& target) {
    std::map<Base, std::map<int, int>> uses;  // of each place out of reach
    for (const MachineInstruction& m : block.instructions)
        for (const auto& [a, unit] : placesOf(m, target))
            if (!addressing.at(a.base).nearest(a.offset, unit).reaches(a.offset, unit))
                ++uses[a.base][a.offset];
    int most = 0, start = 0;
    Base base{};
    for (const auto& [b, places] : uses) {
        for (auto first = places.begin(); first != places.end(); ++first) {
            int sum = 0;
            for (auto p = first; p != places.end() && p->first < first->first + kReach; ++p)
                sum += p->second;
            if (sum > most) std::tie(most, base, start) = std::tuple(sum, b, first->first);
        }
    }
    if (most >= kLeastUses) addressing[base].further.push_back({reg, start + kShort});
}

class FunctionPrinter {
  public:
    FunctionPrinter(const Kernel& kernel, const CompiledBody& body, const Target& target)
        : kernel_(kernel), body_(body), target_(target), spillBytes_(body.spillBytes()) {}

    std::string function(const std::string& name, bool exported,
                         const std::vector<Variant>& variants) {
        local_ = ".L" + name;
        std::string text = "\t.p2align\t6\n\t.globl\t" + name + "\n";
        if (!exported) text += "\t.hidden\t" + name + "\n";
        text += "\t.type\t" + name + ", @function\n" + label(name) + "\t.cfi_startproc\n";
        if (variants.front() == Variant::Aligned) {
            text += line("mov\teax, edi") + line("or\teax, esi") + line("test\tal, 15");
            text +=
                line("jne\t" + (variants.size() > 1 ? local_ + "_unaligned" : kernel_.name.twin()));
        }
        for (std::size_t v = 0; v < variants.size(); ++v) {
            suffix_ = v == 0 ? "" : "_2";
            variant_ = variants[v];
            if (v > 0) text += label(local_ + "_unaligned");
            text += gate();
            text += enterFrame();
            text += body_.hasLoops() ? passes() : straight();
            text += line("xor\teax, eax") + leaveFrame() + line("ret");
        }
        text += label(local_ + "_null") + line("mov\teax, " + number(orvErrNullPtr)) + line("ret");
        return text + "\t.cfi_endproc\n\t.size\t" + name + ", . - " + name + "\n\n";
    }

  private:
    // ---- frame: [parked scale] [spill slots] [saved registers], up from rsp

    int slotsAt() const { return body_.parkedBytes(); }
    int savedAt() const { return slotsAt() + spillBytes_; }
    int frameBias() const { return savedAt() > kShort ? kShort : 0; }
    // The stack is 8 above a multiple of 16 at entry; an odd number of quadwords aligns it.
    int stackBytes() const {
        const int bytes = body_.frameBytes();
        return bytes == 0 || bytes % 16 != 0 ? bytes : bytes + 8;
    }
    std::string saved(int i) const { return "qword ptr " + at("rsp", savedAt() + 8 * i); }
    static constexpr int kCallersBuffer = 0, kBlock = 1, kSrc = 2, kDst = 3, kScale = 4;

    std::string enterFrame() const {
        if (!stackBytes()) return "";
        // Vectors of 32 bytes stand at multiples of 32.
        if (body_.hasWideFrame())
            return line("push\trbp") + "\t.cfi_adjust_cfa_offset 8\n\t.cfi_offset rbp, -16\n" +
                   line("mov\trbp, rsp") + "\t.cfi_def_cfa_register rbp\n" +
                   line("sub\trsp, " + number(body_.frameBytes())) + line("and\trsp, -32");
        return line("sub\trsp, " + number(stackBytes())) + "\t.cfi_adjust_cfa_offset " +
               number(stackBytes()) + "\n";
    }
    std::string leaveFrame() const {
        if (!stackBytes()) return "";
        if (body_.hasWideFrame())
            return line("leave") + "\t.cfi_def_cfa rsp, 8\n\t.cfi_restore rbp\n";
        return line("add\trsp, " + number(stackBytes())) + "\t.cfi_adjust_cfa_offset -" +
               number(stackBytes()) + "\n";
    }

    // ---- gate

    std::string gate() const {
        const Binding pool = poolBinding();
        const std::string body = local_ + "_body" + suffix_;
        std::string text = line("test\trdi, rdi") + line("je\t" + local_ + "_null");
        text += line("test\trsi, rsi") + line("je\t" + local_ + "_null");
        text += line("lea\t" + pool.reg + ", [rip + " + poolLabel(kernel_.name.exported()) +
                     (pool.bias ? " + " + number(pool.bias) : "") + "]");
        const bool forward = kernel_.scale != ScaleRule::InverseByN;
        const bool inverse = kernel_.scale != ScaleRule::ForwardByN;
        const std::pair<int, ScaleKind> flags[] = {
            {orvScaleNone, ScaleKind::None},
            {orvScaleBySqrtN, ScaleKind::BySqrtN},
            {orvScaleFwdByN, forward ? ScaleKind::ByN : ScaleKind::None},
            {orvScaleInvByN, inverse ? ScaleKind::ByN : ScaleKind::None}};
        int current = -1;
        for (const auto& [flag, kind] : flags) {
            const int offset = static_cast<int>(kind) * body_.scaleStride;
            if (offset != current)
                text += line("lea\trax, " + atZero(pool.reg, offset - pool.bias));
            current = offset;
            text += line("cmp\tedx, " + number(flag)) + line("je\t" + body);
        }
        text += line("mov\teax, " + number(orvErrFlag)) + line("ret");
        return text + (target_.alignsBody ? "\t.p2align\t5\n" : "") + label(body);
    }
    // The displacement is written also where it is zero.
    static std::string atZero(const std::string& reg, int offset) {
        return "[" + reg + (offset < 0 ? " - " : " + ") + number(std::abs(offset)) + "]";
    }

    Binding poolBinding() const {
        if (kernel_.passes) return {"r8", 0};
        return {"rcx", body_.poolBytes > kShort ? kShort : 0};
    }

    // ---- a straight body

    std::string straight() const {
        const Block& block = body_.last.block;
        Addressing addressing = {{Base::Src, {"rdi", biasOf(block, Base::Src, target_)}},
                                 {Base::Dst, {"rsi", biasOf(block, Base::Dst, target_)}},
                                 {Base::Pool, poolBinding()},
                                 {Base::Scale, {"rax", 0}},
                                 {Base::WidenedScale, {"rax", -block.scale.widenedAt()}},
                                 {Base::Frame, {"rdx", frameBias()}}};
        if (!kernel_.passes)
            for (const char* reg : {"r8", "r9", "r10", "r11"})
                bindFurther(addressing, reg, block, target_);
        std::string text;
        if (spillBytes_) text += address("rdx", "rsp", frameBias());
        text += plus("rdi", addressing[Base::Src].bias) + plus("rsi", addressing[Base::Dst].bias);
        for (const auto& [base, binding] : addressing)
            for (const Binding& b : binding.further)
                text += line("lea\t" + b.reg + ", " + at(binding.reg, b.bias - binding.bias));
        return text + instructions(block, addressing) + leaveVectors();
    }

    // No instruction of the old encoding shall wait for upper halves.
    std::string leaveVectors() const { return body_.isWide() ? line("vzeroupper") : ""; }

    std::string instructions(const Block& block, const Addressing& addressing) const {
        std::string text;
        int stage = -1;
        for (const MachineInstruction& m : block.instructions) {
            const std::string& name = block.stages[static_cast<std::size_t>(m.stage)];
            if (m.stage != stage && !name.empty()) text += "\t# " + name + "\n";
            stage = m.stage;
            for (const std::string& l : printInstruction(m, addressing, target_, variant_))
                text += l + "\n";
        }
        return text;
    }

    // ---- passes

    std::string passes() const {
        const Step& first = body_.tile.front();
        const Step& last = body_.last;
        std::string text = obtainBuffer();
        text += address("rdx", "rsp", frameBias());
        text += parkScale();
        text += plus("rdi", biasOf(first.block, Base::Src, target_));
        if (body_.tiles > 1) {
            const Step& columns = body_.tile.back();
            text += address("r10", "rcx", biasOf(columns.block, Base::Buffer, target_));
            text += line("mov\tr11d, " + number(body_.tiles));
            text += "\t.p2align\t4\n" + label(local_ + "_tiles" + suffix_);
            text += loop(first, "rdi", "r8") + loop(columns, "r8", "r10");
            text += plus("r10", body_.tileBytes - columns.pass.trips * columns.pass.advance);
            text += line("sub\tr11d, 1") + line("jne\t" + local_ + "_tiles" + suffix_);
        } else {
            text += loop(first, "rdi", "r8");
        }
        text += plus("rsi", biasOf(last.block, Base::Dst, target_));
        text += loop(last, "r8", "rsi");
        return text + leaveVectors() + releaseBuffer();
    }

    // One pass as a counted loop. r8 starts at the array that it goes through: the buffer, or the
    // scratch of a tile in it.
    std::string loop(const Step& step, const std::string& from, const std::string& to) const {
        const Pass& pass = step.pass;
        const Base array = from == "r8" ? pass.from : pass.to;
        const int start = array == Base::Tile ? body_.scratchAt : 0;
        const std::string top = local_ + "_" + pass.name + suffix_;
        std::string text = "\t# " + pass.what + "\n";
        text += address("r8", "rcx", start + biasOf(step.block, array, target_));
        text += line("mov\tr9d, " + number(pass.trips));
        text += "\t.p2align\t6\n" + label(top);
        text +=
            instructions(step.block, {{pass.from, {from, biasOf(step.block, pass.from, target_)}},
                                      {pass.to, {to, biasOf(step.block, pass.to, target_)}},
                                      {Base::Scale, {"rdx", frameBias()}},
                                      {Base::Frame, {"rdx", frameBias() - slotsAt()}}});
        text += plus(from, pass.advance) + plus(to, pass.advance);
        return text + line("sub\tr9d, 1") + line("jne\t" + top);
    }

    // A null buffer: a block of this call's own. What the allocator returns is not tested.
    std::string obtainBuffer() const {
        const std::string ready = local_ + "_buffer" + suffix_;
        std::string text = line("mov\t" + saved(kCallersBuffer) + ", rcx");
        text += line("test\trcx, rcx") + line("jne\t" + ready);
        text += line("mov\t" + saved(kSrc) + ", rdi") + line("mov\t" + saved(kDst) + ", rsi");
        text += line("mov\t" + saved(kScale) + ", rax");
        text += line("mov\tedi, " + number(body_.bufferBytes));
        text += line("call\torvMalloc@PLT");
        text += line("mov\trcx, rax");
        text += line("mov\trdi, " + saved(kSrc)) + line("mov\trsi, " + saved(kDst));
        text += line("mov\trax, " + saved(kScale));
        return text + label(ready) + line("mov\t" + saved(kBlock) + ", rcx");
    }
    std::string releaseBuffer() const {
        const std::string done = local_ + "_done" + suffix_;
        return line("cmp\t" + saved(kCallersBuffer) + ", 0") + line("jne\t" + done) +
               line("mov\trdi, " + saved(kBlock)) + line("call\torvFree@PLT") + label(done);
    }

    // The scale as a vector in the frame, where the last pass reads it.
    std::string parkScale() const {
        const bool single = body_.last.block.scale.type == Type::F32;
        MachineInstruction spread{.op = single ? Opcode::SpreadSS : Opcode::SpreadSD};
        spread.width = body_.parkedBytes();
        spread.dst = 0;
        spread.hasAddress = true;
        spread.address = {Base::Scale, 0};
        MachineInstruction park{.op = Opcode::StoreAligned};
        park.width = body_.parkedBytes();
        park.src = 0;
        park.hasAddress = true;
        park.address = {Base::Frame, 0};
        const Addressing addressing = {{Base::Scale, {"rax", 0}},
                                       {Base::Frame, {"rdx", frameBias()}}};
        std::string text;
        for (const MachineInstruction& m : {spread, park})
            for (const std::string& l : printInstruction(m, addressing, target_, variant_))
                text += l + "\n";
        return text;
    }

    const Kernel& kernel_;
    const CompiledBody& body_;
    const Target& target_;
    int spillBytes_;
    // Of the function that is being printed:
    std::string local_;   // what its labels begin with
    std::string suffix_;  // what those of a second body end in
    Variant variant_ = Variant::Aligned;
};

}  // namespace

int CompiledBody::spillBytes() const {
    int most = last.block.frameBytes;
    for (const Step& step : tile) most = std::max(most, step.block.frameBytes);
    return most;
}

int CompiledBody::parkedBytes() const { return !hasLoops() ? 0 : isWide() ? 32 : 16; }

int CompiledBody::frameBytes() const {
    return spillBytes() + parkedBytes() + (hasLoops() ? kSavedBytes : 0);
}

namespace {

bool isIn(const CompiledBody& body, bool (*what)(const MachineInstruction&)) {
    const auto inBlock = [&](const Step& step) {
        return std::ranges::any_of(step.block.instructions, what);
    };
    return std::ranges::any_of(body.tile, inBlock) || inBlock(body.last);
}

}  // namespace

bool CompiledBody::isWide() const {
    return isIn(*this, [](const MachineInstruction& m) { return m.width == 32; });
}

bool CompiledBody::hasWideFrame() const {
    return isWide() && (hasLoops() || isIn(*this, [](const MachineInstruction& m) {
                            return m.width == 32 && m.hasAddress && m.address.base == Base::Frame;
                        }));
}

std::string poolLabel(const std::string& function) { return ".L" + function + "_pool"; }

namespace {

// One body takes any alignment: the twin is another name of it.
std::string secondName(const std::string& function, const std::string& name) {
    return "\t.globl\t" + name + "\n\t.hidden\t" + name + "\n\t.type\t" + name +
           ", @function\n\t.set\t" + name + ", " + function + "\n\n";
}

}  // namespace

std::string printFunctions(const Kernel& kernel, const CompiledBody& body, const Target& target) {
    FunctionPrinter printer(kernel, body, target);
    if (target.unalignedOperands) {
        std::string text = printer.function(kernel.name.exported(), true, {Variant::AnyAlignment});
        if (kernel.alignment == Alignment::Twin)
            text += secondName(kernel.name.exported(), kernel.name.twin());
        return text;
    }
    switch (kernel.alignment) {
        case Alignment::Any:
            return printer.function(kernel.name.exported(), true, {Variant::AnyAlignment});
        case Alignment::Twin:
            return printer.function(kernel.name.exported(), true, {Variant::Aligned}) +
                   printer.function(kernel.name.twin(), false, {Variant::AnyAlignment});
        case Alignment::TwoBodies:
            return printer.function(kernel.name.exported(), true,
                                    {Variant::Aligned, Variant::AnyAlignment});
    }
    return "";
}

}  // namespace orvgen::kernelgen
