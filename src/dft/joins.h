// The joins on lanes: runs a decomposition on any number of equal sub-transforms.
#pragma once

#include "decomposition.h"
#include "lanes.h"

namespace orvgen::dft {

struct ComplexConstant {
    Constant re, im;
};
using ComplexConstants = std::vector<ComplexConstant>;

// exp(-+ 2 pi i num/den)
ComplexConstant unitRoot(Direction direction, std::size_t num, std::size_t den);

class Joins {
  public:
    Joins(Lanes& lanes, Direction direction) : lanes_(&lanes), direction_(direction) {}
    Joins(const Joins&) = delete;
    Joins& operator=(const Joins&) = delete;
    virtual ~Joins() = default;

    // Each entry is the input of one sub-transform, and becomes its output. Four sub-transforms at
    // a time fill the lanes and run all their stages there.
    std::vector<Points> run(const Part& part, const std::vector<Points>& inputs);

    // The rest of a Cooley-Tukey join of one transform, from its columns u[c][k] on.
    Points finish(const Decomposition& join, std::vector<Points> u);

    // Numbers times constants of their own, all of them full products. One to four of them.
    virtual Points product(const ComplexConstants& w, const Points& z);

  protected:
    // One to three sub-transforms that are left over. Here they leave lanes empty; one or two of
    // several stages are taken apart by their first join, and each stage fills the lanes anew.
    virtual std::vector<Points> runRemainder(const Part& part, const std::vector<Points>& inputs);

    std::vector<Points> runSplit(const Decomposition& join, const std::vector<Points>& inputs);
    std::vector<Points> runSecond(const Decomposition& join, const std::vector<Points>& u);
    std::vector<Points> runInLanes(const Part& part, const std::vector<Points>& inputs);
    // One sub-transform in each lane.
    Vectors runVectors(const Part& part, const Vectors& z);
    virtual Vectors runBlock(const Vectors& z);

    // Whether the stage that runs has its twiddles in its own lanes.
    bool isTwiddled() const { return twiddled_; }

    Lanes& lanes() { return *lanes_; }
    Direction direction() const { return direction_; }

  private:
    void twiddle(const Decomposition& join, std::vector<Points>& u);
    std::vector<Points> runStage(const Part& part, const std::vector<Points>& inputs,
                                 bool twiddled);

    Lanes* lanes_;
    Direction direction_;
    int depth_ = 0;
    bool twiddled_ = false;
};

// z exp(-+ 2 pi i num/den), the same in all lanes: a quarter turn is an exchange and a sign, any
// other one a full complex product.
Vector rotated(Direction direction, const Vector& z, std::size_t num, std::size_t den);

// A decomposition run on numbers of any form, its blocks by `block`.
template <class Z, class Block>
std::vector<Z> composed(const Part& part, Direction direction, const std::vector<Z>& z,
                        const Block& block) {
    if (part->join == Join::None) return block(z);
    const Decomposition& join = *part;
    const std::size_t R = join.R(), M = join.M();
    std::vector<std::vector<Z>> u;
    for (std::size_t c = 0; c < M; ++c) {
        std::vector<Z> x;
        for (std::size_t t = 0; t < R; ++t) x.push_back(z[join.input(t, c)]);
        u.push_back(composed(join.first, direction, x, block));
    }
    std::vector<Z> y(join.length);
    for (std::size_t k = 0; k < R; ++k) {
        std::vector<Z> v;
        for (std::size_t c = 0; c < M; ++c)
            v.push_back(join.join == Join::GoodThomas
                            ? u[c][k]
                            : rotated(direction, u[c][k], join.twiddle(c, k), join.length));
        const std::vector<Z> x = composed(join.second, direction, v, block);
        for (std::size_t q = 0; q < M; ++q) y[join.output(k, q)] = x[q];
    }
    return y;
}

}  // namespace orvgen::dft
