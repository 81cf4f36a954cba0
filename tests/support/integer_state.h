// SPDX-License-Identifier: MIT
// What the integer part of a processor holds while a kernel is followed: values that may be
// unknown, flags, the stack.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orvgen::test {

// An integer of at most eight bytes; vectors and what is made of data are not known.
struct Value {
    std::uint64_t bits = 0;
    bool known = false;
};

// Ends the run.
struct Stop {
    std::string why;
};

inline std::uint64_t mask(int size) {
    return size == 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * size)) - 1;
}

inline std::uint64_t signExtend(std::uint64_t v, int size) {
    if (size == 8) return v;
    const std::uint64_t sign = std::uint64_t{1} << (8 * size - 1);
    return ((v & mask(size)) ^ sign) - sign;
}

struct Flags {
    bool zero = false, sign = false, carry = false, overflow = false;
    bool known = false;

    void setResult(std::uint64_t result, int size) {
        result &= mask(size);
        zero = result == 0;
        sign = (result >> (8 * size - 1)) != 0;
    }

    // By the suffix of a conditional instruction; throws Stop where the flags are not known.
    bool condition(const std::string& suffix) const {
        if (!known) throw Stop{"branch or choice on unknown data"};
        static const std::map<std::string, int> codes = {
            {"o", 0}, {"no", 1}, {"b", 2},  {"ae", 3}, {"e", 4},   {"ne", 5},  {"be", 6},
            {"a", 7}, {"s", 8},  {"ns", 9}, {"l", 10}, {"ge", 11}, {"le", 12}, {"g", 13}};
        const auto it = codes.find(suffix);
        if (it == codes.end()) throw Stop{"condition not understood"};
        const bool values[] = {
            overflow, carry, zero, carry || zero, sign, sign != overflow, zero || sign != overflow};
        return values[it->second / 2] != (it->second % 2 == 1);
    }
};

// Which bytes of the stack were written, and which of them hold integers that are known.
class ShadowStack {
  public:
    // `top` is where the return address lies; what is above it belongs to the caller.
    explicit ShadowStack(std::uint64_t top) : low_(top - size_), end_(top + 8) {}

    bool holds(std::uint64_t address) const { return address - low_ < size_ + 8; }

    // These two throw Stop outside the stack.
    void write(std::uint64_t address, int size, Value v) {
        const std::size_t at = place(address, size, "store outside the frame");
        if (bytes_.size() < at) bytes_.resize(at);
        for (std::size_t i = 0; i < static_cast<std::size_t>(size); ++i) {
            const auto bits = static_cast<std::uint8_t>(i < 8 ? v.bits >> (8 * i) : 0);
            bytes_[at - 1 - i] = {v.known ? State::known : State::data, bits};
        }
    }
    Value read(std::uint64_t address, int size) const {
        const std::size_t at = place(address, size, "load outside the frame");
        Value v{0, true};
        for (std::size_t i = 0; i < static_cast<std::size_t>(size); ++i) {
            const Byte b = at <= bytes_.size() ? bytes_[at - 1 - i] : Byte{};
            if (i < 8) v.bits |= static_cast<std::uint64_t>(b.bits) << (8 * i);
            if (b.state != State::known) v.known = false;
        }
        return v;
    }
    bool written(std::uint64_t address, int size) const {
        const std::size_t at = place(address, size, "load outside the frame");
        for (std::size_t i = 0; i < static_cast<std::size_t>(size); ++i)
            if (at > bytes_.size() || bytes_[at - 1 - i].state == State::untouched) return false;
        return true;
    }

  private:
    enum class State : std::uint8_t { untouched, data, known };
    struct Byte {
        State state = State::untouched;
        std::uint8_t bits = 0;
    };

    // How far below the end of the stack the address lies.
    std::size_t place(std::uint64_t address, int size, const char* why) const {
        if (!holds(address) || address - low_ + static_cast<unsigned>(size) > size_ + 8)
            throw Stop{why};
        return end_ - address;
    }

    static constexpr std::uint64_t size_ = 1 << 20;
    std::uint64_t low_, end_;
    std::vector<Byte> bytes_;  // from the end down, as far as anything was written
};

}  // namespace orvgen::test
