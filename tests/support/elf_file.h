// SPDX-License-Identifier: MIT
// A shared library as its file says it is: sections, segments, dynamic entries, symbols,
// relocations. (elf_image.h is its memory.)
#pragma once

#include <elf.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orvgen::test {

class ElfFile {
  public:
    struct Symbol {
        std::string name;
        Elf64_Sym entry;
    };

    explicit ElfFile(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(in), {});
        if (!in) throw std::runtime_error("cannot read " + path);
        header_ = at<Elf64_Ehdr>(0);
        if (std::memcmp(header_.e_ident, ELFMAG, SELFMAG) != 0) {
            throw std::runtime_error("no ELF file: " + path);
        }
        sections_ = table<Elf64_Shdr>(header_.e_shoff, header_.e_shnum);
    }

    const Elf64_Ehdr& header() const { return header_; }
    const std::vector<Elf64_Shdr>& sections() const { return sections_; }

    std::vector<Elf64_Phdr> segments() const {
        return table<Elf64_Phdr>(header_.e_phoff, header_.e_phnum);
    }

    std::string sectionName(const Elf64_Shdr& s) const {
        return text(sections_[header_.e_shstrndx], s.sh_name);
    }

    // Values of all dynamic entries of one tag.
    std::vector<Elf64_Xword> dynamicValues(Elf64_Sxword tag) const {
        std::vector<Elf64_Xword> values;
        for (const auto& [section, entry] : entries<Elf64_Dyn>(SHT_DYNAMIC)) {
            if (entry.d_tag == tag) values.push_back(entry.d_un.d_val);
        }
        return values;
    }

    // The same for a tag whose value is a string.
    std::vector<std::string> dynamicTexts(Elf64_Sxword tag) const {
        std::vector<std::string> texts;
        for (const auto& [section, entry] : entries<Elf64_Dyn>(SHT_DYNAMIC)) {
            if (entry.d_tag == tag) {
                texts.push_back(text(sections_[section.sh_link], entry.d_un.d_val));
            }
        }
        return texts;
    }

    // The symbols of a table: SHT_DYNSYM or SHT_SYMTAB.
    std::vector<Symbol> symbols(Elf64_Word tableType) const {
        std::vector<Symbol> list;
        for (const auto& [section, entry] : entries<Elf64_Sym>(tableType)) {
            if (entry.st_name != 0) {
                list.push_back({text(sections_[section.sh_link], entry.st_name), entry});
            }
        }
        return list;
    }

    struct Relocation {
        Elf64_Rela entry;
        std::string symbol;  // empty: none
    };
    std::vector<Relocation> relocations() const {
        std::vector<Relocation> list;
        for (const auto& [section, entry] : entries<Elf64_Rela>(SHT_RELA)) {
            const Elf64_Shdr& table = sections_.at(section.sh_link);
            const auto symbol =
                at<Elf64_Sym>(table.sh_offset + ELF64_R_SYM(entry.r_info) * sizeof(Elf64_Sym));
            list.push_back({entry, text(sections_.at(table.sh_link), symbol.st_name)});
        }
        return list;
    }

    // What the file holds of a segment.
    std::vector<std::uint8_t> contents(const Elf64_Phdr& segment) const {
        if (segment.p_offset + segment.p_filesz > bytes_.size())
            throw std::runtime_error("truncated ELF file");
        const auto first = bytes_.begin() + static_cast<std::ptrdiff_t>(segment.p_offset);
        return {first, first + static_cast<std::ptrdiff_t>(segment.p_filesz)};
    }

  private:
    template <class T>
    T at(Elf64_Off offset) const {
        T value;
        if (offset + sizeof(T) > bytes_.size()) throw std::runtime_error("truncated ELF file");
        std::memcpy(&value, bytes_.data() + offset, sizeof(T));
        return value;
    }

    template <class T>
    std::vector<T> table(Elf64_Off offset, std::size_t count) const {
        std::vector<T> list;
        for (std::size_t i = 0; i < count; ++i) list.push_back(at<T>(offset + i * sizeof(T)));
        return list;
    }

    // All entries of all sections of one type, each with its section.
    template <class T>
    std::vector<std::pair<Elf64_Shdr, T>> entries(Elf64_Word type) const {
        std::vector<std::pair<Elf64_Shdr, T>> list;
        for (const Elf64_Shdr& s : sections_) {
            if (s.sh_type != type) continue;
            for (const T& entry : table<T>(s.sh_offset, s.sh_size / sizeof(T))) {
                list.emplace_back(s, entry);
            }
        }
        return list;
    }

    std::string text(const Elf64_Shdr& strings, Elf64_Xword offset) const {
        const std::size_t start = strings.sh_offset + offset;
        if (start >= bytes_.size()) throw std::runtime_error("truncated ELF file");
        return {bytes_.data() + start, strnlen(bytes_.data() + start, bytes_.size() - start)};
    }

    std::vector<char> bytes_;
    Elf64_Ehdr header_{};
    std::vector<Elf64_Shdr> sections_;
};

}  // namespace orvgen::test
