// SPDX-License-Identifier: MIT
// The arena, the list and the choice of a radix: what both families share.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dct4/node.h"
#include "dct4/radix.h"
#include "dct4/trig.h"
#include "dct4/visitingorder.h"
#include "support/data_table.h"

namespace orvgen::test::dct4 {
namespace {

using namespace orvgen::dct4;

class Dct4ArenaTest : public testing::Test {
  protected:
    Dct4ArenaTest() { arena->setBump(start()); }
    std::uint64_t start() const { return reinterpret_cast<std::uint64_t>(memory + 64); }

    alignas(32) unsigned char memory[4096] = {};
    Arena* arena = reinterpret_cast<Arena*>(memory);
};

TEST(Dct4Arena, RoundsSizesUpTo32) {
    EXPECT_EQ(orvgAlignSize32Bytes(0), 0U);
    EXPECT_EQ(orvgAlignSize32Bytes(1), 32U);
    EXPECT_EQ(orvgAlignSize32Bytes(31), 32U);
    EXPECT_EQ(orvgAlignSize32Bytes(32), 32U);
    EXPECT_EQ(orvgAlignSize32Bytes(33), 64U);
    EXPECT_EQ(orvgAlignSize32Bytes(0x100000001), 0x100000020U);
}

TEST_F(Dct4ArenaTest, PutsAllocations32Apart) {
    void* first = orvgArenaMalloc(arena, 1);
    void* second = orvgArenaMalloc(arena, 1);
    EXPECT_EQ(reinterpret_cast<std::uint64_t>(first), start());
    EXPECT_EQ(reinterpret_cast<std::uint64_t>(second), start() + 32);
    EXPECT_EQ(arena->bump(), start() + 64);
}

TEST_F(Dct4ArenaTest, MovesByNothingForNothing) {
    EXPECT_EQ(reinterpret_cast<std::uint64_t>(orvgArenaMalloc(arena, 0)), start());
    EXPECT_EQ(arena->bump(), start());
}

TEST_F(Dct4ArenaTest, ClearsNoMemory) {
    memory[64] = 0x5A;
    EXPECT_EQ(*static_cast<unsigned char*>(orvgArenaMalloc(arena, 8)), 0x5A);
}

TEST_F(Dct4ArenaTest, FreesBySizeAlone) {
    orvgArenaMalloc(arena, 128);
    orvgArenaFree(arena, nullptr, 33);
    EXPECT_EQ(arena->bump(), start() + 64);
    orvgArenaFree(arena, &arena, 0);
    EXPECT_EQ(arena->bump(), start() + 64);
    orvgArenaFree(arena, memory, 64);
    EXPECT_EQ(arena->bump(), start());
    orvgArenaFree(arena, memory, 96);  // below the block: no limit is known
    EXPECT_EQ(arena->bump(), start() - 96);
}

struct Element : NodeHeader {
    explicit Element(std::int32_t bytes) : NodeHeader{count, bytes, {nullptr}, nullptr} {}
    static void count(NodeHeader* node) { ++static_cast<Element*>(node)->destroyed; }
    int destroyed = 0;
};

class Dct4ListTest : public Dct4ArenaTest {
  protected:
    EnvList head;
    EnvList* list = EnvList___init__(&head, arena);
    Element a{80}, b{96}, c{33};
};

TEST_F(Dct4ListTest, IsEmptyAtFirst) {
    EXPECT_EQ(list, &head);
    EXPECT_EQ(head.value, nullptr);
    EXPECT_EQ(head.next, nullptr);
    EXPECT_EQ(head.arena, arena);
    EXPECT_EQ(EnvList_get(list, 0), nullptr);
}

TEST_F(Dct4ListTest, TakesItsFirstElementForNothing) {
    EXPECT_EQ(EnvList_add(list, &a), &a);
    EXPECT_EQ(arena->bump(), start());
    EXPECT_EQ(EnvList_add(list, &b), &b);
    EXPECT_EQ(arena->bump(), start() + 32);
    EXPECT_EQ(EnvList_add(list, &c), &c);
    EXPECT_EQ(arena->bump(), start() + 64);
    EXPECT_EQ(EnvList_get(list, 0), &a);
    EXPECT_EQ(EnvList_get(list, 1), &b);
    EXPECT_EQ(EnvList_get(list, 2), &c);
    EXPECT_EQ(head.next->arena, arena);
}

TEST_F(Dct4ListTest, LeavesTheSlotOfAZeroEmpty) {
    EXPECT_EQ(EnvList_add(list, nullptr), nullptr);
    EXPECT_EQ(EnvList_add(list, &a), &a);
    EXPECT_EQ(EnvList_get(list, 0), &a);
    EXPECT_EQ(EnvList_add(list, nullptr), nullptr);  // a node behind the head, empty
    EXPECT_EQ(arena->bump(), start() + 32);
    EXPECT_EQ(EnvList_add(list, &b), &b);
    EXPECT_EQ(arena->bump(), start() + 32);
    EXPECT_EQ(EnvList_get(list, 1), &b);
}

TEST_F(Dct4ListTest, GivesZeroBehindItsEnd) {
    EnvList_add(list, &a);
    EnvList_add(list, &b);
    EXPECT_EQ(EnvList_get(list, -1), nullptr);
    EXPECT_EQ(EnvList_get(list, 3), nullptr);
    EXPECT_EQ(EnvList_get(list, 100), nullptr);
}

TEST_F(Dct4ListTest, GivesBackWhatStandsBehindItsHead) {
    for (Element* element : {&a, &b, &c}) EnvList_add(list, element);
    EnvList___del__(list);
    EXPECT_EQ(arena->bump(), start());
    EXPECT_EQ(a.destroyed + b.destroyed + c.destroyed, 0);
}

TEST_F(Dct4ListTest, DestroysChildrenAndGivesBackTheirRecords) {
    EnvList_freeChildren(nullptr);
    EnvList_freeChildren(list);
    EXPECT_EQ(arena->bump(), start());
    for (Element* element : {&a, &b, &c}) EnvList_add(list, element);
    EnvList_freeChildren(list);
    EXPECT_EQ(a.destroyed, 1);
    EXPECT_EQ(b.destroyed, 1);
    EXPECT_EQ(c.destroyed, 1);
    // Two list nodes stay; records of 80, 96 and 33 bytes went.
    EXPECT_EQ(arena->bump(), start() + 64 - 96 - 96 - 64);
}

TEST(Dct4List, IsChargedARoundedNodeForEachEntry) {
    EXPECT_EQ(EnvList_add_mem(0), 0);
    EXPECT_EQ(EnvList_add_mem(1), 32);
    EXPECT_EQ(EnvList_add_mem(5), 160);
}

TEST(Dct4Function, CallsItsEvaluator) {
    NodeHeader object{};
    object.at = [](const NodeHeader*, std::int32_t i, std::int32_t j, std::int32_t k) {
        return 100.0 * i + 10.0 * j + k;
    };
    EXPECT_EQ(owng_TFunc_IIIR_at(&object, 1, 2, 3), 123.0);
}

void expectRadix(std::int32_t h, const std::vector<long>& candidates) {
    std::int32_t expected = -99;
    for (auto r = candidates.rbegin(); r != candidates.rend(); ++r) {
        if (h % *r == 0) expected = static_cast<std::int32_t>(*r);
    }
    std::int32_t radix = -99;
    EXPECT_EQ(divisorsIntNonTriv(&radix, h), expected == -99 ? -6 : 0) << h;
    EXPECT_EQ(radix, expected) << h;
}

TEST(Dct4Radix, FollowsTheTable) {
    for (const DataRow& row : dataTable("dct4/radix").rows()) {
        const long from = row.integer("from"), to = row.integer("to");
        const std::vector<long> candidates =
            row.empty("candidates") ? std::vector<long>{} : row.integers("candidates");
        for (const long h : {from, from + 1, from + 2, from + 3}) {
            if (to < 0 || h <= to) expectRadix(static_cast<std::int32_t>(h), candidates);
        }
        const long first = std::max(from, -5000L), last = to < 0 ? 70000 : to;
        for (long h = first; h <= last; ++h) {
            expectRadix(static_cast<std::int32_t>(h), candidates);
        }
    }
    expectRadix(1 << 30, {32, 16, 8, 4, 2});
    expectRadix(2147483646, {32, 16, 8, 4, 2});
    expectRadix(2147483647, {32, 16, 8, 4, 2});
}

TEST(Dct4Rules, FollowTheTable) {
    struct Rule {
        const char* node;
        std::int32_t (*of)(std::int32_t);
    };
    const Rule rules[] = {{"env1", ruleOfLength},
                          {"env4", ruleOfStageTwo},
                          {"env5", ruleOfOddFrequency},
                          {"env8", ruleOfPower}};
    int checked = 0;
    for (const Rule& rule : rules) {
        std::vector<long> keys;
        long otherwise = -1;
        for (const DataRow& row : dataTable("dct4/rules").rows()) {
            if (row.text("node") != rule.node) continue;
            ++checked;
            if (row.text("key") == "else") {
                otherwise = row.integer("rule");
                continue;
            }
            keys.push_back(row.integer("key"));
            EXPECT_EQ(rule.of(static_cast<std::int32_t>(keys.back())), row.integer("rule"));
        }
        for (std::int32_t key = -70; key <= 300; ++key) {
            if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
                EXPECT_EQ(rule.of(key), otherwise) << rule.node << " " << key;
            }
        }
    }
    EXPECT_EQ(static_cast<std::size_t>(checked), dataTable("dct4/rules").rows().size());
}

TEST(Dct4VisitingOrder, FollowsTheTable) {
    for (const DataRow& row : dataTable("dct4/visiting_order").rows()) {
        const auto r = static_cast<std::int32_t>(row.integer("r"));
        std::vector<long> order;
        for (std::int32_t i = 0; i < r; ++i) order.push_back(visitingOrder(r, i));
        EXPECT_EQ(order, row.integers("order")) << r;
    }
    EXPECT_EQ(visitingOrder(1, 0), 0);
}

// The chain of roundings, step by step, kept apart by volatile variables.
TEST(Dct4Trigonometry, RoundsItsAngleToTheType) {
    for (int i = -4000; i <= 4000; ++i) {
        const float x = static_cast<float>(i) / 977.0F;
        volatile double wide = x;
        volatile double product = wide * 3.141592653589793;
        volatile float angle = static_cast<float>(product);
        EXPECT_EQ(orvgCosPi_32f(x), std::cos(static_cast<float>(angle))) << x;
        EXPECT_EQ(orvgSinPi_32f(x), std::sin(static_cast<float>(angle))) << x;
        volatile double y = i / 977.0;
        volatile double angle64 = y * 3.141592653589793;
        EXPECT_EQ(orvgCosPi_64f(y), std::cos(static_cast<double>(angle64))) << y;
        EXPECT_EQ(orvgSinPi_64f(y), std::sin(static_cast<double>(angle64))) << y;
    }
}

TEST(Dct4Trigonometry, ForcesNoExactCase) {
    const float quarter = orvgCosPi_32f(0.5F);
    EXPECT_EQ(quarter, std::cos(static_cast<float>(3.141592653589793 / 2)));
    EXPECT_NEAR(quarter, -4.37e-8, 0.005e-8);
    EXPECT_NEAR(orvgSinPi_64f(1.0), 1.22e-16, 0.005e-16);
    EXPECT_EQ(orvgCosPi_64f(0.25), std::cos(3.141592653589793 * 0.25));
    EXPECT_EQ(orvgSinPi_64f(0.25), std::sin(3.141592653589793 * 0.25));
    EXPECT_EQ(orvgCosPi_32f(0.0F), 1.0F);
    EXPECT_EQ(orvgSinPi_32f(0.0F), 0.0F);
}

}  // namespace
}  // namespace orvgen::test::dct4
