// A drop shadow: colour, offset and blur radius. Offset and blur are in device
// space (a positive height moves the shadow up); a shadow without an explicit
// colour uses black at one third alpha.
#pragma once

#include <optional>

#include "platform/values/color.h"
#include "platform/values/geometry.h"

namespace paintdoc {

class Shadow {
 public:
  Shadow() = default;
  Shadow(std::optional<Color> color, Size offset, double blurRadius)
      : color_(std::move(color)), offset_(offset), blurRadius_(blurRadius) {}

  static Color defaultColor() { return Color::calibratedWhite(0, 1.0 / 3.0); }

  // The colour that is drawn: the explicit one, or the default.
  Color shadowColor() const { return color_ ? *color_ : defaultColor(); }
  // Only the explicitly set colour (archives write nothing otherwise).
  const std::optional<Color>& explicitColor() const { return color_; }
  void setShadowColor(std::optional<Color> color) { color_ = std::move(color); }
  Size shadowOffset() const { return offset_; }
  void setShadowOffset(Size offset) { offset_ = offset; }
  double shadowBlurRadius() const { return blurRadius_; }
  void setShadowBlurRadius(double radius) { blurRadius_ = radius < 0 ? 0 : radius; }

  friend bool operator==(const Shadow&, const Shadow&) = default;

 private:
  std::optional<Color> color_;
  Size offset_;
  double blurRadius_ = 0;
};

}  // namespace paintdoc
