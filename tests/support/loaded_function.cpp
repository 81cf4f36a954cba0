// SPDX-License-Identifier: MIT
#include "support/loaded_function.h"

#include <dlfcn.h>

#include <cstdint>
#include <stdexcept>

#include "support/elf_image.h"

namespace orvgen::test {
namespace {

struct Loaded {
    ElfImage image;
    std::uintptr_t base;
};

Loaded loaded() {
    void* const function = dlsym(RTLD_DEFAULT, "orvgenGetLibVersion");
    Dl_info mapped{};
    if (function == nullptr || dladdr(function, &mapped) == 0)
        throw std::runtime_error("the program runs without the shared library");
    return {ElfImage(mapped.dli_fname), reinterpret_cast<std::uintptr_t>(mapped.dli_fbase)};
}

}  // namespace

PlainFunction loadedFunction(const std::string& name) {
    static const Loaded library = loaded();
    const Symbol* const symbol = library.image.find(name);
    if (symbol == nullptr || !symbol->function) throw std::runtime_error("no function " + name);
    return reinterpret_cast<PlainFunction>(library.base + symbol->address);
}

}  // namespace orvgen::test
