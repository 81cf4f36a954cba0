// SPDX-License-Identifier: MIT
// Half spectra of real data: views that know how the three layouts of orvgen.h place the bins.
#ifndef ORVGEN_HALF_SPECTRUM_HPP
#define ORVGEN_HALF_SPECTRUM_HPP

#include <cassert>
#include <complex>
#include <cstddef>
#include <orvgen/arrays.hpp>
#include <orvgen/values.hpp>
#include <span>
#include <type_traits>

namespace orvgen {

//     N even   ccs    R0  0  R1 I1 R2 I2 ... R[N/2]  0      N + 2 elements
//              pack   R0 R1 I1 R2 I2 ... R[N/2]             N
//              perm   R0 R[N/2] R1 I1 R2 I2 ...             N
//     N odd    ccs    R0  0  R1 I1 R2 I2 ...                N + 1
//              pack   R0 R1 I1 R2 I2 ...                    N
//              perm   the same as pack                      N
enum class Layout { ccs, pack, perm };

// Elements of a half spectrum of n samples.
constexpr std::size_t elementsOf(Layout layout, std::size_t n) noexcept {
    return layout == Layout::ccs ? 2 * (n / 2 + 1) : n;
}

// The half spectrum of N samples in an array of real numbers that it does not own; T is float or
// double, const where the bins are only read, and N is left out where it is known only at run time.
// Of a view whose array has not the right extent valid() is false and the transforms refuse it with
// Status::errExtent; its bins may not be asked for.
template <Layout layout, detail::RealOrConst T, std::size_t N = std::dynamic_extent>
class HalfSpectrum {
    static constexpr bool fixed = N != std::dynamic_extent;
    using Complex = std::complex<std::remove_const_t<T>>;
    using Bin = std::conditional_t<std::is_const_v<T>, const Complex, Complex>;

  public:
    using Real = std::remove_const_t<T>;
    // Of the array; dynamic where N is.
    static constexpr std::size_t extent = fixed ? elementsOf(layout, N) : std::dynamic_extent;

    // In an array of real numbers.
    constexpr explicit HalfSpectrum(std::span<T, extent> array) noexcept requires fixed
        : stored(array) {}
    constexpr HalfSpectrum(std::span<T> array, Length n) noexcept requires(!fixed)
        : stored(array), points(n) {}

    // In an array of bins, which is what CCS is.
    explicit HalfSpectrum(std::span<Bin, fixed ? N / 2 + 1 : std::dynamic_extent> bins) noexcept
        requires(fixed&& layout == Layout::ccs)
        : stored(std::span<T, extent>(reinterpret_cast<T*>(bins.data()), extent)) {}
    HalfSpectrum(std::span<Bin> bins, Length n) noexcept requires(!fixed && layout == Layout::ccs)
        : stored(reinterpret_cast<T*>(bins.data()), 2 * bins.size()), points(n) {}

    // As one that is only read, or whose N is not known to the compiler.
    template <detail::ReadAs<T> U>
    constexpr HalfSpectrum(const HalfSpectrum<layout, U, N>& other) noexcept
        : stored(other.data(), other.size()), points(other.length()) {}
    template <detail::ReadAs<T> U, std::size_t M>
    constexpr HalfSpectrum(const HalfSpectrum<layout, U, M>& other) noexcept requires(!fixed)
        : stored(other.data(), other.size()), points(other.length()) {}

    constexpr T* data() const noexcept { return stored.data(); }
    constexpr std::size_t size() const noexcept { return stored.size(); }
    // N, the number of samples.
    constexpr Length length() const noexcept {
        if constexpr (fixed)
            return Length{N};
        else
            return points;
    }
    // The array has as many elements as the layout asks for.
    constexpr bool valid() const noexcept {
        return fixed || (length().value >= 1 && size() == elementsOf(layout, n()));
    }
    // Of the stored half: N / 2 + 1.
    constexpr std::size_t bins() const noexcept { return n() / 2 + 1; }

    // X[k] for any k below N: those above N / 2 are conjugates of stored ones.
    constexpr Complex bin(std::size_t k) const noexcept {
        assert(valid() && k < n());
        if (k > n() / 2) return std::conj(bin(n() - k));
        return {stored[realAt(k)], isReal(k) ? Real{0} : stored[realAt(k) + 1]};
    }
    // Of the bins that are real, numbers 0 and, for even N, N / 2, the imaginary part is dropped.
    constexpr void setBin(std::size_t k, Complex value) const noexcept
        requires(!std::is_const_v<T>) {
        assert(valid() && k < n());
        if (k > n() / 2) return setBin(n() - k, std::conj(value));
        stored[realAt(k)] = value.real();
        if (!isReal(k)) stored[realAt(k) + 1] = value.imag();
        if (isReal(k) && layout == Layout::ccs) stored[realAt(k) + 1] = Real{0};
    }

  private:
    std::span<T, extent> stored;
    // Where N is a constant the view is a pointer and no more.
    struct Nothing {
        constexpr Nothing() noexcept = default;
        constexpr explicit Nothing(Length) noexcept {}
    };
    [[no_unique_address]] std::conditional_t<fixed, Nothing, Length> points;

    constexpr std::size_t n() const noexcept { return static_cast<std::size_t>(length().value); }
    constexpr bool isReal(std::size_t k) const noexcept { return k == 0 || 2 * k == n(); }
    // Where R[k] stands; I[k], where it is stored, stands behind it.
    constexpr std::size_t realAt(std::size_t k) const noexcept {
        if (layout == Layout::ccs) return 2 * k;
        if (layout == Layout::pack || n() % 2 == 1) return k == 0 ? 0 : 2 * k - 1;
        return 2 * k == n() ? 1 : 2 * k;
    }
};

template <detail::RealOrConst T, std::size_t N = std::dynamic_extent>
using Ccs = HalfSpectrum<Layout::ccs, T, N>;
template <detail::RealOrConst T, std::size_t N = std::dynamic_extent>
using Pack = HalfSpectrum<Layout::pack, T, N>;
template <detail::RealOrConst T, std::size_t N = std::dynamic_extent>
using Perm = HalfSpectrum<Layout::perm, T, N>;

}  // namespace orvgen

#endif
