// SPDX-License-Identifier: MIT
// The transforms of real data to real data as kinds for run.h.
#pragma once

#include <array>
#include <cmath>
#include <memory>
#include <new>
#include <vector>

#include "batches.h"
#include "rotation/rotation.h"
#include "run.h"

namespace orvgen::python {

// The code is a scaling flag.
template <class R>
struct HartleyKind : PlainKind<R, R> {
    static std::ptrdiff_t reads(Task task) { return task.len; }
    static std::ptrdiff_t writes(Task task) { return task.len; }

    static OrvStatus call(const Places& src, const Places& dst, Task task, std::ptrdiff_t count) {
        constexpr std::ptrdiff_t size = sizeof(R);
        return Batches<R>::hartley(reinterpret_cast<const R*>(src.start), src.stride / size,
                                   src.distance / size, reinterpret_cast<R*>(dst.start),
                                   dst.stride / size, dst.distance / size, task.len,
                                   static_cast<std::size_t>(count), task.code);
    }
};

// len is the order; the code is a scaling flag.
template <class R>
struct HadamardKind : PlainKind<R, R> {
    static std::ptrdiff_t reads(Task task) { return std::ptrdiff_t{1} << task.len; }
    static std::ptrdiff_t writes(Task task) { return reads(task); }

    static OrvStatus call(const Places& src, const Places& dst, Task task, std::ptrdiff_t count) {
        constexpr std::ptrdiff_t size = sizeof(R);
        return Batches<R>::hadamard(reinterpret_cast<const R*>(src.start), src.stride / size,
                                    src.distance / size, reinterpret_cast<R*>(dst.start),
                                    dst.stride / size, dst.distance / size, task.len,
                                    static_cast<std::size_t>(count), task.code);
    }
};

// A thread's plans of the DCT-IV from 64 points on, by the logarithm of their length. Of those that
// take more than some megabytes only the last one is kept.
template <class R>
class Plans {
  public:
    using Plan = typename Batches<R>::Plan;

    static Plan* ofLength(int len) {
        static thread_local Plans ofThread;
        return ofThread.plan(len);
    }

  private:
    static constexpr int kKept = 1 << 16;
    struct Free {
        void operator()(Plan* plan) const { Batches<R>::freePlan(plan); }
    };

    Plan* plan(int len) {
        auto& plan = len > kKept ? long_ : kept_[slot(len)];
        if (len > kKept && len != longLength_) {
            plan.reset();
            longLength_ = len;
        }
        if (!plan) plan = make(len);
        return plan.get();
    }
    static std::size_t slot(int len) { return static_cast<std::size_t>(std::ilogb(len)); }
    static std::unique_ptr<Plan, Free> make(int len) {
        Plan* plan = nullptr;
        if (Batches<R>::makePlan(&plan, len) != orvOk) throw std::bad_alloc();
        return std::unique_ptr<Plan, Free>(plan);
    }

    std::array<std::unique_ptr<Plan, Free>, 17> kept_;
    std::unique_ptr<Plan, Free> long_;
    int longLength_ = 0;
};

// The factor behind the sum, as the code.
enum class CosineScale { None, Double, Orthonormal, Inverse, HalfInverse };

template <class R>
struct CosineKind : PlainKind<R, R> {
    static std::ptrdiff_t reads(Task task) { return task.len; }
    static std::ptrdiff_t writes(Task task) { return task.len; }
    static bool wantsRows(Task task) { return usesPlan(task); }

    static OrvStatus call(const Places& src, const Places& dst, Task task, std::ptrdiff_t count) {
        constexpr std::ptrdiff_t size = sizeof(R);
        return Batches<R>::dct4(reinterpret_cast<const R*>(src.start), src.stride / size,
                                src.distance / size, reinterpret_cast<R*>(dst.start),
                                dst.stride / size, dst.distance / size, task.len,
                                usesPlan(task) ? Plans<R>::ofLength(task.len) : nullptr,
                                static_cast<std::size_t>(count));
    }
    static bool finishes(Task task) { return scaleOf(task) != CosineScale::None; }
    static void finish(const Places& dst, Task task, std::ptrdiff_t count) {
        const R factor = factorOf(task);
        forEach(dst, count, task.len, [&](std::ptrdiff_t t, std::ptrdiff_t j) {
            store(at(dst, t, j), load<R>(at(dst, t, j)) * factor);
        });
    }

  private:
    static bool usesPlan(Task task) { return task.len >= 64; }
    static CosineScale scaleOf(Task task) { return static_cast<CosineScale>(task.code); }
    // All but the orthonormal one are powers of two.
    static R factorOf(Task task) {
        switch (scaleOf(task)) {
            case CosineScale::Double:
                return 2;
            case CosineScale::Orthonormal:
                return static_cast<R>(std::sqrt(2.0 / task.len));
            case CosineScale::Inverse:
                return static_cast<R>(2.0 / task.len);
            case CosineScale::HalfInverse:
                return static_cast<R>(1.0 / task.len);
            default:
                return 1;
        }
    }
};

// The frozen rotation: len is the size, the code says whether to turn back.
template <class R>
struct RotationKind : PlainKind<R, R> {
    static std::ptrdiff_t reads(Task task) { return task.len; }
    static std::ptrdiff_t writes(Task task) { return task.len; }

    static OrvStatus call(const Places& src, const Places& dst, Task task, std::ptrdiff_t count) {
        const auto shape = rotation::shapeOf(task.len);
        if (!shape) return orvErrSize;
        forEach(dst, count, task.len, [&](std::ptrdiff_t t, std::ptrdiff_t j) {
            store(at(dst, t, j), load<R>(at(src, t, j)));
        });
        constexpr std::ptrdiff_t size = sizeof(R);
        const rotation::Vectors<R> vectors{.start = reinterpret_cast<R*>(dst.start),
                                           .stride = dst.stride / size,
                                           .distance = dst.distance / size,
                                           .count = static_cast<std::size_t>(count)};
        const std::vector<R>& signs = signsOf(task.len);
        return task.code == 0 ? rotation::turn(vectors, *shape, signs)
                              : rotation::turnBack(vectors, *shape, signs);
    }
    // Block by block, so that a vector is turned while it is in the cache.
    static bool finishes(Task) { return true; }

  private:
    // A thread keeps those of one size.
    static const std::vector<R>& signsOf(int size) {
        static thread_local std::vector<R> signs;
        if (signs.size() != static_cast<std::size_t>(size)) {
            signs.resize(static_cast<std::size_t>(size));
            rotation::writeSigns(std::span<R>(signs));
        }
        return signs;
    }
};

}  // namespace orvgen::python
