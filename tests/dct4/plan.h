// SPDX-License-Identifier: MIT
// Plans for the tests of one family (ORVGEN_DCT4_REAL is its element type), with a view of their
// nodes.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "dct4/elements.h"
#include "dct4/family32f.h"
#include "dct4/family64f.h"
#include "dct4/radix.h"
#include "support/data_table.h"
#include "support/dct4_functions.h"

namespace orvgen::test::dct4 {

using namespace orvgen::dct4;

using Real = ORVGEN_DCT4_REAL;
using Exported = Dct4Functions<Real>;
using Spec = Exported::Spec;
using Env1 = orvgen::dct4::Env1<Real>;
using Env2 = orvgen::dct4::Env2<Real>;
using Env3 = orvgen::dct4::Env3<Real>;
using Env4 = orvgen::dct4::Env4<Real>;
using Env5 = orvgen::dct4::Env5<Real>;
using Env7 = orvgen::dct4::Env7<Real>;
using Env8 = orvgen::dct4::Env8<Real>;
using Env9 = orvgen::dct4::Env9<Real>;
using EnvfCompose = orvgen::dct4::EnvfCompose<Real>;
using EnvfSplit = orvgen::dct4::EnvfSplit<Real>;
using EnvLambda = orvgen::dct4::EnvLambda<Real>;

constexpr int lanes = orvgen::dct4::lanes<Real>;
constexpr int familyBits = 8 * sizeof(Real);
inline const std::string familySuffix = familyBits == 32 ? "_32f" : "_64f";

// Unit roundoff of the family.
constexpr double unitRoundoff = familyBits == 32 ? 0x1p-24 : 0x1p-53;

inline const DataTable& table(const std::string& name) { return dataTable("dct4/" + name); }

inline std::vector<Real> randomVector(std::int64_t length, unsigned seed) {
    std::mt19937_64 generator(seed);
    std::uniform_real_distribution<double> uniform(-1, 1);
    std::vector<Real> x(static_cast<std::size_t>(length));
    for (Real& value : x) value = static_cast<Real>(uniform(generator));
    return x;
}

inline auto bitsOf(Real value) {
    return std::bit_cast<std::conditional_t<sizeof(Real) == 4, std::uint32_t, std::uint64_t>>(
        value);
}

// An element's index, whatever integer it was computed as.
inline std::size_t element(std::int64_t index) { return static_cast<std::size_t>(index); }

template <class T>
bool sameBits(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

// A block with its first address at a chosen remainder modulo 32, filled with a pattern.
class Block {
  public:
    explicit Block(std::size_t size, std::size_t remainder = 0) : memory(size + 64, fill) {
        const auto address = reinterpret_cast<std::uintptr_t>(memory.data());
        start = (32 - address % 32) % 32 + remainder;
        bytes = size;
    }
    std::uint8_t* data() { return memory.data() + start; }
    const std::uint8_t* data() const { return memory.data() + start; }
    std::size_t size() const { return bytes; }
    Arena* arena() { return reinterpret_cast<Arena*>(data()); }
    // Makes the block an arena as Init does.
    Arena* makeArena() {
        const auto address = reinterpret_cast<std::uint64_t>(data());
        arena()->setBump(address + 64 - address % 32);
        return arena();
    }
    std::size_t used() {
        return static_cast<std::size_t>(arena()->bump() - reinterpret_cast<std::uint64_t>(data()));
    }
    std::vector<std::uint8_t> copy() const { return {data(), data() + bytes}; }

    static constexpr std::uint8_t fill = 0xA5;

  private:
    std::vector<std::uint8_t> memory;
    std::size_t start, bytes;
};

// The lengths of the table of trees that have a tree.
inline std::vector<std::int32_t> treeLengths() {
    std::vector<std::int32_t> lengths;
    for (const DataRow& row : table("trees").rows()) {
        if (row.integer("rule") == treeRule) {
            lengths.push_back(static_cast<std::int32_t>(row.integer("length")));
        }
    }
    return lengths;
}

// A record in the arena, made by its constructor.
template <class Record, class... Arguments>
Record* make(Arena* arena, Arguments... arguments) {
    return Operations<Record>::init(orvgArenaMalloc(arena, sizeof(Record)), arena, arguments...);
}

// A plan in a block of its own, of exactly the reported size and a guard behind it.
class Plan {
  public:
    explicit Plan(std::int32_t length, std::size_t remainder = 0)
        : block(reportedSize(length) + guard, remainder) {
        status = Exported::init(&spec, length, block.data());
        if (status != orvOk) throw std::runtime_error("no plan of " + std::to_string(length));
    }

    static std::size_t reportedSize(std::int32_t length) {
        std::int32_t size = -1;
        if (Exported::getSize(length, &size) != orvOk) {
            throw std::runtime_error("no size for " + std::to_string(length));
        }
        return static_cast<std::size_t>(size);
    }

    OrvStatus run(const Real* src, Real* dst) { return Exported::run(src, dst, spec); }
    std::vector<Real> operator()(const std::vector<Real>& x) {
        std::vector<Real> y(x.size(), static_cast<Real>(-77));
        EXPECT_EQ(run(x.data(), y.data()), orvOk);
        return y;
    }

    Env1* top() { return reinterpret_cast<Env1*>(spec); }
    template <class Record>
    static Record* child(const EnvList* role) {
        return static_cast<Record*>(EnvList_get(role, 0));
    }
    Env2* env2() { return child<Env2>(top()->stageTwoRole); }
    Env3* env3() { return child<Env3>(top()->stageOneRole); }
    Env4* env4() { return child<Env4>(env2()->kernelRole); }
    Env5* env5() { return child<Env5>(env3()->transformRole); }
    // The recursion levels from outside in.
    std::vector<Env7*> levels() {
        std::vector<Env7*> found;
        if (top()->rule != treeRule) return found;
        Env7* level = child<Env7>(env5()->recursionRole);
        while (level != nullptr) {
            found.push_back(level);
            level = child<Env7>(child<Env9>(level->innerRole)->recursionRole);
        }
        return found;
    }

    static constexpr std::size_t guard = 4096;
    Spec* spec = nullptr;
    OrvStatus status = orvErrPlan;
    Block block;
};

// With the field set to the value, a run gives orvErrPlan and writes nothing.
inline void expectRefusal(Plan& plan, const std::vector<Real>& x, std::int32_t& field,
                          std::int32_t value) {
    const std::vector<Real> untouched(x.size(), static_cast<Real>(-7));
    std::vector<Real> y = untouched;
    const std::int32_t before = field;
    field = value;
    EXPECT_EQ(plan.run(x.data(), y.data()), orvErrPlan);
    EXPECT_TRUE(sameBits(y, untouched));
    field = before;
}

}  // namespace orvgen::test::dct4
