// SPDX-License-Identifier: MIT
// ofdm [--qpsk] [--snr DECIBELS|none] [--symbols N] [--seed S] [PICTURE]
//
// Sends random bits over a simulated multicarrier link made of the complex transforms of length 64,
// counts the bit errors and draws what the receiver sees.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <sstream>
#include <string>

#include "../common/picture_file.h"
#include "link.h"
#include "picture.h"
#include "program.h"

namespace {

struct Arguments {
    Settings settings;
    std::string picture = "ofdm.png";
};

// A ratio of energies in decibels, or none.
CLI::Validator signalToNoise() {
    const CLI::Validator number = within(-20, 60);
    const auto check = [number](const std::string& text) -> std::string {
        const bool good = text == "none" || number(text).empty();
        return good ? "" : "takes a number of decibels from -20 to 60, or the word none";
    };
    return CLI::Validator(check, "");
}

void declare(CLI::App& app, Arguments& a) {
    app.add_flag_callback(
           "--qpsk", [&a] { a.settings.bits = 2; }, "2 bits a carrier and symbol (16-QAM: 4)")
        ->disable_flag_override();
    app.add_option_function<std::string>(
           "--snr",
           [&a](const std::string& text) {
               a.settings.snr.reset();
               if (text != "none") a.settings.snr = std::stod(text);
           },
           "energy of a point to that of the noise, -20 to 60 dB, or none (20)")
        ->type_name("DECIBELS")
        ->check(signalToNoise());
    app.add_option("--symbols", a.settings.symbols, "symbols of data, 1 to 100000 (4000)")
        ->type_name("N")
        ->check(wholeWithin(1, 100000));
    app.add_option("--seed", a.settings.seed, "of the bits and the noise, a whole number (1)")
        ->type_name("S")
        ->check(wholeWithin(0, std::numeric_limits<std::int64_t>::max()));
    app.add_option("PICTURE", a.picture, "the .png, .svg or .pdf to write (ofdm.png)")
        ->type_name("");
}

std::string decibels(double value) {
    std::ostringstream text;
    text.precision(3);
    text << value << " dB";
    return text.str();
}

int run(const Arguments& arguments) {
    checkPictureFile(arguments.picture);
    const Settings& settings = arguments.settings;
    const Outcome outcome = runLink(settings);
    const std::string symbols =
        std::to_string(settings.symbols) + (settings.symbols == 1 ? " symbol" : " symbols");
    const std::string scheme = settings.bits == 2 ? "QPSK" : "16-QAM";
    const std::string noise =
        settings.snr ? decibels(*settings.snr) + " signal to noise" : "no noise";

    std::cout.precision(4);
    std::cout << "link: " << scheme << " on " << carriers << " of " << points << " carriers, "
              << symbols << ", six paths, " << noise << "\n"
              << "bit errors: " << outcome.wrong << " of " << outcome.sent << ", rate "
              << outcome.rate() << "\n"
              << "theory: " << outcome.theory.estimated << " with this channel as estimated, "
              << outcome.theory.known << " with it known, " << outcome.theory.flat
              << " on a single path\n"
              << "error vector: " << 100 * outcome.errorVector << " %, "
              << decibels(20 * std::log10(outcome.errorVector)) << "\n";
    const std::size_t all = outcome.after.size(), shown = std::min(all, pointsShown);
    const std::string subtitle =
        symbols + " of 64 samples behind a prefix of 16; " + "the channel learnt anew from " +
        std::to_string(training) + " training symbols every " + std::to_string(frame) + "; " +
        std::to_string(shown) + " of " + std::to_string(all) + " points shown";
    writePicture({"Multicarrier link: " + scheme + " on 52 of 64 carriers, six paths, " + noise,
                  subtitle, settings, outcome},
                 arguments.picture);
    std::cout << "picture: " << arguments.picture << "\n";
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    Arguments arguments;
    return runProgram(
        "ofdm", "Random bits over a simulated multicarrier link, and what the receiver sees.", argc,
        argv, [&](CLI::App& app) { declare(app, arguments); }, [&] { return run(arguments); });
}
