// SPDX-License-Identifier: MIT
// Other libraries for the same problem, as installed: FFTW with patient plans (loaded at run time,
// so that one built otherwise can take its place), KissFFT, and for the Walsh-Hadamard transform a
// plain triple loop.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "subject.h"

namespace orvgen::bench {

class Fftw {
  public:
    // The installed library; or the one of a folder (libfftw3.so.3 and libfftw3f.so.3 in it).
    explicit Fftw(const std::string& folder = "");
    ~Fftw();
    Fftw(const Fftw&) = delete;
    Fftw& operator=(const Fftw&) = delete;

    bool loaded() const;
    std::string version() const;
    // Plans for these very buffers; they are overwritten in planning.
    std::optional<Loop> plan(const Problem& problem, void* src, void* dst);

  private:
    struct Library;
    std::unique_ptr<Library> library;
};

// None where KissFFT does not do the problem (real transforms of odd length, real ones in binary64,
// and all but Fourier transforms).
std::optional<Loop> kissPlan(const Problem& problem);

// The transform as a textbook writes it, as the compiler makes it at -O2; Walsh-Hadamard only.
std::optional<Loop> plainLoop(const Problem& problem);

}  // namespace orvgen::bench
