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
#include <optional>
#include <string>
#include <vector>

#include "archive/codable.h"
#include "draws/draw_group.h"
#include "platform/values/geometry.h"

namespace paintdoc {

class Bitmap;
class DrawImage;
class GraphicsContext;

// The structure of a layer tree, saved for undo: "Layers" holds the top-level
// draws without the background, "SubLayers" one member list for each group of
// "Layers", in order. The draws are shared, not copied. A saved status that
// lost an entry (read from elsewhere) is unusable.
struct LayerStatus {
  std::optional<DrawList> layers;                  // "Layers"
  std::optional<std::vector<DrawList>> subLayers;  // "SubLayers"
  friend bool operator==(const LayerStatus&, const LayerStatus&) = default;
};

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

  // ---- end of composition ----

  // ---- Layer tree (paint_manager_layers.cc) ----
  //
  // The tree is two levels deep: top-level draws, some of them groups whose
  // members are looked at one level down. A selection is a list of draws
  // compared by identity. Every operation keeps the composition caches right:
  // it repaints at once or drops the buffer. Invalid input answers false,
  // null or kNotFound and leaves the tree as it was; nothing is logged.

  // Whether the draw is top level or a member of a top-level group.
  bool containsDraw(const std::shared_ptr<DrawBase>& draw) const;
  // The first top-level group (bottom first) holding the draw as a member;
  // null for null, for a top-level draw and for a draw in no group.
  std::shared_ptr<DrawGroup> groupForDraw(const std::shared_ptr<DrawBase>& draw) const;
  // The top-level index, or kNotFound; members are not searched.
  int64_t indexOfDraw(const std::shared_ptr<DrawBase>& draw) const;
  // The visible draws (not the background) whose drawRect meets the
  // rectangle, bottom first; a group only partly inside gives its visible
  // members that meet it instead. Empty for a rectangle 1 unit or less
  // across.
  DrawList drawsInRect(const Rect& rect) const;

  // Inserts at a top-level index (never below the background); the count
  // appends through addDraw().
  bool insertDraw(std::shared_ptr<DrawBase> draw, int64_t index);
  // Puts `replacement` where `old` is, at the top level or in its group. The
  // background can only be replaced by an image draw.
  bool replaceDraw(const std::shared_ptr<DrawBase>& old, std::shared_ptr<DrawBase> replacement);
  // Removes a top-level draw or a member of a top-level group.
  bool removeDraw(const std::shared_ptr<DrawBase>& draw);

  // Whether moveUpDraws() / moveDownDraws() would move anything (the
  // background never counts).
  bool canMoveDrawsUp(const DrawList& selection) const;
  bool canMoveDrawsDown(const DrawList& selection) const;
  // Moves each selected draw one place up (down), at the top level or inside
  // its group; adjacent selected draws move as a block. False when nothing
  // moved.
  bool moveUpDraws(const DrawList& selection);
  bool moveDownDraws(const DrawList& selection);

  // Whether the selection is non-empty and wholly top level.
  bool canMergeDraws(const DrawList& selection) const;
  // A new group of the selected top-level draws (selected groups give their
  // members), put where the topmost of them was; null when a selected draw
  // is not top level.
  std::shared_ptr<DrawGroup> mergeDraws(const DrawList& selection);
  // A new group, in place of `target`, of the target and the selection in
  // layer order; selected members of other groups are taken out of them.
  std::shared_ptr<DrawGroup> mergeDraws(const DrawList& selection,
                                        const std::shared_ptr<DrawBase>& target);
  // Whether a selected draw is a top-level group.
  bool canUnMergeDraws(const DrawList& selection) const;
  // Puts the members of each selected top-level group where the group was
  // and removes the group; the released draws, or nothing when no selected
  // draw is a top-level group.
  std::optional<DrawList> unMergeDraws(const DrawList& selection);
  // Moves the selected draws, in layer order, into `target` at a member
  // index, or to the top level at a top-level index when `target` is null.
  // False when the structure did not change.
  bool moveDraws(const DrawList& selection, const std::shared_ptr<DrawBase>& target,
                 int64_t index);

  // The structure of the tree, for undo.
  LayerStatus savedLayerDrawsStatus() const;
  // Rebuilds the tree from a saved status. Answers the draws the status
  // holds that the canvas did not, or nothing for an unusable status (which
  // may leave the groups partly restored).
  std::optional<DrawList> restoreFromLayerStatus(const LayerStatus& status);
  // ---- end of the layer tree ----

 private:
  std::shared_ptr<Bitmap> makeCanvasBitmap() const;
  void dropBuffer() { imageBuffer_.reset(); }
  // After a reorder: drops the buffer when layers below the top moved, else
  // repaints the top group over it; false when nothing moved.
  bool respondToReorder(bool belowTopChanged, bool topGroupChanged);

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
