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

  // Paints every visible member, in order, into the same bitmap.
  void drawInImage(const std::shared_ptr<Bitmap>& image) override;

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

  // The draws with each one kept only at its first place and only if no group
  // holds it yet (archives may share one object between several places).
  static DrawList UniqueUnheldDraws(DrawList draws);

 protected:
  void adoptMembers();
  void releaseMember(DrawBase& member);

  DrawList aryDraws_;
};

}  // namespace paintdoc
