// SPDX-License-Identifier: MIT
// A build of the library, loaded at run time: the file as built, or a copy of it.
//
// A copy stands on other pages of memory, and where the pages stand can matter more than the code:
// on a virtual machine one kernel in a thousand or so missed the instruction cache at each of its
// lines, in every run, until the file was written anew.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace orvgen::bench {

class KernelLibrary {
  public:
    static KernelLibrary asBuilt(const std::filesystem::path& file);
    static KernelLibrary copy(const std::filesystem::path& file);  // gone once it is loaded

    template <class Function>
    Function* function(const std::string& name) const {
        return reinterpret_cast<Function*>(find(name));
    }

  private:
    explicit KernelLibrary(const std::filesystem::path& file);
    void* find(const std::string& name) const;

    std::shared_ptr<void> handle;
};

}  // namespace orvgen::bench
