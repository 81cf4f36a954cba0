// SPDX-License-Identifier: MIT
#include "recording.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <sstream>

#include "bad_input.h"

namespace {

namespace fs = std::filesystem;

std::string tag(SNDFILE* file, int what) {
    const char* text = sf_get_string(file, what);
    return text ? text : "";
}

// The bytes of the character of UTF-8 that begins there; 0 where none does.
std::size_t characterAt(const std::string& text, std::size_t i) {
    const auto byte = [&](std::size_t k) {
        return i + k < text.size() ? static_cast<unsigned char>(text[i + k]) : 0U;
    };
    const unsigned lead = byte(0);
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC0 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                                             : 4;
    unsigned code = length == 1 ? lead : lead & (0x7FU >> length);
    for (std::size_t k = 1; k < length; ++k) {
        if ((byte(k) & 0xC0) != 0x80) return 0;
        code = code << 6 | (byte(k) & 0x3F);
    }
    constexpr std::array<unsigned, 5> least = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < least[length] || code > 0x10FFFF || surrogate ? 0 : length;
}

// For a picture: in UTF-8, without control characters.
std::string printable(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = characterAt(text, i);
        const auto c = static_cast<unsigned char>(text[i]);
        result += length == 0 ? "?" : c < 0x20 || c == 0x7F ? " " : text.substr(i, length);
        i += std::max<std::size_t>(length, 1);
    }
    return result;
}

std::string titleOf(SNDFILE* file, const std::string& path) {
    if (path == defaultRecording)
        return "Jane Austen, Sense and Sensibility, chapter 1, read for LibriVox";
    const std::string title = tag(file, SF_STR_TITLE);
    const std::string artist = tag(file, SF_STR_ARTIST);
    if (title.empty()) return printable(fs::path(path).stem().string());
    return printable(artist.empty() ? title : artist + ": " + title);
}

std::string durationText(double seconds) {
    std::ostringstream text;
    text.precision(3);
    if (seconds < 0.1) {
        text << 1000 * seconds << " ms";
    } else if (seconds < 60) {
        text << seconds << " s";
    } else {
        text << std::lround(seconds) / 60 << " min " << std::lround(seconds) % 60 << " s";
    }
    return text.str();
}

// Why there is no recording at that place; nothing where one may be.
void checkPlace(const std::string& path) {
    if (path.empty()) throw BadInput("the recording's name is empty");
    std::error_code none;
    if (fs::is_directory(path, none)) throw BadInput(path + ": is a folder, not a recording");
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
    if (file) return;
    const std::string reason = errno == ENOENT ? "no such file" : std::strerror(errno);
    throw BadInput(path + ": " + reason +
                   (path == defaultRecording
                        ? " (Debian's package pocketsphinx-testdata has it; or "
                          "name a recording of your own)"
                        : ""));
}

}  // namespace

Recording::Recording(const std::string& path) {
    checkPlace(path);
    SF_INFO info{};
    file_ = sf_open(path.c_str(), SFM_READ, &info);
    if (!file_)
        throw BadInput(path + ": not a recording that can be read (" + sf_strerror(nullptr) + ")");
    channels_ = static_cast<std::size_t>(info.channels);
    rate_ = info.samplerate;
    constexpr std::int64_t unknown = std::int64_t{1} << 50;  // what libsndfile gives is beyond it
    announced_ = info.frames < unknown ? info.frames : 0;
    title_ = titleOf(file_, path);
}

Recording::~Recording() { sf_close(file_); }

double Recording::part() const {
    return announced_ == 0
               ? 0
               : std::min(1.0, static_cast<double>(frames_) / static_cast<double>(announced_));
}

std::string Recording::origin() const {
    std::ostringstream text;
    text << rate_ / 1000 << " kHz, "
         << (channels_ == 1   ? "mono"
             : channels_ == 2 ? "stereo"
                              : std::to_string(channels_) + " channels");
    if (announced_ > 0) text << ", " << durationText(static_cast<double>(announced_) / rate_);
    return text.str();
}

std::vector<std::string> Recording::remarks() const {
    std::vector<std::string> sentences;
    if (notNumbers_ > 0)
        sentences.push_back(std::to_string(notNumbers_) +
                            " samples are no finite numbers and were taken as 0");
    if (frames_ < announced_)
        sentences.push_back("the file breaks off after " +
                            durationText(static_cast<double>(frames_) / rate_));
    return sentences;
}

bool Recording::read(std::size_t frames, Block& block) {
    interleaved_.resize(frames * channels_);
    const sf_count_t got =
        sf_readf_float(file_, interleaved_.data(), static_cast<sf_count_t>(frames));
    const auto count = static_cast<std::size_t>(std::max<sf_count_t>(got, 0));
    block.resize(channels_);
    for (std::size_t c = 0; c < channels_; ++c) {
        block[c].resize(count);
        for (std::size_t i = 0; i < count; ++i) {
            const float sample = interleaved_[i * channels_ + c];
            if (!std::isfinite(sample)) ++notNumbers_;
            block[c][i] = std::isfinite(sample) ? sample : 0.0F;
        }
    }
    frames_ += static_cast<std::int64_t>(count);
    return count > 0;
}
