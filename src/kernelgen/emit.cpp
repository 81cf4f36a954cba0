#include "emit.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <numeric>
#include <stdexcept>

namespace orvgen::kernelgen {

namespace {

std::string xmm(int reg) { return "xmm" + std::to_string(reg); }

const char* mnemonic(Opcode op) {
    switch (op) {
        case Opcode::AddSS:
            return "addss";
        case Opcode::SubSS:
            return "subss";
        case Opcode::MulSS:
            return "mulss";
        case Opcode::AddSD:
            return "addsd";
        case Opcode::SubSD:
            return "subsd";
        case Opcode::MulSD:
            return "mulsd";
        case Opcode::AddPS:
            return "addps";
        case Opcode::SubPS:
            return "subps";
        case Opcode::MulPS:
            return "mulps";
        case Opcode::AddPD:
            return "addpd";
        case Opcode::SubPD:
            return "subpd";
        case Opcode::MulPD:
            return "mulpd";
        case Opcode::XorPS:
            return "xorps";
        case Opcode::Widen:
            return "cvtss2sd";
        case Opcode::Narrow:
            return "cvtsd2ss";
        case Opcode::Shufps:
            return "shufps";
        case Opcode::Unpcklps:
            return "unpcklps";
        case Opcode::Unpckhps:
            return "unpckhps";
        case Opcode::Movlhps:
            return "movlhps";
        case Opcode::Movhlps:
            return "movhlps";
        case Opcode::Shufpd:
            return "shufpd";
        case Opcode::Unpcklpd:
            return "unpcklpd";
        case Opcode::Unpckhpd:
            return "unpckhpd";
        default:
            throw std::logic_error("no single mnemonic");
    }
}

std::string address(const Address& a, const Addressing& addressing, int size, int shift = 0) {
    const Binding& b = addressing.at(a.base).nearest(a.offset + shift);
    const int displacement = a.offset + shift - b.bias;
    std::string text = size == 4 ? "dword ptr [" : size == 8 ? "qword ptr [" : "xmmword ptr [";
    text += b.reg;
    if (displacement > 0) text += " + " + std::to_string(displacement);
    if (displacement < 0) text += " - " + std::to_string(-displacement);
    return text + "]";
}

std::string line(const std::string& op, const std::string& first, const std::string& second = "",
                 const std::string& third = "") {
    std::string text = "\t" + op + "\t" + first;
    if (!second.empty()) text += ", " + second;
    if (!third.empty()) text += ", " + third;
    return text;
}

}  // namespace

const Binding& Binding::nearest(int offset) const {
    if (reaches(offset)) return *this;
    for (const Binding& b : further)
        if (b.reaches(offset)) return b;
    return *this;
}

std::string twinName(const std::string& kernel) { return "owng" + kernel.substr(4) + "_unaligned"; }

void renumberRegisters(std::vector<MachineInstruction>& block) {
    std::array<int, 16> uses{};
    for (const MachineInstruction& m : block)
        for (const int r : {m.dst, m.src})
            if (r >= 0) ++uses[static_cast<std::size_t>(r)];
    std::array<int, 16> byUse;
    std::iota(byUse.begin(), byUse.end(), 0);
    std::stable_sort(byUse.begin(), byUse.end(), [&](int a, int b) {
        return uses[static_cast<std::size_t>(a)] > uses[static_cast<std::size_t>(b)];
    });
    std::array<int, 16> number;
    for (int i = 0; i < 16; ++i)
        number[static_cast<std::size_t>(byUse[static_cast<std::size_t>(i)])] = i;
    for (MachineInstruction& m : block)
        for (int* r : {&m.dst, &m.src})
            if (*r >= 0) *r = number[static_cast<std::size_t>(*r)];
}

int layOutFrame(Allocation& allocation) {
    const std::size_t n = allocation.slotSizes.size();
    std::vector<int> uses(n, 0), offset(n, 0);
    for (const MachineInstruction& m : allocation.instructions)
        if (m.hasAddress && m.address.base == Base::Frame)
            ++uses[static_cast<std::size_t>(m.address.offset)];
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return uses[a] > uses[b]; });
    int end = 0;
    int gap = -1;  // a free 4-byte hole
    for (const std::size_t s : order) {
        const int size = allocation.slotSizes[s];
        if (size == 4 && gap >= 0) {
            offset[s] = gap;
            gap = -1;
            continue;
        }
        if (end % size != 0) {
            gap = end;
            end += size - end % size;
        }
        offset[s] = end;
        end += size;
    }
    for (MachineInstruction& m : allocation.instructions)
        if (m.hasAddress && m.address.base == Base::Frame)
            m.address.offset = offset[static_cast<std::size_t>(m.address.offset)];
    return (end + 15) / 16 * 16;
}

PoolLayout layOutPool(const std::vector<PoolEntry>& pool, std::vector<MachineInstruction>& block,
                      int firstOffset) {
    PoolLayout layout;
    std::vector<int> uses(pool.size(), 0);
    for (const MachineInstruction& m : block)
        if (m.hasAddress && m.address.base == Base::Pool)
            ++uses[static_cast<std::size_t>(m.address.offset)];
    layout.order.resize(pool.size());
    layout.offset.resize(pool.size());
    std::iota(layout.order.begin(), layout.order.end(), std::size_t{0});
    std::stable_sort(layout.order.begin(), layout.order.end(),
                     [&](std::size_t a, std::size_t b) { return uses[a] > uses[b]; });
    int end = firstOffset;
    for (const std::size_t i : layout.order) {
        layout.offset[i] = end;
        end += pool[i].type == Type::F32 ? 4 : pool[i].type == Type::F64 ? 8 : 16;
    }
    layout.size = end;
    for (MachineInstruction& m : block)
        if (m.hasAddress && m.address.base == Base::Pool)
            m.address.offset = layout.offset[static_cast<std::size_t>(m.address.offset)];
    return layout;
}

std::vector<std::string> printInstruction(const MachineInstruction& m, const Addressing& addressing,
                                          Variant variant) {
    const bool aligned = variant == Variant::Aligned;
    const auto at = [&](int size, int shift = 0) {
        return address(m.address, addressing, size, shift);
    };
    const std::string d = m.dst >= 0 ? xmm(m.dst) : "";
    const std::string s = m.src >= 0 ? xmm(m.src) : "";
    const std::string full = aligned ? "movaps" : "movups";
    switch (m.op) {
        case Opcode::LoadSS:
            return {line("movss", d, at(4))};
        case Opcode::LoadSD:
        case Opcode::LoadHalf:
            return {line("movsd", d, at(8))};
        case Opcode::LoadHalves:
            return {line("movsd", d, at(8)), line("movhps", d, address(m.high, addressing, 8))};
        case Opcode::Load16:
            return {line(full, d, at(16))};
        case Opcode::Load16Split:
            if (aligned) return {line("movaps", d, at(16))};
            return {line("movsd", d, at(8)), line("movhps", d, at(8, 8))};
        case Opcode::LoadAligned:
            return {line("movaps", d, at(16))};
        case Opcode::SpreadSS:
            return {line("movss", d, at(4)), line("unpcklps", d, d), line("unpcklps", d, d)};
        case Opcode::SpreadSD:
            return {line("movddup", d, at(8))};
        case Opcode::Zero:
            return {line("xorps", d, d)};
        case Opcode::Move:
            return {line("movaps", d, s)};
        case Opcode::StoreSS:
            return {line("movss", at(4), s)};
        case Opcode::StoreSD:
            return {line("movsd", at(8), s)};
        case Opcode::StoreLow:
            return {line("movlps", at(8), s)};
        case Opcode::StoreHigh:
            return {line("movhps", at(8), s)};
        case Opcode::Store16:
            return {line(full, at(16), s)};
        case Opcode::Store16At8:
            return {line("movups", at(16), s)};
        case Opcode::Store16Split:
            if (aligned) return {line("movaps", at(16), s)};
            return {line("movlps", at(8), s), line("movhps", at(8, 8), s)};
        case Opcode::StoreAligned:
            return {line("movaps", at(16), s)};
        case Opcode::StoreZero4:
            return {line("mov", at(4), "0")};
        case Opcode::StoreZero8:
            return {line("mov", at(8), "0")};
        default:
            break;
    }
    std::vector<std::string> lines;
    if (m.clearsFirst) lines.push_back(line("xorps", d, d));
    const std::string operand = m.hasAddress ? at(accessSize(m.op)) : s;
    const bool selects = m.op == Opcode::Shufps || m.op == Opcode::Shufpd;
    lines.push_back(line(mnemonic(m.op), d, operand, selects ? std::to_string(m.immediate) : ""));
    return lines;
}

std::string printPoolEntry(const PoolEntry& entry) {
    const bool single = entry.type == Type::F32 || entry.type == Type::F32x4;
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
