// SPDX-License-Identifier: MIT
#include "rader_constants.h"

#include <string>

#include "kernelgen/real.h"
#include "number_theory.h"

namespace orvgen::flows {

using kernelgen::Constant;
using kernelgen::cosTurn;
using kernelgen::ExactReal;
using kernelgen::Real;
using kernelgen::sinTurn;

RaderConstants::RaderConstants(long p, long e) {
    const long cycle = p - 1;
    const long g = smallestRoot(p);
    e = (e % p + p) % p;
    const std::string root =
        "rader " + std::to_string(p) + (e == 1 ? "" : " root " + std::to_string(e));
    for (long k = 0; 2 * k <= cycle; ++k) {
        const bool isInner = k != 0 && 2 * k != cycle;
        Real sumRe = 0;
        Real sumIm = 0;
        for (long r = 0; r < cycle; ++r) {
            const long angle = e * powerModulo(g, r, p);
            const Real c = k % 2 == 0 ? cosTurn(angle, p).exact().value
                                      : Real(-sinTurn(angle, p).exact().value);
            sumRe += c * cosTurn(k * r, cycle).exact().value;
            sumIm -= c * sinTurn(k * r, cycle).exact().value;
        }
        const Real factor = Real(isInner ? 2 : 1) / cycle;
        const std::string name = (isInner ? "2K[" : "K[") + std::to_string(k) + "], " + root;
        re.push_back(k == 0 ? -kernelgen::ratio(1, cycle)
                            : Constant(ExactReal{factor * sumRe}, "re " + name));
        // sqrt(13)/12 is stored as 0.3004626062886657, its first 16 digits: one unit below the
        // nearest binary64. All results of 13 points and of its multiples depend on it, so it
        // stays.
        if (p == 13 && 2 * k == cycle)
            re.back() = re.back().pinnedTo(re.back().isNegative() ? -0.3004626062886657
                                                                  : 0.3004626062886657);
        im.push_back(isInner ? Constant(ExactReal{factor * sumIm}, "im " + name) : Constant(0));
    }
}

}  // namespace orvgen::flows
