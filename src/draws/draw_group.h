// DrawGroup: a draw that holds an ordered list of other draws (its members,
// bottom first) and stands for them as one layer. Each member's group link
// points back at the group that adopted it; the link does not own.
#pragma once

#include <memory>
#include <vector>

#include "draws/draw_base.h"

namespace paintdoc {

using DrawList = std::vector<std::shared_ptr<DrawBase>>;

class DrawGroup : public DrawBase {
  PAINTDOC_CLASS(DrawGroup, DrawBase)
  ~DrawGroup() override;

  // Groups nest at most this deep: below it a group paints nothing (and
  // marks the drawing failed), measures empty and passes nothing on.
  static constexpr int kMaxNesting = 128;

  // A group of its class's defaults holding a copy of the list, every member
  // adopted (not taken out of any former container).
  static std::shared_ptr<DrawGroup> withDraws(const DrawList& draws);

  std::string name() const override { return "Group"; }

  // The DrawBase keys, then the members under "Draws" when there are any.
  // Reading keeps the members a tree: a draw that the archive lists twice,
  // or that another group already holds, is taken only at its first place.
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;

  // A group has no stroke or fill of its own.
  bool classDrawBezierPath() const override { return false; }
  bool classDrawFill() const override { return false; }
  // Yes as soon as a visible member has a border or a second visible member
  // is met; no for no visible member or a single borderless one.
  bool hasBorder() const override;

  // ---- Rendering and overlays (draw_group_rendering.cc)

  // A group paints only through drawInImage(): this logs and paints nothing.
  void _draw() override;
  // Paints every visible member, in order, into the same bitmap (groups
  // recurse); while rotating, turned by the group's transform.
  void drawInImage(const std::shared_ptr<Bitmap>& image) override;
  // The group alone in a new bitmap of renderedRect()'s size.
  std::shared_ptr<Bitmap> renderedImage() override;
  void clearHighlightCache() override;
  void drawHighlightInCanvasView(const CanvasView& view) override;
  // The members' borders, then the group's own box in black under red dashes.
  void drawBorderInCanvasView(const CanvasView& view) override;

  // ---- Bounds: unions over the visible members (draw_group_rendering.cc)

  Rect drawRect() const override;
  // The bounds of the members' outlines, each turned by its own rotation.
  Rect pathBounds() const override;
  // While rotating, turned by the group's transform and made integral.
  Rect renderedRect() const override;
  // Each member's display area grown by its line width; while rotating,
  // turned by the group's transform.
  Rect displayRect() const override;
  // Sets the group's own outline to the box drawRect() and answers it.
  const std::optional<BezierPath>& rebuildBezierPath();

  // ---- Transforms, passed on to the members (draw_group_transforms.cc)

  // Starting resets the rotation in progress; ending turns the members by it.
  void setRotating(bool rotating) override;
  // Turns the members at once by a whole multiple of 90 degrees; any other
  // angle is logged and ignored. The group stores no rotation.
  void setRotateDegree(float degrees) override;
  using DrawBase::flip;
  // Every member mirrored about the group's centre.
  void flip(bool horizontal) override;
  void moveBy(float x, float y) override;
  // Proportional scaling scales every resizable member; stretching skips
  // (with a log line) visible members turned by other than a right angle.
  void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth) override;

  // Logs the outline of the stroked members as code that rebuilds it inside
  // any box (draw_group_shape_code.cc): first "w : h = <ratio>", then the
  // path statements with every point relative to the box.
  void createShapeCode() const;

  // The live member list.
  const DrawList& draws() const { return aryDraws_; }
  // Replaces the members (the array itself is ignored) and adopts them all.
  // The former members keep their group links.
  void setDraws(const DrawList& draws);
  // True when at least one member is visible.
  bool hasVisibleDraw() const;
  // False for null or a non-member; otherwise removes it and clears its link
  // if it still points here.
  bool removeDraw(const std::shared_ptr<DrawBase>& draw);
  // Clears the link of every member that points here, then empties the list.
  void removeAllDraws();
  // The member's index, or kNotFound.
  int64_t indexOfDraw(const std::shared_ptr<DrawBase>& draw) const;
  // False for null, a member, or an index past the end; the caller sets the
  // group link of an inserted draw.
  bool insertDraw(const std::shared_ptr<DrawBase>& draw, int64_t index);
  // Puts `replacement` where `old` is; false unless `old` is a member and
  // `replacement` is neither null nor a member.
  bool replaceDraw(const std::shared_ptr<DrawBase>& old,
                   const std::shared_ptr<DrawBase>& replacement);

  // Whether `draw` is `group` or holds it at any depth: adopting such a
  // draw would make the group contain itself.
  static bool WouldContain(const DrawBase& draw, const DrawGroup& group);

  // The draws with each one kept only at its first place and only if no group
  // holds it yet (archives may share one object between several places).
  static DrawList UniqueUnheldDraws(DrawList draws);

 protected:
  void adoptMembers();
  void releaseMember(DrawBase& member);
  // Drops (with a log line) members that would make this group contain
  // itself.
  void dropCyclicMembers();
  // Turns one member about `center` by `degrees` as a group rotation does:
  // a hidden member is shown for the turn if it can be rotated; a visible
  // one is turned if it can be resized.
  static void rotateMember(DrawBase& member, float degrees, const Point& center);

  DrawList aryDraws_;
};

}  // namespace paintdoc
