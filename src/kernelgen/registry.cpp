#include "registry.h"

namespace orvgen::kernelgen {

std::vector<Family> allFamilies() {
    std::vector<Family> all;
    return all;
}

}  // namespace orvgen::kernelgen
