// SPDX-License-Identifier: MIT
#include "resampler.h"

#include <samplerate.h>

#include <stdexcept>

void Resampler::Release::operator()(SRC_STATE_tag* state) const { src_delete(state); }

Resampler::Resampler(double ratio) : ratio_(ratio) {
    int error = 0;
    state_.reset(src_new(SRC_SINC_MEDIUM_QUALITY, 1, &error));
    if (!state_) throw std::runtime_error(src_strerror(error));
}

void Resampler::convert(const std::vector<float>& block, bool last, std::vector<float>& out) {
    out.clear();
    std::vector<float> part(4096);
    SRC_DATA data{};
    data.data_in = block.data();
    data.input_frames = static_cast<long>(block.size());
    data.data_out = part.data();
    data.output_frames = static_cast<long>(part.size());
    data.end_of_input = last;
    data.src_ratio = ratio_;
    do {
        if (const int error = src_process(state_.get(), &data))
            throw std::runtime_error(src_strerror(error));
        out.insert(out.end(), part.begin(), part.begin() + data.output_frames_gen);
        data.data_in += data.input_frames_used;
        data.input_frames -= data.input_frames_used;
    } while (data.input_frames > 0 || data.output_frames_gen == data.output_frames);
}
