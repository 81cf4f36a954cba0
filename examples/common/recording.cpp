#include "recording.h"

#include <samplerate.h>
#include <sndfile.h>

#include <cmath>
#include <filesystem>
#include <sstream>

#include "program.h"

namespace {

constexpr std::size_t framesPerBlock = 1 << 14;

std::string tag(SNDFILE* file, int what) {
    const char* text = sf_get_string(file, what);
    return text ? text : "";
}

std::string titleOf(SNDFILE* file, const std::string& path) {
    const std::string title = tag(file, SF_STR_TITLE);
    const std::string artist = tag(file, SF_STR_ARTIST);
    if (title.empty()) return std::filesystem::path(path).stem().string();
    return artist.empty() ? title : artist + ": " + title;
}

}  // namespace

Recording::Recording(const std::string& path, double band) {
    if (!std::filesystem::exists(path)) throw BadInput(path + ": no such file");
    SF_INFO info{};
    file_ = sf_open(path.c_str(), SFM_READ, &info);
    if (!file_)
        throw BadInput(path + ": not a recording that can be read (" + sf_strerror(nullptr) + ")");
    channels_ = info.channels;
    seconds_ = static_cast<double>(info.frames) / info.samplerate;
    ratio_ = std::min(1.0, 2 * band / info.samplerate);
    rate_ = info.samplerate * ratio_;
    length_ = static_cast<std::int64_t>(static_cast<double>(info.frames) * ratio_);
    title_ = titleOf(file_, path);

    std::ostringstream text;
    text << info.samplerate / 1000.0 << " kHz, "
         << (channels_ == 1   ? "mono"
             : channels_ == 2 ? "stereo"
                              : std::to_string(channels_) + " channels");
    origin_ = text.str();

    if (ratio_ < 1) {
        int error = 0;
        converter_ = src_new(SRC_SINC_FASTEST, 1, &error);
        if (!converter_) {
            sf_close(file_);
            throw std::runtime_error(src_strerror(error));
        }
    }
}

Recording::~Recording() {
    if (converter_) src_delete(converter_);
    sf_close(file_);
}

bool Recording::read(std::vector<float>& block) {
    block.clear();
    if (ended_) return false;

    const auto channels = static_cast<std::size_t>(channels_);
    frames_.resize(framesPerBlock * channels);
    const sf_count_t got = sf_readf_float(file_, frames_.data(), framesPerBlock);
    ended_ = got < static_cast<sf_count_t>(framesPerBlock);
    mono_.assign(static_cast<std::size_t>(got), 0.0F);
    for (std::size_t i = 0; i < mono_.size(); ++i) {
        for (std::size_t c = 0; c < channels; ++c) mono_[i] += frames_[i * channels + c];
        mono_[i] /= static_cast<float>(channels);
    }
    if (!converter_) {
        block = mono_;
        return !block.empty();
    }

    // The converter holds some samples back until it is told that the input ends.
    block.resize(mono_.size() + framesPerBlock);
    SRC_DATA data{};
    data.data_in = mono_.data();
    data.input_frames = static_cast<long>(mono_.size());
    data.data_out = block.data();
    data.output_frames = static_cast<long>(block.size());
    data.end_of_input = ended_;
    data.src_ratio = ratio_;
    if (const int error = src_process(converter_, &data))
        throw std::runtime_error(src_strerror(error));
    block.resize(static_cast<std::size_t>(data.output_frames_gen));
    return !block.empty() || !ended_;
}
