// PaintManager: the canvas. A fixed size, an ordered list of draws (bottom
// first), an optional background image draw that is also the bottom element
// of that list, a flag that masks the picture with the background, and the
// two cached bitmaps that composition builds.
//
// It is the root object of a document's inner keyed archive; its class
// version (10) is stored by the document container, which refuses newer ones.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "archive/codable.h"
#include "draws/draw_group.h"
#include "platform/geometry.h"

namespace paintdoc {

class Bitmap;
class DrawImage;

class PaintManager : public Codable {
 public:
  static constexpr int64_t kClassVersion = 10;
  // The class version the document container stores under "Version".
  static int64_t version() { return kClassVersion; }

  // An empty canvas of size 0 by 0 (decoding starts from here).
  PaintManager();
  // Groups are told to let go of their members first, so that no member is
  // left pointing at a released group.
  ~PaintManager() override;
  PaintManager(const PaintManager&) = delete;
  PaintManager& operator=(const PaintManager&) = delete;

  std::string className() const override { return "PaintManager"; }

  // An empty canvas. Each side is truncated toward zero through a 32-bit
  // integer (99.9 gives 99, -0.5 gives 0); sides beyond the 32-bit range
  // saturate and a NaN side gives 0.
  static std::shared_ptr<PaintManager> withSize(Size size);

  // "CanvasSize", "DrawsArray", "HasBackground" and "MaskWithBackground".
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  Size canvasSize() const { return size_; }
  // Rounds each side to the nearest integer, halves away from zero. The
  // draws and the caches are left alone; callers that resize drop the caches.
  void setSize(Size size);

  // The live layer list, background included at index 0.
  DrawList& allDraws() { return aryDraw_; }
  const DrawList& allDraws() const { return aryDraw_; }
  // The last draw of the list (possibly the background), or null.
  std::shared_ptr<DrawBase> toppestDraw() const;

  const std::shared_ptr<DrawImage>& backgroundDraw() const { return drawBackground_; }
  // Makes the draw the background at index 0 (removing it and the former
  // background from the list first); null removes the background. Either
  // drops the composition buffer.
  void setBackgroundDraw(std::shared_ptr<DrawImage> draw);

  bool maskBackground() const { return bMaskWithBackground_; }
  // Plain write of the flag; the caller refreshes the picture.
  void setMaskBackground(bool mask) { bMaskWithBackground_ = mask; }

  // The composed canvas bitmap, built on demand at the canvas size. Null only
  // when a bitmap of that size cannot be made.
  std::shared_ptr<Bitmap> image();
  // Rebuilds the missing caches and repaints the picture from the buffer.
  void refreshImage();
  // Releases both cached bitmaps.
  void clearMemeryBuffer();

 private:
  std::shared_ptr<Bitmap> makeCanvasBitmap() const;

  Size size_;
  DrawList aryDraw_;
  std::shared_ptr<DrawImage> drawBackground_;
  bool bMaskWithBackground_ = false;
  std::shared_ptr<Bitmap> image_;
  std::shared_ptr<Bitmap> imageBuffer_;
};

}  // namespace paintdoc
