// SPDX-License-Identifier: MIT
// What a run of the batch benchmark found, as a table and a plot.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "frame/families.h"

namespace orvgen::bench {

// Core cycles of one transform by each method; infinite where there is none.
struct BatchResult {
    const FamilyInfo* family;
    int length;
    std::string target, layout, from;
    double ours, single, fftw;
};

// summary.md, a row for each layout, place and target; and, where gnuplot is there, batch.png: how
// many times as long the others take for rows from the cache, by length.
void writeSummary(const std::filesystem::path& folder, const std::vector<BatchResult>& results);

}  // namespace orvgen::bench
