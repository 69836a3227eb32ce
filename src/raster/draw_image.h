// Image layers: a bitmap shown inside a rectangle, with an opacity of its own.
// The canvas background is one, and filter layers derive from it.
#pragma once

#include <memory>

#include "draws/draw_rectangle.h"

namespace paintdoc {

class GraphicsContext;

class DrawImage : public DrawRectangle {
  PAINTDOC_CLASS(DrawImage, DrawRectangle)
 public:
  // Below this opacity no inner shadow is painted.
  static constexpr float kMinimumInnerShadowOpacity = 0.01f;
  // Changes of the opacity through the attribute dictionary smaller than
  // this are no change.
  static constexpr float kOpacityTolerance = 0.001f;

  // A layer showing the bitmap at its pixel size at the origin (path bounds
  // 0, 0, pixels wide, pixels high), opacity 1, path line width 0; null for
  // a null bitmap.
  static std::shared_ptr<DrawImage> withImage(std::shared_ptr<Bitmap> image);

  std::string name() const override { return "Image"; }
  bool classDrawBezierPath() const override { return false; }
  bool shouldAntialias() const override { return true; }
  // An image layer always counts as filling (its pixels are its fill).
  bool drawFill() const override { return true; }
  // DrawRectangle's defaults and opacity 1.
  void init() override;

  // The pixels shown (shared, not copied), or null.
  const std::shared_ptr<Bitmap>& image() const { return image_; }
  void setImage(std::shared_ptr<Bitmap> image) { image_ = std::move(image); }
  // The bitmap shown: the stored one here; filter layers show their effect.
  virtual std::shared_ptr<Bitmap> imageForDrawing() { return image_; }

  // The opacity the image is drawn with, always within [0, 1].
  float opacity() const override { return fOpacity_; }
  // Clamps to [0, 1]; a NaN is logged and changes nothing.
  void setOpacity(float opacity) override;
  // DrawBase's dictionary plus "DAKeyOpacity" (the opacity, single precision).
  DrawAttributes drawAttributes() const override;
  // DrawBase's rules, then "DAKeyOpacity" when present: clamped to [0, 1]
  // and stored only when it differs from the opacity by more than 0.001.
  // Answers whether either part changed something.
  bool setDrawAttributes(const DrawAttributes& attributes) override;

  // Pixels wide / pixels high of the image; 1 without an image or with a
  // height of 0.
  float width2HeightRatioForShift() const override;

  // Mirrors the stored bitmap with the outline.
  using DrawRectangle::flip;
  void flip(bool horizontal) override;

  // imageForDrawing() stretched into the path's bounds (origin rounded to
  // whole units) at the layer's opacity, turned with the draw, casting its
  // shadow, with the inner shadow along the image's edges.
  void _draw() override;
  // Under the view's and the draw's transforms: the image at full opacity
  // when the highlight comes from outside the canvas, then the path's
  // bounding box stroked in the highlight colour, 2 view pixels wide.
  void drawHighlightInCanvasView(const CanvasView& view) override;

  // DrawRectangle's keys, then "Image" (the bitmap, null when there is none)
  // and "Opacity" (float). Reading takes 1 for a missing opacity, clamps it,
  // and sets the path's line width to 0.
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

 protected:
  std::shared_ptr<Bitmap> image_;
  float fOpacity_ = 1.0f;
};

// The inner shadow of an image layer (and of the airbrush, which draws its
// image the same way): inside the destination, a band of the shadow's colour
// along the inner edges of `path` (in the current user space), with the
// image's own shape cut out of it. The caller clears the drop shadow first.
void PaintImageInnerShadow(GraphicsContext& context, const Bitmap& image, const Rect& destination,
                           const BezierPath& path, const Shadow& innerShadow);

// The rectangle an image layer draws its image into: the bounds with the
// origin rounded to whole units (whole part of value + 0.5, truncated
// towards zero), the size kept.
Rect ImageDestinationRect(const Rect& bounds);

}  // namespace paintdoc
