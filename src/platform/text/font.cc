#include "platform/text/font.h"

#include <cmath>

namespace paintdoc {

namespace {
constexpr double kPointSizeTolerance = 0.1;
}  // namespace

bool wt_isEqualWithFont(const Font& font, const std::optional<Font>& other) {
  if (!other) return false;
  if (font == *other) return true;
  return font.name == other->name &&
         std::fabs(font.pointSize - other->pointSize) < kPointSizeTolerance;
}

}  // namespace paintdoc
