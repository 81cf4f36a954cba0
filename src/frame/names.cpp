// SPDX-License-Identifier: MIT
#include "frame/names.h"

namespace orvgen {

std::string shortName(const FamilyInfo& family) {
    return std::string(family.name) + "_" + std::string(family.element);
}
std::string nameOf(const FamilyInfo& family) { return "orvg" + shortName(family); }
kernelgen::KernelName kernelName(const FamilyInfo& family, int number) {
    return {std::string(family.name) + "_" + std::to_string(number) + "_" +
            std::string(family.element)};
}
std::string memberName(const FamilyInfo& family, int number) {
    return kernelName(family, number).exported();
}
std::string twinName(const FamilyInfo& family, int number) {
    return kernelName(family, number).twin();
}

std::vector<Member> membersOf(const FamilyInfo& family) {
    std::vector<Member> members;
    for (const int number : family.numbers) members.push_back({&family, number});
    return members;
}

std::vector<Member> allKernels() {
    std::vector<Member> all;
    for (const FamilyInfo& family : kFamilies) {
        if (!family.hasKernels()) continue;
        const std::vector<Member> members = membersOf(family);
        all.insert(all.end(), members.begin(), members.end());
    }
    return all;
}

}  // namespace orvgen
