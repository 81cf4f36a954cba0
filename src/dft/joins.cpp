#include "joins.h"

#include <algorithm>

#include "butterflies.h"

namespace orvgen::dft {

using kernelgen::cosTurn;
using kernelgen::sinTurn;

namespace {

std::array<Constant, 4> everywhere(const Constant& c) { return {c, c, c, c}; }

bool isQuarterTurn(std::size_t num, std::size_t den) { return 4 * num % den == 0; }

Constant cosine(std::size_t num, std::size_t den) {
    return cosTurn(static_cast<long>(num), static_cast<long>(den));
}
Constant sine(Direction direction, std::size_t num, std::size_t den) {
    const Constant s = sinTurn(static_cast<long>(num), static_cast<long>(den));
    return direction == Direction::Forward ? -s : s;
}

}  // namespace

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
    // products serve; if it is the other one, sum and difference trade places.
    const Constant wr = cosine(num, den);
    const Constant wi = sine(direction, num, den);
    const bool opposite = wr.isNegative() != wi.isNegative();
    const auto r = everywhere(wr);
    const auto i = everywhere(opposite ? -wi : wi);
    if (opposite) return {r * z.re + i * z.im, r * z.im - i * z.re};
    return {r * z.re - i * z.im, i * z.re + r * z.im};
}

Vector operator*(const LaneConstants& w, const Vector& z) {
    return {w.re * z.re - w.im * z.im, w.im * z.re + w.re * z.im};
}

std::vector<Points> Joins::run(const Part& part, const std::vector<Points>& inputs) {
    std::vector<Points> outputs;
    std::size_t done = 0;
    while (done < inputs.size()) {
        const std::size_t count = std::min<std::size_t>(4, inputs.size() - done);
        const std::vector<Points> group(inputs.begin() + static_cast<long>(done),
                                        inputs.begin() + static_cast<long>(done + count));
        done += count;
        if (count < 3 && part->join != Join::None) {
            for (Points& y : runSplit(*part, group)) outputs.push_back(std::move(y));
            continue;
        }
        Vectors z;
        for (std::size_t n = 0; n < part->length; ++n) {
            Points numbers;
            for (const Points& x : group) numbers.push_back(x[n]);
            z.push_back(lanes_->gather(numbers));
        }
        const Vectors y = runInLanes(part, z);
        for (std::size_t lane = 0; lane < count; ++lane) {
            Points numbers;
            for (const Vector& v : y) numbers.push_back(lanes_->at(v, lane));
            outputs.push_back(std::move(numbers));
        }
    }
    return outputs;
}

std::vector<Points> Joins::runSplit(const Decomposition& join, const std::vector<Points>& inputs) {
    const std::size_t R = join.R(), M = join.M();
    std::vector<Points> first;
    for (const Points& x : inputs)
        for (std::size_t c = 0; c < M; ++c) {
            first.emplace_back();
            for (std::size_t t = 0; t < R; ++t) first.back().push_back(x[join.input(t, c)]);
        }
    name(std::to_string(first.size()) + " transforms of " + std::to_string(R) + " points (" +
         join.first->stages() + ")");
    ++depth_;
    const std::vector<Points> u = run(join.first, first);
    --depth_;

    std::vector<Points> second;  // row k of each sub-transform
    for (std::size_t s = 0; s < inputs.size(); ++s)
        for (std::size_t k = 0; k < R; ++k) {
            second.emplace_back();
            for (std::size_t c = 0; c < M; ++c) second.back().push_back(u[s * M + c][k]);
        }
    name((join.join == Join::CooleyTukey ? "twiddles, and " : "") + std::to_string(second.size()) +
         " transforms of " + std::to_string(M) + " points (" + join.second->stages() + ")");
    ++depth_;
    const std::vector<Points> v =
        join.join == Join::CooleyTukey ? runTwiddled(join, second) : run(join.second, second);
    --depth_;

    std::vector<Points> outputs;
    for (std::size_t s = 0; s < inputs.size(); ++s) {
        Points y(join.length);
        for (std::size_t k = 0; k < R; ++k)
            for (std::size_t q = 0; q < M; ++q) y[join.output(k, q)] = v[s * R + k][q];
        outputs.push_back(std::move(y));
    }
    return outputs;
}

// Lanes are rows; column c of a group meets the twiddles of c with the group's rows. Column 0 has
// none; in all others every lane is multiplied, also by 1.
std::vector<Points> Joins::runTwiddled(const Decomposition& join, const std::vector<Points>& rows) {
    std::vector<Points> outputs;
    for (std::size_t first = 0; first < rows.size(); first += 4) {
        const std::size_t count = std::min<std::size_t>(4, rows.size() - first);
        Vectors z;
        for (std::size_t c = 0; c < join.M(); ++c) {
            Points numbers;
            LaneConstants w{everywhere(0), everywhere(0)};
            for (std::size_t lane = 0; lane < count; ++lane) {
                numbers.push_back(rows[first + lane][c]);
                const std::size_t turn = join.twiddle(c, (first + lane) % join.R());
                w.re[lane] = cosine(turn, join.length);
                w.im[lane] = sine(direction_, turn, join.length);
            }
            const Vector u = lanes_->gather(numbers);
            z.push_back(join.columns[c] == 0 ? u : w * u);
        }
        const Vectors y = runInLanes(join.second, z);
        for (std::size_t lane = 0; lane < count; ++lane) {
            Points numbers;
            for (const Vector& v : y) numbers.push_back(lanes_->at(v, lane));
            outputs.push_back(std::move(numbers));
        }
    }
    return outputs;
}

Vectors Joins::runInLanes(const Part& part, const Vectors& z) {
    if (part->join == Join::None) return butterfly(direction_, z);
    const Decomposition& join = *part;
    const std::size_t R = join.R(), M = join.M();
    std::vector<Vectors> u;
    for (std::size_t c = 0; c < M; ++c) {
        Vectors x;
        for (std::size_t t = 0; t < R; ++t) x.push_back(z[join.input(t, c)]);
        u.push_back(runInLanes(join.first, x));
    }
    Vectors y(join.length);
    for (std::size_t k = 0; k < R; ++k) {
        Vectors v;
        for (std::size_t c = 0; c < M; ++c)
            v.push_back(join.join == Join::GoodThomas
                            ? u[c][k]
                            : rotated(direction_, u[c][k], join.twiddle(c, k), join.length));
        const Vectors x = runInLanes(join.second, v);
        for (std::size_t q = 0; q < M; ++q) y[join.output(k, q)] = x[q];
    }
    return y;
}

void Joins::name(const std::string& stage) {
    if (depth_ == 0) lanes_->graph().stage(stage);
}

}  // namespace orvgen::dft
