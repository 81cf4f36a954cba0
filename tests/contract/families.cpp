// SPDX-License-Identifier: MIT
// The families against the table of families: every member and every twin there and no other, the
// by-length functions followed to the very kernel, and the names and numbers of the public header.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <set>
#include <stdexcept>

#include "frame/names.h"
#include "kernels/kernel_list.h"
#include "support/data_table.h"
#include "support/integer_core.h"
#include "support/library_file.h"
#include "support/scale_column.h"

namespace orvgen::test {
namespace {

const MachineCode& library() {
    static const MachineCode code(libraryFile());
    return code;
}

// The library's own row of a family.
const FamilyInfo& infoOf(const DataRow& family) {
    for (const FamilyInfo& info : kFamilies)
        if (nameOf(info) == family.text("dispatcher")) return info;
    throw std::runtime_error("no row of " + family.text("dispatcher"));
}

struct PromisedMember {
    std::string name;
    std::string twin;  // empty: none
    long number;
};

std::vector<PromisedMember> promisedMembers(const DataRow& family) {
    std::vector<PromisedMember> members;
    for (long n = family.integer("first"); n <= family.integer("last"); ++n) {
        PromisedMember m;
        m.name = family.text("base") + "_" + std::to_string(n) + "_" + family.text("suffix");
        m.number = n;
        if (!family.empty("first_twin") && n >= family.integer("first_twin") &&
            n <= family.integer("last_twin")) {
            m.twin = twinName(infoOf(family), static_cast<int>(n));
        }
        members.push_back(m);
    }
    return members;
}

std::vector<PromisedMember> presentMembers(const DataRow& family) {
    std::vector<PromisedMember> members = promisedMembers(family);
    std::erase_if(members, [](const PromisedMember& m) { return !library().has(m.name); });
    return members;
}

Layout layoutOf(const std::string& word) {
    const std::map<std::string, Layout> layouts = {{"real", Layout::Real},
                                                   {"complex", Layout::Complex},
                                                   {"ccs", Layout::Ccs},
                                                   {"pack", Layout::Pack},
                                                   {"perm", Layout::Perm}};
    return layouts.at(word);
}

bool selectsByN(std::int32_t flag, const DataRow& family) {
    return dataTable("flags").row("value", flag).text(family.text("flags")) == "by_n";
}

long bytesOfElement(const std::string& type) {
    for (const DataRow& row : dataTable("element_types").rows())
        if (row.text("name") == type) return row.integer("bytes");
    throw std::runtime_error("no element type " + type);
}

bool holds(const std::vector<long>& list, int number) {
    return std::find(list.begin(), list.end(), number) != list.end();
}

// What the library's own code takes for true of a family, against what is promised.
TEST(Families, HaveTheRowsThatArePromised) {
    std::size_t compared = 0;
    for (const DataRow& family : dataTable("families").rows()) {
        const FamilyInfo& info = infoOf(family);
        SCOPED_TRACE(nameOf(info));
        ++compared;
        EXPECT_EQ("orvg" + std::string(info.name), family.text("base"));
        EXPECT_EQ(info.element, family.text("suffix"));
        EXPECT_TRUE(info.hasKernels());
        EXPECT_EQ(info.numbers.first, family.integer("first"));
        EXPECT_EQ(info.numbers.last, family.integer("last"));
        EXPECT_FALSE(info.numbers.doubling);
        EXPECT_EQ(info.byOrder, family.text("dispatcher_arguments").starts_with("src dst order"));
        EXPECT_EQ(info.src, layoutOf(family.text("src")));
        EXPECT_EQ(info.dst, layoutOf(family.text("dst")));
        EXPECT_EQ(scaleColumn(info), family.text("flags"));
        EXPECT_EQ(info.isSingle(), info.element == "32f" || info.element == "32fc");
        EXPECT_EQ(info.scale != ScaleRule::InverseByN, selectsByN(orvScaleFwdByN, family));
        EXPECT_EQ(info.scale != ScaleRule::ForwardByN, selectsByN(orvScaleInvByN, family));
        // The complex transforms, and no others, allow any overlap.
        EXPECT_EQ(info.readsAllFirst, family.text("src") == "complex");
        const long element = bytesOfElement("Orv" + family.text("suffix"));
        for (const PromisedMember& m : promisedMembers(family)) {
            const int n = static_cast<int>(m.number);
            EXPECT_EQ(memberName(info, n), m.name);
            EXPECT_EQ(info.hasTwin(n), !m.twin.empty()) << n;
            EXPECT_EQ(info.alignmentOf(n) == Alignment::TwoBodies,
                      holds(family.integers("two_bodies"), n))
                << n;
            EXPECT_EQ(info.behindSrc.bytesOf(n),
                      holds(family.integers("behind_src"), n) ? element : 0)
                << n;
        }
    }
    EXPECT_EQ(compared, static_cast<std::size_t>(
                            std::count_if(std::begin(kFamilies), std::end(kFamilies),
                                          [](const FamilyInfo& f) { return f.hasKernels(); })));
}

// Says how many members are missing below each by-length function.
TEST(Families, AreComplete) {
    std::string missing;
    for (const DataRow& family : dataTable("families").rows()) {
        const std::size_t absent = promisedMembers(family).size() - presentMembers(family).size();
        if (absent != 0) missing += " " + std::to_string(absent) + " below";
        if (absent != 0 || !library().has(family.text("dispatcher"))) {
            missing += " " + family.text("dispatcher");
        }
    }
    for (const DataRow& row : dataTable("other_functions").rows()) {
        if (!library().has(row.text("name"))) missing += " " + row.text("name");
    }
    EXPECT_EQ(missing, "");
}

TEST(Families, HaveTheirTwinsAndNoOthers) {
    std::set<std::string> twins;
    for (const DataRow& family : dataTable("families").rows()) {
        for (const PromisedMember& m : presentMembers(family)) {
            EXPECT_TRUE(library().image().find(m.name)->global) << m.name;
            if (m.twin.empty()) continue;
            twins.insert(m.twin);
            ASSERT_TRUE(library().has(m.twin)) << m.twin;
            EXPECT_FALSE(library().image().find(m.twin)->global) << m.twin;
        }
    }
    for (const Symbol& s : library().image().symbols()) {
        if (s.name.ends_with("_unaligned") && s.name.find("DCT4") == std::string::npos) {
            EXPECT_TRUE(twins.count(s.name)) << s.name;
        }
    }
}

TEST(Families, ListsOfTheHeaderAreTheLibrary) {
    std::set<std::string> listed, present;
    for (const ListedKernel& k : listedKernels()) listed.insert(k.name);
    for (const DataRow& family : dataTable("families").rows()) {
        if (family.text("base") == "orvgWHT") continue;
        for (const PromisedMember& m : presentMembers(family)) present.insert(m.name);
    }
    EXPECT_EQ(listed, present);
}

// The machine code of a by-length function: out of range it looks at nothing, in range it goes to
// the kernel of that very length with everything unchanged.
TEST(Families, ByLengthFunctionsReachTheirKernels) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer's own code stands in these functions";
#endif
    const auto touches = [](const Trace& t) {
        for (const Step& s : t.steps) {
            if (s.access && (s.access->region == Region::src || s.access->region == Region::dst)) {
                return true;
            }
        }
        return false;
    };
    int followed = 0;
    for (const DataRow& family : dataTable("families").rows()) {
        const std::string& function = family.text("dispatcher");
        const long first = family.integer("first"), last = family.integer("last");
        for (const long n : {first - 1, 0L, -1L, -2L, last + 1, 100L, 256L + first, 65536L + first,
                             2147483647L, -2147483648L, -2147483648L + first}) {
            for (const bool null : {true, false}) {
                CallSetup setup;
                setup.length = static_cast<std::int32_t>(n);
                setup.srcNull = setup.dstNull = null;
                setup.flag = null ? 3 : 8;
                const Trace t = runIntegers(library(), function, setup);
                EXPECT_EQ(t.complaints, std::vector<std::string>()) << function;
                EXPECT_EQ(t.status, orvErrSize) << function << " of " << n;
                EXPECT_EQ(t.entered, std::vector<std::string>{function}) << n;
                EXPECT_FALSE(touches(t)) << function << " of " << n;
            }
        }
        for (const PromisedMember& m : presentMembers(family)) {
            CallSetup setup;
            setup.length = static_cast<std::int32_t>(m.number);
            for (const std::int32_t flag : {8, 1, 3}) {
                setup.flag = flag;
                const Trace t = runIntegers(library(), function, setup);
                EXPECT_EQ(t.complaints, std::vector<std::string>()) << function;
                EXPECT_EQ(t.status, flag == 3 ? orvErrFlag : orvOk) << m.name;
                EXPECT_EQ(t.entered, (std::vector<std::string>{function, m.name}));
            }
            setup.flag = 3;
            setup.srcNull = true;
            EXPECT_EQ(runIntegers(library(), function, setup).status, orvErrNullPtr) << m.name;
            ++followed;
        }
    }
    EXPECT_GT(followed, 0);
}

// A null source beside a destination off its boundary reaches the test of the twin; in the second
// build one body takes any alignment.
TEST(Families, NullBesideMisalignedIsSeenByTheTwin) {
    const std::string name = "orvgDFTFwd_CToC_30_32fc";
    CallSetup setup;
    setup.srcNull = true;
    setup.dstMisalignment = 8;
    const Trace t = runIntegers(library(), name, setup);
    EXPECT_EQ(t.status, orvErrNullPtr);
    std::vector<std::string> entered = {name};
    if (!isSecondBuild()) entered.push_back("owngDFTFwd_CToC_30_32fc_unaligned");
    EXPECT_EQ(t.entered, entered);
}

TEST(Header, HasTheNamesAndNumbers) {
    const std::map<std::string, long> statuses = {{"orvOk", orvOk},
                                                  {"orvErrPlan", orvErrPlan},
                                                  {"orvErrSize", orvErrSize},
                                                  {"orvErrNullPtr", orvErrNullPtr},
                                                  {"orvErrFlag", orvErrFlag}};
    EXPECT_EQ(dataTable("statuses").rows().size(), statuses.size());
    for (const DataRow& row : dataTable("statuses").rows()) {
        EXPECT_EQ(statuses.at(row.text("name")), row.integer("value"));
    }
    EXPECT_TRUE((std::is_same_v<OrvStatus, std::int32_t>));
    const std::map<std::string, long> flags = {{"orvScaleFwdByN", orvScaleFwdByN},
                                               {"orvScaleInvByN", orvScaleInvByN},
                                               {"orvScaleBySqrtN", orvScaleBySqrtN},
                                               {"orvScaleNone", orvScaleNone}};
    EXPECT_EQ(dataTable("flags").rows().size(), flags.size());
    for (const DataRow& row : dataTable("flags").rows()) {
        EXPECT_EQ(flags.at(row.text("name")), row.integer("value"));
    }
    const std::map<std::string, std::size_t> types = {{"Orv32f", sizeof(Orv32f)},
                                                      {"Orv64f", sizeof(Orv64f)},
                                                      {"Orv32fc", sizeof(Orv32fc)},
                                                      {"Orv64fc", sizeof(Orv64fc)}};
    EXPECT_EQ(dataTable("element_types").rows().size(), types.size());
    for (const DataRow& row : dataTable("element_types").rows()) {
        EXPECT_EQ(static_cast<long>(types.at(row.text("name"))), row.integer("bytes"));
    }
    // The real part stands first.
    EXPECT_EQ(offsetof(Orv32fc, re), 0U);
    EXPECT_EQ(offsetof(Orv32fc, im), sizeof(Orv32f));
    EXPECT_EQ(offsetof(Orv64fc, re), 0U);
    EXPECT_EQ(offsetof(Orv64fc, im), sizeof(Orv64f));
}

// Field by field as the table orders them, without the header's help.
TEST(Header, DeclaresTheVersionRecord) {
    const auto* at = reinterpret_cast<const unsigned char*>(orvgenGetLibVersion());
    for (const DataRow& row : dataTable("version_record").rows()) {
        const std::string& type = row.text("type");
        const std::string& field = row.text("field");
        if (type == "int32") {
            std::int32_t value = 0;
            std::memcpy(&value, at, 4);
            EXPECT_EQ(value, row.integer("value")) << field;
            at += 4;
        } else if (type == "text8") {
            char text[8] = {};
            std::strncpy(text, row.text("value").c_str(), 7);
            EXPECT_EQ(std::memcmp(at, text, 8), 0) << field;
            at += 8;
        } else {
            ASSERT_EQ(type, "text pointer");
            const char* text = nullptr;
            std::memcpy(&text, at, 8);
            EXPECT_EQ(text, row.text("value")) << field;
            at += 8;
        }
    }
    EXPECT_EQ(
        reinterpret_cast<const unsigned char*>(orvgenGetLibVersion()) + sizeof(OrvLibraryVersion),
        at);
}

}  // namespace
}  // namespace orvgen::test
