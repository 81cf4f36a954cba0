// SPDX-License-Identifier: MIT
// Every function of the batch library beside the single function that it stands for, in terms that
// all families share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "orvgen_batch.h"

namespace orvgen::test::batch {

// An array as a batch sees it; split arrays have a plane for the real and one for the imaginary
// parts, all others one plane.
template <class R>
struct Place {
    R* plane[2];
    std::ptrdiff_t stride, distance;  // in elements
};

// What one side of a family holds.
struct Side {
    int planes;  // arrays
    int width;   // real numbers of an element in a plane
    bool bins;   // half a spectrum

    bool operator==(const Side&) const = default;
    int elements(int points) const { return bins ? points / 2 + 1 : points; }
};

template <class R>
struct Family {
    std::string name;
    std::vector<int> numbers;  // lengths, or orders
    bool byOrder;
    bool scaled;  // takes a flag
    Side src, dst;
    // Of one transform, its elements side by side, pairs interleaved. Finite numbers stand behind
    // src.
    std::function<OrvStatus(const R* src, R* dst, int number, std::int32_t flag)> single;
    std::function<OrvStatus(const Place<const R>& src, const Place<R>& dst, int number,
                            std::size_t count, std::int32_t flag)>
        batch;

    int points(int number) const { return byOrder ? 1 << number : number; }
};

// All families with real numbers of type R.
template <class R>
const std::vector<Family<R>>& families();
template <>
const std::vector<Family<float>>& families();
template <>
const std::vector<Family<double>>& families();

// Who makes the calls of the batch functions: the processor at hand, where it is empty, or somebody
// who is given the function and its arguments as words.
using Runner = std::function<OrvStatus(const void* function, std::span<const std::uint64_t>)>;
extern Runner batchRunner;

// The targets that this machine runs.
std::vector<std::uint32_t> runnableTargets();
const char* nameOf(std::uint32_t target);
// Transforms that a vector of the target holds.
template <class R>
int lanesOf(std::uint32_t target) {
    const int bytes = target == orvTargetAVX512 ? 64 : target == orvTargetAVX2 ? 32 : 16;
    return bytes / static_cast<int>(sizeof(R));
}

}  // namespace orvgen::test::batch
