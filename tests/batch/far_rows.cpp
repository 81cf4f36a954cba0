// SPDX-License-Identifier: MIT
// Rows and columns that no cache holds: which of them are left to the single functions, and that
// nobody sees it in the results.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "batch/families.h"
#include "batch/targets.h"

namespace orvgen::test::batch {
namespace {

using orvgen::batch::Kind;
using orvgen::batch::Task;

// Bytes of both sides together beyond which rows are far (docs/batch.md).
constexpr std::size_t farBytes = std::size_t{16} << 20;

struct WideTarget {
    std::uint32_t target;
    std::size_t (*single)(const Task<float>&);
    std::size_t (*dual)(const Task<double>&);

    std::size_t run(const Task<float>& task) const { return single(task); }
    std::size_t run(const Task<double>& task) const { return dual(task); }
};
std::vector<WideTarget> wideTargets() {
    std::vector<WideTarget> list;
#if ORVGEN_BATCH_HAS_AVX2
    list.push_back(
        {orvTargetAVX2, orvgen::batch::runBlocksAvx2<float>, orvgen::batch::runBlocksAvx2<double>});
#endif
#if ORVGEN_BATCH_HAS_AVX512
    list.push_back({orvTargetAVX512, orvgen::batch::runBlocksAvx512<float>,
                    orvgen::batch::runBlocksAvx512<double>});
#endif
    std::erase_if(list, [](const WideTarget& t) { return (orvgBatchTargets() & t.target) == 0; });
    return list;
}

// Rows side by side, in memory of which `rows` transforms use both sides.
template <class R>
class Rows {
  public:
    Rows(Kind kind, int n)
        : kind_(kind), n_(n), row_(static_cast<std::size_t>(isPairs() ? 2 * n : n)) {}

    // The most rows that are not far.
    std::size_t near() const { return farBytes / (2 * row_ * sizeof(R)); }
    // A task without memory: for what is left to the single functions at once.
    Task<R> task(std::size_t count) const {
        static R x[2], y[2];
        return task(count, x, y);
    }
    Task<R> task(std::size_t count, const R* x, R* y) const {
        const auto layout = isPairs() ? orvgen::Layout::Complex : orvgen::Layout::Real;
        const std::ptrdiff_t stride = isPairs() ? 2 : 1,
                             distance = static_cast<std::ptrdiff_t>(row_);
        return {.kind = kind_,
                .n = n_,
                .srcLayout = layout,
                .dstLayout = layout,
                .readsBehind = false,
                .src = {x, isPairs() ? x + 1 : nullptr, stride, distance},
                .dst = {y, isPairs() ? y + 1 : nullptr, stride, distance},
                .count = count,
                .flag = orvScaleNone,
                .scale = orvgen::batch::scaleNone,
                .single = nullptr};
    }
    std::size_t row() const { return row_; }

  private:
    bool isPairs() const { return kind_ == Kind::Forward || kind_ == Kind::Inverse; }

    Kind kind_;
    int n_;
    std::size_t row_;
};

TEST(FarRows, AreLeftToTheSingleFunctionsWhereTheseAreFaster) {
    for (const WideTarget& t : wideTargets()) {
        SCOPED_TRACE(nameOf(t.target));
        // A row more than is near: nothing is done, and nothing touched.
        for (const int n : {8, 16, 32, 48, 64}) {
            const Rows<double> rows(Kind::Hartley, n);
            EXPECT_EQ(t.run(rows.task(rows.near() + 1)), 0U) << n;
        }
        for (const int n : {8, 15, 16, 20})
            for (const Kind kind : {Kind::Forward, Kind::Inverse}) {
                const Rows<double> rows(kind, n);
                EXPECT_EQ(t.run(rows.task(rows.near() + 1)), 0U) << n;
            }
        for (const int n : {14, 30, 60}) {
            const Rows<float> rows(Kind::Forward, n);
            EXPECT_EQ(t.run(rows.task(rows.near() + 1)), 0U) << n;
        }
    }
}

// How many of so many rows are done in lanes.
template <class R>
std::size_t doneInLanes(const WideTarget& t, const Rows<R>& rows, std::size_t count) {
    std::vector<R> x(count * rows.row(), 1), y(x.size());
    return t.run(rows.task(count, x.data(), y.data()));
}

TEST(FarRows, AreDoneInLanesWhereTheseAreFaster) {
    for (const WideTarget& t : wideTargets()) {
        SCOPED_TRACE(nameOf(t.target));
        const auto expectLanes = [&](const auto& rows, std::size_t count) {
            EXPECT_GT(doneInLanes(t, rows, count), 0U);
        };
        // Near ones always.
        const Rows<double> hartley(Kind::Hartley, 16), complex(Kind::Forward, 16);
        expectLanes(hartley, hartley.near());
        expectLanes(complex, complex.near());
        // Of the far ones: calls that are too short, arithmetic that takes longer than the memory,
        // kernels for rows.
        for (const int n : {2, 47, 59}) {
            const Rows<double> rows(Kind::Hartley, n);
            expectLanes(rows, rows.near() + 1);
        }
        for (const int n : {2, 48, 64}) {
            const Rows<double> dual(Kind::Forward, n);
            expectLanes(dual, dual.near() + 1);
            const Rows<float> single(Kind::Inverse, n);
            expectLanes(single, single.near() + 1);
        }
        for (const int n : {2, 16, 64}) {
            const Rows<float> rows(Kind::Hartley, n);
            expectLanes(rows, rows.near() + 1);
        }
    }
}

// Only what is read and written counts, and only rows.
TEST(FarRows, AreMeasuredByTheMemoryThatTheyReach) {
    for (const WideTarget& t : wideTargets()) {
        SCOPED_TRACE(nameOf(t.target));
        const Rows<double> rows(Kind::Hartley, 16);
        const std::size_t count = rows.near() + 1;
        std::vector<double> x(count * 16, 1), y(count * 16);
        const Task<double> far = rows.task(count, x.data(), y.data());
        const auto done = [&](auto change) {
            Task<double> task = far;
            change(task);
            return t.run(task);
        };
        EXPECT_EQ(done([](auto&) {}), 0U);
        EXPECT_GT(done([](auto& task) { task.src.distance = 15; }), 0U) << "overlapping rows";
        EXPECT_GT(done([](auto& task) { task.src.distance = 0; }), 0U) << "one row for all";
        EXPECT_GT(done([&](auto& task) { task.src.re = y.data(); }), 0U) << "in place";
        const auto last = static_cast<std::ptrdiff_t>(16 * (count - 1));
        EXPECT_EQ(done([&](auto& task) {
                      task.src.re += last;
                      task.src.distance = -16;
                  }),
                  0U)
            << "from the last row on";
        const auto m = static_cast<std::ptrdiff_t>(count);
        EXPECT_GT(done([&](auto& task) {
                      task.src.stride = task.dst.stride = m;
                      task.src.distance = task.dst.distance = 1;
                  }),
                  0U)
            << "columns";
    }
}

// A batch of far rows with gaps between them, held against the single function.
template <class R>
void compareRows(const Family<R>& family, int number, int lanes, std::ptrdiff_t gap) {
    SCOPED_TRACE(family.name + " of " + std::to_string(number) + ", gap " + std::to_string(gap));
    const int points = family.points(number);
    const auto reals = [&](const Side& side) {
        return static_cast<std::size_t>(side.elements(points) * side.width);
    };
    const std::size_t in = reals(family.src), out = reals(family.dst);
    const auto inDistance = in + static_cast<std::size_t>(gap * family.src.width);
    const auto outDistance = out + static_cast<std::size_t>(gap * family.dst.width);
    const std::size_t count =
        farBytes / sizeof(R) / (in + out) + static_cast<std::size_t>(lanes) + 3;
    constexpr R poison = -7;
    std::vector<R> x(count * inDistance), y(count * outDistance, poison);
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<R>(i % 10007) / 10007 - R{0.4F};
    ASSERT_EQ(family.batch({{x.data(), nullptr}, 1, family.src.elements(points) + gap},
                           {{y.data(), nullptr}, 1, family.dst.elements(points) + gap}, number,
                           count, orvScaleBySqrtN),
              orvOk);
    std::vector<R> row(in + 4, 0), expected(out, poison);
    for (std::size_t t = 0; t < count; ++t) {
        std::copy_n(&x[t * inDistance], in, row.begin());
        ASSERT_EQ(family.single(row.data(), expected.data(), number, orvScaleBySqrtN), orvOk);
        const R* found = &y[t * outDistance];
        ASSERT_EQ(std::memcmp(found, expected.data(), out * sizeof(R)), 0) << "row " << t;
        for (std::size_t i = out; i < outDistance; ++i) ASSERT_EQ(found[i], poison) << "row " << t;
    }
}

template <class R>
void compareFamilies(std::uint32_t target) {
    // Of every way of far rows some lengths, and the two whose single functions read behind src.
    constexpr int lengths[] = {3, 16, 26, 47, 48, 59, 60};
    std::size_t turn = 0;
    for (const Family<R>& family : families<R>()) {
        if (family.byOrder || !family.scaled || family.src.planes != 1) continue;
        const bool complex = family.src.width == 2 && family.dst.width == 2;
        for (int i = 0; i < (complex ? 7 : 2); ++i, ++turn)
            compareRows(family, lengths[turn % 7], lanesOf<R>(target), turn % 2 == 0 ? 0 : 3);
    }
}

TEST(FarRows, HaveTheBitsOfTheSingleFunctions) {
    for (const std::uint32_t target : runnableTargets()) {
        SCOPED_TRACE(nameOf(target));
        ASSERT_EQ(orvgBatchUse(target), orvOk);
        compareFamilies<float>(target);
        compareFamilies<double>(target);
    }
    ASSERT_EQ(orvgBatchUse(0), orvOk);
}

// Far columns of complex elements, of which long ones are prefetched.
template <class R>
void compareColumns(const Family<R>& family, int n, int lanes) {
    SCOPED_TRACE(family.name + " of " + std::to_string(n));
    const auto row = static_cast<std::size_t>(2 * n);
    const std::size_t count =
        farBytes / sizeof(R) / (2 * row) + static_cast<std::size_t>(lanes) + 3;
    const auto m = static_cast<std::ptrdiff_t>(count);
    std::vector<R> x(count * row), y(x.size(), -7);
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<R>(i % 10007) / 10007 - R{0.4F};
    ASSERT_EQ(family.batch({{x.data(), nullptr}, m, 1}, {{y.data(), nullptr}, m, 1}, n, count,
                           orvScaleNone),
              orvOk);
    std::vector<R> column(row + 4, 0), expected(row), found(row);
    for (std::size_t t = 0; t < count; ++t) {
        for (std::size_t j = 0; j < row; ++j) {
            const std::size_t at = 2 * (j / 2 * count + t) + j % 2;
            column[j] = x[at];
            found[j] = y[at];
        }
        ASSERT_EQ(family.single(column.data(), expected.data(), n, orvScaleNone), orvOk);
        ASSERT_EQ(std::memcmp(found.data(), expected.data(), row * sizeof(R)), 0) << "column " << t;
    }
}

template <class R>
void compareColumnsOfFamilies(std::uint32_t target) {
    constexpr Side pairs = {.planes = 1, .width = 2, .bins = false};
    for (const Family<R>& family : families<R>())
        if (family.src == pairs && family.dst == pairs)
            for (const int n : {39, 48, 61}) compareColumns(family, n, lanesOf<R>(target));
}

TEST(FarColumns, HaveTheBitsOfTheSingleFunctions) {
    for (const std::uint32_t target : runnableTargets()) {
        SCOPED_TRACE(nameOf(target));
        ASSERT_EQ(orvgBatchUse(target), orvOk);
        compareColumnsOfFamilies<float>(target);
        compareColumnsOfFamilies<double>(target);
    }
    ASSERT_EQ(orvgBatchUse(0), orvOk);
}

}  // namespace
}  // namespace orvgen::test::batch
