// SPDX-License-Identifier: MIT
#include "terms.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>
#include <string>

#include "table.h"

namespace orvgen::plan {

namespace {

[[noreturn]] void refuse(int length, const std::string& what) {
    throw std::logic_error("plan of length " + std::to_string(length) + ": " + what);
}

PlanPtr make(Transform transform, int length, Node node) {
    return std::make_shared<const Plan>(Plan{transform, length, std::move(node)});
}

bool isOdd(Transform transform) {
    return transform == Transform::Odd || transform == Transform::InverseOdd;
}
bool isInverse(Transform transform) {
    return transform == Transform::InverseReal || transform == Transform::InverseOdd;
}

PlanPtr realBlock(Transform transform, int length, const Block& choices) {
    if (isOdd(transform) ? length != 2 : !isBlock(length)) refuse(length, "there is no such block");
    bool takes = true;
    switch (choices.unrounded) {
        case Unrounded::None:
            break;
        case Unrounded::Head:
            takes = !isOdd(transform) && length % 2 == 1 && length > 1;
            break;
        case Unrounded::Both:
            takes = !isOdd(transform) && length == 2;
            break;
        case Unrounded::RealPart:
            takes = transform == Transform::InverseReal && length == 3;
            break;
    }
    if (!takes) refuse(length, "the block has no such operand to carry on unrounded");
    if (choices.sums && length < 5) refuse(length, "the block has no sums to order");
    return make(transform, length, choices);
}

// The transforms that the stages of a join consist of: M columns of R points, R rows of M points.
struct Stages {
    std::vector<Transform> columns, rows;
};

// Rows k = 0 .. of a half spectrum of R bins: real for k = 0, `middle` for k = R/2, else complex.
std::vector<Transform> rowsOfHalf(int R, Transform real, Transform middle) {
    std::vector<Transform> rows;
    for (int k = 0; 2 * k <= R; ++k)
        rows.push_back(k == 0 ? real : 2 * k == R ? middle : Transform::Complex);
    return rows;
}

// The same of a half spectrum at odd frequencies.
std::vector<Transform> rowsOfOddHalf(int R, Transform middle) {
    std::vector<Transform> rows;
    for (int k = 0; 2 * k + 1 <= R; ++k)
        rows.push_back(2 * k + 1 == R ? middle : Transform::Complex);
    return rows;
}

std::vector<Transform> times(int count, Transform transform) {
    return std::vector<Transform>(static_cast<std::size_t>(count), transform);
}

Stages goodThomasStages(Transform transform, int R, int M) {
    switch (transform) {
        case Transform::Real:
        case Transform::InverseReal:
            return {times(M, transform), rowsOfHalf(R, transform, transform)};
        case Transform::Complex:
            return {times(M, transform), times(R, transform)};
        default:
            if (R != 2) refuse(R * M, "at odd frequencies one factor of a Good-Thomas join is 2");
            return {times(M, transform), {Transform::Complex}};
    }
}

Stages cooleyTukeyStages(Transform transform, int R, int M) {
    switch (transform) {
        case Transform::Real:
            return {times(M, transform), rowsOfHalf(R, transform, Transform::Odd)};
        case Transform::InverseReal:
            return {times(M, transform), rowsOfHalf(R, transform, Transform::InverseOdd)};
        case Transform::Complex:
            return {times(M, transform), times(R, transform)};
        default:
            return {times(M, transform), rowsOfOddHalf(R, transform)};
    }
}

// A join of the two factors in the order in which they run.
template <class Join>
Join joined(Transform transform, const Factor& first, const Factor& second, const Table& table,
            Stages (*stagesOf)(Transform, int, int)) {
    if (isInverse(transform)) {
        const Stages stages = stagesOf(transform, second.length(), first.length());
        return {.first = first.resolve(transform, stages.rows, table),
                .second = second.resolve(transform, stages.columns, table)};
    }
    const Stages stages = stagesOf(transform, first.length(), second.length());
    return {.first = first.resolve(transform, stages.columns, table),
            .second = second.resolve(transform, stages.rows, table)};
}

bool hasComplexRows(const Stage& rows) {
    return std::ranges::any_of(
        rows, [](const PlanPtr& row) { return row->transform == Transform::Complex; });
}

// Representatives of the residues modulo n, 0 .. n-1 if none are named: a multiple of their
// number each, so that a transform takes them in this order.
std::vector<int> representatives(std::vector<int> named, int n) {
    if (named.empty()) {
        named.resize(static_cast<std::size_t>(n));
        std::iota(named.begin(), named.end(), 0);
    }
    if (static_cast<int>(named.size()) != n) refuse(n, "one representative for each residue");
    if (n > 1 && std::gcd(named[1], n) != 1) refuse(n, "representatives differ in their residues");
    for (int i = 0; i < n; ++i)
        if ((named[static_cast<std::size_t>(i)] - i * (n > 1 ? named[1] : 0)) % n != 0)
            refuse(n, "representatives are multiples of the second one, modulo their number");
    return named;
}

PlanPtr raderHead(Transform transform, int length, InverseRealRader node) {
    if (transform != Transform::InverseReal)
        refuse(length, "the mirror of Rader's algorithm makes an inverse real transform");
    if (node.unrounded != Unrounded::None && node.unrounded != Unrounded::Head)
        refuse(length, "Rader's algorithm has no such operand to carry on unrounded");
    return make(transform, length, std::move(node));
}

}  // namespace

Term::Term(int length) : length_(length) {}

PlanPtr Term::resolve(Transform transform, const Table& table) const {
    if (isOdd(transform) && length_ % 2 == 1)
        return make(transform, length_,
                    Alternating{resolve(
                        isInverse(transform) ? Transform::InverseReal : Transform::Real, table)});
    if (maker_) return maker_(transform, table);
    if (transform == table.transform()) return table.plan(length_);
    return block(length_).resolve(transform, table);
}

Factor Factor::complexRows(const Term& plan) const {
    Factor f = *this;
    f.byKind_.emplace(Transform::Complex, plan);
    return f;
}

Factor Factor::oddRow(const Term& plan) const {
    Factor f = *this;
    f.byKind_.emplace(Transform::Odd, plan);
    return f;
}

Factor Factor::at(int number, const Term& plan) const {
    Factor f = *this;
    f.byNumber_.emplace(number, plan);
    return f;
}

Stage Factor::resolve(Transform join, const std::vector<Transform>& blocks,
                      const Table& table) const {
    for (const auto& [number, plan] : byNumber_)
        if (number < 0 || number >= static_cast<int>(blocks.size()))
            refuse(length(), "the stage has no block " + std::to_string(number));
    Stage stage;
    std::map<Transform, bool> used;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const Transform kind = blocks[i];
        const Transform asWritten = kind == Transform::InverseOdd ? Transform::Odd : kind;
        if (const auto own = byNumber_.find(static_cast<int>(i)); own != byNumber_.end()) {
            stage.push_back(own->second.resolve(kind, table));
        } else if (const auto rows = byKind_.find(asWritten); rows != byKind_.end()) {
            used[asWritten] = true;
            stage.push_back(rows->second.resolve(kind, table));
        } else if (kind == Transform::Complex && join != Transform::Complex) {
            stage.push_back(lanes(plan_).resolve(kind, table));
        } else {
            stage.push_back(plan_.resolve(kind, table));
        }
        if (stage.back()->length != length()) refuse(length(), "a block of another length");
    }
    for (const auto& [kind, plan] : byKind_)
        if (!used[kind])
            refuse(length(), kind == Transform::Complex
                                 ? "the stage has no complex rows"
                                 : "the stage has no row at odd frequencies");
    return stage;
}

Term block(int length, const Block& choices) {
    return {length, [=](Transform transform, const Table& table) {
                if (transform != Transform::Complex) return realBlock(transform, length, choices);
                if (table.transform() != Transform::Complex)
                    return lanes(block(length, choices)).resolve(transform, table);
                return make(transform, length, choices);
            }};
}

Term goodThomas(const Factor& first, const Factor& second) {
    const int N = first.length() * second.length();
    if (std::gcd(first.length(), second.length()) != 1)
        refuse(N, "the factors of a Good-Thomas join are coprime");
    return {N, [=](Transform transform, const Table& table) {
                return make(transform, N,
                            joined<GoodThomas>(transform, first, second, table, goodThomasStages));
            }};
}

Term cooleyTukey(const Factor& first, const Factor& second, const TwiddledJoin& choices) {
    const int R = first.length(), M = second.length(), N = R * M;
    return {N, [=](Transform transform, const Table& table) {
                auto join = joined<CooleyTukey>(transform, first, second, table, cooleyTukeyStages);
                if (transform == Transform::Complex) {
                    join.columns = representatives(choices.columns, M);
                    join.rows = representatives(choices.rows, R);
                } else if (!choices.columns.empty() || !choices.rows.empty() ||
                           choices.twiddleLanes != TwiddleLanes::Rows) {
                    refuse(N, "joins of complex data have representatives and lanes of twiddles");
                }
                if (choices.conjugateRows && !(isInverse(transform) && hasComplexRows(join.first)))
                    refuse(N, "the join has no row that could be its conjugate");
                join.twiddleLanes = choices.twiddleLanes;
                join.conjugateRows = choices.conjugateRows;
                return make(transform, N, std::move(join));
            }};
}

Term rader(const RaderParts& parts) {
    const int p = parts.cycle.length() + 1;
    if (2 * parts.even.length() != p - 1 || 2 * parts.odd.length() != p - 1)
        refuse(p, "the frequencies of a cycle come back in two halves");
    return {p, [=](Transform transform, const Table& table) {
                if (transform != Transform::Real) refuse(p, "Rader's algorithm on real data");
                return make(transform, p,
                            RealRader{.cycle = parts.cycle.resolve(Transform::Real, table),
                                      .even = parts.even.resolve(Transform::InverseReal, table),
                                      .odd = parts.odd.resolve(Transform::InverseOdd, table)});
            }};
}

Term inverseRader(const InverseRaderParts& parts) {
    const int p = parts.cycle.length() + 1;
    if (2 * parts.even.length() != p - 1 || 2 * parts.odd.length() != p - 1)
        refuse(p, "the two halves of a cycle");
    return {p, [=](Transform transform, const Table& table) {
                return raderHead(transform, p,
                                 {.even = parts.even.resolve(Transform::Real, table),
                                  .odd = parts.odd.resolve(Transform::Odd, table),
                                  .cycle = parts.cycle.resolve(Transform::InverseReal, table),
                                  .unrounded = parts.unrounded});
            }};
}

Term splitInverseRader(const SplitInverseRaderParts& parts) {
    const int p = 2 * parts.even.length() + 1;
    for (const Term* half : {&parts.odd, &parts.cycleEven, &parts.cycleOdd})
        if (2 * half->length() != p - 1) refuse(p, "the halves of a cycle");
    return {p, [=](Transform transform, const Table& table) {
                return raderHead(
                    transform, p,
                    {.even = parts.even.resolve(Transform::Real, table),
                     .odd = parts.odd.resolve(Transform::Odd, table),
                     .cycleEven = parts.cycleEven.resolve(Transform::InverseReal, table),
                     .cycleOdd = parts.cycleOdd.resolve(Transform::InverseOdd, table),
                     .unrounded = parts.unrounded});
            }};
}

Term complexRader(const Term& cycle, ComplexRader::Form form) {
    const int p = cycle.length() + 1;
    return {p, [=](Transform transform, const Table& table) {
                if (transform != Transform::Complex) refuse(p, "Rader's algorithm on complex data");
                const PlanPtr forward = cycle.resolve(transform, table);
                return make(
                    transform, p,
                    ComplexRader{.cycle = forward, .back = mirrored(forward), .form = form});
            }};
}

Term laneRader(int length, const LaneRader& choices) {
    for (const int bin : choices.sineFolds)
        if (bin <= 0 || 2 * bin >= length - 1) refuse(length, "the cycle has no such bin to fold");
    return {length, [=](Transform transform, const Table&) {
                if (transform != Transform::Complex)
                    refuse(length, "Rader's algorithm on complex data");
                return make(transform, length, choices);
            }};
}

Term bluestein(int length, const Term& forward, const Term& back) {
    if (forward.length() < 2 * length - 1 || back.length() != forward.length())
        refuse(length, "the padded length of Bluestein's algorithm");
    return {length, [=](Transform transform, const Table& table) {
                if (transform != Transform::Complex) refuse(length, "Bluestein on complex data");
                return make(transform, length,
                            Bluestein{.forward = forward.resolve(transform, table),
                                      .back = back.resolve(transform, table)});
            }};
}

Term lanes(const Term& both) { return lanes(both, both); }

Term lanes(const Term& re, const Term& im) {
    const int n = re.length();
    if (im.length() != n) refuse(n, "both lanes have one length");
    return {n, [=](Transform transform, const Table& table) {
                if (transform != Transform::Complex) refuse(n, "real data have no lanes");
                return make(transform, n,
                            Lanes{.re = re.resolve(Transform::Real, table),
                                  .im = im.resolve(Transform::Real, table)});
            }};
}

Term renumbered(Renumbered::What what, const Term& plan) {
    return {plan.length(), [=](Transform transform, const Table& table) {
                if (transform != Transform::Real)
                    refuse(plan.length(), "forward real blocks are renumbered");
                return make(transform, plan.length(),
                            Renumbered{.what = what, .plan = plan.resolve(transform, table)});
            }};
}

}  // namespace orvgen::plan
