// SPDX-License-Identifier: MIT
// Drawing of the examples' pictures: boxes, lines, dots, text and maps of colours, by cairo.

#ifndef EXAMPLES_PAINTER_H
#define EXAMPLES_PAINTER_H

#include <cairo.h>

#include <functional>
#include <memory>
#include <string>

struct Box {
    double x, y, w, h;
    double right() const { return x + w; }
    double bottom() const { return y + h; }
};

struct Colour {
    double r, g, b;
};

// The colours of pictures on white.
namespace light {
inline constexpr Colour background = {1, 1, 1};
inline constexpr Colour ink = {0.10, 0.11, 0.13};
inline constexpr Colour faint = {0.38, 0.40, 0.44};
inline constexpr Colour line = {0.78, 0.79, 0.82};
}  // namespace light

class Painter {
  public:
    Painter(int width, int height, const Colour& background, const Colour& line,
            const Colour& text);

    // For what is not among the functions below; the line width is 1.
    cairo_t* get() const { return context_.get(); }

    void colour(const Colour& k, double opacity = 1);
    void segment(double x0, double y0, double x1, double y1, const Colour& k);
    void dot(double x, double y, double radius, const Colour& k, double opacity = 1);
    // The line runs around the box, outside it.
    void frame(const Box& box);
    void frame(const Box& box, const std::string& caption);

    enum class Weight { plain, bold };
    // Anchored at its left (0), middle (0.5) or right (1); y is the middle of its height. Text
    // wider than `room` ends in an ellipsis.
    void text(const std::string& s, double x, double y, double size, double anchor, const Colour& k,
              Weight weight = Weight::plain, double room = 1e9);
    void textUpwards(const std::string& s, double x, double y, double size, const Colour& k);

    // Cells of colour that fill `place`, row 0 at its bottom, blended into each other where they
    // are larger than a pixel; shown inside `clip`.
    using CellColour = std::function<Colour(int column, int row)>;
    void map(const Box& clip, const Box& place, int columns, int rows, const CellColour& colourOf);

    // The format is that of the extension; throws std::runtime_error where the file cannot be
    // written.
    void write(const std::string& path);

  private:
    struct Release {
        void operator()(cairo_t* c) const { cairo_destroy(c); }
        void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
    };
    using Surface = std::unique_ptr<cairo_surface_t, Release>;

    double widthOf(const std::string& s) const;

    int width_, height_;
    Surface recorded_;  // what was drawn, for any format
    std::unique_ptr<cairo_t, Release> context_;
    Colour line_, text_;
};

#endif
