// SPDX-License-Identifier: MIT
// The index maps against what they are for: a sum over the maps is the transform's own sum.
#include "plan/index_maps.h"

#include <gtest/gtest.h>

#include <numeric>
#include <set>

namespace orvgen::test {
namespace {

using namespace orvgen::plan;

// Samples and bins each come once.
template <class Map>
void expectPermutations(const Map& map) {
    std::set<long> samples, bins;
    for (long k = 0; k < map.R; ++k)
        for (long c = 0; c < map.M; ++c) {
            samples.insert(map.sample(c, k));
            bins.insert(map.bin(k, c));
        }
    EXPECT_EQ(static_cast<long>(samples.size()), map.R * map.M);
    EXPECT_EQ(static_cast<long>(bins.size()), map.R * map.M);
    EXPECT_EQ(*samples.rbegin(), map.R * map.M - 1);
    EXPECT_EQ(*bins.rbegin(), map.R * map.M - 1);
}

// The exponents of the two stages add up to that of the whole transform, modulo N.
TEST(IndexMaps, OfGoodThomasSplitTheRoots) {
    for (long R = 2; R < 12; ++R)
        for (long M = 2; M < 12; ++M) {
            if (std::gcd(R, M) != 1) continue;
            const GoodThomasMap map{R, M};
            const long N = R * M;
            expectPermutations(map);
            for (long k = 0; k < R; ++k)
                for (long q = 0; q < M; ++q)
                    for (long t = 0; t < R; ++t)
                        for (long c = 0; c < M; ++c) {
                            // w(R) = w(N)^M, w(M) = w(N)^R
                            EXPECT_EQ(map.sample(c, t) * map.bin(k, q) % N,
                                      (M * (M * t * k) + R * (R * c * q)) % N);
                            EXPECT_EQ(map.sample(c, t) * map.binOfResidues(k, q) % N,
                                      (M * t * k + R * c * q) % N);
                        }
        }
}

TEST(IndexMaps, OfCooleyTukeySplitTheRoots) {
    for (long R = 2; R < 9; ++R)
        for (long M = 2; M < 9; ++M) {
            const CooleyTukeyMap map{R, M};
            const long N = R * M;
            expectPermutations(map);
            // also by other representatives of the columns
            for (const long step : {1L, M + 1})
                for (long k = 0; k < R; ++k)
                    for (long q = 0; q < M; ++q)
                        for (long t = 0; t < R; ++t)
                            for (long c = 0; c < M * step; c += step)
                                EXPECT_EQ(map.sample(c, t) * map.bin(k, q) % N,
                                          (M * t * k + map.twiddle(c, k) + R * c * q) % N);
        }
}

}  // namespace
}  // namespace orvgen::test
