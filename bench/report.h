// SPDX-License-Identifier: MIT
// What the benchmark writes: the table, the summary of each family, the plot.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "frame/families.h"
#include "measure.h"

namespace orvgen::bench {

struct Result {
    std::string name;
    const FamilyInfo* family = nullptr;
    int length = 0;
    Timing ours;                           // in the build for every processor
    std::optional<Timing> second;          // in that for x86-64-v3
    std::optional<double> bound;           // cycles of the kernel's own operations
    std::map<std::string, Cycles> others;  // by library, long bursts
};

struct Heading {
    std::vector<std::string> libraries;  // in the order of the columns
    bool secondBuild = false;            // measured too
    std::vector<std::string> notes;
};

std::string tableHead(const Heading& heading);
std::string tableRow(const Heading& heading, const Result& result);
// For each family and each library: geometric mean and worst of (their cycles / ours), and the same
// of (our cycles / bound), of (our cycles / those of the second build) and of (their cycles /
// those).
std::string summary(const Heading& heading, const std::vector<Result>& results);

// table.txt, table.csv, summary.txt, summary.md and, where gnuplot is there, one PNG of all
// families.
void writeReport(const std::filesystem::path& folder, const Heading& heading,
                 const std::vector<Result>& results);

}  // namespace orvgen::bench
