// SPDX-License-Identifier: MIT
#include "kernel_list.h"

#include <stdexcept>

#include "frame/families.h"
#include "generator/registry.h"
#include "kernelgen/compile.h"

namespace orvgen::test {

namespace {

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

// What src and dst hold, by the definition of the family's data.
void describeBuffers(ListedKernel& k) {
    const auto n = static_cast<std::size_t>(k.length);
    const std::size_t ccs = n % 2 == 0 ? n + 2 : n + 1;
    k.srcCount = k.dstCount = k.complex ? 2 * n : n;
    if (contains(k.name, "RToCCS")) k.dstCount = ccs;
    if (contains(k.name, "CCSToR")) {
        k.srcCount = ccs;
        k.neverRead = {1};
        if (n % 2 == 0) k.neverRead.push_back(n + 1);
    }
    // The last vector of these two takes in the element behind src.
    if (contains(k.name, "_32fc") && (n == 47 || n == 59)) k.srcBeyond = 2;
}

template <class T>
using Function = OrvStatus(const T* src, T* dst, std::int32_t flag);
template <class T>
using ByLength = OrvStatus(const T* src, T* dst, std::int32_t length, std::int32_t flag);

// A member of a family. Tables of these, and code that is the same for all of one
// element type: compilers take minutes over a function with a thousand calls of templates.
template <class T>
struct Row {
    int length;
    Function<T>* fixed;
};

template <class T>
ListedKernel listed(const std::string& name, const std::string& type, const Row<T>& row,
                    ByLength<T>* byLength, int firstTwin) {
    const auto [length, fixed] = row;
    ListedKernel k;
    k.family = "orvg" + name + "_" + type;
    k.length = length;
    k.name = kernelgen::memberName(k.family, length);
    k.single = contains(type, "32");
    k.complex = contains(type, "c");
    const auto untyped = [](Function<T>* function) {
        return [function](const void* src, void* dst, std::int32_t flag) {
            return function(static_cast<const T*>(src), static_cast<T*>(dst), flag);
        };
    };
    k.call = untyped(fixed);
    k.dispatch = [byLength, length = length](const void* src, void* dst, std::int32_t flag) {
        return byLength(static_cast<const T*>(src), static_cast<T*>(dst), length, flag);
    };
    k.plainKernel = reinterpret_cast<PlainFunction>(fixed);
    k.plainDispatcher = reinterpret_cast<PlainFunction>(byLength);
    if (length >= firstTwin) {
        k.twinName = "owng" + k.name.substr(4) + "_unaligned";
        k.plainTwin = loadedFunction(k.twinName);
        k.twin = untyped(reinterpret_cast<Function<T>*>(k.plainTwin));
    }
    k.twoBodies = type == "64fc" && length < firstTwin;
    describeBuffers(k);
    return k;
}

std::vector<ListedKernel> makeList() {
    std::vector<ListedKernel> list;
#define MEMBER(NAME, N, T) {N, orvg##NAME##_##N##_##T},
#define FAMILY(NAME, T, LIST)                                                                      \
    {                                                                                              \
        static constexpr Row<Orv##T> rows[] = {LIST(MEMBER, NAME, T)};                             \
        for (const auto& row : rows)                                                               \
            list.push_back(listed<Orv##T>(#NAME, #T, row, orvg##NAME##_##T, firstTwinLength_##T)); \
    }
    ORVGEN_LENGTH_FAMILIES(FAMILY)
#undef FAMILY
#undef MEMBER
    return list;
}

}  // namespace

kernelgen::Kernel ListedKernel::kernel() const {
    static const std::vector<kernelgen::Family> families = generator::allFamilies();
    for (const kernelgen::Family& f : families)
        if (f.name == family) return f.kernel(length);
    throw std::runtime_error("no flow for " + name);
}

double ListedKernel::scale(std::int32_t flag) const {
    using kernelgen::ScaleKind;
    const bool inverse = contains(family, "Inv");
    const bool hartley = contains(family, "Hartley");
    ScaleKind kind = ScaleKind::None;
    if (flag == orvScaleBySqrtN) kind = ScaleKind::BySqrtN;
    if (flag == orvScaleFwdByN && !inverse) kind = ScaleKind::ByN;
    if (flag == orvScaleInvByN && (inverse || hartley)) kind = ScaleKind::ByN;
    return kernelgen::storedScale(kind, length, single);
}

const std::vector<ListedKernel>& listedKernels() {
    static const std::vector<ListedKernel> list = makeList();
    return list;
}

}  // namespace orvgen::test
