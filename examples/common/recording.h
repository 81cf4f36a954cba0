// SPDX-License-Identifier: MIT
// A recording, read block by block, each channel by itself.

#ifndef EXAMPLES_RECORDING_H
#define EXAMPLES_RECORDING_H

#include <cstdint>
#include <string>
#include <vector>

struct sf_private_tag;

// A reader's voice, from the LibriVox recordings in Debian's package pocketsphinx-testdata.
constexpr const char* defaultRecording =
    "/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-0870.wav";

class Recording {
  public:
    // Samples by channel, as many in each.
    using Block = std::vector<std::vector<float>>;

    // Opens the file; BadInput where that fails.
    explicit Recording(const std::string& path);
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    double rate() const { return rate_; }  // frames a second
    std::size_t channels() const { return channels_; }
    std::int64_t announced() const { return announced_; }  // frames by the file's head; 0: unknown
    std::int64_t frames() const { return frames_; }        // read so far
    double part() const;                                   // read so far, between 0 and 1
    const std::string& title() const { return title_; }
    std::string origin() const;  // rate, channels and duration
    // What is not as it should be with what was read, a sentence each.
    std::vector<std::string> remarks() const;

    // The next `frames` frames, fewer at the end; false where there are none.
    bool read(std::size_t frames, Block& block);

  private:
    sf_private_tag* file_ = nullptr;
    std::size_t channels_ = 1;
    double rate_ = 0;
    std::int64_t announced_ = 0, frames_ = 0, notNumbers_ = 0;
    std::string title_;
    std::vector<float> interleaved_;
};

#endif
