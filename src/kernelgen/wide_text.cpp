// SPDX-License-Identifier: MIT
#include "wide_text.h"

#include <cstdio>

namespace orvgen::kernelgen {

namespace {

constexpr int kPage = 4096;
constexpr int kShort = 128;  // displacements of one byte reach from -128 to 127
constexpr const char* kLoop = ".Lblock";

int roundUp(int bytes, int multiple) { return (bytes + multiple - 1) / multiple * multiple; }

int scaleStrideOf(const ScaleForm& scale, const Target& target) {
    if (target.broadcasts) return scale.widened ? 16 : bytesOf(scale.type);
    return scale.widened ? 2 * target.vectorBytes : target.vectorBytes;
}

}  // namespace

std::string line(const std::string& text) { return "\t" + text + "\n"; }

std::string wideHead(const std::string& name, const Kernel& kernel, const KernelFigures& f,
                     int transforms) {
    char figures[200];
    std::snprintf(figures, sizeof figures,
                  "# %d instructions, frame %d bytes, %d spills; %.1f cycles by the model for "
                  "%d transforms, port bound %.1f.\n",
                  f.instructions, f.frameBytes, f.spills, f.modelCycles, transforms, f.portBound);
    return "# " + name + "\n# Length " + std::to_string(kernel.length) + ": " + kernel.method +
           ".\n" + figures;
}

std::string openFunction(const std::string& name) {
    return "\t.text\n\t.intel_syntax noprefix\n\n\t.p2align\t6\n\t.globl\t" + name +
           "\n\t.hidden\t" + name + "\n\t.type\t" + name + ", @function\n" + name +
           ":\n\t.cfi_startproc\n" + line("push\trbp") + line(".cfi_def_cfa_offset 16") +
           line(".cfi_offset rbp, -16") + line("mov\trbp, rsp") + line(".cfi_def_cfa_register rbp");
}

std::string openFrame(int bytes, const Target& target) {
    int left = roundUp(bytes, target.vectorBytes);
    if (!left) return "";
    std::string text = line("and\trsp, -" + std::to_string(target.vectorBytes));
    for (; left > kPage; left -= kPage)  // every page is touched before the next
        text += line("sub\trsp, " + std::to_string(kPage)) + line("or\tqword ptr [rsp], 0");
    return text + line("sub\trsp, " + std::to_string(left));
}

std::string closeFunction(const std::string& name) {
    return line("leave") + line(".cfi_def_cfa rsp, 8") + line("ret") + "\t.cfi_endproc\n\t.size\t" +
           name + ", . - " + name + "\n\n";
}

std::string openLoop() { return "\t.p2align\t5\n" + std::string(kLoop) + ":\n"; }

std::string closeLoop(const std::string& count) {
    return line("dec\t" + count) + line("jnz\t" + std::string(kLoop)) + line("vzeroupper");
}

WidePool::WidePool(Block& block, const Target& target)
    : block_(block),
      target_(target),
      scaleStride_(scaleStrideOf(block.scale, target)),
      widenedAt_(target.broadcasts ? 8 : target.vectorBytes),
      layout_(layOutPool(block.pool, block.instructions,
                         roundUp(3 * scaleStride_, target.vectorBytes))) {}

int WidePool::bias() const { return layout_.size > kShort ? kShort : 0; }

std::string WidePool::scale(ScaleKind kind, int length, const char* what) const {
    const ScaleForm& form = block_.scale;
    const double value = storedScale(kind, length, form.type == Type::F32);
    const auto entry = [&](Type type, const char* words) {
        const int lanes = target_.broadcasts ? 1 : target_.vectorBytes / bytesOf(type);
        return printPoolEntry(
                   {type, std::vector<double>(static_cast<std::size_t>(lanes), value), words}) +
               "\n";
    };
    std::string text = entry(form.type, what);
    if (!form.widened) return text;
    if (target_.broadcasts) text += "\t.long\t0\n";
    return text + entry(Type::F64, "the same, widened");
}

std::string WidePool::print(const std::string& name, int length) const {
    std::string text = "\t.section\t.rodata\n\t.p2align\t6\n" + poolLabel(name) + ":\n";
    text += scale(ScaleKind::None, length, "scale 1");
    text += scale(ScaleKind::BySqrtN, length, "scale 1/sqrt(N)");
    text += scale(ScaleKind::ByN, length, "scale 1/N");
    text += "\t.balign\t" + std::to_string(target_.vectorBytes) + "\n";
    for (const std::size_t i : layout_.order) text += printPoolEntry(block_.pool[i]) + "\n";
    return text + "\n\t.section\t.note.GNU-stack, \"\", @progbits\n";
}

}  // namespace orvgen::kernelgen
