// SPDX-License-Identifier: MIT
// A linked, unstripped x86-64 library as bytes: its symbols with their sizes, and its memory as it
// stands once the relative relocations are applied.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orvgen::test {

struct Symbol {
    std::string name;
    std::uint64_t address = 0;
    std::uint64_t size = 0;
    bool function = false;
    bool global = false;
};

class ElfImage {
  public:
    // Throws when the file is not such a library or has no symbol table.
    explicit ElfImage(const std::string& path);

    const std::vector<Symbol>& symbols() const { return allSymbols; }
    const Symbol* find(const std::string& name) const;
    const Symbol* functionAt(std::uint64_t address) const;

    // `size` bytes at `address`; empty where the image holds no such bytes.
    std::span<const std::uint8_t> bytes(std::uint64_t address, std::uint64_t size) const;
    bool writable(std::uint64_t address) const;
    // Name of the function of another library whose address the dynamic linker stores here.
    std::optional<std::string> importedAt(std::uint64_t address) const;

  private:
    struct Segment {
        std::uint64_t address;
        bool writable;
        std::vector<std::uint8_t> memory;
    };
    std::vector<Segment> segments;
    std::vector<Symbol> allSymbols;
    std::map<std::string, std::size_t> byName;
    std::map<std::uint64_t, std::size_t> functions;
    std::map<std::uint64_t, std::string> imports;
};

}  // namespace orvgen::test
