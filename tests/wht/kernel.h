// SPDX-License-Identifier: MIT
// The kernels' machine code, and each kernel by the tables.
#pragma once

#include <string>
#include <vector>

#include "frame/names.h"
#include "support/data_table.h"
#include "support/library_file.h"
#include "support/machine_code.h"

namespace orvgen::test::wht {

inline const MachineCode& library() {
    static const MachineCode code(libraryFile());
    return code;
}

// One kernel by the tables.
struct Kernel {
    bool single;
    long order;

    long points() const { return 1L << order; }
    long size() const { return single ? 4 : 8; }
    long lanes() const { return single ? 4 : 2; }
    std::string type() const { return single ? "f32" : "f64"; }
    const FamilyInfo& family() const {
        return single ? familyOf("WHT", "32f") : familyOf("WHT", "64f");
    }
    std::string name() const { return memberName(family(), static_cast<int>(order)); }
    std::string twin() const { return twinName(family(), static_cast<int>(order)); }

    const DataRow& row(const std::string& table) const { return *find(table); }
    const DataRow* find(const std::string& table) const {
        for (const DataRow& r : dataTable(table).rows())
            if (r.text("type") == type() && r.integer("order") == order) return &r;
        return nullptr;
    }
    std::string kind() const { return row("wht_bodies").text("kind"); }
    bool scalar() const { return kind() == "scalar"; }
    bool hasTwin() const { return kind() == "twin"; }
    std::vector<std::string> functions() const {
        return hasTwin() ? std::vector{name(), twin()} : std::vector{name()};
    }
    bool passes() const { return find("wht_passes") != nullptr; }
    long bufferBytes() const {
        return dataTable("wht_buffer").row("order", order).integer(type() + "_bytes");
    }
};

inline std::vector<Kernel> allKernels() {
    std::vector<Kernel> list;
    for (const bool single : {true, false})
        for (const int k : kOrders) list.push_back({single, k});
    return list;
}

}  // namespace orvgen::test::wht
