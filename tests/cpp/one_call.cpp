// SPDX-License-Identifier: MIT
// Compiled, not run: each of these functions shall be a jump to the function that the transform
// stands for, with its arguments and nothing else. The names behind `is_` are those of the targets.
#include <array>
#include <complex>
#include <orvgen.hpp>
#include <span>

using namespace orvgen;
using Complex = std::complex<float>;

extern "C" {

Status is_orvgDFTFwd_CToC_64_32fc(const Complex (&in)[64], Complex (&out)[64]) {
    return fft<64>(in, out, Scale::none);
}
Status is_orvgDFTInv_CToC_17_64fc(std::span<const Orv64fc, 17> in,
                                  std::span<std::complex<double>, 17> out) {
    return ifft(in, out, Scale::invByN);
}
Status is_orvgDFTFwd_CToC_47_32fc(const std::array<Complex, 48>& in, std::array<Complex, 47>& out) {
    return fft<47>(in, out, Scale::none);
}
Status is_orvgDFTFwd_RToCCS_24_64f(const std::array<double, 24>& x,
                                   std::array<std::complex<double>, 13>& X) {
    return rfft<24>(x, Ccs<double, 24>(X), Scale::fwdByN);
}
Status is_orvgDFTInv_PackToR_9_32f(Pack<const float, 9> X, std::array<float, 9>& x) {
    return irfft(X, x, Scale::none);
}
Status is_orvgHartley_33_32f(const std::array<float, 33>& x, std::array<float, 33>& y) {
    return hartley(x, y, Scale::bySqrtN);
}
Status is_orvgWHT_7_64f(const std::array<double, 128>& x, std::array<double, 128>& y) {
    return wht<Order{7}>(x, y, Scale::none);
}

}  // extern "C"
