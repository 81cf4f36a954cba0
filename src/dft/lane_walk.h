// SPDX-License-Identifier: MIT
// Transforms in lanes, by plan.
//
// Four equal transforms fill the lanes and run all their stages there. Of a number of transforms
// that four does not divide, the rest are leftovers: how they stand in vectors is another matter in
// the kernels of composite and of prime lengths.
#pragma once

#include "plan/plan.h"
#include "roots.h"

namespace orvgen::dft {

// Where the numbers of a stage stand: as the twiddles do that multiply them, or as they come.
enum class Standing : std::uint8_t { AsTheyCome, BesideTwiddles };

// One to three transforms or numbers, which do not fill the lanes.
class Leftovers {
  public:
    virtual ~Leftovers() = default;
    // Whether so many transforms of several stages are taken apart by their first join, so that
    // each stage fills the lanes anew.
    virtual bool comeApart(std::size_t count) const = 0;
    virtual std::vector<Points> run(const plan::PlanPtr& plan, const std::vector<Points>& inputs,
                                    Standing standing) = 0;
    virtual Points product(const ComplexConstants& w, const Points& z) = 0;
};

class LaneWalk {
  public:
    LaneWalk(Lanes& lanes, Direction direction, Leftovers& leftovers)
        : lanes_(lanes), direction_(direction), leftovers_(leftovers) {}

    Points run(const plan::PlanPtr& plan, const Points& input) {
        return run(plan, {input}, Standing::AsTheyCome)[0];
    }
    // Numbers times constants of their own, all of them full products, four neighbours at a time.
    Points product(const ComplexConstants& w, const Points& z);

  private:
    // Each entry is the input of one transform, and becomes its output.
    std::vector<Points> run(const plan::PlanPtr& plan, const std::vector<Points>& inputs,
                            Standing standing);
    std::vector<Points> runApart(const plan::PlanPtr& plan, const std::vector<Points>& inputs);
    void twiddle(const class ComplexJoin& join, std::vector<Points>& rows);

    Lanes& lanes_;
    Direction direction_;
    Leftovers& leftovers_;
};

// One to four transforms, one in each lane. Numbers that are absent (Point::isAbsent) take no part.
std::vector<Points> runInLanes(Lanes& lanes, Direction direction, const plan::PlanPtr& plan,
                               const std::vector<Points>& inputs);
Points productInLanes(Lanes& lanes, const ComplexConstants& w, const Points& z);

// Leftovers that leave lanes empty. Three transforms run together; one or two of several stages
// come apart.
class EmptyLanes final : public Leftovers {
  public:
    EmptyLanes(Lanes& lanes, Direction direction) : lanes_(lanes), direction_(direction) {}

    bool comeApart(std::size_t count) const override { return count < 3; }
    std::vector<Points> run(const plan::PlanPtr& plan, const std::vector<Points>& inputs,
                            Standing /*standing*/) override {
        return runInLanes(lanes_, direction_, plan, inputs);
    }
    Points product(const ComplexConstants& w, const Points& z) override {
        return productInLanes(lanes_, w, z);
    }

  private:
    Lanes& lanes_;
    Direction direction_;
};

}  // namespace orvgen::dft
