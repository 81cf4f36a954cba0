#include "painter.h"

#include <array>
#include <cstdio>
#include <numbers>
#include <stdexcept>

Painter::Painter(int width, int height, const Colour& background, const Colour& line,
                 const Colour& text)
    : surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)),
      context_(cairo_create(surface_.get())),
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

void Painter::text(const std::string& s, double x, double y, double size, double anchor,
                   const Colour& k, bool bold) {
    cairo_select_font_face(get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(get(), size);
    cairo_text_extents_t extents;
    cairo_text_extents(get(), s.c_str(), &extents);
    colour(k);
    cairo_move_to(get(), x - anchor * extents.x_advance, y + 0.36 * size);
    cairo_show_text(get(), s.c_str());
}

void Painter::textUpwards(const std::string& s, double x, double y, double size, const Colour& k) {
    cairo_save(get());
    cairo_translate(get(), x, y);
    cairo_rotate(get(), -std::numbers::pi / 2);
    text(s, 0, 0, size, 0.5, k);
    cairo_restore(get());
}

void Painter::write(const std::string& path) {
    const cairo_status_t status = cairo_surface_write_to_png(surface_.get(), path.c_str());
    if (status != CAIRO_STATUS_SUCCESS) {
        throw std::runtime_error(path + ": " + cairo_status_to_string(status));
    }
}

std::string formatted(const char* format, double value) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}
