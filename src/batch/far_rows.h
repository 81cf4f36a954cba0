// SPDX-License-Identifier: MIT
// Rows that no cache holds. Lanes read and write pieces of several rows by turns; the memory, which
// runs ahead of one row after another by itself, does not see what comes next. So such rows are
// prefetched, or the single kernels take them, one after another. Included by the file of each
// target, in its namespace, behind layout.h.

// More bytes than this on both sides together are far: half of what the cache of the third level
// holds on the machine of the measurements, from where on lanes begin to lose.
constexpr std::size_t kFarBytes = std::size_t{16} << 20;

enum class Way : std::uint8_t {
    Lanes,       // as in the caches
    Prefetched,  // by the kernel for rows, the next rows being prefetched before each piece
    RowByRow,    // by the single kernels
};

// A set of lengths.
struct Lengths {
    std::uint64_t bits;

    template <class... N>
    static constexpr Lengths of(N... n) {
        return {(std::uint64_t{0} | ... | bit(n))};
    }
    static constexpr std::uint64_t bit(int n) { return std::uint64_t{1} << (n - kLengths.first); }
    constexpr bool has(int n) const { return (bits & bit(n)) != 0; }
};

// Where lanes are ahead of the single kernels on far rows, as measured at all lengths.
struct FarRows {
    // Up to this length the call of a single kernel takes longer than the memory.
    int shortTo;
    // At these its arithmetic does.
    Lengths heavy;
    // From this length on the kernel for rows is, if its rows are prefetched.
    int prefetchFrom;
};
template <class R>
constexpr FarRows farRows(bool complex) {
    constexpr bool isSingle = sizeof(R) == 4, isWide = Vectors<R>::lanes * sizeof(R) == 64;
    constexpr int always = kLengths.last, never = kLengths.last + 1;
    if (isSingle && !complex) return {always, {}, never};
    if (!isSingle && !complex)
        return {3,
                isWide ? Lengths::of(37, 38, 41, 43, 46, 47, 49, 53, 55, 57, 58, 59, 61, 62)
                       : Lengths::of(47, 53, 59, 61),
                never};
    if (!isSingle) return {3, {}, isWide ? 27 : 37};
    return isWide ? FarRows{5, Lengths::of(22, 26, 38, 39, 43, 46, 47, 51, 53, 58, 59, 62), 24}
                  : FarRows{11, Lengths::of(16, 24, 32, 38, 39, 46, 47, 58, 59, 62), 40};
}

// Real numbers that a row adds to what the batch reaches: overlapping rows share some, and a row
// that is read again and again adds none.
template <class R>
std::size_t newNumbers(const Array<R>& rows, const Form& form) {
    const std::ptrdiff_t distance = rows.distance < 0 ? -rows.distance : rows.distance;
    return static_cast<std::size_t>(distance < form.slots ? distance : form.slots);
}

template <class R>
bool areFarRows(const Task<R>& task) {
    constexpr std::size_t numbers = kFarBytes / sizeof(R);
    // So many of the longest transforms are not far: most calls end here.
    if (task.count <= numbers / (4 * (kLengths.last + 1))) return false;
    const Form src(task.src, task.srcLayout, task.n), dst(task.dst, task.dstLayout, task.n);
    const auto areRows = [](const Form& f) { return f.path == Path::Rows && !f.apart; };
    if (!areRows(src) || !areRows(dst)) return false;
    const std::size_t in = task.src.re == task.dst.re ? 0 : newNumbers(task.src, src);
    const std::size_t row = in + newNumbers(task.dst, dst);
    return row > 0 && task.count > numbers / row;
}

template <class R>
Way wayOf(const Task<R>& task) {
    if (!areFarRows(task)) return Way::Lanes;
    const FarRows far = farRows<R>(task.srcLayout == Layout::Complex);
    if (task.n >= far.prefetchFrom && rowsKernelOf<R>(task.kind, task.n) != nullptr)
        return Way::Prefetched;
    return task.n <= far.shortTo || far.heavy.has(task.n) ? Way::Lanes : Way::RowByRow;
}

template <class R>
void prefetchRows(const R* row, std::ptrdiff_t distance, std::size_t rows, int numbers) {
    constexpr int line = 64 / sizeof(R);
    for (; rows > 0; --rows, row += distance)
        for (int i = 0; i < numbers; i += line) __builtin_prefetch(row + i);
}

// `blocks` times as many rows as the kernel takes at once, `parts`, in pieces of a few lines of the
// cache: more of them would wait for each other.
template <class R>
void runRowsPrefetched(RowsKernel<R>* kernel, const Task<R>& task, std::size_t blocks,
                       std::size_t parts) {
    constexpr std::size_t pieceBytes = 1024, size = sizeof(R);
    const int numbers = 2 * task.n;
    const std::size_t blockBytes = parts * static_cast<std::size_t>(numbers) * size;
    const std::size_t most = blockBytes < pieceBytes ? pieceBytes / blockBytes : 1;
    const R* src = task.src.re;
    R* dst = task.dst.re;
    for (std::size_t now; blocks > 0; blocks -= now) {
        now = blocks < most ? blocks : most;
        const auto rows = static_cast<std::ptrdiff_t>(now * parts);
        const R* const nextSrc = src + rows * task.src.distance;
        R* const nextDst = dst + rows * task.dst.distance;
        const std::size_t left = blocks - now, next = left < most ? left : most;
        prefetchRows(nextSrc, task.src.distance, next * parts, numbers);
        prefetchRows<R>(nextDst, task.dst.distance, next * parts, numbers);
        kernel(src, task.src.distance * static_cast<std::ptrdiff_t>(size), dst,
               task.dst.distance * static_cast<std::ptrdiff_t>(size), task.scale, now);
        src = nextSrc;
        dst = nextDst;
    }
}
