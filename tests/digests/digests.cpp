// SPDX-License-Identifier: MIT
#include "digests/digests.h"

#include <cstdio>
#include <limits>

#include "digests/digest.h"
#include "digests/plans.h"
#include "digests/results.h"
#include "orvgen.h"

namespace orvgen::test {
namespace {

constexpr const char* otherFunctions = "others";

std::string textOf(std::uint64_t digest) {
    char text[20];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(digest));
    return text;
}

template <class Transforms>
DigestRow rowOf(const std::string& name, const Transforms& transforms, Digest statuses) {
    DigestRow row{name, {}};
    for (const InputKind kind : inputKinds) {
        Digest digest;
        for (const Transform& t : transforms) digest.add(resultDigest(t, kind));
        row.digests.push_back(textOf(digest.value()));
    }
    for (const Transform& t : transforms) statuses.add(refusalDigest(t));
    row.digests.push_back(textOf(statuses.value()));
    return row;
}

DigestRow statusesOnly(const std::string& name, std::uint64_t statuses) {
    DigestRow row{name, std::vector<std::string>(digestColumns.size())};
    row.digests.back() = textOf(statuses);
    return row;
}

std::uint64_t sizesOf(const LoadedLibrary& library, const std::string& query) {
    auto* const size = library.function<OrvStatus(std::int32_t, std::int32_t*)>(query);
    Digest digest;
    for (std::int32_t order = -2; order < 40; ++order) {
        std::int32_t bytes = -77;
        digest.add(static_cast<std::uint64_t>(size(order, &bytes)));
        digest.add(static_cast<std::uint64_t>(bytes));
    }
    return digest.value();
}

std::vector<DigestRow> rowsOf(const LoadedLibrary& library, const Family& f) {
    std::vector<DigestRow> rows;
    std::vector<Transform> byNumber;
    for (const Member& m : f.members) {
        rows.push_back(rowOf(m.name, std::vector<Transform>{m.itself}, Digest()));
        byNumber.push_back(m.byNumber);
    }
    using Limits = std::numeric_limits<std::int32_t>;
    Digest statuses;
    for (std::int32_t n = -2; n < 300; ++n) {
        statuses.add(static_cast<std::uint64_t>(f.statusOf(n)));
    }
    for (const std::int32_t n : {Limits::min(), Limits::min() + 8, 65536 + 8, Limits::max()}) {
        statuses.add(static_cast<std::uint64_t>(f.statusOf(n)));
    }
    rows.push_back(rowOf(f.name, byNumber, statuses));
    if (!f.sizeQuery.empty()) {
        rows.push_back(statusesOnly(f.sizeQuery, sizesOf(library, f.sizeQuery)));
    }
    return rows;
}

std::uint64_t versionDigest(const LoadedLibrary& library) {
    const auto* v = library.function<const OrvLibraryVersion*()>("orvgenGetLibVersion")();
    Digest digest;
    for (const std::int32_t number :
         {v->versionMajor, v->versionMinor, v->buildMajor, v->buildMinor}) {
        digest.add(static_cast<std::uint64_t>(number));
    }
    digest.add(std::string_view(v->cpuTag, sizeof v->cpuTag));
    for (const char* text : {v->libraryName, v->versionText, v->buildDate}) {
        digest.add(std::string_view(text));
    }
    return digest.value();
}

std::vector<DigestRow> otherRows(const LoadedLibrary& library) {
    std::vector<DigestRow> rows = {statusesOnly("orvgenGetLibVersion", versionDigest(library))};
    for (const bool single : {true, false}) {
        const PlanFunctions functions(library, single);
        for (const auto& [name, digest] : functions.answers()) {
            if (name != functions.runName()) {
                rows.push_back(statusesOnly(name, digest));
                continue;
            }
            // The tables of longer plans come from the mathematical library.
            std::vector<Transform> plans;
            for (const std::int32_t n : {2, 4, 8, 16, 32}) {
                plans.push_back(functions.plan(n, PlanFunctions::Memory::OfTheLibrary));
            }
            rows.push_back(rowOf(name, plans, Digest()));
            rows.back().digests.back() = textOf(digest);
        }
    }
    return rows;
}

}  // namespace

std::vector<std::string> digestGroups() {
    std::vector<std::string> groups = familyNames();
    groups.push_back(otherFunctions);
    return groups;
}

std::vector<DigestRow> digestRows(const LoadedLibrary& library, const std::string& group) {
    return group == otherFunctions ? otherRows(library) : rowsOf(library, family(library, group));
}

}  // namespace orvgen::test
