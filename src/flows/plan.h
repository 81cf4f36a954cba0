// Plans: how a transform is made of shorter ones, as data.
//
// A plan is written as a short text:
//   7           a block of length 7: as its own row of the table says, or else the direct form
//   11d         the direct form of length 11, whatever the table says
//   7g          the direct form of an inverse whose real terms follow the powers of the primitive
//               root g, not those of its inverse
//   4x3         Good-Thomas join, 4-point blocks first (coprime factors, no twiddles)
//   4.3         Cooley-Tukey join, 4-point blocks first, twiddles between
//   4:3         the same, each complex row of an inverse join by its conjugate row
//   (5x3)x2     a factor may be a plan itself
//   5|7         real rows by the first plan, complex rows by the second
//   4'          a block that a Good-Thomas join gives the root exponent e is run with exponent 1 on
//               renumbered samples, x[t] as number e t
//   4"          the same with the bins renumbered: bin k is its bin e k
//   lanes(p)    a complex transform by plan p on the real parts and on the imaginary parts
//   rader(c; e; o)             forward Rader: the cycle's transform, then the inverse transforms of
//                              the even and of the odd frequencies
//   inverse-rader(e; o; c)     inverse Rader: transforms of the even and the odd part of the cycle,
//                              then the cycle's inverse transform
//   inverse-rader(e; o; e; o)  the same with that last transform split by parity
#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvgen::flows {

// The kinds of transform that blocks compute. With w(n) = exp(2 pi i/n):
enum class Transform {
    Real,         // X[k] = sum of x[t] w(n)^(-e t k), bins 0..n/2
    InverseReal,  // y[t] = Z[0] + sum over 0<k<n/2 of Re(Z[k] w(n)^(e t k)) + (-1)^t Z[n/2]
    Odd,          // X[j] = sum of x[t] w(2n)^(-(2j+1) t), bins 0..ceil(n/2)-1
    InverseOdd,   // y[t] = sum over j of Re(Z[j] w(2n)^((2j+1) t)) (+ (-1)^t Z[(n-1)/2], odd n)
    Complex,      // Y[k] = sum of z[t] w(n)^(-e t k)
};

struct Plan;
using PlanPtr = std::shared_ptr<const Plan>;

enum class Method { Named, Direct, GoodThomas, CooleyTukey, Lanes, Rader, InverseRader };

// How a block comes by its root exponent: by its constants, or by the order of samples or bins.
enum class Renumbering { None, Samples, Bins };

struct Plan {
    Method method = Method::Named;
    int length = 0;
    Renumbering renumbering = Renumbering::None;
    bool conjugateRows = false;
    // Joins: the two factors. Rader: the transforms in order of execution. Lanes: the one plan.
    std::vector<PlanPtr> parts;
    // Joins: the plans of the factors on complex rows; null where nothing is said.
    std::vector<PlanPtr> complexParts;
    // Direct, inverse: the order of the real terms.
    bool inRootOrder = false;

    // Inverse Rader with the last transform split by parity.
    bool isSplit() const { return method == Method::InverseRader && parts.size() == 4; }
};

PlanPtr parsePlan(std::string_view text);

// One row of a table of plans.
struct PlanRow {
    Transform transform;
    int length;
    const char* plan;
};

// The plans of one flow: rows of tables, of which a later one takes the place of an earlier one.
class Plans {
  public:
    void add(std::span<const PlanRow> rows);
    void add(const PlanRow& row);

    // The plan itself, or for a bare length the row of that transform, or else the direct form.
    PlanPtr resolve(Transform transform, const PlanPtr& plan) const;
    PlanPtr find(Transform transform, int length) const;

  private:
    std::map<std::pair<Transform, int>, PlanPtr> rows_;
};

}  // namespace orvgen::flows
