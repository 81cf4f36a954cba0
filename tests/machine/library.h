// SPDX-License-Identifier: MIT
// The product's machine code and one run of each of its kernels.
#pragma once

#include <cstdlib>
#include <string>

#include "support/library_file.h"
#include "support/shape.h"

namespace orvgen::test {

inline const MachineCode& library() {
    static const MachineCode code(libraryFile());
    return code;
}

// The file of the second build: the one that is built here, or another that the environment names.
inline std::string secondBuildFile(const char* built) {
    const char* told = std::getenv("ORVGEN_SECOND_BUILD");
    return told ? told : built;
}

// A call on aligned buffers, or on buffers `off` bytes behind a boundary.
inline Trace traceOf(const std::string& function, int off = 0, bool bufferNull = false) {
    CallSetup setup;
    setup.srcMisalignment = setup.dstMisalignment = off;
    setup.bufferNull = bufferNull;
    return runIntegers(library(), function, setup);
}

}  // namespace orvgen::test
