// ofdm [--qpsk] [--snr DECIBELS|none] [--symbols N] [--seed S] [PICTURE.png]
//
// Sends random bits over a simulated multicarrier link made of the complex transforms of length 64,
// counts the bit errors and draws what the receiver sees.

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "link.h"
#include "picture.h"

namespace {

constexpr const char* usage =
    "usage: ofdm [--qpsk] [--snr DECIBELS|none] [--symbols N] [--seed S] [PICTURE.png]\n"
    "  PICTURE      the PNG to write (ofdm.png)\n"
    "  --qpsk       2 bits a carrier and symbol (16-QAM: 4)\n"
    "  --snr D      energy of a point to that of the noise, -20 to 60 dB, or none (20)\n"
    "  --symbols N  symbols of data, 1 to 100000 (4000)\n"
    "  --seed S     of the bits and the noise, a whole number (1)\n";

// What is wrong with the arguments, in one line for the user.
class BadInput : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The whole text as a number.
template <class Number>
bool read(const std::string& text, Number& number) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

struct Arguments {
    Settings settings;
    std::string picture = "ofdm.png";
};

Arguments parse(const std::vector<std::string>& words) {
    Arguments a;
    bool named = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        const auto value = [&] { return i + 1 < words.size() ? words[++i] : std::string(); };
        if (word == "--qpsk") {
            a.settings.bits = 2;
        } else if (word == "--snr") {
            const std::string text = value();
            double snr = 0;
            if (text == "none") {
                a.settings.snr.reset();
            } else if (read(text, snr) && snr >= -20 && snr <= 60) {
                a.settings.snr = snr;
            } else {
                throw BadInput("--snr takes decibels from -20 to 60, or none");
            }
        } else if (word == "--symbols") {
            std::size_t& n = a.settings.symbols;
            if (!read(value(), n) || n < 1 || n > 100000) {
                throw BadInput("--symbols takes a number from 1 to 100000");
            }
        } else if (word == "--seed") {
            if (!read(value(), a.settings.seed)) throw BadInput("--seed takes a whole number");
        } else if (word.empty() || word[0] == '-') {
            throw BadInput("unknown option '" + word + "' (see --help)");
        } else if (named) {
            throw BadInput("too many arguments (see --help)");
        } else {
            a.picture = word;
            named = true;
        }
    }
    return a;
}

std::string decibels(double value) {
    std::ostringstream text;
    text.precision(3);
    text << value << " dB";
    return text.str();
}

int run(const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        if (word == "--help" || word == "-h") {
            std::cout << usage;
            return EXIT_SUCCESS;
        }
    }
    const Arguments arguments = parse(words);
    const Settings& settings = arguments.settings;
    const Outcome outcome = runLink(settings);
    const std::string scheme = settings.bits == 2 ? "QPSK" : "16-QAM";
    const std::string noise =
        settings.snr ? decibels(*settings.snr) + " signal to noise" : "no noise";

    std::cout.precision(4);
    std::cout << "link: " << scheme << " on " << carriers << " of " << points << " carriers, "
              << settings.symbols << " symbols, six paths, " << noise << "\n"
              << "bit errors: " << outcome.wrong << " of " << outcome.sent << ", rate "
              << outcome.rate() << "\n"
              << "theory: " << outcome.theory.estimated << " with this channel as estimated, "
              << outcome.theory.known << " with it known, " << outcome.theory.flat
              << " on a single path\n"
              << "error vector: " << 100 * outcome.errorVector << " %, "
              << decibels(20 * std::log10(outcome.errorVector)) << "\n";
    const std::string subtitle = std::to_string(settings.symbols) +
                                 " symbols of 64 samples behind a prefix of 16; " +
                                 "the channel learnt anew from " + std::to_string(training) +
                                 " training symbols every " + std::to_string(frame);
    writePicture({"Multicarrier link: " + scheme + " on 52 of 64 carriers, six paths, " + noise,
                  subtitle, settings, outcome},
                 arguments.picture);
    std::cout << "picture: " << arguments.picture << "\n";
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run({argv + 1, argv + argc});
    } catch (const BadInput& e) {
        std::cerr << "ofdm: " << e.what() << "\n";
        return 2;
    } catch (const std::exception& e) {
        std::cerr << "ofdm: " << e.what() << "\n";
        return EXIT_FAILURE;
    }
}
