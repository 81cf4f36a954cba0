// spectrogram [--band HZ] [RECORDING [PICTURE.png]]
//
// Draws a recording's levels over time and frequency, by thousands of windowed 64-point transforms.

#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "picture.h"
#include "recording.h"
#include "spectrum.h"

namespace {

// A reader's voice, from the LibriVox recordings in Debian's package pocketsphinx-testdata.
constexpr const char* defaultRecording =
    "/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-0870.wav";
constexpr const char* defaultTitle =
    "Jane Austen, Sense and Sensibility, chapter 1, read for LibriVox";
constexpr const char* defaultPicture = "spectrogram.png";
constexpr double defaultBand = 5500;

constexpr const char* usage =
    "usage: spectrogram [--band HZ] [RECORDING [PICTURE.png]]\n"
    "  RECORDING  WAV, FLAC, OGG or what else libsndfile reads (a voice out of Debian)\n"
    "  PICTURE    the PNG to write (spectrogram.png)\n"
    "  --band HZ  the highest frequency shown (5500)\n";

struct Arguments {
    double band = defaultBand;
    std::string recording = defaultRecording;
    std::string picture = defaultPicture;
};

Arguments parse(const std::vector<std::string>& words) {
    Arguments a;
    std::vector<std::string> files;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--band") {
            const std::string value = i + 1 < words.size() ? words[++i] : "";
            char* end = nullptr;
            a.band = std::strtod(value.c_str(), &end);
            if (value.empty() || *end != '\0' || !(a.band >= 100 && a.band <= 1e6)) {
                throw BadInput("--band takes a frequency of 100 Hz and more");
            }
        } else if (words[i].size() > 1 && words[i][0] == '-') {
            throw BadInput("unknown option " + words[i] + " (see --help)");
        } else {
            files.push_back(words[i]);
        }
    }
    if (files.size() > 2) throw BadInput("too many arguments (see --help)");
    if (!files.empty()) a.recording = files[0];
    if (files.size() > 1) a.picture = files[1];
    return a;
}

// Shown once the work has taken a while: one line that counts on a terminal, a line for every tenth
// part elsewhere.
class ProgressLine {
  public:
    void operator()(double part) {
        const int percent = static_cast<int>(100 * part);
        const int step = terminal_ ? 1 : 10;
        if (percent / step == shown_ / step || Clock::now() - begin_ < patience) return;
        shown_ = percent;
        std::fprintf(stderr, "%stransforming: %3d %%", terminal_ ? "\r" : "", percent);
        if (!terminal_ || percent == 100) std::fputc('\n', stderr);
        std::fflush(stderr);
    }

  private:
    using Clock = std::chrono::steady_clock;
    static constexpr auto patience = std::chrono::milliseconds(500);

    Clock::time_point begin_ = Clock::now();
    bool terminal_ = isatty(STDERR_FILENO) != 0;
    int shown_ = 0;
};

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

std::string subtitleOf(const Recording& recording, const Spectrogram& s) {
    std::ostringstream text;
    text << recording.origin() << "; " << grouped(s.transforms) << " transforms of "
         << Spectrogram::points << " samples at " << s.rate / 1000 << " kHz (Hann window, hop "
         << s.hop << ")";
    return text.str();
}

int run(const std::vector<std::string>& words) {
    for (const auto& w : words) {
        if (w == "--help" || w == "-h") {
            std::cout << usage;
            return EXIT_SUCCESS;
        }
    }
    const Arguments arguments = parse(words);
    Recording recording(arguments.recording, arguments.band);
    const std::string title =
        arguments.recording == defaultRecording ? defaultTitle : recording.title();
    std::cout << "recording: " << title << " (" << recording.origin() << ", "
              << std::lround(recording.seconds()) << " s)\n";
    const Spectrogram s = analyse(recording, plotColumns, ProgressLine());
    writePicture(s, title, subtitleOf(recording, s), arguments.picture);
    const double each = 1e9 * s.transformSeconds / static_cast<double>(s.transforms);
    std::cout << "transforms: " << grouped(s.transforms) << " of length " << Spectrogram::points
              << ", " << std::lround(each) << " ns each with the clock's own time\n"
              << "picture: " << arguments.picture << "\n";
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run({argv + 1, argv + argc});
    } catch (const BadInput& e) {
        std::cerr << "spectrogram: " << e.what() << "\n";
        return 2;
    } catch (const std::exception& e) {
        std::cerr << "spectrogram: " << e.what() << "\n";
        return EXIT_FAILURE;
    }
}
