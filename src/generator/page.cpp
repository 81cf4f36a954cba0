// SPDX-License-Identifier: MIT
#include "page.h"

#include <bit>
#include <iomanip>
#include <ostream>
#include <sstream>

#include "kernelgen/compile.h"
#include "kernelgen/count.h"
#include "kernelgen/error_bound.h"
#include "required.h"

namespace orvgen::generator {

using namespace kernelgen;

namespace {

struct Lines {
    std::string additions, multiplications, conversions;
};

template <class... Parts>
std::string joined(const Parts&... parts) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(2);
    (text << ... << parts);
    return text.str();
}

// Lanes that hold zeros or repeat each other make more operations run than there are.
Lines laneLines(const Kernel& kernel) {
    const LaneCounts c = countLanes(kernel.flow);
    const int scale = 2 * kernel.length;
    return {joined(c.distinctAdditions, " on distinct values (", c.liveAdditions,
                   " on live lanes, ", c.executedAdditions, " in all lanes)"),
            joined(c.distinctMultiplications + scale, ": ", c.distinctMultiplications,
                   " by constants on distinct values (", c.liveMultiplications, " on live lanes, ",
                   c.executedMultiplications, " in all lanes), ", scale, " by the scale"),
            "0"};
}

Lines scalarLines(const Kernel& kernel) {
    const bool pairs = kernel.flow.arithmetic() == Arithmetic::DoublePair;
    const int lanes = pairs ? 2 : 1;
    const Counts c = countOperations(kernel.flow);
    return {joined(lanes * c.additions, ", of these sign steps ", lanes * c.signSteps,
                   pairs ? " (two in an instruction)" : ""),
            joined(lanes * c.multiplications(), ": ", lanes * c.constantProducts, " by constants, ",
                   lanes * c.doublings, " by 2, ", lanes * c.scaleProducts, " by the scale",
                   pairs ? " (two in an instruction)" : ""),
            joined(c.conversions())};
}

// A Walsh-Hadamard kernel: log2(N) layers of N additions.
Lines passLines(const Kernel& kernel) {
    const int order = std::countr_zero(static_cast<unsigned>(kernel.length));
    return {joined(order * kernel.length, ", of these sign steps 0"),
            joined(kernel.length, ": 0 by constants, 0 by 2, ", kernel.length, " by the scale"),
            "0"};
}

// Every layer doubles magnitudes and errors and adds a rounding of half a unit of what it gives: of
// log2(N) layers together log2(N) N u.
ErrorBound boundOf(const Kernel& kernel) {
    if (!kernel.passes) return errorBound(kernel.flow);
    const double N = kernel.length;
    return {N * std::countr_zero(static_cast<unsigned>(kernel.length)), N};
}

}  // namespace

void printPage(std::ostream& out, const Kernel& kernel, const std::string& tables) {
    const CompiledKernel compiled = compileKernel(kernel);
    const KernelFigures& f = compiled.figures;
    const Lines lines = kernel.passes                                         ? passLines(kernel)
                        : kernel.flow.arithmetic() == Arithmetic::SingleLanes ? laneLines(kernel)
                                                                              : scalarLines(kernel);
    const ErrorBound e = boundOf(kernel);
    out << kernel.name << "\n"
        << "  computed as      " << kernel.method << "\n"
        << "  additions        " << lines.additions << "\n"
        << "  multiplications  " << lines.multiplications << "\n"
        << "  conversions      " << lines.conversions << "\n";
    for (const RequiredRow& row : requiredRows(tables, kernel.name, kernel.length)) {
        out << "  the table says  ";
        for (const auto& [column, value] : row.cells) out << " " << column << " " << value << ";";
        out << " (" << row.table << ")\n";
    }
    out << joined("  error bound      ", e.absolute,
                  " u for |x| <= 1 in the worst output (sum of |weights| ", e.magnitude, ")\n")
        << "  instructions     " << f.instructions << " in the body\n"
        << "  frame            " << f.frameBytes << " bytes, " << f.spills << " spills\n"
        << std::fixed << std::setprecision(0) << "  cycles           " << f.modelCycles
        << " by the core model, port bound " << f.portBound << "\n\n"
        << compiled.assembly;
}

}  // namespace orvgen::generator
