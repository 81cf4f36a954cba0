// SPDX-License-Identifier: MIT
// The round trip through MDCT coefficients: what comes back, what is kept of it, what is drawn.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>

#include "../common/test_files.h"
#include "picture.h"
#include "round_trip.h"

namespace {

constexpr int rate = 8000;

RoundTrip tripOf(const std::vector<Samples32>& channels, std::size_t size) {
    const TemporaryFolder folder;
    Recording recording(writeWav(folder.file("recording.wav"), rate, channels));
    return roundTrip(recording, size, [](double) {});
}

TEST(RoundTrip, GivesEverySampleBackAtEveryLength) {
    for (const std::size_t count : {1U, 3U, 63U, 64U, 65U, 128U, 16384U, 16385U, 40000U}) {
        const RoundTrip trip = tripOf({sine(rate, count, 440, 0.8)}, 64);
        EXPECT_EQ(trip.samples.count(), count);
        EXPECT_EQ(trip.blocks, static_cast<std::int64_t>((count + 63) / 64 + 1));
        EXPECT_LT(trip.single.largest, 1e-6);
        EXPECT_LT(trip.twice.largest, 1e-14);
    }
}

TEST(RoundTrip, TakesEachChannelByItself) {
    const Samples32 tone = sine(rate, 5000, 440, 0.5);
    Samples32 inverted = tone;
    for (float& x : inverted) x = -x;
    const RoundTrip trip = tripOf({tone, inverted}, 64);
    EXPECT_NEAR(trip.peak, 0.5, 1e-3);
    double energy = 0;
    for (const float x : tone) energy += 2 * static_cast<double>(x) * static_cast<double>(x);
    EXPECT_NEAR(trip.single.signal, energy, 1e-9 * energy);
    EXPECT_GT(trip.single.decibels(), 120);
}

TEST(RoundTrip, NeedsNoMoreMemoryForALongRecording) {
    const TemporaryFolder folder;
    const std::string path = writeWav(folder.file("long.wav"), rate, {Samples32(4'800'000, 0.25F)});
    const auto resident = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;  // kilobytes, the most so far
    };
    // What making the file took counts as used already; so the trip is made in a child.
    const auto trip = [&](const std::string& file) {
        Recording recording(file);
        const long before = resident();
        roundTrip(recording, 1024, [](double) {});
        return resident() - before;
    };
    EXPECT_EXIT(std::_Exit(trip(path) < 16000 ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST(MdctPicture, ATonesDarkRowIsAtItsHeightAndItsTime) {
    const TemporaryFolder folder;
    const std::string path = folder.file("tone.png");
    // Three quarters up the band, in the last third of the time.
    Samples32 samples = sine(rate, 36000, 3000, 0.5);
    std::fill(samples.begin(), samples.begin() + 24000, 0.0F);
    const RoundTrip trip = tripOf({samples}, 256);
    writePicture({"A tone", "", rate, trip}, path);
    const Pixels pixels(path);
    const Box& box = layout::levels;
    const double row = box.y + box.h / 4;
    EXPECT_LT(pixels.brightness(box.x + box.w * 5 / 6, row), 0.3);
    EXPECT_GT(pixels.brightness(box.x + box.w / 3, row), 0.95);
    EXPECT_GT(pixels.brightness(box.x + box.w * 5 / 6, box.y + box.h * 3 / 4), 0.95);
}

}  // namespace
