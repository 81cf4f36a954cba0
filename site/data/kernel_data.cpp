// SPDX-License-Identifier: MIT
#include "kernel_data.h"

#include <stdexcept>

#include "flow_data.h"
#include "generator/design.h"
#include "generator/head.h"
#include "generator/operations.h"
#include "plan_tree.h"

namespace orvgen::site {

using kernelgen::Kernel;

namespace {

Json treeOf(const Branch& branch) {
    std::vector<Json> parts;
    for (const Branch& part : branch.parts) parts.push_back(treeOf(part));
    const auto text = [](const std::string& s) { return s.empty() ? Json{} : quoted(s); };
    return object({{"role", text(branch.role)},
                   {"what", quoted(branch.what)},
                   {"plan", text(branch.plan)},
                   {"parts", parts.empty() ? Json{} : array(parts)}});
}

Json operationsJson(const generator::Operations& o) {
    const auto lanes = [&](int kernelgen::LaneCounts::*member) {
        return o.lanes ? number((*o.lanes).*member) : Json{};
    };
    return object({{"additions", number(o.additions)},
                   {"signSteps", number(o.signSteps)},
                   {"constantProducts", number(o.constantProducts)},
                   {"doublings", number(o.doublings)},
                   {"scaleProducts", number(o.scaleProducts)},
                   {"conversions", number(o.conversions)},
                   {"inPairs", {o.inPairs ? "true" : "false"}},
                   {"executedAdditions", lanes(&kernelgen::LaneCounts::executedAdditions)},
                   {"executedProducts", lanes(&kernelgen::LaneCounts::executedMultiplications)}});
}

const char* word(Claim claim) {
    return claim == Claim::LowerBound    ? "lower bound"
           : claim == Claim::FewestKnown ? "fewest known"
                                         : "known method";
}

const char* word(Counted counted) {
    return counted == Counted::Additions         ? "additions"
           : counted == Counted::Multiplications ? "multiplications"
                                                 : "additions and multiplications";
}

Json knownJson(const Kernel& kernel, const FamilyInfo& family,
               const generator::Operations& operations) {
    std::vector<Json> rows;
    for (const KnownCount& known : knownCounts(kindOf(family), kernel.length)) {
        rows.push_back(
            object({{"claim", quoted(word(known.claim))},
                    {"counted", quoted(word(known.counted))},
                    {"count", number(known.count)},
                    {"ours", number(comparable(operations, known.counted))},
                    {"condition", known.condition.empty() ? Json{} : quoted(known.condition)},
                    {"holds", {conditionHolds(known, kernel) ? "true" : "false"}},
                    {"source", quoted(known.source)}}));
    }
    return array(rows);
}

Json designJson(const std::string& tables, const FamilyInfo& family, int number) {
    std::vector<Json> rows;
    for (const auto& row : generator::designRows(tables, family, number)) {
        std::string text;
        for (const auto& [column, value] : row.cells)
            text += (text.empty() ? "" : ", ") + column + " " + value;
        rows.push_back(array({quoted(row.table), quoted(text)}));
    }
    return array(rows);
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    std::string out;
    std::size_t at = 0;
    for (std::size_t found; (found = text.find(from, at)) != std::string::npos;
         at = found + from.size())
        out.append(text, at, found - at).append(to);
    text = out.append(text, at, std::string::npos);
}

}  // namespace

Kind kindOf(const FamilyInfo& family) {
    switch (family.transform) {
        case Transform::Dft:
            if (family.isComplex()) return Kind::Complex;
            return family.direction == Direction::Forward ? Kind::Real : Kind::InverseReal;
        case Transform::Hartley:
            return Kind::Hartley;
        case Transform::WalshHadamard:
            return Kind::WalshHadamard;
        default:
            throw std::invalid_argument("a transform without kernels");
    }
}

int comparable(const generator::Operations& o, Counted counted) {
    switch (counted) {
        case Counted::Additions:
            return o.additions - o.signSteps + o.doublings;
        case Counted::Multiplications:
            return o.constantProducts;
        default:
            return o.additions - o.signSteps + o.constantProducts;
    }
}

bool conditionHolds(const KnownCount& known, const Kernel& kernel) {
    return known.counted != Counted::Additions || known.claim != Claim::LowerBound ||
           largestConstant(kernel) <= 1;
}

Json rowOf(const Kernel& kernel, int family, int length, const std::string& assembly) {
    const generator::Operations o = generator::operationsOf(kernel);
    const kernelgen::KernelFigures f = generator::figuresInHead(assembly);
    return array({number(family), number(length), quoted(kernel.method), number(o.additions),
                  number(o.multiplications()), number(o.conversions), number(f.instructions),
                  number(f.spills), number(f.frameBytes), number(f.modelCycles),
                  number(f.portBound), number(generator::errorBoundOf(kernel).absolute)});
}

Json pageOf(const Kernel& kernel, const FamilyInfo& family, int length, const std::string& tables,
            const std::string& assembly) {
    const generator::Operations operations = generator::operationsOf(kernel);
    return object({{"tree", treeOf(branchOf(kernel, family, length))},
                   {"operations", operationsJson(operations)},
                   {"known", knownJson(kernel, family, operations)},
                   {"largestConstant", number(largestConstant(kernel))},
                   {"magnitude", number(generator::errorBoundOf(kernel).magnitude)},
                   {"tables", designJson(tables, family, length)},
                   {"flow", flowOf(kernel)},
                   {"assembly", quoted(marked(assembly, kernel.name))}});
}

const std::vector<Mark>& marks() {
    static const std::vector<Mark> list = {
        {"!", "xmmword ptr ["}, {"$", "qword ptr ["}, {"%", "dword ptr ["}, {"~", "\n\t"},
        {"'", ", xmm"},         {"<", "\txmm"},       {">", ", !"},         {"?", "~movaps<"},
        {"`", "~mulps<"},       {"E", "~addps<"},     {"J", "~subps<"},     {"V", "~mulpd<"},
        {"Y", "~addpd<"},       {"Z", "~subpd<"}};
    return list;
}

std::string marked(std::string assembly, const kernelgen::KernelName& name) {
    if (assembly.find('&') != std::string::npos) throw std::runtime_error("& in " + name.stem);
    replaceAll(assembly, name.stem, "&");
    for (const Mark& mark : marks())
        if (assembly.find(mark.mark) != std::string::npos)
            throw std::runtime_error(std::string(mark.mark) + " in the assembly of " + name.stem);
    for (const Mark& mark : marks()) replaceAll(assembly, mark.text, mark.mark);
    return assembly;
}

}  // namespace orvgen::site
