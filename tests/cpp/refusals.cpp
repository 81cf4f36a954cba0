// SPDX-License-Identifier: MIT
// What does not compile, and what is refused at run time. A call that must not compile is one that
// the constraints of all overloads refuse; beside it stands one that they accept and that differs
// in nothing else.
#include <array>
#include <list>
#include <type_traits>

#include "cpp/typed.h"
#include "support/guarded.h"

namespace orvgen::test {
namespace {

using Complex = std::complex<float>;
using Array64 = std::array<Complex, 64>;
using Array63 = std::array<Complex, 63>;
using Vector = std::vector<Complex>;

#define CALLABLE(NAME, ...)                                                              \
    struct NAME {                                                                        \
        template <class... A>                                                            \
        auto operator()(A&&... a) const -> decltype(__VA_ARGS__(std::forward<A>(a)...)); \
    };
CALLABLE(Fft, orvgen::fft)
CALLABLE(Fft64, orvgen::fft<64>)
CALLABLE(Fft65, orvgen::fft<65>)
CALLABLE(Fft1, orvgen::fft<1>)
CALLABLE(Fft47, orvgen::fft<47>)
CALLABLE(Ifft47, orvgen::ifft<47>)
CALLABLE(Hartley8, orvgen::hartley<8>)
CALLABLE(Rfft, orvgen::rfft)
CALLABLE(Rfft24, orvgen::rfft<24>)
CALLABLE(Irfft, orvgen::irfft)
CALLABLE(Wht, orvgen::wht)
CALLABLE(Wht3, orvgen::wht<Order{3}>)
CALLABLE(Wht8, orvgen::wht<Order{8}>)
CALLABLE(Wht14, orvgen::wht<Order{14}>)
template <class F, class... A>
constexpr bool compiles = std::is_invocable_v<F, A...>;

// Length, order and scale are not numbers and not each other.
static_assert(compiles<Fft, Vector&, Vector&, Length, Scale>);
static_assert(!compiles<Fft, Vector&, Vector&, Scale, Length>);
static_assert(!compiles<Fft, Vector&, Vector&, int, Scale>);
static_assert(!compiles<Fft, Vector&, Vector&, Length, int>);
static_assert(!compiles<Fft, Vector&, Vector&, Order, Scale>);
static_assert(!compiles<Fft, Vector&, Vector&, Length, decltype(orvScaleNone)>);
static_assert(!std::is_convertible_v<int, Length> && !std::is_convertible_v<Length, int>);
static_assert(!std::is_convertible_v<int, Order> && !std::is_convertible_v<Order, Length>);
static_assert(!std::is_constructible_v<Length, double> && !std::is_constructible_v<Length, bool>);
static_assert(!std::is_constructible_v<Length, Order> && !std::is_constructible_v<Order, Length>);
static_assert(!std::is_convertible_v<Status, int> && !std::is_convertible_v<Status, bool>);

// Extents that the compiler knows.
static_assert(compiles<Fft64, const Array64&, Array64&, Scale>);
static_assert(!compiles<Fft64, const Array63&, Array64&, Scale>);
static_assert(!compiles<Fft64, const Array64&, Array63&, Scale>);
static_assert(compiles<Fft64, Vector&, Array64&, Scale> &&
              compiles<Fft64, Array64&, Vector&, Scale>);
static_assert(!compiles<Fft64, Vector&, Array63&, Scale>);
static_assert(compiles<Fft, Array63&, Array63&, Scale>);
static_assert(!compiles<Fft, Array63&, Array64&, Scale>);
static_assert(!compiles<Fft, std::array<Complex, 65>&, std::array<Complex, 65>&, Scale>);
static_assert(!compiles<Fft65, Vector&, Vector&, Scale> &&
              !compiles<Fft1, Vector&, Vector&, Scale>);
// One element more is for the kernels that read it, in the source only.
static_assert(compiles<Fft47, std::array<Complex, 48>&, std::array<Complex, 47>&, Scale>);
static_assert(compiles<Ifft47, std::array<Complex, 48>&, std::array<Complex, 47>&, Scale>);
static_assert(!compiles<Fft47, std::array<Complex, 47>&, std::array<Complex, 48>&, Scale>);
static_assert(!compiles<Fft47, std::array<Complex, 49>&, std::array<Complex, 47>&, Scale>);
static_assert(!compiles<Fft47, std::array<Orv64fc, 48>&, std::array<Orv64fc, 47>&, Scale>);
static_assert(compiles<Fft47, std::array<Orv64fc, 47>&, std::array<Orv64fc, 47>&, Scale>);

// Elements, const, and what is no array.
static_assert(compiles<Fft64, const Array64&, std::array<Orv32fc, 64>&, Scale>);
static_assert(!compiles<Fft64, Array64&, const Array64&, Scale>);
static_assert(!compiles<Fft64, Array64&, std::array<std::complex<double>, 64>&, Scale>);
static_assert(!compiles<Fft64, std::array<float, 64>&, std::array<float, 64>&, Scale>);
static_assert(!compiles<Fft64, const Complex*, Complex*, Scale>);
static_assert(!compiles<Fft64, std::list<Complex>&, Array64&, Scale>);
static_assert(!compiles<Fft64, Array64&, Vector&&, Scale>);  // gone before it could be read
static_assert(compiles<Fft64, Vector&&, Array64&, Scale>);
static_assert(compiles<Hartley8, float (&)[8], float (&)[8], Scale>);
static_assert(!compiles<Hartley8, int (&)[8], int (&)[8], Scale>);

// Half spectra.
using Samples24 = std::array<float, 24>;
static_assert(compiles<Rfft, Samples24&, Pack<float, 24>, Scale>);
static_assert(compiles<Rfft24, Samples24&, Pack<float, 24>, Scale>);
static_assert(!compiles<Rfft24, Samples24&, Pack<float, 25>, Scale>);
static_assert(!compiles<Rfft, std::array<float, 25>&, Pack<float, 24>, Scale>);
static_assert(!compiles<Rfft, Samples24&, Pack<const float, 24>, Scale>);
static_assert(!compiles<Rfft, Samples24&, Pack<double, 24>, Scale>);
static_assert(!compiles<Rfft, Samples24&, Samples24&, Scale>);
static_assert(!compiles<Rfft, Pack<float, 24>, Samples24&, Scale>);
static_assert(compiles<Irfft, Pack<const float, 24>, Samples24&, Scale>);
static_assert(!compiles<Irfft, Pack<const float, 24>, const Samples24&, Scale>);
static_assert(!compiles<Irfft, Pack<const float, 65>, std::array<float, 65>&, Scale>);
static_assert(!std::is_convertible_v<Pack<float, 24>, Perm<float, 24>>);
static_assert(std::is_convertible_v<Pack<float, 24>, Pack<const float, 24>>);
static_assert(std::is_convertible_v<Pack<float, 24>, Pack<const float>>);
static_assert(!std::is_convertible_v<Pack<const float, 24>, Pack<float, 24>>);
static_assert(!std::is_constructible_v<Pack<float, 24>, Pack<float>>);
static_assert(std::is_constructible_v<Ccs<float, 24>, std::array<float, 26>&>);
static_assert(std::is_constructible_v<Ccs<float, 24>, std::array<Complex, 13>&>);
static_assert(!std::is_constructible_v<Ccs<float, 24>, std::array<Complex, 12>&>);
static_assert(!std::is_constructible_v<Ccs<float, 24>, std::array<float, 24>&>);
static_assert(!std::is_constructible_v<Pack<float, 24>, std::array<Complex, 12>&>);
static_assert(!std::is_constructible_v<Pack<float>, std::vector<float>&>);
static_assert(std::is_constructible_v<Pack<float>, std::vector<float>&, Length>);

// Walsh-Hadamard: orders that need memory take a buffer, of the elements' type.
static_assert(compiles<Wht3, float (&)[8], float (&)[8], Scale>);
static_assert(!compiles<Wht3, float (&)[7], float (&)[8], Scale>);
static_assert(!compiles<Wht8, float (&)[256], float (&)[256], Scale>);
static_assert(compiles<Wht8, float (&)[256], float (&)[256], Scale, const WhtBuffer<float>&>);
static_assert(!compiles<Wht8, float (&)[256], float (&)[256], Scale, const WhtBuffer<double>&>);
static_assert(!compiles<Wht8, float (&)[256], float (&)[256], Scale, std::uint8_t*>);
static_assert(!compiles<Wht14, std::vector<float>&, std::vector<float>&, Scale, WhtBuffer<float>&>);
static_assert(!compiles<Wht, float (&)[12], float (&)[12], Scale, const WhtBuffer<float>&>);
static_assert(
    !compiles<Wht, std::vector<float>&, std::vector<float>&, Scale, Order, WhtBuffer<float>&>);
static_assert(
    compiles<Wht, std::vector<float>&, std::vector<float>&, Order, Scale, WhtBuffer<float>&>);

// A destination of `count` elements of which no byte may change.
template <class E>
class Untouched {
  public:
    explicit Untouched(std::size_t count) : elements(poison<E>(count)) {}
    std::vector<E>& operator*() { return elements; }
    ~Untouched() { EXPECT_TRUE(sameBytes(elements, poison<E>(elements.size()))); }

  private:
    std::vector<E> elements;
};

TEST(Refusals, OfExtentsThatDoNotFit) {
    const Vector x(24), shorter(23), longer(25), none;
    Untouched<Complex> y(24);
    for (const Vector* wrong : {&shorter, &longer, &none}) {
        EXPECT_EQ(fft<24>(*wrong, *y, Scale::none), Status::errExtent);
        EXPECT_EQ(fft(*wrong, *y, Scale::none), Status::errExtent);
        EXPECT_EQ(ifft(*wrong, *y, Length{24}, Scale::none), Status::errExtent);
    }
    EXPECT_EQ(fft(x, *y, Length{23}, Scale::none), Status::errExtent);
    EXPECT_EQ(fft(x, *y, Length{25}, Scale::none), Status::errExtent);
    EXPECT_EQ(fft<23>(x, *y, Scale::none), Status::errExtent);

    Untouched<double> z(9);
    const std::vector<double> samples9(9);
    EXPECT_EQ(hartley(samples9, *z, Length{8}, Scale::none), Status::errExtent);
    EXPECT_EQ(rfft(samples9, Ccs<double>(*z, Length{9}), Scale::none), Status::errExtent);
    EXPECT_EQ(rfft(samples9, Pack<double>(*z, Length{8}), Scale::none), Status::errExtent);
    EXPECT_EQ(
        rfft<9>(std::vector<double>(8), Pack<double, 9>(std::span<double, 9>(*z)), Scale::none),
        Status::errExtent);
    EXPECT_EQ(irfft(Ccs<const double>(samples9, Length{9}), *z, Scale::none), Status::errExtent);
    EXPECT_EQ(irfft(Pack<const double>(samples9, Length{9}), std::span(*z).first(8), Scale::none),
              Status::errExtent);
}

TEST(Refusals, OfLengthsThatThereAreNot) {
    Untouched<Complex> y(65);
    const Vector x(65);
    EXPECT_EQ(fft(x, *y, Scale::none), Status::errSize);
    EXPECT_EQ(fft(x, *y, Length{65}, Scale::none), Status::errSize);
    EXPECT_EQ(fft(x, *y, Length{1}, Scale::none), Status::errSize);
    EXPECT_EQ(fft(Vector(1), std::span(*y).first(1), Scale::none), Status::errSize);
    EXPECT_EQ(fft(Vector(), std::span(*y).first(0), Scale::none), Status::errSize);
    for (const long n : {0L, -1L, -64L, 1L << 32, (1L << 32) + 64, -(1L << 40)})
        EXPECT_EQ(fft(x, *y, Length{n}, Scale::none), Status::errSize) << n;
    EXPECT_EQ(Length{(1UL << 32) + 64}, Length{});

    Untouched<float> z(128);
    EXPECT_EQ(rfft(std::vector<float>(100), Pack<float>(std::span(*z).first(100), Length{100}),
                   Scale::none),
              Status::errSize);
    const WhtBuffer<float> buffer;
    for (const int k : {0, -1, 14, 31, 32, 1 << 30})
        EXPECT_EQ(wht(std::vector<float>(128), *z, Order{k}, Scale::none, buffer), Status::errSize);
    EXPECT_EQ(wht(std::vector<float>(100), std::span(*z).first(100), Scale::none, buffer),
              Status::errSize);
}

TEST(Refusals, OfScalesThatAreNone) {
    Untouched<Complex> y(64);
    const Vector x(64);
    for (const int flag : {0, 3, 16, -1}) {
        EXPECT_EQ(fft<64>(x, *y, static_cast<Scale>(flag)), Status::errFlag);
        EXPECT_EQ(fft(x, *y, static_cast<Scale>(flag)), Status::errFlag);
    }
}

// Sources and destinations that end where forbidden memory begins.
template <class Call>
void betweenGuards(std::size_t n, Call call) {
    GuardedMemory from(4096), to(4096);
    const std::vector<Orv32fc> in = samples<Orv32fc>(n + 1, 1);
    auto* src = reinterpret_cast<Orv32fc*>(from.end()) - n;
    auto* dst = reinterpret_cast<Orv32fc*>(to.end()) - n;
    std::memcpy(src, in.data(), n * sizeof *src);
    const std::span<const Orv32fc> source(src, n);
    const std::span<Orv32fc> result(dst, n);
    EXPECT_EQ(catchFault([&] { call(in, source, result); }, src), "");
}

template <std::size_t N>
void readsNothingBehind() {
    betweenGuards(N, [](const auto& spare, auto source, auto result) {
        std::vector<Orv32fc> wanted(N);
        EXPECT_EQ(fft<N>(spare, wanted, Scale::none), Status::ok);
        EXPECT_EQ(fft<N>(source, result, Scale::none), Status::ok);
        EXPECT_TRUE(sameBytes(result, wanted));
        EXPECT_EQ(fft(source, result, Scale::none), Status::ok);
        EXPECT_TRUE(sameBytes(result, wanted));
        EXPECT_EQ(fft(spare, result, Length{N}, Scale::none), Status::ok);
        EXPECT_TRUE(sameBytes(result, wanted));
        EXPECT_EQ(fft(source.template first<N>(), result, Scale::none), Status::ok);
        EXPECT_TRUE(sameBytes(result, wanted));
        EXPECT_EQ(ifft(spare, wanted, Length{N}, Scale::none), Status::ok);
        EXPECT_EQ(ifft(source, result, Length{N}, Scale::none), Status::ok);
        EXPECT_TRUE(sameBytes(result, wanted));
    });
}
TEST(Sources, AreNotReadBehindTheirEnd) {
    readsNothingBehind<47>();
    readsNothingBehind<59>();
    for (std::size_t n = 2; n <= 64; ++n)
        betweenGuards(n, [n](const auto&, auto source, auto result) {
            EXPECT_EQ(fft(source, result, Scale::none), Status::ok) << n;
            EXPECT_EQ(ifft(source, result, Length{n}, Scale::none), Status::ok) << n;
        });
}

}  // namespace
}  // namespace orvgen::test
