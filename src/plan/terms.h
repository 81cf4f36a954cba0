// SPDX-License-Identifier: MIT
// What tables of plans are written with.
//
//   7                           the plan that the table has for 7 points, or else the block
//   block(11)                   the block, whatever the table has
//   goodThomas(2, 9)            two-point blocks first, then the table's plan for 9 points
//   cooleyTukey(9, 3)
//   rader({.cycle = 12, .even = goodThomas(2, 3), .odd = cooleyTukey(2, 3)})
//   factor(9).complexRows(cooleyTukey(3, 3)).at(4, ..)    where the blocks of a stage differ
//
// A term does not say which kind of transform it makes: its place in the tree does. A number means
// a row of the table in places that make the table's own kind of transform; anywhere else it is a
// block, and what is no block is written out. A choice that has no place in the tree it is made
// for throws, and with it the build of the kernel.
#pragma once

#include <functional>
#include <map>

#include "plan.h"

namespace orvgen::plan {

class Table;

class Term {
  public:
    using Maker = std::function<PlanPtr(Transform, const Table&)>;

    Term(int length);  // NOLINT: numbers are terms
    Term(int length, Maker maker) : length_(length), maker_(std::move(maker)) {}

    int length() const { return length_; }
    PlanPtr resolve(Transform transform, const Table& table) const;

  private:
    int length_;
    Maker maker_;
};

// A factor of a join: how its blocks are made. Unless said otherwise, complex rows are made in
// lanes by the plan of the real ones, and the rows at odd frequencies of odd length with
// alternating signs.
class Factor {
  public:
    Factor(Term plan) : plan_(std::move(plan)) {}  // NOLINT: terms are factors
    Factor(int length) : plan_(length) {}          // NOLINT

    Factor complexRows(const Term& plan) const;
    Factor oddRow(const Term& plan) const;
    // The block of this number alone.
    Factor at(int number, const Term& plan) const;

    int length() const { return plan_.length(); }
    // The stage of a join whose blocks make these transforms.
    Stage resolve(Transform join, const std::vector<Transform>& blocks, const Table& table) const;

  private:
    Term plan_;
    std::map<Transform, Term> byKind_;
    std::map<int, Term> byNumber_;
};

inline Factor factor(const Term& plan) { return {plan}; }

Term block(int length, const Block& choices = {});
Term goodThomas(const Factor& first, const Factor& second);

struct TwiddledJoin {
    std::vector<int> columns = {}, rows = {};
    TwiddleLanes twiddleLanes = TwiddleLanes::Rows;
    bool conjugateRows = false;
};
Term cooleyTukey(const Factor& first, const Factor& second, const TwiddledJoin& choices = {});

struct RaderParts {
    Term cycle, even, odd;
};
Term rader(const RaderParts& parts);

struct InverseRaderParts {
    Term even, odd, cycle;
    Unrounded unrounded = Unrounded::None;
};
Term inverseRader(const InverseRaderParts& parts);

struct SplitInverseRaderParts {
    Term even, odd, cycleEven, cycleOdd;
    Unrounded unrounded = Unrounded::None;
};
Term splitInverseRader(const SplitInverseRaderParts& parts);

// On complex numbers: the cycle's transform, and back by its mirror.
Term complexRader(const Term& cycle, ComplexRader::Form form = ComplexRader::Form::Split);
Term laneRader(int length, const LaneRader& choices = {});
Term bluestein(int length, const Term& forward, const Term& back);

Term lanes(const Term& both);
Term lanes(const Term& re, const Term& im);
Term renumbered(Renumbered::What what, const Term& plan);

}  // namespace orvgen::plan
