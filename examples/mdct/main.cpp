// mdct [--size M] [RECORDING [PICTURE.png]]
//
// Takes a recording apart into MDCT coefficients and puts it together again, by the DCT-IV in both
// element types, and shows how exactly it comes back.

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "../spectrogram/recording.h"
#include "mdct.h"
#include "picture.h"

namespace {

// A reader's voice, from the LibriVox recordings in Debian's package pocketsphinx-testdata.
constexpr const char* defaultRecording =
    "/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-0870.wav";

constexpr const char* usage =
    "usage: mdct [--size M] [RECORDING [PICTURE.png]]\n"
    "  RECORDING  WAV, FLAC, OGG or what else libsndfile reads (a voice out of Debian)\n"
    "  PICTURE    the PNG to write (mdct.png)\n"
    "  --size M   coefficients a block, a power of two from 4 to 65536 (1024)\n";

struct Arguments {
    std::size_t size = 1024;
    std::string recording = defaultRecording;
    std::string picture = "mdct.png";
};

Arguments parse(const std::vector<std::string>& words) {
    Arguments a;
    std::vector<std::string> files;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--size") {
            const std::string value = i + 1 < words.size() ? words[++i] : "";
            char* end = nullptr;
            a.size = std::strtoul(value.c_str(), &end, 10);
            if (value.empty() || *end != '\0' || a.size < 4 || a.size > 65536 ||
                (a.size & (a.size - 1)) != 0) {
                throw BadInput("--size takes a power of two from 4 to 65536");
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

int run(const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        if (word == "--help" || word == "-h") {
            std::cout << usage;
            return EXIT_SUCCESS;
        }
    }
    const Arguments arguments = parse(words);
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
    try {
        return run({argv + 1, argv + argc});
    } catch (const BadInput& e) {
        std::cerr << "mdct: " << e.what() << "\n";
        return 2;
    } catch (const std::exception& e) {
        std::cerr << "mdct: " << e.what() << "\n";
        return EXIT_FAILURE;
    }
}
