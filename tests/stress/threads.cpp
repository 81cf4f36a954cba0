// SPDX-License-Identifier: MIT
// All functions from several threads at once: a source and a read-only plan that all share, a
// destination, a buffer and a rounding mode of their own. Every thread finds the bits that it would
// find alone.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "stress/plans.h"
#include "stress/subject.h"

namespace orvgen::test {
namespace {

constexpr unsigned threadCount = 4;

std::uint32_t controlOf(unsigned thread) { return mxcsr::masks | mxcsr::rounding[thread % 4]; }

// Runs work(thread) in all threads and returns the first complaint.
template <class Work>
std::string inThreads(const Work& work) {
    std::vector<std::string> complaints(threadCount);
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < threadCount; ++t) {
        threads.emplace_back([&, t] { complaints[t] = work(t); });
    }
    for (std::thread& t : threads) t.join();
    for (const std::string& c : complaints)
        if (!c.empty()) return c;
    return "";
}

TEST(Threads, KernelsDoNotMeet) {
    struct Case {
        const Subject* subject;
        Block src;
        std::vector<std::vector<std::uint8_t>> expected;  // by thread
    };
    std::vector<Case> cases;
    std::size_t largest = 0, buffer = 0;
    for (const Subject& s : subjects()) {
        cases.push_back({&s, Block(s.readBytes()), {}});
        fillOrdinary(cases.back().src.data(), s.readBytes(), s.single, 4);
        largest = std::max(largest, s.dstBytes);
        buffer = std::max(buffer, s.bufferBytes);
    }
    const auto run = [&](const Case& c, const Block& dst, void* scratch, unsigned t) {
        const Subject& s = *c.subject;
        std::memset(dst.data(), 0xcb, s.dstBytes);
        // By name or by number, the twin where there is one.
        const Outcome o =
            t % 2 ? callWith(s.byNumber,
                             s.byNumberArguments(c.src.data(), dst.data(), s.number,
                                                 orvScaleBySqrtN, scratch),
                             controlOf(t), patterns[t])
                  : callWith(t == 2 && s.twin ? s.twin : s.kernel,
                             s.arguments(c.src.data(), dst.data(), orvScaleBySqrtN, scratch),
                             controlOf(t), patterns[t]);
        return o.status == orvOk ? o.fault : "status " + std::to_string(o.status);
    };
    const Block alone(largest), aloneBuffer(buffer);
    std::size_t roundings = 0;  // cases where rounding down and up can be told apart
    for (Case& c : cases) {
        for (unsigned t = 0; t < threadCount; ++t) {
            ASSERT_EQ(run(c, alone, aloneBuffer.data(), t), "") << c.subject->name;
            c.expected.emplace_back(alone.data(), alone.data() + c.subject->dstBytes);
        }
        roundings += c.expected[1] != c.expected[2];
    }
    // Not where four numbers or fewer add up exactly.
    EXPECT_GT(roundings, cases.size() * 9 / 10);
    EXPECT_EQ(inThreads([&](unsigned t) -> std::string {
                  const Block dst(largest), own(buffer);
                  for (unsigned i = 0; i < 3 * cases.size(); ++i) {
                      // Each thread begins elsewhere; in the second round all are at the same
                      // place.
                      const unsigned shift = i / cases.size() == 1 ? 0 : t * 301;
                      const Case& c = cases[(i + shift) % cases.size()];
                      std::string fault = run(c, dst, i % 3 ? own.data() : nullptr, t);
                      if (fault.empty() &&
                          std::memcmp(dst.data(), c.expected[t].data(), c.subject->dstBytes) != 0) {
                          fault = "other bits than alone";
                      }
                      if (!fault.empty()) return c.subject->name + ": " + fault;
                  }
                  return "";
              }),
              "");
}

template <class F>
class PlanThreads : public testing::Test {};
TYPED_TEST_SUITE(PlanThreads, PlanFamilies);

// Up to 32 a run only reads the plan; from 64 on each thread has one of its own, built beside the
// others.
TYPED_TEST(PlanThreads, RunsDoNotMeet) {
    using F = TypeParam;
    using Real = typename F::Real;
    for (std::int32_t length = 2; length <= 1024; length *= 2) {
        const auto n = static_cast<std::size_t>(length);
        std::vector<Real> x(n);
        fillOrdinary(reinterpret_cast<std::uint8_t*>(x.data()), n * sizeof(Real), sizeof(Real) == 4,
                     5);
        const Plan<F> shared(length);
        const auto run = [&](typename F::Spec* spec, std::vector<Real>& y, unsigned t) {
            return callWith(F::plainRun, F::runArguments(x.data(), y.data(), spec), controlOf(t),
                            patterns[t]);
        };
        std::vector<std::vector<Real>> expected(threadCount, std::vector<Real>(n));
        for (unsigned t = 0; t < threadCount; ++t) {
            const Outcome o = run(shared.spec(), expected[t], t);
            ASSERT_EQ(o.status, orvOk);
            ASSERT_EQ(o.fault, "");
        }
        EXPECT_EQ(inThreads([&](unsigned t) -> std::string {
                      for (int i = 0; i < 20; ++i) {
                          const Plan<F> own(length);
                          std::vector<Real> y(n);
                          run(length <= 32 ? shared.spec() : own.spec(), y, t);
                          if (std::memcmp(y.data(), expected[t].data(), n * sizeof(Real)) != 0) {
                              return "length " + std::to_string(length) + ": other bits than alone";
                          }
                      }
                      return "";
                  }),
                  "");
    }
}

}  // namespace
}  // namespace orvgen::test
