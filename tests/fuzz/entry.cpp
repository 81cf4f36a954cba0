// SPDX-License-Identifier: MIT
// Where libFuzzer calls a target.
#include "fuzz/memory.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orvgen::test::fuzz::Input input(data, size);
    orvgen::test::fuzz::fuzz(input);
    return 0;
}
