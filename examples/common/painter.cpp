// SPDX-License-Identifier: MIT
#include "painter.h"

#include <cmath>
#include <numbers>

#include "picture_file.h"

namespace {

cairo_surface_t* recordingSurface(int width, int height) {
    const cairo_rectangle_t extents = {0, 0, static_cast<double>(width),
                                       static_cast<double>(height)};
    return cairo_recording_surface_create(CAIRO_CONTENT_COLOR, &extents);
}

}  // namespace

Painter::Painter(int width, int height, const Colour& background, const Colour& line,
                 const Colour& text)
    : width_(width),
      height_(height),
      recorded_(recordingSurface(width, height)),
      context_(cairo_create(recorded_.get())),
      line_(line),
      text_(text) {
    colour(background);
    cairo_paint(get());
    cairo_set_line_width(get(), 1);
}

void Painter::colour(const Colour& k, double opacity) {
    cairo_set_source_rgba(get(), k.r, k.g, k.b, opacity);
}

void Painter::segment(double x0, double y0, double x1, double y1, const Colour& k) {
    colour(k);
    cairo_move_to(get(), x0, y0);
    cairo_line_to(get(), x1, y1);
    cairo_stroke(get());
}

void Painter::dot(double x, double y, double radius, const Colour& k, double opacity) {
    colour(k, opacity);
    cairo_arc(get(), x, y, radius, 0, 2 * std::numbers::pi);
    cairo_fill(get());
}

void Painter::frame(const Box& box) {
    colour(line_);
    cairo_rectangle(get(), box.x - 0.5, box.y - 0.5, box.w + 1, box.h + 1);
    cairo_stroke(get());
}

void Painter::frame(const Box& box, const std::string& caption) {
    frame(box);
    text(caption, box.x, box.y - 16, 16, 0, text_);
}

double Painter::widthOf(const std::string& s) const {
    cairo_text_extents_t extents;
    cairo_text_extents(get(), s.c_str(), &extents);
    return extents.x_advance;
}

void Painter::text(const std::string& s, double x, double y, double size, double anchor,
                   const Colour& k, Weight weight, double room) {
    cairo_select_font_face(
        get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL,
        weight == Weight::bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(get(), size);
    std::string shown = s;
    for (std::string left = s; !left.empty() && widthOf(shown) > room; shown = left + "\u2026") {
        while ((left.back() & 0xC0) == 0x80) left.pop_back();  // a whole character of UTF-8
        left.pop_back();
    }
    colour(k);
    cairo_move_to(get(), x - anchor * widthOf(shown), y + 0.36 * size);
    cairo_show_text(get(), shown.c_str());
    cairo_new_path(get());  // a path that follows does not begin at the text
}

void Painter::textUpwards(const std::string& s, double x, double y, double size, const Colour& k) {
    cairo_save(get());
    cairo_translate(get(), x, y);
    cairo_rotate(get(), -std::numbers::pi / 2);
    text(s, 0, 0, size, 0.5, k);
    cairo_restore(get());
}

void Painter::map(const Box& clip, const Box& place, int columns, int rows,
                  const CellColour& colourOf) {
    const Surface image(cairo_image_surface_create(CAIRO_FORMAT_RGB24, columns, rows));
    unsigned char* bytes = cairo_image_surface_get_data(image.get());
    const int stride = cairo_image_surface_get_stride(image.get());
    const auto byte = [](double v) { return static_cast<unsigned char>(std::lround(255 * v)); };
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const Colour k = colourOf(column, row);
            unsigned char* p = bytes + (rows - 1 - row) * stride + 4 * column;
            p[0] = byte(k.b);
            p[1] = byte(k.g);
            p[2] = byte(k.r);
        }
    }
    cairo_surface_mark_dirty(image.get());

    cairo_save(get());
    cairo_rectangle(get(), clip.x, clip.y, clip.w, clip.h);
    cairo_clip(get());
    cairo_translate(get(), place.x, place.y);
    cairo_scale(get(), place.w / columns, place.h / rows);
    cairo_set_source_surface(get(), image.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(get()), CAIRO_FILTER_BILINEAR);
    cairo_paint(get());
    cairo_restore(get());
}

void Painter::write(const std::string& path) {
    writePictureFile(recorded_.get(), width_, height_, path);
}
