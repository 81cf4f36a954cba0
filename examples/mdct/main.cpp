// SPDX-License-Identifier: MIT
// mdct [--size M] [RECORDING [PICTURE]]
//
// Takes a recording apart into MDCT coefficients and puts it together again, by the DCT-IV in both
// element types, and shows how exactly it comes back.

#include <bit>
#include <cstdlib>
#include <iostream>
#include <string>

#include "../common/picture_file.h"
#include "../common/progress.h"
#include "../common/recording.h"
#include "picture.h"
#include "program.h"
#include "round_trip.h"

namespace {

struct Arguments {
    std::size_t size = 1024;
    std::string recording = defaultRecording;
    std::string picture = "mdct.png";
};

void declare(CLI::App& app, Arguments& a) {
    const auto powerOfTwo = [](const std::string& text) {
        std::size_t m = 0;
        const bool good = CLI::detail::lexical_cast(text, m) && std::has_single_bit(m);
        return good && m >= 4 && m <= 65536 ? "" : "takes a power of two from 4 to 65536";
    };
    app.add_option("--size", a.size, "coefficients a block, a power of two from 4 to 65536 (1024)")
        ->type_name("M")
        ->check(powerOfTwo);
    app.add_option("RECORDING", a.recording,
                   "WAV, FLAC, OGG or what else libsndfile reads (a voice out of Debian)")
        ->type_name("");
    app.add_option("PICTURE", a.picture, "the .png, .svg or .pdf to write (mdct.png)")
        ->type_name("");
}

void report(const char* type, const Quality& quality) {
    std::cout << type << ": largest error " << quality.largest << ", ";
    if (quality.exact()) {
        std::cout << "exact\n";
    } else {
        std::cout << "signal to noise " << quality.decibels() << " dB\n";
    }
}

int run(const Arguments& arguments) {
    checkPictureFile(arguments.picture);
    Recording recording(arguments.recording);
    std::cout << "recording: " << recording.title() << " (" << recording.origin() << ")"
              << std::endl;
    const RoundTrip trip = roundTrip(recording, arguments.size, ProgressLine("transforming"));
    if (recording.frames() == 0) throw BadInput(arguments.recording + ": no samples");
    for (const std::string& remark : recording.remarks()) std::cerr << "mdct: " << remark << "\n";

    const std::string channels = recording.channels() > 1 ? ", each channel by itself" : "";
    std::cout << "transform: " << trip.blocks << " blocks of " << arguments.size
              << " coefficients, there and back" << channels << "\n";
    report("binary32", trip.single);
    report("binary64", trip.twice);
    const std::string subtitle =
        recording.origin() + channels + "; " + std::to_string(trip.blocks) + " blocks of " +
        std::to_string(arguments.size) + " coefficients, each by one DCT-IV out of " +
        std::to_string(2 * arguments.size) + " samples (sine window)";
    writePicture(
        {"MDCT analysis and synthesis: " + recording.title(), subtitle, recording.rate(), trip},
        arguments.picture);
    std::cout << "picture: " << arguments.picture << "\n";
    // What is left is rounding.
    const bool perfect =
        trip.single.largest <= 1e-5 * trip.peak && trip.twice.largest <= 1e-13 * trip.peak;
    if (!perfect) std::cerr << "mdct: the recording did not come back\n";
    return perfect ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
    Arguments arguments;
    return runProgram(
        "mdct", "A recording into MDCT coefficients and back, and how exactly it comes back.", argc,
        argv, [&](CLI::App& app) { declare(app, arguments); }, [&] { return run(arguments); });
}
