// SPDX-License-Identifier: MIT
// Memory between two pages that nobody may touch, and a catcher for those who do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace orvgen::test {

class GuardedMemory {
  public:
    explicit GuardedMemory(std::size_t bytes);
    ~GuardedMemory();
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    // Between the guard pages: `size()` bytes, whole pages.
    std::uint8_t* data() const { return memory; }
    std::uint8_t* end() const { return memory + length; }
    std::size_t size() const { return length; }
    void setReadOnly(bool readOnly);

  private:
    std::uint8_t* mapping = nullptr;
    std::uint8_t* memory = nullptr;
    std::size_t length = 0;
    std::size_t mapped = 0;
};

// Runs `work`; empty when it returns, else what stopped it: the address at which it touched
// forbidden memory, seen from `origin`, or an exception of the arithmetic that the control word
// does not mask. The work must be plain code without anything to clean up.
std::string catchFault(const std::function<void()>& work, const void* origin);

}  // namespace orvgen::test
