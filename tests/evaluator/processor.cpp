// SPDX-License-Identifier: MIT
#include "evaluator/processor.h"

#include <link.h>
#include <xmmintrin.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "evaluator/integer.h"

namespace orvgen::test::evaluator {
namespace {

// What calls return to when the evaluation is at its end: no code stands there.
constexpr std::uint64_t kEnd = 1;
// Of a program whose every function is called, operations take more memory than they are worth.
constexpr std::size_t kMostKept = 400000;
constexpr int kLongest = 15;  // bytes of an instruction

std::uint64_t numberOf(const void* p) { return reinterpret_cast<std::uint64_t>(p); }

std::string hex(std::uint64_t number) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
    return text;
}

// Decoding counts and compares in numbers of its own, whose exceptions are nobody's.
class ControlWord {
  public:
    ControlWord() : before_(_mm_getcsr()) { _mm_setcsr(0x1f80); }
    ~ControlWord() { _mm_setcsr(before_); }
    ControlWord(const ControlWord&) = delete;
    ControlWord& operator=(const ControlWord&) = delete;

  private:
    unsigned before_;
};

struct Search {
    std::uint64_t address, begin, end;
};
int findSegment(dl_phdr_info* info, std::size_t, void* found) {
    auto& search = *static_cast<Search*>(found);
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        const auto& p = info->dlpi_phdr[i];
        const std::uint64_t begin = info->dlpi_addr + p.p_vaddr;
        if (p.p_type != PT_LOAD || (p.p_flags & PF_X) == 0 || search.address < begin ||
            search.address >= begin + p.p_memsz)
            continue;
        search.begin = begin;
        search.end = begin + p.p_memsz;
        return 1;
    }
    return 0;
}

}  // namespace

Processor::Processor(const void* function, const Features& features)
    : stack_(std::size_t{1} << 20) {
    Search search{numberOf(function), 0, 0};
    if (dl_iterate_phdr(findSegment, &search) == 0) throw std::runtime_error("no code there");
    code_ = {search.begin, search.end};
    state_.features = features;
}

std::vector<std::uint8_t> Processor::bytesAt(std::uint64_t address) const {
    const std::uint64_t end = std::min(address + kLongest, code_.end);
    std::vector<std::uint8_t> bytes(pointer<const std::uint8_t>(address),
                                    pointer<const std::uint8_t>(end));
    for (auto it = planted_.lower_bound(address); it != planted_.end() && it->first < end; ++it)
        bytes[it->first - address] = it->second;
    return bytes;
}

const Processor::Block& Processor::blockAt(std::uint64_t address) {
    const auto it = blocks_.find(address);
    if (it != blocks_.end()) return it->second;
    const ControlWord own;
    if (kept_ > kMostKept) {
        blocks_.clear();
        kept_ = 0;
    }
    reached_.insert(address);
    Block& block = blocks_[address];
    for (bool leaves = false; !leaves && code_.has(address);) {
        const Decoded next = decoder_.decode(bytesAt(address), address);
        block.operations.push_back(next.operation);
        address += static_cast<unsigned>(next.length);
        leaves = next.leaves;
    }
    block.end = address;
    kept_ += block.operations.size();
    return block;
}

void Processor::run() {
    State& s = state_;
    while (s.next != kEnd) {
        if (!code_.has(s.next)) {
            leave();
            continue;
        }
        const Block& block = blockAt(s.next);
        s.next = block.end;
        for (const Operation& op : block.operations) {
            now_ = &op;
            op.run(s, op);
        }
        executed_ += block.operations.size();
    }
}

// Upper halves in use make the 128-bit code of others slow.
void Processor::checkUpperHalves(const char* when) const {
    for (std::size_t i = 0; i < 16; ++i)
        for (std::size_t word = 4; word < 16; ++word)
            if (state_.vectors[i].words[word] != 0)
                throw Stop{"upper halves of vectors are in use " + std::string(when)};
}

// The registers that a function may change: nobody may count on what it left there.
void Processor::spoil() {
    constexpr std::uint64_t rubbish = 0xa5a5a5a5a5a5a5a5;
    for (const std::size_t r : {1, 2, 6, 7, 8, 9, 10, 11}) state_.general[r] = rubbish;
    for (std::size_t i = 0; i < state_.vectors.size(); ++i) {
        state_.vectors[i].words.fill(0xffa5a5a5);  // NaNs
        if (i < 16) std::fill_n(state_.vectors[i].words.begin() + 4, 12, 0);
    }
    state_.masks.fill(rubbish);
}

bool Processor::leadsToCode(std::uint64_t address) {
    if (outside_.contains(address)) return true;
    const ControlWord own;
    Search search{address, 0, 0};
    return dl_iterate_phdr(findSegment, &search) != 0 && outside_.insert(address).second;
}

void Processor::leave() {
    if (!leadsToCode(state_.next)) throw Stop{"it leads to no code"};
    checkUpperHalves("at a call");
    if (state_.general[rsp] % 16 != 8) throw Stop{"the stack is misaligned at a call"};
    using Six = std::uint64_t(std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t,
                              std::uint64_t, std::uint64_t);
    const auto& g = state_.general;
    const auto function = reinterpret_cast<Six*>(state_.next);
    const std::uint64_t result = function(g[rdi], g[rsi], g[rdx], g[rcx], g[8], g[9]);
    state_.next = pop(state_);
    spoil();
    state_.general[rax] = result;
}

std::uint64_t Processor::call(const void* function, std::span<const std::uint64_t> arguments) {
    complaint_.clear();
    State& s = state_;
    for (std::size_t i = 0; i < s.general.size(); ++i) s.general[i] = 0x5151515151515100 + i;
    spoil();
    s.general[rsp] = numberOf(stack_.end()) - 256;
    // The first six in registers, the others on the stack.
    constexpr std::size_t order[] = {rdi, rsi, rdx, rcx, 8, 9};
    for (std::size_t i = arguments.size(); i-- > 0;) {
        if (i < std::size(order))
            s.general[order[i]] = arguments[i];
        else
            std::memcpy(pointer<void>(s.general[rsp] + 8 * (i - std::size(order))), &arguments[i],
                        8);
    }
    push(s, kEnd);
    if (!code_.has(numberOf(function))) throw std::runtime_error("a function of somebody else");
    const std::array<std::uint64_t, 16> before = s.general;
    s.next = numberOf(function);
    now_ = nullptr;
    try {
        run();
        checkUpperHalves("at the end");
        for (const std::size_t r : {3, 5, 12, 13, 14, 15})
            if (s.general[r] != before[r]) throw Stop{"a register of the caller has changed"};
        if (s.general[rsp] != before[rsp] + 8) throw Stop{"the stack is not what it was"};
    } catch (const Stop& stop) {
        const ControlWord own;
        complaint_ = stop.why;
        if (now_ != nullptr)
            complaint_ += ": " + hex(now_->address - code_.begin) + " " +
                          Decoder::text(bytesAt(now_->address), now_->address);
    }
    return s.general[rax];
}

void Processor::plant(std::uint64_t address, std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) planted_[address++] = byte;
    blocks_.clear();
    kept_ = 0;
}
void Processor::takeOut() {
    planted_.clear();
    blocks_.clear();
    kept_ = 0;
}

std::vector<Processor::Line> Processor::listing(const void* function, std::uint64_t size) const {
    std::vector<Line> lines;
    std::uint64_t address = numberOf(function);
    for (const std::uint64_t end = address + size; address < end;) {
        std::vector<std::uint8_t> bytes = bytesAt(address);
        const int length = decoder_.decode(bytes, address).length;
        std::string text = Decoder::text(bytes, address);
        bytes.resize(static_cast<std::size_t>(length));
        lines.push_back({address, std::move(text), std::move(bytes)});
        address += static_cast<unsigned>(length);
    }
    return lines;
}

}  // namespace orvgen::test::evaluator
