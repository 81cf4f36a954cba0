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

#include "../common/program.h"
#include "../common/recording.h"
#include "picture.h"
#include "spectrum.h"

namespace {

constexpr const char* defaultTitle =
    "Jane Austen, Sense and Sensibility, chapter 1, read for LibriVox";
struct Arguments {
    double band = 5500;
    std::string recording = defaultRecording;
    std::string picture = "spectrogram.png";
};

void declare(CLI::App& app, Arguments& a) {
    app.add_option("--band", a.band, "the highest frequency shown, 100 Hz and more (5500)")
        ->type_name("HZ")
        ->check(within(100, 1e6));
    app.add_option("RECORDING", a.recording,
                   "WAV, FLAC, OGG or what else libsndfile reads (a voice out of Debian)")
        ->type_name("");
    app.add_option("PICTURE", a.picture, "the PNG to write (spectrogram.png)")->type_name("");
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

int run(const Arguments& arguments) {
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
    Arguments arguments;
    return runProgram(
        "spectrogram", "A recording's levels over time and frequency.", argc, argv,
        [&](CLI::App& app) { declare(app, arguments); }, [&] { return run(arguments); });
}
