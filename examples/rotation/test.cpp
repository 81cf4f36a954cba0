// SPDX-License-Identifier: MIT
// The rotation against its definition, bit by bit against the single functions, and frozen.
#include <gtest/gtest.h>
#include <orvgen_batch.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>

#include "bad_input.h"
#include "recall.h"
#include "rotation.h"

namespace {

// Eighths of integers.
std::vector<float> numbers(std::size_t count) {
    std::vector<float> x(count);
    std::mt19937 random(6);
    for (float& value : x) value = static_cast<float>(static_cast<int>(random() % 2001) - 1000) / 8;
    return x;
}

// FNV-1a over the bytes.
std::uint64_t digest(const std::vector<float>& x) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const float value : x) {
        const auto bits = std::bit_cast<std::uint32_t>(value);
        for (int shift = 0; shift < 32; shift += 8)
            hash = (hash ^ (bits >> shift & 0xff)) * 0x100000001b3;
    }
    return hash;
}

std::vector<float> turned(int size, std::vector<float> x) {
    Rotation(size).apply(x.data(), x.size() / static_cast<std::size_t>(size));
    return x;
}

constexpr std::uint32_t allTargets[] = {orvTargetSSE2, orvTargetAVX2, orvTargetAVX512};

// What is stored today must be found tomorrow: the bits never change, on no processor.
TEST(Rotation, IsFrozen) {
    const struct {
        int size;
        std::uint64_t digest;
    } frozen[] = {{384, 0x275744b2bef3f6bf},
                  {768, 0xabd7e1db9a9163ce},
                  {1024, 0x62981132cd006e2d},
                  {1536, 0xb76ad92a9c9adf67}};
    for (const std::uint32_t target : allTargets) {
        if ((orvgBatchTargets() & target) == 0) continue;
        ASSERT_EQ(orvgBatchUse(target), orvOk);
        for (const auto& f : frozen)
            EXPECT_EQ(digest(turned(f.size, numbers(static_cast<std::size_t>(11 * f.size)))),
                      f.digest)
                << f.size << " on target " << target;
    }
    ASSERT_EQ(orvgBatchUse(0), orvOk);
}

// The signs, as the turn of unit vectors shows them: element 0 of the turned vector is the sign
// over the root of the size.
std::vector<float> signsOf(int size) {
    std::vector<float> signs;
    for (int i = 0; i < size; ++i) {
        std::vector<float> x(static_cast<std::size_t>(size));
        x[static_cast<std::size_t>(i)] = 1;
        signs.push_back(std::copysign(1.0F, turned(size, x)[0]));
    }
    return signs;
}

TEST(Rotation, IsSignsThenHadamardThenHartley) {
    for (const int size : {24, 96, 384}) {
        const Rotation rotation(size);
        const int row = 1 << rotation.order(), m = rotation.odd();
        const std::vector<float> x = numbers(static_cast<std::size_t>(size)), signs = signsOf(size);
        const std::vector<float> y = turned(size, x);
        for (int r = 0; r < m; ++r)
            for (int k = 0; k < row; ++k) {
                double sum = 0;
                for (int s = 0; s < m; ++s)
                    for (int j = 0; j < row; ++j) {
                        const auto i = static_cast<std::size_t>(s * row + j);
                        const double angle = 2 * std::numbers::pi * (r * s % m) / m;
                        const int sign = std::popcount(static_cast<unsigned>(j & k)) % 2 ? -1 : 1;
                        sum += signs[i] * static_cast<double>(x[i]) * sign *
                               (std::cos(angle) + std::sin(angle));
                    }
                EXPECT_NEAR(y[static_cast<std::size_t>(r * row + k)], sum / std::sqrt(size), 1e-3);
            }
    }
}

TEST(Rotation, UsesEachSignAboutEquallyOften) {
    const std::vector<float> signs = signsOf(1536);
    EXPECT_NEAR(static_cast<double>(std::count(signs.begin(), signs.end(), 1.0F)), 768, 60);
}

TEST(Rotation, HasTheBitsOfTheSingleFunctions) {
    for (const int size : {384, 1536}) {
        const Rotation rotation(size);
        const auto row = std::size_t{1} << rotation.order();
        const auto m = static_cast<std::size_t>(rotation.odd());
        std::vector<float> x = numbers(static_cast<std::size_t>(3 * size));
        const std::vector<float> y = turned(size, x), signs = signsOf(size);
        alignas(16) static std::uint8_t buffer[1 << 17];
        for (std::size_t i = 0; i < x.size(); ++i) x[i] *= signs[i % signs.size()];
        for (std::size_t at = 0; at < x.size(); at += row)
            ASSERT_EQ(orvgWHT_32f(&x[at], &x[at], rotation.order(), orvScaleBySqrtN, buffer),
                      orvOk);
        for (std::size_t at = 0; at < x.size(); at += row * m)
            for (std::size_t k = 0; k < row; ++k) {
                std::vector<float> column;
                for (std::size_t r = 0; r < m; ++r) column.push_back(x[at + r * row + k]);
                ASSERT_EQ(
                    orvgHartley_32f(column.data(), column.data(), rotation.odd(), orvScaleBySqrtN),
                    orvOk);
                for (std::size_t r = 0; r < m; ++r) x[at + r * row + k] = column[r];
            }
        EXPECT_EQ(std::memcmp(x.data(), y.data(), x.size() * sizeof(float)), 0) << size;
    }
}

TEST(Rotation, RefusesOtherSizes) {
    for (const int size : {-2, 0, 1, 3, 65 * 2, 16384, 2 * 16384 * 3})
        EXPECT_THROW(Rotation{size}, BadInput);
    EXPECT_EQ(Rotation(63 * 8192).odd(), 63);
}

// Quantised elements are those of 2^bits levels, and the nearer the more bits.
TEST(Recall, QuantisesToTheLevels) {
    Vectors v{1000, {}};
    std::mt19937 random(1);
    std::normal_distribution<float> normal;
    for (int i = 0; i < 1000; ++i) v.elements.push_back(normal(random));
    // What is left of the variance, by the article that the steps are from.
    constexpr double left[] = {1, 0.3634, 0.1188, 0.03744, 0.01154};
    for (int bits = 1; bits <= 4; ++bits) {
        const Vectors q = quantised(v, bits);
        std::vector<float> levels = q.elements;
        std::sort(levels.begin(), levels.end());
        const auto distinct = std::unique(levels.begin(), levels.end()) - levels.begin();
        EXPECT_EQ(distinct, 1 << bits);
        double error = 0;
        for (std::size_t i = 0; i < 1000; ++i) {
            const double difference = q.elements[i] - v.elements[i];
            error += difference * difference / 1000;
        }
        EXPECT_NEAR(error, left[bits], 0.15 * left[bits]);
    }
}

// Vectors that differ in a few large elements only: turned they are found, plain they are not.
TEST(Recall, GainsByTheRotation) {
    constexpr std::size_t size = 384, count = 320;
    Vectors v{size, std::vector<float>(size * count)};
    std::mt19937 random(2);
    std::normal_distribution<float> normal;
    for (std::size_t t = 0; t < count; ++t)
        for (std::size_t i = 0; i < 12; ++i) v.elements[t * size + i] = normal(random);
    Vectors turnedVectors{size, turned(size, v.elements)};
    EXPECT_DOUBLE_EQ(recall(v, v), 1);
    const double plain = recall(v, quantised(v, 2));
    EXPECT_GT(recall(turnedVectors, quantised(turnedVectors, 2)), plain + 0.1) << plain;
}

}  // namespace
