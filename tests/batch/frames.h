// SPDX-License-Identifier: MIT
// The stack that functions take, read from their machine code.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace orvgen::test::batch {

// Takes the lines of objdump -d one after another. Instructions are read in the order in which they
// stand, whatever jumps there are, so that frames come out too large rather than too small.
class Frames {
  public:
    void take(const std::string& line);

    // Frames that grow by more than a page below the last place that was touched: they could jump
    // over the guard page below the stack.
    const std::vector<std::string>& unprobed() const { return unprobed_; }
    // What changes the stack pointer in a way that this reader does not know.
    const std::vector<std::string>& unknown() const { return unknown_; }
    // Names that begin so.
    std::vector<std::string> namesFrom(const std::string& start) const;
    // The most bytes that a function takes with all that it calls, return addresses included.
    // Calls by address reach the functions that call nothing; calls of other libraries count for
    // nothing. Throws where a function calls itself.
    std::size_t deepest(const std::string& name) const;

  private:
    struct Function {
        std::size_t frame = 8;  // bytes, with the return address
        std::vector<std::string> calls;
        bool callsByAddress = false;
    };
    void instruction(const std::string& mnemonic, const std::string& operands);
    void grow(std::size_t bytes);
    void align(std::size_t bytes);
    void enterLoop(std::size_t bytes);
    void call(const std::string& target);
    std::size_t deepestOf(const std::string& name, std::map<std::string, std::size_t>& known) const;

    std::map<std::string, Function> functions_;
    std::string name_;
    std::size_t untouched_ = 0;  // bytes below the last place that was touched
    bool inLoop_ = false;        // that goes down page by page, to where the register r11 says
    bool isCopied_ = false;      // the stack pointer has just been copied into r11
    std::vector<std::string> unprobed_, unknown_;
};

}  // namespace orvgen::test::batch
