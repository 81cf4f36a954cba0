// SPDX-License-Identifier: MIT
#include "picture_file.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include "bad_input.h"

namespace {

namespace fs = std::filesystem;

enum class Format { png, svg, pdf };

Format formatOf(const std::string& path) {
    std::string extension = fs::path(path).extension();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (extension == ".png") return Format::png;
    if (extension == ".svg") return Format::svg;
    if (extension == ".pdf") return Format::pdf;
    throw BadInput(path + ": a picture is written as .png, .svg or .pdf");
}

cairo_status_t append(void* bytes, const unsigned char* data, unsigned length) {
    static_cast<std::string*>(bytes)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

void expect(cairo_status_t status) {
    if (status != CAIRO_STATUS_SUCCESS) throw std::runtime_error(cairo_status_to_string(status));
}

std::string encoded(cairo_surface_t* recorded, int width, int height, Format format) {
    std::string bytes;
    cairo_surface_t* made =
        format == Format::svg   ? cairo_svg_surface_create_for_stream(append, &bytes, width, height)
        : format == Format::pdf ? cairo_pdf_surface_create_for_stream(append, &bytes, width, height)
                                : cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> target(
        made, cairo_surface_destroy);
    if (format == Format::svg) cairo_svg_surface_set_document_unit(target.get(), CAIRO_SVG_UNIT_PX);
    cairo_t* context = cairo_create(target.get());
    cairo_set_source_surface(context, recorded, 0, 0);
    cairo_paint(context);
    const cairo_status_t status = cairo_status(context);
    cairo_destroy(context);
    expect(status);
    if (format == Format::png) {
        expect(cairo_surface_write_to_png_stream(target.get(), append, &bytes));
    } else {
        cairo_surface_finish(target.get());
        expect(cairo_surface_status(target.get()));
    }
    return bytes;
}

}  // namespace

void checkPictureFile(const std::string& path) {
    if (path.empty()) throw BadInput("the picture's name is empty");
    std::error_code none;
    if (fs::is_directory(path, none)) throw BadInput(path + ": is a folder, not a picture");
    formatOf(path);
    const fs::path folder = fs::path(path).parent_path();
    if (!folder.empty() && !fs::is_directory(folder, none)) {
        throw BadInput(path + ": there is no folder " + folder.string());
    }
}

void writePictureFile(cairo_surface_t* recorded, int width, int height, const std::string& path) {
    const std::string bytes = encoded(recorded, width, height, formatOf(path));
    int reason = 0;
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) {
        reason = errno;
    } else {
        if (std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) reason = errno;
        if (std::fclose(file) != 0 && reason == 0) reason = errno;
    }
    if (reason == 0) return;
    std::error_code none;
    if (file && fs::is_regular_file(path, none)) fs::remove(path, none);
    throw std::runtime_error("cannot write " + path + ": " + std::strerror(reason));
}
