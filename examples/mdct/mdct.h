// SPDX-License-Identifier: MIT
// The modified discrete cosine transform, 2M samples to M coefficients, by one DCT-IV of length M.
//
// A block of 2M windowed samples, in quarters (a, b, c, d), is folded to M values (-c~ - d, a -
// b~), where ~ reverses a quarter; their DCT-IV are the block's coefficients. Back again, the
// DCT-IV gives M/2 times the folded values, which unfold to (a - b~, b - a~, c + d~, d + c~): the
// block with its own mirror images. Windowed once more and added to the neighbouring blocks at half
// their length, the images cancel (Princen and Bradley, 1986) if w[i]^2 + w[M + i]^2 = 1, as with
// the sine window.

#ifndef MDCT_MDCT_H
#define MDCT_MDCT_H

#include <cmath>
#include <cstddef>
#include <stdexcept>
#include <vector>

#include "orvgen.h"

// The exported functions of either element type under one name.
inline OrvStatus makePlan(OrvDCT4Spec_32f** plan, std::int32_t n) {
    return orvgDCT4InitAlloc_32f(plan, n);
}
inline OrvStatus makePlan(OrvDCT4Spec_64f** plan, std::int32_t n) {
    return orvgDCT4InitAlloc_64f(plan, n);
}
inline OrvStatus runPlan(Orv32f* x, OrvDCT4Spec_32f* plan) { return orvgDCT4_32f(x, x, plan); }
inline OrvStatus runPlan(Orv64f* x, OrvDCT4Spec_64f* plan) { return orvgDCT4_64f(x, x, plan); }
inline void freePlan(OrvDCT4Spec_32f* plan) { orvgDCT4Free_32f(plan); }
inline void freePlan(OrvDCT4Spec_64f* plan) { orvgDCT4Free_64f(plan); }

template <class Real, class Spec>
class Mdct {
  public:
    // m coefficients a block; a power of two.
    explicit Mdct(std::size_t m) : m_(m), window_(2 * m), folded_(m) {
        if (makePlan(&plan_, static_cast<std::int32_t>(m)) != orvOk) {
            throw std::runtime_error("no transform of this length");
        }
        const double step = std::acos(-1.0) / static_cast<double>(2 * m);
        for (std::size_t i = 0; i < 2 * m; ++i) {
            window_[i] = static_cast<Real>(std::sin(step * (static_cast<double>(i) + 0.5)));
        }
    }
    ~Mdct() { freePlan(plan_); }
    Mdct(const Mdct&) = delete;
    Mdct& operator=(const Mdct&) = delete;

    // 2M samples to M coefficients.
    const std::vector<Real>& analyse(const Real* x) {
        const std::size_t h = m_ / 2;
        const auto windowed = [&](std::size_t i) { return window_[i] * x[i]; };
        for (std::size_t i = 0; i < h; ++i) {
            folded_[i] = -windowed(3 * h - 1 - i) - windowed(3 * h + i);
            folded_[h + i] = windowed(i) - windowed(2 * h - 1 - i);
        }
        runPlan(folded_.data(), plan_);
        return folded_;
    }

    // M coefficients to 2M samples, added to what stands in y.
    void synthesise(const std::vector<Real>& coefficients, Real* y) {
        folded_ = coefficients;
        runPlan(folded_.data(), plan_);
        const std::size_t h = m_ / 2;
        const Real scale = static_cast<Real>(2.0 / static_cast<double>(m_));
        const auto add = [&](std::size_t i, Real value) { y[i] += window_[i] * (scale * value); };
        for (std::size_t i = 0; i < h; ++i) {
            add(i, folded_[h + i]);
            add(h + i, -folded_[2 * h - 1 - i]);
            add(2 * h + i, -folded_[h - 1 - i]);
            add(3 * h + i, -folded_[i]);
        }
    }

  private:
    std::size_t m_;
    Spec* plan_ = nullptr;
    std::vector<Real> window_, folded_;
};

#endif
