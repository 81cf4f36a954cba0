// SPDX-License-Identifier: MIT
// A multicarrier link (OFDM): random bits on 52 of 64 carriers, through a channel of several paths
// with white noise, and back to bits.
//
// The sender puts one point of a constellation on each carrier, takes an inverse transform and
// repeats the symbol's end in front of it (the cyclic prefix). As long as the prefix outlasts the
// echoes, the channel acts on the 64 samples behind it as a cyclic convolution: after the forward
// transform every carrier has just been multiplied by one number. The receiver learns these numbers
// from known training symbols and divides by them (the one-tap equaliser).
//
// Both transforms scale by 1/sqrt(64), so a point's energy and the noise's are the same in samples
// and on carriers.

#ifndef OFDM_LINK_H
#define OFDM_LINK_H

#include <array>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

using Complex = std::complex<float>;

constexpr std::size_t points = 64;    // samples of a symbol, and bins of its transform
constexpr std::size_t prefix = 16;    // samples repeated in front of it
constexpr std::size_t carriers = 52;  // bins in use: 1 to 26 on either side of the middle one
constexpr std::size_t training = 4;   // known symbols that begin a frame
constexpr std::size_t frame = 40;     // symbols of data that follow them, at most

// The carrier's number, -26 to 26 without 0, and its bin.
constexpr int carrierNumber(std::size_t c) {
    return c < carriers / 2 ? static_cast<int>(c) - 26 : static_cast<int>(c) - 25;
}
constexpr std::size_t carrierBin(std::size_t c) {
    return static_cast<std::size_t>(carrierNumber(c) + 64) % points;
}

struct Settings {
    int bits = 4;  // a carrier and symbol: 2 (QPSK) or 4 (16-QAM)
    std::optional<double> snr =
        20;                      // decibels, a point's mean energy to the noise's; none: no noise
    std::size_t symbols = 4000;  // of data
    std::uint64_t seed = 1;
};

// Bit error rates that theory gives for Gray-coded bits.
struct Theory {
    double flat = 0;                           // one path only
    double known = 0;                          // this channel, known exactly
    double estimated = 0;                      // this channel, as known from the training symbols
    std::array<double, carriers> byCarrier{};  // the last one, taken apart
};

struct Outcome {
    std::size_t sent = 0, wrong = 0;  // bits
    std::array<std::size_t, carriers> wrongByCarrier{};
    double errorVector = 0;  // root mean square, relative to the constellation's
    std::array<std::complex<double>, carriers> channel{};  // as it is
    std::array<Complex, carriers> estimate{};              // as the first frame saw it
    std::vector<Complex> before, after;  // the equaliser: points of the data, by symbol and carrier
    Theory theory;

    double rate() const { return static_cast<double>(wrong) / static_cast<double>(sent); }
};

Outcome runLink(const Settings& settings);

#endif
