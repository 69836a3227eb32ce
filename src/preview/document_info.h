// A description of what a file holds, for `paintdoc info`: for a document its
// format version, canvas size, background and mask flags and the layer tree;
// for a plain image its size. Printed as text or as one JSON object.
#pragma once

#include <optional>
#include <utility>

#include <cstdint>
#include <string>
#include <vector>

#include "draws/draw_attributes.h"
#include "platform/values/geometry.h"
#include "preview/bitmap_scaling.h"

namespace paintdoc {

struct PreviewSource;

// What a text layer shows: its plain text, each font as the document names it
// and the installed face that shows it, and the text colours, in run order.
struct TextFontInfo {
  std::string name;  // PostScript name as archived
  double pointSize = 0;
  std::string shownAs;  // installed face
  bool fallback = false;  // no face of the family or its twins is installed
};
struct TextInfo {
  std::string plainText;
  std::vector<TextFontInfo> fonts;  // one entry a distinct name and size
  std::vector<Color> colors;        // one entry a distinct colour
};

struct LayerInfo {
  std::string className;
  std::string title;
  bool visible = false;
  bool locked = false;
  double rotation = 0;  // degrees
  Rect bounds;          // pathBounds: the unrotated outline's bounds
  DrawAttributes attributes;  // the draw's look (drawAttributes)
  float opacity = 0;          // what the opacity control shows
  bool isGroup = false;
  // For a filter layer: its effect's display name and current settings.
  std::optional<std::string> filterName;
  std::vector<std::pair<std::string, double>> filterSettings;
  // For an image layer (filter layers too): the pixel size of its stored
  // bitmap, 0 × 0 when it has none (its data was missing or unreadable).
  std::optional<PixelSize> imagePixels;
  std::vector<LayerInfo> members;  // for a group
  std::optional<TextInfo> text;     // for a text layer
};

struct DocumentInfo {
  bool isDocument = false;  // else a plain image
  int64_t version = 0;
  Size size;        // points: the canvas size, or the image's point size
  Size pixelSize;   // a plain image's pixels (its point size differs when it has a resolution)
  bool hasBackground = false;
  bool maskWithBackground = false;
  std::vector<LayerInfo> layers;  // bottom first
};

// The description of drawable content (a document or an image).
DocumentInfo DescribePreviewSource(const PreviewSource& source);

// Several lines: a summary, then one line a layer, members indented.
std::string FormatDocumentInfoText(const DocumentInfo& info);
// One JSON object with the keys "kind", "version", "width", "height",
// "hasBackground", "maskWithBackground" and "layers" (each with "class",
// "title", "visible", "locked", "rotation", "bounds" as [x, y, w, h],
// "attributes" keyed by the attribute keys, "opacity", "image" with
// "pixelsWide" and "pixelsHigh" for an image layer, "layers" for a group's
// members, and "text" for a text layer: {"string", "fonts": [{"name",
// "size", "shownAs", "fallback"}], "colors"}). Colours read {"rgba": "#rrggbbaa", "colorSpace": name},
// gradients {"colorSpace", "stops": [{"location", "color"}]}, shadows
// {"offset": [w, h], "blur", "color"}, points [x, y]. An image has "kind", "width", "height"
// (points) and "pixelsWide", "pixelsHigh".
std::string FormatDocumentInfoJson(const DocumentInfo& info);

// Text as a JSON string: quoted, with quotes, backslashes and control
// characters escaped.
std::string JsonString(const std::string& text);

}  // namespace paintdoc
