// SPDX-License-Identifier: MIT
#include "complex_join.h"

namespace orvgen::dft {

namespace {

long number(std::size_t i) { return static_cast<long>(i); }
std::size_t index(long i) { return static_cast<std::size_t>(i); }

}  // namespace

std::size_t ComplexJoin::sample(std::size_t c, std::size_t t) const {
    const long R = number(this->R()), M = number(this->M());
    if (goodThomas_) return index(plan::GoodThomasMap{R, M}.sample(number(c), number(t)));
    return index(plan::CooleyTukeyMap{R, M}.sample(cooleyTukey_->columns[c], number(t)));
}

std::size_t ComplexJoin::bin(std::size_t k, std::size_t p) const {
    const long R = number(this->R()), M = number(this->M());
    if (goodThomas_) return index(plan::GoodThomasMap{R, M}.binOfResidues(number(k), number(p)));
    long q = 0;
    while (cooleyTukey_->columns[1] * q % M != number(p)) ++q;
    return index(plan::CooleyTukeyMap{R, M}.bin(cooleyTukey_->rows[k], q));
}

std::size_t ComplexJoin::twiddle(std::size_t c, std::size_t k) const {
    return index(plan::CooleyTukeyMap{number(R()), number(M())}.twiddle(cooleyTukey_->columns[c],
                                                                        cooleyTukey_->rows[k]));
}

}  // namespace orvgen::dft
