// SPDX-License-Identifier: MIT
// Random arguments for the by-length functions, the kernels, their twins and the plan functions:
// numbers and flags in and out of range, null and wild pointers, buffers at any byte, in place,
// overlapping, against guard pages. What must happen follows from the arguments alone. The seeds
// are fixed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <sstream>

#include "stress/plans.h"
#include "stress/subject.h"
#include "support/guarded.h"

namespace orvgen::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

class Chance {
  public:
    explicit Chance(unsigned seed) : engine(seed) {}
    std::uint64_t bits() { return engine(); }
    std::size_t below(std::size_t n) { return static_cast<std::size_t>(engine() % n); }
    bool percent(unsigned p) { return below(100) < p; }
    template <class T>
    T of(std::initializer_list<T> list) {
        return list.begin()[below(list.size())];
    }
    // Any 32-bit integer; the interesting ones are likely.
    std::int32_t integer() {
        using Limits = std::numeric_limits<std::int32_t>;
        if (percent(30)) return static_cast<std::int32_t>(bits());
        const std::int32_t near = of({0, 1, 2, 4, 8, 13, 16, 64, 128, 256, 65536, 1 << 30,
                                      Limits::max() - 3, Limits::min() + 4});
        const std::int32_t sum = near + (static_cast<std::int32_t>(below(7)) - 3);
        return percent(30) ? -sum : sum;
    }
    // An address that nobody may use.
    void* wild() { return reinterpret_cast<void*>(bits() | 1); }

  private:
    std::mt19937_64 engine;
};

bool isScale(std::int32_t flag) { return flag == 1 || flag == 2 || flag == 4 || flag == 8; }

// The areas in which src, dst and buffer lie.
struct Areas {
    GuardedMemory src, dst, buffer;
    explicit Areas(std::size_t bytes) : src(bytes), dst(bytes), buffer(bytes) {}
};

struct Call {
    const Subject* kernel = nullptr;  // of the number; null where there is none
    const Subject* family = nullptr;
    int entry = 0;  // by number, kernel, twin
    std::int32_t number = 0, flag = 0;
    std::int32_t status = 0;  // that must come
    const void* src = nullptr;
    void* dst = nullptr;
    void* buffer = nullptr;
    std::uint32_t control = 0;

    std::string describe() const {
        std::ostringstream text;
        text << family->name << "'s family, entry " << entry << ", number " << number << ", flag "
             << flag << ", src " << src << ", dst " << dst << ", buffer " << buffer
             << ", control word " << control;
        return text.str();
    }
};

class Fuzzer {
  public:
    explicit Fuzzer(unsigned seed) : chance(seed) {
        for (const Subject& s : subjects())
            families[reinterpret_cast<void*>(s.byNumber)].push_back(&s);
        for (const auto& [function, members] : families) keys.push_back(function);
        // By name, so that a seed means the same in every process.
        std::sort(keys.begin(), keys.end(),
                  [this](void* a, void* b) { return families[a][0]->name < families[b][0]->name; });
    }

    std::size_t familyCount() const { return keys.size(); }

    // One random call; what is wrong with it.
    std::string once() {
        choose();
        Areas& areas = call.family->order ? large : small;
        place(areas);
        return call.status == orvOk ? perform(areas) : refuse(areas);
    }

    std::map<std::int32_t, int> seen;  // calls by status

  private:
    Chance chance;
    std::map<void*, std::vector<const Subject*>> families;
    std::vector<void*> keys;
    Areas small{4096}, large{(1 << 17)};
    Call call;
    unsigned calls = 0;

    void choose() {
        const auto& members = families[keys[chance.below(keys.size())]];
        call = {};
        call.family = members[0];
        call.number =
            chance.percent(75) ? members[chance.below(members.size())]->number : chance.integer();
        for (const Subject* s : members)
            if (s->number == call.number) call.kernel = s;
        if (call.kernel) call.entry = static_cast<int>(chance.below(call.kernel->twin ? 3 : 2));
        call.flag = chance.percent(75) ? chance.of({1, 2, 4, 8}) : chance.integer();
        call.control = mxcsr::masks | mxcsr::rounding[chance.below(4)];
    }

    std::uint8_t* at(const GuardedMemory& area, std::size_t bytes) {
        const std::size_t gap = chance.of({std::size_t{0}, std::size_t{16}, chance.below(32)});
        return chance.percent(50) ? area.data() + gap : area.end() - bytes - gap;
    }

    void place(Areas& areas) {
        const bool srcNull = chance.percent(5), dstNull = chance.percent(5);
        call.status = !call.kernel         ? orvErrSize
                      : srcNull || dstNull ? orvErrNullPtr
                      : isScale(call.flag) ? orvOk
                                           : orvErrFlag;
        if (call.status != orvOk) {
            // Nobody looks at what the pointers point to.
            const bool wild = chance.percent(50);
            call.src = srcNull ? nullptr
                       : wild  ? chance.wild()
                               : areas.src.data() + chance.below(32);
            call.dst = dstNull ? nullptr
                       : wild  ? chance.wild()
                               : areas.dst.data() + chance.below(32);
            call.buffer = wild ? chance.wild() : nullptr;
            return;
        }
        const Subject& s = *call.kernel;
        call.src = at(areas.src, s.readBytes());
        if (chance.percent(25)) {
            // In place; complex kernels also with any overlap.
            std::uint8_t* middle = areas.src.data() + 1088 + chance.below(32);
            std::ptrdiff_t distance = 0;
            if (s.complex && chance.percent(70)) {
                const auto bytes = static_cast<std::ptrdiff_t>(s.srcBytes);
                distance = static_cast<std::ptrdiff_t>(chance.below(2 * s.srcBytes)) - bytes;
                if (chance.percent(50)) distance = distance / 8 * 8;
            }
            call.src = middle;
            call.dst = middle + distance;
        } else {
            call.dst = at(areas.dst, s.dstBytes);
        }
        if (s.bufferBytes == 0) {
            call.buffer = chance.wild();
        } else if (chance.percent(75)) {
            call.buffer =
                chance.percent(50) ? areas.buffer.data() : areas.buffer.end() - s.bufferBytes;
        }
    }

    Outcome go() {
        const Subject& f = *call.family;
        const Pattern& pattern = patterns[++calls % std::size(patterns)];
        if (call.entry == 0) {
            return callCatching(
                f.byNumber,
                f.byNumberArguments(call.src, call.dst, call.number, call.flag, call.buffer),
                call.control, pattern);
        }
        return callCatching(call.entry == 1 ? call.kernel->kernel : call.kernel->twin,
                            f.arguments(call.src, call.dst, call.flag, call.buffer), call.control,
                            pattern);
    }

    std::string judge(const Outcome& o) {
        ++seen[call.status];
        std::string wrong = o.fault;
        if (wrong.empty() && o.status != call.status) {
            wrong = "status " + std::to_string(o.status) + " for " + std::to_string(call.status);
        }
        if (wrong.empty()) wrong = checkControl(call.control, o.control);
        return wrong.empty() ? "" : call.describe() + ": " + wrong;
    }

    static Bytes contents(const GuardedMemory& m) { return {m.data(), m.data() + m.size()}; }

    std::string refuse(Areas& areas) {
        const Bytes src = contents(areas.src), dst = contents(areas.dst);
        const std::string wrong = judge(go());
        if (!wrong.empty()) return wrong;
        return src == contents(areas.src) && dst == contents(areas.dst)
                   ? ""
                   : call.describe() + ": memory changed";
    }

    std::string perform(Areas& areas) {
        const Subject& s = *call.kernel;
        // Finite everywhere, for those who read along behind src.
        const int poison = chance.of({0x00, 0x01, 0x3c, 0x41, 0xc0});
        for (const GuardedMemory* m : {&areas.src, &areas.dst, &areas.buffer})
            std::memset(m->data(), poison, m->size());
        const Block src(s.readBytes()), dst(s.dstBytes), buffer(s.bufferBytes);
        std::memset(src.data(), poison, s.readBytes());
        fillOrdinary(src.data(), s.srcBytes, s.single, static_cast<unsigned>(chance.bits()));
        std::memcpy(const_cast<void*>(call.src), src.data(), s.srcBytes);
        callWith(s.kernel, s.arguments(src.data(), dst.data(), call.flag, buffer.data()),
                 call.control, patterns[0]);

        // What both areas must hold afterwards.
        auto* out = static_cast<std::uint8_t*>(call.dst);
        Bytes expectedSrc = contents(areas.src), expectedDst = contents(areas.dst);
        const bool shared = out >= areas.src.data() && out < areas.src.end();
        const GuardedMemory& written = shared ? areas.src : areas.dst;
        std::memcpy((shared ? expectedSrc : expectedDst).data() + (out - written.data()),
                    dst.data(), s.dstBytes);
        const std::string wrong = judge(go());
        if (!wrong.empty()) return wrong;
        if (expectedSrc != contents(areas.src) || expectedDst != contents(areas.dst)) {
            return call.describe() + ": other bytes than those of separate aligned buffers";
        }
        return "";
    }
};

TEST(Fuzz, FindsNothingInKernelsAndByLengthFunctions) {
    ASSERT_FALSE(subjects().empty());
    Fuzzer fuzzer(20100317);
    EXPECT_EQ(fuzzer.familyCount(), 20U);
    int complaints = 0;
    for (int i = 0; i < 150000 && complaints < 5; ++i) {
        const std::string wrong = fuzzer.once();
        if (wrong.empty()) continue;
        ADD_FAILURE() << "call " << i << ": " << wrong;
        ++complaints;
    }
    for (const std::int32_t status : {orvOk, orvErrSize, orvErrNullPtr, orvErrFlag})
        EXPECT_GT(fuzzer.seen[status], 1000) << "status " << status;
}

template <class F>
class PlanFuzz : public testing::Test {};
TYPED_TEST_SUITE(PlanFuzz, PlanFamilies);

bool isPower(std::int64_t n) { return n > 0 && (n & (n - 1)) == 0; }

TYPED_TEST(PlanFuzz, RefusesLengthsOutOfRange) {
    using F = TypeParam;
    Chance chance(7);
    const GuardedMemory memory(1 << 18);
    int refused = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::int32_t n = chance.percent(50)
                                   ? chance.integer()
                                   : static_cast<std::int32_t>(chance.below(1 << 17)) - 1000;
        // Powers from 2 on and their successors may pass.
        if (n > 1 && (isPower(n) || isPower(std::int64_t{n} - 1))) continue;
        ++refused;
        std::int32_t size = -77;
        auto* spec = static_cast<typename F::Spec*>(chance.wild());
        auto* const before = spec;
        ASSERT_EQ(F::getSize(n, &size), orvErrSize) << n;
        ASSERT_EQ(F::initAlloc(&spec, n), orvErrSize) << n;
        // Init builds as far as it gets, in a block whose size it does not know.
        if (n <= 1024) {
            ASSERT_EQ(F::init(&spec, n, memory.data()), orvErrSize) << n;
        }
        ASSERT_EQ(size, -77) << n;
        ASSERT_EQ(spec, before) << n;
        void* const nowhere = chance.wild();
        ASSERT_EQ(F::init(nullptr, n, static_cast<std::uint8_t*>(nowhere)), orvErrNullPtr) << n;
        ASSERT_EQ(F::init(&spec, n, nullptr), orvErrNullPtr) << n;
        ASSERT_EQ(spec, before) << n;
    }
    EXPECT_GT(refused, 10000);
}

// A plan at any byte, buffers at any byte, any rounding mode: the bits of a plan from the allocator
// with aligned buffers.
TYPED_TEST(PlanFuzz, FindsNothingInRuns) {
    using F = TypeParam;
    using Real = typename F::Real;
    Chance chance(11);
    GuardedMemory src(1 << 15), dst(1 << 15), memory(1 << 18);
    for (int i = 0; i < 1500; ++i) {
        const std::int32_t length = 1 << (1 + chance.below(11));
        const std::size_t bytes = static_cast<std::size_t>(length) * sizeof(Real);
        std::int32_t size = 0;
        ASSERT_EQ(F::getSize(length, &size), orvOk);
        const auto planBytes = static_cast<std::size_t>(size);
        ASSERT_LE(planBytes + 32, memory.size());
        std::memset(memory.data(), static_cast<int>(chance.below(256)), memory.size());
        std::uint8_t* const block = chance.percent(50)
                                        ? memory.data() + chance.below(32)
                                        : memory.end() - planBytes - chance.below(32);
        typename F::Spec* spec = nullptr;
        const std::uint32_t before = mxcsr::masks | (chance.percent(50) ? mxcsr::flags : 0);
        const Outcome built = callCatching(F::plainInit, F::initArguments(&spec, length, block),
                                           before, patterns[chance.below(std::size(patterns))]);
        ASSERT_EQ(built.fault, "") << length;
        ASSERT_EQ(built.status, orvOk) << length;
        ASSERT_EQ(checkControl(before, built.control), "") << length;

        const Block x(bytes), y(bytes);
        fillOrdinary(x.data(), bytes, sizeof(Real) == 4, static_cast<unsigned>(chance.bits()));
        const std::uint32_t control = mxcsr::masks | mxcsr::rounding[chance.below(4)];
        const Plan<F> plan(length);
        const auto run = [&](const std::uint8_t* from, std::uint8_t* to, auto* with) {
            return callCatching(F::plainRun,
                                F::runArguments(reinterpret_cast<const Real*>(from),
                                                reinterpret_cast<Real*>(to), with),
                                control, patterns[chance.below(std::size(patterns))]);
        };
        ASSERT_EQ(run(x.data(), y.data(), plan.spec()).status, orvOk);

        const auto at = [&](const GuardedMemory& m) {
            return chance.percent(50) ? m.data() + chance.below(32)
                                      : m.end() - bytes - chance.below(32);
        };
        std::uint8_t* const from = at(src);
        std::uint8_t* const to = chance.percent(25) ? from : at(dst);
        std::memset(dst.data(), 0xcb, dst.size());
        std::memcpy(from, x.data(), bytes);
        Bytes expected(dst.data(), dst.data() + dst.size());
        if (to != from) std::memcpy(expected.data() + (to - dst.data()), y.data(), bytes);
        const Outcome o = run(from, to, spec);
        ASSERT_EQ(o.fault, "") << length;
        ASSERT_EQ(o.status, orvOk) << length;
        ASSERT_EQ(checkControl(control, o.control), "") << length;
        ASSERT_EQ(std::memcmp(to, y.data(), bytes), 0) << length;
        ASSERT_EQ(std::memcmp(from, (to == from ? y : x).data(), bytes), 0) << length;
        ASSERT_EQ(std::memcmp(dst.data(), expected.data(), expected.size()), 0) << length;
    }
}

// The environment of a run: nothing but inexact from ordinary data, everything else unmasked.
TYPED_TEST(PlanFuzz, RaisesInexactAlone) {
    using F = TypeParam;
    using Real = typename F::Real;
    for (std::int32_t length = 2; length <= 4096; length *= 2) {
        const auto n = static_cast<std::size_t>(length);
        std::vector<Real> x(n), y(n);
        fillOrdinary(reinterpret_cast<std::uint8_t*>(x.data()), n * sizeof(Real), sizeof(Real) == 4,
                     6);
        const Plan<F> plan(length);
        for (const std::uint32_t rounding : mxcsr::rounding) {
            for (const std::uint32_t denormals :
                 {0U, mxcsr::denormalsAreZero | mxcsr::flushToZero}) {
                for (const Pattern& pattern : patterns) {
                    const std::uint32_t mode = rounding | denormals;
                    for (const std::uint32_t control :
                         {mode | mxcsr::inexactMask, mode | mxcsr::masks | mxcsr::flags}) {
                        const Outcome o = callCatching(
                            F::plainRun, F::runArguments(x.data(), y.data(), plan.spec()), control,
                            pattern);
                        ASSERT_EQ(o.fault, "") << length << ", " << pattern.name;
                        ASSERT_EQ(o.status, orvOk);
                        ASSERT_EQ(checkControl(control, o.control), "");
                        ASSERT_EQ(o.control & mxcsr::flags & ~control & ~mxcsr::inexact, 0U);
                    }
                }
            }
        }
        // Zeros with everything unmasked.
        std::fill(x.begin(), x.end(), Real{0});
        for (const std::uint32_t rounding : mxcsr::rounding) {
            const Outcome o =
                callCatching(F::plainRun, F::runArguments(x.data(), y.data(), plan.spec()),
                             rounding, patterns[0]);
            ASSERT_EQ(o.fault, "") << length;
            ASSERT_EQ(o.control, rounding) << length;
            for (const Real v : y) ASSERT_EQ(v, 0) << length;
        }
    }
}

}  // namespace
}  // namespace orvgen::test
