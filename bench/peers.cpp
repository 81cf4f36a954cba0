// SPDX-License-Identifier: MIT
#include "peers.h"

#include <dlfcn.h>
#include <fftw3.h>
#include <kissfft/kiss_fft.h>
#include <kissfft/kiss_fftr.h>

#include <kissfft/kissfft.hh>
#include <vector>

namespace orvgen::bench {
namespace {

template <class F>
F symbol(void* library, const char* name) {
    return library ? reinterpret_cast<F>(dlsym(library, name)) : nullptr;
}

// The functions of one precision. `Plain` is the name's start, fftw_ or fftwf_.
template <class Real, class Complex, class Plan>
struct Functions {
    explicit Functions(void* library, const std::string& start) {
        const auto take = [&](auto& f, const char* name) {
            f = symbol<std::decay_t<decltype(f)>>(library, (start + name).c_str());
            whole = whole && f;
        };
        whole = library != nullptr;
        take(dft, "plan_dft_1d");
        take(r2c, "plan_dft_r2c_1d");
        take(c2r, "plan_dft_c2r_1d");
        take(r2r, "plan_r2r");
        take(execute, "execute");
        take(destroy, "destroy_plan");
    }

    std::optional<Loop> plan(const Problem& p, void* src, void* dst) const {
        if (!whole) return std::nullopt;
        auto* realIn = static_cast<Real*>(src);
        auto* realOut = static_cast<Real*>(dst);
        auto* complexIn = static_cast<Complex*>(src);
        auto* complexOut = static_cast<Complex*>(dst);
        const unsigned flags = FFTW_PATIENT;
        Plan made = nullptr;
        switch (p.transform) {
            case Transform::complexDft:
                made = dft(p.length, complexIn, complexOut,
                           p.inverse ? FFTW_BACKWARD : FFTW_FORWARD, flags);
                break;
            case Transform::realForward:
                made = r2c(p.length, realIn, complexOut, flags);
                break;
            case Transform::realInverse:
                made = c2r(p.length, complexIn, realOut, flags);
                break;
            case Transform::hartley:
                made = one(p.length, realIn, realOut, FFTW_DHT, flags);
                break;
            case Transform::dct4:
                made = one(p.length, realIn, realOut, FFTW_REDFT11, flags);
                break;
            case Transform::wht: {
                // A Hartley transform of size 2 in each of log2 N dimensions.
                std::vector<int> sizes;
                for (int n = p.length; n > 1; n /= 2) sizes.push_back(2);
                const std::vector<fftw_r2r_kind> kinds(sizes.size(), FFTW_DHT);
                const unsigned cheaper = p.length > 256 ? unsigned{FFTW_MEASURE} : flags;
                made = r2r(static_cast<int>(sizes.size()), sizes.data(), realIn, realOut,
                           kinds.data(), cheaper);
                break;
            }
        }
        if (!made) return std::nullopt;
        const std::shared_ptr<std::remove_pointer_t<Plan>> kept(made, destroy);
        const auto run = execute;
        return Loop([kept, run, bytes = p.dstBytes](const void*, void* out, int calls, Pace pace) {
            Plan raw = kept.get();
            for (int i = 0; i < calls; ++i) {
                run(raw);
                // The plan holds its pointers: chain through the plan's address.
                if (pace == Pace::chained) {
                    raw = reinterpret_cast<Plan>(reinterpret_cast<char*>(raw) +
                                                 dependence(out, bytes));
                }
            }
        });
    }

    bool whole = false;

  private:
    Plan one(int n, Real* in, Real* out, fftw_r2r_kind kind, unsigned flags) const {
        return r2r(1, &n, in, out, &kind, flags);
    }

    Plan (*dft)(int, Complex*, Complex*, int, unsigned) = nullptr;
    Plan (*r2c)(int, Real*, Complex*, unsigned) = nullptr;
    Plan (*c2r)(int, Complex*, Real*, unsigned) = nullptr;
    Plan (*r2r)(int, const int*, Real*, Real*, const fftw_r2r_kind*, unsigned) = nullptr;
    void (*execute)(Plan) = nullptr;
    void (*destroy)(Plan) = nullptr;
};

template <class Real>
void plainWht(const void* src, void* dst, int n) {
    const auto* x = static_cast<const Real*>(src);
    auto* y = static_cast<Real*>(dst);
    for (int i = 0; i < n; ++i) y[i] = x[i];
    for (int h = 1; h < n; h *= 2) {
        for (int i = 0; i < n; i += 2 * h) {
            for (int j = i; j < i + h; ++j) {
                const Real a = y[j], b = y[j + h];
                y[j] = a + b;
                y[j + h] = a - b;
            }
        }
    }
}

}  // namespace

struct Fftw::Library {
    explicit Library(const std::string& folder)
        : wideFile(open(folder, "libfftw3.so.3")),
          narrowFile(open(folder, "libfftw3f.so.3")),
          wide(wideFile, "fftw_"),
          narrow(narrowFile, "fftwf_") {}
    ~Library() {
        if (wideFile) dlclose(wideFile);
        if (narrowFile) dlclose(narrowFile);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    static void* open(const std::string& folder, const std::string& file) {
        return dlopen((folder.empty() ? file : folder + "/" + file).c_str(), RTLD_NOW | RTLD_LOCAL);
    }

    void* wideFile;
    void* narrowFile;
    Functions<double, fftw_complex, fftw_plan> wide;
    Functions<float, fftwf_complex, fftwf_plan> narrow;
};

Fftw::Fftw(const std::string& folder) : library(std::make_unique<Library>(folder)) {}
Fftw::~Fftw() = default;
bool Fftw::loaded() const { return library->wide.whole && library->narrow.whole; }

std::string Fftw::version() const {
    const char* text = symbol<const char*>(library->wideFile, "fftw_version");
    return text ? text : "not found";
}

std::optional<Loop> Fftw::plan(const Problem& problem, void* src, void* dst) {
    return problem.wide ? library->wide.plan(problem, src, dst)
                        : library->narrow.plan(problem, src, dst);
}

std::optional<Loop> kissPlan(const Problem& p) {
    if (p.transform == Transform::complexDft && !p.wide) {
        const std::shared_ptr<kiss_fft_state> state(
            kiss_fft_alloc(p.length, p.inverse, nullptr, nullptr), kiss_fft_free);
        return makeLoop(p, [state](const void* s, void* d) {
            kiss_fft(state.get(), static_cast<const kiss_fft_cpx*>(s),
                     static_cast<kiss_fft_cpx*>(d));
        });
    }
    if (p.transform == Transform::complexDft) {
        const auto plan =
            std::make_shared<kissfft<double>>(static_cast<std::size_t>(p.length), p.inverse);
        return makeLoop(p, [plan](const void* s, void* d) {
            plan->transform(static_cast<const std::complex<double>*>(s),
                            static_cast<std::complex<double>*>(d));
        });
    }
    const bool real =
        p.transform == Transform::realForward || p.transform == Transform::realInverse;
    if (!real || p.wide || p.length % 2 != 0) return std::nullopt;
    const std::shared_ptr<kiss_fftr_state> state(
        kiss_fftr_alloc(p.length, p.inverse, nullptr, nullptr), kiss_fft_free);
    if (p.inverse) {
        return makeLoop(p, [state](const void* s, void* d) {
            kiss_fftri(state.get(), static_cast<const kiss_fft_cpx*>(s), static_cast<float*>(d));
        });
    }
    return makeLoop(p, [state](const void* s, void* d) {
        kiss_fftr(state.get(), static_cast<const float*>(s), static_cast<kiss_fft_cpx*>(d));
    });
}

std::optional<Loop> plainLoop(const Problem& p) {
    if (p.transform != Transform::wht) return std::nullopt;
    const int n = p.length;
    if (p.wide) return makeLoop(p, [n](const void* s, void* d) { plainWht<double>(s, d, n); });
    return makeLoop(p, [n](const void* s, void* d) { plainWht<float>(s, d, n); });
}

}  // namespace orvgen::bench
