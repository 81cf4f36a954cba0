#include "picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "../common/painter.h"

namespace {

constexpr int width = 1600;
constexpr int height = 900;

constexpr Box plot = {96, 206, plotColumns, 600};
constexpr Box wave = {plot.x, 112, plot.w, 80};
constexpr Box bar = {plot.x + plot.w + 40, plot.y, 22, plot.h};
constexpr int decibels = 70;  // from the bottom of the level scale to its top

constexpr Colour background = {0.055, 0.06, 0.08};
constexpr Colour ink = {0.92, 0.93, 0.95};
constexpr Colour faint = {0.60, 0.63, 0.68};
constexpr Colour line = {0.32, 0.35, 0.40};
constexpr Colour envelope = {0.96, 0.66, 0.30};

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

// A round step (1, 2 or 5 times a power of ten) that cuts the range into about `parts` parts.
double roundStep(double range, double parts) {
    const double raw = range / parts;
    const double power = std::pow(10, std::floor(std::log10(raw)));
    for (const double m : {1.0, 2.0, 5.0}) {
        if (m * power >= raw) return m * power;
    }
    return 10 * power;
}

// The same in seconds: above one second steps that divide a minute or an hour.
double timeStep(double seconds, double parts) {
    for (const double s : {1.0, 2.0, 5.0, 10.0, 15.0, 30.0, 60.0, 120.0, 300.0, 600.0, 1800.0}) {
        if (seconds > parts && s >= seconds / parts) return s;
    }
    return seconds > parts ? 3600.0 : roundStep(seconds, parts);
}

std::string number(double v, int decimals) {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%.*f", decimals, v);
    return text.data();
}

int decimalsOf(double step) {
    return step >= 1 ? 0 : static_cast<int>(std::ceil(-std::log10(step) - 1e-9));
}

std::string timeLabel(double seconds, double step) {
    if (step < 1) return number(seconds, decimalsOf(step));
    const auto s = std::lround(seconds);
    std::array<char, 64> text{};
    if (s >= 3600) {
        std::snprintf(text.data(), text.size(), "%ld:%02ld:%02ld", s / 3600, s / 60 % 60, s % 60);
    } else {
        std::snprintf(text.data(), text.size(), "%ld:%02ld", s / 60, s % 60);
    }
    return text.data();
}

// One pixel for each column and bin, row 0 being the highest bin.
Surface levelImage(const Spectrogram& s, double top) {
    const int columns = static_cast<int>(s.db.size());
    Surface image(cairo_image_surface_create(CAIRO_FORMAT_RGB24, columns, Spectrogram::bins));
    cairo_surface_flush(image.get());
    unsigned char* bytes = cairo_image_surface_get_data(image.get());
    const int stride = cairo_image_surface_get_stride(image.get());
    const auto byte = [](double v) { return static_cast<unsigned char>(std::lround(255 * v)); };
    for (int x = 0; x < columns; ++x) {
        const auto& column = s.db[static_cast<std::size_t>(x)];
        for (int k = 0; k < Spectrogram::bins; ++k) {
            const double level = column[static_cast<std::size_t>(k)];
            const Colour c = levelColour((level - top + decibels) / decibels);
            unsigned char* p = bytes + (Spectrogram::bins - 1 - k) * stride + 4 * x;
            p[0] = byte(c.b);
            p[1] = byte(c.g);
            p[2] = byte(c.r);
        }
    }
    cairo_surface_mark_dirty(image.get());
    return image;
}

void paintLevels(Painter& p, const Spectrogram& s, double top) {
    // Bin k stands at the height of its frequency; so the lowest and the highest bin, which lie on
    // the edges, show half of their pixels.
    const Surface image = levelImage(s, top);
    cairo_t* c = p.get();
    cairo_save(c);
    cairo_rectangle(c, plot.x, plot.y, plot.w, plot.h);
    cairo_clip(c);
    const double row = plot.h / (Spectrogram::bins - 1);
    cairo_translate(c, plot.x, plot.y - row / 2);
    cairo_scale(c, plot.w / static_cast<double>(s.db.size()), row);
    cairo_set_source_surface(c, image.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(c), CAIRO_FILTER_BILINEAR);
    cairo_pattern_set_extend(cairo_get_source(c), CAIRO_EXTEND_PAD);
    cairo_paint(c);
    cairo_restore(c);
    p.frame(plot);
}

void paintWave(Painter& p, const Spectrogram& s) {
    const float loudest = std::max(1e-6F, *std::max_element(s.peak.begin(), s.peak.end()));
    const double middle = wave.y + wave.h / 2;
    p.colour(envelope, 0.9);
    for (std::size_t x = 0; x < s.peak.size(); ++x) {
        const double half = std::max(0.5, s.peak[x] / loudest * wave.h / 2);
        cairo_rectangle(p.get(), wave.x + static_cast<double>(x), middle - half, 1, 2 * half);
    }
    cairo_fill(p.get());
    p.frame(wave);
}

void paintAxes(Painter& p, const Spectrogram& s) {
    const double step = timeStep(s.seconds, 12);
    for (int i = 0; i * step <= s.seconds; ++i) {
        const double x = plot.x + i * step / s.seconds * plot.w;
        tick(p, x, plot.y + plot.h, x, plot.y + plot.h + 6);
        p.text(timeLabel(i * step, step), x, plot.y + plot.h + 18, 14, 0.5, ink);
    }
    p.text(step < 1 ? "time (s)" : "time (min:s)", plot.x + plot.w / 2, height - 48, 15, 0.5,
           faint);

    const double top = s.rate / 2000;  // kHz
    const double stepF = roundStep(top, 10);
    for (int i = 0; i * stepF <= top * 1.0001; ++i) {
        const double y = plot.y + plot.h * (1 - i * stepF / top);
        tick(p, plot.x - 7, y, plot.x - 1, y);
        p.text(number(i * stepF, decimalsOf(stepF)), plot.x - 12, y, 14, 1, ink);
    }
    p.textUpwards("frequency (kHz)", 34, plot.y + plot.h / 2, 15, faint);
    p.textUpwards("envelope", 34, wave.y + wave.h / 2, 15, faint);
}

void paintScale(Painter& p, double top) {
    for (int y = 0; y < static_cast<int>(bar.h); ++y) {
        p.colour(levelColour(1 - y / (bar.h - 1)));
        cairo_rectangle(p.get(), bar.x, bar.y + y, bar.w, 1);
        cairo_fill(p.get());
    }
    p.frame(bar);
    for (int db = 0; db <= decibels; db += 10) {
        const double y = bar.y + bar.h * db / decibels;
        tick(p, bar.x + bar.w, y, bar.x + bar.w + 6, y);
        p.text(number(top - db, 0), bar.x + bar.w + 12, y, 14, 0, ink);
    }
    p.text("level (dB)", bar.x + bar.w / 2, bar.y - 16, 14, 0.5, faint);
}

}  // namespace

void writePicture(const Spectrogram& s, const std::string& title, const std::string& subtitle,
                  const std::string& path) {
    double loudest = -300;
    for (const auto& column : s.db) {
        loudest = std::max<double>(loudest, *std::max_element(column.begin(), column.end()));
    }
    const double top = std::max(-120.0, 10 * std::ceil(loudest / 10)) + 0.0;  // not -0

    Painter p(width, height, background, line, ink);
    p.text(title, plot.x, 42, 26, 0, ink, true);
    p.text(subtitle, plot.x, 78, 15, 0, faint);
    paintWave(p, s);
    paintLevels(p, s, top);
    paintAxes(p, s);
    paintScale(p, top);
    p.write(path);
}
