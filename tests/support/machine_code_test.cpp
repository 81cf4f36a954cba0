// SPDX-License-Identifier: MIT
// The reader of machine code on small functions: it takes the sound ones and finds the fault of
// each of the others.
#include "support/machine_code.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/shape.h"

namespace orvgen::test {
namespace {

const MachineCode& fixtures() {
    static const MachineCode code(ORVGEN_SHAPE_FIXTURES);
    return code;
}

KernelFacts facts(const std::string& name) {
    KernelFacts f;
    f.name = name;
    f.rules.srcBytes = f.rules.dstBytes = 16;
    f.twinRules = f.rules;
    return f;
}

std::string join(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& s : texts) all += s + "\n";
    return all;
}

struct Fault {
    const char* name;
    const char* complaint;
};

void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

class Faults : public testing::TestWithParam<Fault> {};

TEST_P(Faults, IsFound) {
    const std::string all = join(checkKernel(fixtures(), facts(GetParam().name)));
    EXPECT_NE(all.find(GetParam().complaint), std::string::npos) << all;
}

INSTANTIATE_TEST_SUITE_P(
    MachineCode, Faults,
    testing::Values(
        Fault{"over_read", "outside src"}, Fault{"under_read", "outside src"},
        Fault{"over_write", "outside dst"}, Fault{"part_written", "of dst written 0 times"},
        Fault{"part_read", "of src not read"}, Fault{"written_twice", "of dst written 2 times"},
        Fault{"writes_src", "writes src"}, Fault{"reads_dst", "reads dst"},
        Fault{"reads_late", "reads src after a store"},
        Fault{"general_data", "data in a general register"},
        Fault{"general_data", "writes constants"}, Fault{"branches", "control flow after the gate"},
        Fault{"depends_on_data", "unknown data"}, Fault{"loops", "control flow after the gate"},
        Fault{"gate_loops", "runs twice"}, Fault{"calls", "control flow after the gate"},
        Fault{"square_root", "no kernel may hold"}, Fault{"sse3", "SSE3"},
        Fault{"sse4", "no kernel may hold"}, Fault{"avx", "no kernel may hold"},
        Fault{"control_word", "no kernel may hold"}, Fault{"x87", "no kernel may hold"},
        Fault{"stale_slot", "never written"}, Fault{"stale_register", "nothing has written"},
        Fault{"spoils_rbx", "not restored"}, Fault{"spoils_stack", "returns to an unknown place"},
        Fault{"below_red_zone", "below the red zone"}, Fault{"misaligned_slot", "off its boundary"},
        Fault{"strays", "nobody"}, Fault{"reads_all_first", "reads src after a store"},
        Fault{"flag_before_null", "null: status -16"}, Fault{"no_dst_test", "null: status 0"},
        Fault{"no_dst_test", "null: touches data"}, Fault{"flag_as_mask", "flag 3: status 0"},
        Fault{"reads_before_gate", "flag 3: touches data"}, Fault{"flag_of_64_bits", "status -16"},
        Fault{"flags_in_another_order", "flag not compared with 8, 4, 1 and 2"},
        Fault{"needless_alignment_test", "off by 8 flag 8: another way"},
        Fault{"dead_code", "never runs"}));

TEST(MachineCode, TakesSoundKernels) {
    KernelFacts vector = facts("good_vector");
    vector.twin = "good_vector_unaligned";
    EXPECT_EQ(join(checkKernel(fixtures(), vector)), "");

    KernelFacts scalar = facts("good_biased");
    scalar.rules.scalar = true;
    scalar.rules.elementBytes = 4;
    scalar.rules.frameLimit = 40;
    EXPECT_EQ(join(checkKernel(fixtures(), scalar)), "");
    scalar.rules.frameLimit = 39;
    EXPECT_NE(join(checkKernel(fixtures(), scalar)), "");

    KernelFacts both = facts("good_two_bodies");
    both.twoBodies = true;
    EXPECT_EQ(join(checkKernel(fixtures(), both)), "");

    KernelFacts passes = facts("good_passes");
    passes.rules.srcBytes = passes.rules.dstBytes = passes.rules.bufferBytes = 64;
    passes.rules.straight = false;
    passes.takesBuffer = true;
    EXPECT_EQ(join(checkKernel(fixtures(), passes)), "");
    passes.rules.bufferBytes = 48;
    EXPECT_NE(join(checkKernel(fixtures(), passes)).find("outside buffer"), std::string::npos);
}

// The same code under rules that it does not meet.
TEST(MachineCode, AnswersToItsRules) {
    KernelFacts f = facts("good_vector");
    f.twin = "good_vector_unaligned";
    f.rules.scalar = true;
    EXPECT_NE(join(checkKernel(fixtures(), f)).find("not scalar"), std::string::npos);
    EXPECT_NE(join(checkKernel(fixtures(), f)).find("16-byte access"), std::string::npos);
    f = facts("good_vector");  // the twin is not expected
    EXPECT_NE(join(checkKernel(fixtures(), f)).find("runs through"), std::string::npos);
    f = facts("good_biased");
    f.rules.elementBytes = 8;
    EXPECT_NE(join(checkKernel(fixtures(), f)).find("no single element"), std::string::npos);
    f.rules.elementBytes = 4;
    f.rules.neverRead = {{4, 8}};
    EXPECT_NE(join(checkKernel(fixtures(), f)).find("though it never is"), std::string::npos);
    f = facts("sse3");
    f.rules.movddup = true;
    EXPECT_EQ(join(checkKernel(fixtures(), f)).find("SSE3"), std::string::npos);
    // Single elements in turn are sound in place, though not all reads come first.
    f = facts("reads_all_first");
    f.rules.allReadsFirst = false;
    EXPECT_EQ(join(checkKernel(fixtures(), f)), "");
    f = facts("reads_late");
    f.rules.allReadsFirst = false;
    EXPECT_NE(join(checkKernel(fixtures(), f)).find("after a store"), std::string::npos);
}

TEST(MachineCode, FindsFaultsOfTwins) {
    KernelFacts f = facts("aligned_twin");
    f.twin = "aligned_twin_unaligned";
    EXPECT_NE(join(checkKernel(fixtures(), f)).find("off its boundary"), std::string::npos);
    f = facts("half_gate");
    f.twin = "half_gate_unaligned";
    EXPECT_NE(
        join(checkKernel(fixtures(), f)).find("dst off by 8 flag 8: runs through half_gate\n"),
        std::string::npos);
}

TEST(MachineCode, FindsFaultsOfBuffers) {
    KernelFacts f = facts("stale_buffer");
    f.rules.bufferBytes = 64;
    EXPECT_NE(join(checkKernel(fixtures(), f)).find("held before"), std::string::npos);
    f = facts("leaks");
    f.rules.bufferBytes = 64;
    f.takesBuffer = true;
    EXPECT_NE(join(checkKernel(fixtures(), f)).find("not one block"), std::string::npos);
}

TEST(MachineCode, IsCounted) {
    CallSetup setup;
    const Trace trace = runIntegers(fixtures(), "good_two_bodies", setup);
    const BodyCounts aligned(trace);
    EXPECT_EQ(aligned.count(Kind::multiply, Lanes::packed32), 1);
    EXPECT_EQ(aligned.shuffles(), 2);
    EXPECT_EQ(aligned.mnemonic("unpcklps"), 2);
    EXPECT_EQ(aligned.loads(Region::src, 16), 1);
    EXPECT_EQ(aligned.stores(Region::dst, 16), 1);
    EXPECT_EQ(aligned.loads(Region::constants, 4), 1);
    setup.srcMisalignment = 4;
    const BodyCounts halves(runIntegers(fixtures(), "good_two_bodies", setup));
    EXPECT_EQ(halves.loads(Region::src, 8), 2);
    EXPECT_EQ(halves.stores(Region::dst, 8), 2);
    EXPECT_EQ(halves.loads(Region::src, 16), 0);
    const BodyCounts scalar(runIntegers(fixtures(), "good_biased", {}));
    EXPECT_EQ(scalar.stackStores(), 1);
    EXPECT_EQ(scalar.count(Kind::multiply, Lanes::scalar32), 5);
    EXPECT_EQ(scalar.count(Kind::add, Lanes::scalar32), 1);
    EXPECT_EQ(scalar.loads(Region::frame, 4), 2);
    EXPECT_EQ(scalar.frameBytes, 40);
    const Function& function = fixtures().function("good_two_bodies");
    EXPECT_EQ(function.symbol.size,
              function.instructions.back().address + 1 - function.symbol.address);
}

TEST(MachineCode, ThrowsAtWhatIsNotThere) {
    EXPECT_THROW(fixtures().function("absent"), std::runtime_error);
    EXPECT_THROW(MachineCode("/dev/null"), std::runtime_error);
    EXPECT_THROW(runIntegers(fixtures(), "absent", {}), std::runtime_error);
}

}  // namespace
}  // namespace orvgen::test
