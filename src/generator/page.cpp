// SPDX-License-Identifier: MIT
#include "page.h"

#include <iomanip>
#include <ostream>
#include <sstream>

#include "dct4/notation.h"
#include "design.h"
#include "kernelgen/compile.h"
#include "operations.h"

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

Lines linesOf(const Operations& o) {
    const char* pairs = o.inPairs ? " (two in an instruction)" : "";
    if (!o.lanes)
        return {joined(o.additions, ", of these sign steps ", o.signSteps, pairs),
                joined(o.multiplications(), ": ", o.constantProducts, " by constants, ",
                       o.doublings, " by 2, ", o.scaleProducts, " by the scale", pairs),
                joined(o.conversions)};
    const LaneCounts& c = *o.lanes;
    return {joined(o.additions, " on distinct values (", c.liveAdditions, " on live lanes, ",
                   c.executedAdditions, " in all lanes)"),
            joined(o.multiplications(), ": ", o.constantProducts,
                   " by constants on distinct values (", c.liveMultiplications, " on live lanes, ",
                   c.executedMultiplications, " in all lanes), ", o.scaleProducts, " by the scale"),
            joined(o.conversions)};
}

}  // namespace

void printPage(std::ostream& out, const KernelFamily& family, int number,
               const std::string& tables) {
    const Kernel kernel = family.kernel(number);
    const CompiledKernel compiled = compileKernel(kernel);
    const KernelFigures& f = compiled.figures;
    const Lines lines = linesOf(operationsOf(kernel));
    const ErrorBound e = errorBoundOf(kernel);
    out << kernel.name.exported() << "\n"
        << "  computed as      " << kernel.method << "\n"
        << "  additions        " << lines.additions << "\n"
        << "  multiplications  " << lines.multiplications << "\n"
        << "  conversions      " << lines.conversions << "\n";
    for (const DesignRow& row : designRows(tables, *family.info, number)) {
        out << "  design          ";
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

void printPlanPage(std::ostream& out, const Member& member) {
    out << nameOf(*member.family) << " of " << member.number << "\n"
        << "  computed as      " << dct4::notation(member.number) << "\n"
        << "  plan             nodes and functions, files in src/dct4:\n";
    for (const std::string& line : dct4::planNodes(member.number))
        out << std::string(19, ' ') << line << "\n";
}

}  // namespace orvgen::generator
