// SPDX-License-Identifier: MIT
#include "support/machine_code.h"

#include <capstone/capstone.h>

#include <algorithm>
#include <stdexcept>
#include <unordered_map>

namespace orvgen::test {
namespace {

// Vector instructions that kernels may hold; `bytes` is the size of the memory operand. Where one
// mnemonic has several forms (movss and movsd merge from a register and clear from memory) the
// decoder below settles it.
struct VectorRow {
    const char* mnemonic;
    Kind kind;
    Lanes lanes;
    int bytes;
    // A memory operand has to be aligned; the first operand is read too.
    enum Traits : std::uint8_t { plain = 0, aligned = 1, merges = 2, both = 3 } traits = plain;

    bool isAligned() const { return (traits & aligned) != 0; }
    bool mergesFirst() const { return (traits & merges) != 0; }
};

constexpr VectorRow vectorRows[] = {
    {"movaps", Kind::move, Lanes::whole, 16, VectorRow::aligned},
    {"movapd", Kind::move, Lanes::whole, 16, VectorRow::aligned},
    {"movdqa", Kind::move, Lanes::whole, 16, VectorRow::aligned},
    {"movups", Kind::move, Lanes::whole, 16},
    {"movupd", Kind::move, Lanes::whole, 16},
    {"movdqu", Kind::move, Lanes::whole, 16},
    {"movss", Kind::move, Lanes::scalar32, 4},
    {"movsd", Kind::move, Lanes::scalar64, 8},
    {"movd", Kind::move, Lanes::scalar32, 4},
    {"movq", Kind::move, Lanes::scalar64, 8},
    {"movlps", Kind::move, Lanes::scalar64, 8, VectorRow::merges},
    {"movlpd", Kind::move, Lanes::scalar64, 8, VectorRow::merges},
    {"movhps", Kind::move, Lanes::scalar64, 8, VectorRow::merges},
    {"movhpd", Kind::move, Lanes::scalar64, 8, VectorRow::merges},
    {"movlhps", Kind::shuffle, Lanes::packed32, 0, VectorRow::merges},
    {"movhlps", Kind::shuffle, Lanes::packed32, 0, VectorRow::merges},
    {"movddup", Kind::shuffle, Lanes::packed64, 8},
    {"shufps", Kind::shuffle, Lanes::packed32, 16, VectorRow::both},
    {"shufpd", Kind::shuffle, Lanes::packed64, 16, VectorRow::both},
    {"unpcklps", Kind::shuffle, Lanes::packed32, 16, VectorRow::both},
    {"unpckhps", Kind::shuffle, Lanes::packed32, 16, VectorRow::both},
    {"unpcklpd", Kind::shuffle, Lanes::packed64, 16, VectorRow::both},
    {"unpckhpd", Kind::shuffle, Lanes::packed64, 16, VectorRow::both},
    {"pshufd", Kind::shuffle, Lanes::packed32, 16, VectorRow::aligned},
    {"pslldq", Kind::shuffle, Lanes::whole, 0, VectorRow::merges},
    {"psrldq", Kind::shuffle, Lanes::whole, 0, VectorRow::merges},
    {"xorps", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"xorpd", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"pxor", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"orps", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"orpd", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"por", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"andps", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"andpd", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"pand", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"andnps", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"andnpd", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"pandn", Kind::logic, Lanes::whole, 16, VectorRow::both},
    {"addps", Kind::add, Lanes::packed32, 16, VectorRow::both},
    {"subps", Kind::add, Lanes::packed32, 16, VectorRow::both},
    {"addpd", Kind::add, Lanes::packed64, 16, VectorRow::both},
    {"subpd", Kind::add, Lanes::packed64, 16, VectorRow::both},
    {"addss", Kind::add, Lanes::scalar32, 4, VectorRow::merges},
    {"subss", Kind::add, Lanes::scalar32, 4, VectorRow::merges},
    {"addsd", Kind::add, Lanes::scalar64, 8, VectorRow::merges},
    {"subsd", Kind::add, Lanes::scalar64, 8, VectorRow::merges},
    {"mulps", Kind::multiply, Lanes::packed32, 16, VectorRow::both},
    {"mulpd", Kind::multiply, Lanes::packed64, 16, VectorRow::both},
    {"mulss", Kind::multiply, Lanes::scalar32, 4, VectorRow::merges},
    {"mulsd", Kind::multiply, Lanes::scalar64, 8, VectorRow::merges},
    {"cvtss2sd", Kind::convert, Lanes::scalar64, 4, VectorRow::merges},
    {"cvtsd2ss", Kind::convert, Lanes::scalar32, 8, VectorRow::merges},
    {"cvtps2pd", Kind::convert, Lanes::packed64, 8},
    {"cvtpd2ps", Kind::convert, Lanes::packed32, 16, VectorRow::aligned},
};

// Those that have no two-operand form.
constexpr VectorRow vexRows[] = {
    {"broadcastss", Kind::move, Lanes::packed32, 4},
    {"broadcastsd", Kind::move, Lanes::packed64, 8},
    {"broadcastf128", Kind::move, Lanes::whole, 16},
    {"insertf128", Kind::shuffle, Lanes::whole, 16},
    {"extractf128", Kind::shuffle, Lanes::whole, 16},
    {"perm2f128", Kind::shuffle, Lanes::whole, 32},
    {"permpd", Kind::shuffle, Lanes::packed64, 32},
    {"permilps", Kind::shuffle, Lanes::packed32, 16},
    {"permilpd", Kind::shuffle, Lanes::packed64, 16},
    {"movsldup", Kind::shuffle, Lanes::packed32, 16},
    {"movshdup", Kind::shuffle, Lanes::packed32, 16},
    {"insertps", Kind::shuffle, Lanes::packed32, 4},
    {"blendps", Kind::shuffle, Lanes::packed32, 16},
    {"blendpd", Kind::shuffle, Lanes::packed64, 16},
    {"addsubps", Kind::add, Lanes::packed32, 16},
    {"addsubpd", Kind::add, Lanes::packed64, 16},
};

// Integer instructions of gates, frames and pass loops; IntegerCore executes exactly these.
constexpr const char* integerMnemonics[] = {
    "mov",   "movabs", "lea",    "add",   "sub",    "and",    "or",     "xor",    "test",
    "cmp",   "inc",    "dec",    "neg",   "not",    "shl",    "sal",    "shr",    "sar",
    "imul",  "bt",     "movzx",  "movsx", "movsxd", "cdqe",   "push",   "pop",    "leave",
    "sete",  "setne",  "setb",   "setae", "setbe",  "seta",   "setl",   "setge",  "setle",
    "setg",  "sets",   "setns",  "cmove", "cmovne", "cmovb",  "cmovae", "cmovbe", "cmova",
    "cmovl", "cmovge", "cmovle", "cmovg", "cmovs",  "cmovns",
};

const std::unordered_map<std::string, const VectorRow*>& vectorTable() {
    static const auto table = [] {
        std::unordered_map<std::string, const VectorRow*> t;
        for (const VectorRow& row : vectorRows) t[row.mnemonic] = &row;
        for (const VectorRow& row : vexRows) t[std::string("v") + row.mnemonic] = &row;
        return t;
    }();
    return table;
}

constexpr x86_reg general64[] = {X86_REG_RAX, X86_REG_RCX, X86_REG_RDX, X86_REG_RBX,
                                 X86_REG_RSP, X86_REG_RBP, X86_REG_RSI, X86_REG_RDI,
                                 X86_REG_R8,  X86_REG_R9,  X86_REG_R10, X86_REG_R11,
                                 X86_REG_R12, X86_REG_R13, X86_REG_R14, X86_REG_R15};
constexpr x86_reg general32[] = {X86_REG_EAX,  X86_REG_ECX,  X86_REG_EDX,  X86_REG_EBX,
                                 X86_REG_ESP,  X86_REG_EBP,  X86_REG_ESI,  X86_REG_EDI,
                                 X86_REG_R8D,  X86_REG_R9D,  X86_REG_R10D, X86_REG_R11D,
                                 X86_REG_R12D, X86_REG_R13D, X86_REG_R14D, X86_REG_R15D};
constexpr x86_reg general16[] = {X86_REG_AX,   X86_REG_CX,   X86_REG_DX,   X86_REG_BX,
                                 X86_REG_SP,   X86_REG_BP,   X86_REG_SI,   X86_REG_DI,
                                 X86_REG_R8W,  X86_REG_R9W,  X86_REG_R10W, X86_REG_R11W,
                                 X86_REG_R12W, X86_REG_R13W, X86_REG_R14W, X86_REG_R15W};
constexpr x86_reg general8[] = {X86_REG_AL,   X86_REG_CL,   X86_REG_DL,   X86_REG_BL,
                                X86_REG_SPL,  X86_REG_BPL,  X86_REG_SIL,  X86_REG_DIL,
                                X86_REG_R8B,  X86_REG_R9B,  X86_REG_R10B, X86_REG_R11B,
                                X86_REG_R12B, X86_REG_R13B, X86_REG_R14B, X86_REG_R15B};
constexpr x86_reg generalHigh[] = {X86_REG_AH, X86_REG_CH, X86_REG_DH, X86_REG_BH};

// Register operand of general or vector type; false for any other register.
bool setRegister(x86_reg reg, Operand& operand) {
    const auto number = [reg](const auto& list) {
        const auto it = std::find(std::begin(list), std::end(list), reg);
        return it == std::end(list) ? -1 : static_cast<int>(it - std::begin(list));
    };
    operand.type = Operand::Type::general;
    if ((operand.number = number(general64)) >= 0) return operand.size = 8, true;
    if ((operand.number = number(general32)) >= 0) return operand.size = 4, true;
    if ((operand.number = number(general16)) >= 0) return operand.size = 2, true;
    if ((operand.number = number(general8)) >= 0) return operand.size = 1, true;
    if ((operand.number = number(generalHigh)) >= 0) {
        operand.size = 1;
        operand.high = true;
        return true;
    }
    if (reg >= X86_REG_XMM0 && reg <= X86_REG_XMM15) {
        operand.type = Operand::Type::vector;
        operand.size = 16;
        operand.number = reg - X86_REG_XMM0;
        return true;
    }
    if (reg >= X86_REG_YMM0 && reg <= X86_REG_YMM15) {
        operand.type = Operand::Type::vector;
        operand.size = 32;
        operand.number = reg - X86_REG_YMM0;
        return true;
    }
    return false;
}

bool setMemory(const x86_op_mem& mem, int size, Operand& operand) {
    operand.type = Operand::Type::memory;
    operand.size = size;
    operand.displacement = mem.disp;
    if (mem.segment != X86_REG_INVALID) return false;
    Operand reg;
    if (mem.base == X86_REG_RIP) {
        operand.base = 16;
    } else if (mem.base != X86_REG_INVALID) {
        if (!setRegister(mem.base, reg) || reg.size != 8) return false;
        operand.base = reg.number;
    }
    if (mem.index != X86_REG_INVALID) {
        if (!setRegister(mem.index, reg) || reg.size != 8) return false;
        operand.index = reg.number;
        operand.scale = mem.scale;
    }
    return true;
}

// Three operands and more: the destination is only written, any alignment will do but for the moves
// that name it, and a memory operand of whole vectors is as wide as these are.
void classifyVex(Instruction& in) {
    in.vex = true;
    in.mnemonic.erase(0, 1);
    // The decoder names the size of a memory operand that the result does not tell.
    if (in.mnemonic == "cvtpd2psx" || in.mnemonic == "cvtpd2psy") {
        if (in.mnemonic.back() == 'y') in.width = 32;
        in.mnemonic.pop_back();
    }
    auto it = vectorTable().find(in.mnemonic);
    if (it == vectorTable().end()) it = vectorTable().find("v" + in.mnemonic);
    if (it == vectorTable().end()) return;  // foreign
    const VectorRow& row = *it->second;
    in.kind = row.kind;
    in.lanes = row.lanes;
    for (const Operand& o : in.operands) in.width = std::max(in.width, o.size);
    const bool half = row.kind == Kind::convert && row.lanes == Lanes::packed64;
    const bool lane = row.bytes < 16 && !half && row.mnemonic != std::string_view("movddup");
    // Of a whole vector into the half of another, or the lane into all.
    const bool fixed = lane || in.mnemonic.ends_with("f128");
    const bool perm2 = in.mnemonic == "perm2f128" || in.mnemonic == "permpd";
    for (Operand& o : in.operands) {
        if (o.type != Operand::Type::memory) continue;
        o.size = perm2 ? 32 : fixed ? row.bytes : row.bytes * in.width / 16;
        if (row.bytes == 0) in.kind = Kind::foreign;
        in.aligned = row.isAligned() && in.mnemonic.starts_with("mova");
    }
    // Half of a vector goes to memory as it stands.
    if (in.mnemonic == "extractf128" && in.memory() == &in.operands[0]) in.kind = Kind::move;
    const Operand &a = in.operands[1], &b = in.operands[2];
    in.clears = (in.mnemonic == "xorps" || in.mnemonic == "xorpd" || in.mnemonic == "pxor") &&
                a.type == b.type && a.number == b.number;
}

// Kind, lanes and memory size of an instruction whose operands are set.
void classify(Instruction& in, bool jump, bool call, bool ret) {
    const std::string& m = in.mnemonic;
    bool usesVector = false;
    for (const Operand& o : in.operands) usesVector |= o.type == Operand::Type::vector;
    if (jump || call || ret) {
        in.kind = jump ? Kind::jump : call ? Kind::call : Kind::ret;
        return;
    }
    if (m == "endbr64") {
        in.kind = Kind::nop;
        return;
    }
    if (m == "vzeroupper") {
        in.kind = Kind::nop;
        in.vex = true;
        return;
    }
    if (usesVector && m[0] == 'v') {
        classifyVex(in);
        return;
    }
    if (!usesVector) {
        const auto it = std::find(std::begin(integerMnemonics), std::end(integerMnemonics), m);
        in.kind = it == std::end(integerMnemonics) ? Kind::foreign : Kind::integer;
        return;
    }
    const auto it = vectorTable().find(m);
    if (it == vectorTable().end()) return;  // foreign
    const VectorRow& row = *it->second;
    in.kind = row.kind;
    in.lanes = row.lanes;
    in.sse3 = m == "movddup";
    in.mergesFirst = row.mergesFirst();
    const Operand* memory = in.memory();
    if (memory) {
        for (Operand& o : in.operands) {
            if (o.type == Operand::Type::memory) o.size = row.bytes;
        }
        in.aligned = row.isAligned();
        if (row.bytes == 0) in.kind = Kind::foreign;
    } else if (m == "movss" || m == "movsd") {
        in.mergesFirst = true;
    }
    if ((m == "xorps" || m == "xorpd" || m == "pxor") &&
        in.operands[0].number == in.operands[1].number &&
        in.operands[1].type == Operand::Type::vector) {
        in.mergesFirst = false;
        in.clears = true;
    }
}

void fill(const cs_insn& raw, Instruction& in, csh decoder) {
    in.address = raw.address;
    in.length = raw.size;
    in.mnemonic = raw.mnemonic;
    in.text = std::string(raw.mnemonic) + (raw.op_str[0] ? " " : "") + raw.op_str;
    const cs_x86& x86 = raw.detail->x86;
    if (in.mnemonic == "nop") {
        in.kind = Kind::nop;  // whatever operands and prefixes make it long
        return;
    }
    if (x86.op_count > in.operands.size()) return;  // foreign
    in.operandCount = x86.op_count;
    for (int i = 0; i < in.operandCount; ++i) {
        const cs_x86_op& op = x86.operands[i];
        Operand& operand = in.operands[static_cast<std::size_t>(i)];
        bool known = true;
        if (op.type == X86_OP_REG) {
            known = setRegister(op.reg, operand);
        } else if (op.type == X86_OP_IMM) {
            operand.type = Operand::Type::immediate;
            operand.value = op.imm;
            operand.size = op.size;
        } else if (op.type == X86_OP_MEM) {
            // Padding has operands that look like anything and mean nothing.
            known = setMemory(op.mem, op.size, operand) || in.mnemonic == "nop";
        }
        if (!known) return;  // foreign
    }
    // Prefixes (lock, rep) belong to nothing that a kernel does, but for padding.
    const bool prefixed =
        x86.prefix[0] != 0 && x86.prefix[0] != X86_PREFIX_REP && x86.prefix[0] != X86_PREFIX_REPNE;
    if (prefixed) return;
    classify(in, cs_insn_group(decoder, &raw, X86_GRP_JUMP),
             cs_insn_group(decoder, &raw, X86_GRP_CALL), cs_insn_group(decoder, &raw, X86_GRP_RET));
}

}  // namespace

const Operand* Instruction::memory() const {
    for (const Operand& o : operands) {
        if (o.type == Operand::Type::memory) return &o;
    }
    return nullptr;
}

bool Instruction::loads() const {
    const Operand* m = memory();
    if (!m || mnemonic == "lea" || kind == Kind::nop) return false;
    if (m != &operands[0]) return true;
    // The destination: only written by moves, set and pop; written and read by other operations;
    // only read by comparisons, push, jumps and calls.
    return !(kind == Kind::move || mnemonic == "mov" || mnemonic == "pop" ||
             mnemonic.starts_with("set"));
}

bool Instruction::stores() const {
    const Operand* m = memory();
    if (!m || m != &operands[0] || mnemonic == "lea" || kind == Kind::nop) return false;
    return !(flow() || mnemonic == "cmp" || mnemonic == "test" || mnemonic == "bt" ||
             mnemonic == "push");
}

const Instruction* Function::at(std::uint64_t address) const {
    const auto it =
        std::lower_bound(instructions.begin(), instructions.end(), address,
                         [](const Instruction& in, std::uint64_t a) { return in.address < a; });
    return it != instructions.end() && it->address == address ? &*it : nullptr;
}

std::string Function::label(const Instruction& instruction) const {
    char offset[24];
    std::snprintf(offset, sizeof offset, "+0x%llx",
                  static_cast<unsigned long long>(instruction.address - symbol.address));
    return symbol.name + offset + ": " + instruction.text;
}

MachineCode::MachineCode(const std::string& libraryPath) : elf(libraryPath) {
    csh handle = 0;
    if (cs_open(CS_ARCH_X86, CS_MODE_64, &handle) != CS_ERR_OK) {
        throw std::runtime_error("no decoder");
    }
    cs_option(handle, CS_OPT_DETAIL, CS_OPT_ON);
    decoder = handle;
}

MachineCode::~MachineCode() {
    csh handle = decoder;
    cs_close(&handle);
}

bool MachineCode::has(const std::string& name) const {
    const Symbol* symbol = elf.find(name);
    return symbol && symbol->function;
}

const Function& MachineCode::function(const std::string& name) const {
    std::unique_ptr<Function>& slot = decoded[name];
    if (slot) return *slot;
    const Symbol* symbol = elf.find(name);
    if (!symbol || !symbol->function) throw std::runtime_error("no function " + name);
    if (symbol->size == 0) throw std::runtime_error(name + " has no size");
    const auto code = elf.bytes(symbol->address, symbol->size);
    if (code.empty()) throw std::runtime_error(name + ": no bytes");
    cs_insn* raw = nullptr;
    const std::size_t count =
        cs_disasm(decoder, code.data(), code.size(), symbol->address, 0, &raw);
    auto function = std::make_unique<Function>();
    function->symbol = *symbol;
    function->instructions.resize(count);
    for (std::size_t i = 0; i < count; ++i) fill(raw[i], function->instructions[i], decoder);
    cs_free(raw, count);
    const std::uint64_t end = count
                                  ? function->instructions.back().address +
                                        static_cast<unsigned>(function->instructions.back().length)
                                  : symbol->address;
    if (end != symbol->address + symbol->size) {
        throw std::runtime_error(name + ": bytes that are no instruction");
    }
    slot = std::move(function);
    return *slot;
}

const Function* MachineCode::functionAt(std::uint64_t address) const {
    const Symbol* symbol = elf.functionAt(address);
    return symbol ? &function(symbol->name) : nullptr;
}

Instruction MachineCode::decodeAt(std::uint64_t address) const {
    auto code = elf.bytes(address, 15);
    if (code.empty()) throw std::runtime_error("jump to where there is no code");
    cs_insn* raw = nullptr;
    const std::size_t count = cs_disasm(decoder, code.data(), code.size(), address, 1, &raw);
    if (count != 1) throw std::runtime_error("jump to where there is no code");
    Instruction in;
    fill(raw[0], in, decoder);
    cs_free(raw, count);
    return in;
}

}  // namespace orvgen::test
