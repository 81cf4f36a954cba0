// SPDX-License-Identifier: MIT
// Small blocks of scalar code on virtual registers, written line by line.
#pragma once

#include "kernelgen/code.h"

namespace orvgen::test {

class WrittenCode {
  public:
    using Register = kernelgen::Register;
    using Opcode = kernelgen::Opcode;

    Register load(int element) {
        return add({.op = Opcode::LoadSD,
                    .dst = code.fresh(),
                    .hasAddress = true,
                    .address = {kernelgen::Base::Src, 8 * element}});
    }
    Register sum(Register a, Register b) { return operation(Opcode::AddSD, a, b); }
    Register difference(Register a, Register b) { return operation(Opcode::SubSD, a, b); }
    void store(int element, Register a) {
        add({.op = Opcode::StoreSD,
             .a = a,
             .hasAddress = true,
             .address = {kernelgen::Base::Dst, 8 * element}});
    }
    void storeZero(int element) {
        add({.op = Opcode::StoreZero8,
             .hasAddress = true,
             .address = {kernelgen::Base::Dst, 8 * element}});
    }
    std::vector<int> order() const {
        std::vector<int> all(code.instructions.size());
        for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<int>(i);
        return all;
    }

    kernelgen::Code code;

  private:
    Register operation(Opcode op, Register a, Register b) {
        return add({.op = op, .dst = code.fresh(), .a = a, .b = b});
    }
    Register add(kernelgen::Instruction i) {
        code.instructions.push_back(i);
        return i.dst;
    }
};

}  // namespace orvgen::test
