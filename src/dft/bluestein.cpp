#include "bluestein.h"

#include "kernelgen/real.h"
#include "sparse.h"

namespace orvgen::dft {

using kernelgen::ExactReal;
using kernelgen::Real;

bool hasBluestein(std::size_t p) { return p == 47 || p == 59; }

Part bluesteinForward(std::size_t p) {
    const auto n = block;
    const Part eight = cooleyTukey(n(4), n(2));
    return p == 47 ? cooleyTukey(goodThomas(n(3), n(4)), eight)
                   : cooleyTukey(eight, cooleyTukey(n(4), n(4)));
}

Part bluesteinInverse(std::size_t p) {
    const auto n = block;
    const Part eight = cooleyTukey(n(4), n(2));
    return p == 47 ? cooleyTukey(eight, goodThomas(n(4), n(3)), {}, {}, TwiddleLanes::Columns)
                   : cooleyTukey(cooleyTukey(n(4), n(4)), eight, {}, {}, TwiddleLanes::Columns);
}

ComplexConstant chirp(Direction direction, std::size_t p, std::size_t n) {
    return unitRoot(direction, n * n % (2 * p), 2 * p);
}

ComplexConstants chirpSpectrum(Direction direction, std::size_t p) {
    const std::size_t M = bluesteinForward(p)->length;
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

namespace {

// Four neighbours at a time.
Points product(Joins& joins, const ComplexConstants& w, const Points& z) {
    Points y;
    for (std::size_t first = 0; first < z.size(); first += 4) {
        ComplexConstants four;
        Points numbers;
        for (std::size_t i = first; i < first + 4; ++i) {
            four.push_back(w[i]);
            numbers.push_back(z[i]);
        }
        for (const Point& number : joins.product(four, numbers)) y.push_back(number);
    }
    return y;
}

// The columns of the first stage, four in the lanes; elements beyond the end of y are zeros that
// take no part.
std::vector<Points> firstStage(Lanes& lanes, const Decomposition& join, const Points& y) {
    std::vector<Points> u(join.M());
    for (std::size_t first = 0; first < join.M(); first += 4) {
        Sparses z;
        for (std::size_t t = 0; t < join.R(); ++t) {
            const std::size_t start = join.input(t, first);
            if (start >= y.size()) {
                z.emplace_back();
                continue;
            }
            z.emplace_back(lanes.gather({y[start], y[start + 1], y[start + 2], y[start + 3]}));
        }
        const Sparses out = composed(join.first, Direction::Forward, z, [](const Sparses& x) {
            return sparseButterfly(Direction::Forward, x);
        });
        for (const Sparse& v : out)
            for (std::size_t lane = 0; lane < 4; ++lane)
                u[first + lane].push_back(lanes.at(v.vector(), lane));
    }
    return u;
}

}  // namespace

Points bluestein(Lanes& lanes, Direction direction, const Points& x) {
    const std::size_t p = x.size() - 1;
    ComplexConstants w;
    for (std::size_t n = 0; n <= p; ++n) w.push_back(chirp(direction, p, n));
    ComplexConstants padded = w;
    padded[p] = {0, 0};  // the element behind src
    Joins forward(lanes, Direction::Forward), inverse(lanes, Direction::Inverse);

    lanes.graph().stage("products by the chirp");
    const Points y = product(forward, padded, x);
    const Part transform = bluesteinForward(p);
    lanes.graph().stage("transform of " + std::to_string(transform->length) +
                        " points: " + transform->stages());
    const Points Y = forward.finish(*transform, firstStage(lanes, *transform, y));
    lanes.graph().stage("products by the spectrum of the chirp");
    const Points Z = product(forward, chirpSpectrum(direction, p), Y);
    lanes.graph().stage("back");
    const Points z = inverse.run(bluesteinInverse(p), {Z})[0];
    lanes.graph().stage("products by the chirp");
    Points X = product(forward, w, {z.begin(), z.begin() + static_cast<std::ptrdiff_t>(p + 1)});
    X.pop_back();
    return X;
}

}  // namespace orvgen::dft
