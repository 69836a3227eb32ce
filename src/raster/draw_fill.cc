#include "raster/draw_fill.h"

#include <cmath>

#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/graphics_guards.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

constexpr double kFillLineWidth = 1.0;
// A quarter turn may be off by this much and still count as whole.
constexpr float kRightAngleSlack = 0.01f;

void SetRunStyle(BezierPath& path) {
  path.setLineCapStyle(LineCapStyle::Square);
  path.setLineJoinStyle(LineJoinStyle::Miter);
}

bool HasArea(const std::shared_ptr<ImageMask>& mask) { return mask && !mask->isEmpty(); }

}  // namespace

std::shared_ptr<DrawFill> DrawFill::withImageMask(const std::shared_ptr<ImageMask>& mask) {
  auto fill = MakeDraw<DrawFill>();
  if (HasArea(mask)) fill->adoptMask(mask);
  return fill;
}

// Chooses the form of the region: a rectangle when the mask is full, runs
// when they stay few enough, the mask itself otherwise.
void DrawFill::adoptMask(const std::shared_ptr<ImageMask>& mask) {
  if (!bezierPath_) bezierPath_.emplace();
  bezierPath_->removeAllPoints();
  bool strokeNeeded = false;
  std::optional<BezierPath> runs = mask->bezierPathForFill(strokeNeeded);
  if (runs) {
    bezierPath_->appendPath(*runs);
    SetRunStyle(*bezierPath_);
    fillType_ = strokeNeeded ? kFillTypeRuns : kFillTypeRect;
    mask_ = strokeNeeded ? mask : nullptr;
  } else {
    mask_ = mask;
    fillType_ = kFillTypeMask;
    bezierPath_->appendRect(mask->maskRect());
  }
  bezierPath_->setLineWidth(kFillLineWidth);
}

void DrawFill::encodeWithCoder(KeyedArchiver& coder) const {
  DrawBase::encodeWithCoder(coder);
  // The stroke colour of the archive carries the fill colour.
  if (colorFill_) coder.encodeColorForKey(*colorFill_, "ForeColor");
  coder.encodeIntegerForKey(fillType_, "FillType");
  if (mask_ && fillType_ != kFillTypeRect) coder.encodeObjectForKey(mask_.get(), "Mask");
}

bool DrawFill::initWithCoder(KeyedUnarchiver& coder) {
  if (!DrawBase::initWithCoder(coder)) return false;
  if (coder.containsValueForKey("ForeColor")) setFillColor(colorStroke_);
  mask_ = coder.decodeObjectForKey<ImageMask>("Mask");
  if (mask_ && mask_->isEmpty()) mask_.reset();
  if (coder.containsValueForKey("FillType")) {
    fillType_ = coder.decodeIntegerForKey("FillType");
  } else if (mask_) {
    adoptMask(mask_);
  }
  // A type outside the table, or a mask fill without its mask, has nothing
  // that could be painted: the fill is kept but paints nothing.
  if (fillType_ < kFillTypeMask || fillType_ > kFillTypeRuns ||
      (fillType_ == kFillTypeMask && !mask_)) {
    Log("Error: DrawFill with fill type " + std::to_string(fillType_) +
        " and no usable region is not painted");
    fillType_ = kFillTypeRect;
    if (bezierPath_) bezierPath_->removeAllPoints();
  }
  if (bezierPath_) SetRunStyle(*bezierPath_);
  return true;
}

void DrawFill::fillImage(const std::shared_ptr<Bitmap>& bitmap) {
  if (!bitmap || !bVisible_ || !bEnableFill_ || !bezierPath_ || bezierPath_->isEmpty()) return;
  GraphicsContext* context = GraphicsContext::current();
  if (context == nullptr) {
    Log("Error: DrawFill painted without a bitmap in focus");
    return;
  }
  GraphicsStateGuard saved(*context);
  context->setShouldAntialias(false);
  // Runs of single pixels are zero-length segments that a stroke may leave
  // out; an unturned run fill paints its kept mask instead, which covers
  // exactly the same pixels.
  const bool runsFromMask = fillType_ == kFillTypeRuns && mask_ && fRotateDegree_ == 0;
  if (fillType_ == kFillTypeMask || runsFromMask) {
    paintMaskPixels(*context);
  } else {
    paintOutline(*context);
  }
}

// Replaces the covered pixels in two steps, each a bitmap of the mask drawn
// at the mask's canvas rectangle: the coverage first erases what lies
// beneath, then the colour is laid onto the cleared pixels. Drawn through
// the context, the mask follows whatever scale the canvas is shown at.
void DrawFill::paintMaskPixels(GraphicsContext& context) const {
  if (!mask_) return;
  const Rect rect = mask_->maskRect();
  context.setImageInterpolation(ImageInterpolation::None);
  std::shared_ptr<Bitmap> coverage = mask_->coverageImage({0, 0, 0, 255});
  if (!coverage) return;
  context.setCompositingOperation(CompositingOperation::DestinationOut);
  context.drawImage(*coverage, rect);
  const Rgba8 color = PremultipliedFillBytes(colorFill_);
  if (color.alpha == 0) return;
  std::shared_ptr<Bitmap> colored = mask_->coverageImage(color);
  if (!colored) return;
  context.setCompositingOperation(CompositingOperation::SourceOver);
  context.drawImage(*colored, rect);
}

void DrawFill::paintOutline(GraphicsContext& context) const {
  const Color color = colorFill_.value_or(Color::clearColor());
  context.setCompositingOperation(CompositingOperation::Copy);
  context.concat(transform());
  if (fillType_ == kFillTypeRuns) {
    // Runs join the lower left corners of their pixels; moved onto the
    // pixel centres, each 1-wide square-capped segment covers exactly its
    // pixels.
    context.translate(0.5, 0.5);
    context.setStrokeColor(color);
    context.stroke(*bezierPath_);
  } else {
    context.setFillColor(color);
    context.setStrokeColor(color);
    context.fill(*bezierPath_);
  }
}

void DrawFill::_draw() { Log("Error: Use (fillImage:) instead of (draw) for DrawFill"); }

Rect DrawFill::drawRect() const {
  if (!bezierPath_ || bezierPath_->isEmpty()) return ZeroRect();
  Rect bounds = DrawBase::drawRect();
  if (fillType_ == kFillTypeRuns) bounds = RectInset(bounds, -0.5, -0.5);
  return bounds;
}

void DrawFill::placeMaskAtPath() {
  if (mask_ && bezierPath_) mask_->setMaskStartPoint(bezierPath_->bounds().origin);
}

void DrawFill::setBezierPathWithData(const ArchiveValue& data) {
  DrawBase::setBezierPathWithData(data);
  placeMaskAtPath();
}

void DrawFill::moveBy(float x, float y) {
  DrawBase::moveBy(x, y);
  placeMaskAtPath();
}

void DrawFill::flip(bool horizontal) {
  DrawBase::flip(horizontal);
  placeMaskAtPath();
  if (maskOriginal_) maskOriginal_->flip(horizontal);
  if (mask_) mask_->flip(horizontal);
  clearHighlightCache();
}

void DrawFill::rememberOriginalMask() {
  if (!maskOriginal_ && mask_) maskOriginal_ = std::make_shared<ImageMask>(*mask_);
}

void DrawFill::rebuildRunsFromMask() {
  bool strokeNeeded = false;
  std::optional<BezierPath> runs = mask_->bezierPathForFill(strokeNeeded);
  if (!runs) {
    fillType_ = kFillTypeMask;
    bezierPath_->appendRect(mask_->maskRect());
    return;
  }
  bezierPath_->appendPath(*runs);
  SetRunStyle(*bezierPath_);
  if (!strokeNeeded) {
    fillType_ = kFillTypeRect;
    mask_.reset();
    maskOriginal_.reset();
  }
}

void DrawFill::scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) {
  if (sx == 0 || sy == 0) return;
  DrawBase::scaleBy(sx, sy, center, resizeLineWidth);
  if (fillType_ == kFillTypeRect || !mask_ || !bezierPath_) return;
  rememberOriginalMask();
  const float sxOriginal =
      sx * static_cast<float>(mask_->width()) / static_cast<float>(maskOriginal_->width());
  const float syOriginal =
      sy * static_cast<float>(mask_->height()) / static_cast<float>(maskOriginal_->height());
  std::shared_ptr<ImageMask> scaled = maskOriginal_->imageMaskScaledBy(sxOriginal, syOriginal);
  if (!scaled) return;
  const Rect bounds = bezierPath_->bounds();
  scaled->setMaskStartPoint(bounds.origin);
  mask_ = scaled;
  bezierPath_->removeAllPoints();
  if (fillType_ == kFillTypeMask) {
    bezierPath_->appendRect(mask_->maskRect());
    return;
  }
  if (mask_->isEmpty()) return;
  rebuildRunsFromMask();
  clearHighlightCache();
}

void DrawFill::setRotateDegree(float degrees) {
  if (mask_ && fillType_ == kFillTypeMask) {
    rotateByDegree(degrees, rotateCenter());
    return;
  }
  DrawBase::setRotateDegree(degrees);
}

void DrawFill::rotateByDegree(float degrees, const Point& center) {
  if (fillType_ != kFillTypeMask || !mask_ || !bezierPath_) {
    DrawBase::rotateByDegree(degrees, center);
    return;
  }
  float angle = degrees;
  while (angle < 0) angle += 360;
  while (angle >= 360) angle -= 360;
  const auto whole = static_cast<int64_t>(std::floor(angle));
  if (whole == 0) return;
  if (whole % 90 != 0 || angle - static_cast<float>(whole) > kRightAngleSlack) {
    char message[96];
    std::snprintf(message, sizeof message, "Error: DrawFill can't be rotated with degree: %0.2f",
                  static_cast<double>(angle));
    Log(message);
    return;
  }
  rememberOriginalMask();
  std::shared_ptr<ImageMask> original = maskOriginal_->imageMaskRotatedByDegree(whole);
  std::shared_ptr<ImageMask> current = mask_->imageMaskRotatedByDegree(whole);
  if (!original || !current) return;
  maskOriginal_ = original;
  AffineTransform turn = AffineTransform::translation(-center.x, -center.y);
  turn.append(AffineTransform::rotationDegrees(angle));
  turn.append(AffineTransform::translation(center.x, center.y));
  bezierPath_->transform(turn);
  current->setMaskStartPoint(bezierPath_->bounds().origin);
  mask_ = current;
  bezierPath_->removeAllPoints();
  bezierPath_->appendRect(mask_->maskRect());
  clearHighlightCache();
}

}  // namespace paintdoc
