// SPDX-License-Identifier: MIT
// Numbers of about 75 decimal digits, for constants and proofs. Apart from constant.h, because few
// files compute with them and the header is large.
#pragma once

#include <boost/multiprecision/cpp_bin_float.hpp>

namespace orvgen::kernelgen {

using Real = boost::multiprecision::number<
    boost::multiprecision::cpp_bin_float<256, boost::multiprecision::digit_base_2>,
    boost::multiprecision::et_off>;

// The exact value of a Constant.
struct ExactReal {
    Real value;
};

}  // namespace orvgen::kernelgen
