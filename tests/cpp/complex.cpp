// SPDX-License-Identifier: MIT
// The complex and the Hartley transform of every length.
#include <array>

#include "cpp/calls.h"

namespace orvgen::test {
namespace {

#define TRANSFORM(CALL, NAME, N, T)                                                 \
    {#NAME "_" #N "_" #T,                                                           \
     N,                                                                             \
     N,                                                                             \
     N,                                                                             \
     [](const E* x, E* y, Scale s) {                                                \
         return Status{orvg##NAME##_##N##_##T(x, y, static_cast<std::int32_t>(s))}; \
     },                                                                             \
     [](const E* x, E* y, Scale s) { return CALL<N>(fixed<const E, N>(x), any<E>(y, N), s); }},
#define FORWARD(NAME, N, T) TRANSFORM(orvgen::fft, NAME, N, T)
#define INVERSE(NAME, N, T) TRANSFORM(orvgen::ifft, NAME, N, T)
#define HARTLEY(NAME, N, T) TRANSFORM(orvgen::hartley, NAME, N, T)

#define COMPARE(TITLE, ROW, CALL, NAME, T, S)                                              \
    TEST(FixedLengths, TITLE) {                                                            \
        using E = Orv##T;                                                                  \
        const std::vector<Calls<E>> list = {ORVGEN_LENGTHS(ROW, NAME, T)};                 \
        ASSERT_EQ(list.size(), 63U);                                                       \
        compare<E>(list, {[](const E* x, E* y, std::size_t n, Scale s) {                   \
                              return CALL(any<const S>(x, n), any<E>(y, n), s);            \
                          },                                                               \
                          [](const E* x, E* y, std::size_t n, Scale s) {                   \
                              return CALL(any<const E>(x, n), any<S>(y, n), Length{n}, s); \
                          }});                                                             \
    }
COMPARE(Complex32Forward, FORWARD, fft, DFTFwd_CToC, 32fc, std::complex<float>)
COMPARE(Complex32Inverse, INVERSE, ifft, DFTInv_CToC, 32fc, std::complex<float>)
COMPARE(Complex64Forward, FORWARD, fft, DFTFwd_CToC, 64fc, std::complex<double>)
COMPARE(Complex64Inverse, INVERSE, ifft, DFTInv_CToC, 64fc, std::complex<double>)
COMPARE(Hartley32, HARTLEY, hartley, Hartley, 32f, float)
COMPARE(Hartley64, HARTLEY, hartley, Hartley, 64f, double)

// The length as the extent of either array, and in C arrays.
TEST(FixedLengths, FollowFromTheExtentsOfTheArrays) {
    const std::vector<Orv32fc> in = samples<Orv32fc>(48, 2);
    std::array<std::complex<float>, 47> wanted, out;
    const auto same = [&] {
        const bool equal = sameBytes(out, wanted);
        out = {};
        return equal;
    };
    ASSERT_EQ(fft<47>(in, wanted, Scale::fwdByN), Status::ok);
    EXPECT_EQ(fft(fixed<const Orv32fc, 47>(in.data()), out, Scale::fwdByN), Status::ok);
    EXPECT_TRUE(same());
    EXPECT_EQ(fft(any<const Orv32fc>(in.data(), 47), out, Scale::fwdByN), Status::ok);
    EXPECT_TRUE(same());
    EXPECT_EQ(fft(fixed<const Orv32fc, 47>(in.data()), std::span<std::complex<float>>(out),
                  Scale::fwdByN),
              Status::ok);
    EXPECT_TRUE(same());
    Orv32fc x[47];
    std::copy_n(in.begin(), 47, x);
    EXPECT_EQ(fft(x, out, Scale::fwdByN), Status::ok);
    EXPECT_TRUE(same());
}

// Where a kernel reads behind its source, a source of one element more is handed on as it is.
TEST(FixedLengths, TakeSourcesWithASpareElement) {
    const auto compareSpare = [](auto N, auto original) {
        const std::vector<Orv32fc> in = samples<Orv32fc>(N + 1, 2);
        std::vector<Orv32fc> wanted(N), out(N);
        EXPECT_EQ(original(in.data(), wanted.data(), orvScaleNone), orvOk);
        EXPECT_EQ(fft<N>(fixed<const Orv32fc, N + 1>(in.data()), out, Scale::none), Status::ok);
        EXPECT_TRUE(sameBytes(out, wanted));
        out = poison<Orv32fc>(N);
        EXPECT_EQ(fft(in, out, Length{N()}, Scale::none), Status::ok);
        EXPECT_TRUE(sameBytes(out, wanted));
    };
    compareSpare(std::integral_constant<std::size_t, 47>(), orvgDFTFwd_CToC_47_32fc);
    compareSpare(std::integral_constant<std::size_t, 59>(), orvgDFTFwd_CToC_59_32fc);
}

}  // namespace
}  // namespace orvgen::test
