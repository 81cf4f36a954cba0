// SPDX-License-Identifier: MIT
// Batches beside the loop over the single kernels and beside FFTW's plan_many with patient plans,
// in core cycles of one transform. Ratios come first: how many times as long the others take.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "batch/fftw_plans.h"
#include "batch/summary.h"
#include "cycles.h"
#include "frame/names.h"
#include "generator/names.h"
#include "load.h"
#include "orvgen_batch.h"
#include "program.h"

namespace orvgen::bench {
namespace {

struct Size {
    int n;
    int srcReals, dstReals;      // of one transform
    int srcElement, dstElement;  // reals in an element
    int srcElements, dstElements;
};

// A family: its functions here, and the same problem for FFTW.
template <class R>
struct Family {
    const FamilyInfo* info;
    void (*batch)(int n, const R* src, R* dst, const Places& p);
    void (*single)(int n, const R* src, R* dst);
    // Null where FFTW finds no plan.
    Run (*fftw)(int n, R* src, R* dst, const Places& p);
    // The same of split arrays, where there is such a thing.
    void (*splitBatch)(int n, const R* src, R* dst, const Places& p) = nullptr;
    Run (*splitFftw)(int n, R* src, R* dst, const Places& p) = nullptr;
};

Size sizeOf(const FamilyInfo& family, int n) {
    const auto width = [](orvgen::Layout l) {
        return l == orvgen::Layout::Complex || l == orvgen::Layout::Ccs ? 2 : 1;
    };
    const int src = width(family.src), dst = width(family.dst);
    return {.n = n,
            .srcReals = family.srcReals(n),
            .dstReals = family.dstReals(n),
            .srcElement = src,
            .dstElement = dst,
            .srcElements = family.srcReals(n) / src,
            .dstElements = family.dstReals(n) / dst};
}

// The functions of one family NAME, and of the transforms of its real type T.
#define ORVGEN_BATCH(NAME, T, S, D)                                                           \
    [](int n, const auto* src, auto* dst, const Places& p) {                                  \
        (void)orvgBatch##NAME##_##T(reinterpret_cast<const S*>(src), p.stride, p.distance,    \
                                    reinterpret_cast<D*>(dst), p.outStride, p.outDistance, n, \
                                    p.count, orvScaleNone);                                   \
    }
#define ORVGEN_SPLIT_BATCH(NAME, T)                                                                \
    [](int n, const auto* src, auto* dst, const Places& p) {                                       \
        (void)orvgBatchSplit##NAME##_##T(src, src + p.plane, p.stride, p.distance, dst,            \
                                         dst + p.outPlane, p.outStride, p.outDistance, n, p.count, \
                                         orvScaleNone);                                            \
    }
#define ORVGEN_SINGLE(NAME, T)                                                   \
    [](int n, const auto* src, auto* dst) {                                      \
        (void)orvg##NAME##_##T(reinterpret_cast<const Orv##T*>(src),             \
                               reinterpret_cast<Orv##T*>(dst), n, orvScaleNone); \
    }
#define ORVGEN_REAL(NAME, T, S, D, FFTW)                                    \
    {                                                                       \
        .info = &familyOf(#NAME, #T), .batch = ORVGEN_BATCH(NAME, T, S, D), \
        .single = ORVGEN_SINGLE(NAME, T), .fftw = Fftw<Orv##T>::FFTW        \
    }
#define ORVGEN_COMPLEX(NAME, T, SIGN)                                                              \
    {                                                                                              \
        .info = &familyOf(#NAME, #T "c"), .batch = ORVGEN_BATCH(NAME, T##c, Orv##T##c, Orv##T##c), \
        .single = ORVGEN_SINGLE(NAME, T##c), .fftw = Fftw<Orv##T>::dft<SIGN>,                      \
        .splitBatch = ORVGEN_SPLIT_BATCH(NAME, T), .splitFftw = Fftw<Orv##T>::split<SIGN>          \
    }
#define ORVGEN_FAMILIES(T)                                             \
    {                                                                  \
        ORVGEN_REAL(DFTFwd_RToCCS, T, Orv##T, Orv##T##c, forward),     \
            ORVGEN_REAL(DFTInv_CCSToR, T, Orv##T##c, Orv##T, inverse), \
            ORVGEN_REAL(Hartley, T, Orv##T, Orv##T, hartley),          \
            ORVGEN_COMPLEX(DFTFwd_CToC, T, FFTW_FORWARD),              \
            ORVGEN_COMPLEX(DFTInv_CToC, T, FFTW_BACKWARD)              \
    }

const std::vector<Family<Orv32f>> kFamilies32 = ORVGEN_FAMILIES(32f);
const std::vector<Family<Orv64f>> kFamilies64 = ORVGEN_FAMILIES(64f);

enum class Layout { Rows, Blocks, Columns, Strided };
struct LayoutInfo {
    Layout layout;
    bool isSplit = false;
};
const std::map<std::string, LayoutInfo> kLayouts = {
    {"rows", {.layout = Layout::Rows}},
    {"blocks", {.layout = Layout::Blocks}},
    {"columns", {.layout = Layout::Columns}},
    {"strided", {.layout = Layout::Strided}},
    {"split-rows", {.layout = Layout::Rows, .isSplit = true}},
    {"split-columns", {.layout = Layout::Columns, .isSplit = true}}};

struct Arguments {
    std::string layout;  // empty: all that are part of the table
    std::string place = "cache";
    std::vector<int> lengths;
    std::vector<std::string> only;
    double planSeconds = 1;
    int samples = 20;
    std::string folder = ORVGEN_BENCH_OUT "/batch";
};

// The arrays of one measurement: as many transforms as the layout and the place ask for.
Places placesOf(const Size& s, const Arguments& a, std::size_t realBytes, int lanes) {
    constexpr std::size_t cache = 16 << 10, memory = 64 << 20;
    const std::size_t one = static_cast<std::size_t>(s.srcReals) * realBytes;
    std::size_t count = (a.place == "cache" ? cache : memory) / one /
                        static_cast<std::size_t>(lanes) * static_cast<std::size_t>(lanes);
    count = std::max(count, static_cast<std::size_t>(lanes));
    const LayoutInfo info = kLayouts.at(a.layout);
    if (info.layout == Layout::Columns && a.place == "cache") count = 10000;
    const auto m = static_cast<std::ptrdiff_t>(count);
    switch (info.layout) {
        case Layout::Rows:
            return {1, s.srcElements, 1, s.dstElements, count};
        case Layout::Blocks:
            return {lanes, 1, lanes, 1, static_cast<std::size_t>(lanes)};
        case Layout::Columns:
            return {m, 1, m, 1, count};
        case Layout::Strided:
            return {2, 2 * s.srcElements + 1, 2, 2 * s.dstElements + 1, count};
    }
    return {};
}

std::size_t reach(std::ptrdiff_t stride, std::ptrdiff_t distance, int elements, std::size_t count) {
    return static_cast<std::size_t>(stride * (elements - 1) +
                                    distance * static_cast<std::ptrdiff_t>(count - 1) + 1);
}

// Least cycles of one transform by each method, sampled in turn.
std::vector<double> measure(const std::vector<Run>& methods, std::size_t transforms, int samples) {
    std::vector<double> least(methods.size(), std::numeric_limits<double>::infinity());
    std::vector<long> calls(methods.size(), 1);
    for (std::size_t i = 0; i < methods.size(); ++i) {
        if (!methods[i]) continue;
        methods[i]();
        const std::uint64_t start = ticks();
        methods[i]();
        const auto once = static_cast<double>(ticks() - start);
        calls[i] = std::max(1L, static_cast<long>(50000 / std::max(once, 1.0)));
    }
    for (int s = 0; s < samples; ++s)
        for (std::size_t i = 0; i < methods.size(); ++i) {
            if (!methods[i]) continue;
            const double before = ticksPerCycle();
            const std::uint64_t start = ticks();
            for (long c = 0; c < calls[i]; ++c) methods[i]();
            const auto took = static_cast<double>(ticks() - start);
            const double cycles =
                took / static_cast<double>(calls[i]) / ((before + ticksPerCycle()) / 2);
            least[i] = std::min(least[i], cycles / static_cast<double>(transforms));
        }
    return least;
}

struct Summary {
    double logs = 0, worst = std::numeric_limits<double>::infinity();
    int count = 0, worstAt = 0;
    void add(double ratio, int n) {
        if (!std::isfinite(ratio)) return;
        logs += std::log(ratio);
        ++count;
        if (ratio < worst) worst = ratio, worstAt = n;
    }
    std::string text() const {
        if (count == 0) return "-";
        char s[64];
        std::snprintf(s, sizeof s, "%.2f, least %.2f at %d", std::exp(logs / count), worst,
                      worstAt);
        return s;
    }
};

struct TargetName {
    std::uint32_t target;
    const char* name;
    int bytes;
};
constexpr TargetName kTargets[] = {{orvTargetAVX2, "AVX2", 32}, {orvTargetAVX512, "AVX-512", 64}};

// The lengths of a family that the words call; throws where one calls nothing at all.
std::vector<int> lengthsOf(const FamilyInfo& family, const Arguments& a) {
    std::vector<Member> members;
    const auto add = [&](const FamilyInfo& info) {
        for (const int n : a.lengths) members.push_back({&info, n});
    };
    for (const auto& f : kFamilies32) add(*f.info);
    for (const auto& f : kFamilies64) add(*f.info);
    std::vector<int> lengths;
    for (const Member& m : generator::calledBy(members, a.only))
        if (m.family == &family) lengths.push_back(m.number);
    return lengths;
}

template <class R>
void family(const Family<R>& f, const Arguments& a, std::vector<BatchResult>& results) {
    const std::string name = shortName(*f.info);
    const std::vector<int> lengths = lengthsOf(*f.info, a);
    const bool isSplit = kLayouts.at(a.layout).isSplit;
    if (lengths.empty() || (isSplit && f.splitBatch == nullptr)) return;
    for (const TargetName& t : kTargets) {
        if ((orvgBatchTargets() & t.target) == 0) continue;
        Summary besideFftw, besideSingle;
        for (const int n : lengths) {
            const Size s = sizeOf(*f.info, n);
            Places p = placesOf(s, a, sizeof(R), t.bytes / static_cast<int>(sizeof(R)));
            const std::size_t in = reach(p.stride, p.distance, s.srcElements, p.count);
            const std::size_t out = reach(p.outStride, p.outDistance, s.dstElements, p.count);
            if (isSplit) {
                p.plane = static_cast<std::ptrdiff_t>(in);
                p.outPlane = static_cast<std::ptrdiff_t>(out);
            }
            std::vector<R> src(in * static_cast<std::size_t>(s.srcElement));
            std::vector<R> dst(out * static_cast<std::size_t>(s.dstElement));
            const Run other = (isSplit ? f.splitFftw : f.fftw)(n, src.data(), dst.data(), p);
            std::mt19937 generator(static_cast<unsigned>(n));
            std::uniform_real_distribution<double> uniform(-1, 1);
            for (R& x : src) x = static_cast<R>(uniform(generator));
            if (orvgBatchUse(t.target) != orvOk)
                throw std::runtime_error("a target that there is cannot be chosen");
            const auto batch = isSplit ? f.splitBatch : f.batch;
            const Run ours = [&] { batch(n, src.data(), dst.data(), p); };
            // The loop that a caller writes today; it wants contiguous transforms.
            Run single;
            if (a.layout == "rows")
                single = [&] {
                    const R* x = src.data();
                    R* y = dst.data();
                    for (std::size_t i = 0; i < p.count; ++i, x += s.srcReals, y += s.dstReals)
                        f.single(n, x, y);
                };
            const std::vector<double> cycles = measure({ours, single, other}, p.count, a.samples);
            besideSingle.add(cycles[1] / cycles[0], n);
            besideFftw.add(cycles[2] / cycles[0], n);
            results.push_back({.family = f.info,
                               .length = n,
                               .target = t.name,
                               .layout = a.layout,
                               .from = a.place,
                               .ours = cycles[0],
                               .single = cycles[1],
                               .fftw = cycles[2]});
        }
        std::printf("%-17s %-8s  FFTW %-28s single %s\n", name.c_str(), t.name,
                    besideFftw.text().c_str(), besideSingle.text().c_str());
        std::fflush(stdout);
    }
}

void declare(CLI::App& app, Arguments& a) {
    std::vector<std::string> layouts;
    for (const auto& [name, info] : kLayouts) layouts.push_back(name);
    app.add_option(
           "LAYOUT", a.layout,
           "rows, blocks (of one vector), columns, strided (rows), split-rows or split-columns (real "
           "and imaginary parts apart); none: all, columns and what comes from memory at a few "
           "lengths")
        ->type_name("")
        ->check(oneOf(layouts));
    app.add_option("--from", a.place, "cache (16 KB, the default) or memory (64 MB)")
        ->type_name("PLACE")
        ->check(oneOf({"cache", "memory"}));
    app.add_option("--lengths", a.lengths, "2 to 64, between them commas (all)")
        ->type_name("N")
        ->delimiter(',')
        ->check(wholeWithin(kLengths.first, kLengths.last));
    app.add_option("--only", a.only,
                   "transforms by name, family or pattern, as ./dev bench has them (all)")
        ->type_name("NAME");
    app.add_option("--limit", a.planSeconds, "of FFTW's planning of each length (1)")
        ->type_name("SECONDS")
        ->check(within(0.001, 1e6));
    app.add_option("--samples", a.samples, "of each method, 1 and more (20)")
        ->type_name("N")
        ->check(wholeWithin(1, 1000000));
    app.add_option("--out", a.folder, "where the tables and the plot go")->type_name("FOLDER");
}

void layout(const Arguments& a, std::vector<BatchResult>& results) {
    std::printf(
        "How many times as long the others take; %s, from %s; geometric means over %zu lengths\n",
        a.layout.c_str(), a.place.c_str(), a.lengths.size());
    for (const auto& f : kFamilies32) family(f, a, results);
    for (const auto& f : kFamilies64) family(f, a, results);
}

void writeCsv(const std::string& file, const std::vector<BatchResult>& results) {
    std::ofstream csv(file);
    csv << "family,length,target,layout,from,cycles,single,fftw\n";
    for (const BatchResult& r : results)
        csv << shortName(*r.family) << ',' << r.length << ',' << r.target << ',' << r.layout << ','
            << r.from << ',' << r.ours << ',' << r.single << ',' << r.fftw << '\n';
    if (!csv.flush()) throw std::runtime_error("cannot write " + file);
}

int run(Arguments& a) {
    const bool isAll = a.layout.empty(), areAllLengths = a.lengths.empty();
    if (areAllLengths)
        for (const int n : kLengths) a.lengths.push_back(n);
    (void)lengthsOf(*kFamilies32.front().info, a);  // before anything is said
    makeFolder(a.folder);
    warnOfWhatElseRuns("bench_batch");
    Fftw<Orv32f>::limit(a.planSeconds);
    Fftw<Orv64f>::limit(a.planSeconds);
    std::vector<BatchResult> results;
    if (!isAll) {
        layout(a, results);
    } else {
        const auto part = [&](const char* name, const char* place, int samples,
                              const std::vector<int>& few) {
            Arguments some = a;
            some.layout = name;
            some.place = place;
            some.samples = samples;
            if (areAllLengths && !few.empty()) some.lengths = few;
            layout(some, results);
        };
        for (const char* name : {"rows", "blocks", "strided", "split-rows"})
            part(name, "cache", a.samples, {});
        // Large arrays take FFTW its time to plan for: a few lengths, a few samples.
        for (const char* name : {"columns", "split-columns"})
            part(name, "cache", 5, {8, 16, 31, 32, 60, 64});
        for (const auto& [name, info] : kLayouts)
            if (info.layout != Layout::Blocks) part(name.c_str(), "memory", 3, {16, 64});
    }
    if (results.empty()) throw std::runtime_error("no transform is called so");
    writeSummary(a.folder, results);
    writeCsv(a.folder + "/batch.csv", results);
    std::printf("Tables and plot: %s\n", a.folder.c_str());
    return 0;
}

}  // namespace
}  // namespace orvgen::bench

int main(int argc, char** argv) {
    orvgen::bench::Arguments a;
    return runProgram(
        "bench_batch", "Batches beside the loop over single kernels and FFTW's plan_many.", argc,
        argv, [&a](CLI::App& app) { orvgen::bench::declare(app, a); },
        [&a] {
            try {
                return orvgen::bench::run(a);
            } catch (const orvgen::generator::UnknownName& e) {
                throw BadInput(e.what());
            }
        });
}
