// SPDX-License-Identifier: MIT
#include "digests/results.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

#include "digests/digest.h"
#include "support/control_word.h"

namespace orvgen::test {
namespace {

// Nearest, down, up, to zero; all exceptions masked.
constexpr unsigned roundingModes[] = {0x1f80, 0x3f80, 0x5f80, 0x7f80};

// Where a call finds its buffers: reals behind a 64-byte boundary.
struct Placement {
    std::size_t src = 0, dst = 0;
    bool shared = false;
};
constexpr Placement aligned;
constexpr Placement others[] = {{.src = 1}, {.dst = 1}, {.src = 1, .dst = 1}, {.shared = true}};

template <class Real>
using BitsOf = std::conditional_t<sizeof(Real) == 4, std::uint32_t, std::uint64_t>;

// A NaN that no kernel makes: what stands in dst before a call.
template <class Real>
constexpr auto unwritten = static_cast<BitsOf<Real>>(0xfff4dead7fa4deadU);

// Every NaN alike.
template <class Real>
std::uint64_t wordOf(Real value) {
    const auto bits = std::bit_cast<BitsOf<Real>>(value);
    const auto nan = std::bit_cast<BitsOf<Real>>(std::numeric_limits<Real>::quiet_NaN());
    return std::isnan(value) && bits != unwritten<Real> ? nan : bits;
}

template <class Real>
class Buffers {
  public:
    explicit Buffers(std::size_t count) : size(count), srcLines(lines()), dstLines(lines()) {}

    // What dst and some elements behind it hold after the call.
    std::vector<std::uint64_t> call(const Transform& transform, const std::vector<Real>& input,
                                    Placement at, std::int32_t flag, unsigned control,
                                    Digest& statuses) {
        Real* const src = srcLines.data()->reals + at.src;
        Real* const dst = at.shared ? src : dstLines.data()->reals + at.dst;
        std::fill_n(dst, size + margin, std::bit_cast<Real>(unwritten<Real>));
        std::copy(input.begin(), input.end(), src);
        // Some lengths read along what stands there, without effect while it is finite.
        std::fill_n(src + size, margin, Real{1});
        {
            const ControlWord word(control);
            statuses.add(static_cast<std::uint64_t>(transform.call(src, dst, flag)));
        }
        std::vector<std::uint64_t> words(size + margin);
        for (std::size_t i = 0; i < words.size(); ++i) words[i] = wordOf(dst[i]);
        return words;
    }
    Real* data() { return dstLines.data()->reals; }

  private:
    static constexpr std::size_t margin = 8;
    struct alignas(64) Line {
        Real reals[64 / sizeof(Real)];
    };
    std::size_t size;
    std::vector<Line> srcLines, dstLines;

    std::size_t lines() const { return (size + margin + 1) * sizeof(Real) / sizeof(Line) + 1; }
};

// In a shared buffer the elements that the call does not write hold the input.
template <class Real>
void keepWritten(std::vector<std::uint64_t>& words, const std::vector<std::uint64_t>& separate) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (separate[i] == unwritten<Real>) words[i] = unwritten<Real>;
    }
}

template <class Real>
std::uint64_t resultsOf(const Transform& transform, InputKind kind) {
    Buffers<Real> buffers(transform.reals);
    Digest digest;
    for (int number = 0; number < inputCount(kind); ++number) {
        const std::vector<Real> input = fixedInput<Real>(kind, number, transform.reals);
        for (const unsigned mode : roundingModes) {
            for (const std::int32_t flag : transform.flags) {
                const auto call = [&](Placement at) {
                    return buffers.call(transform, input, at, flag, mode, digest);
                };
                const std::vector<std::uint64_t> results = call(aligned);
                digest.add(results);
                for (const Placement& at : others) {
                    std::vector<std::uint64_t> words = call(at);
                    if (at.shared) keepWritten<Real>(words, results);
                    if (words != results) digest.add(words);
                }
            }
        }
    }
    return digest.value();
}

template <class Real>
std::uint64_t refusalsOf(const Transform& transform) {
    Buffers<Real> buffers(transform.reals);
    const auto input = fixedInput<Real>(InputKind::Normal, 0, transform.reals);
    Digest digest;
    for (const std::int32_t flag : {8, 0, 3, 5, 9, 16, -1}) {
        digest.add(buffers.call(transform, input, aligned, flag, roundingModes[0], digest));
        const auto status = [&](const void* src, void* dst) {
            digest.add(static_cast<std::uint64_t>(transform.call(src, dst, flag)));
        };
        Real* const some = buffers.data();
        status(nullptr, some);
        status(some, nullptr);
        status(nullptr, nullptr);
    }
    return digest.value();
}

}  // namespace

std::uint64_t resultDigest(const Transform& transform, InputKind kind) {
    return transform.single ? resultsOf<float>(transform, kind)
                            : resultsOf<double>(transform, kind);
}

std::uint64_t refusalDigest(const Transform& transform) {
    return transform.single ? refusalsOf<float>(transform) : refusalsOf<double>(transform);
}

}  // namespace orvgen::test
