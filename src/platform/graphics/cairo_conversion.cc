#include "platform/graphics/cairo_conversion.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace paintdoc::cairo_conversion {

cairo_matrix_t ToCairoMatrix(const AffineTransform& t) {
  cairo_matrix_t matrix;
  cairo_matrix_init(&matrix, t.m11, t.m12, t.m21, t.m22, t.tX, t.tY);
  return matrix;
}

AffineTransform FromCairoMatrix(const cairo_matrix_t& m) {
  return AffineTransform(m.xx, m.yx, m.xy, m.yy, m.x0, m.y0);
}

namespace {

bool HasOnlyFinitePoints(const BezierPath& path) {
  for (const PathElement& element : path.elements()) {
    for (const Point& p : element.points) {
      if (!std::isfinite(p.x) || !std::isfinite(p.y)) return false;
    }
  }
  return true;
}

}  // namespace

void AppendPath(cairo_t* cr, const BezierPath& path) {
  cairo_new_path(cr);
  AppendPathElements(cr, path);
}

void AppendPathElements(cairo_t* cr, const BezierPath& path) {
  if (!HasOnlyFinitePoints(path)) return;
  for (const PathElement& element : path.elements()) {
    const auto& p = element.points;
    switch (element.type) {
      case PathElementType::MoveTo: cairo_move_to(cr, p[0].x, p[0].y); break;
      case PathElementType::LineTo: cairo_line_to(cr, p[0].x, p[0].y); break;
      case PathElementType::CurveTo:
        cairo_curve_to(cr, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
        break;
      case PathElementType::ClosePath: cairo_close_path(cr); break;
    }
  }
}

cairo_fill_rule_t ToCairoFillRule(WindingRule rule) {
  return rule == WindingRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING;
}

namespace {

double OneDevicePixelInUserSpace(cairo_t* cr) {
  double dx = 1, dy = 0;
  cairo_device_to_user_distance(cr, &dx, &dy);
  double length = std::hypot(dx, dy);
  return std::isfinite(length) && length > 0 ? length : 1;
}

}  // namespace

void ApplyStrokeStyle(cairo_t* cr, const BezierPath& path) {
  double width = path.lineWidth();
  cairo_set_line_width(cr, width > 0 && std::isfinite(width) ? width : OneDevicePixelInUserSpace(cr));
  // The cap and join numbers of both libraries coincide (0 to 2).
  int cap = static_cast<int>(path.lineCapStyle()), join = static_cast<int>(path.lineJoinStyle());
  cairo_set_line_cap(cr, static_cast<cairo_line_cap_t>(cap >= 0 && cap <= 2 ? cap : 0));
  cairo_set_line_join(cr, static_cast<cairo_line_join_t>(join >= 0 && join <= 2 ? join : 0));
  cairo_set_miter_limit(cr, std::isfinite(path.miterLimit()) ? path.miterLimit() : 10.0);
  const std::vector<double>& dash = path.lineDash();
  bool valid = std::none_of(dash.begin(), dash.end(),
                            [](double d) { return d < 0 || !std::isfinite(d); }) &&
               std::any_of(dash.begin(), dash.end(), [](double d) { return d > 0; });
  if (valid && std::isfinite(path.lineDashPhase())) {
    cairo_set_dash(cr, dash.data(), static_cast<int>(dash.size()), path.lineDashPhase());
  } else {
    cairo_set_dash(cr, nullptr, 0, 0);
  }
}

std::optional<cairo_operator_t> ToCairoOperator(CompositingOperation operation) {
  switch (operation) {
    case CompositingOperation::Clear: return CAIRO_OPERATOR_CLEAR;
    case CompositingOperation::Copy: return CAIRO_OPERATOR_SOURCE;
    case CompositingOperation::SourceOver: return CAIRO_OPERATOR_OVER;
    case CompositingOperation::SourceIn: return CAIRO_OPERATOR_IN;
    case CompositingOperation::SourceOut: return CAIRO_OPERATOR_OUT;
    case CompositingOperation::SourceAtop: return CAIRO_OPERATOR_ATOP;
    case CompositingOperation::DestinationOver: return CAIRO_OPERATOR_DEST_OVER;
    case CompositingOperation::DestinationIn: return CAIRO_OPERATOR_DEST_IN;
    case CompositingOperation::DestinationOut: return CAIRO_OPERATOR_DEST_OUT;
    case CompositingOperation::DestinationAtop: return CAIRO_OPERATOR_DEST_ATOP;
    case CompositingOperation::XOR: return CAIRO_OPERATOR_XOR;
    case CompositingOperation::PlusDarker: return std::nullopt;
    case CompositingOperation::Highlight: return CAIRO_OPERATOR_OVER;
    case CompositingOperation::PlusLighter: return CAIRO_OPERATOR_ADD;
    case CompositingOperation::Multiply: return CAIRO_OPERATOR_MULTIPLY;
    case CompositingOperation::Screen: return CAIRO_OPERATOR_SCREEN;
    case CompositingOperation::Overlay: return CAIRO_OPERATOR_OVERLAY;
    case CompositingOperation::Darken: return CAIRO_OPERATOR_DARKEN;
    case CompositingOperation::Lighten: return CAIRO_OPERATOR_LIGHTEN;
    case CompositingOperation::ColorDodge: return CAIRO_OPERATOR_COLOR_DODGE;
    case CompositingOperation::ColorBurn: return CAIRO_OPERATOR_COLOR_BURN;
    case CompositingOperation::SoftLight: return CAIRO_OPERATOR_SOFT_LIGHT;
    case CompositingOperation::HardLight: return CAIRO_OPERATOR_HARD_LIGHT;
    case CompositingOperation::Difference: return CAIRO_OPERATOR_DIFFERENCE;
    case CompositingOperation::Exclusion: return CAIRO_OPERATOR_EXCLUSION;
    case CompositingOperation::Hue: return CAIRO_OPERATOR_HSL_HUE;
    case CompositingOperation::Saturation: return CAIRO_OPERATOR_HSL_SATURATION;
    case CompositingOperation::Color: return CAIRO_OPERATOR_HSL_COLOR;
    case CompositingOperation::Luminosity: return CAIRO_OPERATOR_HSL_LUMINOSITY;
  }
  return CAIRO_OPERATOR_OVER;
}

bool IsUnboundedInCairo(cairo_operator_t op) {
  return op == CAIRO_OPERATOR_IN || op == CAIRO_OPERATOR_OUT || op == CAIRO_OPERATOR_DEST_IN ||
         op == CAIRO_OPERATOR_DEST_ATOP;
}

namespace {

// A colour component as cairo may take it: within [0, 1], NaN as 0.
double Component(double value) { return std::isfinite(value) ? std::clamp(value, 0.0, 1.0) : 0.0; }

}  // namespace

void SetSourceColor(cairo_t* cr, const Color& color, double alpha) {
  RGBA rgba = color.toCalibratedRGB();
  cairo_set_source_rgba(cr, Component(rgba.red), Component(rgba.green), Component(rgba.blue),
                        Component(rgba.alpha) * alpha);
}

void AddColorStops(cairo_pattern_t* pattern, const Gradient& gradient, double alpha) {
  std::vector<GradientStop> stops = gradient.stops();
  std::stable_sort(stops.begin(), stops.end(),
                   [](const GradientStop& a, const GradientStop& b) { return a.location < b.location; });
  for (const GradientStop& stop : stops) {
    if (!std::isfinite(stop.location)) continue;
    RGBA rgba = stop.color.toCalibratedRGB();
    cairo_pattern_add_color_stop_rgba(pattern, std::clamp(stop.location, 0.0, 1.0),
                                      Component(rgba.red), Component(rgba.green),
                                      Component(rgba.blue), Component(rgba.alpha) * alpha);
  }
}

SurfacePtr SurfaceForBitmap(const Bitmap& bitmap) {
  // cairo takes a mutable pointer but never writes to a surface used as a source.
  return SurfacePtr(cairo_image_surface_create_for_data(
      const_cast<uint8_t*>(bitmap.data()), CAIRO_FORMAT_ARGB32, bitmap.pixelsWide(),
      bitmap.pixelsHigh(), static_cast<int>(bitmap.bytesPerRow())));
}

cairo_filter_t ToCairoFilter(ImageInterpolation interpolation) {
  switch (interpolation) {
    case ImageInterpolation::None: return CAIRO_FILTER_NEAREST;
    case ImageInterpolation::High: return CAIRO_FILTER_BEST;
    case ImageInterpolation::Default:
    case ImageInterpolation::Low:
    case ImageInterpolation::Medium: return CAIRO_FILTER_GOOD;
  }
  return CAIRO_FILTER_GOOD;
}

}  // namespace paintdoc::cairo_conversion
