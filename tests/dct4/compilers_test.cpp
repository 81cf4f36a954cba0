// SPDX-License-Identifier: MIT
// The plan machine built by the other compiler gives the same bits, and the same blocks in size.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "orvgen.h"

namespace orvgen::test::dct4 {
namespace {

class Library {
  public:
    explicit Library(const char* file) : handle(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
        if (handle == nullptr) throw std::runtime_error(dlerror());
    }
    template <class Function>
    Function* find(const std::string& name) const {
        void* symbol = dlsym(handle, name.c_str());
        if (symbol == nullptr) throw std::runtime_error("no " + name);
        return reinterpret_cast<Function*>(symbol);
    }

  private:
    void* handle;  // stays open: the functions are used to the end of the program
};

template <class Real, class Spec>
class Transform {
  public:
    Transform(const char* file, const std::string& suffix, std::int32_t length) {
        const Library library(file);
        const auto getSize =
            library.find<OrvStatus(std::int32_t, std::int32_t*)>("orvgDCT4GetSize" + suffix);
        const auto init =
            library.find<OrvStatus(Spec**, std::int32_t, std::uint8_t*)>("orvgDCT4Init" + suffix);
        run = library.find<OrvStatus(const Real*, Real*, Spec*)>("orvgDCT4" + suffix);
        std::int32_t size = 0;
        EXPECT_EQ(getSize(length, &size), orvOk);
        block.resize(static_cast<std::size_t>(size));
        EXPECT_EQ(init(&spec, length, block.data()), orvOk);
    }
    std::size_t size() const { return block.size(); }
    std::vector<Real> operator()(const std::vector<Real>& x) {
        std::vector<Real> y(x.size());
        EXPECT_EQ(run(x.data(), y.data(), spec), orvOk);
        return y;
    }

  private:
    OrvStatus (*run)(const Real*, Real*, Spec*);
    std::vector<std::uint8_t> block;
    Spec* spec = nullptr;
};

template <class Real>
long differences(const std::vector<Real>& a, const std::vector<Real>& b) {
    long count = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::isnan(a[i]) && std::isnan(b[i])) continue;
        using Bits = std::conditional_t<sizeof(Real) == 4, std::uint32_t, std::uint64_t>;
        count += std::bit_cast<Bits>(a[i]) != std::bit_cast<Bits>(b[i]);
    }
    return count;
}

template <class Real, class Spec>
void expectSameBits(const std::string& suffix) {
    using Limits = std::numeric_limits<Real>;
    for (std::int32_t N = 2; N <= 131072; N *= 2) {
        Transform<Real, Spec> ours(ORVGEN_LIBRARY_FILE, suffix, N);
        Transform<Real, Spec> others(ORVGEN_OTHER_LIBRARY, suffix, N);
        EXPECT_EQ(ours.size(), others.size());
        std::mt19937_64 generator(static_cast<unsigned>(N));
        std::uniform_real_distribution<double> uniform(-1, 1);
        std::vector<Real> x(static_cast<std::size_t>(N));
        for (int kind = 0; kind < 6; ++kind) {
            for (Real& value : x) {
                value = static_cast<Real>(uniform(generator));
                if (kind == 1) value = static_cast<Real>(value * Limits::min());
                if (kind == 2 && value < 0) value = value < Real(-0.5) ? -Real{0} : Real{0};
            }
            if (kind == 3) x[x.size() / 2] = Limits::infinity();
            if (kind == 4) x[x.size() / 3] = Limits::quiet_NaN();
            if (kind == 5) x.assign(x.size(), Real{1});
            EXPECT_EQ(differences(ours(x), others(x)), 0) << N << " input " << kind;
        }
    }
}

TEST(Dct4Compilers, GiveTheSameBits) {
    ASSERT_STRNE(ORVGEN_LIBRARY_FILE, ORVGEN_OTHER_LIBRARY);
    expectSameBits<Orv32f, OrvDCT4Spec_32f>("_32f");
    expectSameBits<Orv64f, OrvDCT4Spec_64f>("_64f");
}

}  // namespace
}  // namespace orvgen::test::dct4
