// SPDX-License-Identifier: MIT
// The tester of kernels on small kernels written here: it takes a sound one and finds the fault of
// each of the others.
#include "support/tester.h"

#include <emmintrin.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "support/guarded.h"

namespace orvgen::test {
namespace {

constexpr std::size_t n = 6;

float scaleOf(int flag) { return flag == 1 ? 0.25F : flag == 2 ? 2.0F : flag == 4 ? 0.3F : 1.0F; }
bool goodFlag(int flag) { return flag == 1 || flag == 2 || flag == 4 || flag == 8; }
bool off(const void* p) { return reinterpret_cast<std::uintptr_t>(p) % 16 != 0; }

// y[i] = s (x[i] - x[n-1-i] / 3), all reads before the first store. Faulty gates let it have null
// pointers, which is what the tester must find, not a sanitizer.
__attribute__((no_sanitize("address"), no_sanitize("undefined"))) void body(const float* src,
                                                                            float* dst, int flag) {
    float r[n];
    const volatile float third = 1.0F / 3.0F;
    const volatile float s = scaleOf(flag);
    for (std::size_t i = 0; i < n; ++i) {
        const volatile float p = src[n - 1 - i] * third;
        const volatile float d = src[i] - p;
        r[i] = d * s;
    }
    for (std::size_t i = 0; i < n; ++i) dst[i] = r[i];
}

std::int32_t gate(const float* src, float* dst, int flag) {
    return !src || !dst ? -8 : !goodFlag(flag) ? -16 : 0;
}

// A kernel that is sound but for what `spoil` does around its body.
template <class Spoil>
KernelTester<float> kernel(Spoil spoil) {
    KernelTester<float> t;
    t.name = "k";
    t.srcCount = t.dstCount = n;
    t.overlap = true;
    t.reference = body;
    t.call = [spoil](const float* src, float* dst, std::int32_t flag) -> std::int32_t {
        if (const std::int32_t status = gate(src, dst, flag)) return status;
        spoil(src, dst, flag);
        return 0;
    };
    return t;
}

void expectFault(const KernelTester<float>& t, const std::string& what) {
    EXPECT_NE(t.report().find(what), std::string::npos) << what << " not in\n" << t.report();
}

TEST(KernelTester, TakesSoundKernels) {
    KernelTester<float> t = kernel(body);
    t.variants = {{"dispatcher", t.call}};
    EXPECT_EQ(t.report(), "");
    KernelTester<double> d;
    d.name = "d";
    d.srcCount = 4;
    d.dstCount = 2;
    d.srcBeyond = 1;
    d.neverRead = {1, 3};
    d.call = [](const double* src, double* dst, std::int32_t flag) -> std::int32_t {
        if (!src || !dst) return -8;
        if (!goodFlag(flag)) return -16;
        const double a = src[0], b = src[2];
        dst[0] = a + b;
        dst[1] = a - b;
        return 0;
    };
    EXPECT_EQ(d.report(), "");
}

TEST(KernelTester, FindsMemoryFaults) {
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    body(src, dst, flag);
                    dst[n] = 0;
                }),
                "around dst");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    body(src, dst, flag);
                    dst[-1] = dst[0];
                }),
                "around dst");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    float r[n];
                    body(src, r, flag);
                    std::memcpy(dst, r, sizeof r - 4);
                }),
                "against the reference, element 5");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    body(src, dst, flag);
                    const_cast<float*>(src)[0] = 1;
                }),
                "src changed");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    const volatile float beyond = src[n];
                    (void)beyond;
                    body(src, dst, flag);
                }),
                "guard page behind, flag 8: forbidden access at byte 24 of src");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    const volatile float before = src[-1];
                    (void)before;
                    body(src, dst, flag);
                }),
                "guard page before, flag 8: forbidden access at byte -4 of src");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    asm volatile("movaps %0, %%xmm0" : : "m"(*src) : "xmm0");
                    body(src, dst, flag);
                }),
                "general protection");
}

TEST(KernelTester, FindsUnwrittenElementsWithoutReference) {
    KernelTester<float> t = kernel([](const float* src, float* dst, int flag) {
        float r[n];
        body(src, r, flag);
        std::memcpy(dst, r, sizeof r - 4);
    });
    t.reference = nullptr;
    expectFault(t, "element 5");
}

TEST(KernelTester, FindsOverlapFaults) {
    const auto forward = [](const float* src, float* dst, int flag) {
        const float s = scaleOf(flag);
        for (std::size_t i = 0; i < n; ++i) dst[i] = src[n - 1 - i] * s;
    };
    KernelTester<float> t = kernel(forward);
    t.reference = nullptr;
    expectFault(t, "in place");
    const auto single = [](const float* src, float* dst, int flag) {
        const float s = scaleOf(flag);
        for (std::size_t i = 0; i < n; ++i) dst[i] = src[i] * s;
    };
    t = kernel(single);
    t.reference = nullptr;
    expectFault(t, "reals behind src");
    t.overlap = false;
    EXPECT_EQ(t.report(), "");
}

TEST(KernelTester, FindsGateFaults) {
    KernelTester<float> t = kernel(body);
    t.call = [](const float* src, float* dst, std::int32_t flag) -> std::int32_t {
        if (!goodFlag(flag)) return -16;
        if (!src || !dst) return -8;
        body(src, dst, flag);
        return 0;
    };
    expectFault(t, "src null, flag 0: status -16 for -8");
    t.call = [](const float* src, float* dst, std::int32_t flag) -> std::int32_t {
        if (!src || !dst) return -8;
        dst[0] = 0;
        if (!goodFlag(flag)) return -16;
        body(src, dst, flag);
        return 0;
    };
    expectFault(t, "dst changed");
    t.call = [](const float* src, float* dst, std::int32_t flag) -> std::int32_t {
        if (!src) return -8;
        if (!goodFlag(flag)) return -16;
        body(src, dst, flag);
        return 0;
    };
    expectFault(t, "dst null, flag 8: ");
    t.call = [](const float* src, float* dst, std::int32_t flag) -> std::int32_t {
        if (!src || !dst) return -8;
        if ((flag & 15) == 0) return -16;
        body(src, dst, flag);
        return 0;
    };
    expectFault(t, "flag 3: status 0 for -16");
    t.call = [](const float* src, float* dst, std::int32_t flag) -> std::int32_t {
        if (off(src) || off(dst)) {
            if (!goodFlag(flag)) return -16;
        }
        if (!src || !dst) return -8;
        if (!goodFlag(flag)) return -16;
        body(src, dst, flag);
        return 0;
    };
    expectFault(t, "off by 4, src null, flag 0: status -16 for -8");
    t.call = [](const float*, float*, std::int32_t) { return 0; };
    expectFault(t, "status 0 for");
}

TEST(KernelTester, FindsFaultsOfBits) {
    // -(b - a) for a - b: another sign of zero, another directed rounding.
    KernelTester<float> t = kernel([](const float* src, float* dst, int) {
        for (std::size_t i = 0; i < n / 2; ++i) {
            const volatile float d = src[2 * i] - src[2 * i + 1];
            dst[2 * i] = d;
            dst[2 * i + 1] = 1;
        }
    });
    t.overlap = false;
    t.reference = [](const float* src, float* dst, int) {
        for (std::size_t i = 0; i < n / 2; ++i) {
            const volatile float d = src[2 * i + 1] - src[2 * i];
            dst[2 * i] = -d;
            dst[2 * i + 1] = 1;
        }
    };
    expectFault(t, "against the reference");
    // Another sum where buffers are misaligned; the same but for NaN.
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    body(src, dst, flag);
                    if (off(dst)) dst[0] = std::nextafter(dst[0], 2.0F);
                }),
                "src off by 0, dst by 4");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    body(src, dst, flag);
                    if (off(dst) && std::isnan(dst[0])) dst[0] = -dst[0];
                }),
                "element 0: expected -nan");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    body(src, dst, flag);
                    if (std::fpclassify(dst[1]) == FP_SUBNORMAL) dst[1] = 0;
                }),
                "denormal");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    body(src, dst, 8);
                    (void)flag;
                }),
                "flag 1, nearest, against the reference");
    KernelTester<float> variant = kernel(body);
    variant.variants = {
        {"twin", [](const float* src, float* dst, std::int32_t flag) -> std::int32_t {
             if (const std::int32_t status = gate(src, dst, flag)) return status;
             body(src, dst, 8);
             return 0;
         }}};
    expectFault(variant, "twin");
    KernelTester<float> ignoring = kernel(body);
    ignoring.neverRead = {2};
    expectFault(ignoring, "where nothing is read");
    KernelTester<float> beyond = kernel([](const float* src, float* dst, int flag) {
        body(src, dst, flag);
        dst[0] += src[n];
    });
    beyond.srcBeyond = 1;
    beyond.reference = nullptr;
    beyond.overlap = false;
    expectFault(beyond, "element 0");
}

TEST(KernelTester, FindsFaultsOfTheControlWord) {
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    body(src, dst, flag);
                    _mm_setcsr(_mm_getcsr() | 0x8000);
                }),
                "control word changed");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    const unsigned word = _mm_getcsr();
                    _mm_setcsr(0x1f80);
                    body(src, dst, flag);
                    _mm_setcsr(word);
                }),
                "down, against the reference");
    expectFault(kernel([](const float* src, float* dst, int flag) {
                    const volatile float huge = std::numeric_limits<float>::max();
                    const volatile float product = huge * huge;
                    (void)product;
                    body(src, dst, flag);
                }),
                "raised exception flags");
}

TEST(KernelTester, ThrowsWhenNotSetUp) {
    const KernelTester<float> t;
    EXPECT_THROW(t.report(), std::runtime_error);
}

TEST(GuardedMemory, CatchesBothSides) {
    const GuardedMemory memory(100);
    std::uint8_t* end = memory.end();
    EXPECT_EQ(catchFault([&] { *const_cast<volatile std::uint8_t*>(end) = 1; }, end),
              "forbidden access at byte 0");
    std::uint8_t* start = memory.data();
    EXPECT_EQ(catchFault([&] { start[0] = 1; }, start), "");
    EXPECT_EQ(catchFault([&] { *const_cast<volatile std::uint8_t*>(start - 1) = 1; }, start),
              "forbidden access at byte -1");
}

}  // namespace
}  // namespace orvgen::test
