#include "geometry/cairo_path.h"

namespace paintdoc {

bool AppendBezierPathToCairo(cairo_t* cr, const BezierPath& path) {
  if (path.isEmpty()) return false;
  for (const PathElement& element : path.elements()) {
    const auto& p = element.points;
    switch (element.type) {
      case PathElementType::MoveTo:
        cairo_move_to(cr, p[0].x, p[0].y);
        break;
      case PathElementType::LineTo:
        cairo_line_to(cr, p[0].x, p[0].y);
        break;
      case PathElementType::CurveTo:
        cairo_curve_to(cr, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
        break;
      case PathElementType::ClosePath:
        cairo_close_path(cr);
        break;
    }
  }
  return true;
}

}  // namespace paintdoc
