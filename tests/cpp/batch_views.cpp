// SPDX-License-Identifier: MIT
// The views of batches: which shapes are valid, found by looking at every element; where they are.
#include <gtest/gtest.h>

#include <array>
#include <orvgen_batch.hpp>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orvgen::test {
namespace {

using batch::Shape;

// Every index of the shape, as it is defined.
std::vector<std::ptrdiff_t> indicesOf(const Shape& shape) {
    std::vector<std::ptrdiff_t> indices;
    for (std::size_t t = 0; t < shape.count; ++t)
        for (std::size_t j = 0; j < shape.elements; ++j)
            indices.push_back(shape.origin + static_cast<std::ptrdiff_t>(j) * shape.stride +
                              static_cast<std::ptrdiff_t>(t) * shape.distance);
    return indices;
}

// Of arrays that outlive the view, and of spans.
template <class A>
concept HasRows = requires(A&& a) {
    batch::rows(std::forward<A>(a), 8);
};
template <class A>
concept HasColumns = requires(A&& a) {
    batch::columns(std::forward<A>(a), 8);
};
template <class A>
concept HasFrames = requires(A&& a) {
    batch::frames(std::forward<A>(a), 8, 4);
};
template <class A>
constexpr int viewsOf = HasRows<A> + HasColumns<A> + HasFrames<A>;
static_assert(viewsOf<std::vector<float>&> == 3 && viewsOf<const std::vector<float>&> == 3);
static_assert(viewsOf<float (&)[64]> == 3 && viewsOf<std::array<float, 64>&> == 3);
static_assert(viewsOf<std::span<float>> == 3 && viewsOf<std::span<const float, 64>> == 3);
static_assert(viewsOf<std::vector<float>> == 0 && viewsOf<std::array<float, 64>> == 0);
static_assert(viewsOf<float*> == 0);

TEST(BatchViews, AreValidWhereEveryElementIsInsideAndDistinct) {
    int inside = 0, outside = 0, repeated = 0;
    std::vector<float> memory(24);
    for (std::size_t elements = 0; elements <= 4; ++elements)
        for (std::size_t count = 0; count <= 4; ++count)
            for (std::ptrdiff_t stride = -7; stride <= 7; ++stride)
                for (std::ptrdiff_t distance = -7; distance <= 7; ++distance)
                    for (const std::ptrdiff_t origin : {-1, 0, 5, 12, 23, 24}) {
                        const Shape shape{elements, count, stride, distance, origin};
                        const auto indices = indicesOf(shape);
                        bool within = true;
                        for (const std::ptrdiff_t i : indices) within &= i >= 0 && i < 24;
                        const bool distinct =
                            std::set(indices.begin(), indices.end()).size() == indices.size();
                        const batch::View<const float> read(memory, shape);
                        const batch::View<float> written(memory, shape);
                        ASSERT_EQ(read.valid(), within) << elements << ' ' << count << ' ' << stride
                                                        << ' ' << distance << ' ' << origin;
                        ASSERT_EQ(written.valid(), within && distinct)
                            << elements << ' ' << count << ' ' << stride << ' ' << distance << ' '
                            << origin;
                        ++(!within ? outside : distinct ? inside : repeated);
                        for (std::size_t i = 0; written.valid() && i < indices.size(); ++i) {
                            const float* at = &written(i / elements, i % elements);
                            ASSERT_EQ(at - memory.data(), indices[i]);
                        }
                    }
    EXPECT_GT(inside, 1000);
    EXPECT_GT(outside, 1000);
    EXPECT_GT(repeated, 1000);
}

TEST(BatchViews, DoNotOverflow) {
    constexpr std::ptrdiff_t most = PTRDIFF_MAX;
    float one = 0;
    const std::span<const float> memory(&one, 1);
    for (const Shape& shape :
         {Shape{2, 1, most, 0, 1}, Shape{3, 1, most, 0, 0}, Shape{2, 2, most, most, 0},
          Shape{2, 2, PTRDIFF_MIN, PTRDIFF_MIN, 0}, Shape{SIZE_MAX, 1, 1, 0, 0},
          Shape{SIZE_MAX, SIZE_MAX, 1, 1, 0}, Shape{3, 2, PTRDIFF_MIN, 1, 0}})
        EXPECT_FALSE(batch::View<const float>(memory, shape).valid());
    EXPECT_TRUE(batch::View<const float>(memory, Shape{SIZE_MAX, 5, 0, 0, 0}).valid());
}

TEST(BatchViews, AreRowsColumnsAndFrames) {
    std::vector<double> matrix(6 * 5);
    const auto rows = batch::rows(matrix, 5);
    EXPECT_EQ(rows.shape(), (Shape{5, 6, 1, 5, 0}));
    EXPECT_EQ(&rows(2, 3), &matrix[2 * 5 + 3]);
    const auto columns = batch::columns(matrix, 5);
    EXPECT_EQ(columns.shape(), (Shape{6, 5, 5, 1, 0}));
    EXPECT_EQ(&columns(3, 2), &matrix[2 * 5 + 3]);
    const std::vector<double>& constant = matrix;
    const auto frames = batch::frames(constant, 8, 3);
    EXPECT_EQ(frames.shape(), (Shape{8, 8, 1, 3, 0}));
    EXPECT_EQ(&frames(7, 7), &matrix[28]);
    EXPECT_TRUE(frames.valid());
    EXPECT_FALSE(batch::frames(matrix, 8, 3).valid());  // written twice
    EXPECT_TRUE(batch::frames(matrix, 8, 8).valid());
    EXPECT_EQ(batch::frames(matrix, 31, 1).count(), 0U);
    EXPECT_EQ(batch::rows(matrix, 0).count(), 0U);
    EXPECT_EQ(batch::rows(matrix, 7).count(), 4U);
    static_assert(std::is_same_v<decltype(frames), const batch::View<const double>>);
    static_assert(std::is_convertible_v<batch::View<double>, batch::View<const double>>);
    static_assert(!std::is_convertible_v<batch::View<const double>, batch::View<double>>);
}

}  // namespace
}  // namespace orvgen::test
