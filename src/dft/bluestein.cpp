// SPDX-License-Identifier: MIT
#include "bluestein.h"

#include "kernelgen/real.h"
#include "lane_walk.h"
#include "plan/notation.h"

namespace orvgen::dft {

using kernelgen::ExactReal;
using kernelgen::Real;

ComplexConstant chirp(Direction direction, std::size_t p, std::size_t n) {
    return unitRoot(direction, n * n % (2 * p), 2 * p);
}

ComplexConstants chirpSpectrum(Direction direction, std::size_t p, std::size_t M) {
    ComplexConstants H;
    for (std::size_t k = 0; k < M; ++k) {
        // The chirp is even in n: n and -n make a cosine.
        Real re = 1, im = 0;
        for (std::size_t n = 1; n < p; ++n) {
            const ComplexConstant w = chirp(direction, p, n);
            const Real c = 2 * unitRoot(Direction::Forward, k * n % M, M).re.exact().value;
            re += w.re.exact().value * c;
            im -= w.im.exact().value * c;
        }
        // H[0] is 1/M: the sum over a full period of the chirp vanishes.
        if (k == 0) im = 0;
        const std::string name = "H" + std::to_string(p) + "[" + std::to_string(k) + "]";
        H.push_back({{ExactReal{re / M}, "re " + name}, {ExactReal{im / M}, "im " + name}});
    }
    return H;
}

Points bluestein(Lanes& lanes, const plan::Bluestein& plan, Direction direction, const Points& x) {
    const std::size_t p = x.size() - 1, M = static_cast<std::size_t>(plan.forward->length);
    ComplexConstants w;
    for (std::size_t n = 0; n <= p; ++n) w.push_back(chirp(direction, p, n));
    ComplexConstants first = w;
    first[p] = {0, 0};  // the element behind src
    EmptyLanes noForward(lanes, Direction::Forward), noInverse(lanes, Direction::Inverse);
    LaneWalk forward(lanes, Direction::Forward, noForward);
    LaneWalk inverse(lanes, Direction::Inverse, noInverse);

    lanes.graph().stage("products by the chirp");
    Points padded = forward.product(first, x);
    padded.resize(M);  // by absent numbers
    lanes.graph().stage("transform of " + std::to_string(M) +
                        " points: " + plan::notation(*plan.forward));
    const Points Y = forward.run(plan.forward, padded);
    lanes.graph().stage("products by the spectrum of the chirp");
    const Points Z = forward.product(chirpSpectrum(direction, p, M), Y);
    lanes.graph().stage("back");
    Points z = inverse.run(plan.back, Z);
    z.resize(p + 1);
    lanes.graph().stage("products by the chirp");
    Points X = forward.product(w, z);
    X.pop_back();
    return X;
}

}  // namespace orvgen::dft
