// mdct [--size M] [RECORDING [PICTURE.png]]
//
// Takes a recording apart into MDCT coefficients and puts it together again, by the DCT-IV in both
// element types, and shows how exactly it comes back.

#include <bit>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "../common/program.h"
#include "../common/recording.h"
#include "mdct.h"
#include "picture.h"

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
    app.add_option("PICTURE", a.picture, "the PNG to write (mdct.png)")->type_name("");
}

int run(const Arguments& arguments) {
    constexpr double everything = 1e9;  // no band to cut down to
    Recording recording(arguments.recording, everything);
    std::vector<float> samples, block;
    while (recording.read(block)) samples.insert(samples.end(), block.begin(), block.end());
    if (samples.empty()) throw BadInput(arguments.recording + ": no samples");

    const Reconstruction single = reconstruct<Orv32f, OrvDCT4Spec_32f>(samples, arguments.size);
    const Reconstruction twice = reconstruct<Orv64f, OrvDCT4Spec_64f>(samples, arguments.size);
    const auto report = [](const char* type, const Reconstruction& r) {
        std::cout << type << ": largest error " << r.largest << ", signal to noise "
                  << r.signalToNoise << " dB\n";
    };
    std::cout << "recording: " << recording.title() << " (" << recording.origin() << ", "
              << samples.size() << " samples)\n"
              << "transform: " << single.coefficients.size() << " blocks of " << arguments.size
              << " coefficients, there and back\n";
    report("binary32", single);
    report("binary64", twice);

    const std::string subtitle = std::to_string(single.coefficients.size()) +
                                 " overlapping blocks, each " + std::to_string(arguments.size) +
                                 " coefficients of twice as many samples by one DCT-IV (sine "
                                 "window); synthesis gives the samples back";
    writePicture({"MDCT analysis and synthesis: " + recording.title(), subtitle, samples,
                  recording.rate(), single, twice},
                 arguments.picture);
    std::cout << "picture: " << arguments.picture << "\n";
    // Samples lie in [-1, 1]: what is left is rounding.
    const bool perfect = single.largest < 1e-5 && twice.largest < 1e-13;
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
