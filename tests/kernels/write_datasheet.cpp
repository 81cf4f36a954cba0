// Prints the datasheet of the build: every fixed-length kernel with its counts, its code, its speed
// and its errors. Usage: write_datasheet [TABLE.CSV of the benchmark].
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>

#include "accuracy.h"
#include "kernelgen/compile.h"
#include "kernelgen/count.h"
#include "kernelgen/error_bound.h"
#include "support/elf_image.h"

namespace {

using namespace orvgen;
using test::ListedKernel;

// Measured cycles by kernel, from the benchmark's table.
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

}  // namespace

int main(int argc, char** argv) {
    try {
        const auto cycles = argc > 1 ? readCycles(argv[1]) : std::map<std::string, std::string>();
        const test::ElfImage library(ORVGEN_LIBRARY_FILE);
        std::cout
            << "# Datasheet\n\n"
               "Additions and multiplications are real operations; in the complex binary32 "
               "kernels those on distinct values, without the scale. Instructions: the aligned "
               "body. Bytes: the whole function. Cycles: measured, long bursts; model and bound "
               "are those of the kernel compiler. Errors over random inputs in units of u: "
               "relative in the L2 norm, and the largest over the root mean square of the "
               "results; bound: a priori, for one real of a result, inputs of at most 1.\n";
        std::string family;
        for (const ListedKernel& k : test::listedKernels()) {
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
        return 0;
    } catch (const std::exception& e) {
        std::cerr << "write_datasheet: " << e.what() << "\n";
        return 2;
    }
}
