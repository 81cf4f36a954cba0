// SPDX-License-Identifier: MIT
// The instructions of one pass: one block of neighbouring elements, or one step of a column pass.
#pragma once

#include "kernelgen/passes.h"
#include "wht/arrangement.h"

namespace orvgen::wht {

// What a pass multiplies its results by, and where it finds it.
enum class ScaleFrom : std::uint8_t {
    None,    // results are intermediates
    Scalar,  // the scalar constant, in scalar bodies
    Spread,  // the scalar constant, spread over a vector by the body
    Parked,  // a vector that has been spread before the pass
};

// A body takes `2^rows` vectors (scalar bodies: elements) that lie `spacing` bytes apart, and puts
// its results at the same places of another array.
struct Pass {
    Element element = Element::F32;
    bool scalar = false;
    bool block = true;  // the rows are neighbours: the layers between lanes are done as well
    int rows = 0;       // log2
    int spacing = 16;
    kernelgen::Base from = kernelgen::Base::Src;
    kernelgen::Base to = kernelgen::Base::Dst;
    ScaleFrom scale = ScaleFrom::None;
    int firstLayer = 0;  // for the comments

    int layers() const;  // that the pass does
};

// A block of 2^layers neighbouring elements, in vectors.
Pass blockPass(Element element, int layers);
// A step of 2^layers rows, `stride` elements apart.
Pass columnPass(Element element, int layers, int firstLayer);
// 2^layers elements one by one.
Pass scalarPass(Element element, int layers);

// The pass as code, in one form for each way to part its rows: they are done in two stages, groups
// of 2^split rows that follow one another, then what is left of the layers across the groups. The
// split changes the order of instructions and nothing else.
kernelgen::Pass inForms(const Pass& pass);

}  // namespace orvgen::wht
