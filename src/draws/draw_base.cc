#include "draws/draw_base.h"

#include <algorithm>
#include <cstdio>

#include "geometry/dash_text.h"

namespace paintdoc {

namespace {

// Dash entries read when the pattern is turned into text.
constexpr size_t kMaxDashEntriesShown = 100;

}  // namespace

DrawBase::DrawBase() { initialize(); }

// The group link does not own the group; it is simply dropped.
DrawBase::~DrawBase() = default;

void DrawBase::init() {
  BezierPath path;
  path.setLineWidth(kInitLineWidth);
  path.setLineCapStyle(LineCapStyle::Square);
  path.setLineJoinStyle(LineJoinStyle::Bevel);
  path.setLineDash({}, 0);
  bezierPath_ = std::move(path);

  colorStroke_ = Color::blackColor();
  colorFill_ = Color::blackColor();
  // The fill flag is the opposite of the stroke trait, not the fill trait:
  // a stroking class starts unfilled, a class that does not stroke starts filled.
  bEnableStroke_ = classDrawStroke();
  bEnableFill_ = !bEnableStroke_;

  bFillWithGdt_ = false;
  gradientFill_.reset();
  bFillRadialGdt_ = false;
  fFillGdtDegree_ = kDefaultFillGradientDegree;
  ptFillGdtCenter_ = Point{};
  strLayerTitle_.reset();
  group_ = nullptr;
  fRotateDegree_ = 0;
  bVisible_ = true;
  bLocked_ = false;
  bSmooth_ = true;
  bEnableShadow_ = false;
  shadow_.reset();
  bEnableInnerShadow_ = false;
  shadowInner_.reset();
  bEnableReflection_ = false;
  fReflection_ = 0;
  fReflectionDis_ = kReflectionDistanceUnset;
  bCreatingWithEvent_ = false;
  bRotating_ = false;
  bResizing_ = false;
  bEditingFillGradient_ = false;
}

std::string DrawBase::lineDashStyle() const {
  if (!bezierPath_) return "";
  const std::vector<double>& dash = bezierPath_->lineDash();
  if (dash.size() < 2) return "";
  std::string text;
  const size_t count = std::min(dash.size(), kMaxDashEntriesShown);
  for (size_t i = 0; i < count; ++i) {
    char entry[64];
    std::snprintf(entry, sizeof entry, i == 0 ? "%0.0f" : ":%0.0f", dash[i]);
    text += entry;
  }
  return text;
}

void DrawBase::setLineDashStyle(std::string_view style) {
  if (!bezierPath_) return;
  double values[kMaxDashStyleParts] = {};
  size_t count = 0;
  GetDashArrayFromString(style, values, &count);
  bezierPath_->setLineDash(std::vector<double>(values, values + count), 0);
}

std::string DrawBase::layerTitle() const {
  return strLayerTitle_ ? *strLayerTitle_ : name();
}

void DrawBase::setLayerTitle(std::optional<std::string> title) {
  strLayerTitle_ = std::move(title);
}

void DrawBase::drawInImage(const std::shared_ptr<Bitmap>& /*image*/) {
  // Vector painting into the current context is the rendering pipeline's;
  // until a class paints itself, a layer leaves the bitmap unchanged.
}

bool DrawBase::hasBorder() const {
  if (bResizing_) return true;
  if (!classDrawBezierPath()) return true;
  return isSelectTool();
}

}  // namespace paintdoc
