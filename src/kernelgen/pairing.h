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
    Pairs,    // two vectors of two lanes to one of four: of binary32 in 16 bytes, else in 32
};

// The shufps that exchanges the lanes of a pair of binary32; zeros above stay.
inline constexpr int kExchangeSingles = 0xE1;

// Where the values of straight code come from and go to. Instructions are named by their places.
struct DataFlow {
    DataFlow(const Code& code, Grain of);

    struct Use {
        int user;
        int position;  // among its operands
    };
    const std::vector<Instruction>& instructions;
    std::vector<std::vector<int>> operands;
    std::vector<std::vector<Use>> users;
    // 0: a load, or a store of nothing. Movements of lanes that pairs have brought do not count for
    // what depends on them, so that like operations stay equally deep whether they needed any.
    std::vector<int> depth;
    const Grain grain;
};

// Whether one access to memory could do what these two do.
bool areNeighbours(const Instruction& lower, const Instruction& upper, Grain grain);

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

Pairing findPairs(const DataFlow& flow, const PairingSearch& search);

}  // namespace orvgen::kernelgen
