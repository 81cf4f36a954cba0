// SPDX-License-Identifier: MIT
// Sizes and accepted lengths, against an arithmetic of their own.
#include "dct4/plan.h"

namespace orvgen::test::dct4 {
namespace {

constexpr std::int64_t elementWidth = sizeof(Real);
constexpr std::int64_t vectorWidth = 16 / elementWidth;

std::int64_t rounded(std::int64_t bytes) { return (bytes + 31) / 32 * 32; }

// The largest of 32, 16, 8, 4, 2 that divides h, from those that the size of h admits; 0 if none.
std::int64_t radixFor(std::int64_t h) {
    const std::int64_t largest = h < 4     ? 1
                                 : h < 16  ? 2
                                 : h < 32  ? 4
                                 : h < 128 ? 8
                                 : h < 512 ? 16
                                           : 32;
    for (std::int64_t r = largest; r > 1; r /= 2) {
        if (h % r == 0) return r;
    }
    return 0;
}

bool isLeaf(std::int64_t n) { return n == 2 || n == 4 || n == 8 || n == 16 || n == 32 || n == 64; }

// A sum as the next level up sees it: 32 bits, a negative one a failure.
bool handOn(std::int64_t& sum) {
    sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(sum)));
    return sum >= 0;
}

// The charge of a plan, from the chain of radices inward and then the sums outward; -1: refused.
std::int64_t charge(std::int64_t N) {
    const std::int64_t head = 32, slot = 32;  // a list node of 24 bytes, rounded
    if (N == 2 || N == 4 || N == 8 || N == 16 || N == 32) return 96 + 3 * head;

    const std::int64_t r = radixFor(N / 2);
    if (r == 0) return -1;
    const std::int64_t m = N / (2 * r);
    if (m % vectorWidth != 0 || r % vectorWidth != 0) return -1;
    struct Level {
        std::int64_t r, m;
    };
    std::vector<Level> levels;
    std::int64_t n = N / r;
    while (!isLeaf(n)) {
        const std::int64_t inner = radixFor(n / 2);
        if (inner == 0) return -1;
        levels.push_back({inner, n / (2 * inner)});
        n /= inner;
    }

    const std::int64_t record = 96;  // of env1, env2, env3, env4, env5, env7, env9
    const std::int64_t scratch = rounded(N * elementWidth);
    std::int64_t inner = record + 2 * head;  // the node of the innermost kernel
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        std::int64_t sum = inner + scratch + record + 3 * head + 128 + head;  // env7, env8
        sum += level->m * (2 * level->r - 2) * 16 + 64;                       // table, envlambda
        sum += 5 * slot;
        if (!handOn(sum)) return -1;
        inner = sum + record + 2 * head + 2 * slot;  // the env9 or env5 above
        if (!handOn(inner)) return -1;
    }
    std::int64_t stageOne = inner + record + 2 * head + 2 * slot;
    if (!handOn(stageOne)) return -1;
    std::int64_t stageTwo = m / vectorWidth * 2 * r * 16 + 2 * record + 3 * head + 64 + 3 * slot;
    if (!handOn(stageTwo)) return -1;
    std::int64_t top = stageOne + stageTwo + scratch + record + 3 * head + 64 + 5 * slot;
    return handOn(top) ? top : -1;
}

bool power(std::int64_t N) { return N > 0 && (N & (N - 1)) == 0; }

// The domain in words: 2 to 32, powers from 64 on, powers plus one from 33 (64f: 9) on.
bool inDomain(std::int64_t N) {
    if (power(N)) return N >= 2;
    return power(N - 1) && N >= (familyBits == 32 ? 33 : 9);
}

void expectSize(std::int64_t N) {
    std::int32_t size = -12345;
    const OrvStatus status = Exported::getSize(static_cast<std::int32_t>(N), &size);
    const std::int64_t bytes = charge(N);
    if (bytes < 0) {
        EXPECT_EQ(status, orvErrSize) << N;
        EXPECT_EQ(size, -12345) << N;
    } else {
        EXPECT_EQ(status, orvOk) << N;
        EXPECT_EQ(size, bytes + 64) << N;
    }
}

TEST(Dct4Sizes, FollowTheirArithmeticAtEveryLength) {
    for (std::int64_t N = -5; N <= 70000; ++N) {
        expectSize(N);
        EXPECT_EQ(charge(N) >= 0, inDomain(N)) << N;
    }
    for (int k = 0; k <= 30; ++k) {
        expectSize(std::int64_t{1} << k);
        expectSize((std::int64_t{1} << k) + 1);
    }
    expectSize(-2147483648LL);
    expectSize(2147483647);
}

TEST(Dct4Sizes, AndUseFollowTheTable) {
    for (const DataRow& row : table("sizes").rows()) {
        const auto N = static_cast<std::int32_t>(row.integer("length"));
        std::int32_t size = 0;
        EXPECT_EQ(Exported::getSize(N, &size), orvOk);
        EXPECT_EQ(size, row.integer("size" + familySuffix)) << N;
        Plan plan(N);
        EXPECT_EQ(plan.block.used(), row.integer("used" + familySuffix)) << N;
    }
}

TEST(Dct4Sizes, FollowTheSingleResults) {
    int checked = 0;
    for (const DataRow& row : table("size_edges").rows()) {
        if (row.integer("family") != familyBits) continue;
        ++checked;
        std::int32_t size = -12345;
        const auto N = static_cast<std::int32_t>(row.integer("length"));
        EXPECT_EQ(Exported::getSize(N, &size), row.integer("status")) << N;
        EXPECT_EQ(size, row.integer("status") == 0 ? row.integer("size") : -12345) << N;
    }
    EXPECT_GE(checked, 20);
}

TEST(Dct4Records, HaveTheListedSizes) {
    const std::pair<const char*, std::size_t> records[] = {{"env1", sizeof(Env1)},
                                                           {"env2", sizeof(Env2)},
                                                           {"env3", sizeof(Env3)},
                                                           {"env4", sizeof(Env4)},
                                                           {"env5", sizeof(Env5)},
                                                           {"env7", sizeof(Env7)},
                                                           {"env8", sizeof(Env8)},
                                                           {"env9", sizeof(Env9)},
                                                           {"envlambda", sizeof(EnvLambda)},
                                                           {"envfsplit", sizeof(EnvfSplit)},
                                                           {"envfCompose", sizeof(EnvfCompose)}};
    ASSERT_EQ(std::size(records), table("records").rows().size());
    for (const auto& [name, size] : records) {
        for (const DataRow& row : table("records").rows()) {
            if (row.text("record") != name) continue;
            EXPECT_EQ(size, row.integer("size")) << name;
            EXPECT_EQ(orvgAlignSize32Bytes(size), row.integer("rounded")) << name;
        }
    }
}

// The same two passes by node: what is charged beyond what is used is empty list slots.
TEST(Dct4Sizes, ExceedUseByTheSlotsOfFirstElements) {
    const auto slots = [](const std::string& node) {
        for (const DataRow& row : table("slots").rows()) {
            if (row.text("node") != node) continue;
            EXPECT_EQ(row.integer("charged") - row.integer("used"), row.integer("excess"));
            return row.integer("excess");
        }
        throw std::runtime_error("no slots of " + node);
    };
    for (const DataRow& row : table("sizes").rows()) {
        const auto N = static_cast<std::int32_t>(row.integer("length"));
        Plan plan(N);
        long excess = 0;
        if (N > 32) {
            excess = slots("env1") + slots("env2") + slots("env3");
            const std::size_t depth = plan.levels().size();
            if (depth > 0) excess += slots("env5") + slots("env7");
            for (std::size_t i = 1; i < depth; ++i) excess += slots("env9") + slots("env7");
        }
        EXPECT_EQ(Plan::reportedSize(N) - plan.block.used(), 32 * excess) << N;
    }
    EXPECT_EQ(Plan::reportedSize(64) - Plan(64).block.used(), 224U);
    EXPECT_EQ(Plan::reportedSize(4096) - Plan(4096).block.used(), 384U);
    EXPECT_EQ(Plan::reportedSize(131072) - Plan(131072).block.used(), 544U);
}

// The header's largest length: the true charge fits into the size; of twice that length it does
// not.
TEST(Dct4Sizes, AreRightUpToTheHeadersLargestLength) {
    const std::int32_t largest =
        familyBits == 32 ? ORVGEN_DCT4_MAX_LENGTH_32f : ORVGEN_DCT4_MAX_LENGTH_64f;
    EXPECT_EQ(static_cast<std::int64_t>(Plan::reportedSize(largest)), charge(largest) + 64);
    EXPECT_GT(charge(largest), std::int64_t{5} * largest * elementWidth);
    std::int32_t size = -1;
    EXPECT_EQ(Exported::getSize(2 * largest, &size), orvErrSize);
}

}  // namespace
}  // namespace orvgen::test::dct4
