// SPDX-License-Identifier: MIT
// The transforms of a fixed length, 2 to 64: complex, real, Hartley.
//
//     fft<64>(in, out, scale)             the length as a constant
//     fft(in, out, scale)                 the length is the arrays' extent
//     fft(in, out, Length{n}, scale)      the length at run time
//
// likewise ifft and hartley; of rfft and irfft the length stands in the half spectrum:
//
//     rfft(samples, Ccs<double, 24>{bins}, scale)      irfft(Pack<const float>{X, Length{n}}, ...)
//
// With a constant length, arrays of fixed extents are one call of that length's function; of arrays
// whose extents are known at run time these are compared before. Status: errSize for a length
// outside 2 to 64, errExtent for an array or a view of another extent than the length asks for,
// errNullPtr, errFlag for a scale that is none. Equal arrays transform in place.
//
// The complex binary32 kernels of 47 and 59 points read the element behind their source. It need
// not be there: a source of N elements is copied first, to the stack. A source of N + 1 elements,
// the last of which is any finite number, is not.
#ifndef ORVGEN_TRANSFORMS_HPP
#define ORVGEN_TRANSFORMS_HPP

#include <algorithm>
#include <cstddef>
#include <orvgen/arrays.hpp>
#include <orvgen/families.hpp>
#include <orvgen/half_spectrum.hpp>
#include <orvgen/values.hpp>
#include <span>
#include <type_traits>

namespace orvgen {
namespace detail {

// Whether the family's kernel of n points reads the element behind its source.
template <class Family>
constexpr bool readsBehind(std::size_t n) noexcept {
    return std::same_as<typename Family::Element, Orv32fc> && (n == 47 || n == 59);
}
// The other extent that a source may have.
template <class Family>
constexpr std::size_t sourceOrElse(std::size_t n) noexcept {
    return readsBehind<Family>(n) ? n + 1 : n;
}

// function(source) for a source with one element more.
template <class E, class Function>
Status padded(const E* in, std::size_t n, Function function) {
    alignas(16) E copy[60];
    std::copy_n(in, n, copy);
    copy[n] = E{};
    return function(copy);
}

// N points by the function of that length.
template <class Family, std::size_t N, class E, std::size_t extent, class F>
Status runFixed(std::span<E, extent> in, F* out, Scale scale) {
    const auto run = [=](const typename Family::Element* from) {
        return Status{functionOf<Family, static_cast<std::int32_t>(N)>()(
            from, elements(out), static_cast<std::int32_t>(scale))};
    };
    const auto* from = elements(in.data());
    if constexpr (readsBehind<Family>(N) && extent != N + 1)
        if (in.size() == N && from) return padded(from, N, run);
    return run(from);
}

// A run-time length; `srcExtent` and `dstExtent` are what the arrays should have.
template <class Family, class E, class F>
Status runAny(std::span<E> in, std::span<F> out, std::size_t srcExtent, std::size_t dstExtent,
              Length n, Scale scale) {
    const auto points = static_cast<std::size_t>(n.value);
    if ((in.size() != srcExtent && in.size() != sourceOrElse<Family>(srcExtent)) ||
        out.size() != dstExtent)
        return exists<Family>(n.value) ? Status::errExtent : Status::errSize;
    const auto run = [=](const typename Family::Element* from) {
        return Status{Family::byNumber(from, elements(out.data()), n.value,
                                       static_cast<std::int32_t>(scale))};
    };
    const auto* from = elements(in.data());
    if (readsBehind<Family>(points) && in.size() == points && from)
        return padded(from, points, run);
    return run(from);
}

// Arrays of N elements each.
template <class Family, std::size_t N, class In, class Out>
Status sameExtents(const In& in, const Out& out, Scale scale) {
    if (!(has<N>(in) || (readsBehind<Family>(N) && has<N + 1>(in))) || !has<N>(out))
        return Status::errExtent;
    return runFixed<Family, N>(in, out.data(), scale);
}

// Arrays of the extents that they have.
template <class Family, class In, class Out>
Status ownExtents(const In& in, const Out& out, Scale scale) {
    if constexpr (Out::extent != dynamic)
        return sameExtents<Family, Out::extent>(in, out, scale);
    else if constexpr (In::extent != dynamic)
        return sameExtents<Family, In::extent>(in, out, scale);
    else
        return runAny<Family>(dynamicSpan(in), out, out.size(), out.size(), Length{out.size()},
                              scale);
}

template <class Family, class In, class Out>
Status givenLength(const In& in, const Out& out, Length n, Scale scale) {
    const auto points = static_cast<std::size_t>(n.value);
    return runAny<Family>(dynamicSpan(in), dynamicSpan(out), points, points, n, scale);
}

template <class A>
using ForwardOf = typename Complex<ArrayElement<A>>::Forward;
template <class A>
using InverseOf = typename Complex<ArrayElement<A>>::Inverse;
template <class A>
using HartleyOf = typename RealToReal<ArrayElement<A>>::Hartley;

// The extents suit the family and a length, which may be known only at run time.
template <class Family, class In, class Out, std::size_t N>
concept Fit = Holds<Out, N> &&(N == dynamic || exists<Family>(static_cast<std::int64_t>(N))) &&
              Holds<In, N, sourceOrElse<Family>(N)>;

// Destinations for a source In and a length N, for the length that both arrays have by themselves,
// and for one at run time.
template <class Out, class In, std::size_t N>
concept ForwardBy = ComplexArrays<In, Out> && Fit<ForwardOf<Out>, In, Out, N>;
template <class Out, class In, std::size_t N>
concept InverseBy = ComplexArrays<In, Out> && Fit<InverseOf<Out>, In, Out, N>;
template <class Out, class In, std::size_t N>
concept HartleyBy = RealArrays<In, Out> && Fit<HartleyOf<Out>, In, Out, N>;
template <class Out, class In>
concept ForwardOwn = ForwardBy<Out, In, commonExtent<Out, In>>;
template <class Out, class In>
concept InverseOwn = InverseBy<Out, In, commonExtent<Out, In>>;
template <class Out, class In>
concept HartleyOwn = HartleyBy<Out, In, commonExtent<Out, In>>;

// Samples that belong to a half spectrum of N points; the real families have the same lengths.
template <class A, class T, std::size_t N>
concept SamplesOf = Source<A> && std::same_as<ArrayElement<A>, std::remove_const_t<T>> &&
                    (N == dynamic || exists<HartleyOf<A>>(static_cast<std::int64_t>(N))) &&
                    Holds<A, N>;
template <class A, class T, std::size_t N>
concept NewSamplesOf = SamplesOf<A, T, N> && Destination<A>;

// N, which a call has to give.
template <std::size_t N>
struct Given {
    static constexpr std::size_t value = N;
};

}  // namespace detail

// The complex transform: y[k] = s sum_j x[j] exp(-2 pi i jk / N).
template <std::size_t N, class In, detail::ForwardBy<In, N> Out>
Status fft(In&& in, Out&& out, Scale scale) {
    return detail::sameExtents<detail::ForwardOf<Out>, N>(std::span(in), std::span(out), scale);
}
template <class In, detail::ForwardOwn<In> Out>
Status fft(In&& in, Out&& out, Scale scale) {
    return detail::ownExtents<detail::ForwardOf<Out>>(std::span(in), std::span(out), scale);
}
template <class In, detail::ComplexFrom<In> Out>
Status fft(In&& in, Out&& out, Length n, Scale scale) {
    return detail::givenLength<detail::ForwardOf<Out>>(std::span(in), std::span(out), n, scale);
}

// Its inverse: y[k] = s sum_j x[j] exp(2 pi i jk / N).
template <std::size_t N, class In, detail::InverseBy<In, N> Out>
Status ifft(In&& in, Out&& out, Scale scale) {
    return detail::sameExtents<detail::InverseOf<Out>, N>(std::span(in), std::span(out), scale);
}
template <class In, detail::InverseOwn<In> Out>
Status ifft(In&& in, Out&& out, Scale scale) {
    return detail::ownExtents<detail::InverseOf<Out>>(std::span(in), std::span(out), scale);
}
template <class In, detail::ComplexFrom<In> Out>
Status ifft(In&& in, Out&& out, Length n, Scale scale) {
    return detail::givenLength<detail::InverseOf<Out>>(std::span(in), std::span(out), n, scale);
}

// The Hartley transform: y[k] = s sum_n x[n] (cos(2 pi nk / N) + sin(2 pi nk / N)).
template <std::size_t N, class In, detail::HartleyBy<In, N> Out>
Status hartley(In&& in, Out&& out, Scale scale) {
    return detail::sameExtents<detail::HartleyOf<Out>, N>(std::span(in), std::span(out), scale);
}
template <class In, detail::HartleyOwn<In> Out>
Status hartley(In&& in, Out&& out, Scale scale) {
    return detail::ownExtents<detail::HartleyOf<Out>>(std::span(in), std::span(out), scale);
}
template <class In, detail::RealFrom<In> Out>
Status hartley(In&& in, Out&& out, Length n, Scale scale) {
    return detail::givenLength<detail::HartleyOf<Out>>(std::span(in), std::span(out), n, scale);
}

// The real transform: the half spectrum X[k] = s sum_n x[n] exp(-2 pi i nk / N), k from 0 to N / 2.
template <Layout layout, detail::RealElement T, std::size_t N, detail::SamplesOf<T, N> In>
Status rfft(In&& in, HalfSpectrum<layout, T, N> X, Scale scale) {
    using Family = typename detail::Real<T, layout>::Forward;
    const auto x = std::span(in);
    if constexpr (N != detail::dynamic) {
        if (!detail::has<N>(x)) return Status::errExtent;
        return detail::runFixed<Family, N>(x, X.data(), scale);
    } else {
        const auto n = static_cast<std::size_t>(X.length().value);
        return detail::runAny<Family>(detail::dynamicSpan(x), std::span(X.data(), X.size()), n,
                                      elementsOf(layout, n), X.length(), scale);
    }
}
template <std::size_t N, Layout layout, detail::RealElement T, detail::SamplesOf<T, N> In>
Status rfft(In&& in, HalfSpectrum<layout, T, detail::Given<N>::value> X, Scale scale) {
    return orvgen::rfft(std::forward<In>(in), X, scale);
}

// Its inverse: x[n] = s sum_k X[k] exp(2 pi i nk / N), the sum over all N bins.
template <Layout layout, class T, std::size_t N, detail::NewSamplesOf<T, N> Out>
Status irfft(HalfSpectrum<layout, T, N> X, Out&& out, Scale scale) {
    using Family = typename detail::Real<std::remove_const_t<T>, layout>::Inverse;
    const auto x = std::span(out);
    if constexpr (N != detail::dynamic) {
        if (!detail::has<N>(x)) return Status::errExtent;
        return detail::runFixed<Family, N>(std::span(X.data(), X.size()), x.data(), scale);
    } else {
        const auto n = static_cast<std::size_t>(X.length().value);
        return detail::runAny<Family>(std::span(X.data(), X.size()), detail::dynamicSpan(x),
                                      elementsOf(layout, n), n, X.length(), scale);
    }
}
template <std::size_t N, Layout layout, class T, detail::NewSamplesOf<T, N> Out>
Status irfft(HalfSpectrum<layout, T, detail::Given<N>::value> X, Out&& out, Scale scale) {
    return orvgen::irfft(X, std::forward<Out>(out), scale);
}

}  // namespace orvgen

#endif
