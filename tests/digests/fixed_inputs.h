// SPDX-License-Identifier: MIT
// The inputs of the digests: the same bits wherever they are made.
#pragma once

#include <cstddef>
#include <vector>

namespace orvgen::test {

enum class InputKind { Normal, Wide, Denormal, Zeros, NotFinite };

inline constexpr InputKind inputKinds[] = {InputKind::Normal, InputKind::Wide, InputKind::Denormal,
                                           InputKind::Zeros, InputKind::NotFinite};

// How many inputs there are of a kind.
int inputCount(InputKind kind);

// The first `count` reals of input `number`.
template <class Real>
std::vector<Real> fixedInput(InputKind kind, int number, std::size_t count);

extern template std::vector<float> fixedInput<float>(InputKind, int, std::size_t);
extern template std::vector<double> fixedInput<double>(InputKind, int, std::size_t);

}  // namespace orvgen::test
