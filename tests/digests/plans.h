// SPDX-License-Identifier: MIT
// The DCT-IV functions of a loaded library, for one element type.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "digests/library.h"
#include "orvgen.h"

namespace orvgen::test {

class PlanFunctions {
  public:
    PlanFunctions(const LoadedLibrary& library, bool single);

    enum class Memory { OfTheLibrary, OfTheCaller };
    // A plan's run as a transform without flags. The plan lives as long as the transform.
    Transform plan(std::int32_t length, Memory memory) const;

    // Digests of the statuses and sizes of each function, by its name.
    struct Answers {
        std::string name;
        std::uint64_t digest;
    };
    std::vector<Answers> answers() const;
    std::string runName() const { return "orvgDCT4_" + type; }

  private:
    bool single;
    std::string type;
    OrvStatus (*getSize)(std::int32_t, std::int32_t*);
    OrvStatus (*init)(void**, std::int32_t, std::uint8_t*);
    OrvStatus (*initAlloc)(void**, std::int32_t);
    OrvStatus (*free)(void*);
    OrvStatus (*run)(const void*, void*, void*);

    std::shared_ptr<void> planIn(Memory memory, std::int32_t length) const;
};

}  // namespace orvgen::test
