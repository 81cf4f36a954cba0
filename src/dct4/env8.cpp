// The join of a recursion level: its node, its table of twiddles, and where its kernel finds what.
#include "dct4/joins.h"
#include "dct4/operations.h"
#include "dct4/radix.h"
#include "dct4/trig.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

namespace {

#if ORVGEN_DCT4_FAMILY == 32
Real cosPi(Real x) { return orvgCosPi_32f(x); }
Real sinPi(Real x) { return orvgSinPi_32f(x); }
#else
Real cosPi(Real x) { return orvgCosPi_64f(x); }
Real sinPi(Real x) { return orvgSinPi_64f(x); }
#endif

std::int32_t tableVectors(const Env8Sizes& sizes) { return sizes.m * (2 * sizes.r - 2); }

// Vectors of one d in the first part of the table: all of them up to r' = 8, beyond that the three
// twiddles of each 4-point transform.
std::int32_t firstVectors(std::int32_t r) { return r <= 8 ? 2 * r - 2 : 6 * (r / 4); }

// Fills the table front to back. Every angle starts at the frequency of block d,
// (2d + 1) / (2n'), in the family's type.
class TableWriter {
  public:
    explicit TableWriter(Env8* node) : frequency_(node->frequency), entry_(node->table) {}

    // Cosine and sine of pi (frequency(d) + g) unit k, all lanes alike, for k = 1 .. last. The sum
    // is formed in the family's type, the product in binary64, its result rounded to the family's
    // type: no step is more exact than that, in either family.
    void powers(std::int32_t d, std::int32_t g, double unit, std::int32_t last) {
        for (std::int32_t k = 1; k <= last; ++k) {
            put(cosPi(angle(d, g, unit, k)));
            put(sinPi(angle(d, g, unit, k)));
        }
    }

  private:
    Real angle(std::int32_t d, std::int32_t g, double unit, std::int32_t k) const {
        const Real sum =
            static_cast<Real>(owng_TFunc_IIIR_at(frequency_, d, 0, 0)) + static_cast<Real>(g);
        return static_cast<Real>(static_cast<double>(sum) * unit * static_cast<double>(k));
    }

    void put(Real value) {
        for (std::int32_t l = 0; l < lanes; ++l) {
            *entry_++ = value;
        }
    }

    const NodeHeader* frequency_;
    Real* entry_;
};

}  // namespace

extern "C" {

Env8* FAMILY(env8___init__)(void* memory, Arena* arena, const Env8Sizes* sizes,
                            const NodeHeader* frequency) {
    Env8* node = placeNode<Env8>(memory, arena, FAMILY(env8___del__), FAMILY(env8_plan));
    node->children = makeList(arena);
    node->table = nullptr;
    node->rule = 0;
    node->sizes = *sizes;
    node->frequency = frequency;
    return node;
}

std::int32_t FAMILY(env8__chooseRule)(const Env8Sizes* sizes) { return ruleOfPower(sizes->r); }

std::int32_t FAMILY(env8_plan)(NodeHeader* header) {
    Env8* node = static_cast<Env8*>(header);
    const Env8Sizes& sizes = node->sizes;
    node->rule = FAMILY(env8__chooseRule)(&sizes);
    if (node->rule == 0) {
        return refused;
    }
    node->table = takeElements(node->arena, tableVectors(sizes) * lanes);
    TableWriter table(node);
    // An angle of (2d + 1) pi / n is 2 / r' times pi frequency(d).
    const double unit = 2.0 / sizes.r;
    if (sizes.r <= 8) {
        for (std::int32_t d = 0; d < sizes.m; ++d) {
            table.powers(d, 0, unit, sizes.r - 1);
        }
        return planned;
    }
    // Two levels: the twiddles of the 4-point transforms, for every remainder g of the result's
    // number, and behind all of these the ones of the (r'/4)-point transforms, with four times the
    // angle.
    const std::int32_t inner = sizes.r / 4;
    for (std::int32_t d = 0; d < sizes.m; ++d) {
        for (std::int32_t g = 0; g < inner; ++g) {
            table.powers(d, g, unit, 3);
        }
    }
    for (std::int32_t d = 0; d < sizes.m; ++d) {
        table.powers(d, 0, 4 * unit, inner - 1);
    }
    return planned;
}

void FAMILY(env8___del__)(NodeHeader* header) {
    Env8* node = static_cast<Env8*>(header);
    Arena* arena = node->arena;
    if (node->rule != 0) {
        orvgArenaFree(arena, node->table, elementBytes(tableVectors(node->sizes) * lanes));
    } else {
        orvgArenaFree(arena, node->table, 0);
    }
    dropChildren(arena, node->children);
}

// The inner results lie from c0 on in src, the joined ones from c1 on in dst.
OrvStatus FAMILY(env8_compute)(const Env8* node, Real* dst, const Real* src, std::int32_t c0,
                               std::int32_t c1) {
    return joinKernel(node->rule, joinWalk(*node, dst + c1, src + c0));
}
}

// Results Z(2m' f + d) run up with d, Z(2m' q + 2m' - 1 - d) down.
JoinWalk joinWalk(const Env8& node, Real* dst, const Real* src) {
    const std::ptrdiff_t stride = node.sizes.stride;
    const std::ptrdiff_t m = node.sizes.m;
    const std::int32_t r = node.sizes.r;
    const std::int32_t first = firstVectors(r);
    return {.src = src,
            .sourceStride = stride,
            .sourceStep = node.sizes.blockStride,
            .first = node.table,
            .firstStep = first * lanes,
            .second = node.table + m * first * lanes,
            .secondStep = (2 * r - 2 - first) * lanes,
            .up = dst,
            .down = dst + (2 * m - 1) * 2 * stride,
            .resultStride = 2 * m * 2 * stride,
            .componentStride = stride,
            .upStep = 2 * stride,
            .downStep = -2 * stride,
            .count = node.sizes.m};
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
