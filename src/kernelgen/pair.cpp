// SPDX-License-Identifier: MIT
#include "pair.h"

#include <algorithm>
#include <optional>

#include "core_model.h"

namespace orvgen::kernelgen {

namespace {

constexpr long kWork = 3'000'000;
constexpr unsigned kSearches = 6;
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
    return (portBound(block, kThreePipe, kLevel3) + portBound(block, kFourPipe, kLevel3) + narrow) /
               3 +
           kInstructionWeight * static_cast<double>(block.size());
}

Code write(const Code& code, const DataFlow& flow, const Pairing& pairing, Grain grain) {
    return grain == Grain::Scalars ? writeScalarPairs(code, flow, pairing)
                                   : writeVectorPairs(code, flow, pairing);
}

}  // namespace

std::vector<Code> pairForms(const Code& code) {
    const DataFlow flow(code);
    std::vector<Code> forms;
    for (const Grain grain : {Grain::Scalars, Grain::Vectors}) {
        std::optional<Code> best;
        double least = 0;
        for (unsigned k = 0; k < kSearches; ++k) {
            const Pairing pairing = findPairs(
                flow, grain, {.withinStages = k % 2 == 1, .seed = k < 2 ? 0 : k, .work = kWork});
            if (std::ranges::all_of(pairing.mate, [](int mate) { return mate < 0; })) continue;
            Code paired = write(code, flow, pairing, grain);
            const double cost = estimate(paired);
            if (best && cost >= least) continue;
            least = cost;
            best = std::move(paired);
        }
        if (best) forms.push_back(*std::move(best));
    }
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
