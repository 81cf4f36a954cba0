#include "dct4/quad.h"

#include <mpfr.h>

namespace orvgen::test::dct4 {
namespace {

class Wide {
  public:
    Wide() { mpfr_init2(x, 200); }
    ~Wide() { mpfr_clear(x); }
    Wide(const Wide&) = delete;
    Wide& operator=(const Wide&) = delete;

    // Three binary64 parts hold the 113 bits of the result; their sum is exact up to its rounding.
    Quad take() {
        Quad sum = 0, parts[3];
        for (Quad& part : parts) {
            const double head = mpfr_get_d(x, MPFR_RNDN);
            part = head;
            mpfr_sub_d(x, x, head, MPFR_RNDN);
        }
        sum = parts[2] + parts[1];
        return sum + parts[0];
    }

    mpfr_t x;
};

using Function = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

Quad ofAngle(Function function, std::int64_t num, std::int64_t den) {
    Wide angle;
    mpfr_const_pi(angle.x, MPFR_RNDN);
    mpfr_mul_si(angle.x, angle.x, num, MPFR_RNDN);
    mpfr_div_si(angle.x, angle.x, den, MPFR_RNDN);
    function(angle.x, angle.x, MPFR_RNDN);
    return angle.take();
}

}  // namespace

// Exact zeros are given as such, which a rounded pi would miss.
Quad cosPi(std::int64_t num, std::int64_t den) {
    if ((2 * num) % den == 0 && (2 * num / den) % 2 != 0) return 0;
    return ofAngle(mpfr_cos, num, den);
}

Quad sinPi(std::int64_t num, std::int64_t den) {
    if (num % den == 0) return 0;
    return ofAngle(mpfr_sin, num, den);
}

Quad tanPi(std::int64_t num, std::int64_t den) { return ofAngle(mpfr_tan, num, den); }

Quad squareRoot(double x) {
    Wide wide;
    mpfr_set_d(wide.x, x, MPFR_RNDN);
    mpfr_sqrt(wide.x, wide.x, MPFR_RNDN);
    return wide.take();
}

Quad magnitude(Quad x) { return x < 0 ? -x : x; }

CosineTable::CosineTable(std::int64_t halfTurn) : steps(halfTurn) {
    for (std::int64_t k = 0; 2 * k <= steps; ++k) quadrant.push_back(cosPi(k, steps));
}

Quad CosineTable::cosine(std::int64_t k) const {
    k = ((k % (2 * steps)) + 2 * steps) % (2 * steps);
    if (k > steps) k = 2 * steps - k;
    if (2 * k <= steps) return quadrant[static_cast<std::size_t>(k)];
    return -quadrant[static_cast<std::size_t>(steps - k)];
}

DirectDct4::DirectDct4(std::int64_t N) {
    const CosineTable table(4 * N);
    for (std::int64_t k = 0; k < 8 * N; ++k) cosines.push_back(table.cosine(k));
}

}  // namespace orvgen::test::dct4
