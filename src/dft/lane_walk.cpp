// SPDX-License-Identifier: MIT
#include "lane_walk.h"

#include <algorithm>

#include "butterflies.h"
#include "complex_join.h"
#include "embedded_rader.h"
#include "plan/notation.h"
#include "sparse.h"

namespace orvgen::dft {

namespace {

template <class T>
std::vector<T> slice(const std::vector<T>& all, std::size_t first, std::size_t count) {
    return {all.begin() + static_cast<std::ptrdiff_t>(first),
            all.begin() + static_cast<std::ptrdiff_t>(first + count)};
}

std::string describe(std::size_t count, const plan::Plan& plan) {
    const std::string points = std::to_string(plan.length) + " points";
    return std::to_string(count) + " transforms of " + points +
           (isJoin(plan) ? " (" + plan::notation(plan) + ")" : "");
}

Vectors runBlock(Direction direction, const plan::Plan& plan, const Vectors& z) {
    if (const auto* rader = plan.as<plan::LaneRader>()) return laneRader(*rader, direction, z);
    return butterfly(direction, z);
}
Sparses runBlock(Direction direction, const plan::Plan&, const Sparses& z) {
    return sparseButterfly(direction, z);
}

// One transform of numbers of any form, all stages.
template <class Z>
std::vector<Z> transform(Direction direction, const plan::PlanPtr& plan, const std::vector<Z>& z) {
    if (!isJoin(*plan)) return runBlock(direction, *plan, z);
    const ComplexJoin join(*plan);
    std::vector<std::vector<Z>> u = join.columns(std::vector<std::vector<Z>>{z});
    for (std::size_t c = 0; c < join.M(); ++c)
        u[join.place(c)] = transform(direction, join.first(), u[join.place(c)]);
    std::vector<std::vector<Z>> v = join.rows(u);
    for (std::size_t k = 0; k < join.R(); ++k) {
        for (std::size_t c = 0; c < join.M() && join.twiddled(); ++c)
            v[k][c] = rotated(direction, v[k][c], join.twiddle(c, k), join.N());
        v[k] = transform(direction, join.second(), v[k]);
    }
    return join.outputs(v)[0];
}

}  // namespace

std::vector<Points> runInLanes(Lanes& lanes, Direction direction, const plan::PlanPtr& plan,
                               const std::vector<Points>& inputs) {
    Sparses z;
    for (std::size_t n = 0; n < inputs[0].size(); ++n) {
        Points numbers;
        for (const Points& x : inputs) numbers.push_back(x[n]);
        z.push_back(numbers[0].isAbsent() ? Sparse() : Sparse(lanes.gather(numbers)));
    }
    const bool isPadded = !std::ranges::all_of(z, &Sparse::present);
    const Vectors y = isPadded ? vectorsOf(transform(direction, plan, z))
                               : transform(direction, plan, vectorsOf(z));
    std::vector<Points> outputs(inputs.size());
    for (const Vector& v : y)
        for (std::size_t lane = 0; lane < inputs.size(); ++lane)
            outputs[lane].push_back(lanes.at(v, lane));
    return outputs;
}

Points productInLanes(Lanes& lanes, const ComplexConstants& w, const Points& z) {
    FourConstants re = everywhere(0), im = everywhere(0);
    for (std::size_t lane = 0; lane < z.size(); ++lane) {
        re[lane] = w[lane].re;
        im[lane] = w[lane].im;
    }
    const Vector v = lanes.gather(z);
    return lanes.scatter({re * v.re - im * v.im, im * v.re + re * v.im}, z.size());
}

Points LaneWalk::product(const ComplexConstants& w, const Points& z) {
    Points y;
    for (std::size_t first = 0; first < z.size(); first += 4) {
        const std::size_t count = std::min<std::size_t>(4, z.size() - first);
        const ComplexConstants constants = slice(w, first, count);
        const Points numbers = slice(z, first, count);
        for (const Point& number : count == 4 ? productInLanes(lanes_, constants, numbers)
                                              : leftovers_.product(constants, numbers))
            y.push_back(number);
    }
    return y;
}

std::vector<Points> LaneWalk::run(const plan::PlanPtr& plan, const std::vector<Points>& inputs,
                                  Standing standing) {
    std::vector<Points> outputs;
    for (std::size_t first = 0; first < inputs.size(); first += 4) {
        const std::size_t count = std::min<std::size_t>(4, inputs.size() - first);
        const std::vector<Points> group = slice(inputs, first, count);
        for (Points& y : count == 4 ? runInLanes(lanes_, direction_, plan, group)
                         : isJoin(*plan) && leftovers_.comeApart(count)
                             ? runApart(plan, group)
                             : leftovers_.run(plan, group, standing))
            outputs.push_back(std::move(y));
    }
    return outputs;
}

std::vector<Points> LaneWalk::runApart(const plan::PlanPtr& plan,
                                       const std::vector<Points>& inputs) {
    const ComplexJoin join(*plan);
    const plan::CooleyTukey* twiddled = join.twiddled();
    const bool inColumns = twiddled && twiddled->twiddleLanes == plan::TwiddleLanes::Columns;
    const auto runStage = [&](const plan::PlanPtr& part, const std::vector<Points>& z,
                              Standing standing) {
        const bool isTwiddled = standing == Standing::BesideTwiddles;
        lanes_.graph().stage((isTwiddled ? "twiddled: " : "") + describe(z.size(), *part));
        return run(part, z, standing);
    };
    const auto standing = [](bool isTwiddled) {
        return isTwiddled ? Standing::BesideTwiddles : Standing::AsTheyCome;
    };
    std::vector<Points> v =
        join.rows(runStage(join.first(), join.columns(inputs), standing(inColumns)));
    if (twiddled) twiddle(join, v);
    return join.outputs(runStage(join.second(), v, standing(twiddled && !inColumns)));
}

// Column 0 (with the rows in the lanes) or row 0 (with the columns) has no twiddles; of all others
// every lane is multiplied, also by 1.
void LaneWalk::twiddle(const ComplexJoin& join, std::vector<Points>& rows) {
    lanes_.graph().stage("twiddles of order " + std::to_string(join.N()));
    const bool rowsInLanes = join.twiddled()->twiddleLanes == plan::TwiddleLanes::Rows;
    const std::size_t inLanes = rowsInLanes ? join.R() : join.M();
    const std::vector<int>& others = rowsInLanes ? join.twiddled()->columns : join.twiddled()->rows;
    for (std::size_t other = 0; other < others.size(); ++other) {
        if (others[other] == 0) continue;
        std::vector<Point*> numbers;
        ComplexConstants w;
        Points z;
        for (std::size_t s = 0; s < rows.size() / join.R(); ++s)
            for (std::size_t lane = 0; lane < inLanes; ++lane) {
                const std::size_t c = rowsInLanes ? other : lane;
                const std::size_t k = rowsInLanes ? lane : other;
                numbers.push_back(&rows[s * join.R() + k][c]);
                w.push_back(unitRoot(direction_, join.twiddle(c, k), join.N()));
                z.push_back(*numbers.back());
            }
        const Points turned = product(w, z);
        for (std::size_t i = 0; i < numbers.size(); ++i) *numbers[i] = turned[i];
    }
}

}  // namespace orvgen::dft
