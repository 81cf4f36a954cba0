// SPDX-License-Identifier: MIT
// Prints the datasheet of the build: every kernel of a length or order of its own, or those named,
// with its counts, its code, its speed and its errors. Usage: write_datasheet TABLE [NAME...], with
// the benchmark's table, which may be missing, and the names of kernels as generator/names.h has
// them.
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <set>
#include <sstream>

#include "accuracy.h"
#include "generator/names.h"
#include "generator/registry.h"
#include "kernelgen/compile.h"
#include "kernelgen/count.h"
#include "kernelgen/error_bound.h"
#include "support/elf_image.h"
#include "support/machine_code.h"

namespace {

using namespace orvgen;
using test::ListedKernel;

// Measured cycles by kernel, from the benchmark's table; none where that is missing.
std::map<std::string, std::string> readCycles(const char* path) {
    std::map<std::string, std::string> cycles;
    std::ifstream file(path);
    std::size_t column = 0;
    for (std::string line; std::getline(file, line);) {
        std::vector<std::string> cells;
        std::stringstream text(line);
        for (std::string cell; std::getline(text, cell, ',');) cells.push_back(cell);
        if (column == 0) {
            for (std::size_t i = 0; i < cells.size(); ++i)
                if (cells[i] == "cycles") column = i;
            if (column == 0) throw std::runtime_error("no column of cycles");
        } else if (column < cells.size()) {
            cycles[cells[0]] = cells[column];
        }
    }
    return cycles;
}

void printRow(const ListedKernel& k, const test::ElfImage& library, const std::string& cycles) {
    const kernelgen::Kernel kernel = k.kernel();
    const kernelgen::KernelFigures f = kernelgen::compileKernel(kernel).figures;
    std::string counts;
    if (kernel.flow.arithmetic() == kernelgen::Arithmetic::SingleLanes) {
        const kernelgen::LaneCounts c = kernelgen::countLanes(kernel.flow);
        counts = std::to_string(c.distinctAdditions) + " | " +
                 std::to_string(c.distinctMultiplications) + " | ";
    } else {
        const kernelgen::Counts c = kernelgen::countOperations(kernel.flow);
        const int lanes = kernel.flow.arithmetic() == kernelgen::Arithmetic::DoublePair ? 2 : 1;
        counts = std::to_string(lanes * c.additions) + " | " +
                 std::to_string(lanes * c.multiplications()) + " | " +
                 (c.conversions() > 0 ? std::to_string(c.conversions()) : "");
    }
    const test::Accuracy a = test::measureAccuracy(k);
    const kernelgen::ErrorBound e = kernelgen::errorBound(kernel.flow);
    const test::Symbol* symbol = library.find(k.name);
    std::printf("| %d | %s | %s | %d | %llu | %d | %s | %.0f | %.1f | %.2f | %.2f | %.1f |\n",
                k.length, kernel.method.c_str(), counts.c_str(), f.instructions,
                symbol ? static_cast<unsigned long long>(symbol->size) : 0ULL, f.frameBytes,
                cycles.c_str(), f.modelCycles, f.portBound, a.relativeL2, a.largest, e.absolute);
}

// The passes of a Walsh-Hadamard kernel, in words.
std::string wordsOf(const kernelgen::Passes& passes) {
    std::string text = passes.tiles > 1 ? std::to_string(passes.tiles) + " tiles: " : "";
    for (const kernelgen::Pass& pass : passes.tile) text += pass.what + "; ";
    return text + (passes.last.what.empty() ? "one block" : passes.last.what);
}

template <class T>
void printOrders(const test::MachineCode& code, const std::map<std::string, std::string>& cycles,
                 const std::set<std::string>& chosen) {
    auto functions = test::orderFunctions<T>();
    std::erase_if(functions, [&](const auto& f) { return !chosen.contains(f.name); });
    if (functions.empty()) return;
    const FamilyInfo* info = sizeof(T) == 4 ? &familyOf("WHT", "32f") : &familyOf("WHT", "64f");
    const std::string family = nameOf(*info);
    for (const KernelFamily& f : generator::allFamilies()) {
        if (f.info != info) continue;
        std::cerr << "write_datasheet: " << family << "\n";
        std::cout
            << "\n## " << family
            << "\n\n| order | passes | add | mul | instructions | bytes | cycles | L2 error | "
               "largest |\n|---|---|---|---|---|---|---|---|---|\n";
        for (const auto& o : functions) {
            const test::Accuracy a = test::measureAccuracy(o);
            const test::Function& function = code.function(o.name);
            const auto measured = cycles.find(o.name);
            std::cout << "| " << o.order << " | " << wordsOf(*f.kernel(o.order).passes) << " | "
                      << o.points() * static_cast<std::size_t>(o.order) << " | " << o.points()
                      << " | " << function.instructions.size() << " | " << function.symbol.size
                      << " | " << (measured == cycles.end() ? "" : measured->second) << " | "
                      << std::fixed << std::setprecision(2) << a.relativeL2 << " | " << a.largest
                      << " |\n";
        }
        return;
    }
    throw std::runtime_error("no family " + family);
}

std::set<std::string> chosenKernels(const std::vector<std::string>& words) {
    std::set<std::string> chosen;
    for (const Member& m : generator::calledBy(allKernels(), words)) chosen.insert(m.name());
    return chosen;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc < 2) {
            std::cerr << "write_datasheet: usage: write_datasheet TABLE [NAME...]\n";
            return 2;
        }
        const std::set<std::string> chosen = chosenKernels({argv + 2, argv + argc});
        const auto cycles = readCycles(argv[1]);
        const test::ElfImage library(ORVGEN_LIBRARY_FILE);
        std::cout
            << "# Datasheet\n\n"
               "Additions and multiplications are real operations; in the complex binary32 "
               "kernels those on distinct values, without the scale. Instructions: the aligned "
               "body. Bytes: the whole function. Cycles: measured, long bursts; model and bound "
               "are those of the kernel compiler. Errors over random inputs in units of u: "
               "relative in the L2 norm, and the largest over the root mean square of the "
               "results; bound: a priori, for one real of a result, inputs of at most 1. "
               "The Walsh-Hadamard kernels' passes are described in words, their instructions are "
               "those of the function; a DCT-IV runs by its plan (docs/dct4.md).\n";
        std::string family;
        for (const ListedKernel& k : test::listedKernels()) {
            if (!chosen.contains(k.name)) continue;
            if (k.family != family) std::cerr << "write_datasheet: " << k.family << "\n";
            if (k.family != family)
                std::cout << "\n## " << (family = k.family)
                          << "\n\n| N | method | add | mul | conv | instructions | bytes | frame | "
                             "cycles | model | bound | L2 error | largest | error bound |\n"
                             "|---|---|---|---|---|---|---|---|---|---|---|---|---|---|\n"
                          << std::flush;
            const auto found = cycles.find(k.name);
            printRow(k, library, found == cycles.end() ? "" : found->second);
            std::fflush(stdout);
        }
        const test::MachineCode code(ORVGEN_LIBRARY_FILE);
        printOrders<Orv32f>(code, cycles, chosen);
        printOrders<Orv64f>(code, cycles, chosen);
        return 0;
    } catch (const generator::UnknownName& e) {
        std::cerr << "write_datasheet: " << e.what() << "\n";
        return 2;
    } catch (const std::exception& e) {
        std::cerr << "write_datasheet: " << e.what() << "\n";
        return 1;
    }
}
