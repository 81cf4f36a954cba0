#include "decomposition.h"

#include <numeric>
#include <stdexcept>

namespace orvgen::dft {

std::size_t Decomposition::input(std::size_t t, std::size_t c) const {
    if (join == Join::GoodThomas) return (M() * t + R() * c) % length;
    return (columns[c] + M() * t) % length;
}

std::size_t Decomposition::output(std::size_t k, std::size_t p) const {
    if (join == Join::CooleyTukey) {
        std::size_t q = 0;
        while (columns[1] * q % M() != p) ++q;
        return (rows[k] + R() * q) % length;
    }
    std::size_t index = k;
    while (index % M() != p) index += R();
    return index;
}

std::size_t Decomposition::twiddle(std::size_t c, std::size_t k) const {
    return columns[c] * rows[k] % length;
}

std::string Decomposition::stages() const {
    if (join == Join::None) return std::to_string(length);
    return first->stages() + (join == Join::GoodThomas ? ", " : " T ") + second->stages();
}

Part block(std::size_t length) {
    return std::make_shared<const Decomposition>(
        Decomposition{length, Join::None, {}, {}, {}, {}, {}});
}

Part goodThomas(const Part& first, const Part& second) {
    if (std::gcd(first->length, second->length) != 1)
        throw std::logic_error("the lengths of a Good-Thomas join are coprime");
    return std::make_shared<const Decomposition>(
        Decomposition{first->length * second->length, Join::GoodThomas, first, second, {}, {}, {}});
}

namespace {

// Representatives of all residues modulo n, 0 .. n-1 themselves if none are named: number i is e i
// modulo n, with e prime to n.
std::vector<std::size_t> representatives(std::vector<std::size_t> named, std::size_t n) {
    if (named.empty()) {
        named.resize(n);
        std::iota(named.begin(), named.end(), std::size_t{0});
    }
    if (named.size() != n || std::gcd(named[1], n) != 1)
        throw std::logic_error("one representative for each residue");
    for (std::size_t i = 0; i < n; ++i)
        if (named[i] % n != named[1] * i % n)
            throw std::logic_error("representatives stand in arithmetic order");
    return named;
}

bool areInOrderOfResidue(const std::vector<std::size_t>& representatives) {
    return representatives[1] % representatives.size() == 1;
}

}  // namespace

Part cooleyTukey(const Part& first, const Part& second, std::vector<std::size_t> columns,
                 std::vector<std::size_t> rows, TwiddleLanes twiddleLanes) {
    const std::size_t R = first->length;
    const std::size_t M = second->length;
    columns = representatives(std::move(columns), M);
    rows = representatives(std::move(rows), R);
    if (!areInOrderOfResidue(rows)) throw std::logic_error("rows stand in order of residue");
    return std::make_shared<const Decomposition>(Decomposition{R * M, Join::CooleyTukey, first,
                                                               second, std::move(columns),
                                                               std::move(rows), twiddleLanes});
}

Part mirrored(const Part& part) {
    switch (part->join) {
        case Join::GoodThomas:
            return goodThomas(mirrored(part->second), mirrored(part->first));
        case Join::CooleyTukey:
            return cooleyTukey(mirrored(part->second), mirrored(part->first), part->rows,
                               part->columns,
                               part->twiddleLanes == TwiddleLanes::Rows ? TwiddleLanes::Columns
                                                                        : TwiddleLanes::Rows);
        default:
            return part;
    }
}

}  // namespace orvgen::dft
