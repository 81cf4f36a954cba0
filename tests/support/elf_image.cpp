// SPDX-License-Identifier: MIT
#include "support/elf_image.h"

#include <elf.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace orvgen::test {
namespace {

template <class T>
T readAt(const std::vector<std::uint8_t>& file, std::uint64_t offset) {
    if (offset + sizeof(T) > file.size()) throw std::runtime_error("truncated ELF file");
    T value;
    std::memcpy(&value, file.data() + offset, sizeof(T));
    return value;
}

std::string textAt(const std::vector<std::uint8_t>& file, std::uint64_t offset) {
    if (offset >= file.size()) throw std::runtime_error("truncated ELF file");
    const char* start = reinterpret_cast<const char*>(file.data()) + offset;
    return {start, strnlen(start, file.size() - offset)};
}

}  // namespace

ElfImage::ElfImage(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + path);
    const std::vector<std::uint8_t> file((std::istreambuf_iterator<char>(in)), {});
    const auto header = readAt<Elf64_Ehdr>(file, 0);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_machine != EM_X86_64 ||
        header.e_type != ET_DYN) {
        throw std::runtime_error(path + " is not an x86-64 shared library");
    }
    for (int i = 0; i < header.e_phnum; ++i) {
        const auto p = readAt<Elf64_Phdr>(
            file, header.e_phoff + static_cast<std::uint64_t>(i) * header.e_phentsize);
        if (p.p_type != PT_LOAD) continue;
        if (p.p_offset + p.p_filesz > file.size()) throw std::runtime_error("truncated ELF file");
        Segment segment{p.p_vaddr, (p.p_flags & PF_W) != 0, {}};
        const auto first = file.begin() + static_cast<std::ptrdiff_t>(p.p_offset);
        segment.memory.assign(first, first + static_cast<std::ptrdiff_t>(p.p_filesz));
        segment.memory.resize(p.p_memsz);
        segments.push_back(std::move(segment));
    }
    std::vector<Elf64_Shdr> sections;
    sections.reserve(header.e_shnum);
    for (int i = 0; i < header.e_shnum; ++i) {
        sections.push_back(readAt<Elf64_Shdr>(
            file, header.e_shoff + static_cast<std::uint64_t>(i) * header.e_shentsize));
    }
    for (const Elf64_Shdr& s : sections) {
        if (s.sh_type == SHT_SYMTAB) {
            for (std::uint64_t at = 0; at < s.sh_size; at += sizeof(Elf64_Sym)) {
                const auto sym = readAt<Elf64_Sym>(file, s.sh_offset + at);
                const int type = ELF64_ST_TYPE(sym.st_info);
                if (sym.st_shndx == SHN_UNDEF || (type != STT_FUNC && type != STT_OBJECT)) continue;
                Symbol symbol{textAt(file, sections[s.sh_link].sh_offset + sym.st_name),
                              sym.st_value, sym.st_size, type == STT_FUNC,
                              ELF64_ST_BIND(sym.st_info) == STB_GLOBAL};
                // Of two names for one function the exported one.
                if (symbol.function && (symbol.global || !functions.contains(symbol.address)))
                    functions[symbol.address] = allSymbols.size();
                byName[symbol.name] = allSymbols.size();
                allSymbols.push_back(std::move(symbol));
            }
        }
        if (s.sh_type != SHT_RELA) continue;
        for (std::uint64_t at = 0; at < s.sh_size; at += sizeof(Elf64_Rela)) {
            const auto rela = readAt<Elf64_Rela>(file, s.sh_offset + at);
            const auto type = ELF64_R_TYPE(rela.r_info);
            if (type == R_X86_64_RELATIVE) {
                for (Segment& segment : segments) {
                    const std::uint64_t offset = rela.r_offset - segment.address;
                    if (rela.r_offset >= segment.address && offset + 8 <= segment.memory.size()) {
                        std::memcpy(segment.memory.data() + offset, &rela.r_addend, 8);
                    }
                }
            } else if (type == R_X86_64_JUMP_SLOT || type == R_X86_64_GLOB_DAT) {
                const Elf64_Shdr& table = sections[s.sh_link];
                const auto sym = readAt<Elf64_Sym>(
                    file, table.sh_offset + ELF64_R_SYM(rela.r_info) * sizeof(Elf64_Sym));
                imports[rela.r_offset] =
                    textAt(file, sections[table.sh_link].sh_offset + sym.st_name);
            }
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
