// SPDX-License-Identifier: MIT
#include "roots.h"

#include "butterflies.h"

namespace orvgen::dft {

ComplexConstant unitRoot(Direction direction, std::size_t num, std::size_t den) {
    const Constant s = kernelgen::sinTurn(static_cast<long>(num), static_cast<long>(den));
    return {kernelgen::cosTurn(static_cast<long>(num), static_cast<long>(den)),
            direction == Direction::Forward ? -s : s};
}

Vector rotated(Direction direction, const Vector& z, std::size_t num, std::size_t den) {
    num %= den;
    if (4 * num % den == 0) {
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

}  // namespace orvgen::dft
