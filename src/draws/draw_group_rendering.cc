// DrawGroup's painting, its bounds (unions over the visible members) and the
// editing overlays it passes on to its members.
#include <memory>
#include <string>

#include "draws/canvas_view.h"
#include "draws/draw_group.h"
#include "draws/group_nesting.h"
#include "platform/graphics/bitmap_functions.h"
#include "platform/graphics/graphics_context.h"
#include "platform/graphics/graphics_guards.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

constexpr const char* kTooDeep = "groups nested deeper than a drawing allows";

// `rect` turned by `transform`, as the bounds of the turned rectangle path.
Rect TurnedBounds(const Rect& rect, const AffineTransform& transform) {
  return BezierPath::withRect(rect).transformed(transform).bounds();
}

// The rotation of a group being rotated, applied while `this` scope lasts.
class RotationInProgress {
 public:
  RotationInProgress(GraphicsContext* context, const DrawGroup& group)
      : context_(group.rotating() ? context : nullptr) {
    if (context_ == nullptr) return;
    context_->saveGraphicsState();
    context_->concat(group.transform());
  }
  ~RotationInProgress() {
    if (context_ != nullptr) context_->restoreGraphicsState();
  }
  RotationInProgress(const RotationInProgress&) = delete;
  RotationInProgress& operator=(const RotationInProgress&) = delete;

 private:
  GraphicsContext* context_;
};

// Marks the drawing under way failed: a group nested too deep is not drawn.
void RefuseTooDeep() {
  Log(std::string("Error: ") + kTooDeep);
  if (GraphicsContext* context = GraphicsContext::current()) context->recordFailure(kTooDeep);
}

}  // namespace

void DrawGroup::_draw() { Log("Error: Can't use draw for a group, please use drawInImage!"); }

void DrawGroup::drawInImage(const std::shared_ptr<Bitmap>& image) {
  GroupNesting nesting;
  if (nesting.tooDeep()) return RefuseTooDeep();
  RotationInProgress rotation(GraphicsContext::current(), *this);
  for (const auto& member : aryDraws_) {
    if (member->visible()) member->drawInImage(image);
  }
}

std::shared_ptr<Bitmap> DrawGroup::renderedImage() {
  GroupNesting nesting;
  if (nesting.tooDeep()) return nullptr;
  const Rect area = renderedRect();
  if (area.width() < 1 || area.height() < 1) return nullptr;
  std::shared_ptr<Bitmap> image = InitImageRep(area.width(), area.height());
  if (!image) return nullptr;
  BitmapFocus focus(image);
  GraphicsContext& context = focus.context();
  // The rotation comes before the move into the bitmap, as in drawInImage.
  RotationInProgress rotation(&context, *this);
  GraphicsStateGuard saved(context);
  context.setShouldAntialias(false);
  context.setCompositingOperation(CompositingOperation::SourceOver);
  context.translate(-area.origin.x, -area.origin.y);
  for (const auto& member : aryDraws_) {
    if (member->visible()) member->drawInRenderedImage(image, area.origin);
  }
  return image;
}

void DrawGroup::clearHighlightCache() {
  GroupNesting nesting;
  if (nesting.tooDeep()) return;
  for (const auto& member : aryDraws_) member->clearHighlightCache();
}

void DrawGroup::drawHighlightInCanvasView(const CanvasView& view) {
  GroupNesting nesting;
  if (nesting.tooDeep()) return;
  RotationInProgress rotation(GraphicsContext::current(), *this);
  for (const auto& member : aryDraws_) {
    if (member->visible()) member->drawHighlightInCanvasView(view);
  }
}

void DrawGroup::drawBorderInCanvasView(const CanvasView& view) {
  GroupNesting nesting;
  if (nesting.tooDeep()) return;
  GraphicsContext* context = GraphicsContext::current();
  if (context == nullptr) return;
  RotationInProgress rotation(context, *this);
  for (const auto& member : aryDraws_) {
    if (member->visible() && member->hasBorder()) member->drawBorderInCanvasView(view);
  }
  const Rect box = drawRect();
  if (RectIsEmpty(box)) return;
  GraphicsStateGuard saved(*context);
  BezierPath border = BezierPath::withRect(box);
  border.transform(view.transformForDrawing());
  border.setLineWidth(borderLineWidth);
  context->setShouldAntialias(false);
  // Black under red dashes: the group's box shows on any background and
  // apart from the members' own borders.
  context->setStrokeColor(Color::calibratedWhite(0.0, 1.0));
  context->stroke(border);
  border.setLineDash(std::vector<double>(borderDashStyle, borderDashStyle + borderDaskPhaseCount),
                     BorderDashPhaseStart());
  context->setStrokeColor(Color::calibratedRGB(1.0, 0.0, 0.0, 1.0));
  context->stroke(border);
}

bool DrawGroup::hasBorder() const {
  GroupNesting nesting;
  if (nesting.tooDeep()) return false;
  bool metVisibleMember = false;
  for (const auto& member : aryDraws_) {
    if (!member->visible()) continue;
    if (member->hasBorder() || metVisibleMember) return true;
    metVisibleMember = true;
  }
  return false;
}

Rect DrawGroup::drawRect() const {
  GroupNesting nesting;
  if (nesting.tooDeep()) return ZeroRect();
  Rect bounds = ZeroRect();
  for (const auto& member : aryDraws_) {
    if (member->visible()) bounds = RectUnion(bounds, member->drawRect());
  }
  return bounds;
}

Rect DrawGroup::pathBounds() const {
  GroupNesting nesting;
  if (nesting.tooDeep()) return ZeroRect();
  BezierPath outlines;
  for (const auto& member : aryDraws_) {
    if (!member->visible()) continue;
    // A nested group's own outline is the box of its members.
    if (const auto* nested = dynamic_cast<const DrawGroup*>(member.get())) {
      const Rect box = nested->drawRect();
      if (!RectIsEmpty(box)) outlines.appendRect(box);
      continue;
    }
    if (!member->bezierPath()) continue;
    const BezierPath& outline = member->bezierPath().value();
    if (!outline.isEmpty()) outlines.appendPath(outline.transformed(member->transform()));
  }
  return outlines.isEmpty() ? ZeroRect() : outlines.bounds();
}

Rect DrawGroup::renderedRect() const {
  GroupNesting nesting;
  if (nesting.tooDeep()) return ZeroRect();
  Rect bounds = ZeroRect();
  for (const auto& member : aryDraws_) {
    if (member->visible()) bounds = RectUnion(bounds, member->renderedRect());
  }
  if (!bRotating_) return bounds;
  return RectIntegral(TurnedBounds(bounds, transform()));
}

Rect DrawGroup::displayRect() const {
  GroupNesting nesting;
  if (nesting.tooDeep()) return ZeroRect();
  Rect bounds = ZeroRect();
  for (const auto& member : aryDraws_) {
    if (!member->visible()) continue;
    Rect area = member->displayRect();
    const float width =
        member->bezierPath() ? static_cast<float>(member->bezierPath()->lineWidth()) : 0.0f;
    if (width > 0) area = RectInset(area, -width, -width);
    bounds = RectUnion(bounds, area);
  }
  if (!bRotating_) return bounds;
  return TurnedBounds(bounds, transform());
}

const std::optional<BezierPath>& DrawGroup::rebuildBezierPath() {
  if (!bezierPath_) bezierPath_.emplace();
  bezierPath_->removeAllPoints();
  bezierPath_->appendRect(drawRect());
  return bezierPath_;
}

}  // namespace paintdoc
