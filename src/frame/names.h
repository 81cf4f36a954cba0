// SPDX-License-Identifier: MIT
// The names of functions, composed of the table's rows. Nothing in the project takes a name apart:
// who has a name and wants to know of what composes all of them and compares.
#pragma once

#include <string>
#include <vector>

#include "frame/families.h"
#include "kernelgen/kernel_name.h"

namespace orvgen {

// DFTFwd_CToC_32fc
std::string shortName(const FamilyInfo& family);
// orvgDFTFwd_CToC_32fc: the function that takes the number
std::string nameOf(const FamilyInfo& family);
// orvgDFTFwd_CToC_16_32fc
std::string memberName(const FamilyInfo& family, int number);
kernelgen::KernelName kernelName(const FamilyInfo& family, int number);
// owngDFTFwd_CToC_16_32fc_unaligned
std::string twinName(const FamilyInfo& family, int number);

// One function of a family.
struct Member {
    const FamilyInfo* family;
    int number;

    std::string name() const { return memberName(*family, number); }
    bool operator==(const Member&) const = default;
};

std::vector<Member> membersOf(const FamilyInfo& family);
// All kernels, in the order of the table.
std::vector<Member> allKernels();

}  // namespace orvgen
