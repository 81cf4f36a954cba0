// SPDX-License-Identifier: MIT
#include "command.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <iterator>
#include <optional>
#include <stdexcept>

#include "kernelgen/batch.h"
#include "kernelgen/compile.h"
#include "kernelgen/kernel_file.h"
#include "kernelgen/rows.h"
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

std::vector<Member> allMembers(const std::vector<KernelFamily>& families) {
    std::vector<Member> all;
    for (const KernelFamily& family : families)
        for (const Member& m : membersOf(*family.info)) all.push_back(m);
    return all;
}

const KernelFamily& familyOf(const std::vector<KernelFamily>& families, const Member& member) {
    return *std::ranges::find(families, member.family, &KernelFamily::info);
}

std::optional<Member> findMember(const std::vector<KernelFamily>& families,
                                 const std::string& name) {
    for (const Member& member : allMembers(families))
        if (member.name() == name) return member;
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

// An array as batches see it.
kernelgen::Layout batchLayout(orvgen::Layout layout) {
    switch (layout) {
        case orvgen::Layout::Complex:
        case orvgen::Layout::Ccs:
            return kernelgen::Layout::Complex;
        case orvgen::Layout::Pack:
            return kernelgen::Layout::PackedBins;
        case orvgen::Layout::Real:
            return kernelgen::Layout::Real;
        default:
            throw std::runtime_error("no batches of this layout");
    }
}

// The forms of kernels for batches.
struct Form {
    const char* command;
    std::string (*name)(const KernelName& kernel, const Target& target);
    CompiledKernel (*compile)(const Kernel& kernel, const Target& target, WideOptions options);
};
CompiledKernel compileRowsOnly(const Kernel& kernel, const Target& target, WideOptions) {
    if (!hasRows(kernel))
        throw std::runtime_error(kernel.name.exported() + " moves parts of vectors");
    return compileRows(kernel, target);
}
constexpr Form kForms[] = {{"batch", batchName, compileBatch},
                           {"pairs", pairsName, compilePairs},
                           {"rows", rowsName, compileRowsOnly}};

void emitWide(const Form& form, const Kernel& kernel, const FamilyInfo& family,
              const std::string& folder, const std::string& name) {
    const Target& target = targetOf(name);
    const WideOptions options = {.src = batchLayout(family.src), .dst = batchLayout(family.dst)};
    writeKernelFile(folder + "/" + form.name(kernel.name, target) + ".s", keyOf(kernel),
                    [&] { return form.compile(kernel, target, options).assembly; });
}

void show(const std::vector<KernelFamily>& families, const std::string& tables,
          const std::vector<std::string>& words) {
    std::vector<Member> all = allMembers(families);
    for (const FamilyInfo& family : kFamilies)
        if (!family.hasKernels())
            for (const Member& m : membersOf(family)) all.push_back(m);
    const std::vector<Member> members = calledBy(all, words);
    for (const Member& member : members) {
        if (member != members.front()) std::cout << "\n";
        if (member.family->hasKernels())
            printPage(std::cout, familyOf(families, member), member.number, tables);
        else
            printPlanPage(std::cout, member);
    }
}

}  // namespace

int runCommand(int argc, char** argv, const std::vector<KernelFamily>& families) {
    try {
        const std::string command = argc > 1 ? argv[1] : "";
        if (command == "list" && argc == 2) {
            for (const Member& member : allMembers(families)) std::cout << member.name() << "\n";
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
        const Form* const form = std::ranges::find(kForms, command, &Form::command);
        const bool isWide = form != std::end(kForms);
        if ((command != "emit" || (argc != 4 && argc != 5)) && (!isWide || argc < 5))
            return fail(
                "usage: list | plans | emit NAME FILE [TARGET] | batch NAME FOLDER TARGET... | "
                "pairs NAME FOLDER TARGET... | rows NAME FOLDER TARGET... | show FOLDER_OF_TABLES "
                "NAME...",
                2);
        const std::optional<Member> member = findMember(families, argv[2]);
        if (!member) return fail("no such kernel: " + std::string(argv[2]), 2);
        const Kernel kernel = familyOf(families, *member).kernel(member->number);
        if (isWide)
            for (int i = 4; i < argc; ++i)
                emitWide(*form, kernel, *member->family, argv[3], argv[i]);
        else
            emit(kernel, argv[3], argc == 5 ? targetOf(argv[4]) : kSse2);
        return 0;
    } catch (const UnknownName& e) {
        return fail(e.what(), 2);
    } catch (const std::exception& e) {
        return fail(e.what(), 1);
    }
}

}  // namespace orvgen::generator
