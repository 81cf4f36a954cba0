// SPDX-License-Identifier: MIT
// rotation [--sizes N...] [RECORDING...]
//
// What vector databases do before they quantise: log spectra are turned by signs, Walsh-Hadamard
// and Hartley transforms, and searched in a few bits an element, with and without the turn.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "../common/recording.h"
#include "program.h"
#include "recall.h"
#include "rotation.h"

namespace {

struct Arguments {
    std::vector<int> sizes = {384, 768, 1024, 1536};
    std::vector<std::string> recordings;
};

void declare(CLI::App& app, Arguments& a) {
    app.add_option("--sizes", a.sizes, "elements of a vector (384 768 1024 1536)")
        ->type_name("N")
        ->check(wholeWithin(32, 1 << 16));
    app.add_option("RECORDING", a.recordings,
                   "WAV, FLAC, OGG or what else libsndfile reads (readers' voices out of Debian)")
        ->type_name("");
}

// All recordings beside the default one, in order.
std::vector<std::string> defaultRecordings() {
    const auto folder = std::filesystem::path(defaultRecording).parent_path();
    std::vector<std::string> paths;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none))
        if (entry.path().extension() == ".wav") paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    if (paths.empty()) paths.emplace_back(defaultRecording);  // which says that it is not there
    return paths;
}

// Calls of work a second, tried for a while.
template <class Work>
double rateOf(const Work& work) {
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    double calls = 0, seconds = 0;
    do {
        work();
        ++calls;
        seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    } while (seconds < 0.1);
    return calls / seconds;
}

// The same turn as a matrix: each column is the turned unit vector.
std::vector<float> matrixOf(const Rotation& rotation) {
    const auto n = static_cast<std::size_t>(rotation.size());
    std::vector<float> columns(n * n);
    for (std::size_t i = 0; i < n; ++i) columns[i * n + i] = 1;
    rotation.apply(columns.data(), n);
    return columns;
}

void multiply(const std::vector<float>& columns, const float* x, float* y, std::size_t n) {
    std::fill(y, y + n, 0.0F);
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t k = 0; k < n; ++k) y[k] += columns[i * n + k] * x[i];
}

void showHead(std::size_t recordings) {
    std::printf(
        "log spectra of %zu recording%s; share of the 10 nearest vectors found in 1, 2 and 4 bits\n"
        "                        1 bit         2 bits        4 bits      vectors turned a second\n"
        "elements  vectors   plain turned  plain turned  plain turned    batches  by matrix\n",
        recordings, recordings == 1 ? "" : "s");
}

void showRow(const Rotation& rotation, const Vectors& plain) {
    Vectors turned = plain;
    rotation.apply(turned.elements.data(), turned.count());

    std::printf("%8zu %8zu ", plain.size, plain.count());
    for (const int bits : {1, 2, 4})
        std::printf("  %5.3f %5.3f", recall(plain, quantised(plain, bits)),
                    recall(turned, quantised(turned, bits)));

    Vectors x = plain;
    const double turns = rateOf([&] { rotation.apply(x.elements.data(), x.count()); }) *
                         static_cast<double>(x.count());
    const std::vector<float> columns = matrixOf(rotation);
    std::vector<float> y(plain.size);
    std::size_t v = 0;
    const double products =
        rateOf([&] { multiply(columns, plain[v++ % plain.count()], y.data(), plain.size); });
    std::printf("  %10.0f %10.0f\n", turns, products);
}

int run(const Arguments& arguments) {
    const auto recordings =
        arguments.recordings.empty() ? defaultRecordings() : arguments.recordings;
    bool begun = false;
    for (const int size : arguments.sizes) {
        const Rotation rotation(size);
        const Vectors plain = spectra(recordings, static_cast<std::size_t>(size));
        if (!begun) showHead(recordings.size());
        begun = true;
        showRow(rotation, plain);
    }
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
    Arguments arguments;
    return runProgram(
        "rotation", "Vectors turned by fast transforms and searched in few bits.", argc, argv,
        [&](CLI::App& app) { declare(app, arguments); }, [&] { return run(arguments); });
}
