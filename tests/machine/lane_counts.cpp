// SPDX-License-Identifier: MIT
// The operations of the complex binary32 kernels as their machine code runs them, lane by lane: the
// count tables, the place of the scale, and the order of the stages.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "kernels/kernel_list.h"
#include "machine/lane_values.h"
#include "machine/library.h"
#include "support/count_check.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

// The aligned body and the twin of one length in both directions.
template <class Check>
void forBodies(long length, Check check) {
    int found = 0;
    for (const ListedKernel& k : listedKernels()) {
        if (!k.complex || !k.single || k.length != length) continue;
        for (const std::string& function : {k.name, k.twinName}) {
            SCOPED_TRACE(function);
            check(LaneRun(library(), traceOf(function)));
            ++found;
        }
    }
    EXPECT_EQ(found, 4) << length;
}

// The lanes that are stored are multiplied by the scale, two for each element.
void compareLanes(CountCheck& check, const DataRow& row, const LaneRun& run, long stored) {
    const long n = row.integer("length");
    const std::pair<const char*, long> columns[] = {
        {"live_additions", run.live().additions},
        {"live_multiplications", run.live().multiplications + 2 * n},
        {"executed_additions", run.executed().additions},
        {"executed_multiplications", run.executed().multiplications + 2 * stored}};
    for (const auto& [column, found] : columns)
        check.compare(n, column, row.integer(column), found);
}

std::string complaints(const CountCheck& check, const std::vector<std::string>& columns) {
    std::string text;
    for (const std::string& s : check.countComplaints(columns)) text += s + "\n";
    return text;
}

TEST(LaneCounts, OfCompositeLengths) {
    CountCheck check("complex_f32_composite"), mixed("complex_f32_mixed_products");
    for (const DataRow& row : dataTable("complex_f32_composite").rows()) {
        const long n = row.integer("length");
        if (n < 6) continue;  // scalar code
        forBodies(n, [&](const LaneRun& run) {
            const LaneTotals found = run.distinct();
            check.compare(n, "additions", row.integer("additions"), found.additions);
            check.compare(n, "multiplications", row.integer("multiplications"),
                          found.multiplications);
            const DataRow* m = dataTable("complex_f32_mixed_products").find("length", n);
            if (!m) return;
            mixed.compare(n, "mixed", m->integer("mixed"), run.mixed());
            mixed.compare(n, "all", m->integer("all"), found.multiplications);
        });
    }
    EXPECT_EQ(check.report(), "");
    EXPECT_EQ(mixed.report(), "");
}

TEST(LaneCounts, OfRaderLengths) {
    CountCheck check("complex_f32_rader"), alone("complex_f32_factors");
    for (const DataRow& row : dataTable("complex_f32_rader").rows()) {
        const long p = row.integer("length");
        forBodies(p, [&](const LaneRun& run) {
            compareLanes(check, row, run, p);
            const DataRow* factor = dataTable("complex_f32_factors").find("factor", p);
            if (!factor) return;
            alone.compare(p, "alone_additions", factor->integer("alone_additions"),
                          run.distinct().additions);
            alone.compare(p, "alone_multiplications", factor->integer("alone_multiplications"),
                          run.distinct().multiplications);
        });
    }
    EXPECT_EQ(check.report(), "");
    EXPECT_EQ(complaints(alone, {"alone_additions", "alone_multiplications"}), "");
}

// Whole vectors are stored, and half of the last one is not wanted.
TEST(LaneCounts, OfBluesteinLengths) {
    CountCheck check("complex_f32_bluestein");
    for (const DataRow& row : dataTable("complex_f32_bluestein").rows()) {
        const long p = row.integer("length");
        forBodies(p, [&](const LaneRun& run) { compareLanes(check, row, run, p + 1); });
    }
    EXPECT_EQ(check.report(), "");
}

// Length 2 p holds two factors p beside p two-point butterflies.
TEST(LaneCounts, OfEmbeddedFactors) {
    CountCheck check("complex_f32_factors");
    for (const DataRow& row : dataTable("complex_f32_factors").rows()) {
        const long p = row.integer("factor");
        forBodies(2 * p, [&](const LaneRun& run) {
            check.compare(p, "embedded_additions", row.integer("embedded_additions"),
                          (run.distinct().additions - 4 * p) / 2);
            check.compare(p, "embedded_multiplications", row.integer("embedded_multiplications"),
                          run.distinct().multiplications / 2);
        });
    }
    EXPECT_EQ(complaints(check, {"embedded_additions", "embedded_multiplications"}), "");
}

// Length 26 holds two factors 13 of two real lanes each.
TEST(LaneCounts, OfConstantsOfFactor13) {
    forBodies(26, [](const LaneRun& run) {
        long all = 0;
        for (const DataRow& row : dataTable("complex_f32_factor13_constants").rows()) {
            const std::string text = row.text("magnitude");
            const double magnitude = text == "sin(pi/3)"     ? std::sqrt(0.75)
                                     : text == "1/12"        ? 1.0 / 12
                                     : text == "sqrt(13)/12" ? std::sqrt(13.0) / 12
                                                             : row.number("magnitude");
            const long found = run.productsBy(magnitude, 6e-7);
            EXPECT_EQ(found, 4 * row.integer("products")) << text;
            all += found;
        }
        EXPECT_EQ(all, run.distinct().multiplications);
    });
}

// Every part of the result is a value of the transform times the scale, so the scale comes last and
// nowhere else.
TEST(LaneValues, TheScaleIsTheLastFactor) {
    for (int n = 6; n <= kLengths.last; ++n) {
        forBodies(n, [n](const LaneRun& run) {
            EXPECT_EQ(run.results().size(), static_cast<std::size_t>(2 * n));
            for (const LaneExpression& e : run.expressions()) {
                const auto& a = run.expressions()[static_cast<std::size_t>(e.a)];
                const bool computes =
                    e.form == LaneExpression::Form::sum || e.form == LaneExpression::Form::product;
                EXPECT_FALSE(computes && a.form == LaneExpression::Form::scaled);
            }
        });
    }
}

// ---- the order of stages
//
// A transform of length N by stages of r1, r2, .. points: after the first i stages a value depends
// on inputs at the distance N / P of each other, P = r1 .. ri, and on all of those. Inside a stage
// it depends on some of the sets of the stage before, all of one set of this stage.

using Set = std::set<long>;

class StageSets {
  public:
    // `lacking`: inputs from this number on are zero and known to be.
    StageSets(long length, const std::vector<long>& radices, long lacking) {
        long points = 1;
        add(length, points, lacking);
        for (const long r : radices) add(length, points *= r, lacking);
        EXPECT_EQ(points, length);
    }

    std::size_t count() const { return stages_.size(); }
    const std::set<Set>& of(std::size_t stage) const { return stages_[stage]; }

    // Whether a set stands within one stage as described.
    bool allows(const Set& s) const {
        for (std::size_t i = 1; i < stages_.size(); ++i) {
            const auto within = std::ranges::find_if(
                stages_[i], [&](const Set& larger) { return std::ranges::includes(larger, s); });
            if (within == stages_[i].end()) continue;
            return std::ranges::all_of(stages_[i - 1], [&](const Set& smaller) {
                const bool touches =
                    std::ranges::any_of(smaller, [&](long n) { return s.count(n) != 0; });
                return !touches || std::ranges::includes(s, smaller);
            });
        }
        return false;
    }

  private:
    void add(long length, long points, long lacking) {
        std::set<Set> sets;
        for (long first = 0; first < length / points; ++first) {
            Set s;
            for (long n = first; n < std::min(length, lacking); n += length / points) s.insert(n);
            if (!s.empty()) sets.insert(s);
        }
        stages_.push_back(sets);
    }

    std::vector<std::set<Set>> stages_;
};

// "4 T 2", "3, 2 T 3", "2 11d", "2 2 13r"
std::vector<long> radices(const std::string& stages) {
    std::vector<long> list;
    bool inNumber = false;
    for (const char c : stages) {
        const bool digit = c >= '0' && c <= '9';
        if (digit && !inNumber) list.push_back(0);
        if (digit) list.back() = 10 * list.back() + (c - '0');
        inNumber = digit;
    }
    return list;
}

// Elements by the index that a transform knows them by; those without one are left out.
Set indexed(const Elements& elements, const std::map<long, long>& index) {
    Set s;
    for (const auto& [element, i] : index)
        if (elements[static_cast<std::size_t>(element)]) s.insert(i);
    return s;
}

void expectStages(const std::set<Set>& found, const StageSets& stages) {
    for (const Set& s : found) {
        if (!s.empty()) {
            EXPECT_TRUE(stages.allows(s)) << s.size() << " from " << *s.begin();
        }
    }
    for (std::size_t i = 0; i < stages.count(); ++i)
        for (const Set& s : stages.of(i)) EXPECT_EQ(found.count(s), 1U) << "stage " << i;
}

// What each value depends on.
std::set<Set> dependences(const LaneRun& run, const std::map<long, long>& index) {
    std::set<Set> sets;
    for (const LaneExpression& e : run.expressions()) sets.insert(indexed(e.elements, index));
    return sets;
}

std::map<long, long> naturalOrder(long n) {
    std::map<long, long> index;
    for (long i = 0; i < n; ++i) index[i] = i;
    return index;
}

TEST(LaneStages, OfCompositeLengthsAreInTheOrderOfTheTable) {
    for (const DataRow& row : dataTable("complex_f32_composite").rows()) {
        const long n = row.integer("length");
        if (n < 6) continue;
        const StageSets stages(n, radices(row.text("stages")), n);
        forBodies(n, [&](const LaneRun& run) {
            expectStages(dependences(run, naturalOrder(n)), stages);
        });
    }
}

// g^q modulo p for q = 0 .. p - 2
std::vector<long> powers(long g, long p) {
    std::vector<long> list{1};
    while (static_cast<long>(list.size()) < p - 1) list.push_back(list.back() * g % p);
    return list;
}

bool isPrimitiveRoot(long g, long p) {
    const std::vector<long> power = powers(g, p);
    return static_cast<long>(std::set<long>(power.begin(), power.end()).size()) == p - 1;
}

// The first half transforms a[q] = x[g^-q]; the second half runs the stages backwards and gives
// X[g^r], so what a value of it reaches is what a value of the first half depends on.
TEST(LaneStages, OfRaderLengthsAreInTheOrderOfTheTable) {
    for (const DataRow& row : dataTable("complex_f32_rader").rows()) {
        const long p = row.integer("length"), cycle = row.integer("cycle");
        EXPECT_EQ(cycle, p - 1);
        const long root = row.integer("root");
        for (long g = 2; g <= root; ++g) EXPECT_EQ(isPrimitiveRoot(g, p), g == root) << p;
        const std::vector<long> power = powers(root, p);
        std::map<long, long> inputs, outputs;
        for (long q = 0; q < cycle; ++q) {
            outputs[power[static_cast<std::size_t>(q)]] = q;
            inputs[power[static_cast<std::size_t>((cycle - q) % cycle)]] = q;
        }
        const StageSets stages(cycle, radices(row.text("stages")), cycle);
        forBodies(p, [&](const LaneRun& run) {
            expectStages(dependences(run, inputs), stages);
            std::set<Set> reached;
            const std::vector<Elements> reach = run.reached();
            for (std::size_t i = 0; i < reach.size(); ++i) {
                const Set from = indexed(run.expressions()[i].elements, inputs);
                if (static_cast<long>(from.size()) == cycle)
                    reached.insert(indexed(reach[i], outputs));
            }
            expectStages(reached, stages);
        });
    }
}

// The transform of the padded sequence leaves out what is zero, so that fewer inputs stand behind a
// value than the stages have points.
TEST(LaneStages, OfBluesteinLengthsHaveTheInputsOfTheTable) {
    for (const DataRow& row : dataTable("complex_f32_bluestein").rows()) {
        const long p = row.integer("length");
        const std::vector<long> list = radices(row.text("stages"));
        const StageSets stages(row.integer("padded"), list, p);
        forBodies(p, [&](const LaneRun& run) {
            const std::set<Set> found = dependences(run, naturalOrder(p));
            expectStages(found, stages);
            std::size_t rows = 0;
            for (const DataRow& inputs : dataTable("complex_f32_bluestein_inputs").rows()) {
                if (inputs.integer("length") != p) continue;
                const auto stage = static_cast<std::size_t>(inputs.integer("stage"));
                ASSERT_LE(stage, list.size());
                std::set<long> sizes;
                for (const Set& s : stages.of(stage))
                    if (found.count(s) != 0) sizes.insert(static_cast<long>(s.size()));
                EXPECT_EQ(*sizes.begin(), inputs.integer("least")) << p << " stage " << stage;
                EXPECT_EQ(*sizes.rbegin(), inputs.integer("most")) << p << " stage " << stage;
                ++rows;
            }
            EXPECT_EQ(rows, list.size());
        });
    }
}

}  // namespace
}  // namespace orvgen::test
