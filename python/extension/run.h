// SPDX-License-Identifier: MIT
// How a job reaches the batch library: in one call on the arrays themselves wherever the library's
// strides can express them, else block by block through a scratch.
//
// A kind of transform, K, says
//     Src, Dst                     the element types
//     kSrcUnit, kDstUnit           strides that are multiples of so many bytes can be expressed
//     reads(task), writes(task)    elements of a transform
//     wantsRows(task)              whether it takes transforms without gaps only
//     call(src, dst, task, count)  runs it
//     kPrepares, prepare(x)        an element on its way into the scratch
//     finishes(task), finish(dst, task, count)    what is left to do to the results of a block
#pragma once

#include <algorithm>
#include <cstring>

#include "scratch.h"

namespace orvgen::python {

// What most kinds leave as it is.
template <class S, class D>
struct PlainKind {
    using Src = S;
    using Dst = D;
    static constexpr std::ptrdiff_t kSrcUnit = sizeof(S), kDstUnit = sizeof(D);
    static constexpr bool kPrepares = false;
    static constexpr bool wantsRows(Task) { return false; }
    static constexpr bool finishes(Task) { return false; }
    static void finish(const Places&, Task, std::ptrdiff_t) {}
};

// Calls work(t, j) for every element j of every transform t, along memory as far as it can.
template <class Work>
void forEach(const Places& places, std::ptrdiff_t count, std::ptrdiff_t len, const Work& work) {
    if (places.columns()) {
        for (std::ptrdiff_t j = 0; j < len; ++j)
            for (std::ptrdiff_t t = 0; t < count; ++t) work(t, j);
    } else {
        for (std::ptrdiff_t t = 0; t < count; ++t)
            for (std::ptrdiff_t j = 0; j < len; ++j) work(t, j);
    }
}

inline char* at(const Places& places, std::ptrdiff_t t, std::ptrdiff_t j) {
    return places.start + t * places.distance + j * places.stride;
}

template <class T>
T load(const char* from) {
    T value;
    std::memcpy(&value, from, sizeof(T));
    return value;
}

template <class T>
void store(char* to, const T& value) {
    std::memcpy(to, &value, sizeof(T));
}

// Whether the library can work on these places; where transforms must be without gaps, `step` is
// the stride that they have then, else 0.
inline bool direct(const Places& places, std::ptrdiff_t unit, std::ptrdiff_t step) {
    return places.suit(unit) && (step == 0 || places.stride == step);
}

// Into the scratch, with zeros behind what there is.
template <class K>
void gather(const Job& job, std::ptrdiff_t first, const Places& to, std::ptrdiff_t count) {
    using Src = typename K::Src;
    const Places from = job.src.from(first);
    const std::ptrdiff_t reads = K::reads(job.task), have = std::min(job.have, reads);
    forEach(to, count, have, [&](std::ptrdiff_t t, std::ptrdiff_t j) {
        auto x = load<Src>(at(from, t, j));
        if constexpr (K::kPrepares) x = K::prepare(x);
        store(at(to, t, j), x);
    });
    const Places behind{to.start + have * to.stride, to.stride, to.distance};
    forEach(to, count, reads - have,
            [&](std::ptrdiff_t t, std::ptrdiff_t j) { store(at(behind, t, j), Src{}); });
}

template <class K>
void scatter(const Places& from, const Places& to, Task task, std::ptrdiff_t count) {
    forEach(to, count, K::writes(task), [&](std::ptrdiff_t t, std::ptrdiff_t j) {
        store(at(to, t, j), load<typename K::Dst>(at(from, t, j)));
    });
}

template <class K>
OrvStatus runBlocks(const Job& job, bool srcDirect, bool dstDirect) {
    constexpr std::ptrdiff_t srcSize = sizeof(typename K::Src), dstSize = sizeof(typename K::Dst);
    const Task task = job.task;
    const std::ptrdiff_t reads = K::reads(task), writes = K::writes(task);
    // Whole vectors of any width, where the block has room for some.
    std::ptrdiff_t block = kBlockBytes / std::max(reads * srcSize, writes * dstSize);
    block = block > 16 ? block / 16 * 16 : std::max<std::ptrdiff_t>(block, 1);
    block = std::min(block, job.count);

    // Transforms without gaps want a scratch of rows.
    const Places rows{.start = nullptr, .stride = 0, .distance = 1};
    auto& [in, out] = scratches();
    for (std::ptrdiff_t t = 0; t < job.count; t += block) {
        const std::ptrdiff_t count = std::min(block, job.count - t);
        const Places dst = job.dst.from(t);
        Places from = job.src.from(t), to = dst;
        if (!srcDirect) {
            from = in.take(count, reads, srcSize, K::wantsRows(task) ? rows : job.src);
            gather<K>(job, t, from, count);
        }
        if (!dstDirect) to = out.take(count, writes, dstSize, K::wantsRows(task) ? rows : job.dst);
        if (const OrvStatus status = K::call(from, to, task, count); status != orvOk) return status;
        if (K::finishes(task)) K::finish(to, task, count);
        if (!dstDirect) scatter<K>(to, dst, task, count);
    }
    in.tidy();
    out.tidy();
    return orvOk;
}

template <class K>
OrvStatus run(const Job& job) {
    const Task task = job.task;
    if (job.room != K::writes(task)) return orvErrSize;
    const bool dense = K::wantsRows(task);
    const bool srcDirect = !K::kPrepares && job.have >= K::reads(task) &&
                           direct(job.src, K::kSrcUnit, dense ? sizeof(typename K::Src) : 0);
    const bool dstDirect = direct(job.dst, K::kDstUnit, dense ? sizeof(typename K::Dst) : 0);
    if (srcDirect && dstDirect && !K::finishes(task))
        return K::call(job.src, job.dst, task, job.count);
    return runBlocks<K>(job, srcDirect, dstDirect);
}

}  // namespace orvgen::python
