// SPDX-License-Identifier: MIT
// What the spectrogram shows of recordings whose content is known.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "../common/test_files.h"
#include "bad_input.h"
#include "picture.h"
#include "spectrum.h"

namespace {

constexpr int rate = 8000;
constexpr int binHz = rate / Spectrogram::points;

Spectrogram spectrogramOf(const std::vector<Samples32>& channels,
                          std::optional<double> band = std::nullopt) {
    const TemporaryFolder folder;
    Recording recording(writeWav(folder.file("tone.wav"), rate, channels));
    return analyse(recording, band, [](double) {});
}

double level(const Spectrogram& s, std::size_t column, int bin, std::size_t channel = 0) {
    return s.channels[channel][column].db[static_cast<std::size_t>(bin)];
}

TEST(Spectrum, ASineOfFullScaleHas0DecibelsInItsBinAlone) {
    const Spectrogram s = spectrogramOf({sine(rate, 20000, 10 * binHz)});
    for (std::size_t column = 0; column < Spectrogram::columns; ++column) {
        for (int bin = 0; bin < Spectrogram::bins; ++bin) {
            const double beside = std::abs(bin - 10);
            const double db = level(s, column, bin);
            if (beside == 0) {
                EXPECT_NEAR(db, 0, 0.01);
            } else if (beside == 1) {
                EXPECT_NEAR(db, 20 * std::log10(0.5), 0.01);  // as Hann's window has it
            } else {
                EXPECT_LT(db, -100);
            }
        }
    }
}

// Side lobes fall by 18 dB an octave under Hann's window, and by 6 dB without it or under its
// complement.
TEST(Spectrum, ASineBetweenTwoBinsLeaksAsThroughHannsWindow) {
    const Spectrogram s = spectrogramOf({sine(rate, 20000, 10.5 * binHz)});
    EXPECT_NEAR(level(s, 700, 10), -1.42, 0.05);
    EXPECT_NEAR(level(s, 700, 11), -1.42, 0.05);
    for (int bin = 18; bin < Spectrogram::bins; ++bin) {
        EXPECT_LT(level(s, 700, bin), -60) << bin;
    }
}

// At both ends of the band, where a sine's two frequencies fall together, too.
TEST(Spectrum, NoSineOfFullScaleIsLouderThan0Decibels) {
    for (const double hz : {1.0, 20.0, 0.3 * binHz, rate / 2.0 - 0.3 * binHz, rate / 2.0 - 1.0}) {
        const Spectrogram s = spectrogramOf({sine(rate, 20000, hz)});
        EXPECT_LE(s.loudest().db, 0.01) << hz;
        EXPECT_GT(s.loudest().db, -1.5) << hz;
    }
}

TEST(Spectrum, TheLoudestOfAFewWindowsIsAtTheMiddleOfTheColumnsThatShowIt) {
    for (const std::size_t samples : {64U, 65U}) {
        const Samples32 tone = sine(rate, samples, 8 * binHz);
        const double seconds = static_cast<double>(samples) / rate;
        const Spectrogram::Loudest loudest = spectrogramOf({tone}).loudest();
        EXPECT_NEAR(loudest.seconds, seconds / 2, seconds / 3);
        EXPECT_EQ(loudest.frequency, 8 * binHz);
    }
    Samples32 click(192, 0.0F);
    click[96] = 1;
    EXPECT_NEAR(spectrogramOf({click}).loudest().seconds, 96.0 / rate, 2.0 / rate);
}

TEST(Spectrum, PolarityOfAChannelDoesNotMatter) {
    const Samples32 tone = sine(rate, 4000, 8 * binHz);
    Samples32 inverted = tone;
    for (float& x : inverted) x = -x;
    const Spectrogram two = spectrogramOf({tone, inverted});
    ASSERT_EQ(two.channels.size(), 2U);
    EXPECT_NEAR(level(two, 500, 8, 0), 0, 0.01);
    EXPECT_NEAR(level(two, 500, 8, 1), 0, 0.01);

    // Too many to be shown, and joined.
    std::vector<Samples32> many(Spectrogram::channelsShown, tone);
    many.push_back(inverted);
    many.push_back(Samples32(tone.size(), 0.0F));
    const Spectrogram joined = spectrogramOf(many);
    ASSERT_EQ(joined.channels.size(), 1U);
    EXPECT_TRUE(joined.joined);
    EXPECT_NEAR(level(joined, 500, 8), 10 * std::log10(9.0 / 10), 0.01);
    EXPECT_NEAR(joined.channels[0][500].peak, 1, 0.01);
}

TEST(Spectrum, ANarrowerBandHasCloserRowsAndLeavesTheEnvelope) {
    const double band = 0.9 * rate / 8;  // resampled to a quarter of the rate
    Samples32 both = sine(rate, 20000, 2 * binHz, 0.5);
    const Samples32 high = sine(rate, 20000, 25 * binHz, 0.5);
    for (std::size_t i = 0; i < both.size(); ++i) both[i] += high[i];
    const Spectrogram s = spectrogramOf({both}, band);
    EXPECT_TRUE(s.resampled);
    EXPECT_NEAR(s.rate, rate / 4.0, 1e-6);
    EXPECT_EQ(s.binsShown(), 29);
    EXPECT_NEAR(level(s, 700, 8), -6.02, 0.1);
    for (int bin = 12; bin < s.binsShown(); ++bin) EXPECT_LT(level(s, 700, bin), -60) << bin;
    float peak = 0;
    for (const auto& column : s.channels[0]) peak = std::max(peak, column.peak);
    EXPECT_GT(peak, 0.95);

    EXPECT_FALSE(spectrogramOf({both}).resampled);
    EXPECT_FALSE(spectrogramOf({both}, rate).resampled);
}

TEST(Spectrum, AClickStandsAtItsTime) {
    Samples32 samples(30000, 0.0F);
    samples[10000] = 1;
    const Spectrogram s = spectrogramOf({samples});
    const std::size_t column = Spectrogram::columns / 3;
    EXPECT_EQ(s.channels[0][column].peak, 1);
    EXPECT_GT(level(s, column, 16), -40);
    for (std::size_t c = 0; c < Spectrogram::columns; ++c) {
        if (c < column - 3 || c > column + 3) {
            EXPECT_LT(level(s, c, 16), -190) << c;
        }
    }
}

TEST(Spectrum, EveryLengthFromOneTransformOnHasAllItsColumns) {
    for (const std::size_t samples :
         {64U, 65U, 100U, 1403U, 1404U, 5000U, 21440U, 21504U, 50000U}) {
        const Spectrogram s = spectrogramOf({sine(rate, samples, 8 * binHz)});
        EXPECT_EQ(s.transforms, static_cast<std::int64_t>(samples - 64) / s.hop + 1);
        for (std::size_t c = 0; c < Spectrogram::columns; ++c) EXPECT_NEAR(level(s, c, 8), 0, 0.01);
    }
    EXPECT_THROW(spectrogramOf({sine(rate, 63, 8 * binHz)}), BadInput);
}

TEST(SpectrogramPicture, ATonesBrightRowIsAtItsHeightAndHasTheTopColour) {
    const TemporaryFolder folder;
    for (const std::size_t channels : {1U, 2U, 3U}) {
        const Spectrogram s =
            spectrogramOf(std::vector<Samples32>(channels, sine(rate, 20000, 24 * binHz)));
        const std::string path = folder.file("tone.png");
        writePicture(s, "A tone", "", path);
        const Pixels pixels(path);
        const Layout layout(channels);
        ASSERT_EQ(pixels.width(), layout.width);
        ASSERT_EQ(pixels.height(), layout.height);
        EXPECT_EQ(levelRange(s).top, 0);
        const Box scale = layout.scale();
        const double top = pixels.brightness(scale.x + scale.w / 2, scale.y + 1);
        EXPECT_GT(top, pixels.brightness(scale.x + scale.w / 2, scale.bottom() - 2) + 0.5);
        for (std::size_t c = 0; c < channels; ++c) {
            const Box box = layout.levels(c);
            const double x = box.x + box.w / 2;
            int brightest = 0;
            for (int y = 0; y < static_cast<int>(box.h); ++y) {
                if (pixels.brightness(x, box.y + y) > pixels.brightness(x, box.y + brightest))
                    brightest = y;
            }
            // 24 of the 32 bins' distances up.
            EXPECT_NEAR(brightest, box.h / 4, box.h / 64 + 1);
            EXPECT_NEAR(pixels.brightness(x, box.y + brightest), top, 0.02);
            EXPECT_LT(pixels.brightness(x, box.y + box.h * 3 / 4), 0.15);
        }
    }
}

TEST(SpectrogramPicture, TheScaleFollowsWhatIsThere) {
    const Spectrogram quiet = spectrogramOf({sine(rate, 20000, 8 * binHz, 1e-3)});
    EXPECT_EQ(levelRange(quiet).top, -60);
    Samples32 noise(20000);
    unsigned state = 1;
    for (float& x : noise) {
        state = state * 1664525 + 1013904223;
        x = static_cast<float>(state >> 8) / (1 << 23) - 1;
    }
    const LevelRange range = levelRange(spectrogramOf({noise}));
    EXPECT_LT(range.top - range.bottom, 50);
    const LevelRange silence = levelRange(spectrogramOf({Samples32(1000, 0.0F)}));
    EXPECT_LT(silence.bottom, silence.top);
}

}  // namespace
