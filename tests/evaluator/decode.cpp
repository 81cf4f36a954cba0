// SPDX-License-Identifier: MIT
#include "evaluator/decode.h"

#include <Zydis/Zydis.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "evaluator/arithmetic.h"
#include "evaluator/integer.h"
#include "evaluator/lanes.h"

namespace orvgen::test::evaluator {
namespace {

void refuse(State&, const Operation&) { throw Stop{"it is not known"}; }

// The operands that take part, in their order.
struct Operands {
    std::array<const ZydisDecodedOperand*, 4> list{};
    int count = 0;
};

struct Instruction {
    ZydisDecodedInstruction raw;
    ZydisDecodedOperand all[ZYDIS_MAX_OPERAND_COUNT];

    bool isLegacy() const { return raw.encoding == ZYDIS_INSTRUCTION_ENCODING_LEGACY; }
    std::string_view name() const {
        std::string_view name = ZydisMnemonicGetString(raw.mnemonic);
        if (!isLegacy() && name.starts_with('v')) name.remove_prefix(1);
        return name;
    }
    Operands operands() const {
        Operands o;
        for (int i = 0; i < raw.operand_count_visible; ++i)
            if (all[i].encoding != ZYDIS_OPERAND_ENCODING_MASK && o.count < 4)
                o.list[static_cast<std::size_t>(o.count++)] = &all[i];
        return o;
    }
};

bool isVector(const ZydisDecodedOperand& o) {
    if (o.type != ZYDIS_OPERAND_TYPE_REGISTER) return false;
    const ZydisRegisterClass c = ZydisRegisterGetClass(o.reg.value);
    return c == ZYDIS_REGCLASS_XMM || c == ZYDIS_REGCLASS_YMM || c == ZYDIS_REGCLASS_ZMM;
}
bool isGeneral(ZydisRegister r) {
    const ZydisRegisterClass c = ZydisRegisterGetClass(r);
    return c == ZYDIS_REGCLASS_GPR8 || c == ZYDIS_REGCLASS_GPR16 || c == ZYDIS_REGCLASS_GPR32 ||
           c == ZYDIS_REGCLASS_GPR64;
}

std::uint8_t numberOf(ZydisRegister r) {
    if (r >= ZYDIS_REGISTER_AH && r <= ZYDIS_REGISTER_BH)
        return static_cast<std::uint8_t>(kHigh + r - ZYDIS_REGISTER_AH);
    // The same numbers for al and rax; ids of 8-bit registers have the high ones in between.
    const ZydisRegister whole =
        isGeneral(r) ? ZydisRegisterGetLargestEnclosing(ZYDIS_MACHINE_MODE_LONG_64, r) : r;
    return static_cast<std::uint8_t>(ZydisRegisterGetId(whole));
}

bool setMemory(const ZydisDecodedOperand& o, const Instruction& in, Operation& op) {
    const auto& m = o.mem;
    if (m.segment == ZYDIS_REGISTER_FS || m.segment == ZYDIS_REGISTER_GS) return false;
    op.memoryBytes = static_cast<std::uint8_t>(o.size / 8);
    op.displacement = m.disp.has_displacement ? m.disp.value : 0;
    if (m.base == ZYDIS_REGISTER_RIP)
        op.displacement += static_cast<std::int64_t>(op.address + in.raw.length);
    else if (m.base != ZYDIS_REGISTER_NONE)
        op.base = numberOf(m.base);
    if (m.index != ZYDIS_REGISTER_NONE) {
        op.index = numberOf(m.index);
        op.scale = m.scale;
    }
    return true;
}

// Operand i: of general instructions `to`, `first` and `second` are the three in their order.
bool setOperand(const ZydisDecodedOperand& o, int i, const Instruction& in, Operation& op) {
    std::uint8_t* const place[] = {&op.to, &op.first, &op.second};
    if (o.type == ZYDIS_OPERAND_TYPE_MEMORY) {
        op.memoryOperand = static_cast<std::uint8_t>(i);
        return setMemory(o, in, op);
    }
    if (o.type == ZYDIS_OPERAND_TYPE_IMMEDIATE) {
        op.immediate = static_cast<std::int64_t>(o.imm.value.u);
        if (o.imm.is_relative) {
            ZyanU64 target = 0;
            ZydisCalcAbsoluteAddress(&in.raw, &o, op.address, &target);
            op.immediate = static_cast<std::int64_t>(target);
        }
        return true;
    }
    if (o.type != ZYDIS_OPERAND_TYPE_REGISTER || i > 2) return false;
    *place[i] = numberOf(o.reg.value);
    if (isGeneral(o.reg.value)) op.generals |= static_cast<std::uint8_t>(1 << i);
    return true;
}

// Two operands, of which the first is a source too.
bool mergesFirst(std::string_view name, const Operands& o) {
    constexpr std::string_view names[] = {"addsd",    "addss", "cvtsd2ss", "cvtsi2sd",
                                          "cvtsi2ss", "mulsd", "mulss",    "pxor",
                                          "subsd",    "subss", "xorpd",    "xorps"};
    if (name == "movss" || name == "movsd") return isVector(*o.list[0]) && isVector(*o.list[1]);
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

Handler vectorHandler(const Instruction& in, Operands o, Operation& op) {
    const std::string_view name = in.name();
    const auto& avx = in.raw.avx;
    op.keepsUpper = in.isLegacy();
    if (avx.mask.mode == ZYDIS_MASK_MODE_MERGING || avx.mask.mode == ZYDIS_MASK_MODE_ZEROING)
        op.mask = numberOf(avx.mask.reg);
    op.zeroes = avx.mask.mode == ZYDIS_MASK_MODE_ZEROING;
    if (avx.has_sae || avx.rounding.mode != ZYDIS_ROUNDING_MODE_INVALID) return nullptr;
    op.repeats = avx.broadcast.mode != ZYDIS_BROADCAST_MODE_INVALID && !avx.broadcast.is_static;
    if (o.count > 0 &&
        o.list[static_cast<std::size_t>(o.count - 1)]->type == ZYDIS_OPERAND_TYPE_IMMEDIATE) {
        setOperand(*o.list[static_cast<std::size_t>(o.count - 1)], 3, in, op);
        --o.count;
    }
    if (in.isLegacy()) {
        if (o.count != 2) return nullptr;
        if (mergesFirst(name, o))
            o = {{o.list[0], o.list[0], o.list[1]}, 3};
        else if (!name.starts_with("mov"))
            return nullptr;
    }
    for (int i = 0; i < o.count; ++i)
        if (!setOperand(*o.list[static_cast<std::size_t>(i)], i, in, op)) return nullptr;
    op.operands = static_cast<std::uint8_t>(o.count);
    if (o.count > 0) op.width = static_cast<std::uint8_t>(o.list[0]->size / 8);
    if (o.count > 1)
        op.secondBytes =
            static_cast<std::uint8_t>(o.list[static_cast<std::size_t>(o.count - 1)]->size / 8);
    // A register that is not named is one whose words nobody takes.
    for (std::uint8_t* r : {&op.to, &op.first, &op.second})
        if (*r == kNone) *r = 0;
    op.aligned = name.starts_with("mova") || name.starts_with("movdqa");
    if (const Handler handler = lanesHandler(name, op)) return handler;
    return op.mask == 0 ? arithmeticHandler(name, op) : nullptr;
}

Handler generalHandler(const Instruction& in, const Operands& o, Operation& op) {
    for (int i = 0; i < o.count; ++i) {
        if (in.raw.mnemonic == ZYDIS_MNEMONIC_NOP) break;  // long by operands that mean nothing
        if (!setOperand(*o.list[static_cast<std::size_t>(i)], i, in, op)) return nullptr;
    }
    op.operands = static_cast<std::uint8_t>(o.count);
    if (o.count > 0) op.width = static_cast<std::uint8_t>(o.list[0]->size / 8);
    if (o.count > 1) op.secondBytes = static_cast<std::uint8_t>(o.list[1]->size / 8);
    return integerHandler(in.name(), op);
}

}  // namespace

struct Decoder::Library {
    ZydisDecoder decoder;
};

Decoder::Decoder() : library_(std::make_unique<Library>()) {
    ZydisDecoderInit(&library_->decoder, ZYDIS_MACHINE_MODE_LONG_64, ZYDIS_STACK_WIDTH_64);
}
Decoder::~Decoder() = default;

Decoded Decoder::decode(std::span<const std::uint8_t> bytes, std::uint64_t address) const {
    Instruction in{};
    Operation op;
    op.address = address;
    op.run = refuse;
    if (!ZYAN_SUCCESS(ZydisDecoderDecodeFull(&library_->decoder, bytes.data(), bytes.size(),
                                             &in.raw, in.all)))
        return {op, 1, true};
    const Operands operands = in.operands();
    bool ofVectors = in.raw.mnemonic == ZYDIS_MNEMONIC_VZEROUPPER || in.name().starts_with("kmov");
    for (int i = 0; i < operands.count; ++i)
        ofVectors |= isVector(*operands.list[static_cast<std::size_t>(i)]);
    const Handler handler =
        ofVectors ? vectorHandler(in, operands, op) : generalHandler(in, operands, op);
    if (handler != nullptr) op.run = handler;
    return {op, in.raw.length, in.raw.meta.branch_type != ZYDIS_BRANCH_TYPE_NONE};
}

std::string Decoder::text(std::span<const std::uint8_t> bytes, std::uint64_t address) {
    ZydisDisassembledInstruction in;
    const bool isKnown = ZYAN_SUCCESS(ZydisDisassembleIntel(ZYDIS_MACHINE_MODE_LONG_64, address,
                                                            bytes.data(), bytes.size(), &in));
    return isKnown ? in.text : "no instruction";
}

std::vector<std::uint8_t> Decoder::exchanged(std::span<const std::uint8_t> bytes) const {
    Instruction in{};
    ZydisEncoderRequest request;
    ZyanU8 buffer[ZYDIS_MAX_INSTRUCTION_LENGTH];
    ZyanUSize length = sizeof buffer;
    if (!ZYAN_SUCCESS(ZydisDecoderDecodeFull(&library_->decoder, bytes.data(), bytes.size(),
                                             &in.raw, in.all)) ||
        !ZYAN_SUCCESS(ZydisEncoderDecodedInstructionToEncoderRequest(
            &in.raw, in.all, in.raw.operand_count_visible, &request)))
        return {};
    std::swap(request.operands[request.operand_count - 1],
              request.operands[request.operand_count - 2]);
    if (!ZYAN_SUCCESS(ZydisEncoderEncodeInstruction(&request, buffer, &length)) ||
        length != bytes.size())
        return {};
    return {buffer, buffer + length};
}

}  // namespace orvgen::test::evaluator
