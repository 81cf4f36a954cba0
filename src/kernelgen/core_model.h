// SPDX-License-Identifier: MIT
// Small models of out-of-order cores: how many cycles a block takes when it is called back to back.
// They choose between orders of one kernel; figures to publish are measured.
#pragma once

#include <array>

#include "code.h"
#include "target.h"

namespace orvgen::kernelgen {

struct UnitModel {
    unsigned ports = 0;  // a bit for each that can do it
    int latency = 0;
};

struct Units {
    UnitModel add, mul, shuffle, interleave, logic, convert, cross;
};

struct CoreModel {
    int width;      // instructions a cycle
    int scheduler;  // instructions that wait for operands
    int loadPorts, storePorts;
    int loadLatency, forwardLatency;
    Units units;
    Units wideUnits;                // for vectors of 64 bytes
    bool conversionsCross = false;  // those of 32 bytes move data between the halves first
};

// The wide server cores that kernels are ordered for; none of the two is preferred.

// Add and shuffle on two ports, mul on two, three in all; two of them do wide vectors.
inline constexpr CoreModel kThreePipe{.width = 6,
                                      .scheduler = 97,
                                      .loadPorts = 3,
                                      .storePorts = 2,
                                      .loadLatency = 5,
                                      .forwardLatency = 5,
                                      .units = {.add = {.ports = 0b110, .latency = 3},
                                                .mul = {.ports = 0b011, .latency = 4},
                                                .shuffle = {.ports = 0b110, .latency = 1},
                                                .interleave = {.ports = 0b100, .latency = 1},
                                                .logic = {.ports = 0b111, .latency = 1},
                                                .convert = {.ports = 0b100, .latency = 5},
                                                .cross = {.ports = 0b100, .latency = 3}},
                                      .wideUnits = {.add = {.ports = 0b101, .latency = 4},
                                                    .mul = {.ports = 0b101, .latency = 4},
                                                    .shuffle = {.ports = 0b100, .latency = 1},
                                                    .interleave = {.ports = 0b100, .latency = 1},
                                                    .logic = {.ports = 0b101, .latency = 1},
                                                    .convert = {.ports = 0b100, .latency = 7},
                                                    .cross = {.ports = 0b100, .latency = 3}}};

// Add on two ports, mul on two others, shuffle on one of each.
inline constexpr CoreModel kFourPipe{.width = 8,
                                     .scheduler = 160,
                                     .loadPorts = 2,
                                     .storePorts = 2,
                                     .loadLatency = 7,
                                     .forwardLatency = 8,
                                     .units = {.add = {.ports = 0b1100, .latency = 3},
                                               .mul = {.ports = 0b0011, .latency = 3},
                                               .shuffle = {.ports = 0b0110, .latency = 1},
                                               .interleave = {.ports = 0b0110, .latency = 1},
                                               .logic = {.ports = 0b1111, .latency = 1},
                                               .convert = {.ports = 0b1100, .latency = 4},
                                               .cross = {.ports = 0b0110, .latency = 4}},
                                     .wideUnits = {.add = {.ports = 0b1100, .latency = 3},
                                                   .mul = {.ports = 0b0011, .latency = 3},
                                                   .shuffle = {.ports = 0b0110, .latency = 1},
                                                   .interleave = {.ports = 0b0110, .latency = 1},
                                                   .logic = {.ports = 0b1111, .latency = 1},
                                                   .convert = {.ports = 0b1100, .latency = 4},
                                                   .cross = {.ports = 0b0110, .latency = 4}}};

// Four pipes once more, as measured on Zen 5: movements on all of them, which take longer than
// sums. Of the instructions that its schedulers hold, those that could run wait for others of their
// own scheduler: back-to-back calls run as fast as with this many.
inline constexpr CoreModel kFourPipeShort{.width = 8,
                                          .scheduler = 60,
                                          .loadPorts = 2,
                                          .storePorts = 2,
                                          .loadLatency = 7,
                                          .forwardLatency = 8,
                                          .units = {.add = {.ports = 0b0011, .latency = 2},
                                                    .mul = {.ports = 0b1100, .latency = 3},
                                                    .shuffle = {.ports = 0b1111, .latency = 2},
                                                    .interleave = {.ports = 0b1111, .latency = 2},
                                                    .logic = {.ports = 0b1111, .latency = 2},
                                                    .convert = {.ports = 0b0011, .latency = 3},
                                                    .cross = {.ports = 0b0110, .latency = 3}},
                                          .wideUnits = kFourPipe.wideUnits,
                                          .conversionsCross = true};

// Those that kernels of a target are ordered for.
std::array<CoreModel, 2> coresOf(const Target& target);

double modelCycles(const std::vector<MachineInstruction>& block, const CoreModel& model,
                   const Target& target);

// How many cycles a block takes when nothing runs beside it.
double aloneCycles(const std::vector<MachineInstruction>& block, const CoreModel& model,
                   const Target& target);

// The least number of cycles that the ports allow for the block's own operations.
double portBound(const std::vector<MachineInstruction>& block, const CoreModel& model,
                 const Target& target);

// How long a result takes, for the making of orders.
int orderLatency(Opcode op);

}  // namespace orvgen::kernelgen
