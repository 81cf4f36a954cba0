// SPDX-License-Identifier: MIT
// The kernels read back from the machine code of the built library: their operation counts, what
// they call, and how they reach memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/data_table.h"
#include "support/library_file.h"
#include "support/machine_code.h"

namespace orvgen::test::dct4 {
namespace {

struct FamilyCode {
    const char* suffix;  // of the exported functions
    const char* prefix;  // of the internal ones
    const char* type;    // in the mangled names of the loops
    const char* packed;  // ending of packed arithmetic
    const char* scalar;
};

constexpr FamilyCode families[] = {{"_32f", "owngDCT4_32fw7_", "f", "ps", "ss"},
                                   {"_64f", "owngDCT4_64fw7_", "d", "pd", "sd"}};

const MachineCode& code() {
    static const MachineCode library(libraryFile());
    return library;
}

// The loop around one packed kernel, by its template's name and size.
const Function& kernelLoop(const FamilyCode& family, const std::string& loop, long size) {
    const std::string part = loop + "ILi" + std::to_string(size) + "E" + family.type + "E";
    std::vector<std::string> found;
    for (const Symbol& symbol : code().image().symbols()) {
        if (symbol.function && symbol.name.find(part) != std::string::npos) {
            found.push_back(symbol.name);
        }
    }
    if (found.size() != 1) throw std::runtime_error("no single " + part);
    return code().function(found[0]);
}

struct Counts {
    long add = 0, sub = 0, mul = 0, calls = 0;
    long foreign = 0;           // arithmetic of another width or kind
    long unalignedVectors = 0;  // 16-byte accesses without alignment
    long backJumps = 0;
    std::vector<std::string> odd;
};

Counts countsOf(const Function& function, const std::string& ending) {
    Counts counts;
    for (const Instruction& instruction : function.instructions) {
        const std::string& name = instruction.mnemonic;
        if (name == "nop") continue;
        if (name == "add" + ending) {
            ++counts.add;
        } else if (name == "sub" + ending) {
            ++counts.sub;
        } else if (name == "mul" + ending) {
            ++counts.mul;
        } else if (instruction.kind == Kind::add || instruction.kind == Kind::multiply ||
                   instruction.kind == Kind::convert || instruction.kind == Kind::foreign ||
                   instruction.sse3) {
            ++counts.foreign;
            counts.odd.push_back(instruction.text);
        }
        if (instruction.kind == Kind::call) ++counts.calls;
        if (instruction.kind == Kind::jump &&
            instruction.operands[0].type == Operand::Type::immediate &&
            static_cast<std::uint64_t>(instruction.operands[0].value) < instruction.address) {
            ++counts.backJumps;
        }
        const Operand* memory = instruction.memory();
        if (instruction.vector() && memory != nullptr && memory->size == 16 &&
            !instruction.aligned) {
            ++counts.unalignedVectors;
        }
    }
    return counts;
}

void expectRow(const DataRow& row, const Counts& counts, const std::string& what) {
    EXPECT_EQ(counts.add, row.integer("add")) << what;
    EXPECT_EQ(counts.sub, row.integer("sub")) << what;
    EXPECT_EQ(counts.mul, row.integer("mul")) << what;
    EXPECT_EQ(counts.calls, 0) << what;
    EXPECT_EQ(counts.foreign, 0) << what << ": " << (counts.odd.empty() ? "" : counts.odd[0]);
    EXPECT_EQ(counts.unalignedVectors, 0) << what;
    EXPECT_EQ(counts.backJumps, 1) << what << ": one loop around a straight-line body";
}

TEST(Dct4PackedKernels, HaveTheListedOperationsInOneLoop) {
    for (const FamilyCode& family : families) {
        int rows = 0;
        const auto expectTable = [&](const char* table, const char* loop, const char* size) {
            for (const DataRow& row : dataTable(table).rows()) {
                const long n = row.integer(size);
                expectRow(row, countsOf(kernelLoop(family, loop, n), family.packed),
                          family.suffix + (" " + std::string(loop)) + " " + std::to_string(n));
                ++rows;
            }
        };
        expectTable("dct4/odd_frequency", "oddFrequencyLoop", "n");
        expectTable("dct4/stage_two", "stageTwoLoop", "r");
        expectTable("dct4/joins", "joinLoop", "r");
        EXPECT_EQ(rows, 17);
    }
}

// Single-element accesses to source and destination of the transform: so many of them per body.
TEST(Dct4PackedKernels, ReachTheArraysElementByElement) {
    for (const FamilyCode& family : families) {
        const long lanes = family.suffix == std::string("_32f") ? 4 : 2;
        enum class Way { Loads, Stores };
        const auto singles = [&](const Function& function, Way way) {
            long count = 0;
            for (const Instruction& instruction : function.instructions) {
                const Operand* memory = instruction.memory();
                if (memory == nullptr || !instruction.vector() || memory->size * lanes != 16) {
                    continue;
                }
                if (memory->base == 16) continue;  // constants
                count += way == Way::Stores ? instruction.stores() : instruction.loads();
            }
            return count;
        };
        for (const DataRow& row : dataTable("dct4/odd_frequency").rows()) {
            const Function& loop = kernelLoop(family, "oddFrequencyLoop", row.integer("n"));
            EXPECT_EQ(singles(loop, Way::Loads), lanes * row.integer("loads"));
            EXPECT_EQ(singles(loop, Way::Stores), 0);
        }
        for (const DataRow& row : dataTable("dct4/stage_two").rows()) {
            const Function& loop = kernelLoop(family, "stageTwoLoop", row.integer("r"));
            EXPECT_EQ(singles(loop, Way::Loads), lanes * row.integer("elements"));
            EXPECT_EQ(singles(loop, Way::Stores), lanes * row.integer("elements"));
        }
        for (const DataRow& row : dataTable("dct4/joins").rows()) {
            const Function& loop = kernelLoop(family, "joinLoop", row.integer("r"));
            EXPECT_EQ(singles(loop, Way::Loads), 0);
            EXPECT_EQ(singles(loop, Way::Stores), 0);
        }
    }
}

// A vector of samples is put together of single elements: in 32-bit float by two merges of pairs
// and one more shuffle, in 64-bit float by the load of a low and a high half. Of results one lane
// after the other is shuffled to the front (32) or stored from its half (64).
TEST(Dct4PackedKernels, PutVectorsTogetherAndTakeThemApart) {
    for (const FamilyCode& family : families) {
        const bool four = family.suffix == std::string("_32f");
        const auto shuffles = [](const Function& function) {
            return std::count_if(function.instructions.begin(), function.instructions.end(),
                                 [](const Instruction& i) { return i.kind == Kind::shuffle; });
        };
        const auto named = [](const Function& function, const std::string& start) {
            return std::count_if(function.instructions.begin(), function.instructions.end(),
                                 [&](const Instruction& i) {
                                     const Operand* memory = i.memory();
                                     return i.mnemonic.starts_with(start) &&
                                            (memory == nullptr || i.loads());
                                 });
        };
        for (const DataRow& row : dataTable("dct4/odd_frequency").rows()) {
            const Function& loop = kernelLoop(family, "oddFrequencyLoop", row.integer("n"));
            const long loads = row.integer("loads");
            if (four) {
                EXPECT_EQ(named(loop, "unpcklps"), 2 * loads);
                EXPECT_EQ(shuffles(loop), 3 * loads);
            } else {
                EXPECT_EQ(named(loop, "movhp"), loads);
                EXPECT_EQ(shuffles(loop), 0);
            }
        }
        for (const DataRow& row : dataTable("dct4/stage_two").rows()) {
            const Function& loop = kernelLoop(family, "stageTwoLoop", row.integer("r"));
            const long elements = row.integer("elements");
            if (four) {
                EXPECT_EQ(named(loop, "unpcklps"), 2 * elements);
                EXPECT_EQ(shuffles(loop), (3 + 3) * elements);
            } else {
                EXPECT_EQ(named(loop, "movhp"), elements);
                EXPECT_EQ(shuffles(loop), 0);
            }
        }
    }
}

// Multipliers stand in read-only memory as whole vectors with one value in all lanes.
TEST(Dct4Multipliers, FillAllLanes) {
    for (const FamilyCode& family : families) {
        const std::size_t width = family.suffix == std::string("_32f") ? 4 : 8;
        long found = 0;
        const auto expectVectors = [&](const Function& function) {
            for (const Instruction& instruction : function.instructions) {
                const Operand* memory = instruction.memory();
                if (memory == nullptr || memory->base != 16) continue;
                const std::uint64_t address = instruction.address +
                                              static_cast<std::uint64_t>(instruction.length) +
                                              static_cast<std::uint64_t>(memory->displacement);
                const auto bytes = code().image().bytes(address, 16);
                ASSERT_EQ(bytes.size(), 16U) << instruction.text;
                EXPECT_EQ(memory->size, 16) << instruction.text;
                EXPECT_TRUE(instruction.aligned && address % 16 == 0) << instruction.text;
                EXPECT_FALSE(code().image().writable(address));
                for (std::size_t i = width; i < 16; ++i) {
                    EXPECT_EQ(bytes[i], bytes[i - width]) << instruction.text;
                }
                ++found;
            }
        };
        for (const long n : dataTable("dct4/odd_frequency").list("n")) {
            expectVectors(kernelLoop(family, "oddFrequencyLoop", n));
        }
        for (const long r : dataTable("dct4/stage_two").list("r")) {
            expectVectors(kernelLoop(family, "stageTwoLoop", r));
        }
        for (const long r : dataTable("dct4/joins").list("r")) {
            expectVectors(kernelLoop(family, "joinLoop", r));
        }
        EXPECT_GT(found, 100);
    }
}

// Temporaries of a kernel take at most 2 KB of the stack.
TEST(Dct4Frames, AreSmall) {
    constexpr int stackPointer = 4;
    for (const FamilyCode& family : families) {
        const auto expectSmall = [&](const Function& function) {
            for (const Instruction& instruction : function.instructions) {
                const Operand& to = instruction.operands[0];
                if (instruction.mnemonic == "sub" && to.type == Operand::Type::general &&
                    to.number == stackPointer) {
                    ASSERT_EQ(instruction.operands[1].type, Operand::Type::immediate);
                    EXPECT_LE(instruction.operands[1].value, 2048) << function.symbol.name;
                }
            }
        };
        expectSmall(code().function("orvgDCT4" + std::string(family.suffix)));
        for (const long n : dataTable("dct4/odd_frequency").list("n")) {
            expectSmall(kernelLoop(family, "oddFrequencyLoop", n));
        }
        for (const long r : dataTable("dct4/stage_two").list("r")) {
            expectSmall(kernelLoop(family, "stageTwoLoop", r));
        }
        for (const long r : dataTable("dct4/joins").list("r")) {
            expectSmall(kernelLoop(family, "joinLoop", r));
        }
    }
}

// Every way through the run function that calls nothing, as counts of products and of additions and
// subtractions.
struct Path {
    long mul = 0, addSub = 0, calls = 0;
};

std::vector<Path> pathsOf(const Function& function, const FamilyCode& family) {
    std::vector<Path> paths;
    const std::string ending = family.scalar;
    std::function<void(std::size_t, Path, std::set<std::uint64_t>)> walk =
        [&](std::size_t index, Path path, std::set<std::uint64_t> seen) {
            for (; index < function.instructions.size(); ++index) {
                const Instruction& instruction = function.instructions[index];
                ASSERT_TRUE(seen.insert(instruction.address).second)
                    << "a loop at " << function.label(instruction);
                const std::string& name = instruction.mnemonic;
                path.mul += name == "mul" + ending;
                path.addSub += name == "add" + ending || name == "sub" + ending;
                path.calls += instruction.kind == Kind::call;
                if (instruction.kind == Kind::ret) {
                    paths.push_back(path);
                    return;
                }
                if (instruction.kind != Kind::jump) continue;
                ASSERT_EQ(instruction.operands[0].type, Operand::Type::immediate);
                const auto target = static_cast<std::uint64_t>(instruction.operands[0].value);
                const Instruction* to = function.at(target);
                if (to == nullptr) {  // a call in tail position
                    ++path.calls;
                    paths.push_back(path);
                } else {
                    walk(static_cast<std::size_t>(to - function.instructions.data()), path, seen);
                }
                if (name == "jmp") return;
            }
            FAIL() << "the end of the function is reached";
        };
    walk(0, {}, {});
    return paths;
}

TEST(Dct4RunFunction, HoldsTheStraightLineBodies) {
    for (const FamilyCode& family : families) {
        const Function& run = code().function("orvgDCT4" + std::string(family.suffix));
        std::set<std::pair<long, long>> found, expected;
        for (const Path& path : pathsOf(run, family)) {
            if (path.mul + path.addSub == 0) continue;
            EXPECT_EQ(path.calls, 0);
            found.insert({path.mul, path.addSub});
        }
        for (const DataRow& row : dataTable("dct4/bodies").rows()) {
            expected.insert({row.integer("multiplications"), row.integer("additions")});
        }
        EXPECT_EQ(found, expected);

        for (const Instruction& instruction : run.instructions) {
            const bool scalar = instruction.mnemonic.ends_with(family.scalar);
            if (instruction.kind == Kind::add || instruction.kind == Kind::multiply) {
                EXPECT_TRUE(scalar) << instruction.text;
            }
            EXPECT_NE(instruction.kind, Kind::convert) << instruction.text;
            EXPECT_NE(instruction.kind, Kind::shuffle) << instruction.text;
            if (instruction.vector() && instruction.memory() != nullptr) {
                EXPECT_NE(instruction.memory()->size, 16) << instruction.text;
            }
        }
    }
}

// The function of another library that a stub of the linkage table goes on to.
std::string importAt(std::uint64_t address) {
    for (int i = 0; i < 3; ++i) {
        const Instruction instruction = code().decodeAt(address);
        address += static_cast<std::uint64_t>(instruction.length);
        const Operand* memory = instruction.memory();
        if (instruction.kind == Kind::jump && memory != nullptr && memory->base == 16) {
            return code()
                .image()
                .importedAt(address + static_cast<std::uint64_t>(memory->displacement))
                .value_or("of no name");
        }
    }
    return "of no known form";
}

// What can be reached from a function by direct calls and tail calls, imports included.
void reach(const Function& function, std::set<std::string>& names) {
    if (!names.insert(function.symbol.name).second) return;
    for (const Instruction& instruction : function.instructions) {
        if (instruction.kind != Kind::call && instruction.kind != Kind::jump) continue;
        const Operand& operand = instruction.operands[0];
        if (operand.type != Operand::Type::immediate) {
            if (instruction.kind == Kind::call) names.insert("an indirect call");
            continue;
        }
        const auto target = static_cast<std::uint64_t>(operand.value);
        if (instruction.kind == Kind::jump && function.at(target) != nullptr) continue;
        const Function* called = code().functionAt(target);
        if (called == nullptr) {
            names.insert("import " + importAt(target));
        } else {
            reach(*called, names);
        }
    }
}

// What the plan machine calls beside its named operations: functions of its C++, which may or may
// not be inlined; what they call is looked at in turn.
const std::string insideName = "_ZN6orvgen4dct4";

// A run calls no library function, no allocator, no trigonometry: kernels and the list's access.
TEST(Dct4RunFunction, CallsKernelsAndListsAlone) {
    for (const FamilyCode& family : families) {
        std::set<std::string> names;
        reach(code().function("orvgDCT4" + std::string(family.suffix)), names);
        EXPECT_TRUE(names.count("EnvList_get"));
        for (const char* node : {"env4", "env5", "env7", "env8", "env9"}) {
            EXPECT_TRUE(names.count(family.prefix + std::string(node) + "_compute")) << node;
        }
        for (const std::string& name : names) {
            const bool inside = name.starts_with(insideName);
            EXPECT_TRUE(inside || name == "EnvList_get" || name.ends_with("_compute") ||
                        name == "orvgDCT4" + std::string(family.suffix))
                << name;
        }
    }
}

// Sizing touches no memory, and building does not size: two walks that know nothing of each other.
TEST(Dct4Sizing, KnowsNothingOfBuildingInTheMachineCode) {
    for (const FamilyCode& family : families) {
        const std::string prefix = family.prefix;
        std::set<std::string> sizing;
        reach(code().function("orvgDCT4GetSize" + std::string(family.suffix)), sizing);
        EXPECT_TRUE(sizing.count(prefix + "env1_mem"));
        for (const std::string& name : sizing) {
            EXPECT_TRUE(name.ends_with("_mem") || name == "divisorsIntNonTriv" ||
                        name == "orvgAlignSize32Bytes" || name.starts_with("orvgDCT4GetSize") ||
                        name == "EnvList_add_mem" || name.starts_with(insideName))
                << name;
        }
        std::set<std::string> building;
        reach(code().function("orvgDCT4Init" + std::string(family.suffix)), building);
        for (const char* node : {"env1", "env2", "env3", "env4", "env5", "env7", "env8", "env9"}) {
            // Children are planned through their records.
            reach(code().function(prefix + node + "_plan"), building);
        }
        EXPECT_TRUE(building.count("orvgArenaMalloc"));
        for (const std::string& name : building) {
            EXPECT_FALSE(name.ends_with("_mem") || name.find("GetSize") != std::string::npos ||
                         name.find("import orv") != std::string::npos)
                << name;
        }
    }
}

TEST(Dct4Trigonometry, CallsOneFunctionOfTheLibraryEach) {
    const std::pair<const char*, const char*> helpers[] = {{"orvgCosPi_32f", "cosf"},
                                                           {"orvgSinPi_32f", "sinf"},
                                                           {"orvgCosPi_64f", "cos"},
                                                           {"orvgSinPi_64f", "sin"}};
    for (const auto& [helper, library] : helpers) {
        std::set<std::string> names;
        reach(code().function(helper), names);
        EXPECT_EQ(names, (std::set<std::string>{helper, std::string("import ") + library}));
    }
}

TEST(Dct4Symbols, StandAsLocalFunctions) {
    int checked = 0;
    const auto expectLocal = [&](const std::string& name) {
        const Symbol* symbol = code().image().find(name);
        ASSERT_NE(symbol, nullptr) << name;
        EXPECT_TRUE(symbol->function) << name;
        EXPECT_FALSE(symbol->global) << name;
        ++checked;
    };
    for (const DataRow& row : dataTable("dct4/symbols").rows()) {
        if (row.flag("family")) {
            for (const FamilyCode& family : families) expectLocal(family.prefix + row.text("name"));
        } else {
            expectLocal(row.text("name"));
        }
    }
    EXPECT_GT(checked, 90);
}

// The tables say all: no further function under the prefixes, and none of the operations that a
// type does not have.
TEST(Dct4Symbols, AreNoOthers) {
    std::set<std::string> listed;
    for (const DataRow& row : dataTable("dct4/symbols").rows()) listed.insert(row.text("name"));
    for (const DataRow& row : dataTable("dct4/absent").rows()) {
        EXPECT_FALSE(listed.count(row.text("name")));
        for (const FamilyCode& family : families) {
            EXPECT_EQ(code().image().find(family.prefix + row.text("name")), nullptr);
        }
    }
    for (const Symbol& symbol : code().image().symbols()) {
        for (const FamilyCode& family : families) {
            const std::string prefix = family.prefix;
            if (symbol.function && symbol.name.starts_with(prefix)) {
                EXPECT_TRUE(listed.count(symbol.name.substr(prefix.size()))) << symbol.name;
            }
        }
    }
}

}  // namespace
}  // namespace orvgen::test::dct4
