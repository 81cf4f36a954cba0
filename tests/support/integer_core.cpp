// SPDX-License-Identifier: MIT
#include "support/integer_core.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>

#include "support/integer_arithmetic.h"
#include "support/integer_state.h"

namespace orvgen::test {
namespace {

constexpr std::uint64_t regionSpan = std::uint64_t{1} << 32;
constexpr std::uint64_t srcBase = std::uint64_t{0x10} << 32;
constexpr std::uint64_t dstBase = std::uint64_t{0x20} << 32;
constexpr std::uint64_t bufferBase = std::uint64_t{0x30} << 32;
constexpr std::uint64_t importBase = std::uint64_t{0x60} << 32;
// At entry the stack pointer is 8 past a 16-byte boundary: the return address lies there.
constexpr std::uint64_t entryStack = (std::uint64_t{0x70} << 32) - 8;
constexpr std::uint64_t returnAddress = std::uint64_t{0x7e} << 32;
constexpr std::size_t stepLimit = 8'000'000;

constexpr int rax = 0, rcx = 1, rdx = 2, rsp = 4, rsi = 6, rdi = 7, r8 = 8;
constexpr int calleeSaved[] = {3, 5, 12, 13, 14, 15};

class Core {
  public:
    Core(const MachineCode& c, const CallSetup& s) : code(c), setup(s) {}

    Trace run(const std::string& name) {
        const Symbol* symbol = code.image().find(name);
        if (!symbol) throw std::runtime_error("no function " + name);
        prepare();
        trace.steps.reserve(4096);
        ip = symbol->address;
        try {
            enter();
            while (ip != returnAddress) step();
            finish();
        } catch (const Stop& stop) {
            complain(stop.why);
        }
        return std::move(trace);
    }

  private:
    const MachineCode& code;
    const CallSetup& setup;
    Trace trace;
    std::array<Value, 16> reg{};
    std::array<bool, 16> vectorWritten{};
    ShadowStack stack{entryStack};
    Flags flags;
    std::uint64_t ip = 0;
    const Function* function = nullptr;
    const Instruction* current = nullptr;
    std::map<std::uint64_t, Instruction> withoutSymbol;
    std::map<std::uint64_t, std::string> importNames;
    std::set<std::string> said;

    void complain(const std::string& what) {
        std::string text = what;
        if (current && function) text = function->label(*current) + ": " + what;
        if (trace.complaints.size() < 20 && said.insert(text).second) {
            trace.complaints.push_back(text);
        }
    }

    void prepare() {
        for (std::size_t i = 0; i < reg.size(); ++i) {
            reg[i] = {0x5a5a000000000000U + 0x1111 * (i + 1), false};
        }
        const std::uint64_t src = srcBase + static_cast<unsigned>(setup.srcMisalignment);
        const std::uint64_t dst = dstBase + static_cast<unsigned>(setup.dstMisalignment);
        reg[rdi] = {setup.srcNull ? 0 : src, true};
        reg[rsi] = {setup.dstNull ? 0 : setup.inPlace ? src : dst, true};
        // The upper halves of 32-bit arguments are not defined; a kernel must not look at them.
        const std::uint64_t rubbish = std::uint64_t{0xfeedbeef} << 32;
        int next = rdx;
        const auto pass = [&](Value v) {
            reg[static_cast<std::size_t>(next)] = v;
            next = next == rdx ? rcx : r8;
        };
        if (setup.length) pass({rubbish | static_cast<std::uint32_t>(*setup.length), true});
        pass({rubbish | static_cast<std::uint32_t>(setup.flag), true});
        pass({setup.bufferNull ? 0 : bufferBase, true});
        reg[rsp] = {entryStack, true};
        stack.write(entryStack, 8, {returnAddress, true});
    }

    void finish() {
        current = nullptr;
        if (reg[rsp].bits != entryStack + 8) complain("stack pointer not restored");
        for (const int r : calleeSaved) {
            const auto i = static_cast<std::size_t>(r);
            if (reg[i].bits != 0x5a5a000000000000U + 0x1111 * (i + 1)) {
                complain("register " + std::to_string(r) + " of the caller not restored");
            }
        }
        if (!reg[rax].known) complain("status not set");
        trace.status = static_cast<std::int32_t>(reg[rax].bits);
    }

    // ---- memory

    void writeStack(std::uint64_t address, int size, Value v) {
        stack.write(address, size, v);
        deepest(address);
    }

    void deepest(std::uint64_t address) {
        trace.frameBytes =
            std::max(trace.frameBytes, static_cast<std::int64_t>(entryStack - address));
    }

    Value readStack(std::uint64_t address, int size) {
        if (!stack.written(address, size)) complain("reads a frame slot never written");
        return stack.read(address, size);
    }

    std::uint64_t address(const Operand& o) {
        std::uint64_t a = static_cast<std::uint64_t>(o.displacement);
        bool known = true;
        if (o.base == 16) {
            a += current->address + static_cast<unsigned>(current->length);
        } else if (o.base >= 0) {
            a += reg[static_cast<std::size_t>(o.base)].bits;
            known &= reg[static_cast<std::size_t>(o.base)].known;
        }
        if (o.index >= 0) {
            const Value& v = reg[static_cast<std::size_t>(o.index)];
            a += v.bits * static_cast<unsigned>(o.scale);
            known &= v.known;
        }
        if (!known && current->mnemonic != "lea") throw Stop{"address of unknown parts"};
        return a;
    }

    Access resolve(std::uint64_t a, int size) const {
        Access access;
        access.size = size;
        const auto within = [&](std::uint64_t base) {
            return a - base + regionSpan / 2 < regionSpan;  // some way before it, too
        };
        const auto place = [&](Region region, std::uint64_t base) {
            access.region = region;
            access.offset = static_cast<std::int64_t>(a - base);
        };
        const std::uint64_t src = srcBase + static_cast<unsigned>(setup.srcMisalignment);
        if (within(srcBase)) {
            place(Region::src, src);
        } else if (within(dstBase)) {
            place(Region::dst, dstBase + static_cast<unsigned>(setup.dstMisalignment));
        } else if (within(bufferBase)) {
            place(Region::buffer, bufferBase);
        } else if (stack.holds(a)) {
            place(Region::frame, entryStack);
        } else if (!code.image().bytes(a, static_cast<unsigned>(size)).empty()) {
            place(Region::constants, 0);
            if (code.image().writable(a)) access.region = Region::unknown;
        } else {
            place(Region::unknown, 0);
        }
        return access;
    }

    void note(const Access& access) { trace.steps.back().access = access; }

    // ---- operands

    Value read(const Operand& o) {
        if (o.type == Operand::Type::immediate) {
            return {static_cast<std::uint64_t>(o.value), true};
        }
        if (o.type == Operand::Type::general) {
            Value v = reg[static_cast<std::size_t>(o.number)];
            if (o.high) v.bits >>= 8;
            v.bits &= mask(o.size);
            return v;
        }
        if (o.type != Operand::Type::memory) throw Stop{"operand not understood"};
        const std::uint64_t a = address(o);
        Access access = resolve(a, o.size);
        access.load = current->loads();
        access.store = current->stores();
        note(access);
        if (access.region == Region::frame) {
            checkBelow(a);
            return readStack(a, o.size);
        }
        if (const auto import = code.image().importedAt(a)) {
            importNames[importBase + a] = *import;
            return {importBase + a, true};
        }
        if (access.region == Region::unknown && !code.image().writable(a)) {
            complain("reads memory of nobody");
        }
        Value v{0, false};
        const auto bytes = code.image().bytes(a, static_cast<unsigned>(o.size));
        if (!bytes.empty()) {
            std::memcpy(&v.bits, bytes.data(), bytes.size());
            v.known = true;
        }
        return v;
    }

    void write(const Operand& o, Value v) {
        v.bits &= mask(o.size);
        if (o.type == Operand::Type::general) {
            Value& r = reg[static_cast<std::size_t>(o.number)];
            if (o.size == 8 || o.size == 4) {
                r = v;
            } else {
                const int shift = o.high ? 8 : 0;
                r.bits = (r.bits & ~(mask(o.size) << shift)) | (v.bits << shift);
                r.known = r.known && v.known;
            }
            return;
        }
        if (o.type != Operand::Type::memory) throw Stop{"operand not understood"};
        const std::uint64_t a = address(o);
        Access access = resolve(a, o.size);
        access.load = current->loads();
        access.store = true;
        note(access);
        if (access.region == Region::frame) {
            checkBelow(a);
            writeStack(a, o.size, v);
        }
    }

    // Below the stack pointer lie 128 bytes that a function which calls nothing may use.
    void checkBelow(std::uint64_t a) {
        deepest(a);
        if (a + 128 < reg[rsp].bits) complain("frame access below the red zone");
    }

    // ---- execution

    void enter() {
        function = code.functionAt(ip);
        if (!function) return;
        if (function->symbol.address == ip) trace.entered.push_back(function->symbol.name);
    }

    // The next instruction of the function where that is the one to run.
    const Instruction* following() const {
        const std::vector<Instruction>& all = function->instructions;
        const std::less<const Instruction*> before;
        if (current == nullptr || before(current, all.data()) ||
            !before(current, all.data() + all.size() - 1)) {
            return nullptr;
        }
        return current[1].address == ip ? current + 1 : nullptr;
    }

    void fetch() {
        if (!function || ip < function->symbol.address ||
            ip >= function->symbol.address + function->symbol.size) {
            enter();
        }
        if (function) {
            current = following();
            if (!current) current = function->at(ip);
            if (!current) throw Stop{"jump into the middle of an instruction"};
            return;
        }
        const auto it = withoutSymbol.find(ip);
        current = it != withoutSymbol.end()
                      ? &it->second
                      : &withoutSymbol.emplace(ip, code.decodeAt(ip)).first->second;
    }

    void step() {
        if (trace.steps.size() >= stepLimit) throw Stop{"does not end"};
        if (ip >= importBase && ip < importBase + regionSpan) {
            external();
            return;
        }
        fetch();
        if (function) {
            // Linkage table code belongs to no function and is not part of the trace.
            trace.steps.push_back({current, std::nullopt});
        } else {
            trace.steps.push_back({});
        }
        const bool keep = function != nullptr;
        const std::uint64_t next = ip + static_cast<unsigned>(current->length);
        ip = next;
        if (current->kind == Kind::foreign) {
            complain("instruction that no kernel may hold");
            if (!current->vector() && current->flow()) throw Stop{"stopped"};
        } else if (current->vector()) {
            vectorStep();
        } else if (current->kind != Kind::nop) {
            integerStep();
        }
        if (!keep) trace.steps.pop_back();
    }

    void vectorStep() {
        const Instruction& in = *current;
        for (int i = in.operandCount - 1; i >= 0; --i) {
            const Operand& o = in.operands[static_cast<std::size_t>(i)];
            const auto n = static_cast<std::size_t>(o.number);
            if (o.type == Operand::Type::vector) {
                // A conversion or a move leaves upper lanes that scalar code never looks at.
                const bool passive = in.kind == Kind::convert || in.kind == Kind::move;
                // Where three operands stand, the second one gives these lanes.
                const bool fillsUp = in.vex && i == 1 && in.operandCount == 3 && passive &&
                                     (in.lanes == Lanes::scalar32 || in.lanes == Lanes::scalar64) &&
                                     !in.mnemonic.starts_with("movh");
                const bool reads = (i > 0 && !fillsUp) || (in.mergesFirst && !passive);
                const bool half = i == 0 && in.kind == Kind::move && in.memory() &&
                                  in.mergesFirst && in.mnemonic.starts_with("movh");
                if (!in.clears && (reads || half || in.stores()) && !vectorWritten[n]) {
                    complain("reads xmm" + std::to_string(n) + ", which nothing has written");
                }
                if (i == 0 && !in.stores()) vectorWritten[n] = true;
            } else if (o.type == Operand::Type::general) {
                if (i == 0) write(o, {0, false});
            } else if (o.type == Operand::Type::memory) {
                vectorMemory(in, o);
            }
        }
    }

    void vectorMemory(const Instruction& in, const Operand& o) {
        const std::uint64_t a = address(o);
        Access access = resolve(a, o.size);
        access.load = in.loads();
        access.store = in.stores();
        access.vector = true;
        note(access);
        if (in.aligned && a % static_cast<unsigned>(o.size) != 0)
            complain("aligned access off its boundary");
        if (access.region != Region::frame) return;
        checkBelow(a);
        if (access.load) readStack(a, o.size);
        if (access.store) writeStack(a, o.size, {0, false});
    }

    void push(Value v) {
        reg[rsp].bits -= 8;
        writeStack(reg[rsp].bits, 8, v);
    }

    Value pop() {
        const Value v = readStack(reg[rsp].bits, 8);
        reg[rsp].bits += 8;
        return v;
    }

    std::uint64_t target() {
        const Value v = read(current->operands[0]);
        if (!v.known) throw Stop{"jump to an unknown place"};
        return v.bits;
    }

    void external() {
        const std::string name = importNames[ip];
        if ((reg[rsp].bits + 8) % 16 != 0) complain("calls with a misaligned stack");
        trace.calls.push_back({name, static_cast<std::int64_t>(reg[rdi].bits), trace.steps.size()});
        Value result{0, false};
        if (name == "orvMalloc") {
            trace.calls.back().argument = static_cast<std::int32_t>(reg[rdi].bits);
            result = {bufferBase, true};
        } else if (name == "orvFree") {
            trace.calls.back().argument = static_cast<std::int64_t>(reg[rdi].bits - bufferBase);
        }
        for (std::size_t i = 0; i < reg.size(); ++i) {
            const bool kept = i == rsp || std::find(std::begin(calleeSaved), std::end(calleeSaved),
                                                    static_cast<int>(i)) != std::end(calleeSaved);
            if (!kept) reg[i] = {0xdead000000000000U + i, false};
        }
        reg[rax] = result;
        vectorWritten.fill(false);
        flags.known = false;
        ip = pop().bits;
        function = nullptr;
    }

    void integerStep() {
        const Instruction& in = *current;
        const std::string& m = in.mnemonic;
        const Operand& a = in.operands[0];
        const Operand& b = in.operands[1];
        if (in.kind == Kind::ret) {
            const Value v = pop();
            if (!v.known) throw Stop{"returns to an unknown place"};
            ip = v.bits;
        } else if (in.kind == Kind::call) {
            const std::uint64_t t = target();
            push({ip, true});
            ip = t;
        } else if (in.kind == Kind::jump) {
            if (m == "jmp" || flags.condition(m.substr(1))) ip = target();
        } else if (m == "mov" || m == "movabs" || m == "movzx") {
            write(a, read(b));  // whole, or zero-extended
        } else if (m == "lea") {
            bool known = true;
            if (b.base >= 0 && b.base < 16) known = reg[static_cast<std::size_t>(b.base)].known;
            if (b.index >= 0) known = known && reg[static_cast<std::size_t>(b.index)].known;
            write(a, {address(b), known});
        } else if (m == "push") {
            push(read(a));
        } else if (m == "pop") {
            write(a, pop());
        } else if (m == "leave") {
            reg[rsp] = reg[5];
            reg[5] = pop();
        } else if (m == "movsx" || m == "movsxd") {
            const Value v = read(b);
            write(a, {signExtend(v.bits, b.size), v.known});
        } else if (m == "cdqe") {
            reg[rax].bits = signExtend(reg[rax].bits, 4);
        } else if (m.starts_with("set")) {
            write(a, {flags.condition(m.substr(3)) ? 1U : 0U, true});
        } else if (m.starts_with("cmov")) {
            const Value v = read(b);
            const Value old = read(a);
            write(a, flags.condition(m.substr(4)) ? v : old);
        } else {
            arithmetic(in);
        }
        if (reg[rsp].known && reg[rsp].bits < entryStack) deepest(reg[rsp].bits);
    }

    void arithmetic(const Instruction& in) {
        const auto operand = [&](int i) {
            return i < in.operandCount ? read(in.operands[static_cast<std::size_t>(i)])
                                       : Value{0, true};
        };
        const Outcome outcome = calculate(in, operand(0), operand(1), operand(2), flags);
        flags = outcome.flags;
        if (outcome.result) write(in.operands[0], *outcome.result);
    }
};

}  // namespace

const char* regionName(Region region) {
    constexpr const char* names[] = {"src", "dst", "buffer", "frame", "constants", "nowhere"};
    return names[static_cast<int>(region)];
}

Trace runIntegers(const MachineCode& code, const std::string& function, const CallSetup& setup) {
    Core core(code, setup);
    return core.run(function);
}

}  // namespace orvgen::test
