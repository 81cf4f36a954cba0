// SPDX-License-Identifier: MIT
// The file of a picture: its extension decides the format, and what hinders writing it is said.

#ifndef EXAMPLES_PICTURE_FILE_H
#define EXAMPLES_PICTURE_FILE_H

#include <cairo.h>

#include <string>

// For before the work that leads to the picture. Throws BadInput where the extension is none of
// .png, .svg and .pdf, or where no file can stand at that place.
void checkPictureFile(const std::string& path);

// Throws std::runtime_error where the file cannot be written; what was written of it is removed.
void writePictureFile(cairo_surface_t* recorded, int width, int height, const std::string& path);

#endif
