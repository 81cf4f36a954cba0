// SPDX-License-Identifier: MIT
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

namespace {

// A kernel has at most 64 real results.
template <class Real>
class Rows {
  public:
    Real* row(std::int32_t k) { return elements_ + k * sequencesTogether; }

    void putRow(std::int32_t k, Real* to) {
        const Real* from = row(k);
        unroll<sequencesTogether / lanes<Real>>([&](auto i) ORVGEN_DCT4_INLINE_LAMBDA {
            storeAligned(to + i * lanes<Real>, loadAligned(from + i * lanes<Real>));
        });
    }

  private:
    alignas(64) Real elements_[64 * sequencesTogether];
};

template <class Real>
[[gnu::noinline]] OrvStatus kernelsTogether(std::int32_t rule, std::int32_t n,
                                            const SequenceWalk<Real>& walk) {
    Rows<Real> rows;
    SequenceWalk<Real> toRows = walk;
    toRows.dst = rows.row(0);
    toRows.c = 0;
    toRows.componentStride = sequencesTogether;
    const OrvStatus status = oddFrequencyKernel(rule, toRows);
    if (status != orvOk) {
        return status;
    }
    for (std::int32_t k = 0; k < n; ++k) {
        rows.putRow(k, walk.dst + walk.c + k * walk.componentStride);
    }
    return orvOk;
}

template <class Real>
[[gnu::noinline]] OrvStatus joinsTogether(const Env8<Real>& join, Real* dst, const Real* src) {
    Rows<Real> rows;
    const std::int32_t r = join.r;
    JoinWalk<Real> one = joinWalk(join, dst, src);
    for (std::int32_t d = 0; d < join.m; ++d) {
        JoinWalk<Real> toRows = one;
        toRows.sourceStep = toRows.upStep = toRows.downStep = lanes<Real>;
        toRows.firstStep = toRows.secondStep = 0;
        toRows.up = rows.row(0);
        toRows.down = rows.row(r);
        toRows.resultStride = 2 * sequencesTogether;
        toRows.componentStride = sequencesTogether;
        toRows.count = sequencesTogether / lanes<Real>;
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

template <class Real>
OrvStatus computeTogether(const Env7<Real>& level, const SequenceWalk<Real>& groups) {
    if (level.active != 1) {
        return orvErrPlan;
    }
    const auto& inner = childOf<Env9<Real>>(level.innerRole);
    for (std::int32_t i = 0; i < inner.count; ++i) {
        SequenceWalk<Real> walk = groups;
        walk.dst = level.scratch;
        walk.a += i * inner.sequenceStride;
        walk.b -= 2 * i * inner.sequenceStride;
        walk.c += i * inner.sequenceOutStride;
        walk.sampleStride = inner.inStride;
        walk.componentStride = inner.outStride;
        OrvStatus status;
        if (inner.rule == recursionRule) {
            status = computeTogether(childOf<Env7<Real>>(inner.recursionRole), walk);
        } else {
            status = kernelsTogether(inner.rule, inner.n, walk);
        }
        if (status != orvOk) {
            return status;
        }
    }
    const auto& join = childOf<Env8<Real>>(level.joinRole);
    return joinsTogether(join, groups.dst + groups.c, level.scratch + groups.c);
}

template OrvStatus computeTogether(const Env7<Orv32f>&, const SequenceWalk<Orv32f>&);
template OrvStatus computeTogether(const Env7<Orv64f>&, const SequenceWalk<Orv64f>&);

}  // namespace orvgen::dct4
