#include "geometry/cairo_path.h"

#include "platform/graphics/cairo_conversion.h"

namespace paintdoc {

bool AppendBezierPathToCairo(cairo_t* cr, const BezierPath& path) {
  if (path.isEmpty()) return false;
  cairo_conversion::AppendPathElements(cr, path);
  return true;
}

}  // namespace paintdoc
