// SPDX-License-Identifier: MIT
#include "plans_page.h"

#include <algorithm>

#include "dct4/notation.h"

namespace orvgen::generator {

namespace {

constexpr const char* kHead = R"(# How every length is computed

Written by `./dev show --all-plans`; `./dev show NAME` prints the line of one kernel, its figures and its assembly, which
has the same line in its head. The lines are plans ([plan.h](../src/plan/plan.h)), printed whole.

## Notation

| written | is | real, Hartley, complex binary64 | complex binary32 |
|---|---|---|---|
| 5 | a block of 5 points: a butterfly or a direct form | `directReal`, `directInverseReal` in [direct.h](../src/flows/direct.h) | `butterfly` in [butterflies.h](../src/dft/butterflies.h) |
| 4, 3 | a Good-Thomas join: four-point blocks first, no twiddles | `goodThomas`, `inverseGoodThomas` in [good_thomas.h](../src/flows/good_thomas.h) | `ComplexJoin` in [complex_join.h](../src/dft/complex_join.h), run by `LaneWalk` in [lane_walk.cpp](../src/dft/lane_walk.cpp) |
| 9 T 3 | a Cooley-Tukey join: nine-point blocks first, then twiddles | `cooleyTukey`, `inverseCooleyTukey` in [cooley_tukey.h](../src/flows/cooley_tukey.h) | the same |
| (5, 3) T 3 | a factor in parentheses is a join itself | | |
| Rader 13(c; e; o) | the cycle's transform c, the inverse transforms e of its even and o of its odd frequencies | `raderReal` in [rader.h](../src/flows/rader.h) | |
| inverse Rader 13(e; o; c) | the mirror; (e; o; ce; co) where the cycle's inverse transform is split by parity | `raderInverseReal` in [rader.h](../src/flows/rader.h) | |
| Rader 13(c) | on complex numbers: the cycle's transform c, and back by its mirror; {packed}, {lone pair}: how x[0] meets it | | `rader` in [rader.h](../src/dft/rader.h) |
| lane Rader 13 | the same with the cycle in real lanes; {from g^1}: the power at which results begin; {sin 60 in bins 2 4}: that sine is in the constants | | `laneRader` in [embedded_rader.h](../src/dft/embedded_rader.h) |
| Bluestein 47(f; b) | the transform f of the padded sequence, and the way back b | | `bluestein` in [bluestein.h](../src/dft/bluestein.h) |
| lanes(p) | a complex transform as real ones of the real and of the imaginary parts; lanes(p &#124; q) where they differ | `complexByLanes` in [lanes.h](../src/flows/lanes.h) | |
| [9; complex 3 T 3; odd 2 T 2; 4: 3 T 3] | a factor whose blocks differ: the plan of real rows, of complex rows, of the row at odd frequencies, of block 4 | [rows.h](../src/flows/rows.h) | |
| 3{head}, 2{both}, 3{re} | in binary32 these operands are rounded for a sum and go on unrounded into a product's expression: x[0] or bin 0; both operands; the real part of bin 1 | [direct.h](../src/flows/direct.h) | |
| 7{cosines by g} | the real terms are summed along the powers of the primitive root g | [sums.h](../src/flows/sums.h) | |
| 16{bins renumbered}, 17{samples renumbered} | a block whose root exponent is met by the order of its bins or samples | `renumbered` in [lanes.h](../src/flows/lanes.h) | |
| T{conjugate rows} | complex rows by the row of the conjugate bins | [cooley_tukey.h](../src/flows/cooley_tukey.h) | |
| T{columns 0 2 4}, T{twiddles of columns} | representatives of the columns; columns instead of rows in the lanes of a twiddle vector | | [complex_join.h](../src/dft/complex_join.h) |
| passes of 6, 3 layers | a Walsh-Hadamard transform: how many layers of two-point butterflies each pass over memory does | `blockPass`, `columnPass` in [passes.h](../src/wht/passes.h), cuts in [arrangement.h](../src/wht/arrangement.h) | |
| r = 32, n = 16 T 8 | a DCT-IV: odd-frequency transforms of n points, then blocks of radix r; `./dev show DCT4_4096_32f` prints the nodes | `oddFrequency` in [oddfrequency.h](../src/dct4/flows/oddfrequency.h), `stageTwo` in [stagetwo.h](../src/dct4/flows/stagetwo.h) | |

The first factor of a join runs first: of an inverse transform that is the one across the bins. Complex rows of real
data run in lanes by the plan of the real rows, and odd lengths at odd frequencies by that plan with alternating signs,
unless something else is said. The index maps of both joins stand in [index_maps.h](../src/plan/index_maps.h).
)";

constexpr std::size_t kFew = 8;  // lengths at which a family may differ without a table of its own

struct Row {
    int length;
    std::string method;
    bool operator==(const Row&) const = default;
};

// Families with the same rows.
struct Section {
    std::vector<std::string> families;
    std::vector<Row> rows;
};

std::vector<Section> sectionsOf(const std::vector<KernelFamily>& families) {
    std::vector<Section> sections;
    for (const KernelFamily& family : families) {
        std::vector<Row> rows;
        for (const int n : family.info->numbers) rows.push_back({n, family.kernel(n).method});
        const auto same = std::ranges::find(sections, rows, &Section::rows);
        if (same != sections.end())
            same->families.push_back(nameOf(*family.info));
        else
            sections.push_back({{nameOf(*family.info)}, rows});
    }
    return sections;
}

std::string listed(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
    return list;
}

std::string table(const std::vector<Row>& rows) {
    std::string text = "| length or order | computed as |\n|---|---|\n";
    for (const Row& row : rows)
        text += "| " + std::to_string(row.length) + " | " + row.method + " |\n";
    return text;
}

std::vector<Row> others(const std::vector<Row>& rows, const std::vector<Row>& known) {
    std::vector<Row> list;
    for (const Row& row : rows)
        if (std::ranges::find(known, row) == known.end()) list.push_back(row);
    return list;
}

std::string text(const Section& section, const std::vector<Section>& before) {
    const std::string title = "\n## " + listed(section.families) + "\n\n";
    for (const Section& known : before) {
        const std::vector<Row> list = others(section.rows, known.rows);
        if (list.size() <= kFew)
            return title + "As " + known.families[0] + ", but for:\n\n" + table(list);
    }
    return title + table(section.rows);
}

std::string dct4Section() {
    std::vector<Row> rows;
    for (int n = 2; n <= 131072; n *= 2) rows.push_back({n, dct4::notation(n)});
    return "\n## orvgDCT4_32f, orvgDCT4_64f\n\n"
           "Two stages (N = 2 r m): r odd-frequency transforms of n = 2 m = N / r points, then m transforms\n"
           "of radix r; n is a kernel, or kernels of fewer points joined by twiddles. Longer lengths go on\n"
           "like this; see [dct4.md](dct4.md).\n\n" +
           table(rows);
}

}  // namespace

std::string plansPage(const std::vector<KernelFamily>& families) {
    std::string page = kHead;
    const std::vector<Section> sections = sectionsOf(families);
    for (std::size_t i = 0; i < sections.size(); ++i)
        page += text(sections[i],
                     {sections.begin(), sections.begin() + static_cast<std::ptrdiff_t>(i)});
    return page + dct4Section();
}

}  // namespace orvgen::generator
