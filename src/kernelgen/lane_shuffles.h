// SPDX-License-Identifier: MIT
// Which shuffles bring four lanes together.
//
// One shuffle makes a vector if its lanes come as two of one vector and two of another, or
// interleaved. Otherwise its lower and its upper two lanes are brought together first, each in an
// intermediate of two vectors, and one shuffle joins them. An intermediate can serve several
// vectors: of each pair of sources the lane pairs that are wanted are covered by as few
// intermediates as a greedy choice finds. Four vectors that transpose four others come out as the
// eight shuffles of a transpose.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "code.h"

namespace orvgen::kernelgen {

using Source = int;  // a vector that lanes are taken from
constexpr Source kAny = -1;

struct Target {
    Source source = kAny;  // kAny: the lane may hold anything
    int lane = 0;          // of the zero vector every lane will do
};

using Targets = std::array<Target, 4>;

struct Shuffle {
    Opcode op;
    Source a, b;
    int immediate = 0;
};

int shuffleImmediate(int i0, int i1, int i2, int i3);

// Two vectors merged by one shuffle; position[s][l] is where lane l of vector s stands in it.
struct Intermediate {
    Shuffle shuffle;
    std::array<std::array<int, 4>, 2> position;
    Source result = kAny;
};

class LaneShuffles {
  public:
    explicit LaneShuffles(Source zero) : zero_(zero) {}

    // The source that holds all four lanes in their places, if one does.
    std::optional<Source> identity(const Targets& t) const;
    // The one shuffle that makes them, if one does.
    std::optional<Shuffle> oneShuffle(const Targets& t) const;
    // The one vector that two lanes lie in, if they do; kAny for two lanes of anything.
    static std::optional<Source> common(const Target& x, const Target& y);

    // First all targets are noted, then the intermediates chosen, then asked for. Their results are
    // the sources from `next` on; the number behind the last one is returned.
    void note(const Targets& t);
    Source chooseIntermediates(Source next);
    // The intermediate that holds both lanes, and where in it they stand.
    struct Found {
        const Intermediate& intermediate;
        int x, y;
    };
    Found find(const Target& x, const Target& y) const;

  private:
    struct Need {
        int i, j;  // lane of the first vector, of the second
        auto operator<=>(const Need&) const = default;
    };
    using SourcePair = std::pair<Source, Source>;

    bool matches(const Target& t, Source source, int lane) const;
    int positionIn(const Intermediate& m, std::size_t side, Source source, int lane) const;
    bool covers(const Intermediate& m, const SourcePair& pair, const Need& need) const;

    Source zero_;
    std::map<SourcePair, std::vector<Need>> needs_;
    std::map<SourcePair, std::vector<Intermediate>> intermediates_;
};

}  // namespace orvgen::kernelgen
