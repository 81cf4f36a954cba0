// The function objects: where the values of the tables come from.
#include "dct4/operations.h"
#include "dct4/trig.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

extern "C" {

EnvfCompose* FAMILY(envfCompose___init__)(void* memory, Arena* arena, std::int32_t blockLength,
                                          std::int32_t eightLengths, std::int32_t m, std::int32_t r,
                                          std::int32_t step) {
    EnvfCompose* object = placeFunction<EnvfCompose>(memory, arena, FAMILY(envfCompose___del__),
                                                     FAMILY(envfCompose_at));
    object->blockLength = blockLength;
    object->eightLengths = eightLengths;
    object->m = m;
    object->r = r;
    object->step = step;
    return object;
}

// With i the block c and j = 2p or 2p + 1: cosine or sine of g(p, c) = pi (2p + 1)(2c + 1) / (4N).
// Numerator and denominator are converted to the family's type before the division, so that in the
// 32-bit family a numerator above 2^24 loses bits.
double FAMILY(envfCompose_at)(const NodeHeader* header, std::int32_t i, std::int32_t j,
                              std::int32_t) {
    const EnvfCompose* object = static_cast<const EnvfCompose*>(header);
    const std::int32_t index = i * object->step + j;
    const std::int32_t h = index / 2;
    const std::int32_t a = h / object->r;
    const std::int32_t b = h % object->r;
    const std::int32_t numerator = 2 * (2 * a + 1) * (2 * b + 1);
    const Real quotient = static_cast<Real>(numerator) / static_cast<Real>(object->eightLengths);
#if ORVGEN_DCT4_FAMILY == 32
    return static_cast<double>(index % 2 == 0 ? orvgCosPi_32f(quotient) : orvgSinPi_32f(quotient));
#else
    return index % 2 == 0 ? orvgCosPi_64f(quotient) : orvgSinPi_64f(quotient);
#endif
}

void FAMILY(envfCompose___del__)(NodeHeader*) {}

// The inner function at block lanes * i + j.
double FAMILY(envfsplit_at)(const NodeHeader* header, std::int32_t i, std::int32_t j,
                            std::int32_t k) {
    const EnvfSplit* object = static_cast<const EnvfSplit*>(header);
    return owng_TFunc_IIIR_at(object->inner, lanes * i + j, k, 0);
}

void FAMILY(envfsplit___del__)(NodeHeader*) {}

EnvLambda* FAMILY(envlambda___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t r) {
    EnvLambda* object =
        placeFunction<EnvLambda>(memory, arena, FAMILY(envlambda___del__), FAMILY(envlambda_at));
    object->n = n;
    object->r = r;
    return object;
}

// (i + 1/2) / n' in the family's type.
double FAMILY(envlambda_at)(const NodeHeader* header, std::int32_t i, std::int32_t, std::int32_t) {
    const EnvLambda* object = static_cast<const EnvLambda*>(header);
    const std::int32_t innerN = object->n / object->r;
    const Real half = static_cast<Real>(0.5);
    return static_cast<double>((static_cast<Real>(i) + half) / static_cast<Real>(innerN));
}

void FAMILY(envlambda___del__)(NodeHeader*) {}
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
