// Drawing of the examples' pictures: boxes, lines, dots and text on a PNG, by cairo.

#ifndef EXAMPLES_PAINTER_H
#define EXAMPLES_PAINTER_H

#include <cairo.h>

#include <memory>
#include <string>

struct Box {
    double x, y, w, h;
};

struct Colour {
    double r, g, b;
};

struct CairoRelease {
    void operator()(cairo_t* c) const { cairo_destroy(c); }
    void operator()(cairo_surface_t* s) const { cairo_surface_destroy(s); }
};
using Surface = std::unique_ptr<cairo_surface_t, CairoRelease>;

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

    // Anchored at its left (0), middle (0.5) or right (1); y is the middle of its height.
    void text(const std::string& s, double x, double y, double size, double anchor, const Colour& k,
              bool bold = false);
    void textUpwards(const std::string& s, double x, double y, double size, const Colour& k);

    // Writes a PNG; throws std::runtime_error where the file cannot be written.
    void write(const std::string& path);

  private:
    Surface surface_;
    std::unique_ptr<cairo_t, CairoRelease> context_;
    Colour line_, text_;
};

// A number by a format of printf for one double.
std::string formatted(const char* format, double value);

#endif
