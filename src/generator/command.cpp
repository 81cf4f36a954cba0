#include "command.h"

#include <cstdio>
#include <exception>
#include <iostream>
#include <optional>

#include "kernelgen/compile.h"
#include "kernelgen/count.h"
#include "kernelgen/error_bound.h"
#include "kernelgen/kernel_file.h"
#include "required.h"

namespace orvgen::generator {

using namespace kernelgen;

namespace {

int fail(const std::string& what) {
    std::cerr << "kernelgen: " << what << "\n";
    return 2;
}

struct Member {
    const Family* family;
    int length;
};

std::optional<Member> findMember(const std::vector<Family>& families, const std::string& name) {
    for (const Family& family : families)
        for (const int length : family.lengths)
            if (memberName(family.name, length) == name) return Member{&family, length};
    return std::nullopt;
}

void emit(const Kernel& kernel, const std::string& file) {
    writeKernelFile(file, keyOf(kernel), [&] { return compileKernel(kernel).assembly; });
}

// What there is to say of a flow: its operations, the rows of the tables, its error bound.
void showFlow(const Kernel& kernel, const std::string& tables) {
    if (kernel.flow.arithmetic() == Arithmetic::SingleLanes) {
        const LaneCounts c = countLanes(kernel.flow);
        std::cout << "  additions        " << c.distinctAdditions << " distinct, "
                  << c.liveAdditions << " on live lanes, " << c.executedAdditions
                  << " in all lanes\n"
                  << "  multiplications  " << c.distinctMultiplications << " distinct, "
                  << c.liveMultiplications << " on live lanes, " << c.executedMultiplications
                  << " in all lanes; the scale apart\n";
    } else {
        const Counts c = countOperations(kernel.flow);
        std::cout << "  additions        " << c.additions << ", of these sign steps " << c.signSteps
                  << "\n"
                  << "  multiplications  " << c.multiplications() << ": " << c.constantProducts
                  << " by constants, " << c.doublings << " by 2, " << c.scaleProducts
                  << " by the scale\n"
                  << "  conversions      " << c.conversions() << "\n";
    }
    for (const RequiredRow& row : requiredRows(tables, kernel.name, kernel.length)) {
        std::cout << "  the table says  ";
        for (const auto& [column, value] : row.cells)
            std::cout << " " << column << " " << value << ";";
        std::cout << " (" << row.table << ")\n";
    }
    const ErrorBound e = errorBound(kernel.flow);
    std::printf(
        "  error bound      %.2f u for |x| <= 1 in the worst output (sum of |weights| %.2f)\n",
        e.absolute, e.magnitude);
}

void show(const Kernel& kernel, const std::string& tables) {
    const CompiledKernel compiled = compileKernel(kernel);
    const KernelFigures& f = compiled.figures;
    std::cout << kernel.name << "\n"
              << "  computed as      " << kernel.method << "\n";
    if (!kernel.passes) showFlow(kernel, tables);
    std::printf("  instructions     %d in the body\n", f.instructions);
    std::printf("  frame            %d bytes, %d spills\n", f.frameBytes, f.spills);
    std::printf("  cycles           %.0f by the core model, port bound %.1f\n\n", f.modelCycles,
                f.portBound);
    std::cout << compiled.assembly;
}

}  // namespace

int runCommand(int argc, char** argv, const std::vector<Family>& families) {
    try {
        const std::string command = argc > 1 ? argv[1] : "";
        if (command == "list" && argc == 2) {
            for (const Family& family : families)
                for (const int length : family.lengths)
                    std::cout << memberName(family.name, length) << "\n";
            return 0;
        }
        if ((command != "emit" || argc != 4) && (command != "show" || (argc != 3 && argc != 4)))
            return fail("usage: list | emit NAME FILE | show NAME [FOLDER OF TABLES]");
        const std::optional<Member> member = findMember(families, argv[2]);
        if (!member) return fail("no such kernel: " + std::string(argv[2]));
        const Kernel kernel = member->family->kernel(member->length);
        if (command == "show")
            show(kernel, argc == 4 ? argv[3] : "");
        else
            emit(kernel, argv[3]);
        return 0;
    } catch (const std::exception& e) {
        return fail(e.what());
    }
}

}  // namespace orvgen::generator
