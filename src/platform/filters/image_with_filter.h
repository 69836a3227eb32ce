// Filters by name: the table of the named filters with their numeric input
// keys, and the bitmap functions that apply a filter to a bitmap.
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "platform/filters/filter_inputs.h"
#include "platform/values/bitmap.h"

namespace paintdoc {

// One named filter: its input keys (defaults and ranges) and how it is
// applied with settings read through those keys.
struct NamedFilter {
  std::string_view name;
  std::span<const FilterInputKey> inputKeys;
  std::shared_ptr<Bitmap> (*apply)(const Bitmap& input, const FilterSettings* settings, FilterEdges edges);
};

// Every filter known by name, and the one of a name (null when unknown).
std::span<const NamedFilter> NamedFilters();
const NamedFilter* FindNamedFilter(std::string_view name);

// The bitmap filtered by the named filter with its defaults, overridden by
// those settings whose key is one of the filter's inputs (other keys are
// skipped). With `clampEdges` the filter sees the input's edge pixels
// repeated without end beyond its edges; either way the result has the
// input's extent. The very bitmap given when no filter has that name; null
// for a null bitmap or when memory runs out.
std::shared_ptr<Bitmap> ImageWithFilter(const std::shared_ptr<Bitmap>& bitmap, std::string_view name,
                                        bool clampEdges, const FilterSettings* settings);

// The colours inverted ("CIColorInvert").
std::shared_ptr<Bitmap> ImageInvertedColors(const std::shared_ptr<Bitmap>& bitmap);

// Blurred with a Gaussian of deviation `radius` over edges clamped, so the
// blur does not fade at the borders; null when the radius is not above 0.
std::shared_ptr<Bitmap> ImageBlured(const std::shared_ptr<Bitmap>& bitmap, float radius);

// Grey levels of the stored values: grey = (R·19595 + G·38469 + B·7472) >> 16
// on the premultiplied bytes for red, green and blue alike; alpha kept; a
// transparent pixel becomes all 0.
std::shared_ptr<Bitmap> ImageToBlackAndWhite(const std::shared_ptr<Bitmap>& bitmap);

// The input seen through an edge clamp with the identity transform, cropped
// back to its extent: the same pixels. Filters that read neighbours take the
// clamp as their FilterEdges::Clamp instead of an endless image.
std::shared_ptr<Bitmap> CIAffineClamp(const Bitmap& input);

}  // namespace paintdoc
