// SPDX-License-Identifier: MIT
// Every order gives the bits of the layer-by-layer transform, in every way in which it may be
// called: with a buffer of the caller's that holds garbage and ends at a guard page, or begins at
// one, with none, through the by-order function, through the twin.
#include <gtest/gtest.h>

#include <cstring>

#include "reference.h"
#include "support/guarded.h"
#include "support/tester.h"
#include "wht/functions.h"

namespace {

using namespace orvgen::test;

// A buffer of the exact size between guard pages, filled with other garbage for each call.
class Buffer {
  public:
    explicit Buffer(std::size_t bytes) : memory_(bytes + 16) {}

    std::uint8_t* behindGuard() { return refill(memory_.data()); }
    std::uint8_t* beforeGuard(std::size_t bytes) { return refill(memory_.end() - bytes); }

  private:
    std::uint8_t* refill(std::uint8_t* at) {
        constexpr int patterns[] = {0xff, 0x7f, 0x00, 0x01, 0xa5, 0x80};
        std::memset(memory_.data(), patterns[++calls_ % std::size(patterns)], memory_.size());
        return at;
    }
    GuardedMemory memory_;
    std::size_t calls_ = 0;
};

template <class T>
std::string report(const OrderFunctions<T>& f) {
    const std::size_t bytes = f.bufferBytes();
    Buffer buffer(bytes);
    KernelTester<T> tester;
    tester.name = f.name;
    tester.srcCount = tester.dstCount = f.points();
    tester.call = [&](const T* src, T* dst, std::int32_t flag) {
        return f.kernel(src, dst, flag, buffer.beforeGuard(bytes));
    };
    const auto variant = [&](const std::string& name, auto call) {
        tester.variants.emplace_back(name, call);
    };
    variant("buffer at the page's begin", [&](const T* src, T* dst, std::int32_t flag) {
        return f.kernel(src, dst, flag, buffer.behindGuard());
    });
    variant("no buffer", [&](const T* src, T* dst, std::int32_t flag) {
        return f.kernel(src, dst, flag, nullptr);
    });
    variant("by order", [&](const T* src, T* dst, std::int32_t flag) {
        return f.byOrder(src, dst, f.order, flag, buffer.beforeGuard(bytes));
    });
    variant("by order, no buffer", [&](const T* src, T* dst, std::int32_t flag) {
        return f.byOrder(src, dst, f.order, flag, nullptr);
    });
    if (f.twin) {
        variant("twin", [&](const T* src, T* dst, std::int32_t flag) {
            return f.twin(src, dst, flag, buffer.beforeGuard(bytes));
        });
        variant("twin, no buffer", [&](const T* src, T* dst, std::int32_t flag) {
            return f.twin(src, dst, flag, nullptr);
        });
    }
    if (bytes == 0) {
        variant("an address for a buffer that nobody reads",
                [&](const T* src, T* dst, std::int32_t flag) {
                    return f.kernel(src, dst, flag, reinterpret_cast<std::uint8_t*>(1));
                });
    }
    tester.reference = [&](const T* src, T* dst, std::int32_t flag) {
        referenceTransform(src, dst, f.order, scaleOf<T>(f.order, flag));
    };
    tester.impulses = f.order <= 6 ? 0 : f.order <= 10 ? 8 : 4;
    return tester.report();
}

class WhtBits : public testing::TestWithParam<int> {};

TEST_P(WhtBits, OfBinary32AreThoseOfTheReference) {
    EXPECT_EQ(report(orderFunctions<Orv32f>()[static_cast<std::size_t>(GetParam() - 1)]), "");
}

TEST_P(WhtBits, OfBinary64AreThoseOfTheReference) {
    EXPECT_EQ(report(orderFunctions<Orv64f>()[static_cast<std::size_t>(GetParam() - 1)]), "");
}

INSTANTIATE_TEST_SUITE_P(Orders, WhtBits, testing::Range(1, 14));

}  // namespace
