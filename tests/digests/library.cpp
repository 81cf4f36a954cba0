// SPDX-License-Identifier: MIT
#include "digests/library.h"

#include <dlfcn.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "frame/names.h"

namespace orvgen::test {
namespace {

using OfLength = OrvStatus(const void*, void*, std::int32_t flag);
using ByLength = OrvStatus(const void*, void*, std::int32_t length, std::int32_t flag);
using OfOrder = OrvStatus(const void*, void*, std::int32_t flag, std::uint8_t* buffer);
using ByOrder = OrvStatus(const void*, void*, std::int32_t order, std::int32_t flag,
                          std::uint8_t* buffer);
using SizeQuery = OrvStatus(std::int32_t order, std::int32_t* size);

Family ofLengths(const LoadedLibrary& library, const FamilyInfo& f) {
    auto* byLength = library.function<ByLength>(nameOf(f));
    Family family;
    family.name = nameOf(f);
    family.statusOf = [byLength](std::int32_t n) { return byLength(nullptr, nullptr, n, 8); };
    for (const int n : f.numbers) {
        // Real layouts hold up to two elements more than there are samples.
        const auto points = static_cast<std::size_t>(n);
        const std::size_t reals = f.isComplex() ? 2 * points : points + 2;
        const TransformCall through = [byLength, n](const void* src, void* dst, std::int32_t flag) {
            return byLength(src, dst, n, flag);
        };
        family.members.push_back(
            {memberName(f, n),
             {f.isSingle(), reals, library.function<OfLength>(memberName(f, n))},
             {f.isSingle(), reals, through}});
    }
    return family;
}

Family ofOrders(const LoadedLibrary& library, const FamilyInfo& f) {
    auto* byOrder = library.function<ByOrder>(nameOf(f));
    Family family;
    family.name = nameOf(f);
    family.sizeQuery = "orvg" + std::string(f.name) + "GetBufferSize_" + std::string(f.element);
    family.statusOf = [byOrder](std::int32_t order) {
        return byOrder(nullptr, nullptr, order, 8, nullptr);
    };
    for (const int order : f.numbers) {
        std::int32_t bytes = 0;
        library.function<SizeQuery>(family.sizeQuery)(order, &bytes);
        const std::size_t blocks = static_cast<std::size_t>(bytes) / 64 + 1;
        const std::shared_ptr<void> buffer(std::aligned_alloc(64, 64 * blocks), std::free);
        auto* const ofOrder = library.function<OfOrder>(memberName(f, order));
        const TransformCall itself = [=](const void* src, void* dst, std::int32_t flag) {
            return ofOrder(src, dst, flag, static_cast<std::uint8_t*>(buffer.get()));
        };
        const TransformCall through = [=](const void* src, void* dst, std::int32_t flag) {
            return byOrder(src, dst, order, flag, nullptr);
        };
        const std::size_t reals = std::size_t{1} << order;
        family.members.push_back(
            {memberName(f, order), {f.isSingle(), reals, itself}, {f.isSingle(), reals, through}});
    }
    return family;
}

}  // namespace

LoadedLibrary::LoadedLibrary(const std::string& file)
    : handle(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr) throw std::runtime_error(dlerror());
}

void* LoadedLibrary::find(const std::string& name) const {
    void* const address = dlsym(handle, name.c_str());
    if (address == nullptr) throw std::runtime_error(dlerror());
    return address;
}

std::vector<std::string> familyNames() {
    std::vector<std::string> names;
    for (const FamilyInfo& f : kFamilies)
        if (f.hasKernels()) names.push_back(nameOf(f));
    return names;
}

Family family(const LoadedLibrary& library, const std::string& name) {
    for (const FamilyInfo& f : kFamilies) {
        if (!f.hasKernels() || nameOf(f) != name) continue;
        return f.byOrder ? ofOrders(library, f) : ofLengths(library, f);
    }
    throw std::invalid_argument(name);
}

}  // namespace orvgen::test
