// SPDX-License-Identifier: MIT
// The scales that kernels store: 1/N rounded once; 1/sqrt(N) rounded once in binary32, and in
// binary64 as 1.0 divided by the rounded root, so with two roundings. Computed here with MPFR, and
// read back twice: from the constants that a call loads under one flag and not under another, and
// from the response to an impulse.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <map>
#include <set>

#include "kernels/kernel_list.h"
#include "orvgen.h"
#include "support/data_table.h"
#include "support/integer_core.h"
#include "support/library_file.h"
#include "support/mpfr_number.h"
#include "support/scale_column.h"

namespace orvgen::test {
namespace {

// All values here are far from the ends of the exponent range, so that precision alone makes the
// format: 24 bits for binary32, 53 for binary64.
double reciprocal(unsigned long n, mpfr_prec_t bits) {
    Mpfr r(bits);
    mpfr_set_ui(r.x, 1, MPFR_RNDN);
    mpfr_div_ui(r.x, r.x, n, MPFR_RNDN);
    return r.value();
}

double rootOnce(unsigned long n, mpfr_prec_t bits) {
    Mpfr r(bits);
    mpfr_set_ui(r.x, n, MPFR_RNDN);
    mpfr_rec_sqrt(r.x, r.x, MPFR_RNDN);
    return r.value();
}

double rootTwice(unsigned long n) {
    Mpfr r(53);
    mpfr_sqrt_ui(r.x, n, MPFR_RNDN);
    mpfr_ui_div(r.x, 1, r.x, MPFR_RNDN);
    return r.value();
}

double expected(const std::string& meaning, unsigned long n, bool single) {
    if (meaning == "one") return 1;
    if (meaning == "by_n") return reciprocal(n, single ? 24 : 53);
    EXPECT_EQ(meaning, "by_root");
    return single ? rootOnce(n, 24) : rootTwice(n);
}

const MachineCode& library() {
    static const MachineCode code(libraryFile());
    return code;
}

// The real that all lanes of a constant hold.
double constantAt(std::int64_t address, int size, bool single) {
    const auto bytes =
        library().image().bytes(static_cast<std::uint64_t>(address), static_cast<unsigned>(size));
    EXPECT_EQ(bytes.size(), static_cast<std::size_t>(size));
    const std::size_t real = single ? 4 : 8;
    double value = 0;
    for (std::size_t at = 0; at + real <= bytes.size(); at += real) {
        float f = 0;
        double d = 0;
        std::memcpy(single ? static_cast<void*>(&f) : &d, bytes.data() + at, real);
        const double lane = single ? static_cast<double>(f) : d;
        EXPECT_TRUE(at == 0 || lane == value) << "lanes differ";
        value = lane;
    }
    return value;
}

// A constant, and whether the instruction that reads it takes it as binary64: where the scale goes
// on in a double expression, a kernel may hold the binary32 scale widened beside it.
struct Place {
    std::int64_t address;
    int size;
    bool wide;
    auto operator<=>(const Place&) const = default;
};

// For each flag the constants that its calls read and those of some other flag do not.
std::map<std::int32_t, std::set<Place>> scalePlaces(const std::string& function, bool single) {
    std::map<std::int32_t, std::set<Place>> places;
    std::map<Place, int> readers;
    for (const std::int32_t flag : {1, 2, 4, 8}) {
        CallSetup setup;
        setup.flag = flag;
        for (const Step& step : runIntegers(library(), function, setup).steps) {
            if (!step.access || step.access->region != Region::constants) continue;
            const Lanes lanes = step.instruction->lanes;
            const bool known = lanes == Lanes::scalar32 || lanes == Lanes::packed32 ||
                               lanes == Lanes::scalar64 || lanes == Lanes::packed64;
            const bool wide =
                known ? lanes == Lanes::scalar64 || lanes == Lanes::packed64 : !single;
            places[flag].insert({step.access->offset, step.access->size, wide});
        }
        for (const Place& place : places[flag]) ++readers[place];
    }
    for (auto& [flag, set] : places)
        std::erase_if(set, [&](const Place& p) { return readers[p] == 4; });
    return places;
}

void checkStored(const FamilyInfo& family, const std::string& function, unsigned long n) {
    const bool single = family.isSingle();
    const auto places = scalePlaces(function, single);
    for (const DataRow& row : dataTable("flags").rows()) {
        const auto flag = static_cast<std::int32_t>(row.integer("value"));
        const auto it = places.find(flag);
        ASSERT_TRUE(it != places.end() && !it->second.empty())
            << function << " flag " << flag << ": no constant of its own";
        const double scale = expected(row.text(scaleColumn(family)), n, single);
        for (const Place& p : it->second) {
            EXPECT_EQ(constantAt(p.address, p.size, !p.wide), scale)
                << function << " flag " << flag;
        }
    }
}

// The first output for an impulse at the first input: the scale, but for rounding where the
// transform is a convolution (Bluestein's algorithm).
template <class Real>
void checkImpulse(const FamilyInfo& family, const KernelCall& call, const std::string& name,
                  std::size_t srcCount, std::size_t dstCount, unsigned long n, bool rounded) {
    for (const DataRow& row : dataTable("flags").rows()) {
        const auto flag = static_cast<std::int32_t>(row.integer("value"));
        std::vector<Real> src(srcCount + 2), dst(dstCount + 2);
        src[0] = 1;
        ASSERT_EQ(call(src.data(), dst.data(), flag), orvOk) << name;
        const double scale = expected(row.text(scaleColumn(family)), n, sizeof(Real) == 4);
        const double found = static_cast<double>(dst[0]);
        if (rounded) {
            EXPECT_NEAR(found / scale, 1, 1e-6) << name << " flag " << flag;
        } else {
            EXPECT_EQ(found, scale) << name << " flag " << flag;
        }
    }
}

TEST(Scales, RootsWithTwoRoundingsAreThoseListed) {
    std::vector<long> differing;
    for (const int length : kLengths) {
        const auto n = static_cast<unsigned long>(length);
        const double once = rootOnce(n, 53), twice = rootTwice(n);
        if (once == twice) continue;
        differing.push_back(static_cast<long>(n));
        const auto a = std::bit_cast<std::int64_t>(once), b = std::bit_cast<std::int64_t>(twice);
        EXPECT_EQ(std::abs(a - b), 1) << n;
    }
    EXPECT_EQ(differing, dataTable("sqrt_two_roundings").list("length"));
    EXPECT_EQ(std::bit_cast<std::uint64_t>(rootTwice(2)), 0x3fe6a09e667f3bccU);
}

TEST(Scales, RootsOfOrdersAreThoseListed) {
    for (const DataRow& row : dataTable("wht_root_scales").rows()) {
        const unsigned long n = 1UL << row.integer("order");
        EXPECT_EQ(std::bit_cast<std::uint32_t>(static_cast<float>(rootOnce(n, 24))),
                  row.bits("f32"));
        EXPECT_EQ(std::bit_cast<std::uint64_t>(rootTwice(n)), row.bits("f64")) << n;
    }
}

TEST(Scales, OfEveryLengthAreStored) {
    ASSERT_FALSE(listedKernels().empty());
    for (const ListedKernel& k : listedKernels()) {
        checkStored(*k.info, k.name, static_cast<unsigned long>(k.length));
        if (k.twin) checkStored(*k.info, k.twinName, static_cast<unsigned long>(k.length));
        if (HasFatalFailure()) return;
    }
}

TEST(Scales, OfEveryLengthAnswerAnImpulse) {
    for (const ListedKernel& k : listedKernels()) {
        const auto n = static_cast<unsigned long>(k.length);
        const bool rounded = k.single && k.complex &&
                             dataTable("complex_f32_bluestein").find("length", k.length) != nullptr;
        if (k.single) {
            checkImpulse<float>(*k.info, k.call, k.name, k.srcCount, k.dstCount, n, rounded);
        } else {
            checkImpulse<double>(*k.info, k.call, k.name, k.srcCount, k.dstCount, n, rounded);
        }
        if (HasFatalFailure()) return;
    }
}

#define ORDER(NAME, K, T)                                                                      \
    {                                                                                          \
        static constexpr const FamilyInfo& family = familyOf(#NAME, #T);                       \
        const std::string name = memberName(family, K);                                        \
        checkStored(family, name, 1UL << (K));                                                 \
        if (family.hasTwin(K)) checkStored(family, twinName(family, K), 1UL << (K));           \
        const KernelCall call = [](const void* src, void* dst, std::int32_t flag) {            \
            return orvg##NAME##_##K##_##T(static_cast<const Orv##T*>(src),                     \
                                          static_cast<Orv##T*>(dst), flag, nullptr);           \
        };                                                                                     \
        checkImpulse<Orv##T>(family, call, name, std::size_t{1} << (K), std::size_t{1} << (K), \
                             1UL << (K), false);                                               \
    }
#define ORDERS(NAME, T, LIST) \
    TEST(Scales, OfEveryOrder_##T) { LIST(ORDER, NAME, T) }
ORVGEN_ORDER_FAMILIES(ORDERS)

}  // namespace
}  // namespace orvgen::test
