// SPDX-License-Identifier: MIT
#include "batch/frames.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace orvgen::test::batch {
namespace {

constexpr std::size_t page = 4096;

// "$0x10,%rsp" as 16; "$0xfffffffffffffff0,%rsp" as -16.
long immediateOf(const std::string& operands) {
    return static_cast<long>(std::strtoull(operands.c_str() + 1, nullptr, 16));
}

// "0x20(%rsp)" as 32, "(%rsp)" as 0; anywhere among the operands.
long offsetOf(const std::string& operands) {
    const std::size_t end = operands.find("(%rsp)");
    const std::size_t comma = operands.rfind(',', end);
    const std::size_t begin = comma == operands.npos ? 0 : comma + 1;
    return std::strtol(operands.substr(begin, end - begin).c_str(), nullptr, 16);
}

}  // namespace

void Frames::take(const std::string& line) {
    if (line.ends_with(">:")) {
        const std::size_t open = line.find('<');
        name_ = line.substr(open + 1, line.size() - open - 3);
        functions_[name_] = {};
        untouched_ = 0;
        inLoop_ = false;
        return;
    }
    const std::size_t tab = line.find(":\t");
    if (tab == line.npos || name_.empty()) return;
    // Most instructions work on vectors, and none of these goes down the stack.
    if (line[tab + 2] == 'v') return;
    const std::string text = line.substr(tab + 2);
    const std::size_t blank = text.find(' ');
    const std::size_t operands = blank == text.npos ? blank : text.find_first_not_of(' ', blank);
    instruction(text.substr(0, blank), operands == text.npos ? "" : text.substr(operands));
}

void Frames::grow(std::size_t bytes) {
    if (!inLoop_) functions_[name_].frame += bytes;
    untouched_ += bytes;
    if (untouched_ > page) unprobed_.push_back(name_);
}

// A line of the cache more or less the compilers do not probe.
void Frames::align(std::size_t bytes) {
    if (bytes > 64) return grow(bytes - 1);
    functions_[name_].frame += bytes - 1;
}

void Frames::enterLoop(std::size_t bytes) {
    functions_[name_].frame += bytes;
    inLoop_ = true;
}

// "1020 <name>", "1020 <name+0x8>" or "*%rax".
void Frames::call(const std::string& target) {
    Function& function = functions_[name_];
    if (target.starts_with('*')) {
        function.callsByAddress = true;
        return;
    }
    const std::size_t open = target.find('<'), plus = target.find_first_of("+>");
    const std::string name = target.substr(open + 1, plus - open - 1);
    if (target[plus] == '>' && name != name_) function.calls.push_back(name);
}

void Frames::instruction(const std::string& mnemonic, const std::string& operands) {
    const auto has = [&](const char* part) { return operands.find(part) != operands.npos; };
    if (mnemonic == "push") {
        grow(8);
        untouched_ = 0;
    } else if (mnemonic == "call") {
        call(operands);
        untouched_ = 0;
    } else if (mnemonic == "jmp" || mnemonic == "ret") {
        // A jump out of the function is its last call. What stands behind is reached from
        // elsewhere.
        if (mnemonic == "jmp" && !operands.starts_with('*')) call(operands);
        untouched_ = 0;
    } else if (mnemonic == "lea" && operands.ends_with("(%rsp),%r11") && operands[0] == '-') {
        enterLoop(static_cast<std::size_t>(-offsetOf(operands)));
    } else if (mnemonic == "sub" && isCopied_ && operands.ends_with(",%r11")) {
        enterLoop(static_cast<std::size_t>(immediateOf(operands)));
    } else if (mnemonic == "cmp" && operands == "%r11,%rsp") {
        inLoop_ = false;
    } else if (operands.ends_with(",%rsp")) {
        const bool isImmediate = operands.starts_with('$');
        const long value = isImmediate ? immediateOf(operands) : 0;
        if (mnemonic == "sub" && isImmediate && value > 0)
            grow(static_cast<std::size_t>(value));
        else if (mnemonic == "add" && isImmediate)
            grow(value < 0 ? static_cast<std::size_t>(-value) : 0);
        else if (mnemonic == "and" && isImmediate && value < 0)
            align(static_cast<std::size_t>(-value));
        else if (!((mnemonic == "lea" && (has("(%rbp)") || has("(%r10)"))) ||
                   (mnemonic == "mov" && operands == "%rbp,%rsp") || mnemonic == "cmp" ||
                   mnemonic == "test"))
            unknown_.push_back(name_ + " " + mnemonic + " " + operands);
    } else if (has("(%rsp)") && mnemonic != "lea" && !mnemonic.starts_with("prefetch") &&
               !mnemonic.starts_with("nop")) {
        const long offset = offsetOf(operands);
        if (offset >= 0) untouched_ = std::min(untouched_, static_cast<std::size_t>(offset));
    }
    isCopied_ = mnemonic == "mov" && operands == "%rsp,%r11";
}

std::vector<std::string> Frames::namesFrom(const std::string& start) const {
    std::vector<std::string> names;
    for (const auto& [name, function] : functions_)
        if (name.starts_with(start) && !name.ends_with("@plt")) names.push_back(name);
    return names;
}

std::size_t Frames::deepest(const std::string& name) const {
    std::size_t leaf = 0;
    for (const auto& [other, function] : functions_)
        if (function.calls.empty() && !function.callsByAddress)
            leaf = std::max(leaf, function.frame);
    std::map<std::string, std::size_t> known = {{"", leaf}};
    return deepestOf(name, known);
}

// Known are the depths of functions, 0 for those that are being looked into, and that of any leaf
// under no name.
std::size_t Frames::deepestOf(const std::string& name,
                              std::map<std::string, std::size_t>& known) const {
    const auto [place, isNew] = known.try_emplace(name, 0);
    if (!isNew) {
        if (place->second == 0) throw std::runtime_error(name + " calls itself");
        return place->second;
    }
    const auto found = functions_.find(name);
    if (found == functions_.end()) throw std::runtime_error("no code of " + name);
    const Function& function = found->second;
    std::size_t below = function.callsByAddress ? known.at("") : 0;
    for (const std::string& other : function.calls)
        below = std::max(below, deepestOf(other, known));
    return known[name] = function.frame + below;
}

}  // namespace orvgen::test::batch
