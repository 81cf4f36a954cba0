// SPDX-License-Identifier: MIT
#include "command.h"

#include <exception>
#include <iostream>
#include <optional>

#include "kernelgen/batch.h"
#include "kernelgen/compile.h"
#include "kernelgen/kernel_file.h"
#include "names.h"
#include "page.h"
#include "plans_page.h"

namespace orvgen::generator {

using namespace kernelgen;

namespace {

int fail(const std::string& what, int status) {
    std::cout.flush();
    std::cerr << "kernelgen: " << what << "\n";
    return status;
}

struct Member {
    const Family* family;
    int length;
};

std::vector<std::string> namesOf(const std::vector<Family>& families) {
    std::vector<std::string> names;
    for (const Family& family : families)
        for (const int length : family.lengths) names.push_back(memberName(family.name, length));
    return names;
}

std::optional<Member> findMember(const std::vector<Family>& families, const std::string& name) {
    for (const Family& family : families)
        for (const int length : family.lengths)
            if (memberName(family.name, length) == name) return Member{&family, length};
    return std::nullopt;
}

const Target& targetOf(const std::string& name) {
    for (const Target* target : {&kSse2, &kLevel3, &kAvx2, &kAvx512})
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

void show(const std::vector<Family>& families, const std::string& tables,
          const std::vector<std::string>& words) {
    const std::vector<std::string> names = calledBy(namesOf(families), words);
    for (const std::string& name : names) {
        const Member member = *findMember(families, name);
        if (name != names.front()) std::cout << "\n";
        printPage(std::cout, member.family->kernel(member.length), tables);
    }
}

}  // namespace

int runCommand(int argc, char** argv, const std::vector<Family>& families) {
    try {
        const std::string command = argc > 1 ? argv[1] : "";
        if (command == "list" && argc == 2) {
            for (const std::string& name : namesOf(families)) std::cout << name << "\n";
            return 0;
        }
        if (command == "plans" && argc == 2) {
            std::cout << plansPage(families);
            return 0;
        }
        if (command == "show" && argc >= 4) {
            show(families, argv[2], {argv + 3, argv + argc});
            return 0;
        }
        if ((command != "emit" || (argc != 4 && argc != 5)) && (command != "batch" || argc < 5))
            return fail(
                "usage: list | plans | emit NAME FILE [TARGET] | batch NAME FOLDER TARGET... | "
                "show FOLDER_OF_TABLES NAME...",
                2);
        const std::optional<Member> member = findMember(families, argv[2]);
        if (!member) return fail("no such kernel: " + std::string(argv[2]), 2);
        const Kernel kernel = member->family->kernel(member->length);
        if (command == "batch")
            for (int i = 4; i < argc; ++i) emitBatch(kernel, argv[3], argv[i]);
        else
            emit(kernel, argv[3], argc == 5 ? targetOf(argv[4]) : kSse2);
        return 0;
    } catch (const UnknownName& e) {
        return fail(
            e.what() + std::string("\n  and the DCT-IV, which runs by plans (docs/dct4.md)"), 2);
    } catch (const std::exception& e) {
        return fail(e.what(), 1);
    }
}

}  // namespace orvgen::generator
