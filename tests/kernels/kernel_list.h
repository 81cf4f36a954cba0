// SPDX-License-Identifier: MIT
// Every fixed-length kernel that the public header lists, with its functions, its flow and what its
// buffers hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "frame/kernel_family.h"
#include "support/loaded_function.h"

namespace orvgen::test {

// A kernel's functions on untyped buffers.
using KernelCall = std::function<std::int32_t(const void* src, void* dst, std::int32_t flag)>;

struct ListedKernel {
    const FamilyInfo* info = nullptr;
    std::string name;    // orvgDFTFwd_CToC_16_32fc
    std::string family;  // orvgDFTFwd_CToC_32fc
    int length = 0;
    bool single = true;  // binary32
    bool complex = false;
    KernelCall call;
    KernelCall dispatch;  // the by-length function, with this length
    KernelCall twin;      // empty: none
    std::string twinName;
    PlainFunction plainKernel = nullptr, plainDispatcher = nullptr, plainTwin = nullptr;

    // Reals in src and dst.
    std::size_t srcCount = 0, dstCount = 0;
    std::size_t srcBeyond = 0;           // reals behind src that are read along
    std::vector<std::size_t> neverRead;  // reals of src that have no effect

    kernelgen::Kernel kernel() const;  // as the kernel compiler gets it
    double scale(std::int32_t flag) const;
    int realBytes() const { return info->realBytes(); }
};

const std::vector<ListedKernel>& listedKernels();

}  // namespace orvgen::test
