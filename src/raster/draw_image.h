// Image layers: a bitmap shown inside a rectangle.
#pragma once

#include <memory>

#include "draws/draw_rectangle.h"

namespace paintdoc {

class DrawImage : public DrawRectangle {
  PAINTDOC_CLASS(DrawImage, DrawRectangle)
  std::string name() const override { return "Image"; }
  bool classDrawBezierPath() const override { return false; }
  bool shouldAntialias() const override { return true; }

  // ---- Minimal image layer for composition (the background draw) ----
  // A layer showing the bitmap at its pixel size at the origin, with a path
  // of line width 0; null for a null bitmap.
  static std::shared_ptr<DrawImage> withImage(std::shared_ptr<Bitmap> image);
  // The pixels shown (shared, not copied), or null.
  const std::shared_ptr<Bitmap>& image() const { return image_; }
  void setImage(std::shared_ptr<Bitmap> image) { image_ = std::move(image); }
  // The bitmap shown: the stored one here; filter layers show their effect.
  virtual std::shared_ptr<Bitmap> imageForDrawing() { return image_; }
  // Mirrors the stored bitmap with the outline.
  using DrawRectangle::flip;
  void flip(bool horizontal) override;
  // imageForDrawing() stretched into the path's bounds (origin rounded to whole
  // units), rotated with the draw and casting its shadow.
  void _draw() override;

 protected:
  std::shared_ptr<Bitmap> image_;
  // ---- end of the minimal image layer ----
};

}  // namespace paintdoc
