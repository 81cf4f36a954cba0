// SPDX-License-Identifier: MIT
// For the tests of the examples: recordings made of samples, and pictures read back.

#ifndef EXAMPLES_TEST_FILES_H
#define EXAMPLES_TEST_FILES_H

#include <cairo.h>
#include <sndfile.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <numbers>
#include <stdexcept>
#include <string>
#include <vector>

#include "painter.h"

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = std::filesystem::temp_directory_path() / "orvgen-XXXXXX";
        if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code none;
        std::filesystem::remove_all(path_, none);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    std::string file(const std::string& name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

using Samples32 = std::vector<float>;

inline Samples32 sine(int rate, std::size_t count, double frequency, double amplitude = 1) {
    Samples32 samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double t = static_cast<double>(i) / rate;
        const double x = amplitude * std::sin(2 * std::numbers::pi * frequency * t);
        samples[i] = static_cast<float>(x);
    }
    return samples;
}

// A WAV of binary32 samples; the channels are as long as each other.
inline std::string writeWav(const std::string& path, int rate,
                            const std::vector<Samples32>& channels) {
    SF_INFO info{};
    info.samplerate = rate;
    info.channels = static_cast<int>(channels.size());
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    if (!file) throw std::runtime_error(path);
    std::vector<float> frames;
    for (std::size_t i = 0; i < channels.front().size(); ++i)
        for (const Samples32& channel : channels) frames.push_back(channel[i]);
    sf_writef_float(file, frames.data(), static_cast<sf_count_t>(channels.front().size()));
    sf_close(file);
    return path;
}

// The pixels of a PNG, row 0 at the top.
class Pixels {
  public:
    explicit Pixels(const std::string& path)
        : surface_(cairo_image_surface_create_from_png(path.c_str()), cairo_surface_destroy) {
        if (cairo_surface_status(surface_.get()) != CAIRO_STATUS_SUCCESS)
            throw std::runtime_error(path);
    }
    int width() const { return cairo_image_surface_get_width(surface_.get()); }
    int height() const { return cairo_image_surface_get_height(surface_.get()); }
    Colour at(double x, double y) const {
        const unsigned char* p =
            cairo_image_surface_get_data(surface_.get()) +
            static_cast<int>(y) * cairo_image_surface_get_stride(surface_.get()) +
            4 * static_cast<int>(x);
        return {p[2] / 255.0, p[1] / 255.0, p[0] / 255.0};
    }
    double brightness(double x, double y) const {
        const Colour c = at(x, y);
        return (c.r + c.g + c.b) / 3;
    }

  private:
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface_;
};

#endif
