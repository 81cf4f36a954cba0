// SPDX-License-Identifier: MIT
// The benchmark: every kernel beside other libraries and beside the bound of its own operations, in
// core cycles. Ratios come first: their cycles over ours, above 1 where ours is faster.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>

#include "generator/names.h"
#include "load.h"
#include "measure.h"
#include "operations.h"
#include "peers.h"
#include "port_table.h"
#include "program.h"
#include "report.h"
#include "subject.h"
#include "support/machine_code.h"

namespace orvgen::bench {
namespace {

struct Options {
    std::vector<std::string> names;  // of kernels, as generator/names.h has them; none: all
    std::string ports;
    std::filesystem::path out = ORVGEN_BENCH_OUT;
    bool quick = false;
    bool sameIsa = false;
    bool dirtyUppers = false;
};

// Aligned memory with ordinary numbers in it.
class Buffer {
  public:
    explicit Buffer(std::size_t bytes) : size((bytes + 4096) / 64 * 64) {
        memory.reset(std::aligned_alloc(4096, (size + 4095) / 4096 * 4096));
    }
    void fill(bool wide) const {
        std::mt19937 engine(7);
        std::uniform_real_distribution<double> value(-1, 1);
        for (std::size_t at = 0; at + 8 <= size; at += wide ? 8 : 4) {
            const double d = value(engine);
            const auto f = static_cast<float>(d);
            std::memcpy(data() + at, wide ? static_cast<const void*>(&d) : &f, wide ? 8 : 4);
        }
    }
    unsigned char* data() const { return static_cast<unsigned char*>(memory.get()); }

  private:
    std::size_t size;
    std::unique_ptr<void, decltype(&std::free)> memory{nullptr, std::free};
};

// The other libraries. A problem is measured once: the packed formats of a length share theirs.
class Peers {
  public:
    explicit Peers(const Options& options) {
        if (!installed_.loaded()) throw std::runtime_error("FFTW is not installed");
        notes_.push_back("fftw: " + installed_.version() + " as installed, patient plans");
        add("fftw", installed_);
        if (options.sameIsa) {
            sameIsa_ = builtWithSse2();
            notes_.push_back("fftw-sse2: " + sameIsa_->version() + " built with SSE2 alone");
            add("fftw-sse2", *sameIsa_);
        }
        peers_.push_back({"kissfft", [](const Problem& p, void*, void*) { return kissPlan(p); }});
        peers_.push_back({"plain", [](const Problem& p, void*, void*) { return plainLoop(p); }});
    }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const Peer& p : peers_) names.push_back(p.name);
        return names;
    }
    const std::vector<std::string>& notes() const { return notes_; }

    // By library; those that do not do the problem are missing.
    const std::map<std::string, Cycles>& times(const Measurement& measure, const Problem& problem,
                                               const Buffer& src, const Buffer& dst) {
        const auto [slot, isNew] = known_.try_emplace(keyOf(problem));
        if (!isNew) return slot->second;
        for (const Peer& peer : peers_) {
            const auto loop = peer.plan(problem, src.data(), dst.data());
            if (!loop) continue;
            src.fill(problem.wide);
            slot->second[peer.name] = measure.burst(*loop, src.data(), dst.data(), Pace::free);
        }
        return slot->second;
    }

  private:
    struct Peer {
        std::string name;
        std::function<std::optional<Loop>(const Problem&, void*, void*)> plan;
    };

    void add(const std::string& name, Fftw& library) {
        peers_.push_back({name, [&library](const Problem& p, void* src, void* dst) {
                              return library.plan(p, src, dst);
                          }});
    }
    static std::unique_ptr<Fftw> builtWithSse2() {
        const std::string folder = std::string(ORVGEN_BENCH_OUT) + "/fftw-sse2";
        if (std::system((std::string(ORVGEN_BUILD_FFTW) + " '" + folder + "'").c_str()) != 0)
            throw std::runtime_error("cannot build FFTW with SSE2 alone");
        auto library = std::make_unique<Fftw>(folder + "/lib");
        if (!library->loaded()) throw std::runtime_error("no FFTW in " + folder);
        return library;
    }
    static std::string keyOf(const Problem& p) {
        return std::to_string(static_cast<int>(p.transform)) + (p.inverse ? "i" : "f") +
               (p.wide ? "d" : "s") + std::to_string(p.length);
    }

    Fftw installed_;
    std::unique_ptr<Fftw> sameIsa_;
    std::vector<Peer> peers_;
    std::vector<std::string> notes_;
    std::map<std::string, std::map<std::string, Cycles>> known_;
};

Timing timingOf(const Measurement& measure, const std::vector<Subject>& subjects, std::size_t i,
                const void* src, void* dst, std::size_t bytes) {
    const Subject& s = subjects[i];
    Timing t;
    t.burst = measure.burst(s.loop, src, dst, Pace::free);
    t.latency = measure.burst(s.loop, src, dst, Pace::chained);
    // Before a short burst: neighbours in the list that fit the buffers.
    std::vector<const Loop*> others;
    for (std::size_t k = 1; k < subjects.size() && others.size() < 4; ++k) {
        const Subject& o = subjects[(i + k * 7) % subjects.size()];
        if (std::max(o.problem.srcBytes, o.problem.dstBytes) < bytes && o.name != s.name) {
            others.push_back(&o.loop);
        }
    }
    t.brief = measure.brief(s.loop, src, dst, others);
    return t;
}

// The lines above the table that say what its columns are.
std::vector<std::string> legend(const std::string& ports) {
    return {
        "fftw, kissfft, plain: cycles of the other library over ours, above 1 where ours is faster",
        "/bound: our cycles over the bound of the kernel's own operations on this core (" + ports +
            ")",
        "cycles, median: core cycles of a call in long bursts, least and median of the samples",
        "short: in bursts of 8 calls after other kernels; latency: each call waits for the last",
        "bound: cycles that the operations take at least, without call, gate and return"};
}

// A DCT-IV of 8 points is called as if it were a kernel of that length: DCT4_8_32f.
std::vector<Subject> chosen(std::vector<Subject> subjects, const std::vector<std::string>& words) {
    std::vector<Member> members;
    for (const Subject& s : subjects) members.push_back(s.member);
    const std::vector<Member> called = generator::calledBy(members, words);
    std::erase_if(subjects, [&](const Subject& s) {
        return std::find(called.begin(), called.end(), s.member) == called.end();
    });
    return subjects;
}

// What AVX code leaves behind that does not clear the upper halves of its registers.
__attribute__((target("avx"))) void fillUppers() {
    asm volatile(
        "vpcmpeqd %%xmm0, %%xmm0, %%xmm0\n\t"
        "vinsertf128 $1, %%xmm0, %%ymm0, %%ymm0\n\t"
        "vmovaps %%ymm0, %%ymm1\n\t"
        "vmovaps %%ymm0, %%ymm15"
        :
        :
        : "xmm0", "xmm1", "xmm15");
}

__attribute__((target("avx"))) void clearUppers() { asm volatile("vzeroupper"); }

// One build of the library: its kernels as it was built, and in copies of it.
struct Build {
    std::vector<KernelLibrary> libraries;
    std::vector<std::vector<Subject>> versions;

    Build(const std::filesystem::path& file, int copies, const Options& options) {
        libraries.push_back(KernelLibrary::asBuilt(file));
        for (int i = 0; i < copies; ++i) libraries.push_back(KernelLibrary::copy(file));
        for (const KernelLibrary& library : libraries) {
            versions.push_back(chosen(allSubjects(library), options.names));
            if (!options.dirtyUppers) continue;
            for (Subject& s : versions.back()) {
                s.loop = [loop = s.loop](const void* src, void* dst, int calls, Pace pace) {
                    fillUppers();
                    loop(src, dst, calls, pace);
                    clearUppers();
                };
            }
        }
    }
};

// That of the fastest version.
Timing timingOf(const Measurement& measure, const Build& build, std::size_t i, const void* src,
                void* dst, std::size_t bytes) {
    Timing best;
    for (const std::vector<Subject>& version : build.versions) {
        const Timing t = timingOf(measure, version, i, src, dst, bytes);
        if (&version == &build.versions.front() || t.burst.least < best.burst.least) best = t;
    }
    return best;
}

// The file of the build for x86-64-v3; empty: there is none, or the processor is below its level.
std::string secondBuild() {
    const bool runs = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                      __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("fma");
    return runs ? ORVGEN_SECOND_BUILD : "";
}

PortTable portsOf(const std::string& table) {
    if (table.empty()) return PortTable::detected();
    try {
        return PortTable::read(table);
    } catch (const std::runtime_error& e) {
        throw BadInput(std::string("--ports: ") + e.what());
    }
}

Effort effortOf(const Options& options) {
    if (!options.quick) return {};
    return {.samples = 5, .cyclesPerSample = 20000, .briefSamples = 9, .copies = 0};
}

Heading headingOf(const Options& options, const PortTable& ports, const Peers& peers) {
    Heading heading{.libraries = peers.names(), .notes = legend(ports.name())};
    if (const std::string busy = whatElseRuns(); !busy.empty()) heading.notes.push_back(busy);
    if (options.dirtyUppers) heading.notes.push_back("ours: after AVX code without vzeroupper");
    heading.notes.insert(heading.notes.end(), peers.notes().begin(), peers.notes().end());
    return heading;
}

int run(const Options& options) {
    const Effort effort = effortOf(options);
    const Measurement measure(effort);
    if (options.dirtyUppers && !__builtin_cpu_supports("avx"))
        throw std::runtime_error("this processor has no AVX");
    const PortTable ports = portsOf(options.ports);
    const test::MachineCode code(ORVGEN_LIBRARY_FILE);
    Peers peers(options);
    Heading heading = headingOf(options, ports, peers);

    const Build first(ORVGEN_LIBRARY_FILE, effort.copies, options);
    const std::vector<Subject>& subjects = first.versions.front();
    makeFolder(options.out);
    // In the build tree it finds no core library, and takes the first one's.
    std::optional<Build> second;
    if (const std::string file = secondBuild(); !file.empty()) {
        second.emplace(file, effort.copies, options);
        heading.secondBuild = true;
        heading.notes.push_back("v3: our cycles over those of the build for x86-64-v3");
    }
    std::fputs(tableHead(heading).c_str(), stdout);
    std::vector<Result> results;
    for (std::size_t i = 0; i < subjects.size(); ++i) {
        const Subject& s = subjects[i];
        const std::size_t bytes = std::max(s.problem.srcBytes, s.problem.dstBytes) + 64;
        const Buffer src(bytes), dst(bytes);
        src.fill(s.problem.wide);
        dst.fill(s.problem.wide);
        Result r;
        r.name = s.name;
        r.family = s.member.family;
        r.length = s.problem.length;
        r.ours = timingOf(measure, first, i, src.data(), dst.data(), bytes);
        if (second) r.second = timingOf(measure, *second, i, src.data(), dst.data(), bytes);
        const OperationCounts counts = operationsOf(code, s.name);
        if (!counts.empty()) r.bound = ports.bound(counts);
        r.others = peers.times(measure, s.problem, src, dst);
        std::fputs(tableRow(heading, r).c_str(), stdout);
        std::fflush(stdout);
        results.push_back(std::move(r));
    }
    std::fputs(summary(heading, results).c_str(), stdout);
    writeReport(options.out, heading, results);
    std::printf("written to %s\n", options.out.string().c_str());
    return 0;
}

}  // namespace
}  // namespace orvgen::bench

int main(int argc, char** argv) try {
    orvgen::bench::Options o;
    const auto declare = [&o](CLI::App& app) {
        app.add_option("NAME", o.names,
                       "kernels: DFTFwd_CToC_64_32fc, a family (WHT_32f), a pattern ('*_64_*'); "
                       "without any all")
            ->type_name("");
        app.add_option("--ports", o.ports,
                       "zen5, golden-cove or a file that bench_ports wrote; by default this core's")
            ->type_name("TABLE");
        app.add_option("--out", o.out, "where the tables and the plots go")->type_name("FOLDER");
        app.add_flag("--quick", o.quick, "fewer and shorter samples")->disable_flag_override();
        app.add_flag("--dirty-uppers", o.dirtyUppers,
                     "ours after AVX code that left the upper halves of its registers full")
            ->disable_flag_override();
        app.add_flag("--same-isa", o.sameIsa,
                     "also an FFTW built here from Debian's source with SSE2 alone")
            ->disable_flag_override();
    };
    const auto body = [&o] {
        try {
            return orvgen::bench::run(o);
        } catch (const orvgen::generator::UnknownName& e) {
            throw BadInput(e.what());
        }
    };
    return runProgram(
        "bench",
        "Every kernel in core cycles, beside other libraries and the bound of its own work.", argc,
        argv, declare, body);
} catch (const std::exception& e) {
    std::fprintf(stderr, "bench: %s\n", e.what());
    return 1;
}
