// SPDX-License-Identifier: MIT
// What is measured: the kernels of the public header's lists, and other libraries that do the same.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "frame/names.h"
#include "kernel_library.h"

namespace orvgen::bench {

enum class Transform { complexDft, realForward, realInverse, hartley, wht, dct4 };

struct Problem {
    Transform transform = Transform::complexDft;
    bool inverse = false;
    bool wide = false;  // binary64
    int length = 0;     // points
    std::size_t srcBytes = 0;
    std::size_t dstBytes = 0;
};

// Chained calls wait for each other: the address of each call's source is made of the result of the
// one before.
enum class Pace { free, chained };

// A function that runs `calls` transforms from src to dst, one after the other.
using Loop = std::function<void(const void* src, void* dst, int calls, Pace pace)>;

struct Subject {
    std::string name;  // of the kernel
    Member member;
    Problem problem;
    Loop loop;
};

// All kernels that exist, in the order of the lists. DCT-IV: the lengths 2 to 8192.
std::vector<Subject> allSubjects(const KernelLibrary& library);

// A zero that is there only when the result is: made of the first, a middle and the last word of
// it.
inline std::ptrdiff_t dependence(const void* dst, std::size_t bytes) {
    const auto* first = static_cast<const unsigned char*>(dst);
    const unsigned char* middle = first + bytes / 8 * 4;
    const unsigned char* last = first + bytes - 4;
    std::ptrdiff_t zero = 0;
    asm volatile(
        "movl (%1), %k0\n\t"
        "orl (%2), %k0\n\t"
        "orl (%3), %k0\n\t"
        "andl $0, %k0"
        : "=&r"(zero)
        : "r"(first), "r"(middle), "r"(last)
        : "cc", "memory");
    return zero;
}

// The loop over one call, written once for ours and for theirs.
template <class Call>
Loop makeLoop(const Problem& problem, Call call) {
    return [call, bytes = problem.dstBytes](const void* src, void* dst, int calls, Pace pace) {
        const auto* from = static_cast<const unsigned char*>(src);
        if (pace == Pace::chained) {
            for (int i = 0; i < calls; ++i) {
                call(from, dst);
                from += dependence(dst, bytes);
            }
        } else {
            for (int i = 0; i < calls; ++i) call(from, dst);
        }
    };
}

}  // namespace orvgen::bench
