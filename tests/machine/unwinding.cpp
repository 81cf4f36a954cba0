// SPDX-License-Identifier: MIT
// The unwinding tables of the kernels, which debuggers, profilers and exceptions thrown by an
// allocator go by: at every instruction they name the very place of the return address. Followed
// along all paths of each kernel and twin; the tables are read by libdw.
#include <dwarf.h>
#include <elfutils/libdw.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "kernels/kernel_list.h"
#include "library.h"
#include "orvgen.h"

namespace {

using namespace orvgen::test;

// Added to a distance that is measured from rbp, not from the stack pointer.
constexpr std::int64_t byRbp = std::int64_t{1} << 32;

class UnwindTables {
  public:
    explicit UnwindTables(const char* path) : file_(open(path, O_RDONLY)) {
        elf_version(EV_CURRENT);
        elf_ = elf_begin(file_, ELF_C_READ_MMAP, nullptr);
        cfi_ = dwarf_getcfi_elf(elf_);
        if (!cfi_) throw std::runtime_error(std::string("no unwinding tables in ") + path);
    }
    ~UnwindTables() {
        dwarf_cfi_end(cfi_);
        elf_end(elf_);
        close(file_);
    }
    UnwindTables(const UnwindTables&) = delete;
    UnwindTables& operator=(const UnwindTables&) = delete;

    // How far above the stack pointer the caller's frame begins, behind the return address, or
    // above rbp (then byRbp is added); the address at which this changes next. -1: the table says
    // nothing, or something else.
    std::int64_t frameAt(std::uint64_t address, std::uint64_t& until) const {
        constexpr int rbp = 6, rsp = 7;  // by DWARF's numbers
        Dwarf_Frame* frame = nullptr;
        if (dwarf_cfi_addrframe(cfi_, address, &frame) != 0) return -1;
        Dwarf_Op* ops = nullptr;
        std::size_t count = 0;
        std::int64_t offset = -1;
        if (dwarf_frame_cfa(frame, &ops, &count) == 0 && count == 1 && ops->atom == DW_OP_bregx &&
            (ops->number == rsp || ops->number == rbp)) {
            offset = static_cast<std::int64_t>(ops->number2) + (ops->number == rbp ? byRbp : 0);
        }
        Dwarf_Addr start = 0, end = 0;
        bool signal = false;
        dwarf_frame_info(frame, &start, &end, &signal);
        until = end;
        std::free(frame);
        return offset;
    }

  private:
    int file_;
    Elf* elf_;
    Dwarf_CFI* cfi_;
};

// Walks all paths of a function with the distance from the stack pointer to the caller's frame.
class Walk {
  public:
    Walk(const UnwindTables& t, const Function& f) : tables_(t), function_(f) {}

    std::string complaint() {
        from(function_.symbol.address, 8);
        while (!pending_.empty() && complaint_.empty()) {
            const auto [address, depth] = pending_.back();
            pending_.pop_back();
            path(address, depth);
        }
        return complaint_;
    }

    std::size_t instructions() const { return depthAt_.size(); }
    // But for the bytes that stand behind a return so that what follows them is aligned.
    bool reachedAll() const {
        return std::ranges::all_of(function_.instructions, [&](const Instruction& in) {
            return in.kind == Kind::nop || depthAt_.contains(in.address);
        });
    }

  private:
    const UnwindTables& tables_;
    const Function& function_;
    std::map<std::uint64_t, std::int64_t> depthAt_;
    std::vector<std::pair<std::uint64_t, std::int64_t>> pending_;
    std::string complaint_;

    void complain(const Instruction& in, const std::string& what) {
        if (complaint_.empty()) complaint_ = function_.label(in) + ": " + what;
    }
    void from(std::uint64_t address, std::int64_t depth) { pending_.emplace_back(address, depth); }

    void path(std::uint64_t address, std::int64_t depth) {
        std::uint64_t until = 0;
        std::int64_t said = -1;
        while (const Instruction* in = function_.at(address)) {
            const auto [seen, fresh] = depthAt_.emplace(address, depth);
            if (!fresh) {
                if (seen->second != depth) complain(*in, "reached with two depths");
                return;
            }
            if (address >= until) said = tables_.frameAt(address, until);
            if (said != depth) {
                complain(*in, "the table says " + std::to_string(said) + " for " +
                                  std::to_string(depth));
                return;
            }
            if (!apply(*in, depth)) return;
            address += static_cast<unsigned>(in->length);
        }
    }

    // Whether the path goes on behind the instruction.
    bool apply(const Instruction& in, std::int64_t& depth) {
        constexpr int rsp = 4, rbp = 5;
        const Operand& first = in.operands[0];
        // A frame of vectors of 32 bytes, which the second build has: rbp is saved, holds the place
        // of the stack pointer while that is aligned, and gives both back.
        if (isSecondBuild() && first.number == rbp && first.type == Operand::Type::general) {
            if (in.mnemonic == "push" && depth == 8) return depth += 8, true;
            if (in.mnemonic == "mov" && in.operands[1].number == rsp && depth == 16)
                return depth += byRbp, true;
        }
        if (isSecondBuild() && in.mnemonic == "leave" && depth == 16 + byRbp)
            return depth = 8, true;
        if (depth >= byRbp && (in.mnemonic == "sub" || in.mnemonic == "and")) return true;
        if (in.kind == Kind::ret) {
            if (depth != 8) complain(in, "returns with a frame");
            return false;
        }
        if (in.kind == Kind::jump) {
            const auto target = static_cast<std::uint64_t>(first.value);
            const bool inside = target - function_.symbol.address < function_.symbol.size;
            if (first.type != Operand::Type::immediate) complain(in, "jumps by a register");
            if (inside) from(target, depth);
            if (!inside && depth != 8) complain(in, "leaves with a frame");
            return in.mnemonic != "jmp";
        }
        // A kernel saves no register of its caller, and moves the stack pointer by constants.
        if (in.mnemonic == "push" || in.mnemonic == "pop" || in.mnemonic == "leave") {
            complain(in, "not expected in a kernel");
        }
        if (in.kind == Kind::integer && in.mnemonic != "cmp" && in.mnemonic != "test" &&
            first.type == Operand::Type::general && first.number == rsp) {
            const Operand& second = in.operands[1];
            const bool moves = in.mnemonic == "sub" || in.mnemonic == "add";
            if (!moves || second.type != Operand::Type::immediate) {
                complain(in, "moves the stack pointer in another way");
            }
            depth += in.mnemonic == "sub" ? second.value : -second.value;
        }
        return true;
    }
};

std::vector<std::string> allFunctions() {
    std::vector<std::string> names;
    for (const orvgen::Member& m : orvgen::allKernels()) {
        names.push_back(m.name());
        if (m.family->hasTwin(m.number)) names.push_back(orvgen::twinName(*m.family, m.number));
    }
    return names;
}

TEST(Unwinding, IsRightAtEveryInstruction) {
    const UnwindTables tables(libraryFile().c_str());
    std::size_t instructions = 0;
    int frames = 0;
    for (const std::string& name : allFunctions()) {
        const Function& f = library().function(name);
        Walk walk(tables, f);
        EXPECT_EQ(walk.complaint(), "");
        EXPECT_TRUE(walk.reachedAll()) << name << ": not all reached";
        instructions += walk.instructions();
        for (const Instruction& in : f.instructions) {
            if (in.mnemonic == "sub" && in.operands[0].number == 4) {
                ++frames;
                break;
            }
        }
    }
    // Most kernels have a frame, so that there is something to follow.
    EXPECT_GT(frames, isSecondBuild() ? 500 : 1000);
    EXPECT_GT(instructions, isSecondBuild() ? 500000U : 1000000U);
}

}  // namespace
