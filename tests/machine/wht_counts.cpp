// SPDX-License-Identifier: MIT
// The Walsh-Hadamard kernels as their machine code runs: operations, shuffles, passes over memory.
#include <gtest/gtest.h>

#include <set>

#include "frame/names.h"
#include "machine/library.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

struct Order {
    std::string name;
    std::string twin;
    std::string type;
    long order;
    long points;
    bool single;
    bool twoBodies;
    bool scalar;
    long bufferBytes;
};

std::vector<Order> allOrders() {
    std::vector<Order> list;
    for (const DataRow& row : dataTable("wht_bodies").rows()) {
        Order o;
        o.type = row.text("type");
        o.order = row.integer("order");
        o.points = 1L << o.order;
        o.single = o.type == "f32";
        const FamilyInfo& family = o.single ? familyOf("WHT", "32f") : familyOf("WHT", "64f");
        o.name = memberName(family, static_cast<int>(o.order));
        if (row.text("kind") == "twin") o.twin = twinName(family, static_cast<int>(o.order));
        o.twoBodies = row.text("kind") == "two_bodies";
        o.scalar = row.text("kind") == "scalar";
        o.bufferBytes = dataTable("wht_buffer").row("order", o.order).integer(o.type + "_bytes");
        list.push_back(o);
    }
    return list;
}

TEST(WalshHadamardCode, IsSoundUnderEveryGate) {
    for (const Order& o : allOrders()) {
        KernelFacts facts;
        facts.name = o.name;
        facts.twin = o.twin;
        facts.twoBodies = o.twoBodies;
        facts.pointerStep = o.single ? 4 : 8;
        facts.takesBuffer = o.bufferBytes > 0;
        ShapeRules& r = facts.rules;
        r.srcBytes = r.dstBytes = o.points * facts.pointerStep;
        r.bufferBytes = o.bufferBytes;
        r.straight = o.bufferBytes == 0;
        r.scalar = o.scalar;
        r.movddup = !o.single;
        if (r.scalar) r.elementBytes = facts.pointerStep;
        facts.twinRules = r;
        // binary64 data off a boundary move as halves.
        if (!o.single) facts.twinRules.elementBytes = 8;
        for (const std::string& c : checkKernel(library(), facts)) ADD_FAILURE() << c;
    }
}

TEST(WalshHadamardCode, DoesEachOperationOnce) {
    for (const Order& o : allOrders()) {
        for (const int off : {0, 8}) {
            SCOPED_TRACE(o.name + (off ? " off by 8" : ""));
            const BodyCounts c(traceOf(o.name, off));
            const bool scalar = o.scalar;
            const Lanes lanes = scalar ? (o.single ? Lanes::scalar32 : Lanes::scalar64)
                                       : (o.single ? Lanes::packed32 : Lanes::packed64);
            const long width = scalar ? 1 : o.single ? 4 : 2;
            EXPECT_EQ(c.count(Kind::add, lanes) * width, o.points * o.order);
            EXPECT_EQ(c.count(Kind::multiply, lanes) * width, o.points);
            for (const Lanes other :
                 {Lanes::scalar32, Lanes::scalar64, Lanes::packed32, Lanes::packed64}) {
                if (other == lanes) continue;
                EXPECT_EQ(c.count(Kind::add, other) + c.count(Kind::multiply, other), 0);
            }
            EXPECT_EQ(
                c.count(Kind::convert, Lanes::scalar64) + c.count(Kind::convert, Lanes::scalar32),
                0);
        }
    }
}

TEST(WalshHadamardCode, ShufflesAsItsTransposesNeed) {
    for (const Order& o : allOrders()) {
        if (o.scalar) continue;
        SCOPED_TRACE(o.name);
        const BodyCounts c(traceOf(o.name));
        if (o.single) {
            EXPECT_EQ(c.mnemonic("unpcklps"), o.points / 4 + 2);  // two spread the scale
            EXPECT_EQ(c.mnemonic("unpckhps"), o.points / 4);
            EXPECT_EQ(c.mnemonic("movlhps"), o.points / 4);
            EXPECT_EQ(c.mnemonic("shufps"), o.points / 4);
            EXPECT_EQ(c.shuffles(), o.points + 2);
        } else {
            EXPECT_EQ(c.mnemonic("unpcklpd"), o.points / 2);
            EXPECT_EQ(c.mnemonic("unpckhpd"), o.points / 2);
            EXPECT_EQ(c.mnemonic("movddup"), 1);
            EXPECT_EQ(c.shuffles(), o.points + 1);
        }
        for (const Step& s : traceOf(o.name).steps) {
            if (s.instruction->mnemonic == "shufps") {
                EXPECT_EQ(s.instruction->operands[2].value, 0xee);
            }
        }
    }
}

long placesRead(const Trace& trace, Region region) {
    std::set<std::int64_t> places;
    for (const Step& s : trace.steps) {
        if (!s.access || s.access->region != region || !s.access->load) continue;
        EXPECT_EQ(s.access->size, 16);
        EXPECT_EQ(s.access->offset % 16, 0);
        places.insert(s.access->offset);
    }
    return static_cast<long>(places.size());
}

// The vectors of the scratch behind the main array.
long tileVectors(const DataRow& passes) {
    const std::string& type = passes.text("type");
    const DataRow& buffer = dataTable("wht_buffer").row("order", passes.integer("order"));
    return buffer.integer(type + "_tile") / (type == "f32" ? 4 : 2);
}

// Each pass reads and writes every element: pass 1 or the tiles from src to the buffer, the
// last pass from the buffer to dst; with tiles the scratch behind the main array in between.
TEST(WalshHadamardCode, PassesOverMemoryAsTheTableSays) {
    for (const DataRow& row : dataTable("wht_passes").rows()) {
        const bool single = row.text("type") == "f32";
        const long points = 1L << row.integer("order");
        const std::string name = "orvgWHT_" + row.text("order") + (single ? "_32f" : "_64f");
        SCOPED_TRACE(name);
        const Trace trace = traceOf(name);
        const long vectors = points / (single ? 4 : 2);
        const BodyCounts c(trace);
        // A value may be loaded again instead of kept; what is read and written is each place once.
        const long passes = row.integer("tiles") ? 2 : 1;
        EXPECT_EQ(placesRead(trace, Region::src), vectors);
        EXPECT_EQ(placesRead(trace, Region::buffer), vectors + (passes - 1) * tileVectors(row));
        EXPECT_EQ(c.stores(Region::dst, 16), vectors);
        EXPECT_EQ(c.stores(Region::buffer, 16), passes * vectors);
        // Lowest tile first, and the last pass when all of them are done.
        bool lastPass = false;
        const std::int64_t main = points * (single ? 4 : 8);
        std::int64_t reached = 0;
        for (const Step& s : trace.steps) {
            if (!s.access) continue;
            if (s.access->region == Region::dst) lastPass = true;
            if (s.access->region == Region::src) {
                EXPECT_FALSE(lastPass);
                if (row.integer("tiles")) {
                    const std::int64_t tile = main / row.integer("tiles");
                    EXPECT_GE(s.access->offset / tile, reached);
                    reached = s.access->offset / tile;
                }
            }
            if (s.access->region == Region::buffer && s.access->store && row.integer("tiles") &&
                s.access->offset < main) {
                // A tile's results go to the place of the tile.
                EXPECT_EQ(s.access->offset / (main / row.integer("tiles")), reached);
            }
        }
        // Column passes move nothing between lanes: all shuffles come before the last pass.
        lastPass = false;
        for (const Step& s : trace.steps) {
            lastPass |= s.access && s.access->region == Region::dst;
            EXPECT_FALSE(lastPass && s.instruction->kind == Kind::shuffle);
        }
    }
}

}  // namespace
}  // namespace orvgen::test
