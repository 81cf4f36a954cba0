// SPDX-License-Identifier: MIT
#include "pair.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "core_model.h"

namespace orvgen::kernelgen {

namespace {

constexpr long kWork = 3'000'000;
constexpr unsigned kSearches = 6;
constexpr unsigned kSearchesForFours = 3;
constexpr std::size_t kKept = 2;  // of the forms of one kind
constexpr double kInstructionWeight = 0.1;

// What the core models see before registers are given out.
double estimate(const Code& code) {
    std::vector<MachineInstruction> block;
    double fp = 0, shuffles = 0;
    for (const Instruction& i : code.instructions) {
        if (isLoad(i.op) && i.op != Opcode::LoadHalves) continue;
        MachineInstruction m{};
        m.op = i.op;
        m.width = i.width;
        m.hasAddress = i.hasAddress;
        block.push_back(m);
        const Unit unit = rowOf(i.op).unit;
        if (unit == Unit::Add || unit == Unit::Mul || unit == Unit::Convert) ++fp;
        if (unit == Unit::Shuffle || unit == Unit::Interleave || unit == Unit::Convert ||
            unit == Unit::Cross)
            ++shuffles;
    }
    const double narrow = std::max(fp / 2, shuffles);
    const auto [three, four] = coresOf(kLevel3);
    return (portBound(block, three, kLevel3) + portBound(block, four, kLevel3) + narrow) / 3 +
           kInstructionWeight * static_cast<double>(block.size());
}

Code write(const Code& code, const DataFlow& flow, const Pairing& pairing) {
    switch (flow.grain) {
        case Grain::Scalars:
            return writeScalarPairs(code, flow, pairing);
        case Grain::Vectors:
            return writeVectorPairs(code, flow, pairing);
        case Grain::Pairs:
            break;
    }
    return writeFours(code, flow, pairing);
}

// What the searches find in the code, each at its estimate.
using Found = std::vector<std::pair<double, Code>>;

Found search(const Code& code, Grain grain, unsigned searches) {
    const DataFlow flow(code, grain);
    Found found;
    for (unsigned k = 0; k < searches; ++k) {
        const Pairing pairing =
            findPairs(flow, {.withinStages = k % 2 == 1, .seed = k < 2 ? 0 : k, .work = kWork});
        if (std::ranges::all_of(pairing.mate, [](int mate) { return mate < 0; })) continue;
        Code paired = write(code, flow, pairing);
        const double cost = estimate(paired);
        found.emplace_back(cost, std::move(paired));
    }
    return found;
}

// The best of them, no two alike.
Found best(Found found) {
    std::ranges::stable_sort(found, {}, &Found::value_type::first);
    const auto areAlike = [](const auto& x, const auto& y) { return x.first == y.first; };
    found.erase(std::unique(found.begin(), found.end(), areAlike), found.end());
    if (found.size() > kKept) found.resize(kKept);
    return found;
}

}  // namespace

std::vector<Code> pairForms(const Code& code) {
    const Found pairs = best(search(code, Grain::Scalars, kSearches));
    Found fours;
    for (const auto& [cost, paired] : pairs)
        std::ranges::move(search(paired, Grain::Pairs, kSearchesForFours),
                          std::back_inserter(fours));
    std::vector<Code> forms;
    for (const Found& found :
         {pairs, best(std::move(fours)), best(search(code, Grain::Vectors, kSearches))})
        for (const auto& [cost, form] : found) forms.push_back(form);
    return forms;
}

Code twoTrips(const Code& trip, const Pass& pass) {
    Code code = trip;
    code.registers *= 2;
    const auto moved = [&](Address& address) {
        if (address.base == pass.from || address.base == pass.to) address.offset += pass.advance;
    };
    const auto second = [&](Register& r) {
        if (r != kNoRegister) r += trip.registers;
    };
    for (Instruction i : trip.instructions) {
        for (Register* r : {&i.dst, &i.a, &i.b}) second(*r);
        for (Address* a : {&i.address, &i.high}) moved(*a);
        code.instructions.push_back(i);
    }
    return code;
}

}  // namespace orvgen::kernelgen
