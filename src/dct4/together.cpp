// One group after another is a poor order for a long transform. A group takes 16 bytes of every
// cache line that it comes to, and the lines that one kernel takes lie a large power of two apart,
// so that they share a few sets of the cache and drive each other out: each line is fetched anew
// for every group, and for every result.
//
// Here a kernel runs for all groups before the next kernel does, and its results wait in rows: row
// k holds result k of all groups. A row goes out in one run of whole cache lines. The operations
// and where their results stand are those of the other order.
#include "dct4/together.h"

#include "dct4/joins.h"
#include "dct4/lanes.h"
#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

namespace {

// A kernel has at most 64 real results.
class Rows {
  public:
    static constexpr std::int32_t width = sequencesTogether;

    Real* row(std::int32_t k) { return elements_ + k * width; }

    void putRow(std::int32_t k, Real* to) {
        const Real* from = row(k);
        unroll<width / lanes>([&](auto i) ORVGEN_DCT4_INLINE_LAMBDA {
            storeAligned(to + i * lanes, loadAligned(from + i * lanes));
        });
    }

  private:
    alignas(64) Real elements_[64 * width];
};

[[gnu::noinline]] OrvStatus kernelsTogether(std::int32_t rule, std::int32_t n,
                                            const SequenceWalk& walk) {
    Rows rows;
    SequenceWalk toRows = walk;
    toRows.dst = rows.row(0);
    toRows.c = 0;
    toRows.componentStride = Rows::width;
    const OrvStatus status = oddFrequencyKernel(rule, toRows);
    if (status != orvOk) {
        return status;
    }
    for (std::int32_t k = 0; k < n; ++k) {
        rows.putRow(k, walk.dst + walk.c + k * walk.componentStride);
    }
    return orvOk;
}

[[gnu::noinline]] OrvStatus joinsTogether(const Env8& join, Real* dst, const Real* src) {
    Rows rows;
    const std::int32_t r = join.sizes.r;
    JoinWalk one = joinWalk(join, dst, src);
    for (std::int32_t d = 0; d < join.sizes.m; ++d) {
        JoinWalk toRows = one;
        toRows.sourceStep = toRows.upStep = toRows.downStep = lanes;
        toRows.firstStep = toRows.secondStep = 0;
        toRows.up = rows.row(0);
        toRows.down = rows.row(r);
        toRows.resultStride = 2 * Rows::width;
        toRows.componentStride = Rows::width;
        toRows.count = Rows::width / lanes;
        const OrvStatus status = joinKernel(join.rule, toRows);
        if (status != orvOk) {
            return status;
        }
        for (std::int32_t f = 0; f < r / 2; ++f) {
            Real* up = one.up + f * one.resultStride;
            Real* down = one.down + f * one.resultStride;
            rows.putRow(2 * f, up);
            rows.putRow(2 * f + 1, up + one.componentStride);
            rows.putRow(r + 2 * f, down);
            rows.putRow(r + 2 * f + 1, down + one.componentStride);
        }
        one = nextJoin(one);
    }
    return orvOk;
}

}  // namespace

OrvStatus computeTogether(const Env7* level, const SequenceWalk& groups) {
    if (level->active != 1) {
        return orvErrPlan;
    }
    const Env9* inner = static_cast<const Env9*>(EnvList_get(level->innerRole, 0));
    for (std::int32_t i = 0; i < inner->count; ++i) {
        SequenceWalk walk = groups;
        walk.dst = level->scratch;
        walk.a += i * inner->sequenceStride;
        walk.b -= 2 * i * inner->sequenceStride;
        walk.c += i * inner->sequenceOutStride;
        walk.sampleStride = inner->inStride;
        walk.componentStride = inner->outStride;
        OrvStatus status;
        if (inner->rule == recursionRule) {
            const Env7* next = static_cast<const Env7*>(EnvList_get(inner->recursionRole, 0));
            status = computeTogether(next, walk);
        } else {
            status = kernelsTogether(inner->rule, inner->n, walk);
        }
        if (status != orvOk) {
            return status;
        }
    }
    const Env8* join = static_cast<const Env8*>(EnvList_get(level->joinRole, 0));
    return joinsTogether(*join, groups.dst + groups.c, level->scratch + groups.c);
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
