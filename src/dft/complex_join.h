// SPDX-License-Identifier: MIT
// A join of complex transforms: where its numbers go.
//
// Both stages have the root exponent 1, so that the bins of a Good-Thomas join are those of their
// residues. The columns of a Cooley-Tukey join stand for C[c] = e c modulo M: then output p of the
// last stage, which takes them in the order c, belongs to q with p = e q modulo M.
#pragma once

#include "plan/index_maps.h"
#include "plan/plan.h"

namespace orvgen::dft {

inline bool isJoin(const plan::Plan& plan) {
    return plan.as<plan::GoodThomas>() || plan.as<plan::CooleyTukey>();
}

class ComplexJoin {
  public:
    explicit ComplexJoin(const plan::Plan& plan)
        : goodThomas_(plan.as<plan::GoodThomas>()), cooleyTukey_(plan.as<plan::CooleyTukey>()) {}

    const plan::PlanPtr& first() const {
        return goodThomas_ ? goodThomas_->first.front() : cooleyTukey_->first.front();
    }
    const plan::PlanPtr& second() const {
        return goodThomas_ ? goodThomas_->second.front() : cooleyTukey_->second.front();
    }
    std::size_t R() const { return static_cast<std::size_t>(first()->length); }
    std::size_t M() const { return static_cast<std::size_t>(second()->length); }
    std::size_t N() const { return R() * M(); }

    // Null: there are no twiddles.
    const plan::CooleyTukey* twiddled() const { return cooleyTukey_; }
    // The twiddle of column c and row k is exp(-+ 2 pi i twiddle(c, k) / N).
    std::size_t twiddle(std::size_t c, std::size_t k) const;

    // The columns of all `inputs`, as many transforms: those of each transform stand together.
    template <class Z>
    std::vector<std::vector<Z>> columns(const std::vector<std::vector<Z>>& inputs) const {
        std::vector<std::vector<Z>> u(inputs.size() * M());
        for (std::size_t s = 0; s < inputs.size(); ++s)
            for (std::size_t c = 0; c < M(); ++c)
                for (std::size_t t = 0; t < R(); ++t)
                    u[s * M() + place(c)].push_back(inputs[s][sample(c, t)]);
        return u;
    }
    // Column c among those of its transform. Those of a Good-Thomas join stand in the order of the
    // residues of their samples modulo M, in which a mirrored transform leaves them.
    std::size_t place(std::size_t c) const { return goodThomas_ ? sample(c, 0) % M() : c; }

    // The rows, out of the transformed columns.
    template <class Z>
    std::vector<std::vector<Z>> rows(const std::vector<std::vector<Z>>& u) const {
        std::vector<std::vector<Z>> v;
        for (std::size_t s = 0; s < u.size() / M(); ++s)
            for (std::size_t k = 0; k < R(); ++k) {
                v.emplace_back();
                for (std::size_t c = 0; c < M(); ++c) v.back().push_back(u[s * M() + place(c)][k]);
            }
        return v;
    }

    // The outputs, out of the transformed rows.
    template <class Z>
    std::vector<std::vector<Z>> outputs(const std::vector<std::vector<Z>>& v) const {
        std::vector<std::vector<Z>> y(v.size() / R(), std::vector<Z>(N()));
        for (std::size_t s = 0; s < y.size(); ++s)
            for (std::size_t k = 0; k < R(); ++k)
                for (std::size_t p = 0; p < M(); ++p) y[s][bin(k, p)] = v[s * R() + k][p];
        return y;
    }

  private:
    std::size_t sample(std::size_t c, std::size_t t) const;
    std::size_t bin(std::size_t k, std::size_t p) const;

    const plan::GoodThomas* goodThomas_;
    const plan::CooleyTukey* cooleyTukey_;
};

}  // namespace orvgen::dft
