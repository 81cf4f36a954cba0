// SPDX-License-Identifier: MIT
// Addresses in arrays whose step is known at run time only.
//
// Element k of an array stands at base + k step. With the step and three times the step in
// registers, one register that points at element p reaches the elements p + 0, 1, 2, 3, 4, 6, 8, 12
// and 24. The base registers stay; a few others point where the code is at work.
#pragma once

#include <string>
#include <vector>

namespace orvgen::kernelgen {

class StridedPointers {
  public:
    struct Array {
        std::string base;  // register of element 0
        std::string step, threeSteps;
    };
    // What an access needs: instructions to be executed before, and the address without brackets.
    struct Access {
        std::vector<std::string> before;
        std::string expression;
    };
    struct Element {
        std::size_t array;
        int index;
    };

    StridedPointers(std::vector<Array> arrays, std::vector<std::string> spare)
        : arrays_(std::move(arrays)), spare_(std::move(spare)) {}

    // `accesses` are all that the code makes, in order; each is asked for once.
    void plan(std::vector<Element> accesses) { accesses_ = std::move(accesses); }
    Access next();

    // How many of the spare registers have been written.
    std::size_t sparesUsed() const { return pointers_.size(); }

  private:
    struct Pointer {
        std::string reg;
        Element at;
        std::size_t lastUse;
    };

    std::string from(const std::string& reg, std::size_t array, int distance) const;
    int coverage(const Element& at) const;
    Pointer& pointer(std::vector<std::string>& before, const Element& wanted);

    std::vector<Array> arrays_;
    std::vector<std::string> spare_;
    std::vector<Pointer> pointers_;  // in the spare registers
    std::vector<Element> accesses_;
    std::size_t now_ = 0;
};

}  // namespace orvgen::kernelgen
