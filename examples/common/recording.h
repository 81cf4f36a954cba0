// A recording, read block by block as one channel at a chosen rate.

#ifndef EXAMPLES_RECORDING_H
#define EXAMPLES_RECORDING_H

#include <cstdint>
#include <string>
#include <vector>

struct sf_private_tag;
struct SRC_STATE_tag;

// A reader's voice, from the LibriVox recordings in Debian's package pocketsphinx-testdata.
constexpr const char* defaultRecording =
    "/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-0870.wav";

class Recording {
  public:
    // Opens the file, BadInput where that fails; samples come at a rate of twice the band, at most
    // at the file's own.
    Recording(const std::string& path, double band);
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    double rate() const { return rate_; }            // samples a second, as read() gives them
    std::int64_t length() const { return length_; }  // about how many samples will come
    double seconds() const { return seconds_; }
    const std::string& title() const { return title_; }
    const std::string& origin() const { return origin_; }  // rate and channels of the file

    // The next samples, the channels averaged; false at the end.
    bool read(std::vector<float>& block);

  private:
    sf_private_tag* file_ = nullptr;
    SRC_STATE_tag* converter_ = nullptr;
    int channels_ = 1;
    double ratio_ = 1;
    double rate_ = 0;
    double seconds_ = 0;
    std::int64_t length_ = 0;
    bool ended_ = false;
    std::string title_;
    std::string origin_;
    std::vector<float> frames_;
    std::vector<float> mono_;
};

#endif
