// SPDX-License-Identifier: MIT
// Calls whose blocks need no slots in between: transforms side by side, which the kernels take
// where they are, and complex elements anywhere, which are brought side by side first. Included by
// the file of each target, in its namespace, behind layout.h.

// Transforms side by side on both sides: whole blocks, all by one call. Returns how many are done.
template <class R>
[[gnu::always_inline]] inline std::size_t runSideBySide(const Task<R>& task) {
    if (!isSideBySide(task.src, task.srcLayout) || !isSideBySide(task.dst, task.dstLayout))
        return 0;
    // Parts apart on one side only, which the functions for split arrays allow.
    if (isComplex(task.kind) && task.src.isInterleaved() != task.dst.isInterleaved()) return 0;
    const PairsForm<R> form = pairsFormOf(task);
    const std::size_t blocks = task.count >> form.shift;
    if (blocks == 0) return 0;
    if (blocks > 1 && isCrowded(task)) {
        Tiles<R>(task, form).run(blocks);
        return blocks << form.shift;
    }
    if (areFarColumns(task)) {
        runColumnsPrefetched(task, form, blocks);
        return blocks << form.shift;
    }
    constexpr std::ptrdiff_t bytes = sizeof(R);
    const auto second = [](auto* re, auto* im) {
        return im == re + 1 ? re + Vectors<R>::lanes : im;
    };
    form.kernel(task.src.re, second(task.src.re, task.src.im), task.src.stride * bytes, task.dst.re,
                second(task.dst.re, task.dst.im), task.dst.stride * bytes, task.scale, blocks,
                form.src, form.dst);
    return blocks << form.shift;
}

// Complex elements of `width` transforms from number `first` on, side by side, or back. There are
// `valid` of them; the others repeat the last one, and are not written.
template <class R>
class PairedElements {
  public:
    static constexpr int lanes = Vectors<R>::lanes;
    static constexpr int pairs = lanes / 2;  // in a vector

    static void gather(const Array<const R>& a, std::ptrdiff_t first, int valid, int width,
                       int elements, R* to) {
        for (int v = 0; v < width; v += pairs) {
            const R* from = a.re + (first + v) * a.distance;
            R* out = to + 2 * v;
            if (v + pairs <= valid) {
                for (int j = 0; j < elements; ++j, from += a.stride, out += 2 * width)
                    Vectors<R>::store(
                        out, Vectors<R>::gatherPairs([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
                            return from + l * a.distance;
                        }));
                continue;
            }
            const int last = valid - 1 - v;  // may be below zero
            for (int j = 0; j < elements; ++j, from += a.stride, out += 2 * width)
                Vectors<R>::store(out,
                                  Vectors<R>::gatherPairs([&](auto l) ORVGEN_DCT4_INLINE_LAMBDA {
                                      return from + (l < last ? l : last) * a.distance;
                                  }));
        }
    }
    static void scatter(const R* from, std::ptrdiff_t first, int valid, int width, int elements,
                        const Array<R>& a) {
        for (int v = 0; v < valid; v += pairs) {
            R* to = a.re + (first + v) * a.distance;
            const R* in = from + 2 * v;
            if (v + pairs <= valid) {
                for (int j = 0; j < elements; ++j, to += a.stride, in += 2 * width)
                    Vectors<R>::scatterPairs(
                        Vectors<R>::load(in),
                        [&](auto l, const auto& write)
                            ORVGEN_DCT4_INLINE_LAMBDA { write(to + l * a.distance); });
                continue;
            }
            for (int j = 0; j < elements; ++j, to += a.stride, in += 2 * width)
                Vectors<R>::scatterPairs(Vectors<R>::load(in),
                                         [&](auto l, const auto& write) ORVGEN_DCT4_INLINE_LAMBDA {
                                             if (v + l < valid) write(to + l * a.distance);
                                         });
        }
    }
};

// Complex elements anywhere on both sides: through a scratch in which they stand side by side,
// unless they do already. Short blocks pass in groups.
template <class R>
class ComplexElements {
  public:
    explicit ComplexElements(const Task<R>& task)
        : task_(task),
          form_(pairsFormOf(task)),
          takesSrc_(isSideBySide(task.src, task.srcLayout)),
          takesDst_(isSideBySide(task.dst, task.dstLayout)) {}

    std::size_t run(int worthwhile) {
        const int fit = kGroupNumbers / (2 * form_.width * task_.n);
        const int most = fit > 1 ? fit : 1;
        std::size_t done = 0;
        for (std::size_t blocks = task_.count >> form_.shift; blocks > 0;) {
            const int now = blocks < std::size_t(most) ? int(blocks) : most;
            group(static_cast<std::ptrdiff_t>(done), now, form_.width);
            done += static_cast<std::size_t>(now) << form_.shift;
            blocks -= static_cast<std::size_t>(now);
        }
        const auto left = static_cast<int>(task_.count - done);
        if (left < worthwhile) return done;
        group(static_cast<std::ptrdiff_t>(done), 1, left);
        return task_.count;
    }

  private:
    static constexpr int lanes = Vectors<R>::lanes;
    static constexpr int kGroupNumbers = 4096 / sizeof(R);

    void group(std::ptrdiff_t first, int blocks, int valid) {
        alignas(64) R slots[2 * kLengths.last * lanes];
        const bool isComplete = valid == form_.width;
        const bool takesSrc = takesSrc_ && isComplete, takesDst = takesDst_ && isComplete;
        constexpr std::ptrdiff_t bytes = sizeof(R);
        const std::ptrdiff_t blockNumbers = 2 * form_.width * task_.n;
        const std::ptrdiff_t element = 2 * form_.width * bytes;
        if (!takesSrc)
            for (int i = 0; i < blocks; ++i)
                PairedElements<R>::gather(task_.src, first + i * form_.width, valid, form_.width,
                                          task_.n, slots + i * blockNumbers);
        const R* const src = takesSrc ? task_.src.re + first * task_.src.distance : slots;
        R* const dst = takesDst ? task_.dst.re + first * task_.dst.distance : slots;
        form_.kernel(src, src + lanes, takesSrc ? task_.src.stride * bytes : element, dst,
                     dst + lanes, takesDst ? task_.dst.stride * bytes : element, task_.scale,
                     static_cast<std::size_t>(blocks), takesSrc ? form_.src : blockNumbers * bytes,
                     takesDst ? form_.dst : blockNumbers * bytes);
        if (!takesDst)
            for (int i = 0; i < blocks; ++i)
                PairedElements<R>::scatter(slots + i * blockNumbers, first + i * form_.width, valid,
                                           form_.width, task_.n, task_.dst);
    }

    const Task<R>& task_;
    PairsForm<R> form_;
    bool takesSrc_, takesDst_;
};

// Whether elements are moved one by one. In binary32 the transposes of rows, and of rows and
// columns that are split, are ahead of that.
template <class R>
bool movesElements(const Task<R>& task) {
    if (!isPairsArray(task.src, task.srcLayout) || !isPairsArray(task.dst, task.dstLayout))
        return false;
    const auto isRegular = [](const auto& a) { return a.stride == 2 || a.distance == 2; };
    return sizeof(R) == 8 || !isRegular(task.src) || !isRegular(task.dst) ||
           (task.src.distance == 2 && task.dst.distance == 2);
}

// What is left over, as a task of its own.
template <class R>
Task<R> behind(const Task<R>& task, std::size_t done) {
    const auto skip = [&](auto& a) {
        const std::ptrdiff_t by = static_cast<std::ptrdiff_t>(done) * a.distance;
        a.re += by;
        if (a.im != nullptr) a.im += by;
    };
    Task<R> rest = task;
    skip(rest.src);
    skip(rest.dst);
    rest.count -= done;
    return rest;
}

// The rest of a call, or a call of which no kernel can take anything where it is.
template <class R>
std::size_t runThroughScratch(const Task<R>& task) {
    if (areComplexRows(task) || !movesElements(task)) return Blocks<R>(task).run();
    const int least = sizeof(R) == 8 ? Vectors<R>::lanes / 4 + 1 : worthwhile<R>(task.kind, task.n);
    return ComplexElements<R>(task).run(least);
}

// What runSideBySide leaves.
template <class R>
[[gnu::noinline]] std::size_t runOthers(const Task<R>& task) {
    const Way way = wayOf(task);
    if (way == Way::RowByRow) return 0;
    if (areComplexRows(task))
        if (const std::size_t done = runComplexRows(task, way)) return done;
    // A few transforms that the single kernels take.
    if (task.count < Vectors<R>::lanes && !movesElements(task) &&
        static_cast<int>(task.count) < worthwhile<R>(task.kind, task.n))
        return 0;
    return runThroughScratch(task);
}
template <class R>
[[gnu::noinline]] std::size_t runOthersBehind(const Task<R>& task, std::size_t done) {
    return done + runThroughScratch(behind(task, done));
}

// The whole of a call, but for what single kernels do: how many transforms are done.
template <class R>
std::size_t runTask(const Task<R>& task) {
    const std::size_t done = runSideBySide(task);
    if (done == task.count) return done;
    return done == 0 ? runOthers(task) : runOthersBehind(task, done);
}
