#include "accuracy_page.h"

#include <cstdio>

#include "accuracy.h"

namespace orvgen::test {

const std::vector<AccuracyColumn>& accuracyColumns() {
    static const std::vector<AccuracyColumn> columns = {
        {"orvgDFTFwd_CToC_32fc", "complex fwd 32fc"}, {"orvgDFTInv_CToC_32fc", "complex inv 32fc"},
        {"orvgDFTFwd_CToC_64fc", "complex fwd 64fc"}, {"orvgDFTInv_CToC_64fc", "complex inv 64fc"},
        {"orvgDFTFwd_RToPack_32f", "real fwd 32f"},   {"orvgDFTFwd_RToPack_64f", "real fwd 64f"},
        {"orvgDFTInv_PackToR_32f", "real inv 32f"},   {"orvgDFTInv_PackToR_64f", "real inv 64f"},
        {"orvgHartley_32f", "Hartley 32f"},           {"orvgHartley_64f", "Hartley 64f"},
    };
    return columns;
}

std::string accuracyPage() {
    std::map<std::pair<std::string, int>, double> errors;
    for (const ListedKernel& k : listedKernels())
        for (const AccuracyColumn& c : accuracyColumns())
            if (k.family == c.family) errors[{k.family, k.length}] = measureAccuracy(k).relativeL2;

    std::string page =
        "# Accuracy\n\n"
        "The relative error of every kernel in the L2 norm, |computed - exact| / |exact|, over random inputs uniform\n"
        "in [-1, 1] (at least 16, and as many as give a thousand results), against the definition evaluated in\n"
        "binary128; in units of u = 2^-24 (32f, 32fc) and 2^-53 (64f, 64fc). Constants, inputs and rounding are\n"
        "fixed, so the figures are the same on every machine; a test measures them again and compares. Written by\n"
        "`./dev accuracy`.\n\n"
        "The bound that the tests hold the kernels to is sqrt(log2 N), at primes from 7 on 1.3 sqrt(log2 N): 2.4 and\n"
        "3.2 at the longest lengths.\n\n| N |";
    for (const AccuracyColumn& c : accuracyColumns()) page += " " + c.heading + " |";
    page += "\n|---|";
    for (std::size_t i = 0; i < accuracyColumns().size(); ++i) page += "---|";
    page += "\n";
    for (int n = 2; n <= 64; ++n) {
        page += "| " + std::to_string(n) + " |";
        for (const AccuracyColumn& c : accuracyColumns()) {
            char cell[16] = " |";
            if (const auto found = errors.find({c.family, n}); found != errors.end())
                std::snprintf(cell, sizeof cell, " %.2f |", found->second);
            page += cell;
        }
        page += "\n";
    }
    return page;
}

}  // namespace orvgen::test
