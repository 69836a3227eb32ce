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
#include "platform/values/geometry.h"

namespace paintdoc {

class Bitmap;
class DrawImage;
class GraphicsContext;

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

  static constexpr const char* kClassName = "PaintManager";
  using Superclass = RootObject;
  std::string className() const override { return kClassName; }

  // An empty canvas. Each side is truncated toward zero through a 32-bit
  // integer (99.9 gives 99, -0.5 gives 0); sides beyond the 32-bit range
  // saturate and a NaN side gives 0.
  static std::shared_ptr<PaintManager> withSize(Size size);
  // A canvas of the image's pixel size whose only draw is the image as its
  // background. The image is first normalised through its TIFF form, as a
  // picture handed over from outside is. A null image (or one that cannot be
  // normalised) gives an empty 100 by 100 canvas.
  static std::shared_ptr<PaintManager> withImage(const std::shared_ptr<Bitmap>& image);
  // The same with the bitmap used as it is, shared, without the TIFF trip.
  static std::shared_ptr<PaintManager> withImageRep(std::shared_ptr<Bitmap> bitmap);

  // "CanvasSize", "DrawsArray", "HasBackground" and "MaskWithBackground".
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  Size canvasSize() const { return size_; }
  // The whole canvas: the origin and canvasSize().
  Rect canvasRect() const;
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

  // ---- Composition (paint_manager_composition.cc) ----
  //
  // Two caches make editing the top layer cheap: imageBuffer_ holds every
  // draw but the top one, image_ is that buffer with the top draw painted
  // over it. Both are painted through CanvasRenderer at full size; previews
  // use CanvasRenderer directly, without the caches.

  // The composed canvas bitmap: image_ as it is when both caches exist, else
  // after refreshImage(). Null only when a bitmap of the canvas size cannot
  // be made.
  std::shared_ptr<Bitmap> image();
  // Rebuilds the buffer if it is missing, then repaints image_ from it: the
  // buffer copied, the top draw painted over it, and the picture masked with
  // the background when maskBackground() is set.
  void refreshImage();
  // Releases both cached bitmaps.
  void clearMemeryBuffer();
  // The top-level draws, in list order, that are visible, leaving out groups
  // none of whose members is visible.
  DrawList visibleDraws() const;
  // The draws of `collection` in layer order, bottom first, looking one level
  // into top-level groups; draws not in the canvas are left out.
  DrawList drawsInLayerOrder(const DrawList& collection) const;
  // Makes the bitmap the background, fitted into the canvas without being
  // enlarged and centred; null removes the background. Drops the buffer.
  void setBackgroundImage(std::shared_ptr<Bitmap> image);
  // Tells the canvas that these draws changed: repaints at once when only the
  // top draw or members of the top group changed, else drops the buffer.
  void respondToChangeOfDraws(const DrawList& changedDraws);
  // Appends the draw at the top. False for null or a draw already top level.
  // The former top draw is painted into the buffer, which stays valid.
  bool addDraw(std::shared_ptr<DrawBase> draw);

 private:
  std::shared_ptr<Bitmap> makeCanvasBitmap() const;
  // The top-level group holding `draw` as a member, or null.
  std::shared_ptr<DrawGroup> topLevelGroupHolding(const std::shared_ptr<DrawBase>& draw) const;
  // ---- end of composition ----

  Size size_;
  DrawList aryDraw_;
  std::shared_ptr<DrawImage> drawBackground_;
  bool bMaskWithBackground_ = false;
  std::shared_ptr<Bitmap> image_;
  std::shared_ptr<Bitmap> imageBuffer_;
};

// The rectangle of an image of `imageSize` fitted into `outer`: scaled down
// (keeping its proportions) when it is larger, never enlarged, and centred.
// The outer rectangle's origin is not added.
Rect GetCenterRect(Size imageSize, const Rect& outer);

}  // namespace paintdoc
