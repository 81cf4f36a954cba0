// SPDX-License-Identifier: MIT
#include "picture.h"

#include <algorithm>
#include <cmath>

#include "../common/axis.h"

namespace {

using namespace light;
using layout::errors;
using layout::levels;
using layout::wave;

constexpr int width = 1600, height = 1000;
constexpr double decibels = 80;  // from the darkest level to the brightest

constexpr Colour original = {0.16, 0.36, 0.62};
constexpr Colour single = {0.80, 0.33, 0.13};
constexpr Colour twice = {0.12, 0.47, 0.40};

// The figures of the samples under each pixel.
std::vector<Samples> stretches(const RoundTrip& trip) {
    std::vector<Samples> all;
    const double step = static_cast<double>(trip.samples.count()) / RoundTrip::columns;
    for (std::size_t x = 0; x < RoundTrip::columns; ++x) {
        const auto first = static_cast<double>(x);
        all.push_back(trip.samples.over(first * step, (first + 1) * step));
    }
    return all;
}

// Places of the ticks, with their times.
std::vector<std::pair<double, double>> ticksOf(const TimeAxis& axis, const Box& box,
                                               double seconds) {
    std::vector<std::pair<double, double>> ticks;
    for (int i = 0; i * axis.step() <= seconds * 1.0001; ++i) {
        const double time = i * axis.step();
        ticks.emplace_back(std::floor(box.x + time / seconds * box.w) + 0.5, time);
    }
    return ticks;
}

void drawTicks(Painter& painter, const TimeAxis& axis, const Box& box, double seconds) {
    for (const auto& [x, at] : ticksOf(axis, box, seconds))
        painter.segment(x, box.bottom() + 1, x, box.bottom() + 6, faint);
}

void drawTimes(Painter& painter, const TimeAxis& axis, const Box& box, double seconds) {
    for (const auto& [x, at] : ticksOf(axis, box, seconds))
        painter.text(axis.label(at), x, box.bottom() + 18, 13, 0.5, faint);
    painter.text(std::string("time (") + axis.unit() + ")", box.x + box.w / 2, box.bottom() + 42,
                 14, 0.5, faint);
}

std::string largestOf(const RoundTrip& trip) {
    return trip.channels > 1 ? ", the largest of all channels" : "";
}

// From the least to the greatest value under each pixel, joined to the one before.
void drawWave(Painter& painter, const RoundTrip& trip, const std::vector<Samples>& columns) {
    painter.frame(wave, trip.channels > 1 ? "samples of all channels" : "samples");
    const double peak = trip.peak > 0 ? trip.peak : 1;
    const double middle = wave.y + wave.h / 2;
    const auto heightOf = [&](double v) { return middle - v / peak * wave.h * 0.48; };
    for (std::size_t x = 0; x < columns.size(); ++x) {
        const double at = wave.x + static_cast<double>(x) + 0.5;
        const Samples& before = columns[x == 0 ? 0 : x - 1];
        const double top = heightOf(static_cast<double>(std::max(columns[x].most, before.least)));
        const double bottom =
            heightOf(static_cast<double>(std::min(columns[x].least, before.most)));
        painter.segment(at, top - 0.75, at, bottom + 0.75, original);
    }
    for (const double v : {-peak, 0.0, peak}) {
        painter.text(v == 0 ? "0" : formatted("%+.3g", v), wave.x - 10, heightOf(v), 13, 1, faint);
    }
}

void drawLevels(Painter& painter, const Picture& picture) {
    const RoundTrip& trip = picture.trip;
    painter.frame(levels, "levels of the MDCT coefficients, " + formatted("%.0f", decibels) +
                              " dB from white to dark" + largestOf(trip));
    const double step = static_cast<double>(trip.samples.count()) / RoundTrip::columns;
    const auto blockAt = [&](double column) {
        return column * step / static_cast<double>(trip.size) + 0.5;
    };
    std::vector<Magnitudes> columns;
    float peak = 0;
    for (std::size_t x = 0; x < RoundTrip::columns; ++x) {
        const auto first = static_cast<double>(x);
        columns.push_back(trip.magnitudes.over(blockAt(first), blockAt(first + 1)));
        for (const float m : columns.back().rows) peak = std::max(peak, m);
    }
    const auto colourOf = [&](int x, int row) -> Colour {
        const std::vector<float>& rows = columns[static_cast<std::size_t>(x)].rows;
        const float m = rows[static_cast<std::size_t>(row) * rows.size() / RoundTrip::rows];
        const double level = 20 * std::log10(static_cast<double>(m / peak) + 1e-12);
        const double t = peak > 0 ? std::clamp(1 + level / decibels, 0.0, 1.0) : 0;
        return {1 - 0.94 * t, 1 - 0.88 * t, 1 - 0.65 * t};
    };
    painter.map(levels, levels, RoundTrip::columns, RoundTrip::rows, colourOf);
    const double kHz = picture.rate / 2000;
    const double tick = roundStep(kHz, 5);
    for (int i = 0; i * tick <= kHz * 1.0001; ++i) {
        const double y = levels.bottom() - levels.h * i * tick / kHz;
        painter.segment(levels.x - 6, y, levels.x - 1, y, faint);
        painter.text(stepLabel(i * tick, tick) + " kHz", levels.x - 10, y, 13, 1, faint);
    }
}

// On a logarithmic scale: both errors lie below the last bit of the recording's 16.
void drawErrors(Painter& painter, const RoundTrip& trip, const std::vector<Samples>& columns) {
    painter.frame(errors, "error of the reconstruction, |output - input|" + largestOf(trip) +
                              " (on the lower edge: none)");
    constexpr double top = -3, bottom = -19;
    const auto heightOf = [&](double value) {
        const double power = std::log10(std::max(value, 1e-30));
        return errors.y + errors.h * (top - std::clamp(power, bottom, top)) / (top - bottom);
    };
    for (double power = top; power >= bottom; power -= 4) {
        const double y = heightOf(std::pow(10, power));
        painter.segment(errors.x, y, errors.right(), y, line);
        painter.text(formatted("1e%.0f", power), errors.x - 10, y, 13, 1, faint);
    }
    const double halfStep = heightOf(1.0 / 65536);
    painter.segment(errors.x, halfStep, errors.right(), halfStep, faint);
    painter.text("half a step of 16-bit samples", errors.x + 10, halfStep - 11, 13, 0, faint);

    double right = errors.right();  // of the legend, which stands beside the caption
    const auto draw = [&](double Samples::*error, const Quality& quality, const Colour& colour,
                          const std::string& name) {
        painter.colour(colour);
        for (std::size_t x = 0; x < columns.size(); ++x) {
            cairo_line_to(painter.get(), errors.x + static_cast<double>(x) + 0.5,
                          heightOf(columns[x].*error));
        }
        cairo_stroke(painter.get());
        painter.text(
            name + (quality.exact() ? ": exact"
                                    : formatted(": %.0f dB below the signal", quality.decibels())),
            right, errors.y - 16, 14, 1, colour);
        right -= 270;
    };
    draw(&Samples::doubleError, trip.twice, twice, "binary64");
    draw(&Samples::singleError, trip.single, single, "binary32");
}

}  // namespace

void writePicture(const Picture& picture, const std::string& path) {
    Painter painter(width, height, background, line, ink);
    constexpr double room = width - wave.x - 40;
    painter.text(picture.title, wave.x, 36, 24, 0, ink, Painter::Weight::plain, room);
    painter.text(picture.subtitle, wave.x, 68, 16, 0, faint, Painter::Weight::plain, room);
    const std::vector<Samples> columns = stretches(picture.trip);
    const double seconds = static_cast<double>(picture.trip.samples.count()) / picture.rate;
    const TimeAxis time(seconds, 10);
    drawWave(painter, picture.trip, columns);
    drawTicks(painter, time, wave, seconds);
    drawLevels(painter, picture);
    drawTicks(painter, time, levels, seconds);
    drawErrors(painter, picture.trip, columns);
    drawTicks(painter, time, errors, seconds);
    drawTimes(painter, time, errors, seconds);
    painter.write(path);
}
