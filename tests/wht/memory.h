// SPDX-License-Identifier: MIT
// Aligned arrays for the tests of the Walsh-Hadamard kernels.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace orvgen::test {

// `count` elements on a 64-byte boundary, with room for a displacement by a few bytes.
template <class T>
class AlignedArray {
  public:
    explicit AlignedArray(std::size_t count, std::size_t displacement = 0)
        : bytes_((count * sizeof(T) + 64 + 63) / 64 * 64),
          memory_(static_cast<std::uint8_t*>(std::aligned_alloc(64, bytes_)), std::free),
          first_(reinterpret_cast<T*>(memory_.get() + displacement)) {
        poison(0xa5);
    }
    T* data() const { return first_; }
    T& operator[](std::size_t i) const { return first_[i]; }
    void poison(int byte) const { std::memset(memory_.get(), byte, bytes_); }

  private:
    std::size_t bytes_;
    std::unique_ptr<std::uint8_t, void (*)(void*)> memory_;
    T* first_;
};

template <class T>
std::vector<T> randomValues(std::size_t count, unsigned seed = 1) {
    std::mt19937_64 engine(seed);
    std::uniform_real_distribution<T> uniform(-1, 1);
    std::vector<T> values(count);
    for (T& v : values) v = uniform(engine);
    return values;
}

template <class T>
bool sameBytes(const T* a, const T* b, std::size_t count) {
    return std::memcmp(a, b, count * sizeof(T)) == 0;
}

}  // namespace orvgen::test
