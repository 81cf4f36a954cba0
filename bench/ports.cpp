// SPDX-License-Identifier: MIT
// Measures what this core does in a cycle: each class of vector operations alone, and classes mixed
// in several proportions (a mix is as fast as the ports of its classes together allow; the best
// proportion shows how many those are). Writes a port table.
//
// The code is put together at run time: a long straight block of the mixed instructions, on
// registers that no two neighbouring instructions share, in a short loop.

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "cycles.h"

namespace {

using Code = std::vector<std::uint8_t>;

struct Class {
    const char* name;
    std::uint8_t opcode;
    int source = 0;                         // register of constants
    std::vector<std::uint8_t> prefix = {};  // before REX
    bool selector = false;                  // an immediate byte follows
    bool memory = false;                    // the other operand lies at rsi
};

// xmm15 holds floats of 1, xmm14 doubles of 1.
const Class classes[] = {
    {.name = "add", .opcode = 0x58, .source = 15},
    {.name = "multiply", .opcode = 0x59, .source = 15},
    {.name = "shuffle", .opcode = 0xc6, .source = 15, .selector = true},
    {.name = "unpack", .opcode = 0x14, .source = 15},
    {.name = "logic", .opcode = 0x57, .source = 15},
    {.name = "convert", .opcode = 0x5a, .source = 15, .prefix = {0xf3}},
    {.name = "load", .opcode = 0x28, .memory = true},
    {.name = "store", .opcode = 0x29, .memory = true},
    {.name = "issue", .opcode = 0x90},  // no operation
};

const Class& find(const std::string& name) {
    return *std::find_if(std::begin(classes), std::end(classes),
                         [&](const Class& c) { return name == c.name; });
}

void emit(Code& code, const Class& c, int target) {
    if (c.opcode == 0x90) {
        code.push_back(c.opcode);
        return;
    }
    code.insert(code.end(), c.prefix.begin(), c.prefix.end());
    const int rex = 0x40 | (target >= 8 ? 4 : 0) | (!c.memory && c.source >= 8 ? 1 : 0);
    if (rex != 0x40) code.push_back(static_cast<std::uint8_t>(rex));
    code.push_back(0x0f);
    code.push_back(c.opcode);
    if (c.memory) {
        // [rsi + displacement], each register a place of its own
        code.push_back(static_cast<std::uint8_t>(0x46 | (target & 7) << 3));
        code.push_back(static_cast<std::uint8_t>((target & 7) * 16));
    } else {
        code.push_back(static_cast<std::uint8_t>(0xc0 | (target & 7) << 3 | (c.source & 7)));
    }
    if (c.selector) code.push_back(0x1b);
}

class Executable {
  public:
    explicit Executable(const Code& code) : size(code.size()) {
        memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) std::abort();
        std::memcpy(memory, code.data(), size);
        if (mprotect(memory, size, PROT_READ | PROT_EXEC) != 0) std::abort();
    }
    ~Executable() { munmap(memory, size); }
    Executable(const Executable&) = delete;
    Executable& operator=(const Executable&) = delete;

    void run(long rounds, void* data) const {
        asm volatile("call *%[code]\n"
                     : [rounds] "+D"(rounds), [data] "+S"(data)
                     : [code] "r"(memory)
                     : "memory", "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6",
                       "xmm7", "xmm8", "xmm9", "xmm10", "xmm11", "xmm12", "xmm13", "xmm14",
                       "xmm15");
    }

  private:
    void* memory;
    std::size_t size;
};

// Operations a cycle of the pattern, repeated.
double rate(const std::vector<const Class*>& pattern) {
    constexpr int perRound = 504;
    Code code = {// 1.0f to all lanes of xmm15, 1.0 to both of xmm14, from the data
                 0x44, 0x0f, 0x28, 0xbe, 0, 1, 0, 0, 0x44, 0x0f, 0x28, 0xb6, 0x10, 1, 0, 0};
    for (int r = 0; r < 13; ++r) {
        const Class& load = find("load");
        emit(code, load, r);
    }
    const std::size_t top = code.size();
    int target = 0, written = 0;
    while (written < perRound) {
        for (const Class* c : pattern) {
            emit(code, *c, target);
            target = (target + 1) % 13;
            ++written;
        }
    }
    const Code back = {0x48, 0xff, 0xcf, 0x0f, 0x85};  // dec rdi; jne
    code.insert(code.end(), back.begin(), back.end());
    const auto distance =
        static_cast<std::int32_t>(top) - static_cast<std::int32_t>(code.size() + 4);
    for (int i = 0; i < 4; ++i) {
        code.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(distance) >> (8 * i)));
    }
    code.push_back(0xc3);

    alignas(64) unsigned char data[1024] = {};
    const float one = 1;
    const double wide = 1;
    for (int i = 0; i < 64; ++i) std::memcpy(data + 4 * i, &one, 4);
    for (int i = 0; i < 4; ++i) std::memcpy(data + 256 + 4 * i, &one, 4);
    for (int i = 0; i < 2; ++i) std::memcpy(data + 272 + 8 * i, &wide, 8);
    const Executable block(code);
    constexpr long rounds = 100;
    double best = 0;
    for (int i = 0; i < 15; ++i) {
        const double before = orvgen::bench::ticksPerCycle();
        const std::uint64_t start = orvgen::bench::ticks();
        block.run(rounds, data);
        const auto taken = static_cast<double>(orvgen::bench::ticks() - start);
        const double after = orvgen::bench::ticksPerCycle();
        // A clock that moved in between tells nothing.
        if (std::max(before, after) > 1.01 * std::min(before, after)) continue;
        best = std::max(best, static_cast<double>(written) * rounds / (taken / before));
    }
    return best;
}

// The best rate of a set of classes over proportions of up to three to one.
double capacity(const std::vector<std::string>& names) {
    std::vector<int> shares(names.size(), 1);
    double best = 0;
    for (;;) {
        // Interleaved as evenly as the shares allow.
        std::vector<const Class*> pattern;
        const int most = *std::max_element(shares.begin(), shares.end());
        for (int i = 0; i < most; ++i) {
            for (std::size_t k = 0; k < names.size(); ++k) {
                if ((i + 1) * shares[k] / most > i * shares[k] / most) {
                    pattern.push_back(&find(names[k]));
                }
            }
        }
        best = std::max(best, rate(pattern));
        std::size_t k = 0;
        while (k < shares.size() && shares[k] == (names.size() > 2 ? 2 : 3)) shares[k++] = 1;
        if (k == shares.size() || names.size() == 1) break;
        ++shares[k];
    }
    return best;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 2) {
        std::fprintf(stderr, "bench_ports: usage: bench_ports [FILE]\n");
        return 2;
    }
    std::FILE* out = argc == 2 ? std::fopen(argv[1], "w") : stdout;
    if (!out) {
        std::fprintf(stderr, "bench_ports: cannot write %s\n", argv[1]);
        return 1;
    }
    const std::vector<std::vector<std::string>> sets = {
        {"add"},
        {"multiply"},
        {"shuffle"},
        {"unpack"},
        {"logic"},
        {"convert"},
        {"load"},
        {"store"},
        {"issue"},
        {"add", "multiply"},
        {"add", "shuffle"},
        {"add", "convert"},
        {"multiply", "shuffle"},
        {"multiply", "convert"},
        {"shuffle", "unpack"},
        {"shuffle", "convert"},
        {"shuffle", "logic"},
        {"add", "logic"},
        {"add", "multiply", "shuffle"},
        {"add", "shuffle", "unpack"},
        {"add", "multiply", "shuffle", "unpack", "logic", "convert"},
        {"load", "store"},
        {"add", "multiply", "load"},
        {"add", "multiply", "shuffle", "load", "store"},
    };
    std::fprintf(out,
                 "# Operations that one cycle takes, of the classes of a row together; measured by "
                 "bench_ports.\nclasses,per_cycle\n");
    for (const auto& set : sets) {
        std::string names;
        for (const std::string& s : set) names += (names.empty() ? "" : " ") + s;
        std::fprintf(out, "%s,%.2f\n", names.c_str(), capacity(set));
        std::fflush(out);
    }
    if (out != stdout) std::fclose(out);
    return 0;
}
