// SPDX-License-Identifier: MIT
#include "kernel_list.h"

#include <stdexcept>

#include "frame/names.h"
#include "generator/registry.h"
#include "kernelgen/compile.h"

namespace orvgen::test {

namespace {

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
ListedKernel listed(const FamilyInfo& family, const Row<T>& row, ByLength<T>* byLength) {
    const auto [length, fixed] = row;
    ListedKernel k;
    k.info = &family;
    k.family = nameOf(family);
    k.length = length;
    k.name = memberName(family, length);
    k.single = family.isSingle();
    k.complex = family.isComplex();
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
    if (family.hasTwin(length)) {
        k.twinName = twinName(family, length);
        k.plainTwin = loadedFunction(k.twinName);
        k.twin = untyped(reinterpret_cast<Function<T>*>(k.plainTwin));
    }
    k.srcCount = static_cast<std::size_t>(family.srcReals(length));
    k.dstCount = static_cast<std::size_t>(family.dstReals(length));
    k.srcBeyond = static_cast<std::size_t>(family.behindSrc.bytesOf(length) / family.realBytes());
    // The imaginary parts of the bins that are real.
    if (family.src == Layout::Ccs) {
        k.neverRead = {1};
        if (length % 2 == 0) k.neverRead.push_back(k.srcCount - 1);
    }
    return k;
}

std::vector<ListedKernel> makeList() {
    std::vector<ListedKernel> list;
#define MEMBER(NAME, N, T) {N, orvg##NAME##_##N##_##T},
#define FAMILY(NAME, T, LIST)                                                           \
    {                                                                                   \
        static constexpr Row<Orv##T> rows[] = {LIST(MEMBER, NAME, T)};                  \
        for (const auto& row : rows)                                                    \
            list.push_back(listed<Orv##T>(familyOf(#NAME, #T), row, orvg##NAME##_##T)); \
    }
    ORVGEN_LENGTH_FAMILIES(FAMILY)
#undef FAMILY
#undef MEMBER
    return list;
}

}  // namespace

kernelgen::Kernel ListedKernel::kernel() const {
    static const std::vector<KernelFamily> families = generator::allFamilies();
    for (const KernelFamily& f : families)
        if (f.info == info) return f.kernel(length);
    throw std::runtime_error("no flow for " + name);
}

double ListedKernel::scale(std::int32_t flag) const {
    using kernelgen::ScaleKind;
    const bool byN = (flag == orvScaleFwdByN && info->scale != ScaleRule::InverseByN) ||
                     (flag == orvScaleInvByN && info->scale != ScaleRule::ForwardByN);
    const ScaleKind kind = flag == orvScaleBySqrtN ? ScaleKind::BySqrtN
                           : byN                   ? ScaleKind::ByN
                                                   : ScaleKind::None;
    return kernelgen::storedScale(kind, length, single);
}

const std::vector<ListedKernel>& listedKernels() {
    static const std::vector<ListedKernel> list = makeList();
    return list;
}

}  // namespace orvgen::test
