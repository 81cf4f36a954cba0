// SPDX-License-Identifier: MIT
// The kernels as passes over memory.
#include <string>

#include "wht/families.h"
#include "wht/passes.h"

namespace orvgen::wht {

namespace {

using kernelgen::Base;
using kernelgen::Kernel;
using kernelgen::Passes;

constexpr int kVectorBytes = 16;
constexpr int kTileBlocks = 8;

std::string number(long n) { return std::to_string(n); }

// The passes over the points of one kernel.
class Arrangement {
  public:
    Arrangement(Element element, int order)
        : element_(element), cut_(cutOf(element, order)), points_(1L << order) {
        passes_.bufferBytes = bufferBytes(element, order);
        if (isScalar(element, order)) {
            passes_.last = inForms(scalarPass(element, order));
        } else if (cut_.passes() == 1) {
            Pass block = blockPass(element, cut_.layers[0]);
            block.scale = ScaleFrom::Spread;
            passes_.last = inForms(block);
        } else {
            cutInPasses();
        }
    }

    Passes passes() { return std::move(passes_); }

  private:
    void cutInPasses() {
        const bool tiled = cut_.passes() == 3;
        const long blockPoints = 1L << cut_.layers[0];
        const long tilePoints = blockPoints << (tiled ? cut_.layers[1] : 0);
        const long blocks = tiled ? kTileBlocks : points_ / blockPoints;
        Pass first = blockPass(element_, cut_.layers[0]);
        first.to = tiled ? Base::Tile : Base::Buffer;
        passes_.tile = {loop(first, "blocks", blocks, blockPoints * bytesOf(element_),
                             number(blocks) + " blocks of " + number(blockPoints))};
        if (tiled) {
            passes_.tiles = static_cast<int>(points_ / tilePoints);
            passes_.tileBytes = static_cast<int>(tilePoints) * bytesOf(element_);
            passes_.scratchAt = static_cast<int>(points_) * bytesOf(element_);
            passes_.tile.push_back(
                columns("columns", blockPoints, cut_.layers[1], Base::Tile, Base::Buffer));
        }
        passes_.last =
            columns("last", tilePoints, cut_.layers[tiled ? 2 : 1], Base::Buffer, Base::Dst);
    }

    kernelgen::Pass columns(const std::string& name, long stride, int layers, Base from,
                            Base to) const {
        int firstLayer = 0;
        while (1L << firstLayer < stride) ++firstLayer;
        Pass pass = columnPass(element_, layers, firstLayer);
        pass.from = from;
        pass.to = to;
        if (to == Base::Dst) pass.scale = ScaleFrom::Parked;
        const long steps = stride * bytesOf(element_) / kVectorBytes;
        return loop(pass, name, steps, kVectorBytes,
                    number(steps) + " steps of radix " + number(1 << layers) + " at stride " +
                        number(stride));
    }

    static kernelgen::Pass loop(const Pass& pass, const std::string& name, long trips, long advance,
                                const std::string& what) {
        kernelgen::Pass result = inForms(pass);
        result.name = name;
        result.trips = static_cast<int>(trips);
        result.advance = static_cast<int>(advance);
        result.what = "layers " + number(pass.firstLayer) + " to " +
                      number(pass.firstLayer + pass.layers() - 1) + ": " + what;
        return result;
    }

    Element element_;
    const Cut& cut_;
    long points_;
    Passes passes_;
};

// "passes of 6, 3, 4 layers"
std::string passesOf(const Cut& cut) {
    std::string text = cut.passes() == 1 ? "one pass of " : "passes of ";
    for (int i = 0; i < cut.passes(); ++i) text += (i > 0 ? ", " : "") + number(cut.layers[i]);
    return text + (cut.order() == 1 ? " layer" : " layers");
}

Kernel kernel(const FamilyInfo& family, int order) {
    const Element element = family.isSingle() ? Element::F32 : Element::F64;
    const long n = 1L << order;
    Kernel k = kernelOf(family, order,
                        passesOf(cutOf(element, order)) + ": " + number(n * order) +
                            " additions, " + number(n) + " multiplications",
                        kernelgen::Graph(family.isSingle() ? kernelgen::Arithmetic::Single
                                                           : kernelgen::Arithmetic::Double));
    k.passes = Arrangement(element, order).passes();
    return k;
}

}  // namespace

std::vector<KernelFamily> walshHadamardFamilies() {
    std::vector<KernelFamily> families;
    for (const FamilyInfo& f : kFamilies)
        if (f.transform == Transform::WalshHadamard)
            families.push_back({&f, [&f](int order) { return kernel(f, order); }});
    return families;
}

}  // namespace orvgen::wht
