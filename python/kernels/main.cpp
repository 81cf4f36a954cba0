// SPDX-License-Identifier: MIT
// write_kernels KERNELS FILE: every generated kernel with its plan, its operations, its code and
// the bound on its error, as CSV, from the flows and the heads of the assembly in the folder
// KERNELS.
#include <fstream>
#include <iostream>

#include "generator/head.h"
#include "generator/operations.h"
#include "generator/registry.h"

namespace {

using namespace orvgen;

std::string quoted(const std::string& text) {
    std::string inside;
    for (const char c : text) inside += c == '"' ? std::string("\"\"") : std::string(1, c);
    return '"' + inside + '"';
}

void writeRow(std::ostream& out, const KernelFamily& family, int length,
              const std::string& kernels) {
    const kernelgen::Kernel kernel = family.kernel(length);
    const generator::Operations o = generator::operationsOf(kernel);
    const kernelgen::KernelFigures f =
        generator::figuresInHead(generator::assemblyOf(kernels, kernel.name.exported()));
    const kernelgen::ErrorBound bound = generator::errorBoundOf(kernel);
    out << kernel.name.exported() << ',' << nameOf(*family.info) << ',' << kernel.length << ','
        << quoted(kernel.method) << ',' << o.additions << ',' << o.multiplications() << ','
        << o.conversions << ',' << f.instructions << ',' << f.frameBytes << ',' << f.spills << ','
        << f.modelCycles << ',' << bound.absolute << '\n';
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 3) {
            std::cerr << "write_kernels: usage: write_kernels KERNELS FILE\n";
            return 2;
        }
        std::ofstream out(argv[2]);
        out << "name,family,points,plan,additions,multiplications,conversions,instructions,frame,"
               "spills,cycles,bound\n";
        for (const KernelFamily& family : generator::allFamilies())
            for (const int length : family.info->numbers) writeRow(out, family, length, argv[1]);
        out.close();
        if (!out) throw std::runtime_error(std::string("cannot write ") + argv[2]);
        return 0;
    } catch (const std::exception& e) {
        std::cerr << "write_kernels: " << e.what() << '\n';
        return 1;
    }
}
