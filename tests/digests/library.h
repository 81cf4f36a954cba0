// SPDX-License-Identifier: MIT
// A build of the library, loaded from its file, and what it transforms, by the lists of the public
// header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace orvgen::test {

// Stays loaded.
class LoadedLibrary {
  public:
    explicit LoadedLibrary(const std::string& file);

    template <class Function>
    Function* function(const std::string& name) const {
        return reinterpret_cast<Function*>(find(name));
    }

  private:
    void* handle;
    void* find(const std::string& name) const;
};

using TransformCall = std::function<std::int32_t(const void* src, void* dst, std::int32_t flag)>;

// One function at one length.
struct Transform {
    bool single = true;
    std::size_t reals = 0;  // as many as src or dst may have
    TransformCall call;
    std::vector<std::int32_t> flags = {8, 1, 2, 4};
};

struct Member {
    std::string name;
    Transform itself;
    Transform byNumber;  // the same through the family's function
};

struct Family {
    std::string name;  // orvgDFTFwd_CToC_32fc: the function that takes the length
    std::vector<Member> members;
    // The function that takes the length, without buffers.
    std::function<std::int32_t(std::int32_t number)> statusOf;
    std::string sizeQuery;  // of Walsh-Hadamard buffers; empty: none
};

std::vector<std::string> familyNames();
Family family(const LoadedLibrary& library, const std::string& name);

}  // namespace orvgen::test
