// A spray of single-pixel dots inside a disc that follows the pointer. A
// large spray is flattened once into a bitmap so that redrawing it stays
// cheap.
#pragma once

#include <memory>

#include "draws/draw_base.h"

namespace paintdoc {

class DrawAirbrush : public DrawBase {
  PAINTDOC_CLASS(DrawAirbrush, DrawBase)

 public:
  static constexpr float kDefaultBrushWidth = 30.0f;
  // A path of this many elements (about half as many dots) is flattened.
  static constexpr size_t kFlattenElementCount = 10000;
  // A flattened spray larger than this many pixels stays a path: its bitmap
  // would cost more memory than redrawing the dots costs time.
  static constexpr double kMaxFlattenedPixels = 64.0 * 1024 * 1024;
  // A dot that finds no grid point inside the disc after this many tries is
  // left out (a disc narrower than a pixel may hold none).
  static constexpr int kMaxDotTries = 100;

  // Round caps, line width 1, the default brush width and no bitmap.
  void init() override;

  std::string name() const override { return "Airbrush"; }
  bool classDrawFill() const override { return false; }
  bool hasBorder() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool shouldAntialias() const override { return false; }
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }

  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  float brushWidth() const { return fBrushWidth_; }
  void setBrushWidth(float width) { fBrushWidth_ = width; }
  const std::shared_ptr<Bitmap>& image() const { return image_; }

  // One spray at the point: ceiling(w² / 30) dots on the whole-number grid
  // inside the disc of the brush width, each a zero-length segment.
  BezierPath sprayPathAtPoint(Point point) const;
  // Flattens a large spray into a bitmap of the path's bounds.
  void replaceBezierPathWithImageIfPossible();
  void _draw() override;

 private:
  void drawFlattenedImage(GraphicsContext& context);

  float fBrushWidth_ = kDefaultBrushWidth;
  std::shared_ptr<Bitmap> image_;
};

}  // namespace paintdoc
