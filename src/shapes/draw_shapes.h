// The shape library: closed outlines fitted into the box the user drags out.
// DrawRectShape is the base of every library shape; the pictograms only
// differ by display name, Shift ratio and outline.
#pragma once

#include "draws/draw_rectangle.h"

namespace paintdoc {

class DrawRectShape : public DrawRectangle {
  PAINTDOC_CLASS(DrawRectShape, DrawRectangle)
  std::string name() const override { return "Shape"; }
};

// A regular polygon with an adjustable number of corners.
class DrawRectPolygon : public DrawRectShape {
  PAINTDOC_CLASS(DrawRectPolygon, DrawRectShape)
  std::string name() const override { return "Polygon"; }
};

// A five-pointed star.
class DrawRectStar : public DrawRectShape {
  PAINTDOC_CLASS(DrawRectStar, DrawRectShape)
  std::string name() const override { return "Star"; }
};

// A pictogram: a fixed outline with its own display name and, for most, its
// own width-to-height ratio for Shift-constrained dragging.
#define PAINTDOC_FIXED_SHAPE(Class, displayName)                       \
  class Class : public DrawRectShape {                                 \
    PAINTDOC_CLASS(Class, DrawRectShape)                               \
    std::string name() const override { return displayName; }         \
  };
#define PAINTDOC_FIXED_SHAPE_WITH_RATIO(Class, displayName, ratio)     \
  class Class : public DrawRectShape {                                 \
    PAINTDOC_CLASS(Class, DrawRectShape)                               \
    std::string name() const override { return displayName; }         \
    float width2HeightRatioForShift() const override { return ratio; } \
  };

PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectHeart, "Heart", 1.1f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectWaterDrip, "Water Drip", 0.67f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectLocation, "Location", 0.73f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectBookmark, "Bookmark", 0.5f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectCloud, "Cloud", 1.4f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectLightning, "Lightning", 0.7f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectPerson, "Person", 0.92f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectMail, "Mail", 1.31f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectiMac, "iMac", 1.13f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectAppleLogo, "Apple Logo", 0.858f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectButterfly, "Butterfly", 1.294f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectCamera, "Camera", 1.2f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectEye, "Eye", 1.646f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectHome, "Home", 1.007f)
PAINTDOC_FIXED_SHAPE(DrawRectRefresh, "Refresh")
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectFolder, "Folder", 1.269f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectPicture, "Picture", 1.389f)
PAINTDOC_FIXED_SHAPE(DrawRectClock, "Clock")
PAINTDOC_FIXED_SHAPE(DrawRectSignal, "Signal")

// Speech bubbles.
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawRectMessage, "Message", 1.6f)
PAINTDOC_FIXED_SHAPE_WITH_RATIO(DrawEllipseMessage, "Ellipse Message", 1.8f)

#undef PAINTDOC_FIXED_SHAPE
#undef PAINTDOC_FIXED_SHAPE_WITH_RATIO

}  // namespace paintdoc
