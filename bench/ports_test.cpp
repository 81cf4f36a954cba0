// SPDX-License-Identifier: MIT
// The bound that a port table gives.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "port_table.h"

namespace orvgen::bench {
namespace {

TEST(PortTable, BoundIsTheMostLoadedRow) {
    const PortTable t = PortTable::read("golden-cove");
    EXPECT_EQ(t.name(), "golden-cove");
    EXPECT_DOUBLE_EQ(t.bound({{"add", 8}}), 4);
    EXPECT_DOUBLE_EQ(t.bound({{"add", 8}, {"shuffle", 4}, {"unpack", 2}}), 7);
    EXPECT_DOUBLE_EQ(t.bound({{"unpack", 9}}), 9);
    EXPECT_DOUBLE_EQ(t.bound({{"add", 8}, {"multiply", 8}}), 16.0 / 3);
    EXPECT_DOUBLE_EQ(t.bound({{"store", 8}, {"load", 9}}), 4);
    EXPECT_DOUBLE_EQ(t.bound({}), 0);
}

TEST(PortTable, EveryTableNamesEveryClass) {
    for (const char* name : {"golden-cove", "zen5"}) {
        const PortTable t = PortTable::read(name);
        for (const char* c : {"add", "multiply", "shuffle", "unpack", "logic", "convert", "load",
                              "store", "issue"}) {
            EXPECT_GT(t.bound({{c, 1}}), 0) << name << " " << c;
        }
    }
}

TEST(PortTable, ThrowsAtWhatItCannotRead) {
    try {
        PortTable::read("no-such-core");
        ADD_FAILURE();
    } catch (const std::runtime_error& e) {
        EXPECT_STREQ(e.what(), "no port table no-such-core; there are golden-cove zen5");
    }
    EXPECT_THROW(PortTable::read("."), std::runtime_error);
    const auto file = std::filesystem::temp_directory_path() / "orvgen-ports-test.csv";
    std::ofstream(file) << "classes,per_cycle\nadd,0\n";
    EXPECT_THROW(PortTable::read(file.string()), std::runtime_error);
    std::ofstream(file) << "classes,per_cycle\n";
    EXPECT_THROW(PortTable::read(file.string()), std::runtime_error);
    std::filesystem::remove(file);
}

}  // namespace
}  // namespace orvgen::bench
