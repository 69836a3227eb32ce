// Conversions from the platform value types to cairo (internal to drawing).
#pragma once

#include <cairo.h>

#include <memory>
#include <optional>

#include "platform/values/affine_transform.h"
#include "platform/values/bezier_path.h"
#include "platform/values/bitmap.h"
#include "platform/values/color.h"
#include "platform/values/compositing.h"
#include "platform/values/gradient.h"

namespace paintdoc::cairo_conversion {

// Owning handles for cairo objects.
struct CairoDeleter {
  void operator()(cairo_t* cr) const { cairo_destroy(cr); }
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
using CairoPtr = std::unique_ptr<cairo_t, CairoDeleter>;
using SurfacePtr = std::unique_ptr<cairo_surface_t, CairoDeleter>;
using PatternPtr = std::unique_ptr<cairo_pattern_t, CairoDeleter>;

// The platform's x' = m11·x + m21·y + tX, y' = m12·x + m22·y + tY.
cairo_matrix_t ToCairoMatrix(const AffineTransform& transform);
AffineTransform FromCairoMatrix(const cairo_matrix_t& matrix);

// Replaces cr's current path by the path's elements (not its attributes).
void AppendPath(cairo_t* cr, const BezierPath& path);
// Adds the path's elements to cr's current path, in order. A path with a NaN
// or infinite point (from a damaged file) adds nothing.
void AppendPathElements(cairo_t* cr, const BezierPath& path);
cairo_fill_rule_t ToCairoFillRule(WindingRule rule);
// Line width, cap, join, miter limit and dash of the path. A width of 0 is
// the thinnest visible line: one device pixel. Invalid dash patterns (a
// negative length, or nothing but zeros) draw solid.
void ApplyStrokeStyle(cairo_t* cr, const BezierPath& path);

// The operator for an operation; none for PlusDarker, which cairo lacks (the
// drawing code computes it by hand).
std::optional<cairo_operator_t> ToCairoOperator(CompositingOperation operation);
// True for the operators cairo applies outside the drawn shape (within the
// clip), where the platform leaves the destination alone.
bool IsUnboundedInCairo(cairo_operator_t op);

// Sets a colour, its alpha multiplied by `alpha`, as cr's source.
void SetSourceColor(cairo_t* cr, const Color& color, double alpha);
// Adds the gradient's stops to a cairo gradient pattern, each stop's alpha
// multiplied by `alpha`.
void AddColorStops(cairo_pattern_t* pattern, const Gradient& gradient, double alpha);

// An image surface over the bitmap's pixels (no copy). The bitmap must
// outlive the surface; cairo only reads it when it is used as a source.
SurfacePtr SurfaceForBitmap(const Bitmap& bitmap);
cairo_filter_t ToCairoFilter(ImageInterpolation interpolation);

}  // namespace paintdoc::cairo_conversion
