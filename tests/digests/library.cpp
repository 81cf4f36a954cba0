// SPDX-License-Identifier: MIT
#include "digests/library.h"

#include <dlfcn.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <type_traits>

#include "orvgen.h"

namespace orvgen::test {
namespace {

struct Listed {
    std::string base, type;
    bool single, complex, order;
    std::vector<int> numbers;

    std::string name() const { return base + "_" + type; }
    std::string member(int n) const { return base + "_" + std::to_string(n) + "_" + type; }
};

template <class T>
constexpr bool isSingle = std::is_same_v<T, Orv32f> || std::is_same_v<T, Orv32fc>;
template <class T>
constexpr bool isComplex = std::is_same_v<T, Orv32fc> || std::is_same_v<T, Orv64fc>;

std::vector<Listed> listedFamilies() {
    std::vector<Listed> list;
#define ORVGEN_TEST_NUMBER(NAME, N, T) N,
#define ORVGEN_TEST_FAMILY(NAME, T, LIST, ORDER) \
    list.push_back({"orvg" #NAME,                \
                    #T,                          \
                    isSingle<Orv##T>,            \
                    isComplex<Orv##T>,           \
                    ORDER,                       \
                    {LIST(ORVGEN_TEST_NUMBER, NAME, T)}});
#define ORVGEN_TEST_LENGTHS(NAME, T, LIST) ORVGEN_TEST_FAMILY(NAME, T, LIST, false)
#define ORVGEN_TEST_ORDERS(NAME, T, LIST) ORVGEN_TEST_FAMILY(NAME, T, LIST, true)
    ORVGEN_LENGTH_FAMILIES(ORVGEN_TEST_LENGTHS)
    ORVGEN_ORDER_FAMILIES(ORVGEN_TEST_ORDERS)
#undef ORVGEN_TEST_ORDERS
#undef ORVGEN_TEST_LENGTHS
#undef ORVGEN_TEST_FAMILY
#undef ORVGEN_TEST_NUMBER
    return list;
}

using OfLength = OrvStatus(const void*, void*, std::int32_t flag);
using ByLength = OrvStatus(const void*, void*, std::int32_t length, std::int32_t flag);
using OfOrder = OrvStatus(const void*, void*, std::int32_t flag, std::uint8_t* buffer);
using ByOrder = OrvStatus(const void*, void*, std::int32_t order, std::int32_t flag,
                          std::uint8_t* buffer);
using SizeQuery = OrvStatus(std::int32_t order, std::int32_t* size);

Family ofLengths(const LoadedLibrary& library, const Listed& f) {
    auto* byLength = library.function<ByLength>(f.name());
    Family family;
    family.name = f.name();
    family.statusOf = [byLength](std::int32_t n) { return byLength(nullptr, nullptr, n, 8); };
    for (const int n : f.numbers) {
        // Real layouts hold up to two elements more than there are samples.
        const auto points = static_cast<std::size_t>(n);
        const std::size_t reals = f.complex ? 2 * points : points + 2;
        const TransformCall through = [byLength, n](const void* src, void* dst, std::int32_t flag) {
            return byLength(src, dst, n, flag);
        };
        family.members.push_back({f.member(n),
                                  {f.single, reals, library.function<OfLength>(f.member(n))},
                                  {f.single, reals, through}});
    }
    return family;
}

Family ofOrders(const LoadedLibrary& library, const Listed& f) {
    auto* byOrder = library.function<ByOrder>(f.name());
    Family family;
    family.name = f.name();
    family.sizeQuery = f.base + "GetBufferSize_" + f.type;
    family.statusOf = [byOrder](std::int32_t order) {
        return byOrder(nullptr, nullptr, order, 8, nullptr);
    };
    for (const int order : f.numbers) {
        std::int32_t bytes = 0;
        library.function<SizeQuery>(family.sizeQuery)(order, &bytes);
        const std::size_t blocks = static_cast<std::size_t>(bytes) / 64 + 1;
        const std::shared_ptr<void> buffer(std::aligned_alloc(64, 64 * blocks), std::free);
        auto* const ofOrder = library.function<OfOrder>(f.member(order));
        const TransformCall itself = [=](const void* src, void* dst, std::int32_t flag) {
            return ofOrder(src, dst, flag, static_cast<std::uint8_t*>(buffer.get()));
        };
        const TransformCall through = [=](const void* src, void* dst, std::int32_t flag) {
            return byOrder(src, dst, order, flag, nullptr);
        };
        const std::size_t reals = std::size_t{1} << order;
        family.members.push_back(
            {f.member(order), {f.single, reals, itself}, {f.single, reals, through}});
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
    for (const Listed& f : listedFamilies()) names.push_back(f.name());
    return names;
}

Family family(const LoadedLibrary& library, const std::string& name) {
    for (const Listed& f : listedFamilies()) {
        if (f.name() == name) return f.order ? ofOrders(library, f) : ofLengths(library, f);
    }
    throw std::invalid_argument(name);
}

}  // namespace orvgen::test
