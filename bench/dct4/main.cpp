// SPDX-License-Identifier: MIT
// Plan building and run of the DCT-IV, 2 to 131072 points in both element types, in core cycles,
// beside FFTW's REDFT11 with patient plans and pocketfft's DCT of type 4. Ratios come first: how
// many times as long the other library takes.

#include <fftw3.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "cycles.h"
#include "load.h"
#include "orvgen.h"
#include "program.h"
#include "support/dct4_functions.h"

namespace {

using Loop = std::function<void(long)>;  // makes so many calls

struct Cycles {
    double least = 0, median = 0;
};

// Cycles of one call: samples of about 100000 cycles each, the clock calibrated around each.
Cycles measure(const Loop& loop) {
    loop(1);
    std::uint64_t start = orvgen::bench::ticks();
    loop(3);
    const double guess = static_cast<double>(orvgen::bench::ticks() - start) / 3;
    const long calls = std::max(1L, static_cast<long>(1e5 / std::max(guess, 1.0)));
    std::vector<double> samples;
    for (int i = 0; i < 21; ++i) {
        const double before = orvgen::bench::ticksPerCycle();
        start = orvgen::bench::ticks();
        loop(calls);
        const auto took = static_cast<double>(orvgen::bench::ticks() - start);
        const double after = orvgen::bench::ticksPerCycle();
        samples.push_back(took / static_cast<double>(calls) / ((before + after) / 2));
    }
    std::sort(samples.begin(), samples.end());
    return {samples.front(), samples[samples.size() / 2]};
}

double cyclesPerNanosecond() {
    const auto clock = [] {
        return std::chrono::duration<double, std::nano>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    };
    const double begin = clock();
    const std::uint64_t start = orvgen::bench::ticks();
    while (clock() - begin < 2e7) {
    }
    const auto ticks = static_cast<double>(orvgen::bench::ticks() - start);
    return ticks / (clock() - begin) / orvgen::bench::ticksPerCycle();
}

// FFTW of one element type.
template <class Real>
struct Fftw;
#define ORVGEN_FFTW(PREFIX, REAL)                              \
    template <>                                                \
    struct Fftw<REAL> {                                        \
        using Plan = PREFIX##_plan;                            \
        static constexpr auto allocate = PREFIX##_malloc;      \
        static constexpr auto release = PREFIX##_free;         \
        static constexpr auto limit = PREFIX##_set_timelimit;  \
        static constexpr auto plan = PREFIX##_plan_r2r_1d;     \
        static constexpr auto execute = PREFIX##_execute;      \
        static constexpr auto destroy = PREFIX##_destroy_plan; \
        static constexpr auto forget = PREFIX##_forget_wisdom; \
    };
ORVGEN_FFTW(fftwf, Orv32f)
ORVGEN_FFTW(fftw, Orv64f)
#undef ORVGEN_FFTW

template <class Real>
constexpr const char* typeName = sizeof(Real) == 4 ? "_32f" : "_64f";

// pocketfft by way of SciPy: nanoseconds of one transform by type and length; empty without it.
std::map<std::pair<std::string, int>, double> pocketfftTimes(int longest) {
    std::map<std::pair<std::string, int>, double> times;
    const std::string command =
        "/usr/bin/python3 " ORVGEN_POCKETFFT_SCRIPT " " + std::to_string(longest);
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return times;
    char type[8];
    int length;
    double nanoseconds;
    while (std::fscanf(pipe, "%7s %d %lf", type, &length, &nanoseconds) == 3) {
        times[{type, length}] = nanoseconds;
    }
    pclose(pipe);
    return times;
}

std::string ratio(double other, double ours) {
    if (other <= 0) return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", other / ours);
    return text;
}

// A line of the table.
struct Row {
    Cycles run, plan;  // ours
    Cycles peer;       // FFTW's run
    double peerPlanSeconds = 0;
    double pocketCycles = 0;  // 0: not there
};

template <class Real>
Cycles timeRuns(const Real* x, Real* y, int N) {
    using Ours = orvgen::test::Dct4Functions<Real>;
    typename Ours::Spec* spec = nullptr;
    if (Ours::initAlloc(&spec, N) != orvOk) std::abort();
    const Cycles cycles = measure([&](long calls) {
        for (; calls > 0; --calls) (void)Ours::run(x, y, spec);
    });
    Ours::free(spec);
    return cycles;
}

template <class Real>
Cycles timePlans(int N) {
    using Ours = orvgen::test::Dct4Functions<Real>;
    return measure([&](long calls) {
        for (; calls > 0; --calls) {
            typename Ours::Spec* made = nullptr;
            if (Ours::initAlloc(&made, N) != orvOk) std::abort();
            Ours::free(made);
        }
    });
}

template <class Real>
Row measured(int N, double limit) {
    using Peer = Fftw<Real>;
    const auto count = static_cast<std::size_t>(N);
    auto* x = static_cast<Real*>(Peer::allocate(count * sizeof(Real)));
    auto* y = static_cast<Real*>(Peer::allocate(count * sizeof(Real)));

    // A fresh plan each time: what was found before is forgotten.
    Peer::forget();
    Peer::limit(limit);
    const auto begin = std::chrono::steady_clock::now();
    const typename Peer::Plan plan =
        Peer::plan(N, x, y, FFTW_REDFT11, FFTW_PATIENT | FFTW_PRESERVE_INPUT);
    const std::chrono::duration<double> planning = std::chrono::steady_clock::now() - begin;

    std::mt19937 generator(static_cast<unsigned>(N));
    std::uniform_real_distribution<double> uniform(-1, 1);
    for (std::size_t i = 0; i < count; ++i) x[i] = static_cast<Real>(uniform(generator));
    const Row row{.run = timeRuns(x, y, N),
                  .plan = timePlans<Real>(N),
                  .peer = measure([&](long calls) {
                      for (; calls > 0; --calls) Peer::execute(plan);
                  }),
                  .peerPlanSeconds = planning.count()};
    Peer::destroy(plan);
    Peer::release(x);
    Peer::release(y);
    return row;
}

void print(int N, const char* type, const Row& r, double rate) {
    std::printf("%6d %s %8s %10s %12s %10.0f %10.0f %11.0f %10.0f %10.0f %9.2f\n", N, type,
                ratio(r.peer.least, r.run.least).c_str(),
                ratio(r.pocketCycles, r.run.least).c_str(),
                ratio(r.peerPlanSeconds * 1e9 * rate, r.plan.least).c_str(), r.run.least,
                r.run.median, r.plan.least, r.peer.least, r.pocketCycles, r.peerPlanSeconds);
    std::fflush(stdout);
}

struct Arguments {
    int longest = 131072;
    double limit = 20;
};

void declare(CLI::App& app, Arguments& a) {
    app.add_option("--longest", a.longest, "the longest transform (131072)")
        ->type_name("N")
        ->check(wholeWithin(2, 1 << 20));
    app.add_option("--limit", a.limit, "of FFTW's planning of each length (20)")
        ->type_name("SECONDS")
        ->check(within(0.001, 1e6));
}

int run(int longest, double limit) {
    orvgen::bench::warnOfWhatElseRuns("bench_dct4");
    const auto pocket = pocketfftTimes(longest);
    const double rate = cyclesPerNanosecond();
    std::printf(
        "DCT-IV, core cycles of one call, least of 21 samples (%.2f cycles a nanosecond)\n"
        "FFTW: REDFT11, patient plans, at most %g s of planning each\n"
        "pocketfft: %s\n\n",
        rate, limit,
        pocket.empty() ? "not there (SciPy is missing)"
                       : "as in SciPy, many transforms a call, so that several run in the "
                         "lanes of one vector");
    std::printf("%6s %4s %8s %10s %12s %10s %10s %11s %10s %10s %9s\n", "", "",
                "run:", "run:", "plan:", "run", "run", "plan", "run", "run", "plan");
    std::printf("%6s %4s %8s %10s %12s %10s %10s %11s %10s %10s %9s\n", "length", "type", "FFTW/",
                "pocketfft/", "FFTW/", "least", "median", "least", "FFTW", "pocketfft", "FFTW, s");
    for (int N = 2; N <= longest; N *= 2) {
        const auto addRow = [&]<class Real>(Real) {
            const char* type = typeName<Real>;
            Row row = measured<Real>(N, limit);
            const auto found = pocket.find({type, N});
            if (found != pocket.end()) row.pocketCycles = found->second * rate;
            print(N, type, row, rate);
        };
        addRow(Orv32f{});
        addRow(Orv64f{});
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    Arguments a;
    return runProgram(
        "bench_dct4", "Plans and runs of the DCT-IV in core cycles, beside other libraries.", argc,
        argv, [&a](CLI::App& app) { declare(app, a); }, [&a] { return run(a.longest, a.limit); });
}
