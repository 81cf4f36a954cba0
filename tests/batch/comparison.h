// SPDX-License-Identifier: MIT
// One batch held against the single function: the same bits, the same exceptions, and nothing else
// touched.
#pragma once

#include <xmmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>

#include "batch/families.h"
#include "support/guarded.h"

namespace orvgen::test::batch {

struct Layout {
    const char* name;
    std::ptrdiff_t srcStride, srcDistance, dstStride, dstDistance;
    bool inPlace = false;
};

// Where the arrays stand: beginning or ending at a page that nobody may touch, or ending a number
// before it, so that pairs of numbers are not aligned to pairs.
enum class Placement { AtBegin, AtEnd, OffByOne };
constexpr Placement allPlacements[] = {Placement::AtBegin, Placement::AtEnd, Placement::OffByOne};

// What the numbers of a source are drawn from.
enum class Data {
    Ordinary,  // between -1 and 1
    Exact,     // small integers and zeros of both signs: sums are exact
    Denormal,  // the smallest numbers, and zeros
    Huge,      // sums and products overflow
    Special,   // ordinary, and now and then an infinity or a NaN
};
constexpr Data allData[] = {Data::Ordinary, Data::Exact, Data::Denormal, Data::Huge, Data::Special};
const char* nameOf(Data data);

template <class R>
std::vector<R> draw(Data data, std::size_t count, unsigned seed);

// The control word of a call: rounding, flush to zero, denormals are zero; all exceptions masked.
constexpr std::uint32_t defaultControl = 0x1f80;
// The flags that are promised: all but that of denormal operands, which is 2.
constexpr std::uint32_t promisedFlags = 0x3d;

// Calls with a control word; returns the flags raised.
template <class Call>
std::uint32_t flagsOf(std::uint32_t control, const Call& call) {
    const std::uint32_t before = _mm_getcsr();
    _mm_setcsr(control);
    call();
    const std::uint32_t after = _mm_getcsr();
    _mm_setcsr(before);
    return (after & ~0x3fU) == control ? after & promisedFlags : ~0U;
}

// First and last real number of a plane that `count` transforms reach.
struct Extent {
    std::ptrdiff_t first = 0, last = -1;

    std::size_t size() const { return static_cast<std::size_t>(last + 1 - first); }
    static Extent of(std::ptrdiff_t stride, std::ptrdiff_t distance, const Side& side, int points,
                     std::ptrdiff_t count);
    static Extent both(const Extent& a, const Extent& b);
};

// The batches of 0, 1, 2 .. transforms of one kind: a family, a length, a layout, a source.
template <class R>
class Comparison {
  public:
    Comparison(const Family<R>& family, int number, const Layout& layout, int most, Data data,
               std::int32_t flag, std::uint32_t control, unsigned seed);

    // What is wrong with a batch of `count` transforms on the target in use; empty: nothing. Call
    // with counts that do not descend.
    std::string check(int count, Placement placement);

  private:
    using Image = std::vector<R>;

    std::ptrdiff_t srcAt(int j, int t) const {
        return (j * layout_.srcStride + t * layout_.srcDistance) * family_.src.width;
    }
    std::ptrdiff_t dstAt(int j, int t) const {
        return (j * layout_.dstStride + t * layout_.dstDistance) * family_.dst.width;
    }
    // A number in an image of all transforms.
    static R& at(Image& image, const Extent& whole, std::ptrdiff_t offset) {
        return image[static_cast<std::size_t>(offset - whole.first)];
    }
    void runSingles(int most);
    Extent srcExtent(int count) const;
    Extent dstExtent(int count) const;
    std::string difference(const R* found, const R* expected, std::size_t size) const;

    const Family<R>& family_;
    int number_, points_;
    Layout layout_;
    std::int32_t flag_;
    std::uint32_t control_;
    Extent srcWhole_, dstWhole_;
    Image srcImage_[2], before_[2], expected_[2];  // by plane
    std::vector<Image> results_;                   // by transform, as the single function has them
    std::vector<std::uint32_t> flags_;
    int expectedCount_ = 0;
    std::unique_ptr<GuardedMemory> src_[2], dst_[2];
};

extern template class Comparison<float>;
extern template class Comparison<double>;

}  // namespace orvgen::test::batch
