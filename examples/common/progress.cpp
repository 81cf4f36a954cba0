// SPDX-License-Identifier: MIT
#include "progress.h"

#include <unistd.h>

#include <cstdio>

void ProgressLine::operator()(double part) {
    static const bool terminal = isatty(STDERR_FILENO) != 0;
    constexpr auto patience = std::chrono::milliseconds(500);
    const int percent = static_cast<int>(100 * part);
    const int step = terminal ? 1 : 10;
    if (percent / step == shown_ / step || Clock::now() - begin_ < patience) return;
    shown_ = percent;
    std::fprintf(stderr, "%s%s: %3d %%", terminal ? "\r" : "", what_.c_str(), percent);
    if (!terminal || percent == 100) std::fputc('\n', stderr);
    std::fflush(stderr);
}
