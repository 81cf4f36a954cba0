// The joins on lanes: runs a decomposition on any number of equal sub-transforms.
#pragma once

#include "decomposition.h"
#include "lanes.h"

namespace orvgen::dft {

class Joins {
  public:
    Joins(Lanes& lanes, Direction direction) : lanes_(&lanes), direction_(direction) {}

    // Each entry is the input of one sub-transform, and becomes its output. Four sub-transforms at
    // a time fill the lanes and run their stages there; what is left over is taken apart by its
    // first join, and each stage fills the lanes anew as far as it can.
    std::vector<Points> run(const Part& part, const std::vector<Points>& inputs);

    // One sub-transform in each lane.
    Vectors runInLanes(const Part& part, const Vectors& z);

  private:
    std::vector<Points> runSplit(const Decomposition& join, const std::vector<Points>& inputs);
    std::vector<Points> runTwiddled(const Decomposition& join, const std::vector<Points>& rows);
    void name(const std::string& stage);

    Lanes* lanes_;
    Direction direction_;
    int depth_ = 0;
};

// z exp(-+ 2 pi i num/den), the same in all lanes: a quarter turn is an exchange and a sign, any
// other one a full complex product.
Vector rotated(Direction direction, const Vector& z, std::size_t num, std::size_t den);

// z times constants of its own in every lane, all of them full products.
struct LaneConstants {
    std::array<Constant, 4> re, im;
};
Vector operator*(const LaneConstants& w, const Vector& z);

}  // namespace orvgen::dft
