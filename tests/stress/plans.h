// SPDX-License-Identifier: MIT
// The functions of the DCT-IV families, by the list of the public header.
#pragma once

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "orvgen.h"
#include "stress/processor.h"

namespace orvgen::test {

#define ORVGEN_TEST_FAMILY(NAME, T)                                                            \
    struct NAME##Functions_##T {                                                               \
        using Real = Orv##T;                                                                   \
        using Spec = Orv##NAME##Spec_##T;                                                      \
        static constexpr auto getSize = orvg##NAME##GetSize_##T;                               \
        static constexpr auto init = orvg##NAME##Init_##T;                                     \
        static constexpr auto initAlloc = orvg##NAME##InitAlloc_##T;                           \
        static constexpr auto free = orvg##NAME##Free_##T;                                     \
        inline static const auto plainInit =                                                   \
            reinterpret_cast<PlainFunction>(orvg##NAME##Init_##T);                             \
        inline static const auto plainRun = reinterpret_cast<PlainFunction>(orvg##NAME##_##T); \
        static Arguments runArguments(const Real* src, Real* dst, Spec* spec) {                \
            Arguments a;                                                                       \
            a.pointer(0, src);                                                                 \
            a.pointer(1, dst);                                                                 \
            a.pointer(2, spec);                                                                \
            return a;                                                                          \
        }                                                                                      \
        static Arguments initArguments(Spec** spec, std::int32_t len, void* memory) {          \
            Arguments a;                                                                       \
            a.pointer(0, spec);                                                                \
            a.integer(1, len);                                                                 \
            a.pointer(2, memory);                                                              \
            return a;                                                                          \
        }                                                                                      \
    };
ORVGEN_DCT4_FAMILIES(ORVGEN_TEST_FAMILY)
#undef ORVGEN_TEST_FAMILY

using PlanFamilies = testing::Types<DCT4Functions_32f, DCT4Functions_64f>;

// A plan in memory of its own.
template <class F>
class Plan {
  public:
    explicit Plan(std::int32_t length) {
        if (F::initAlloc(&spec_, length) != orvOk) throw std::runtime_error("no plan");
    }
    ~Plan() { F::free(spec_); }
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;
    typename F::Spec* spec() const { return spec_; }

  private:
    typename F::Spec* spec_ = nullptr;
};

}  // namespace orvgen::test
