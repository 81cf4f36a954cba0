// SPDX-License-Identifier: MIT
// orvgen-batch in C++20: arrays of transforms as views, over orvgen_batch.h as orvgen.hpp is over
// orvgen.h. It is a header of its own because it asks for a library of its own: -lorvgenbatch.
//
//     #include <orvgen_batch.hpp>
//
//     std::vector<std::complex<float>> x(48 * 1000), y(x.size());         // 1000 rows of 48
//     using namespace orvgen;
//     Status s = batch::fft(batch::rows(x, 48), batch::columns(y, 1000), Scale::none);
//
// The length of a transform is that of the view on its samples; how many there are must be the same
// in both views. A view that does not fit its array, or the other one, gives Status::errExtent
// and nothing is written. Everything else is told in orvgen_batch.h, in place and overlaps too.
#ifndef ORVGEN_BATCH_HPP
#define ORVGEN_BATCH_HPP

#include <orvgen_batch.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <orvgen.hpp>
#include <orvgen/batch_view.hpp>
#include <type_traits>

namespace orvgen::batch {

// What the transforms run on.
enum class Target : std::uint32_t {
    best = 0,
    sse2 = orvTargetSSE2,
    avx2 = orvTargetAVX2,
    avx512 = orvTargetAVX512
};

// Whether this library and this machine have it.
inline bool available(Target target) {
    return (orvgBatchTargets() & static_cast<std::uint32_t>(target)) ==
           static_cast<std::uint32_t>(target);
}
// For all later calls of the process; Status::errFlag for one that is not available.
inline Status use(Target target) {
    return Status{orvgBatchUse(static_cast<std::uint32_t>(target))};
}

// The real and the imaginary parts of complex transforms in arrays of their own, of one shape.
template <class R>
class Split {
  public:
    constexpr Split(std::span<R> re, std::span<R> im, const Shape& shape) noexcept
        : first(re, shape), second(im, shape) {}
    constexpr Split(const Split<std::remove_const_t<R>>& other) noexcept
        requires(std::is_const_v<R>)
        : first(other.real()), second(other.imag()) {}

    constexpr const View<R>& real() const noexcept { return first; }
    constexpr const View<R>& imag() const noexcept { return second; }
    constexpr bool valid() const noexcept { return first.valid() && second.valid(); }
    constexpr const Shape& shape() const noexcept { return first.shape(); }

  private:
    View<R> first, second;
};

namespace detail {

using orvgen::detail::elements;

template <class E>
using Element = orvgen::detail::Element<E>;

// The functions of the batch library by the element of the samples.
template <class E>
struct Functions;
#define ORVGEN_HPP_BATCH(C, R)                                               \
    template <>                                                              \
    struct Functions<Orv##C> {                                               \
        static constexpr auto forward = &orvgBatchDFTFwd_CToC_##C;           \
        static constexpr auto inverse = &orvgBatchDFTInv_CToC_##C;           \
    };                                                                       \
    template <>                                                              \
    struct Functions<Orv##R> {                                               \
        static constexpr auto splitForward = &orvgBatchSplitDFTFwd_CToC_##R; \
        static constexpr auto splitInverse = &orvgBatchSplitDFTInv_CToC_##R; \
        static constexpr auto forwardCcs = &orvgBatchDFTFwd_RToCCS_##R;      \
        static constexpr auto forwardPack = &orvgBatchDFTFwd_RToPack_##R;    \
        static constexpr auto forwardPerm = &orvgBatchDFTFwd_RToPerm_##R;    \
        static constexpr auto inverseCcs = &orvgBatchDFTInv_CCSToR_##R;      \
        static constexpr auto inversePack = &orvgBatchDFTInv_PackToR_##R;    \
        static constexpr auto inversePerm = &orvgBatchDFTInv_PermToR_##R;    \
        static constexpr auto hartley = &orvgBatchHartley_##R;               \
        static constexpr auto wht = &orvgBatchWHT_##R;                       \
        static constexpr auto dct4 = &orvgBatchDCT4_##R;                     \
    };
ORVGEN_HPP_BATCH(32fc, 32f)
ORVGEN_HPP_BATCH(64fc, 64f)
#undef ORVGEN_HPP_BATCH

template <class D, class S>
concept ComplexFrom = orvgen::detail::ComplexElement<Element<D>> &&
    std::same_as<Element<D>, Element<S>> && !std::is_const_v<D>;
template <class D, class S>
concept RealFrom = orvgen::detail::RealElement<Element<D>> &&
    std::same_as<Element<D>, Element<S>> && !std::is_const_v<D>;

// The elements of half spectra: complex bins in the layout CCS, real numbers in the others.
template <class R>
struct BinsOf;
template <>
struct BinsOf<Orv32f> {
    using Type = Orv32fc;
};
template <>
struct BinsOf<Orv64f> {
    using Type = Orv64fc;
};
template <class H, class R, Layout layout>
concept HalfOf =
    std::same_as<Element<H>,
                 std::conditional_t<layout == Layout::ccs, typename BinsOf<R>::Type, R>>;
constexpr std::size_t halfElements(Layout layout, std::size_t n) noexcept {
    return layout == Layout::ccs ? n / 2 + 1 : n;
}

// Two views that belong together.
template <class S, class D>
constexpr bool fit(const S& src, const D& dst, std::size_t srcElements, std::size_t dstElements) {
    return src.valid() && dst.valid() && src.shape().count == dst.shape().count &&
           src.shape().elements == srcElements && dst.shape().elements == dstElements;
}

// A function of the library on two views that fit.
template <class Function, class S, class D, class... Rest>
Status call(Function function, const View<S>& src, const View<D>& dst, std::int32_t number,
            Rest... rest) {
    return Status{function(elements(src.data()), src.shape().stride, src.shape().distance,
                           elements(dst.data()), dst.shape().stride, dst.shape().distance, number,
                           rest...)};
}

template <class Function, class S, class D>
Status scaled(Function function, const View<S>& src, const View<D>& dst, std::size_t points,
              Scale scale) {
    return call(function, src, dst, Length{points}.value, src.count(),
                static_cast<std::int32_t>(scale));
}

template <class Function, class R>
Status split(Function function, const Split<const R>& src, const Split<R>& dst, Scale scale) {
    const Shape &from = src.shape(), &to = dst.shape();
    if (!fit(src, dst, from.elements, from.elements)) return Status::errExtent;
    return Status{function(src.real().data(), src.imag().data(), from.stride, from.distance,
                           dst.real().data(), dst.imag().data(), to.stride, to.distance,
                           Length{from.elements}.value, from.count,
                           static_cast<std::int32_t>(scale))};
}

}  // namespace detail

// Complex transforms, interleaved or split.
template <class S, detail::ComplexFrom<S> D>
Status fft(const View<S>& src, const View<D>& dst, Scale scale) {
    if (!detail::fit(src, dst, src.elements(), src.elements())) return Status::errExtent;
    return detail::scaled(detail::Functions<detail::Element<D>>::forward, src, dst, src.elements(),
                          scale);
}
template <class S, detail::ComplexFrom<S> D>
Status ifft(const View<S>& src, const View<D>& dst, Scale scale) {
    if (!detail::fit(src, dst, src.elements(), src.elements())) return Status::errExtent;
    return detail::scaled(detail::Functions<detail::Element<D>>::inverse, src, dst, src.elements(),
                          scale);
}
template <class S, detail::RealFrom<S> R>
Status fft(const Split<S>& src, const Split<R>& dst, Scale scale) {
    return detail::split<decltype(detail::Functions<R>::splitForward), R>(
        detail::Functions<R>::splitForward, src, dst, scale);
}
template <class S, detail::RealFrom<S> R>
Status ifft(const Split<S>& src, const Split<R>& dst, Scale scale) {
    return detail::split<decltype(detail::Functions<R>::splitInverse), R>(
        detail::Functions<R>::splitInverse, src, dst, scale);
}

// Real transforms; the elements of CCS are complex bins, N / 2 + 1 of them, those of Pack and Perm
// are N real numbers.
template <Layout layout = Layout::ccs, class S, detail::HalfOf<detail::Element<S>, layout> D>
Status rfft(const View<S>& src, const View<D>& dst, Scale scale) {
    using F = detail::Functions<detail::Element<S>>;
    const std::size_t n = src.elements();
    if (!detail::fit(src, dst, n, detail::halfElements(layout, n))) return Status::errExtent;
    if constexpr (layout == Layout::ccs)
        return detail::scaled(F::forwardCcs, src, dst, n, scale);
    else
        return detail::scaled(layout == Layout::pack ? F::forwardPack : F::forwardPerm, src, dst, n,
                              scale);
}
template <Layout layout = Layout::ccs, class D, detail::HalfOf<detail::Element<D>, layout> S>
Status irfft(const View<S>& src, const View<D>& dst, Scale scale) {
    using F = detail::Functions<detail::Element<D>>;
    const std::size_t n = dst.elements();
    if (!detail::fit(src, dst, detail::halfElements(layout, n), n)) return Status::errExtent;
    if constexpr (layout == Layout::ccs)
        return detail::scaled(F::inverseCcs, src, dst, n, scale);
    else
        return detail::scaled(layout == Layout::pack ? F::inversePack : F::inversePerm, src, dst, n,
                              scale);
}

template <class S, detail::RealFrom<S> D>
Status hartley(const View<S>& src, const View<D>& dst, Scale scale) {
    if (!detail::fit(src, dst, src.elements(), src.elements())) return Status::errExtent;
    return detail::scaled(detail::Functions<D>::hartley, src, dst, src.elements(), scale);
}

// Of 2 to 8192 points, a power of two; no buffer is asked for.
template <class S, detail::RealFrom<S> D>
Status wht(const View<S>& src, const View<D>& dst, Scale scale) {
    if (!detail::fit(src, dst, src.elements(), src.elements())) return Status::errExtent;
    const std::size_t order = std::has_single_bit(src.elements())
                                  ? static_cast<std::size_t>(std::countr_zero(src.elements()))
                                  : 0;
    return detail::scaled(detail::Functions<D>::wht, src, dst, order, scale);
}

// Of 2, 4, 8, 16 or 32 points.
template <class S, detail::RealFrom<S> D>
Status dct4(const View<S>& src, const View<D>& dst) {
    if (!detail::fit(src, dst, src.elements(), src.elements())) return Status::errExtent;
    if (src.elements() > 32) return Status::errSize;
    return detail::call(detail::Functions<D>::dct4, src, dst, Length{src.elements()}.value,
                        static_cast<typename Dct4<D>::Spec*>(nullptr), src.count());
}
// Of any length that a plan has; from 64 points on the strides must be 1.
template <class S, detail::RealFrom<S> D>
Status dct4(const View<S>& src, const View<D>& dst, Dct4<D>& plan) {
    if (!plan) return plan.status();
    const auto n = static_cast<std::size_t>(plan.length().value);
    if (!detail::fit(src, dst, n, n)) return Status::errExtent;
    return detail::call(detail::Functions<D>::dct4, src, dst, plan.length().value, plan.get(),
                        src.count());
}

}  // namespace orvgen::batch

#endif
