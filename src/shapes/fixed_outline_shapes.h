// The pictograms of the shape library: shapes that differ only by display
// name, preferred width-to-height ratio and outline. Each outline is one table
// of normalised points (fixed_outlines.cc); the classes below only name them.
#pragma once

#include "shapes/draw_rect_shape.h"
#include "shapes/outline_table.h"

namespace paintdoc {

// What makes one pictogram.
struct FixedOutline {
  const char* displayName = "";
  // Width / height kept while the user holds Shift; 0 keeps the ratio of a
  // plain rectangle.
  float shiftRatio = 0;
  OutlineTable outline;
  // Round line caps instead of the default ones.
  bool roundCaps = false;
};

// The behaviour every pictogram shares, read from its FixedOutline. The
// archived class chain skips this helper: pictograms archive as direct
// subclasses of DrawRectShape.
template <const FixedOutline& kOutline>
class FixedOutlineShape : public DrawRectShape {
 public:
  std::string name() const override { return kOutline.displayName; }
  float width2HeightRatioForShift() const override {
    return kOutline.shiftRatio > 0 ? kOutline.shiftRatio
                                   : DrawRectShape::width2HeightRatioForShift();
  }
  void init() override {
    DrawRectShape::init();
    if (kOutline.roundCaps) bezierPath_->setLineCapStyle(LineCapStyle::Round);
  }
  BezierPath bezierPathWithBounds(const Rect& bounds) const override {
    BezierPath path = emptyPathWithLineAttributes();
    AppendOutlineInBox(path, kOutline.outline, bounds);
    return path;
  }
};

// Declares the pictogram class `Class` drawn from the table k<Class>Outline.
#define PAINTDOC_FIXED_OUTLINE_SHAPE(Class)                   \
  extern const FixedOutline k##Class##Outline;                \
  class Class : public FixedOutlineShape<k##Class##Outline> { \
    PAINTDOC_CLASS(Class, DrawRectShape)                      \
  };

PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectHeart)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectWaterDrip)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectLocation)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectBookmark)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectCloud)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectLightning)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectPerson)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectMail)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectiMac)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectAppleLogo)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectButterfly)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectCamera)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectEye)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectHome)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectRefresh)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectFolder)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectPicture)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectClock)
PAINTDOC_FIXED_OUTLINE_SHAPE(DrawRectSignal)

#undef PAINTDOC_FIXED_OUTLINE_SHAPE

}  // namespace paintdoc
