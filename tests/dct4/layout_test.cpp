// SPDX-License-Identifier: MIT
// Where everything of a plan stands: the fields in their records, the records in the block.
#include <algorithm>
#include <set>

#include "dct4/plan.h"

namespace orvgen::test::dct4 {
namespace {

// Offset and width of a field of a record, looked up in the table and ticked off there.
class Fields {
  public:
    explicit Fields(std::string recordName) : record(std::move(recordName)) {}

    template <class Record, class Field>
    void expect(const char* name, Field Record::*member) {
        alignas(Record) static std::uint8_t memory[sizeof(Record)];
        const auto* at = reinterpret_cast<const Record*>(memory);
        const auto offset = reinterpret_cast<const std::uint8_t*>(&(at->*member)) - memory;
        for (const DataRow& row : table("record_fields").rows()) {
            if (row.text("record") != record || row.text("field") != name) continue;
            EXPECT_EQ(offset, row.integer("offset")) << record << " " << name;
            constexpr std::size_t width = sizeof(Field);  // NOLINT(bugprone-sizeof-expression)
            EXPECT_EQ(width, row.integer("width")) << record << " " << name;
            seen.insert(name);
        }
    }

    ~Fields() {
        for (const DataRow& row : table("record_fields").rows()) {
            if (row.text("record") != record) continue;
            EXPECT_TRUE(seen.count(row.text("field"))) << record << " " << row.text("field");
        }
        checkedRecords.insert(record);
    }

    static inline std::set<std::string> checkedRecords;

  private:
    std::string record;
    std::set<std::string> seen;
};

void expectFieldsOfTheStages() {
    Fields env1("env1");
    env1.expect("children", &Env1::children);
    env1.expect("env2_role", &Env1::stageTwoRole);
    env1.expect("env3_role", &Env1::stageOneRole);
    env1.expect("scratch", &Env1::scratch);
    env1.expect("rule", &Env1::rule);
    env1.expect("radix", &Env1::r);
    env1.expect("length", &Env1::length);
    Fields env2("env2");
    env2.expect("children", &Env2::children);
    env2.expect("env4_role", &Env2::kernelRole);
    env2.expect("reserved", &Env2::reserved);
    env2.expect("active", &Env2::active);
    env2.expect("r", &Env2::r);
    env2.expect("N", &Env2::length);
    env2.expect("2r", &Env2::unused1);
    env2.expect("m", &Env2::m);
    env2.expect("N again", &Env2::unused2);
    env2.expect("2N-1", &Env2::unused3);
    env2.expect("n", &Env2::unused4);
    env2.expect("twiddle", &Env2::twiddle);
    Fields env3("env3");
    env3.expect("children", &Env3::children);
    env3.expect("env5_role", &Env3::transformRole);
    env3.expect("reserved", &Env3::reserved);
    env3.expect("active", &Env3::active);
    env3.expect("n", &Env3::n);
    env3.expect("N", &Env3::length);
    env3.expect("2N-1", &Env3::unused1);
    env3.expect("2r", &Env3::unused2);
    env3.expect("r", &Env3::r);
    env3.expect("N again", &Env3::unused3);
    env3.expect("r again", &Env3::unused4);
    Fields env4("env4");
    env4.expect("children", &Env4::children);
    env4.expect("table", &Env4::table);
    env4.expect("rule", &Env4::rule);
    env4.expect("r", &Env4::r);
    env4.expect("N", &Env4::unused1);
    env4.expect("2r", &Env4::unused2);
    env4.expect("group_stride", &Env4::unused3);
    env4.expect("groups", &Env4::groups);
    env4.expect("N again", &Env4::unused4);
    env4.expect("2N-1", &Env4::mirror);
    env4.expect("n", &Env4::n);
    env4.expect("function", &Env4::twiddle);
    Fields env5("env5");
    env5.expect("children", &Env5::children);
    env5.expect("env7_role", &Env5::recursionRole);
    env5.expect("reserved", &Env5::reserved);
    env5.expect("rule", &Env5::rule);
    env5.expect("n", &Env5::n);
    env5.expect("N", &Env5::length);
    env5.expect("2N-1", &Env5::mirror);
    env5.expect("2r", &Env5::blockLength);
    env5.expect("groups", &Env5::groups);
    env5.expect("N again", &Env5::unused1);
    env5.expect("r", &Env5::r);
}

void expectFieldsOfTheRecursion() {
    Fields env7("env7");
    env7.expect("children", &Env7::children);
    env7.expect("env8_role", &Env7::joinRole);
    env7.expect("env9_role", &Env7::innerRole);
    env7.expect("scratch", &Env7::scratch);
    env7.expect("active", &Env7::active);
    env7.expect("n", &Env7::n);
    env7.expect("r'", &Env7::r);
    Fields env8("env8");
    env8.expect("children", &Env8::children);
    env8.expect("table", &Env8::table);
    env8.expect("rule", &Env8::rule);
    Fields env9("env9");
    env9.expect("children", &Env9::children);
    env9.expect("env7_role", &Env9::recursionRole);
    env9.expect("reserved", &Env9::reserved);
    env9.expect("rule", &Env9::rule);
}

void expectFieldsOfTheRest() {
    Fields header("header");
    header.expect("destructor", &NodeHeader::destructor);
    header.expect("size", &NodeHeader::size);
    header.expect("plan", &NodeHeader::plan);
    header.expect("arena", &NodeHeader::arena);
    Fields list("list");
    list.expect("value", &EnvList::value);
    list.expect("next", &EnvList::next);
    list.expect("arena", &EnvList::arena);
    Fields compose("envfCompose");
    compose.expect("2r", &EnvfCompose::unused1);
    compose.expect("8N", &EnvfCompose::eightLengths);
    compose.expect("m", &EnvfCompose::unused2);
    compose.expect("r", &EnvfCompose::r);
    compose.expect("step", &EnvfCompose::step);
    Fields split("envfsplit");
    split.expect("2r", &EnvfSplit::unused1);
    split.expect("groups", &EnvfSplit::unused2);
    split.expect("function", &EnvfSplit::inner);
    Fields lambda("envlambda");
    lambda.expect("n", &EnvLambda::n);
    lambda.expect("r'", &EnvLambda::r);
}

TEST(Dct4Records, HaveTheirFieldsWhereTheTableSays) {
    expectFieldsOfTheStages();
    expectFieldsOfTheRecursion();
    expectFieldsOfTheRest();
    std::set<std::string> listed;
    for (const DataRow& row : table("record_fields").rows()) listed.insert(row.text("record"));
    EXPECT_EQ(Fields::checkedRecords, listed);
}

// A plan as the pieces that its arena gave out, found by walking the tree.
class Pieces {
  public:
    struct Piece {
        std::uintptr_t start;
        std::size_t size;
        std::string what;
    };

    explicit Pieces(Plan& plan) {
        Env1* top = plan.top();
        add(top, sizeof(Env1), "env1");
        heads({top->children, top->stageTwoRole, top->stageOneRole});
        if (top->rule != treeRule) return;
        add(EnvList_get(top->children, 0), sizeof(EnvfCompose), "envfCompose");
        add(plan.env2(), sizeof(Env2), "env2");
        heads({plan.env2()->children, plan.env2()->kernelRole});
        add(EnvList_get(plan.env2()->children, 0), sizeof(EnvfSplit), "envfsplit");
        add(plan.env4(), sizeof(Env4), "env4");
        heads({plan.env4()->children});
        const auto bytes = sizeof(Real) * static_cast<std::size_t>(top->length);
        add(plan.env4()->table, bytes, "table");
        add(plan.env3(), sizeof(Env3), "env3");
        heads({plan.env3()->children, plan.env3()->transformRole});
        add(plan.env5(), sizeof(Env5), "env5");
        heads({plan.env5()->children, plan.env5()->recursionRole});
        for (Env7* level : plan.levels()) {
            add(level, sizeof(Env7), "env7");
            heads({level->children, level->joinRole, level->innerRole});
            Env8* join = Plan::child<Env8>(level->joinRole);
            add(join, sizeof(Env8), "env8");
            add(EnvList_get(level->children, 0), sizeof(EnvLambda), "envlambda");
            heads({join->children});
            const std::int32_t vectors = join->m * (2 * join->r - 2);
            add(join->table, 16 * static_cast<std::size_t>(vectors), "table");
            Env9* inner = Plan::child<Env9>(level->innerRole);
            add(inner, sizeof(Env9), "env9");
            heads({inner->children, inner->recursionRole});
            add(level->scratch, bytes, "scratch");
        }
        add(top->scratch, bytes, "scratch");
        std::sort(all.begin(), all.end(),
                  [](const Piece& a, const Piece& b) { return a.start < b.start; });
    }

    std::vector<Piece> all;

  private:
    void add(const void* start, std::size_t size, const char* what) {
        all.push_back({reinterpret_cast<std::uintptr_t>(start), size, what});
    }
    void heads(std::initializer_list<const EnvList*> lists) {
        for (const EnvList* list : lists) {
            add(list, sizeof(EnvList), "head");
            while ((list = list->next) != nullptr) add(list, sizeof(EnvList), "slot");
        }
    }
};

// The order of building: records before their heads, the heads before the slot in which the owner
// lists the record, its own children and tables after that, scratch arrays last.
std::vector<std::string> expectedOrder(int levels) {
    std::vector<std::string> order = {"env1", "head",  "head", "head",      "env2", "envfCompose",
                                      "head", "head",  "slot", "envfsplit", "env4", "head",
                                      "slot", "table", "env3", "head",      "head", "slot",
                                      "env5", "head",  "head"};
    for (int level = 0; level < levels; ++level) {
        for (const char* piece : {"env7", "head", "head", "head", "env8", "envlambda", "head",
                                  "slot", "table", "env9", "head", "head", "slot"}) {
            order.push_back(piece);
        }
    }
    order.insert(order.end(), static_cast<std::size_t>(levels) + 1, "scratch");
    return order;
}

TEST(Dct4Block, HoldsItsPiecesInTheOrderOfBuilding) {
    for (std::int32_t N = 2; N <= 131072; N *= 2) {
        Plan plan(N);
        const Pieces pieces(plan);
        std::vector<std::string> order;
        auto next = reinterpret_cast<std::uintptr_t>(plan.block.data()) + 64;
        for (const Pieces::Piece& piece : pieces.all) {
            EXPECT_EQ(piece.start, next) << N << " " << piece.what;
            next += orvgAlignSize32Bytes(piece.size);
            order.push_back(piece.what);
        }
        EXPECT_EQ(next, plan.block.arena()->bump()) << N;
        if (N <= 32) {
            EXPECT_EQ(order, (std::vector<std::string>{"env1", "head", "head", "head"}));
        } else {
            EXPECT_EQ(order, expectedOrder(static_cast<int>(plan.levels().size()))) << N;
        }
    }
}

// A build that fails is taken down like a finished one: each node that would have had a scratch
// array in the end gives one back, whether it had come so far or not.
TEST(Dct4FailedBuild, GivesBackEveryScratchThatItWouldHaveHad) {
    struct Failure {
        std::int32_t length;
        int arrays;  // of N elements, given back and never taken
    };
    // 3: no radix. 96: too few blocks for the lanes (32), an odd half of the second level (64).
    // 3072: an odd half at the third level.
    const Failure failures[] = {{3, 1}, {96, familyBits == 32 ? 1 : 3}, {3072, 4}};
    for (const Failure& failure : failures) {
        Block block(1 << 20);
        Spec* spec = nullptr;
        EXPECT_EQ(Exported::init(&spec, failure.length, block.data()), orvErrSize);
        const auto bytes =
            orvgAlignSize32Bytes(static_cast<std::uint64_t>(failure.length) * sizeof(Real));
        EXPECT_EQ(block.arena()->bump(), reinterpret_cast<std::uint64_t>(block.data()) + 64 -
                                             static_cast<std::uint64_t>(failure.arrays) * bytes)
            << failure.length;
    }
}

// Nothing is written of a short plan's radix, which it has none of.
TEST(Dct4ShortPlan, LeavesItsRadixUnwritten) {
    for (std::int32_t N = 2; N <= 32; N *= 2) {
        Plan plan(N);
        std::int32_t untouched;
        std::memset(&untouched, Block::fill, sizeof untouched);
        EXPECT_EQ(plan.top()->r, untouched) << N;
    }
}

// A node gives back its scratch and its role lists before the children go.
TEST(Dct4Destruction, GivesBackScratchAndRolesBeforeChildren) {
    static Arena* arena;
    static std::vector<std::uint64_t> seen;
    const auto look = [](NodeHeader*) { seen.push_back(arena->bump()); };
    for (const std::int32_t N : {64, 4096}) {
        Plan plan(N);
        arena = plan.block.arena();
        const std::uint64_t scratch = static_cast<std::uint64_t>(N) * sizeof(Real);
        const auto expectBefore = [&](NodeHeader* node, NodeHeader* firstChild) {
            const std::uint64_t before = arena->bump();
            const Destructor destructor = firstChild->destructor;
            firstChild->destructor = look;
            seen.clear();
            node->destructor(node);
            EXPECT_EQ(seen, std::vector<std::uint64_t>{before - scratch - 64}) << N;
            firstChild->destructor = destructor;
            arena->setBump(before);
        };
        for (Env7* level : plan.levels()) expectBefore(level, EnvList_get(level->children, 0));
        expectBefore(plan.top(), EnvList_get(plan.top()->children, 0));
    }
}

// Which kernels finished plans run.
struct Reached {
    std::set<long> env4, env5, env8, env9;

    void add(Plan& plan) {
        if (plan.top()->rule != treeRule) return;
        env4.insert(plan.env4()->rule);
        env5.insert(plan.env5()->rule);
        for (Env7* level : plan.levels()) {
            env8.insert(Plan::child<Env8>(level->joinRole)->rule);
            env9.insert(Plan::child<Env9>(level->innerRole)->rule);
        }
    }
    const std::set<long>& of(const std::string& node) const {
        return node == "env4" ? env4 : node == "env5" ? env5 : node == "env8" ? env8 : env9;
    }
};

TEST(Dct4Plans, RunTheListedKernels) {
    Reached powers, plusOne;
    for (std::int32_t N = 2; N <= 1 << 20; N *= 2) {
        Plan plan(N);
        powers.add(plan);
        if (N < (familyBits == 32 ? 32 : 8)) continue;
        Plan next(N + 1);
        plusOne.add(next);
    }
    for (const DataRow& row : table("reached").rows()) {
        const std::string& node = row.text("node");
        const auto set = [&](const std::string& column) {
            std::set<long> rules;
            if (row.empty(column)) return rules;
            for (const long rule : row.integers(column)) rules.insert(rule);
            return rules;
        };
        EXPECT_EQ(powers.of(node), set("powers")) << node;
        std::set<long> only;
        for (const long rule : plusOne.of(node)) {
            if (!powers.of(node).count(rule)) only.insert(rule);
        }
        EXPECT_EQ(only, set("plus_one" + familySuffix)) << node;
    }
    EXPECT_EQ(table("reached").rows().size(), 4U);
}

}  // namespace
}  // namespace orvgen::test::dct4
