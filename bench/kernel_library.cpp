// SPDX-License-Identifier: MIT
#include "kernel_library.h"

#include <dlfcn.h>
#include <stdlib.h>

#include <stdexcept>

namespace orvgen::bench {

KernelLibrary::KernelLibrary(const std::filesystem::path& file)
    : handle(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL), [](void* h) {
          if (h) dlclose(h);
      }) {
    if (!handle) throw std::runtime_error(dlerror());
}

KernelLibrary KernelLibrary::asBuilt(const std::filesystem::path& file) {
    return KernelLibrary(file);
}

KernelLibrary KernelLibrary::copy(const std::filesystem::path& file) {
    namespace fs = std::filesystem;
    std::string folder = (fs::temp_directory_path() / "bench-XXXXXX").string();
    if (!mkdtemp(folder.data())) throw std::runtime_error("cannot make " + folder);
    const std::shared_ptr<void> remove(nullptr, [&](void*) { fs::remove_all(folder); });
    const fs::path copied = fs::path(folder) / file.filename();
    fs::copy_file(file, copied);
    return KernelLibrary(copied);
}

void* KernelLibrary::find(const std::string& name) const {
    void* symbol = dlsym(handle.get(), name.c_str());
    if (!symbol) throw std::runtime_error("no function " + name);
    return symbol;
}

}  // namespace orvgen::bench
