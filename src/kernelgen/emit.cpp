// SPDX-License-Identifier: MIT
#include "emit.h"

#include <bit>
#include <cstdio>
#include <stdexcept>

namespace orvgen::kernelgen {

namespace {

constexpr int kOldRegisters = 16;  // that every encoding has names for

// The bytes that the instruction's memory operand is in the instruction's own eyes.
int operandSize(const MachineInstruction& m) {
    return m.broadcast ? rowOf(m.op).lane : accessSize(m.op, m.width);
}

std::string line(const std::string& op, const std::string& first, const std::string& second = "",
                 const std::string& third = "", const std::string& fourth = "") {
    std::string text = "\t" + op + "\t" + first;
    for (const std::string& operand : {second, third, fourth})
        if (!operand.empty()) text += ", " + operand;
    return text;
}

// The register as an operand of so many bytes.
std::string vectorName(int reg, int bytes) {
    if (reg < 0) return "";
    return (bytes <= 16 ? "xmm" : bytes == 32 ? "ymm" : "zmm") + std::to_string(reg);
}

class InstructionPrinter {
  public:
    InstructionPrinter(const MachineInstruction& m, const Addressing& addressing,
                       const Target& target, Variant variant)
        : m_(m), row_(rowOf(m.op)), addressing_(addressing), target_(target), variant_(variant) {}

    std::vector<std::string> run() {
        switch (m_.op) {
            case Opcode::LoadHalves:
                return {line(name("movsd"), d(), at(8)), loadUpper(at(m_.high, 8, 0))};
            case Opcode::Load16Split:
                if (target_.threeOperands()) return {line("vmovups", d(), at(m_.width))};
                if (variant_ == Variant::Aligned) return {line("movaps", d(), at(16))};
                return {line("movsd", d(), at(8)), loadUpper(at(8, 8))};
            case Opcode::Store16Split:
                if (target_.threeOperands()) return {line("vmovups", at(m_.width), s())};
                if (variant_ == Variant::Aligned) return {line("movaps", at(16), s())};
                return {line("movlps", at(8), s()), line("movhps", at(8, 8), s())};
            case Opcode::SpreadSS:
                if (target_.threeOperands()) return {line("vbroadcastss", d(), at(4))};
                return {line("movss", d(), at(4)), line("unpcklps", d(), d()),
                        line("unpcklps", d(), d())};
            case Opcode::SpreadSD:
                return {line(m_.width == 16 ? name("movddup") : "vbroadcastsd", d(), at(8))};
            case Opcode::LoadRows:
                return loadRows();
            case Opcode::StoreRows:
                return storeRows();
            case Opcode::Zero:
                return {clear()};
            case Opcode::UpperHalf:
                return {line(name(), d(), s(), "1")};
            case Opcode::UpperPair:
                return {line(name(), d(), s(), "8")};
            case Opcode::StoreUpper:
                return {line(name(), at(m_.width / 2), vectorName(m_.src, m_.width), "1")};
            case Opcode::StoreZero4:
                return {line("mov", at(4), "0")};
            case Opcode::StoreZero8:
                return {line("mov", at(8), "0")};
            default:
                break;
        }
        switch (row_.form) {
            case Form::Load:
                return {load()};
            case Form::Store:
                return {store()};
            case Form::Move:
                return {line(name("movaps"), d(), vectorName(m_.src, m_.width))};
            case Form::Unary:
                return convert();
            case Form::Binary:
                return {combine()};
        }
        throw std::logic_error("an instruction without a form");
    }

  private:
    // ---- operands

    int resultBytes() const { return resultSize(m_.op, m_.width); }
    std::string d() const { return vectorName(m_.dst, resultBytes()); }
    std::string s() const { return vectorName(m_.src, accessSize(m_.op, m_.width)); }
    std::string secondOperand() const { return m_.hasAddress ? at(operandSize(m_)) : s(); }
    std::string immediate() const {
        if (m_.op == Opcode::JoinHalves) return "1";
        return row_.selects ? std::to_string(m_.immediate) : "";
    }

    std::string at(int size, int shift = 0) const { return at(m_.address, size, shift); }
    std::string at(Address a, int size, int shift) const {
        const int offset = a.offset + shift;
        const Binding& b =
            addressing_.at(a.base).nearest(offset, placesOf(m_, target_).front().unit);
        const int displacement = offset - b.bias;
        static const std::map<int, std::string> kSizes = {
            {4, "dword"}, {8, "qword"}, {16, "xmmword"}, {32, "ymmword"}, {64, "zmmword"}};
        std::string text = kSizes.at(size) + " ptr [" + b.reg;
        if (displacement > 0) text += " + " + std::to_string(displacement);
        if (displacement < 0) text += " - " + std::to_string(-displacement);
        text += "]";
        if (m_.broadcast) text += "{1to" + std::to_string(m_.width / size) + "}";
        return text;
    }

    // ---- instructions

    std::string name(const char* mnemonic) const {
        return (target_.threeOperands() ? "v" : "") + std::string(mnemonic);
    }
    std::string name() const {
        if (target_.encoding == Encoding::Evex && row_.evex) return row_.evex;
        return name(row_.mnemonic);
    }
    // Without alignment to mind, unaligned moves do for all memory but the kernel's own.
    std::string moveName() const {
        const bool any = variant_ == Variant::AnyAlignment || target_.threeOperands();
        return name(any && row_.unaligned ? row_.unaligned : row_.mnemonic);
    }

    // AVX512F encodes vectors of 64 bytes only; what is shorter and stands in a register that the
    // older encodings do not know is moved as a part of one.
    bool isPart(int reg, int bytes) const { return reg >= kOldRegisters && bytes == 32; }

    std::string load() const {
        if (isPart(m_.dst, resultBytes()))
            return line("vbroadcastf64x4", vectorName(m_.dst, 64), at(32));
        return line(moveName(), d(), at(accessSize(m_.op, m_.width)));
    }
    std::string store() const {
        const int bytes = accessSize(m_.op, m_.width);
        if (isPart(m_.src, bytes))
            return line("vextractf64x4", at(32), vectorName(m_.src, 64), "0");
        return line(moveName(), at(bytes), s());
    }

    std::string loadUpper(const std::string& memory) const {
        return target_.threeOperands() ? line("vmovhps", d(), d(), memory)
                                       : line("movhps", d(), memory);
    }

    // A part of 16 bytes from each row; where the rows are, the base's further registers say.
    std::string inRow(int row) const {
        const Binding& b = addressing_.at(m_.address.base);
        const Binding& r = row == 0 ? b : b.further.at(static_cast<std::size_t>(row) - 1);
        const std::string offset =
            m_.address.offset == 0 ? "" : " + " + std::to_string(m_.address.offset);
        return "xmmword ptr [" + r.reg + offset + "]";
    }
    std::string partName(const char* operation) const {
        return operation + std::string(m_.width == 64 ? "f64x2" : "f128");
    }
    std::vector<std::string> loadRows() const {
        std::vector<std::string> lines = {line("vmovups", vectorName(m_.dst, 16), inRow(0))};
        for (int row = 1; row < m_.width / 16; ++row)
            lines.push_back(line(partName("vinsert"), d(), d(), inRow(row), std::to_string(row)));
        return lines;
    }
    std::vector<std::string> storeRows() const {
        const std::string from = vectorName(m_.src, m_.width);
        std::vector<std::string> lines = {line("vmovups", inRow(0), vectorName(m_.src, 16))};
        for (int row = 1; row < m_.width / 16; ++row)
            lines.push_back(line(partName("vextract"), inRow(row), from, std::to_string(row)));
        return lines;
    }

    std::string clear() const {
        if (!target_.threeOperands()) return line("xorps", d(), d());
        const bool old = m_.dst < kOldRegisters;  // there, clearing a part clears the whole
        const std::string reg = vectorName(m_.dst, old ? 16 : 64);
        return line(old ? "vxorps" : "vpxord", reg, reg, reg);
    }

    std::vector<std::string> convert() const {
        const bool scalar = m_.op == Opcode::Widen || m_.op == Opcode::Narrow;
        if (scalar && target_.threeOperands())
            return {line(name(), d(), vectorName(m_.first, 16), secondOperand())};
        if (m_.op == Opcode::WidenUpperPS) {
            const int half = m_.width / 2;
            if (m_.hasAddress) return {line(name(), d(), at(half, half))};
            const std::string lower = vectorName(m_.dst, half);
            return {line(half == 32 ? "vextractf64x4" : "vextractf128", lower,
                         vectorName(m_.src, m_.width), "1"),
                    line(name(), d(), lower)};
        }
        std::vector<std::string> lines;
        if (m_.clearsFirst) lines.push_back(clear());
        lines.push_back(line(name(), d(), secondOperand()));
        return lines;
    }

    std::string combine() const {
        // In memory a scalar is read as the upper half.
        if (m_.op == Opcode::JoinSD && m_.hasAddress)
            return line("vmovhps", d(), vectorName(m_.first, 16), at(8));
        if (!target_.threeOperands()) return line(name(), d(), secondOperand(), immediate());
        return line(name(), d(), vectorName(m_.first, m_.width), secondOperand(), immediate());
    }

    const MachineInstruction& m_;
    const OpcodeRow& row_;
    const Addressing& addressing_;
    const Target& target_;
    Variant variant_;
};

}  // namespace

bool Binding::reaches(int offset, int unit) const {
    const int displacement = offset - bias;
    return displacement % unit == 0 && displacement / unit >= -128 && displacement / unit <= 127;
}

const Binding& Binding::nearest(int offset, int unit) const {
    if (reaches(offset, unit)) return *this;
    for (const Binding& b : further)
        if (b.reaches(offset, unit)) return b;
    return *this;
}

std::vector<Place> placesOf(const MachineInstruction& m, const Target& target) {
    if (!m.hasAddress) return {};
    // The EVEX encoding counts displacements in whole operands.
    const int unit = target.encoding == Encoding::Evex ? operandSize(m) : 1;
    std::vector<Place> places = {{m.address, unit}};
    if (m.op == Opcode::LoadHalves) places.push_back({m.high, unit});
    return places;
}

std::vector<std::string> printInstruction(const MachineInstruction& m, const Addressing& addressing,
                                          const Target& target, Variant variant) {
    return InstructionPrinter(m, addressing, target, variant).run();
}

int instructionCount(const std::vector<MachineInstruction>& block, const Target& target) {
    Addressing anywhere;
    for (int b = 0; b < static_cast<int>(Base::Count); ++b)
        anywhere[static_cast<Base>(b)] = {"", 0};
    std::size_t count = 0;
    for (const MachineInstruction& m : block)
        count += printInstruction(m, anywhere, target, Variant::Aligned).size();
    return static_cast<int>(count);
}

std::string printPoolEntry(const PoolEntry& entry) {
    const bool single = isSingle(entry.type);
    std::string text = single ? "\t.long\t" : "\t.quad\t";
    for (std::size_t l = 0; l < entry.lanes.size(); ++l) {
        char digits[32];
        if (single)
            std::snprintf(digits, sizeof digits, "0x%08x",
                          std::bit_cast<unsigned>(static_cast<float>(entry.lanes[l])));
        else
            std::snprintf(digits, sizeof digits, "0x%016llx",
                          std::bit_cast<unsigned long long>(entry.lanes[l]));
        text += (l ? ", " : "") + std::string(digits);
    }
    return text + "\t# " + entry.text;
}

}  // namespace orvgen::kernelgen
