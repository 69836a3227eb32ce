#include "geometry/stroke_hit_test.h"

#include <cairo.h>

#include <cmath>

#include "geometry/cairo_path.h"

namespace paintdoc {
namespace {

// Below this many screen pixels a stroke is widened for picking.
constexpr double kMinimumHitPixels = 5.0;
// The zoom above which that widening applies.
constexpr float kMinimumHitScale = 0.45f;

// A cairo context used only for geometric queries. cairo tests points against
// the stroke's outline without drawing, so the surface beneath is a token 1x1
// image made once per thread and never painted.
class ScratchContext {
 public:
  ScratchContext() = default;
  ~ScratchContext() { reset(); }
  ScratchContext(const ScratchContext&) = delete;
  ScratchContext& operator=(const ScratchContext&) = delete;

  // The context, made on first use and made again after a query left it in an
  // error state; null when cairo cannot make one.
  cairo_t* get() {
    if (context_ != nullptr && cairo_status(context_) != CAIRO_STATUS_SUCCESS) reset();
    if (context_ == nullptr) {
      surface_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1, 1);
      context_ = cairo_create(surface_);
      if (cairo_status(context_) != CAIRO_STATUS_SUCCESS) reset();
    }
    return context_;
  }

 private:
  void reset() {
    if (context_ != nullptr) cairo_destroy(context_);
    if (surface_ != nullptr) cairo_surface_destroy(surface_);
    context_ = nullptr;
    surface_ = nullptr;
  }

  cairo_surface_t* surface_ = nullptr;
  cairo_t* context_ = nullptr;
};

cairo_t* ThreadScratchContext() {
  thread_local ScratchContext scratch;
  return scratch.get();
}

bool HasOddIntegerPart(double width) { return std::fmod(std::trunc(width), 2.0) != 0; }

void SetStrokeStyle(cairo_t* cr, const BezierPath& path, double width) {
  cairo_set_line_width(cr, width);
  cairo_set_line_cap(cr, static_cast<cairo_line_cap_t>(path.lineCapStyle()));
  cairo_set_line_join(cr, static_cast<cairo_line_join_t>(path.lineJoinStyle()));
  cairo_set_miter_limit(cr, path.miterLimit());
}

}  // namespace

bool containsPointInStroking(const BezierPath& path, const Point& point, float scale) {
  if (path.isEmpty()) return false;
  double width = path.lineWidth();
  if (!std::isfinite(width)) return false;

  Point probe = point;
  if (HasOddIntegerPart(width)) probe = {point.x - 0.5, point.y - 0.5};
  if (scale > kMinimumHitScale && scale * width < kMinimumHitPixels) {
    width = kMinimumHitPixels / scale;
  }
  if (!(width > 0)) return false;

  cairo_t* cr = ThreadScratchContext();
  if (cr == nullptr) return false;
  cairo_new_path(cr);
  AppendBezierPathToCairo(cr, path);
  SetStrokeStyle(cr, path, width);
  const bool inside = cairo_in_stroke(cr, probe.x, probe.y);
  cairo_new_path(cr);
  return inside && cairo_status(cr) == CAIRO_STATUS_SUCCESS;
}

}  // namespace paintdoc
