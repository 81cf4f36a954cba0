// SPDX-License-Identifier: MIT
// Faults in the machine code are seen: one wrong instruction is put into a kernel, for the
// evaluated processor only, and the comparison with the single function says so.
#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

#include "batch/evaluated.h"

namespace orvgen::test::batch {
namespace {

using Line = evaluator::Processor::Line;
using Bytes = std::vector<std::uint8_t>;

// A wrong instruction in the place of one of these; of nothing: not in the place of this one.
struct Fault {
    const char* name;
    std::string_view instruction;  // how its text begins
    Bytes (*wrong)(const Line& line);
    const char* complaint;  // part of what is said of it
};

// Behind prefixes of four, three or two bytes.
std::size_t opcodeAt(const Line& line) {
    return line.bytes[0] == 0x62 ? 4 : line.bytes[0] == 0xc4 ? 3 : 2;
}
Bytes withOpcode(const Line& line, std::uint8_t opcode) {
    Bytes bytes = line.bytes;
    bytes[opcodeAt(line)] = opcode;
    return bytes;
}
bool isOfRegisters(const Line& line) { return line.text.find('[') == line.text.npos; }

constexpr const char* kNumber = "number ";

const Fault faults[] = {
    {"a difference the other way round", "vsubps",
     [](const Line& line) {
         return isOfRegisters(line) ? evaluator::Decoder().exchanged(line.bytes) : Bytes{};
     },
     kNumber},
    {"a sum for a difference", "vsubps", [](const Line& line) { return withOpcode(line, 0x58); },
     kNumber},
    {"a product for a sum", "vaddps", [](const Line& line) { return withOpcode(line, 0x59); },
     kNumber},
    {"a shuffle of other lanes", "vshufps",
     [](const Line& line) {
         Bytes bytes = line.bytes;
         bytes.back() ^= 1;
         return bytes;
     },
     kNumber},
    {"another constant", "vmulps",
     [](const Line& line) {
         // One byte behind an instruction's operands is a distance in bytes, or, in the longest
         // encoding, in operands; four bytes are a distance in bytes.
         if (isOfRegisters(line) || line.text.find("0x") == line.text.npos) return Bytes{};
         const bool isShort = line.bytes.size() < opcodeAt(line) + 5;
         Bytes bytes = line.bytes;
         std::uint8_t& low = bytes[bytes.size() - (isShort ? 1 : 4)];
         low = static_cast<std::uint8_t>(low ^ (isShort ? 1 : 64));
         return bytes;
     },
     ""},
    {"nothing stored", "vmovups",
     [](const Line& line) {
         // vmovups to memory has the opcode 0x11; nops of the same length.
         if (line.bytes[opcodeAt(line)] != 0x11) return Bytes{};
         return Bytes(line.bytes.size(), 0x90);
     },
     kNumber},
    {"an aligned access to what is not", "vmovups",
     [](const Line& line) {
         return withOpcode(line, line.bytes[opcodeAt(line)] == 0x10 ? 0x28 : 0x29);
     },
     "an aligned access off its boundary"},
    {"upper halves left full", "vzeroupper",
     [](const Line& line) { return Bytes(line.bytes.size(), 0x90); },
     "upper halves of vectors are in use"},
    {"an instruction that is not known", "vsubps",
     [](const Line& line) { return withOpcode(line, 0x5e); }, "it is not known: 0x"},
    {"bytes that are no instruction", "vsubps",
     [](const Line& line) { return Bytes(line.bytes.size(), 0x06); }, "no instruction"},
    {"a frame left open", "leave", [](const Line&) { return Bytes{0x90}; }, "it leads to no code"},
};

class EvaluatedFaults : public testing::TestWithParam<std::uint32_t> {
  protected:
    EvaluatedTarget evaluated_{GetParam()};

    // What is said of columns of 15 complex points, which begin off the boundaries of vectors.
    std::string check() {
        for (const Family<float>& family : families<float>()) {
            if (family.name != "orvgBatchDFTFwd_CToC_32fc") continue;
            const int count = lanesOf<float>(GetParam());
            const Layout columns = {"columns", count + 1, 1, count + 1, 1};
            Comparison<float> comparison(family, kLength, columns, count, Data::Ordinary,
                                         orvScaleNone, defaultControl, 1);
            const std::string text = comparison.check(count, Placement::OffByOne);
            return text.empty() ? text : text + "; " + evaluated_.complaint();
        }
        return "no such family";
    }
    static constexpr int kLength = 15;
};

TEST_P(EvaluatedFaults, AreSeen) {
    ASSERT_EQ(check(), "");
    const EvaluatedLibrary::Function kernel =
        EvaluatedLibrary::function("owngPairsDFTFwd_CToC_15_32fc" + suffixOf(GetParam()));
    evaluator::Processor& processor = evaluated_.processor();
    const std::vector<Line> lines = processor.listing(kernel.address, kernel.size);
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.name);
        int planted = 0;
        for (const Line& line : lines) {
            if (!line.text.starts_with(fault.instruction)) continue;
            const Bytes wrong = fault.wrong(line);
            if (wrong.empty() || wrong == line.bytes) continue;
            processor.plant(line.address, wrong);
            ++planted;
            const std::string found = check();
            EXPECT_FALSE(found.empty()) << line.text;
            EXPECT_NE(found.find(fault.complaint), found.npos) << line.text << ": " << found;
            processor.takeOut();
        }
        EXPECT_GT(planted, 0);
        std::printf("%3d times %s\n", planted, fault.name);
    }
    EXPECT_EQ(check(), "");
}

INSTANTIATE_TEST_SUITE_P(Batch, EvaluatedFaults, testing::ValuesIn(wideTargets()), nameOfParameter);

}  // namespace
}  // namespace orvgen::test::batch
