#include "command.h"

#include <cstdio>
#include <exception>
#include <iostream>
#include <optional>

#include "kernelgen/batch.h"
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

const Target& targetOf(const std::string& name) {
    for (const Target* target : {&kSse2, &kAvx2, &kAvx512})
        if (name == target->name) return *target;
    throw std::runtime_error("no such target: " + name);
}

void emit(const Kernel& kernel, const std::string& file, const Target& target) {
    writeKernelFile(file, keyOf(kernel), [&] { return compileKernel(kernel, target).assembly; });
}

// What the arrays of a kernel hold.
WideOptions layoutsOf(const std::string& kernel) {
    const auto has = [&](const char* part) { return kernel.find(part) != std::string::npos; };
    WideOptions options;
    if (has("_CToC_") || has("_CCSToR_")) options.src = Layout::Complex;
    if (has("_PackToR_")) options.src = Layout::PackedBins;
    if (has("_CToC_") || has("_RToCCS_")) options.dst = Layout::Complex;
    return options;
}

void emitBatch(const Kernel& kernel, const std::string& folder, const std::string& name) {
    const Target& target = targetOf(name);
    writeKernelFile(folder + "/" + batchName(kernel.name, target) + ".s", keyOf(kernel),
                    [&] { return compileBatch(kernel, target, layoutsOf(kernel.name)).assembly; });
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
        if ((command != "emit" || (argc != 4 && argc != 5)) && (command != "batch" || argc < 5) &&
            (command != "show" || (argc != 3 && argc != 4)))
            return fail(
                "usage: list | emit NAME FILE [TARGET] | batch NAME FOLDER TARGET... | "
                "show NAME [FOLDER OF TABLES]");
        const std::optional<Member> member = findMember(families, argv[2]);
        if (!member) return fail("no such kernel: " + std::string(argv[2]));
        const Kernel kernel = member->family->kernel(member->length);
        if (command == "show")
            show(kernel, argc == 4 ? argv[3] : "");
        else if (command == "batch")
            for (int i = 4; i < argc; ++i) emitBatch(kernel, argv[3], argv[i]);
        else
            emit(kernel, argv[3], argc == 5 ? targetOf(argv[4]) : kSse2);
        return 0;
    } catch (const std::exception& e) {
        return fail(e.what());
    }
}

}  // namespace orvgen::generator
