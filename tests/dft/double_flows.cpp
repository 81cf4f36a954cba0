// SPDX-License-Identifier: MIT
// The complex binary64 flows: counts beside the table, proof on unit vectors, how the two
// directions are related bit for bit, and that no value crosses between the lanes too early.
#include <gtest/gtest.h>

#include <bitset>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <set>

#include "dft/complex_proof.h"
#include "dft/double_flow.h"
#include "dft/double_plans.h"
#include "dft/families.h"
#include "flows/number_theory.h"
#include "kernelgen/count.h"
#include "kernelgen/evaluate.h"
#include "realdft/forward.h"
#include "support/count_check.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

using flows::Direction;
using kernelgen::Graph;
using kernelgen::Node;
using kernelgen::Op;
using plan::Plan;
using plan::PlanPtr;

const std::vector<Direction> kDirections = {Direction::Forward, Direction::Inverse};
using Samples = std::vector<double>;  // real and imaginary parts in turn

Samples evaluated(const Graph& graph, const Samples& x, double scale = 1.0) {
    Samples y(x.size(), std::numeric_limits<double>::signaling_NaN());
    kernelgen::evaluate(graph, x.data(), y.data(), scale);
    return y;
}

Samples randomSamples(int n, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-1, 1);
    Samples x;
    for (int i = 0; i < 2 * n; ++i) x.push_back(uniform(random));
    return x;
}

using Elements = std::bitset<64>;

// The inputs that each value depends on, and the outputs that depend on it.
std::vector<Elements> dependences(const Graph& g) {
    std::vector<Elements> from;
    for (const Node& n : g.nodes()) {
        from.emplace_back();
        if (n.op == Op::Input) from.back().set(static_cast<std::size_t>(n.index));
        for (const kernelgen::NodeId operand : {n.a, n.b})
            if (operand >= 0) from.back() |= from[static_cast<std::size_t>(operand)];
    }
    return from;
}

std::vector<Elements> reach(const Graph& g) {
    std::vector<Elements> to(g.nodes().size());
    for (std::size_t i = to.size(); i-- > 0;) {
        const Node& n = g.nodes()[i];
        if (n.op == Op::Output) to[i].set(static_cast<std::size_t>(n.index));
        for (const kernelgen::NodeId operand : {n.a, n.b})
            if (operand >= 0) to[static_cast<std::size_t>(operand)] |= to[i];
    }
    return to;
}

TEST(DoubleCounts, AreThoseOfTheTable) {
    const DataTable& table = dataTable("complex_f64");
    ASSERT_EQ(table.rows().size(), 63U);
    for (const Direction direction : kDirections) {
        CountCheck check("complex_f64");
        for (const DataRow& row : table.rows()) {
            const auto n = static_cast<int>(row.integer("length"));
            const Graph g = dft::doubleFlow(direction, n);
            const kernelgen::Counts c = kernelgen::countOperations(g);
            // a vector operation is two real ones
            check.compare(n, "additions", row.integer("additions"), 2 * c.additions);
            check.compare(n, "multiplications", row.integer("multiplications"),
                          2 * c.multiplications());
            check.compare(n, "swaps", row.integer("swaps"), c.swaps);
            EXPECT_EQ(c.swaps, (n - 1) / 2);
            EXPECT_LE(c.flips, c.swaps);
            EXPECT_EQ(c.conversions(), 0);
            EXPECT_EQ(c.signSteps, 0);
            EXPECT_EQ(c.scaleProducts, n);
            EXPECT_TRUE(g.deadNodes().empty());
            for (const Node& node : g.nodes())
                EXPECT_NE(node.op, direction == Direction::Forward ? Op::FlipHigh : Op::FlipLow);
        }
        EXPECT_EQ(check.report(), "");
    }
}

// The prime lengths: which method, with what inside, and where the cycle's transform begins.
class Primes {
  public:
    explicit Primes(int p) : plan_(dft::doublePlans().plan(p)) {
        for (const PlanPtr& part : forwardParts(*plan_)) look(*part);
    }
    std::string method() const { return plan_->as<plan::RealRader>() ? "rader" : "direct"; }
    long firstRadix() const {
        const auto* rader = plan_->as<plan::RealRader>();
        return rader ? firstRadixOf(*rader->cycle) : 0;
    }
    const std::set<std::string>& inside() const { return words_; }

  private:
    // Of a Rader block the cycle's transform; of a join both factors, by their real rows.
    static std::vector<PlanPtr> forwardParts(const Plan& plan) {
        if (const auto* rader = plan.as<plan::RealRader>()) return {rader->cycle};
        if (const auto* join = plan.as<plan::GoodThomas>())
            return {join->first[0], join->second[0]};
        if (const auto* join = plan.as<plan::CooleyTukey>())
            return {join->first[0], join->second[0]};
        return {};
    }
    void look(const Plan& plan) {
        if (plan.length > 5) {  // smaller blocks are butterflies, in whatever form
            if (plan.as<plan::RealRader>()) words_.insert("nested:" + std::to_string(plan.length));
            if (plan.as<plan::Block>()) words_.insert("direct:" + std::to_string(plan.length));
        }
        for (const PlanPtr& part : forwardParts(plan)) look(*part);
    }
    // The stage that runs first; a block of 4 points is two stages of radix 2.
    static long firstRadixOf(const Plan& plan) {
        const auto parts = forwardParts(plan);
        if (parts.size() == 2) return firstRadixOf(*parts[0]);
        return plan.length == 4 ? 2 : plan.length;
    }

    PlanPtr plan_;
    std::set<std::string> words_;
};

TEST(DoubleCounts, OfPrimeLengthsAreThoseOfTheTable) {
    for (const DataRow& row : dataTable("complex_f64_primes").rows()) {
        const auto p = static_cast<int>(row.integer("length"));
        const Primes found(p);
        std::vector<std::string> words = row.words("method");
        EXPECT_EQ(found.method(), words.at(0)) << p;
        words.erase(words.begin());
        EXPECT_EQ(found.inside(), std::set<std::string>(words.begin(), words.end())) << p;
        EXPECT_EQ(found.firstRadix(), row.empty("first_radix") ? 0 : row.integer("first_radix"))
            << p;
        const DataRow& all = dataTable("complex_f64").row("length", p);
        EXPECT_EQ(row.integer("additions"), all.integer("additions"));
        EXPECT_EQ(row.integer("multiplications"), all.integer("multiplications"));
    }
}

// The cycle's first stage as the flow runs it: a value of the cycle depends on inputs of one set of
// that stage, or on several sets as a whole; sums of sines lack one input of each set of an odd
// radix. (The sets of radix r are x[g^(q + t (p-1)/r)], t < r.)
TEST(DoubleStages, OfPrimeLengthsBeginWithTheRadixOfTheTable) {
    for (const DataRow& row : dataTable("complex_f64_primes").rows()) {
        if (row.empty("first_radix")) continue;
        const auto p = static_cast<std::size_t>(row.integer("length"));
        const auto radix = static_cast<std::size_t>(row.integer("first_radix"));
        const std::size_t sets = (p - 1) / radix;
        const long g = flows::smallestRoot(static_cast<long>(p));
        std::vector<Elements> stage(sets);
        long power = 1;
        for (std::size_t q = 0; q < p - 1; ++q, power = power * g % static_cast<long>(p))
            stage[q % sets].set(static_cast<std::size_t>(power));
        for (const Direction direction : kDirections) {
            std::set<std::size_t> met;
            for (Elements from : dependences(dft::doubleFlow(direction, static_cast<int>(p)))) {
                from.reset(0);
                std::size_t touched = 0, whole = 0;
                for (std::size_t s = 0; s < sets; ++s) {
                    if ((from & stage[s]).none()) continue;
                    ++touched;
                    whole += (from & stage[s]).count() >= radix - radix % 2;
                    if (from == stage[s]) met.insert(s);
                }
                EXPECT_TRUE(touched <= 1 || touched == whole) << p;
            }
            EXPECT_EQ(met.size(), sets) << p;
        }
    }
}

// Lengths at which both operation counts, the scale included, are those of the binary32 kernel
// with the trivial twiddles that run there in lanes; those with fewer of both, and with more.
TEST(DoubleCounts, AreThoseOfBinary32WhereListed) {
    const auto single = dft::complexSingleFamilies()[0];
    for (const DataRow& row : dataTable("complex_f64").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        const auto c = kernelgen::countOperations(dft::doubleFlow(Direction::Forward, n));
        const Graph g = single.kernel(n).flow;
        int additions = 0, multiplications = 0;
        if (g.arithmetic() == kernelgen::Arithmetic::SingleLanes) {
            const auto lanes = kernelgen::countLanes(g);
            additions = lanes.liveAdditions;
            multiplications = lanes.liveMultiplications + 2 * n;
        } else {
            const auto scalar = kernelgen::countOperations(g);
            additions = scalar.additions;
            multiplications = scalar.multiplications();
        }
        const bool same =
            2 * c.additions == additions && 2 * c.multiplications() == multiplications;
        EXPECT_EQ(same, row.flag("same_as_f32")) << n;
        const bool fewer = 2 * c.additions < additions && 2 * c.multiplications() < multiplications;
        const bool more = 2 * c.additions > additions && 2 * c.multiplications() > multiplications;
        if (n % 8 == 0 && (n == 24 || (n & (n - 1)) == 0)) {
            EXPECT_TRUE(fewer) << n;
        }
        for (const int rader : {26, 34, 39, 51, 52, 58})
            EXPECT_TRUE(n != rader || more) << n;  // a Rader block of 13, 17 or 29 in a step
    }
}

// The table says where a complex transform has just twice the products of the real one.
TEST(DoubleCounts, AreTwiceTheRealOnesWhereListed) {
    for (const DataRow& row : dataTable("complex_f64").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        const auto c = kernelgen::countOperations(dft::doubleFlow(Direction::Forward, n));
        const auto real = kernelgen::countOperations(
            realdft::forwardGraph(n, realdft::PackedFormat::Ccs, kernelgen::Arithmetic::Double));
        EXPECT_EQ(c.multiplications() == real.multiplications(), row.flag("twice_real")) << n;
    }
}

// A swapped value goes into the two outputs of its pair. Where the table allows it, it may be
// swapped earlier and reach four.
TEST(DoubleStages, SwapsStandEarlyAtListedLengthsOnly) {
    for (const DataRow& row : dataTable("complex_f64").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        for (const Direction direction : kDirections) {
            const Graph g = dft::doubleFlow(direction, n);
            const std::vector<Elements> reached = reach(g);
            for (std::size_t i = 0; i < reached.size(); ++i) {
                if (g.nodes()[i].op != Op::Swap) continue;
                const std::size_t outputs = reached[i].count();
                EXPECT_TRUE(outputs == 2 || (outputs == 4 && row.flag("early_swap"))) << n;
            }
        }
    }
}

TEST(DoubleProof, AcceptsEveryLength) {
    for (const Direction direction : kDirections)
        for (const int n : kLengths)
            EXPECT_LT(complexProofError(dft::doubleFlow(direction, n), direction, n), 1e-60) << n;
}

bool sameBits(const Samples& a, const Samples& b) {
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::memcmp(&a[i], &b[i], sizeof(double)) != 0 &&
            !(std::isnan(a[i]) && std::isnan(b[i])))
            return false;
    return a.size() == b.size();
}

Samples swapped(const Samples& x) {
    Samples y;
    for (std::size_t i = 0; i < x.size(); i += 2) {
        y.push_back(x[i + 1]);
        y.push_back(x[i]);
    }
    return y;
}

Samples reversed(const Samples& x) {
    const std::size_t n = x.size() / 2;
    Samples y;
    for (std::size_t k = 0; k < n; ++k) {
        y.push_back(x[2 * ((n - k) % n)]);
        y.push_back(x[2 * ((n - k) % n) + 1]);
    }
    return y;
}

// inverse(x) = swap(forward(swap(x))) and inverse(x) = reverse(forward(x)).
TEST(DoubleRelations, HoldBetweenTheDirections) {
    CountCheck check("inverse_relations_f64");
    for (const DataRow& row : dataTable("inverse_relations").rows()) {
        const auto n = static_cast<int>(row.integer("length"));
        const Graph forward = dft::doubleFlow(Direction::Forward, n);
        const Graph inverse = dft::doubleFlow(Direction::Inverse, n);
        bool bySwap = true;
        bool byReversal = true;
        for (unsigned seed = 0; seed < 24; ++seed) {
            Samples x = randomSamples(n, seed);
            if (seed % 4 == 3) {  // zeros of either sign, infinities, a NaN
                for (std::size_t i = seed % 3; i < x.size(); i += 3) x[i] = i % 2 == 0 ? 0.0 : -0.0;
                if (seed % 8 == 7) x[seed % x.size()] = std::numeric_limits<double>::infinity();
                if (seed == 23) x[0] = std::numeric_limits<double>::quiet_NaN();
            }
            const Samples y = evaluated(inverse, x);
            bySwap = bySwap && sameBits(y, swapped(evaluated(forward, swapped(x))));
            byReversal = byReversal && sameBits(y, reversed(evaluated(forward, x)));
        }
        check.compare(n, "f64_swap", row.flag("f64_swap"), bySwap);
        check.compare(n, "f64_reverse", row.flag("f64_reverse"), byReversal);
    }
    EXPECT_EQ(check.report(), "");
}

TEST(DoubleRelations, HoldThereAndBack) {
    for (const int n : kLengths) {
        const Samples x = randomSamples(n, 3);
        const Graph forward = dft::doubleFlow(Direction::Forward, n);
        const Graph inverse = dft::doubleFlow(Direction::Inverse, n);
        const double byN = 1.0 / n;
        for (const auto& [there, back] :
             std::vector<std::pair<double, double>>{{1.0, byN}, {byN, 1.0}}) {
            const Samples y = evaluated(inverse, evaluated(forward, x, there), back);
            for (std::size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(y[i], x[i], 4e-15) << n;
        }
    }
}

// The lengths with a block that is made otherwise than in the real kernels, or with a direct block
// of 11, whose terms are summed in another order.
const std::set<int> kOwnBlocks = {10, 11, 17, 19, 22, 23, 29, 33, 34, 35, 37, 38, 41,
                                  43, 44, 46, 47, 50, 51, 53, 55, 57, 58, 59, 60, 61};

// Real samples stay in the real lane up to the swaps: the result is the forward real transform,
// completed to all N bins, and bit for bit where the blocks are the same.
TEST(DoubleLanes, OfRealSamplesAreTheRealTransform) {
    for (const int n : kLengths) {
        const Graph complex = dft::doubleFlow(Direction::Forward, n);
        const Graph half =
            realdft::forwardGraph(n, realdft::PackedFormat::Ccs, kernelgen::Arithmetic::Double);
        bool equal = true;
        for (unsigned seed = 5; seed < 15; ++seed) {
            Samples x = randomSamples(n, seed);
            Samples real;
            for (std::size_t i = 0; i < x.size(); i += 2) {
                real.push_back(x[i]);
                x[i + 1] = 0;
            }
            const Samples y = evaluated(complex, x);
            Samples ccs(static_cast<std::size_t>(n) + 2, 0.0);
            kernelgen::evaluate(half, real.data(), ccs.data(), 1.0);
            for (int k = 0; k < n; ++k) {
                const auto i = static_cast<std::size_t>(2 * k);
                const auto j = static_cast<std::size_t>(2 * (2 * k > n ? n - k : k));
                const double im = 2 * k > n ? -ccs[j + 1] : ccs[j + 1];
                EXPECT_NEAR(y[i], ccs[j], 1e-13) << n;
                EXPECT_NEAR(y[i + 1], im, 1e-13) << n;
                equal = equal && y[i] == ccs[j] && y[i + 1] == im;
            }
            EXPECT_EQ(y[1], 0) << n;
            if (n % 2 == 0) {
                EXPECT_EQ(y[static_cast<std::size_t>(n) + 1], 0) << n;
            }
        }
        EXPECT_EQ(equal, !kOwnBlocks.contains(n)) << n;
    }
}

// An infinity or a NaN in a real part reaches imaginary parts through the swaps alone, and y[0]
// and y[N/2] have none: their imaginary parts are as without it.
TEST(DoubleLanes, KeepTheFirstImaginaryPartClean) {
    for (const int n : kLengths) {
        for (const Direction direction : kDirections) {
            const Graph g = dft::doubleFlow(direction, n);
            const Samples x = randomSamples(n, 11);
            const Samples clean = evaluated(g, x);
            for (const double bad : {std::numeric_limits<double>::infinity(),
                                     std::numeric_limits<double>::quiet_NaN()}) {
                for (int t = 0; t < n; t += 1 + n / 7) {
                    Samples spoilt = x;
                    spoilt[static_cast<std::size_t>(2 * t)] = bad;
                    const Samples y = evaluated(g, spoilt);
                    EXPECT_FALSE(std::isfinite(y[0]));
                    EXPECT_EQ(y[1], clean[1]) << n;
                    if (n % 2 == 0) {
                        EXPECT_EQ(y[static_cast<std::size_t>(n) + 1],
                                  clean[static_cast<std::size_t>(n) + 1]);
                    }
                }
            }
        }
    }
}

// The direct block of 7: three cosines and three sines, each six times.
TEST(DoubleLanes, TakeOneConstantForBothAtSeven) {
    const Graph g = dft::doubleFlow(Direction::Forward, 7);
    std::map<double, int> uses;
    for (const Node& n : g.nodes())
        if (n.op == Op::Mul) uses[std::round(g.constant(n).lane(0).asDouble() * 1e6) / 1e6] += 2;
    const std::map<double, int> expected = {{0.222521, 6}, {0.433884, 6}, {0.62349, 6},
                                            {0.781831, 6}, {0.900969, 6}, {0.974928, 6}};
    EXPECT_EQ(uses, expected);
}

TEST(DoubleFamilies, HaveTheBodiesAndTwinsOfTheTable) {
    for (const auto& family : dft::complexDoubleFamilies()) {
        EXPECT_EQ(family.info->numbers.count(), 63U);
        for (const int n : {2, 3, 4, 5, 64}) {
            const auto kernel = family.kernel(n);
            EXPECT_EQ(kernel.alignment,
                      n < 5 ? kernelgen::Alignment::TwoBodies : kernelgen::Alignment::Twin);
            EXPECT_TRUE(kernel.readsAllFirst);
        }
    }
}

}  // namespace
}  // namespace orvgen::test
