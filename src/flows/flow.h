// What all blocks share: the plans of the flow, the place in it, and the five transforms.
//
// A block reads its operands as binary32 values (it narrows them, once per value) and hands its
// results on as they stand, which may be double expressions that nobody has rounded yet.
#pragma once

#include <string>
#include <vector>

#include "expression.h"
#include "kernelgen/graph.h"
#include "plan.h"

namespace orvgen::flows {

template <class V>
using Bin = Complex<Expression<V>>;
// A half spectrum. The imaginary parts of real bins are empty.
template <class V>
using Bins = std::vector<Bin<V>>;

// Samples that come straight from another block or from the caller, not formed yet.
template <class V>
using Samples = std::vector<Expression<V>>;

inline long modulo(long k, long n) { return (k % n + n) % n; }

// Bin k of a real sequence of length n out of its half spectrum: X[n-k] is the conjugate of X[k].
template <class V>
Bin<V> binAt(const Bins<V>& half, int n, long k) {
    k = modulo(k, n);
    return 2 * k <= n ? half[static_cast<std::size_t>(k)]
                      : conj(half[static_cast<std::size_t>(n - k)]);
}

template <class V>
void setBin(Bins<V>& half, int n, long k, const Bin<V>& z) {
    k = modulo(k, n);
    if (2 * k <= n)
        half[static_cast<std::size_t>(k)] = z;
    else
        half[static_cast<std::size_t>(n - k)] = conj(z);
}

// The same for the odd frequencies f of period 2n; bin j has frequency 2j+1.
template <class V>
Bin<V> oddBinAt(const Bins<V>& half, int n, long f) {
    f = modulo(f, 2 * n);
    return f <= n ? half[static_cast<std::size_t>((f - 1) / 2)]
                  : conj(half[static_cast<std::size_t>((2 * n - f - 1) / 2)]);
}

template <class V>
void setOddBin(Bins<V>& half, int n, long f, const Bin<V>& z) {
    f = modulo(f, 2 * n);
    if (f <= n)
        half[static_cast<std::size_t>((f - 1) / 2)] = z;
    else
        half[static_cast<std::size_t>((2 * n - f - 1) / 2)] = conj(z);
}

inline std::size_t binCount(int n) { return static_cast<std::size_t>(n / 2 + 1); }
inline std::size_t oddBinCount(int n) { return static_cast<std::size_t>((n + 1) / 2); }

// A value of a double expression that is rounded for the sums that take it, and goes on unrounded
// into the double expression that takes it too. `place` is the end of the path of the block that
// does so, as Flow::path() writes it, or the whole path if it begins with '/'; behind a colon
// stands which of the block's operands is meant, where it is not the first.
struct Carry {
    int length;  // of the kernel
    const char* place;
};

template <class V>
class Flow {
  public:
    explicit Flow(const Plans& plans, kernelgen::Graph* graph = nullptr)
        : plans_(&plans), graph_(graph) {}

    const Plans& plans() const { return *plans_; }
    void carry(const std::string& place) { carries_.push_back(place); }

    // Direct blocks take their pairs upwards and begin a sine sum with a term that is positive in a
    // transform of this sign (1 or -1); 0: they keep the order of the real kernels.
    void setPositiveFirst(int sign) { positiveFirst_ = sign; }
    int positiveFirst() const { return positiveFirst_; }

    // A step down into a part of the plan, for the time of the scope.
    class Scope {
      public:
        Scope(Flow& flow, const std::string& name) : flow_(&flow), length_(flow.path_.size()) {
            flow.path_ += "/" + name;
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope() { flow_->path_.resize(length_); }

      private:
        Flow* flow_;
        std::size_t length_;
    };

    const std::string& path() const { return path_; }

    // A value as a double expression takes it: rounded, but for the places that carry it on.
    V operand(const Expression<V>& e, const char* which = "") const {
        return carries(path_ + which) ? e.formed() : narrow(e);
    }

    // Names what follows, for the comments of the emitted kernel; only the outermost steps.
    void stage(const std::string& name) {
        if (graph_ != nullptr && path_.empty()) graph_->stage(name);
    }

    // The transforms (see Transform), by plan. `e` is the exponent of the root of unity.
    Bins<V> real(const PlanPtr& plan, long e, const std::vector<V>& x);
    std::vector<V> inverseReal(const PlanPtr& plan, long e, const Bins<V>& z);
    Bins<V> odd(const PlanPtr& plan, const Samples<V>& x);
    std::vector<V> inverseOdd(const PlanPtr& plan, const Bins<V>& z);
    Bins<V> complex(const PlanPtr& plan, const PlanPtr& complexPlan, long e, const Bins<V>& z);
    // As complex(), with the exponent +; results by sample.
    Bins<V> inverseComplex(const PlanPtr& plan, const PlanPtr& complexPlan, long e,
                           const Bins<V>& z);

  private:
    Bins<V> realBlock(const Plan& plan, long e, const std::vector<V>& x);
    bool carries(const std::string& operand) const {
        for (const std::string& place : carries_)
            if (place[0] == '/' ? operand == place : operand.ends_with(place)) return true;
        return false;
    }

    const Plans* plans_;
    kernelgen::Graph* graph_;
    std::vector<std::string> carries_;
    std::string path_;
    int positiveFirst_ = 0;
};

}  // namespace orvgen::flows
