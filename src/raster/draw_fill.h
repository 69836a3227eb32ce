// A flood-fill result: a region of the canvas painted in one colour that
// replaces the pixels beneath it. The region is held in the cheapest exact
// form: a rectangle, a path of one-pixel runs, or the pixel mask itself.
#pragma once

#include <cstdint>
#include <memory>

#include "draws/draw_base.h"
#include "raster/image_mask.h"

namespace paintdoc {

class DrawFill : public DrawBase {
  PAINTDOC_CLASS(DrawFill, DrawBase)

 public:
  // How the region is held and painted.
  enum FillType : int64_t {
    kFillTypeMask = 0,  // the mask's covered pixels
    kFillTypeRect = 1,  // every pixel of the path's rectangle
    kFillTypeRuns = 2,  // the path's runs, stroked 1 wide with square caps
  };

  // A fill of the mask's region in the form the mask suggests; an empty or
  // absent mask gives an empty fill.
  static std::shared_ptr<DrawFill> withImageMask(const std::shared_ptr<ImageMask>& mask);

  std::string name() const override { return "Fill"; }
  bool classDrawBezierPath() const override { return false; }
  bool classDrawFill() const override { return true; }
  bool copyWhenComposite() const override { return true; }
  bool hasBorder() const override { return true; }
  bool hasControlKnob() const override { return false; }
  bool acceptMouseMoveEventWhenInitDraw() const override { return false; }
  // Only a rectangle fill turns by any angle; a mask or its runs turn by
  // quarter turns only.
  bool canBeRotatedFreely() const override {
    return fillType_ == kFillTypeRect && DrawBase::canBeRotatedFreely();
  }

  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  int64_t fillType() const { return fillType_; }
  const std::shared_ptr<ImageMask>& mask() const { return mask_; }

  // Replaces the region's pixels in the bitmap on which focus is locked,
  // drawing through the current graphics context so that the region lands
  // right at any scale the context shows the canvas at.
  void fillImage(const std::shared_ptr<Bitmap>& bitmap);
  void drawInImage(const std::shared_ptr<Bitmap>& image) override { fillImage(image); }
  // A fill is painted through fillImage only; drawing it logs the misuse.
  void _draw() override;
  Rect drawRect() const override;

  void setBezierPathWithData(const ArchiveValue& data) override;
  void moveBy(float x, float y) override;
  void flip(bool horizontal) override;
  void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) override;
  void setRotateDegree(float degrees) override;
  void rotateByDegree(float degrees, const Point& center) override;
  void clearHighlightCache() override { imgRepHighlight_.reset(); }

 private:
  void adoptMask(const std::shared_ptr<ImageMask>& mask);
  // Moves the mask to the origin of the path's bounds.
  void placeMaskAtPath();
  void paintMaskPixels(GraphicsContext& context) const;
  void paintOutline(GraphicsContext& context) const;
  void rememberOriginalMask();
  void rebuildRunsFromMask();

  int64_t fillType_ = kFillTypeMask;
  std::shared_ptr<ImageMask> mask_;
  // The mask before the first scale or rotation: later transforms resample
  // from it so that repeated ones do not degrade the region.
  std::shared_ptr<ImageMask> maskOriginal_;
  std::shared_ptr<Bitmap> imgRepHighlight_;
};

}  // namespace paintdoc
