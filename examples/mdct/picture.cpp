#include "picture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "../common/painter.h"

namespace {

constexpr int width = 1600, height = 1000;
constexpr double decibels = 80;  // from the darkest level to the brightest

constexpr Box wave = {110, 116, 1450, 150};
constexpr Box levels = {110, 310, 1450, 330};
constexpr Box errors = {110, 700, 1450, 220};

constexpr Colour background = {1, 1, 1};
constexpr Colour ink = {0.10, 0.11, 0.13};
constexpr Colour faint = {0.38, 0.40, 0.44};
constexpr Colour line = {0.78, 0.79, 0.82};
constexpr Colour original = {0.16, 0.36, 0.62};
constexpr Colour single = {0.80, 0.33, 0.13};
constexpr Colour twice = {0.12, 0.47, 0.40};

// One vertical stroke for each pixel column, from the least to the greatest value that falls in it.
template <class Value, class Height>
void strokes(Painter& painter, const Box& box, const std::vector<Value>& values,
             const Colour& colour, const Height& heightOf) {
    const auto columns = static_cast<std::size_t>(box.w);
    for (std::size_t column = 0; column < columns; ++column) {
        const std::size_t from = column * values.size() / columns;
        const std::size_t to = std::max(from + 1, (column + 1) * values.size() / columns);
        if (to > values.size()) break;
        const auto [least, most] =
            std::minmax_element(values.begin() + static_cast<std::ptrdiff_t>(from),
                                values.begin() + static_cast<std::ptrdiff_t>(to));
        const double x = box.x + static_cast<double>(column) + 0.5;
        painter.segment(x, heightOf(*least) + 0.5, x, heightOf(*most) - 0.5, colour);
    }
}

void drawWave(Painter& painter, const Picture& picture) {
    painter.frame(wave, "samples");
    double peak = 1e-9;
    for (const float sample : picture.samples) {
        peak = std::max(peak, static_cast<double>(std::abs(sample)));
    }
    const double middle = wave.y + wave.h / 2;
    strokes(painter, wave, picture.samples, original,
            [&](float v) { return middle - static_cast<double>(v) / peak * wave.h * 0.48; });
    for (const double v : {-peak, 0.0, peak}) {
        painter.text(formatted("%.2f", v), wave.x - 10, middle - v / peak * wave.h * 0.48, 13, 1,
                     faint);
    }
}

void drawLevels(Painter& painter, const Picture& picture) {
    const auto& blocks = picture.single.coefficients;
    painter.frame(levels, "levels of the MDCT coefficients, 80 dB from white to dark");
    float peak = 1e-9F;
    for (const auto& block : blocks) {
        for (const float c : block) peak = std::max(peak, std::abs(c));
    }
    const auto w = static_cast<int>(levels.w), h = static_cast<int>(levels.h);
    const Surface image(cairo_image_surface_create(CAIRO_FORMAT_RGB24, w, h));
    cairo_surface_flush(image.get());
    unsigned char* pixels = cairo_image_surface_get_data(image.get());
    const int stride = cairo_image_surface_get_stride(image.get());
    // Which coefficients a row shows, and which block a column.
    const std::size_t m = blocks[0].size();
    const auto rows = static_cast<std::size_t>(h), columns = static_cast<std::size_t>(w);
    for (std::size_t row = 0; row < rows; ++row) {
        auto* out = reinterpret_cast<std::uint32_t*>(pixels + static_cast<int>(row) * stride);
        const std::size_t first = (rows - 1 - row) * m / rows;
        const std::size_t last = std::max(first + 1, (rows - row) * m / rows);
        for (std::size_t column = 0; column < columns; ++column) {
            const auto& block = blocks[column * blocks.size() / columns];
            float most = 0;
            for (std::size_t k = first; k < last; ++k) {
                most = std::max(most, std::abs(block[k]));
            }
            const double level =
                20 * std::log10(static_cast<double>(most) / static_cast<double>(peak) + 1e-12);
            const double t = std::clamp(1 + level / decibels, 0.0, 1.0);
            const auto shade = [&](double dark) {
                return static_cast<std::uint32_t>(255 * (1 - t * (1 - dark)));
            };
            out[column] = shade(0.06) << 16 | shade(0.12) << 8 | shade(0.35);
        }
    }
    cairo_surface_mark_dirty(image.get());
    cairo_set_source_surface(painter.get(), image.get(), levels.x, levels.y);
    cairo_paint(painter.get());
    for (int part = 0; part <= 4; ++part) {
        painter.text(formatted("%.1f kHz", picture.rate / 2000 * part / 4), levels.x - 10,
                     levels.y + levels.h * (1 - part / 4.0), 13, 1, faint);
    }
}

// On a logarithmic scale: both errors lie below the last bit of the recording's 16.
void drawErrors(Painter& painter, const Picture& picture) {
    painter.frame(errors, "error of the reconstruction, |output - input|: the largest of a column");
    constexpr double top = -3, bottom = -19;
    const auto heightOf = [&](double logarithm) {
        return errors.y + errors.h * (top - std::clamp(logarithm, bottom, top)) / (top - bottom);
    };
    for (int step = 0; step <= 4; ++step) {
        const double power = top - 4 * step;
        painter.segment(errors.x, heightOf(power), errors.x + errors.w, heightOf(power), line);
        painter.text(formatted("1e%.0f", power), errors.x - 10, heightOf(power), 13, 1, faint);
    }
    const auto draw = [&](const Reconstruction& r, const Colour& colour, const std::string& name) {
        const auto columns = static_cast<std::size_t>(errors.w);
        painter.colour(colour);
        for (std::size_t column = 0; column < columns; ++column) {
            const std::size_t from = column * r.error.size() / columns;
            const std::size_t to = std::min(
                r.error.size(), std::max(from + 1, (column + 1) * r.error.size() / columns));
            double most = 0;
            for (std::size_t i = from; i < to; ++i) most = std::max(most, std::abs(r.error[i]));
            const double y = heightOf(std::log10(std::max(most, 1e-30)));
            const double x = errors.x + static_cast<double>(column) + 0.5;
            if (column == 0) {
                cairo_move_to(painter.get(), x, y);
            } else {
                cairo_line_to(painter.get(), x, y);
            }
        }
        cairo_stroke(painter.get());
        painter.text(name, errors.x + errors.w - 10, heightOf(std::log10(r.largest)) - 16, 14, 1,
                     colour);
    };
    const double lastBit = std::log10(1.0 / 65536);
    painter.segment(errors.x, heightOf(lastBit), errors.x + errors.w, heightOf(lastBit), faint);
    painter.text("half a step of 16-bit samples", errors.x + 10, heightOf(lastBit) - 11, 13, 0,
                 faint);
    draw(picture.single, single, "binary32" + formatted(", %.0f dB", picture.single.signalToNoise));
    draw(picture.twice, twice, "binary64" + formatted(", %.0f dB", picture.twice.signalToNoise));
    const double seconds = static_cast<double>(picture.samples.size()) / picture.rate;
    for (int part = 0; part <= 8; ++part) {
        painter.text(formatted("%.1f s", seconds * part / 8), errors.x + errors.w * part / 8,
                     errors.y + errors.h + 18, 13,
                     part == 0   ? 0
                     : part == 8 ? 1
                                 : 0.5,
                     faint);
    }
}

}  // namespace

void writePicture(const Picture& picture, const std::string& path) {
    Painter painter(width, height, background, line, ink);
    painter.text(picture.title, wave.x, 36, 24, 0, ink);
    painter.text(picture.subtitle, wave.x, 68, 16, 0, faint);
    drawWave(painter, picture);
    drawLevels(painter, picture);
    drawErrors(painter, picture);
    painter.write(path);
}
