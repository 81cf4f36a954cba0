// SPDX-License-Identifier: MIT
// spectrogram [--band HZ] [RECORDING [PICTURE]]
//
// Draws a recording's levels over time and frequency, by thousands of windowed 64-point transforms.

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>

#include "../common/picture_file.h"
#include "../common/progress.h"
#include "../common/recording.h"
#include "picture.h"
#include "program.h"
#include "spectrum.h"

namespace {

struct Arguments {
    std::optional<double> band;
    std::string recording = defaultRecording;
    std::string picture = "spectrogram.png";
};

void declare(CLI::App& app, Arguments& a) {
    app.add_option("--band", a.band,
                   "the highest frequency shown, 100 Hz and more, for closer rows (all of the "
                   "recording's)")
        ->type_name("HZ")
        ->check(within(100, 1e6));
    app.add_option("RECORDING", a.recording,
                   "WAV, FLAC, OGG or what else libsndfile reads (a voice out of Debian)")
        ->type_name("");
    app.add_option("PICTURE", a.picture, "the .png, .svg or .pdf to write (spectrogram.png)")
        ->type_name("");
}

// 1234567 as 1 234 567.
std::string grouped(std::int64_t n) {
    const std::string digits = std::to_string(n);
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) text += ' ';
        text += digits[i];
    }
    return text;
}

template <class... Parts>
std::string joined(const Parts&... parts) {
    std::ostringstream text;
    text.precision(4);
    (text << ... << parts);
    return text.str();
}

// What was done to the recording before it was transformed.
std::string treatment(const Recording& recording, const Spectrogram& s) {
    const double whole = recording.rate() / 2;
    std::string text = s.top < whole ? joined("0 to ", s.top / 1000, " kHz of ", whole / 1000)
                                     : joined("the whole band of ", whole / 1000, " kHz");
    text += s.resampled ? joined(", resampled to ", s.rate / 1000, " kHz") : ", not resampled";
    if (s.joined) {
        text += ", channels joined: mean power, largest peak";
    } else if (recording.channels() > 1) {
        text += ", each channel by itself";
    }
    return text;
}

std::string transformation(const Spectrogram& s) {
    return joined(" of ", Spectrogram::points, " samples (Hann window, hop ", s.hop, ", ",
                  s.binWidth(), " Hz a row)");
}

std::string levelsOf(const Spectrogram& s) {
    const Spectrogram::Loudest most = s.loudest();
    const LevelRange range = levelRange(s);
    if (most.db < range.bottom) return "silence";
    return joined(range.bottom, " to ", range.top, " dB shown, at most ",
                  std::round(10 * most.db) / 10 + 0.0, " dB, at ", most.frequency / 1000,
                  " kHz and ", most.seconds, " s (0 dB: a sine of full scale)");
}

int run(const Arguments& arguments) {
    checkPictureFile(arguments.picture);
    Recording recording(arguments.recording);
    std::cout << "recording: " << recording.title() << " (" << recording.origin() << ")"
              << std::endl;
    const Spectrogram s = analyse(recording, arguments.band, ProgressLine("transforming"));
    for (const std::string& remark : recording.remarks())
        std::cerr << "spectrogram: " << remark << "\n";
    std::cout << "shown: " << treatment(recording, s) << "\n"
              << "transforms: " << grouped(s.transforms) << transformation(s) << ", "
              << std::lround(s.batchNanoseconds) << " ns each in batches, "
              << std::lround(s.singleNanoseconds) << " ns by a loop of single calls\n"
              << "levels: " << levelsOf(s) << "\n";
    writePicture(s, recording.title(),
                 recording.origin() + "; " + treatment(recording, s) + "; " +
                     grouped(s.transforms) + (s.transforms == 1 ? " transform" : " transforms") +
                     transformation(s),
                 arguments.picture);
    std::cout << "picture: " << arguments.picture << "\n";
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    Arguments arguments;
    return runProgram(
        "spectrogram", "A recording's levels over time and frequency.", argc, argv,
        [&](CLI::App& app) { declare(app, arguments); }, [&] { return run(arguments); });
}
