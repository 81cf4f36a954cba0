#include "joins.h"

#include <algorithm>
#include <utility>

#include "butterflies.h"
#include "embedded_rader.h"

namespace orvgen::dft {

namespace {

using FourConstants = std::array<Constant, 4>;

FourConstants everywhere(const Constant& c) { return {c, c, c, c}; }

bool isQuarterTurn(std::size_t num, std::size_t den) { return 4 * num % den == 0; }

// The transforms number first .. first + count - 1.
std::vector<Points> slice(const std::vector<Points>& all, std::size_t first, std::size_t count) {
    return {all.begin() + static_cast<std::ptrdiff_t>(first),
            all.begin() + static_cast<std::ptrdiff_t>(first + count)};
}

// The columns of a Good-Thomas join stand in the order of the residues of their elements modulo M,
// which is the order in which a mirrored transform leaves them.
std::size_t place(const Decomposition& join, std::size_t c) {
    return join.join == Join::GoodThomas ? join.input(0, c) % join.M() : c;
}

std::string describe(std::size_t count, const Part& part) {
    const std::string points = std::to_string(part->length) + " points";
    return std::to_string(count) + " transforms of " + points +
           (part->join == Join::None ? "" : " (" + part->stages() + ")");
}

}  // namespace

ComplexConstant unitRoot(Direction direction, std::size_t num, std::size_t den) {
    const Constant s = kernelgen::sinTurn(static_cast<long>(num), static_cast<long>(den));
    return {kernelgen::cosTurn(static_cast<long>(num), static_cast<long>(den)),
            direction == Direction::Forward ? -s : s};
}

Vector rotated(Direction direction, const Vector& z, std::size_t num, std::size_t den) {
    num %= den;
    if (isQuarterTurn(num, den)) {
        switch (4 * num / den) {
            case 1:
                return turned(direction, z);
            case 2:
                return -z;
            case 3:
                return -turned(direction, z);
            default:
                return z;
        }
    }
    // The imaginary constant is stored with the sign of the real one, so that at 45 degrees two
    // products serve; if its own sign is the other one, sum and difference trade places.
    const ComplexConstant w = unitRoot(direction, num, den);
    const bool opposite = w.re.isNegative() != w.im.isNegative();
    const FourConstants r = everywhere(w.re);
    const FourConstants i = everywhere(opposite ? -w.im : w.im);
    if (opposite) return {r * z.re + i * z.im, r * z.im - i * z.re};
    return {r * z.re - i * z.im, i * z.re + r * z.im};
}

Points Joins::product(const ComplexConstants& w, const Points& z) {
    FourConstants re = everywhere(0), im = everywhere(0);
    for (std::size_t lane = 0; lane < z.size(); ++lane) {
        re[lane] = w[lane].re;
        im[lane] = w[lane].im;
    }
    const Vector v = lanes_->gather(z);
    return lanes_->scatter({re * v.re - im * v.im, im * v.re + re * v.im}, z.size());
}

std::vector<Points> Joins::run(const Part& part, const std::vector<Points>& inputs) {
    std::vector<Points> outputs;
    for (std::size_t first = 0; first < inputs.size(); first += 4) {
        const std::size_t count = std::min<std::size_t>(4, inputs.size() - first);
        const std::vector<Points> group = slice(inputs, first, count);
        for (Points& y : count == 4 ? runInLanes(part, group) : runRemainder(part, group))
            outputs.push_back(std::move(y));
    }
    return outputs;
}

std::vector<Points> Joins::runRemainder(const Part& part, const std::vector<Points>& inputs) {
    const bool split = inputs.size() < 3 && part->join != Join::None;
    return split ? runSplit(*part, inputs) : runInLanes(part, inputs);
}

std::vector<Points> Joins::runSplit(const Decomposition& join, const std::vector<Points>& inputs) {
    const std::size_t R = join.R(), M = join.M();
    std::vector<Points> u(inputs.size() * M);
    for (std::size_t s = 0; s < inputs.size(); ++s)
        for (std::size_t c = 0; c < M; ++c)
            for (std::size_t t = 0; t < R; ++t)
                u[s * M + place(join, c)].push_back(inputs[s][join.input(t, c)]);
    const bool isTwiddled = join.join == Join::CooleyTukey;
    u = runStage(join.first, u, isTwiddled && join.twiddleLanes == TwiddleLanes::Columns);
    if (isTwiddled) twiddle(join, u);
    return runSecond(join, u);
}

std::vector<Points> Joins::runSecond(const Decomposition& join, const std::vector<Points>& u) {
    const std::size_t R = join.R(), M = join.M();
    const std::size_t count = u.size() / M;
    std::vector<Points> v;  // row k of each sub-transform
    for (std::size_t s = 0; s < count; ++s)
        for (std::size_t k = 0; k < R; ++k) {
            v.emplace_back();
            for (std::size_t c = 0; c < M; ++c) v.back().push_back(u[s * M + place(join, c)][k]);
        }
    v = runStage(join.second, v,
                 join.join == Join::CooleyTukey && join.twiddleLanes == TwiddleLanes::Rows);

    std::vector<Points> outputs(count, Points(join.length));
    for (std::size_t s = 0; s < count; ++s)
        for (std::size_t k = 0; k < R; ++k)
            for (std::size_t q = 0; q < M; ++q) outputs[s][join.output(k, q)] = v[s * R + k][q];
    return outputs;
}

Points Joins::finish(const Decomposition& join, std::vector<Points> u) {
    twiddle(join, u);
    return runSecond(join, u)[0];
}

std::vector<Points> Joins::runStage(const Part& part, const std::vector<Points>& inputs,
                                    bool twiddled) {
    if (depth_ == 0)
        lanes_->graph().stage((twiddled ? "twiddled: " : "") + describe(inputs.size(), part));
    ++depth_;
    std::swap(twiddled_, twiddled);
    std::vector<Points> outputs = run(part, inputs);
    std::swap(twiddled_, twiddled);
    --depth_;
    return outputs;
}

// Column 0 (with the rows in the lanes) or row 0 (with the columns) has no twiddles; of all others
// every lane is multiplied, also by 1.
void Joins::twiddle(const Decomposition& join, std::vector<Points>& u) {
    const std::size_t R = join.R(), M = join.M();
    if (depth_ == 0) lanes_->graph().stage("twiddles of order " + std::to_string(join.length));
    const bool rows = join.twiddleLanes == TwiddleLanes::Rows;
    const std::size_t lanesPerTransform = rows ? R : M;
    const std::size_t count = u.size() / M * lanesPerTransform;
    for (std::size_t other = 0; other < (rows ? M : R); ++other) {
        if ((rows ? join.columns[other] : join.rows[other]) == 0) continue;
        for (std::size_t first = 0; first < count; first += 4) {
            std::vector<Point*> numbers;
            ComplexConstants w;
            Points z;
            for (std::size_t i = first; i < std::min(first + 4, count); ++i) {
                const std::size_t inLane = i % lanesPerTransform;
                const std::size_t c = rows ? other : inLane, k = rows ? inLane : other;
                numbers.push_back(&u[i / lanesPerTransform * M + c][k]);
                w.push_back(unitRoot(direction_, join.twiddle(c, k), join.length));
                z.push_back(*numbers.back());
            }
            const Points turned = product(w, z);
            for (std::size_t i = 0; i < z.size(); ++i) *numbers[i] = turned[i];
        }
    }
}

std::vector<Points> Joins::runInLanes(const Part& part, const std::vector<Points>& inputs) {
    Vectors z;
    for (std::size_t n = 0; n < part->length; ++n) {
        Points numbers;
        for (const Points& x : inputs) numbers.push_back(x[n]);
        z.push_back(lanes_->gather(numbers));
    }
    std::vector<Points> outputs(inputs.size());
    for (const Vector& y : runVectors(part, z))
        for (std::size_t lane = 0; lane < inputs.size(); ++lane)
            outputs[lane].push_back(lanes_->at(y, lane));
    return outputs;
}

Vectors Joins::runVectors(const Part& part, const Vectors& z) {
    return composed(part, direction_, z, [this](const Vectors& x) { return runBlock(x); });
}

Vectors Joins::runBlock(const Vectors& z) {
    return hasEmbeddedRader(z.size()) ? embeddedRader(direction_, z) : butterfly(direction_, z);
}

}  // namespace orvgen::dft
