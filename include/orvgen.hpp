// SPDX-License-Identifier: MIT
// orvgen in C++20: the functions of orvgen.h behind types that a compiler can check.
//
//     #include <orvgen.hpp>
//
//     std::array<std::complex<float>, 64> x, y;                             // fill x
//     orvgen::Status s = orvgen::fft<64>(x, y, orvgen::Scale::none);        // one call, no more
//     s = orvgen::fft(x, y, orvgen::Length{64}, orvgen::Scale::fwdByN);     // length at run time
//     if (s != orvgen::Status::ok) std::puts(orvgen::statusText(s));
//
// Header only: link what orvgen.h asks for. Definitions, scales, layouts, alignment, aliasing and
// threads are those of orvgen.h; nothing here computes. What it adds:
//
// - Lengths, orders and scales are types of their own, which cannot be swapped (orvgen/values.hpp).
// - Arrays are anything that std::span takes: C arrays, std::array, std::vector, spans. The
//   extents are checked, fixed ones when the program is compiled, others by the call, which then
//   gives Status::errExtent and writes nothing. std::complex and Orv32fc, Orv64fc are all welcome.
// - Half spectra are views that know their layout: Ccs, Pack, Perm (orvgen/half_spectrum.hpp).
// - Walsh-Hadamard scratch memory and DCT-IV plans are objects that give back what they own.
// - At 47 and 59 points, where the complex binary32 kernels read one element behind their source,
//   a source of exactly that extent is copied first (orvgen/transforms.hpp tells how to avoid it).
//
// With extents and length known to the compiler a transform is one call of the length's function.
// Nothing here throws; <orvgen/check.hpp>, which has to be asked for, turns statuses into
// exceptions. Arrays of transforms: <orvgen_batch.hpp>, which needs the batch library.
#ifndef ORVGEN_HPP
#define ORVGEN_HPP

#include <orvgen/dct4.hpp>
#include <orvgen/half_spectrum.hpp>
#include <orvgen/transforms.hpp>
#include <orvgen/values.hpp>
#include <orvgen/wht.hpp>

#endif
