// Pictures of a drawing's model space: PNG, SVG or PDF by the file's
// extension, of the drawing's extents or of a window, at a size in pixels
// or at a scale, on a white or black background.
#pragma once

#include <string>
#include <string_view>

class AcDbDatabase;

namespace zepk::render {

enum class PictureFormat { Png, Svg, Pdf };

// The format a file name asks for (by its extension, in any case).
bool pictureFormatOf(std::string_view path, PictureFormat* out);

struct PictureOptions {
  int width = 1600, height = 1200;  // pixels
  // Pixels per drawing unit; when above 0 the size follows from what is
  // shown (width and height are ignored).
  double scale = 0;
  bool blackBackground = false;
  bool hasWindow = false;
  double window[4] = {0, 0, 0, 0};  // x0, y0, x1, y1 of the drawing
  bool frame = false;               // a rectangle round the drawing's extents
};

// The largest side of a picture, in pixels.
constexpr int kMaxPictureSide = 30000;

// "1600x1200" (also with "X" or "*"): true with both sides from 1 to
// kMaxPictureSide.
bool parsePictureSize(std::string_view s, int* width, int* height);
// "x0,y0,x1,y1": true for four finite numbers spanning a window of some
// width and height.
bool parseWindow(std::string_view s, double out[4]);

// Writes the picture of the drawing's model space to the file (UTF-8
// path), through a temporary file renamed into place, so that a failure
// leaves no file and never half of one. False with the reason in error.
bool writePicture(AcDbDatabase* db, const std::string& path, const PictureOptions& options, std::string* error);

}  // namespace zepk::render
