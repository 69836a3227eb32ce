// The keyed archive of DrawBase and the path snapshot used by undo.
#include "archive/encoded_data.h"
#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "draws/draw_base.h"

namespace paintdoc {

namespace {

// Below this, a reflection distance counts as never set.
constexpr float kNearestReflectionDistance = -60.0f;

}  // namespace

Shadow DrawBase::defaultShadow() {
  return Shadow(Color::calibratedWhite(0.0, 0.85), Size{8.0, -8.0}, 8.0);
}

Shadow DrawBase::defaultInnerShadow() {
  return Shadow(Color::calibratedWhite(0.3, 1.0), Size{6.0, -6.0}, 6.0);
}

void DrawBase::encodeWithCoder(KeyedArchiver& coder) const {
  if (bezierPath_) coder.encodeBezierPathForKey(*bezierPath_, "BezierPath");

  coder.encodeBoolForKey(bEnableStroke_, "EnableStroke");
  if (bEnableStroke_ && colorStroke_) coder.encodeColorForKey(*colorStroke_, "ForeColor");

  coder.encodeBoolForKey(bEnableFill_, "EnableFill");
  if (bEnableFill_) {
    coder.encodeBoolForKey(bFillWithGdt_, "IsFillWithGdt");
    if (bFillWithGdt_) {
      coder.encodeBoolForKey(bFillRadialGdt_, "IsFillRadialGdt");
      coder.encodeFloatForKey(fFillGdtDegree_, "FillGdtDegree");
      coder.encodePointForKey(ptFillGdtCenter_, "FillGdtCenter");
      if (gradientFill_) coder.encodeGradientForKey(*gradientFill_, "FillGradient");
    } else if (colorFill_) {
      coder.encodeColorForKey(*colorFill_, "BackColor");
    }
  }

  // A shadow switched off is not kept: only the flags that are on are written.
  if (bEnableShadow_) {
    coder.encodeBoolForKey(true, "EnableShadow");
    if (shadow_) coder.encodeShadowForKey(*shadow_, "Shadow");
  }
  if (bEnableInnerShadow_) {
    coder.encodeBoolForKey(true, "EnableInnerShadow");
    if (shadowInner_) coder.encodeShadowForKey(*shadowInner_, "InnerShadow");
  }
  if (bEnableReflection_) {
    coder.encodeBoolForKey(true, "EnableReflection");
    coder.encodeFloatForKey(fReflection_, "Reflection");
    coder.encodeFloatForKey(fReflectionDis_, "ReflectionDis");
  }

  // -0.0 compares equal to 0 and is not written; a NaN is.
  if (fRotateDegree_ != 0.0f) coder.encodeFloatForKey(fRotateDegree_, "RotateDegree");
  if (!bVisible_) coder.encodeBoolForKey(false, "Visible");
  if (!bSmooth_) coder.encodeBoolForKey(false, "SmoothLine");
  if (strLayerTitle_) coder.encodeStringForKey(*strLayerTitle_, "LayerTitle");
  if (bLocked_) coder.encodeBoolForKey(true, "Locked");
}

bool DrawBase::initWithCoder(KeyedUnarchiver& coder) {
  // Fields not read below keep the zero state of construction.
  bezierPath_ = coder.containsValueForKey("BezierPath")
                    ? coder.decodeBezierPathForKey("BezierPath")
                    : std::optional<BezierPath>(BezierPath());

  bEnableStroke_ = coder.containsValueForKey("EnableStroke")
                       ? coder.decodeBoolForKey("EnableStroke")
                       : classDrawStroke();
  if (coder.containsValueForKey("ForeColor")) setStrokeColor(coder.decodeColorForKey("ForeColor"));
  if (bEnableStroke_ && !colorStroke_) setStrokeColor(Color::blackColor());

  bEnableFill_ = coder.containsValueForKey("EnableFill") ? coder.decodeBoolForKey("EnableFill")
                                                         : classDrawFill();
  bFillWithGdt_ = coder.decodeBoolForKey("IsFillWithGdt");
  if (coder.containsValueForKey("BackColor")) setFillColor(coder.decodeColorForKey("BackColor"));
  if (coder.containsValueForKey("FillGradient")) {
    setFillGradient(coder.decodeGradientForKey("FillGradient"));
  }
  if (bEnableFill_ && bFillWithGdt_ && !gradientFill_) bFillWithGdt_ = false;

  bFillRadialGdt_ = coder.decodeBoolForKey("IsFillRadialGdt");
  fFillGdtDegree_ = coder.containsValueForKey("FillGdtDegree")
                        ? coder.decodeFloatForKey("FillGdtDegree")
                        : kDefaultFillGradientDegree;
  ptFillGdtCenter_ = coder.decodePointForKey("FillGdtCenter");
  if (bEnableFill_ && !bFillWithGdt_ && !colorFill_) setFillColor(Color::blackColor());

  bEnableShadow_ = coder.decodeBoolForKey("EnableShadow");
  if (coder.containsValueForKey("Shadow")) shadow_ = coder.decodeShadowForKey("Shadow");
  if (bEnableShadow_ && !shadow_) shadow_ = defaultShadow();

  bEnableInnerShadow_ = coder.decodeBoolForKey("EnableInnerShadow");
  if (coder.containsValueForKey("InnerShadow")) {
    shadowInner_ = coder.decodeShadowForKey("InnerShadow");
  }
  if (bEnableInnerShadow_ && !shadowInner_) shadowInner_ = defaultInnerShadow();

  bEnableReflection_ = coder.decodeBoolForKey("EnableReflection");
  fReflection_ = coder.decodeFloatForKey("Reflection");
  fReflectionDis_ = coder.containsValueForKey("ReflectionDis")
                        ? coder.decodeFloatForKey("ReflectionDis")
                        : kReflectionDistanceUnset;
  if (bEnableReflection_ && fReflectionDis_ < kNearestReflectionDistance) fReflectionDis_ = 0;

  // Stored as read, without normalising into [-180, 180].
  fRotateDegree_ = coder.decodeFloatForKey("RotateDegree");

  bVisible_ = coder.containsValueForKey("Visible") ? coder.decodeBoolForKey("Visible") : true;
  bSmooth_ = coder.containsValueForKey("SmoothLine") ? coder.decodeBoolForKey("SmoothLine") : true;
  if (coder.containsValueForKey("LayerTitle")) {
    strLayerTitle_ = coder.decodeStringForKey("LayerTitle");
  }
  bLocked_ = coder.decodeBoolForKey("Locked");
  return true;
}

std::vector<uint8_t> DrawBase::encodedData() const { return EncodedData(*this); }

std::shared_ptr<DrawBase> DrawBase::objectWithEncodedData(SharedBytes data) {
  return std::dynamic_pointer_cast<DrawBase>(ObjectWithEncodedData(std::move(data)).value_or(nullptr));
}

ArchiveValue DrawBase::bezierPathData() const {
  return bezierPath_ ? ArchiveValue(*bezierPath_) : ArchiveValue();
}

void DrawBase::setBezierPathWithData(const ArchiveValue& data) {
  const BezierPath* path = data.as<BezierPath>();
  if (path == nullptr || !bezierPath_) return;
  // A value never aliases the held path, so there is no "same path" case.
  bezierPath_->removeAllPoints();
  bezierPath_->appendPath(*path);
}

}  // namespace paintdoc
