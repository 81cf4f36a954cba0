// SPDX-License-Identifier: MIT
// What is known of the families of functions: one row for each, and nothing of it anywhere else.
//
// Which families there are, with their names and their numbers, is the public header's to say; here
// stands what the dispatchers, the kernel compiler, the batch library, the benchmarks and the tests
// need to know of them. A list of the header comes to its row by familyOf(NAME, T). Nothing is read
// out of a name: names.h composes them.

#ifndef ORVGEN_FRAME_FAMILIES_H
#define ORVGEN_FRAME_FAMILIES_H

#include <cstddef>
#include <string_view>

#include "orvgen.h"

namespace orvgen {

enum class Transform : std::uint8_t { Dft, Hartley, WalshHadamard, Dct4 };
enum class Direction : std::uint8_t { Forward, Inverse, Both };  // both: its own inverse
enum class Precision : std::uint8_t { Single, Double };          // binary32, binary64

// What an array holds of a transform of N points.
enum class Layout : std::uint8_t {
    Real,     // x[0] .. x[N-1]
    Complex,  // N pairs
    Ccs,      // N/2 + 1 pairs: bins
    Pack,     // R0 R1 I1 R2 I2 ..
    Perm,     // even N: R0 R[N/2] R1 I1 ..; odd N: as Pack
};

constexpr int realsOf(Layout layout, int points) {
    return layout == Layout::Complex ? 2 * points
           : layout == Layout::Ccs   ? 2 * (points / 2 + 1)
                                     : points;
}

// Which scaling flags select 1/N. The flag for 1/sqrt(N) is common to all that have a flag.
enum class ScaleRule : std::uint8_t {
    ForwardByN,  // orvScaleFwdByN
    InverseByN,  // orvScaleInvByN
    BothByN,     // either
    None,        // there is no flag
};

// How a function treats buffers that are not on a 16-byte boundary.
enum class Alignment : std::uint8_t {
    Any,        // there is one body, which takes any
    TwoBodies,  // the function holds a second body for them
    Twin,       // a function of its own does them, the twin, which is no export
};

// The lengths or orders of a family: all from the first to the last, or each twice the one before.
struct Numbers {
    int first = 0, last = 0;
    bool doubling = false;

    struct Iterator {
        long number;
        bool doubling;
        constexpr int operator*() const { return static_cast<int>(number); }
        constexpr Iterator& operator++() {
            number = doubling ? 2 * number : number + 1;
            return *this;
        }
        constexpr bool operator!=(const Iterator& other) const { return number != other.number; }
    };
    constexpr Iterator begin() const { return {first, doubling}; }
    constexpr Iterator end() const { return ++Iterator{last, doubling}; }
    constexpr bool has(int n) const {
        return n >= first && n <= last && (!doubling || (n & (n - 1)) == 0);
    }
    constexpr std::size_t count() const {
        std::size_t count = 0;
        for (Iterator i = begin(); i != end(); ++i) ++count;
        return count;
    }
};

// The header's lists as numbers.
#define ORVGEN_NUMBER(NAME, N, T) N,
constexpr int kListedLengths[] = {ORVGEN_LENGTHS(ORVGEN_NUMBER, , )};
constexpr int kListedOrders[] = {ORVGEN_ORDERS(ORVGEN_NUMBER, , )};
#undef ORVGEN_NUMBER

// Called where a constant cannot be made, so that its use does not compile.
void numbersHaveAGap();
void familyHasNoRow();

template <std::size_t count>
consteval Numbers numbersOf(const int (&list)[count]) {
    for (std::size_t i = 1; i < count; ++i)
        if (list[i] != list[i - 1] + 1) numbersHaveAGap();
    return {.first = list[0], .last = list[count - 1]};
}

inline constexpr Numbers kLengths = numbersOf(kListedLengths);
inline constexpr Numbers kOrders = numbersOf(kListedOrders);

// From these numbers on a family has two bodies, and twins. Where one is missing, never.
struct AlignmentRule {
    int twoBodiesFrom = 1 << 30, twinFrom = 1 << 30;
};

// What some members read behind src, and have no use for.
struct BehindSrc {
    int bytes = 0;
    int at[2] = {};  // the numbers of these members

    constexpr int bytesOf(int number) const {
        for (const int n : at)
            if (n == number) return bytes;
        return 0;
    }
};

struct FamilyInfo {
    std::string_view name;     // DFTFwd_CToC
    std::string_view element;  // 32fc, as it stands in the names
    Transform transform = Transform::Dft;
    Direction direction = Direction::Both;
    Layout src = Layout::Real, dst = Layout::Real;
    Precision precision = Precision::Single;

    Numbers numbers = {};
    bool byOrder = false;  // a number k stands for 2^k points, not for k

    ScaleRule scale = ScaleRule::None;

    AlignmentRule alignment = {};
    // All of src is read before dst is written, so that any overlap is harmless; else only src
    // equal to dst is.
    bool readsAllFirst = false;

    BehindSrc behindSrc = {};

    constexpr bool isSingle() const { return precision == Precision::Single; }
    constexpr bool isComplex() const { return src == Layout::Complex; }
    // A kernel for each number; the others run by plans.
    constexpr bool hasKernels() const { return transform != Transform::Dct4; }
    constexpr int realBytes() const { return isSingle() ? 4 : 8; }
    constexpr int points(int number) const { return byOrder ? 1 << number : number; }
    constexpr int srcReals(int number) const { return realsOf(src, points(number)); }
    constexpr int dstReals(int number) const { return realsOf(dst, points(number)); }
    constexpr Alignment alignmentOf(int number) const {
        return number >= alignment.twinFrom        ? Alignment::Twin
               : number >= alignment.twoBodiesFrom ? Alignment::TwoBodies
                                                   : Alignment::Any;
    }
    constexpr bool hasTwin(int number) const { return alignmentOf(number) == Alignment::Twin; }
};

// In the order of the header's lists.
// clang-format off
inline constexpr FamilyInfo kFamilies[] = {

    // The complex transforms. Bluestein's algorithm loads whole vectors, and at two odd lengths the
    // last of them reaches behind src.
    {.name = "DFTFwd_CToC", .element = "32fc", .transform = Transform::Dft,
     .direction = Direction::Forward, .src = Layout::Complex, .dst = Layout::Complex,
     .precision = Precision::Single, .numbers = kLengths, .scale = ScaleRule::ForwardByN,
     .alignment = {.twinFrom = 6}, .readsAllFirst = true,
     .behindSrc = {.bytes = 8, .at = {47, 59}}},
    {.name = "DFTInv_CToC", .element = "32fc", .transform = Transform::Dft,
     .direction = Direction::Inverse, .src = Layout::Complex, .dst = Layout::Complex,
     .precision = Precision::Single, .numbers = kLengths, .scale = ScaleRule::InverseByN,
     .alignment = {.twinFrom = 6}, .readsAllFirst = true,
     .behindSrc = {.bytes = 8, .at = {47, 59}}},
    {.name = "DFTFwd_CToC", .element = "64fc", .transform = Transform::Dft,
     .direction = Direction::Forward, .src = Layout::Complex, .dst = Layout::Complex,
     .precision = Precision::Double, .numbers = kLengths, .scale = ScaleRule::ForwardByN,
     .alignment = {.twoBodiesFrom = 2, .twinFrom = 5}, .readsAllFirst = true},
    {.name = "DFTInv_CToC", .element = "64fc", .transform = Transform::Dft,
     .direction = Direction::Inverse, .src = Layout::Complex, .dst = Layout::Complex,
     .precision = Precision::Double, .numbers = kLengths, .scale = ScaleRule::InverseByN,
     .alignment = {.twoBodiesFrom = 2, .twinFrom = 5}, .readsAllFirst = true},

    // The real transforms: scalar code, which takes any alignment.
    {.name = "DFTFwd_RToCCS", .element = "32f", .transform = Transform::Dft,
     .direction = Direction::Forward, .src = Layout::Real, .dst = Layout::Ccs,
     .precision = Precision::Single, .numbers = kLengths, .scale = ScaleRule::ForwardByN},
    {.name = "DFTFwd_RToPack", .element = "32f", .transform = Transform::Dft,
     .direction = Direction::Forward, .src = Layout::Real, .dst = Layout::Pack,
     .precision = Precision::Single, .numbers = kLengths, .scale = ScaleRule::ForwardByN},
    {.name = "DFTFwd_RToPerm", .element = "32f", .transform = Transform::Dft,
     .direction = Direction::Forward, .src = Layout::Real, .dst = Layout::Perm,
     .precision = Precision::Single, .numbers = kLengths, .scale = ScaleRule::ForwardByN},
    {.name = "DFTFwd_RToCCS", .element = "64f", .transform = Transform::Dft,
     .direction = Direction::Forward, .src = Layout::Real, .dst = Layout::Ccs,
     .precision = Precision::Double, .numbers = kLengths, .scale = ScaleRule::ForwardByN},
    {.name = "DFTFwd_RToPack", .element = "64f", .transform = Transform::Dft,
     .direction = Direction::Forward, .src = Layout::Real, .dst = Layout::Pack,
     .precision = Precision::Double, .numbers = kLengths, .scale = ScaleRule::ForwardByN},
    {.name = "DFTFwd_RToPerm", .element = "64f", .transform = Transform::Dft,
     .direction = Direction::Forward, .src = Layout::Real, .dst = Layout::Perm,
     .precision = Precision::Double, .numbers = kLengths, .scale = ScaleRule::ForwardByN},
    {.name = "DFTInv_CCSToR", .element = "32f", .transform = Transform::Dft,
     .direction = Direction::Inverse, .src = Layout::Ccs, .dst = Layout::Real,
     .precision = Precision::Single, .numbers = kLengths, .scale = ScaleRule::InverseByN},
    {.name = "DFTInv_PackToR", .element = "32f", .transform = Transform::Dft,
     .direction = Direction::Inverse, .src = Layout::Pack, .dst = Layout::Real,
     .precision = Precision::Single, .numbers = kLengths, .scale = ScaleRule::InverseByN},
    {.name = "DFTInv_PermToR", .element = "32f", .transform = Transform::Dft,
     .direction = Direction::Inverse, .src = Layout::Perm, .dst = Layout::Real,
     .precision = Precision::Single, .numbers = kLengths, .scale = ScaleRule::InverseByN},
    {.name = "DFTInv_CCSToR", .element = "64f", .transform = Transform::Dft,
     .direction = Direction::Inverse, .src = Layout::Ccs, .dst = Layout::Real,
     .precision = Precision::Double, .numbers = kLengths, .scale = ScaleRule::InverseByN},
    {.name = "DFTInv_PackToR", .element = "64f", .transform = Transform::Dft,
     .direction = Direction::Inverse, .src = Layout::Pack, .dst = Layout::Real,
     .precision = Precision::Double, .numbers = kLengths, .scale = ScaleRule::InverseByN},
    {.name = "DFTInv_PermToR", .element = "64f", .transform = Transform::Dft,
     .direction = Direction::Inverse, .src = Layout::Perm, .dst = Layout::Real,
     .precision = Precision::Double, .numbers = kLengths, .scale = ScaleRule::InverseByN},
    {.name = "Hartley", .element = "32f", .transform = Transform::Hartley,
     .direction = Direction::Both, .precision = Precision::Single, .numbers = kLengths,
     .scale = ScaleRule::BothByN},
    {.name = "Hartley", .element = "64f", .transform = Transform::Hartley,
     .direction = Direction::Both, .precision = Precision::Double, .numbers = kLengths,
     .scale = ScaleRule::BothByN},

    // Orders of few points work on single elements; one of binary64 holds both bodies.
    {.name = "WHT", .element = "32f", .transform = Transform::WalshHadamard,
     .direction = Direction::Both, .precision = Precision::Single, .numbers = kOrders,
     .byOrder = true, .scale = ScaleRule::BothByN, .alignment = {.twinFrom = 4}},
    {.name = "WHT", .element = "64f", .transform = Transform::WalshHadamard,
     .direction = Direction::Both, .precision = Precision::Double, .numbers = kOrders,
     .byOrder = true, .scale = ScaleRule::BothByN,
     .alignment = {.twoBodiesFrom = 3, .twinFrom = 4}},

    // By plans. Other lengths than these are accepted too: see the header.
    {.name = "DCT4", .element = "32f", .transform = Transform::Dct4, .direction = Direction::Both,
     .precision = Precision::Single,
     .numbers = {.first = 2, .last = ORVGEN_DCT4_MAX_LENGTH_32f, .doubling = true}},
    {.name = "DCT4", .element = "64f", .transform = Transform::Dct4, .direction = Direction::Both,
     .precision = Precision::Double,
     .numbers = {.first = 2, .last = ORVGEN_DCT4_MAX_LENGTH_64f, .doubling = true}},
};
// clang-format on

// The row of a name in the header's lists. For a name that has none it does not compile.
consteval const FamilyInfo& familyOf(std::string_view name, std::string_view element) {
    for (const FamilyInfo& family : kFamilies)
        if (family.name == name && family.element == element) return family;
    familyHasNoRow();
    return kFamilies[0];
}

// The table has the header's families, and no other.
#define ORVGEN_ROW(NAME, T, LIST) +(familyOf(#NAME, #T).element == #T)
#define ORVGEN_PLAN_ROW(NAME, T) +(familyOf(#NAME, #T).element == #T)
static_assert(std::ssize(kFamilies) == (ORVGEN_LENGTH_FAMILIES(ORVGEN_ROW)
                                            ORVGEN_ORDER_FAMILIES(ORVGEN_ROW)
                                                ORVGEN_DCT4_FAMILIES(ORVGEN_PLAN_ROW)));
#undef ORVGEN_ROW
#undef ORVGEN_PLAN_ROW

}  // namespace orvgen

#endif
