// SPDX-License-Identifier: MIT
#include "picture.h"

#include <algorithm>
#include <cmath>

#include "../common/axis.h"

namespace {

using namespace light;
using layout::after;
using layout::before;
using layout::channel;
using layout::errors;
using layout::reach;

constexpr int width = 1600, height = 960;

constexpr Colour truth = {0.16, 0.36, 0.62};
constexpr Colour measured = {0.80, 0.33, 0.13};

void drawConstellation(Painter& painter, const Box& box, const std::string& caption,
                       const std::vector<Complex>& values, const Colour& colour) {
    painter.frame(box, caption);
    const auto xOf = [&](double re) { return box.x + box.w * (re + reach) / (2 * reach); };
    const auto yOf = [&](double im) { return box.y + box.h * (reach - im) / (2 * reach); };
    for (int tick = -2; tick <= 2; ++tick) {
        const bool edge = std::abs(tick) == 2;
        if (!edge) painter.segment(xOf(tick), box.y, xOf(tick), box.y + box.h, line);
        if (!edge) painter.segment(box.x, yOf(tick), box.x + box.w, yOf(tick), line);
        painter.text(formatted("%.0f", tick), xOf(tick), box.y + box.h + 16, 13, 0.5, faint);
        painter.text(formatted("%.0f", tick), box.x - 10, yOf(tick), 13, 1, faint);
    }
    painter.text("real part", box.x + box.w / 2, box.y + box.h + 38, 14, 0.5, faint);
    painter.textUpwards("imaginary part", box.x - 44, box.y + box.h / 2, 14, faint);

    cairo_save(painter.get());
    cairo_rectangle(painter.get(), box.x, box.y, box.w, box.h);
    cairo_clip(painter.get());
    for (std::size_t i = 0; i < std::min(pointsShown, values.size()); ++i) {
        painter.dot(xOf(static_cast<double>(values[i].real())),
                    yOf(static_cast<double>(values[i].imag())), 1.3, colour, 0.4);
    }
    cairo_restore(painter.get());
}

// The axis of carriers below a box.
double carrierX(const Box& box, int carrier) { return box.x + box.w * (carrier + 27.0) / 54; }

void carrierAxis(Painter& painter, const Box& box) {
    for (const int tick : {-26, -13, 0, 13, 26}) {
        const double x = carrierX(box, tick);
        painter.segment(x, box.y + box.h, x, box.y + box.h + 5, faint);
        painter.text(formatted("%.0f", tick), x, box.y + box.h + 16, 13, 0.5, faint);
    }
    painter.text("carrier", box.x + box.w / 2, box.y + box.h + 38, 14, 0.5, faint);
}

// One height for each carrier, joined on either side of the unused middle one.
template <class HeightOf>
void curve(Painter& painter, const Box& box, const Colour& colour, const HeightOf& heightOf) {
    painter.colour(colour);
    cairo_set_line_width(painter.get(), 2);
    for (std::size_t k = 0; k < carriers; ++k) {
        const double x = carrierX(box, carrierNumber(k));
        if (k == 0 || k == carriers / 2) {
            cairo_move_to(painter.get(), x, heightOf(k));
        } else {
            cairo_line_to(painter.get(), x, heightOf(k));
        }
    }
    cairo_stroke(painter.get());
    cairo_set_line_width(painter.get(), 1);
}

void drawChannel(Painter& painter, const Outcome& outcome) {
    painter.frame(channel, "the channel's response in dB");
    carrierAxis(painter, channel);
    constexpr double top = 10, bottom = -20;
    const auto yOf = [&](double level) {
        return channel.y + channel.h * (top - std::clamp(level, bottom, top)) / (top - bottom);
    };
    for (int level = -20; level <= 10; level += 5) {
        painter.segment(channel.x, yOf(level), channel.x + channel.w, yOf(level), line);
        painter.text(formatted("%.0f dB", level), channel.x - 8, yOf(level), 13, 1, faint);
    }
    curve(painter, channel, truth,
          [&](std::size_t k) { return yOf(10 * std::log10(std::norm(outcome.channel[k]))); });
    for (std::size_t k = 0; k < carriers; ++k) {
        const double power = static_cast<double>(std::norm(outcome.estimate[k]));
        painter.dot(carrierX(channel, carrierNumber(k)), yOf(10 * std::log10(power + 1e-30)), 3,
                    measured);
    }
    painter.text("line: as it is", channel.x + channel.w - 10, channel.y + channel.h - 40, 14, 1,
                 truth);
    painter.text("dots: as the first frame's training shows it", channel.x + channel.w - 10,
                 channel.y + channel.h - 18, 14, 1, measured);
}

void drawErrors(Painter& painter, const Picture& picture) {
    const Outcome& outcome = picture.outcome;
    painter.frame(errors,
                  "bit error rate by carrier: line, in theory; dots, as counted (on the "
                  "lower edge: none, or fewer)");
    carrierAxis(painter, errors);
    constexpr double top = 0, bottom = -6;
    const auto yOf = [&](double rate) {
        const double power = std::clamp(std::log10(std::max(rate, 1e-30)), bottom, top);
        return errors.y + errors.h * (top - power) / (top - bottom);
    };
    for (int power = -6; power <= 0; ++power) {
        const double y = yOf(std::pow(10, power));
        painter.segment(errors.x, y, errors.x + errors.w, y, line);
        painter.text(formatted("1e%.0f", power), errors.x - 10, y, 13, 1, faint);
    }
    if (picture.settings.snr) {
        curve(painter, errors, truth,
              [&](std::size_t k) { return yOf(outcome.theory.byCarrier[k]); });
    }
    const double sent = static_cast<double>(outcome.sent) / carriers;
    for (std::size_t k = 0; k < carriers; ++k) {
        painter.dot(carrierX(errors, carrierNumber(k)),
                    yOf(static_cast<double>(outcome.wrongByCarrier[k]) / sent), 3.5, measured);
    }
    painter.text(formatted("counted %.3g", outcome.rate()) +
                     formatted(", theory %.3g", outcome.theory.estimated) + " in all",
                 errors.x + errors.w - 10, errors.y + 16, 14, 1, ink);
}

}  // namespace

void writePicture(const Picture& picture, const std::string& path) {
    Painter painter(width, height, background, line, ink);
    const Outcome& outcome = picture.outcome;
    constexpr double room = width - before.x - 40;
    painter.text(picture.title, before.x, 36, 24, 0, ink, Painter::Weight::plain, room);
    painter.text(picture.subtitle, before.x, 68, 16, 0, faint, Painter::Weight::plain, room);
    drawConstellation(painter, before, "received, before the equaliser", outcome.before, measured);
    drawConstellation(painter, after,
                      "after it, error vector " + formatted("%.3g %%", 100 * outcome.errorVector),
                      outcome.after, truth);
    drawChannel(painter, outcome);
    drawErrors(painter, picture);
    painter.write(path);
}
