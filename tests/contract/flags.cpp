// SPDX-License-Identifier: MIT
// What the four flags mean: the same bytes where the table gives the same scale, other bytes where
// not; one body whatever the flag, its multiplications by 1.0 included; and the pairs of forward
// and inverse transforms that give the input back.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <random>

#include "kernels/kernel_list.h"
#include "orvgen.h"
#include "support/data_table.h"
#include "support/integer_core.h"
#include "support/library_file.h"
#include "support/scale_column.h"

namespace orvgen::test {
namespace {

using Bytes = std::vector<unsigned char>;

const MachineCode& library() {
    static const MachineCode code(libraryFile());
    return code;
}

Bytes ordinary(std::size_t reals, bool single) {
    std::mt19937 engine(static_cast<unsigned>(reals));
    std::uniform_real_distribution<float> value(-1, 1);
    Bytes bytes(reals * (single ? 4 : 8));
    for (std::size_t i = 0; i < reals; ++i) {
        const float f = value(engine);
        const double d = static_cast<double>(f) * (1 + 1e-9 * static_cast<double>(i));
        std::memcpy(bytes.data() + i * (single ? 4 : 8), single ? static_cast<const void*>(&f) : &d,
                    single ? 4 : 8);
    }
    return bytes;
}

double realAt(const Bytes& bytes, std::size_t i, bool single) {
    float f = 0;
    double d = 0;
    std::memcpy(single ? static_cast<void*>(&f) : &d, bytes.data() + i * (single ? 4 : 8),
                single ? 4 : 8);
    return single ? static_cast<double>(f) : d;
}

Bytes run(const KernelCall& call, const Bytes& src, std::size_t dstReals, bool single,
          std::int32_t flag, std::size_t beyond = 0) {
    Bytes from = src;
    from.resize(src.size() + beyond * (single ? 4 : 8));
    Bytes dst(dstReals * (single ? 4 : 8), 0xcb);
    EXPECT_EQ(call(from.data(), dst.data(), flag), orvOk);
    return dst;
}

void checkMeaning(const FamilyInfo& family, const std::string& name,
                  const std::function<Bytes(std::int32_t)>& result) {
    const std::string column = scaleColumn(family);
    std::map<std::string, Bytes> byMeaning;
    for (const DataRow& row : dataTable("flags").rows()) {
        const Bytes bytes = result(static_cast<std::int32_t>(row.integer("value")));
        const auto [it, fresh] = byMeaning.emplace(row.text(column), bytes);
        EXPECT_TRUE(fresh || it->second == bytes) << name << " " << row.text("name");
    }
    ASSERT_EQ(byMeaning.size(), 3U);
    EXPECT_FALSE(byMeaning["one"] == byMeaning["by_n"]) << name;
    EXPECT_FALSE(byMeaning["one"] == byMeaning["by_root"]) << name;
    EXPECT_FALSE(byMeaning["by_n"] == byMeaning["by_root"]) << name;
}

TEST(Flags, MeanTheScalesOfTheTable) {
    ASSERT_FALSE(listedKernels().empty());
    for (const ListedKernel& k : listedKernels()) {
        const Bytes src = ordinary(k.srcCount, k.single);
        checkMeaning(*k.info, k.name, [&](std::int32_t flag) {
            return run(k.call, src, k.dstCount, k.single, flag, k.srcBeyond);
        });
    }
}

#define ORDER(NAME, K, T)                                                                         \
    {                                                                                             \
        static constexpr const FamilyInfo& family = familyOf(#NAME, #T);                          \
        constexpr std::size_t points = std::size_t{1} << (K);                                     \
        const Bytes src = ordinary(points, family.isSingle());                                    \
        const KernelCall call = [](const void* s, void* d, std::int32_t flag) {                   \
            return orvg##NAME##_##K##_##T(static_cast<const Orv##T*>(s), static_cast<Orv##T*>(d), \
                                          flag, nullptr);                                         \
        };                                                                                        \
        checkMeaning(family, memberName(family, K), [&](std::int32_t flag) {                      \
            return run(call, src, points, family.isSingle(), flag);                               \
        });                                                                                       \
    }
#define ORDERS(NAME, T, LIST) \
    TEST(Flags, MeanTheScalesOfTheTable_##NAME##_##T) { LIST(ORDER, NAME, T) }
ORVGEN_ORDER_FAMILIES(ORDERS)

// From the first access to the data on, the same instructions run under every flag.
TEST(Flags, ShareOneBody) {
    for (const ListedKernel& k : listedKernels()) {
        for (const int off : {0, 8}) {
            std::vector<const Instruction*> first;
            for (const std::int32_t flag : {8, 1, 2, 4}) {
                CallSetup setup;
                setup.flag = flag;
                setup.srcMisalignment = setup.dstMisalignment = off;
                const Trace t = runIntegers(library(), k.name, setup);
                std::vector<const Instruction*> body;
                for (const Step& s : t.steps) {
                    const bool data = s.access && (s.access->region == Region::src ||
                                                   s.access->region == Region::dst);
                    if (data || !body.empty()) body.push_back(s.instruction);
                }
                ASSERT_FALSE(body.empty()) << k.name;
                if (first.empty()) first = body;
                EXPECT_TRUE(body == first) << k.name << " flag " << flag;
            }
        }
    }
}

// Forward and inverse under the same flag, of flags 1, 2 and 4, give the input back.
TEST(Flags, PairsComposeToTheIdentity) {
    const auto undoes = [](const FamilyInfo& inverse, const FamilyInfo& forward) {
        return inverse.transform == forward.transform && inverse.precision == forward.precision &&
               inverse.direction == Direction::Inverse && inverse.src == forward.dst &&
               inverse.dst == forward.src;
    };
    for (const ListedKernel& forward : listedKernels()) {
        if (forward.info->direction != Direction::Forward) continue;
        const auto it =
            std::find_if(listedKernels().begin(), listedKernels().end(), [&](const auto& k) {
                return undoes(*k.info, *forward.info) && k.length == forward.length;
            });
        ASSERT_TRUE(it != listedKernels().end()) << forward.name;
        const ListedKernel& inverse = *it;
        const Bytes src = ordinary(forward.srcCount, forward.single);
        // Of values up to 1 under a transform and back: a few dozen roundings, far from 64 u.
        const double bound = 64 * (forward.single ? 0x1p-24 : 0x1p-53);
        for (const std::int32_t flag : {1, 2, 4}) {
            const Bytes spectrum =
                run(forward.call, src, forward.dstCount, forward.single, flag, forward.srcBeyond);
            const Bytes back = run(inverse.call, spectrum, inverse.dstCount, forward.single, flag,
                                   inverse.srcBeyond);
            ASSERT_EQ(back.size(), src.size());
            for (std::size_t i = 0; i < forward.srcCount; ++i) {
                ASSERT_NEAR(realAt(back, i, forward.single), realAt(src, i, forward.single), bound)
                    << forward.name << " and back, flag " << flag << ", element " << i;
            }
        }
    }
}

}  // namespace
}  // namespace orvgen::test
