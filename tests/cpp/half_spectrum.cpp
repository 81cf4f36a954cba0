// SPDX-License-Identifier: MIT
// The views of half spectra against the table of positions.
#include <set>

#include "cpp/typed.h"
#include "support/packed_format.h"

namespace orvgen::test {
namespace {

const char* nameOf(Layout layout) {
    return layout == Layout::ccs ? "ccs" : layout == Layout::pack ? "pack" : "perm";
}

// The elements of the array are numbered from 1, so that a bin tells where it came from.
template <Layout layout>
void readBins(int length) {
    SCOPED_TRACE(std::string(nameOf(layout)) + ", " + std::to_string(length) + " points");
    const PackedFormat format(nameOf(layout), length);
    const auto n = static_cast<std::size_t>(length);
    ASSERT_EQ(elementsOf(layout, n), static_cast<std::size_t>(format.size()));
    std::vector<double> array(static_cast<std::size_t>(format.size()));
    for (std::size_t i = 0; i < array.size(); ++i) array[i] = static_cast<double>(i + 1);
    const HalfSpectrum<layout, const double> X(array, Length{length});
    ASSERT_TRUE(X.valid());
    ASSERT_EQ(X.bins(), n / 2 + 1);

    for (std::size_t k = 0; k < n; ++k) {
        const bool mirrored = k > n / 2;
        const auto stored = static_cast<int>(mirrored ? n - k : k);
        const bool real = stored == 0 || 2 * stored == length;
        const double re = 1 + format.indexOf({stored, false});
        const double im = real ? 0 : 1 + format.indexOf({stored, true});
        EXPECT_EQ(X.bin(k), std::complex<double>(re, mirrored ? -im : im)) << "bin " << k;
    }
}

// Every bin written comes back, and nothing else changes but a zero of CCS.
template <Layout layout>
void writeBins(int length) {
    SCOPED_TRACE(std::string(nameOf(layout)) + ", " + std::to_string(length) + " points");
    const auto n = static_cast<std::size_t>(length);
    for (std::size_t k = 0; k < n; ++k) {
        std::vector<float> array(elementsOf(layout, n), 7.0F);
        const HalfSpectrum<layout, float> X(array, Length{length});
        std::vector<std::complex<float>> before(n);
        for (std::size_t j = 0; j < n; ++j) before[j] = X.bin(j);
        X.setBin(k, {3, 5});
        const bool real = k == 0 || 2 * k == n;
        for (std::size_t j = 0; j < n; ++j) {
            const std::complex<float> written(3, real ? 0.0F : 5.0F);
            const auto wanted = j == k ? written : j + k == n ? std::conj(written) : before[j];
            EXPECT_EQ(X.bin(j), wanted) << "bin " << j << " after bin " << k;
        }
        if (real && layout == Layout::ccs) {
            EXPECT_EQ(array[2 * k + 1], 0);
        }
    }
}

TEST(HalfSpectrum, BinsAreWhereTheTableSays) {
    for (int n = 2; n <= 64; ++n) {
        readBins<Layout::ccs>(n);
        readBins<Layout::pack>(n);
        readBins<Layout::perm>(n);
    }
}

TEST(HalfSpectrum, BinsAreWritten) {
    for (int n = 2; n <= 64; ++n) {
        writeBins<Layout::ccs>(n);
        writeBins<Layout::pack>(n);
        writeBins<Layout::perm>(n);
    }
}

TEST(HalfSpectrum, CcsLiesInAnArrayOfBins) {
    std::array<std::complex<double>, 13> bins{};
    bins[3] = {1, 2};
    const Ccs<double, 24> X(bins);
    EXPECT_EQ(X.bin(3), bins[3]);
    X.setBin(24 - 5, {4, 8});
    EXPECT_EQ(bins[5], std::complex<double>(4, -8));
    const Ccs<const double> read(X);
    EXPECT_EQ(read.length(), Length{24});
    EXPECT_EQ(read.bin(5), bins[5]);
    std::vector<std::complex<double>> more(13);
    EXPECT_TRUE(Ccs<double>(more, Length{24}).valid());
    EXPECT_TRUE(Ccs<double>(more, Length{25}).valid());
    EXPECT_FALSE(Ccs<double>(more, Length{26}).valid());
    EXPECT_FALSE(Ccs<double>(more, Length{}).valid());
}

}  // namespace
}  // namespace orvgen::test
