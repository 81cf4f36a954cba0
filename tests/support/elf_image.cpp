// SPDX-License-Identifier: MIT
#include "support/elf_image.h"

#include <cstring>
#include <stdexcept>

#include "support/elf_file.h"

namespace orvgen::test {

ElfImage::ElfImage(const std::string& path) {
    const ElfFile file(path);
    if (file.header().e_machine != EM_X86_64 || file.header().e_type != ET_DYN)
        throw std::runtime_error(path + " is not an x86-64 shared library");
    for (const Elf64_Phdr& p : file.segments()) {
        if (p.p_type != PT_LOAD) continue;
        segments.push_back({p.p_vaddr, (p.p_flags & PF_W) != 0, file.contents(p)});
        segments.back().memory.resize(p.p_memsz);
    }
    for (const auto& [name, entry] : file.symbols(SHT_SYMTAB)) {
        const int type = ELF64_ST_TYPE(entry.st_info);
        if (entry.st_shndx == SHN_UNDEF || (type != STT_FUNC && type != STT_OBJECT)) continue;
        const Symbol symbol{name, entry.st_value, entry.st_size, type == STT_FUNC,
                            ELF64_ST_BIND(entry.st_info) == STB_GLOBAL};
        // Of two names for one function the exported one.
        if (symbol.function && (symbol.global || !functions.contains(symbol.address)))
            functions[symbol.address] = allSymbols.size();
        byName[symbol.name] = allSymbols.size();
        allSymbols.push_back(symbol);
    }
    for (const auto& [entry, symbol] : file.relocations()) {
        const auto type = ELF64_R_TYPE(entry.r_info);
        if (type == R_X86_64_RELATIVE) {
            for (Segment& segment : segments) {
                const std::uint64_t offset = entry.r_offset - segment.address;
                if (entry.r_offset >= segment.address && offset + 8 <= segment.memory.size())
                    std::memcpy(segment.memory.data() + offset, &entry.r_addend, 8);
            }
        } else if (type == R_X86_64_JUMP_SLOT || type == R_X86_64_GLOB_DAT) {
            imports[entry.r_offset] = symbol;
        }
    }
    if (functions.empty()) throw std::runtime_error(path + " has no symbol table of functions");
}

const Symbol* ElfImage::find(const std::string& name) const {
    const auto it = byName.find(name);
    return it == byName.end() ? nullptr : &allSymbols[it->second];
}

const Symbol* ElfImage::functionAt(std::uint64_t address) const {
    auto it = functions.upper_bound(address);
    if (it == functions.begin()) return nullptr;
    const Symbol& symbol = allSymbols[std::prev(it)->second];
    return address - symbol.address < symbol.size ? &symbol : nullptr;
}

std::span<const std::uint8_t> ElfImage::bytes(std::uint64_t address, std::uint64_t size) const {
    for (const Segment& segment : segments) {
        if (address < segment.address) continue;
        const std::uint64_t offset = address - segment.address;
        if (offset + size > segment.memory.size()) continue;
        return {segment.memory.data() + offset, size};
    }
    return {};
}

bool ElfImage::writable(std::uint64_t address) const {
    for (const Segment& segment : segments) {
        if (address >= segment.address && address - segment.address < segment.memory.size()) {
            return segment.writable;
        }
    }
    return false;
}

std::optional<std::string> ElfImage::importedAt(std::uint64_t address) const {
    const auto it = imports.find(address);
    if (it == imports.end()) return std::nullopt;
    return it->second;
}

}  // namespace orvgen::test
