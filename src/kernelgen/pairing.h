// SPDX-License-Identifier: MIT
// Which instructions of straight code do the same to different values, so that one instruction on
// vectors of twice the size can do both.
//
// Two instructions may become a pair if they are the same but for their values and constants, and
// equally deep below the loads; so no pair can wait for itself. A pair is grown through its
// operands and users as far as they are alike, and the growth that saves most is kept, again and
// again (superword parallelism: Larsen, Amarasinghe 2000). What cannot be grown costs shuffles.
#pragma once

#include <cstdint>
#include <vector>

#include "code.h"

namespace orvgen::kernelgen {

// What is put together.
enum class Grain : std::uint8_t {
    Scalars,  // two numbers to a vector of two lanes
    Vectors,  // two vectors of 16 bytes to one of 32
};

// Where the values of straight code come from and go to. Instructions are named by their places.
struct DataFlow {
    explicit DataFlow(const Code& code);

    struct Use {
        int user;
        int position;  // among its operands
    };
    const std::vector<Instruction>& instructions;
    std::vector<std::vector<int>> operands;
    std::vector<std::vector<Use>> users;
    std::vector<int> depth;  // 0: a load, or a store of nothing
};

// Whether one access to memory could do what these two do.
bool areNeighbours(const Instruction& lower, const Instruction& upper);

struct Pairing {
    std::vector<int> mate;            // of each instruction; -1: it stays alone
    std::vector<std::uint8_t> upper;  // whether its lanes are the upper ones of the pair

    bool isPaired(int i) const { return mate[static_cast<std::size_t>(i)] >= 0; }
    bool isUpper(int i) const { return upper[static_cast<std::size_t>(i)] != 0; }
    // Whether the two are lower and upper half of one pair.
    bool isPair(int lower, int other) const {
        return mate[static_cast<std::size_t>(lower)] == other && !isUpper(lower);
    }
};

struct PairingSearch {
    bool withinStages = false;  // only instructions of the same stage of the flow become a pair
    unsigned seed = 0;          // of the seeds that are tried; 0: all of them
    long work = 0;              // steps of growth after which the search is content with less
};

Pairing findPairs(const DataFlow& flow, Grain grain, const PairingSearch& search);

}  // namespace orvgen::kernelgen
