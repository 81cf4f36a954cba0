# SPDX-License-Identifier: MIT
#: ./dev run [--band HZ] [FILE [PICTURE]]   the spectrogram of a recording (WAV, FLAC, OGG; by default a voice out of Debian)
# The picture, spectrogram.png unless it is named, lands in the folder that the command is called from.
# shellcheck shell=bash
made spectrogram
run_for_caller spectrogram "$@"
