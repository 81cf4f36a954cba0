// SPDX-License-Identifier: MIT
#include "picture.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "../common/axis.h"

namespace {

constexpr Colour background = {0.055, 0.06, 0.08};
constexpr Colour ink = {0.92, 0.93, 0.95};
constexpr Colour faint = {0.60, 0.63, 0.68};
constexpr Colour line = {0.32, 0.35, 0.40};
constexpr Colour wave = {0.96, 0.66, 0.30};

constexpr double labels = 22;    // where the axes' labels stand, left of their numbers
constexpr double silent = -190;  // below it there is nothing but what keeps the logarithm finite

// From dark to bright with steadily growing lightness, so that level reads also without hue.
Colour levelColour(double t) {
    static constexpr std::array<Colour, 8> stops = {{{0.015, 0.012, 0.060},
                                                     {0.115, 0.065, 0.275},
                                                     {0.310, 0.070, 0.480},
                                                     {0.510, 0.145, 0.505},
                                                     {0.715, 0.215, 0.475},
                                                     {0.915, 0.350, 0.390},
                                                     {0.985, 0.625, 0.430},
                                                     {0.990, 0.960, 0.750}}};
    const double p = std::clamp(t, 0.0, 1.0) * (stops.size() - 1);
    const auto i = std::min(static_cast<std::size_t>(p), stops.size() - 2);
    const double f = p - static_cast<double>(i);
    const Colour& a = stops[i];
    const Colour& b = stops[i + 1];
    return {a.r + f * (b.r - a.r), a.g + f * (b.g - a.g), a.b + f * (b.b - a.b)};
}

// On whole pixels, so that it is sharp.
void tick(Painter& p, double x0, double y0, double x1, double y1) {
    p.segment(std::floor(x0) + 0.5, std::floor(y0) + 0.5, std::floor(x1) + 0.5,
              std::floor(y1) + 0.5, faint);
}

void paintLevels(Painter& p, const Box& box, const std::vector<Spectrogram::Column>& columns,
                 const Spectrogram& s, const LevelRange& range) {
    // Bin k stands at the height of its frequency; so half of the lowest bin lies below the box,
    // and what the recording has above the highest frequency shown lies above it.
    const double row = box.h * s.binWidth() / s.top;
    const Box place = {box.x, box.bottom() + row / 2 - row * Spectrogram::bins, box.w,
                       row * Spectrogram::bins};
    p.map(box, place, static_cast<int>(columns.size()), Spectrogram::bins,
          [&](int column, int bin) {
              const double db =
                  columns[static_cast<std::size_t>(column)].db[static_cast<std::size_t>(bin)];
              return levelColour((db - range.bottom) / (range.top - range.bottom));
          });
    p.frame(box);
}

void paintEnvelope(Painter& p, const Box& box, const std::vector<Spectrogram::Column>& columns,
                   float loudest) {
    const double middle = box.y + box.h / 2;
    p.colour(wave, 0.9);
    for (std::size_t x = 0; x < columns.size(); ++x) {
        const double share = loudest > 0 ? static_cast<double>(columns[x].peak / loudest) : 0;
        const double half = std::max(0.5, share * box.h / 2);
        cairo_rectangle(p.get(), box.x + static_cast<double>(x), middle - half, 1, 2 * half);
    }
    cairo_fill(p.get());
    p.frame(box);
    const std::string reach = formatted("%.3g", static_cast<double>(loudest));
    if (loudest > 0) {
        p.text("+" + reach, box.x - 12, box.y + 6, 14, 1, ink);
        p.text("-" + reach, box.x - 12, box.bottom() - 6, 14, 1, ink);
    }
    p.textUpwards("envelope", labels, middle, std::min(15.0, box.h / 4.5), faint);
}

void paintFrequencies(Painter& p, const Box& box, double top) {
    const double kHz = top / 1000;
    const double step = roundStep(kHz, std::max(2.0, box.h / 60));
    for (int i = 0; i * step <= kHz * 1.0001; ++i) {
        const double y = box.y + box.h * (1 - i * step / kHz);
        tick(p, box.x - 7, y, box.x - 1, y);
        p.text(stepLabel(i * step, step), box.x - 12, y, 14, 1, ink);
    }
    p.textUpwards("frequency (kHz)", labels, box.y + box.h / 2, 15, faint);
}

void paintTimes(Painter& p, const Box& box, double seconds) {
    const TimeAxis axis(seconds, 12);
    for (int i = 0; i * axis.step() <= seconds * 1.0001; ++i) {
        const double x = box.x + i * axis.step() / seconds * box.w;
        tick(p, x, box.bottom(), x, box.bottom() + 6);
        p.text(axis.label(i * axis.step()), x, box.bottom() + 18, 14, 0.5, ink);
    }
    p.text(std::string("time (") + axis.unit() + ")", box.x + box.w / 2, box.bottom() + 46, 15, 0.5,
           faint);
}

void paintScale(Painter& p, const Box& box, const LevelRange& range) {
    const int rows = static_cast<int>(box.h);
    p.map(box, box, static_cast<int>(box.w), rows,
          [&](int, int row) { return levelColour(row / (rows - 1.0)); });
    p.frame(box);
    const double span = range.top - range.bottom;
    const int step = span > 30 ? 10 : 5;
    const int highest = step * static_cast<int>(std::floor(range.top / step));
    for (int db = highest; db >= range.bottom; db -= step) {
        const double y = box.y + box.h * (range.top - db) / span;
        tick(p, box.right(), y, box.right() + 6, y);
        p.text(std::to_string(db), box.right() + 12, y, 14, 0, ink);
    }
    p.text("level (dB)", box.x + box.w / 2, box.y - 16, 14, 0.5, faint);
}

std::string nameOf(std::size_t channel, const Spectrogram& s) {
    if (s.joined || s.channels.size() == 1) return "";
    if (s.channels.size() == 2) return channel == 0 ? "left" : "right";
    return "channel " + std::to_string(channel + 1);
}

}  // namespace

Layout::Layout(std::size_t count)
    : channels(count),
      panelHeight(std::max(
          200.0, (694.0 - 22 * static_cast<double>(count - 1)) / static_cast<double>(count))),
      height(static_cast<int>(112 + (panelHeight + 22) * static_cast<double>(count) - 22 + 94)) {}

Box Layout::envelope(std::size_t channel) const {
    const double y = 112 + (panelHeight + 22) * static_cast<double>(channel);
    return {116, std::floor(y), Spectrogram::columns, std::floor(40 + (panelHeight - 200) * 0.08)};
}

Box Layout::levels(std::size_t channel) const {
    const Box above = envelope(channel);
    const double gap = channels == 1 ? 14 : 6;
    return {above.x, above.bottom() + gap, above.w, std::floor(panelHeight - above.h - gap)};
}

Box Layout::scale() const {
    const Box first = levels(0);
    const double last = levels(channels - 1).bottom();
    return {first.right() + 40, first.y, 22, std::min(last - first.y, 600.0)};
}

LevelRange levelRange(const Spectrogram& s) {
    std::vector<double> levels;
    for (const auto& channel : s.channels) {
        for (const auto& column : channel) {
            for (int k = 0; k < s.binsShown(); ++k) {
                const double db = column.db[static_cast<std::size_t>(k)];
                if (db > silent) levels.push_back(db);
            }
        }
    }
    if (levels.empty()) return {-90, 0};
    // From the loudest down to what only one part in fifty lies below, in steps of 5 dB.
    const double top = 5 * std::ceil(s.loudest().db / 5 - 0.01) + 0.0;  // not -0
    const auto low = levels.begin() + static_cast<std::ptrdiff_t>(levels.size() / 50);
    std::nth_element(levels.begin(), low, levels.end());
    const double bottom = 5 * std::floor(*low / 5);
    return {std::clamp(bottom, top - 90, top - 20), top};
}

void writePicture(const Spectrogram& s, const std::string& title, const std::string& subtitle,
                  const std::string& path) {
    const Layout layout(s.channels.size());
    Painter p(layout.width, layout.height, background, line, ink);
    const double left = layout.levels(0).x, room = layout.width - left - 40;
    p.text(title, left, 42, 26, 0, ink, Painter::Weight::bold, room);
    p.text(subtitle, left, 78, 15, 0, faint, Painter::Weight::plain, room);

    float loudest = 0;
    for (const auto& channel : s.channels)
        for (const auto& column : channel) loudest = std::max(loudest, column.peak);
    const LevelRange range = levelRange(s);
    for (std::size_t c = 0; c < s.channels.size(); ++c) {
        const Box levels = layout.levels(c);
        paintEnvelope(p, layout.envelope(c), s.channels[c], loudest);
        paintLevels(p, levels, s.channels[c], s, range);
        p.text(nameOf(c, s), levels.x + 10, levels.y + 16, 15, 0, ink, Painter::Weight::bold);
        paintFrequencies(p, levels, s.top);
    }
    if (s.loudest().db < silent) {
        const Box box = layout.levels(0);
        p.text("silence", box.x + box.w / 2, box.y + box.h / 2, 20, 0.5, faint);
    }
    paintTimes(p, layout.levels(s.channels.size() - 1), s.seconds);
    paintScale(p, layout.scale(), range);
    p.write(path);
}
