// SPDX-License-Identifier: MIT
#include "batch/evaluated_library.h"

#include <dlfcn.h>

#include <stdexcept>

#include "support/elf_image.h"

namespace orvgen::test::batch {
namespace {

template <class F>
const void* addressOf(F* function) {
    return reinterpret_cast<const void*>(function);
}

// The file that this program runs with, and how far from where it says things stand here.
struct Loaded {
    explicit Loaded(const Dl_info& mapped)
        : file(mapped.dli_fname), base(reinterpret_cast<std::uint64_t>(mapped.dli_fbase)) {}
    ElfImage file;
    std::uint64_t base;

    EvaluatedLibrary::Function at(const Symbol& s) const {
        return {s.name, reinterpret_cast<const void*>(base + s.address), s.size};
    }
};
const Loaded& loaded() {
    static const Loaded library = [] {
        Dl_info mapped{};
        if (dladdr(addressOf(orvgBatchTargets), &mapped) == 0)
            throw std::runtime_error("the program runs without the batch library");
        return Loaded(mapped);
    }();
    return library;
}
const Symbol& symbol(const std::string& name) {
    const Symbol* const found = loaded().file.find(name);
    if (found == nullptr) throw std::runtime_error("the batch library has no " + name);
    return *found;
}

}  // namespace

std::vector<EvaluatedLibrary::Function> EvaluatedLibrary::functions() {
    std::vector<Function> list;
    for (const Symbol& s : loaded().file.symbols())
        if (s.function && s.size > 0) list.push_back(loaded().at(s));
    return list;
}
EvaluatedLibrary::Function EvaluatedLibrary::function(const std::string& name) {
    return loaded().at(symbol(name));
}

EvaluatedLibrary::EvaluatedLibrary(const evaluator::Features& features)
    : processor_(addressOf(orvgBatchTargets), features),
      word_(reinterpret_cast<std::uint32_t*>(loaded().base +
                                             symbol("_ZN6orvgen5batch11targetStateE").address)) {}

EvaluatedLibrary::~EvaluatedLibrary() {
    if (isInside_) *word_ = before_;
}

std::uint64_t EvaluatedLibrary::call(const void* function,
                                     std::span<const std::uint64_t> arguments) {
    if (!isInside_) before_ = *word_;
    isInside_ = true;
    *word_ = own_;
    const std::uint64_t result = processor_.call(function, arguments);
    own_ = *word_;
    *word_ = before_;
    isInside_ = false;
    return result;
}

std::uint32_t EvaluatedLibrary::targets() {
    return static_cast<std::uint32_t>(call(addressOf(orvgBatchTargets), {}));
}
OrvStatus EvaluatedLibrary::use(std::uint32_t target) {
    const std::uint64_t argument = target;
    return static_cast<OrvStatus>(call(addressOf(orvgBatchUse), {&argument, 1}));
}

evaluator::Features featuresFor(std::uint32_t target) {
    const bool isWidest = target == orvTargetAVX512;
    return {.hasAvx = true, .hasAvx2 = true, .hasAvx512 = isWidest};
}

}  // namespace orvgen::test::batch
