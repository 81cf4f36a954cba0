// SPDX-License-Identifier: MIT
// That the picture of the link shows what it is given.
#include <gtest/gtest.h>

#include "../common/test_files.h"
#include "picture.h"

namespace {

// Of a constellation's point; the picture's y grows downwards.
double xOf(const Box& box, double re) {
    return box.x + box.w * (re + layout::reach) / (2 * layout::reach);
}
double yOf(const Box& box, double im) {
    return box.y + box.h * (layout::reach - im) / (2 * layout::reach);
}

TEST(OfdmPicture, APointStandsWhereItsPartsSay) {
    const TemporaryFolder folder;
    const std::string path = folder.file("link.png");
    const Settings settings;
    Outcome outcome;
    outcome.sent = 1;
    // Many of them, so that the dot is opaque.
    outcome.before.assign(50, {-1.25F, 0.5F});
    outcome.after.assign(50, {0.75F, -1.5F});
    writePicture({"A point", "", settings, outcome}, path);
    const Pixels pixels(path);
    for (const double re : {-1.25, 0.75, 1.25, -0.75}) {
        for (const double im : {0.5, -1.5, -0.5, 1.5}) {
            const bool before = re == -1.25 && im == 0.5, after = re == 0.75 && im == -1.5;
            const double b = pixels.brightness(xOf(layout::before, re), yOf(layout::before, im));
            const double a = pixels.brightness(xOf(layout::after, re), yOf(layout::after, im));
            EXPECT_EQ(b < 0.7, before) << re << " " << im;
            EXPECT_EQ(a < 0.7, after) << re << " " << im;
        }
    }
}

TEST(OfdmLink, CarriersKeepTheirSides) {
    // Without noise the estimate is the channel, carrier by carrier, and no two are alike.
    Settings settings;
    settings.snr.reset();
    settings.symbols = 10;
    const Outcome outcome = runLink(settings);
    for (std::size_t k = 0; k < carriers; ++k)
        EXPECT_LT(std::abs(std::complex<double>(outcome.estimate[k]) - outcome.channel[k]), 1e-4);
}

}  // namespace
