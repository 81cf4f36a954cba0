// SPDX-License-Identifier: MIT
// What stands in the buffer between the passes is the working array of the layer-by-layer
// transform.
#include <gtest/gtest.h>

#include "memory.h"
#include "reference.h"
#include "wht/functions.h"

namespace {

using namespace orvgen::test;

template <class T>
struct Stages : testing::Test {};
using Reals = testing::Types<Orv32f, Orv64f>;
TYPED_TEST_SUITE(Stages, Reals);

// N distinct values: a permutation of 1 to N with signs, scaled so that sums round.
template <class T>
std::vector<T> distinctValues(std::size_t n) {
    std::vector<T> x(n);
    for (std::size_t i = 0; i < n; ++i)
        x[i] = static_cast<T>((i * 2731 + 17) % n + 1) * static_cast<T>(i % 3 == 1 ? -0.1 : 0.1);
    return x;
}

TYPED_TEST(Stages, LeaveTheWorkingArrayInTheBuffer) {
    using T = TypeParam;
    int orders = 0;
    for (const DataRow& row : dataTable("wht_passes").rows()) {
        if (row.text("type") != typeName<T>) continue;
        ++orders;
        const long order = row.integer("order");
        const auto& f = orderFunctions<T>()[static_cast<std::size_t>(order - 1)];
        const std::size_t n = f.points();
        const std::vector<long> layers = row.integers("layers");
        const bool tiled = row.integer("tiles") > 0;
        const std::vector<T> x = distinctValues<T>(n);

        // The main array: what the last pass finds.
        std::vector<T> main = x;
        applyLayers(main, 0, static_cast<int>(tiled ? layers[0] + layers[1] : layers[0]));
        // The tile scratch behind it: the blocks of the last tile.
        std::vector<T> scratch;
        if (tiled) {
            const auto tile =
                static_cast<std::ptrdiff_t>(row.integer("blocks") * row.integer("block_size"));
            scratch.assign(x.end() - tile, x.end());
            applyLayers(scratch, 0, static_cast<int>(layers[0]));
        }
        ASSERT_EQ((main.size() + scratch.size()) * sizeof(T), f.bufferBytes()) << f.name;

        for (const std::size_t displacement : {std::size_t{0}, sizeof(T)}) {
            for (const int garbage : {0xff, 0x00}) {
                const AlignedArray<T> src(n, displacement), dst(n, displacement);
                const AlignedArray<T> buffer(main.size() + scratch.size());
                std::copy(x.begin(), x.end(), src.data());
                buffer.poison(garbage);
                ASSERT_EQ(f.kernel(src.data(), dst.data(), orvScaleBySqrtN,
                                   reinterpret_cast<std::uint8_t*>(buffer.data())),
                          orvOk);
                for (std::size_t i = 0; i < n; ++i)
                    ASSERT_TRUE(sameBytes(&buffer[i], &main[i], 1))
                        << f.name << " off by " << displacement << ", main array at " << i;
                for (std::size_t i = 0; i < scratch.size(); ++i)
                    ASSERT_TRUE(sameBytes(&buffer[n + i], &scratch[i], 1))
                        << f.name << " off by " << displacement << ", tile scratch at " << i;
            }
        }
    }
    EXPECT_EQ(orders, 6);
}

}  // namespace
