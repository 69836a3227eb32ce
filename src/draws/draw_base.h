// DrawBase: the common layer object. Every entry of a canvas's draw list is a
// DrawBase or one of its subclasses. It carries the outline path (with the
// stroke's width, dash, cap and join), stroke and fill, gradient, shadows,
// reflection, rotation, visibility, lock, title, the link to its group and the
// flags of an editing gesture in progress.
//
// Creation follows the platform's two steps: the constructor gives a draw whose
// fields are all zero (what decoding starts from), and init() applies the
// defaults of the draw's class. MakeDraw<T>() does both.
//
// The class traits (classDrawStroke, copyWhenComposite, ...) are virtual
// operations that answer a constant or a simple rule per class; behaviour
// throughout the model is switched by them rather than by flags in the data.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "archive/archive_value.h"
#include "archive/codable.h"
#include "archive/shared_bytes.h"
#include "draws/draw_attributes.h"
#include "platform/values/affine_transform.h"
#include "platform/values/bezier_path.h"
#include "platform/values/color.h"
#include "platform/values/geometry.h"
#include "platform/values/gradient.h"
#include "platform/values/shadow.h"

namespace paintdoc {

class Bitmap;
class CanvasView;
class GraphicsContext;
class DrawGroup;

// --- Process-wide drawing constants, set once by DrawBase::initialize().

// Line width of selection borders and outlines drawn over the canvas view:
// 1.0, divided by the display's backing scale when that scale is above 1.
extern float borderLineWidth;
// Dash pattern of those borders and the number of its entries.
extern const double borderDashStyle[2];
extern const int64_t borderDaskPhaseCount;
// Phase of the border dash, advanced by 1 every 0.1 s and wrapped to 0 at 8 by
// a background task. Read it through BorderDashPhaseStart(), which starts the
// task on first use: a process that never paints a border (a preview, a
// server, the plug-in) starts no thread. A stale value only shifts the dash by
// a step.
extern std::atomic<double> fBorderDashPhaseStart;
double BorderDashPhaseStart();
// One step of the animation: the next phase after `phase`.
double NextBorderDashPhase(double phase);
// Colour of highlights and knobs: calibrated RGB (29, 89, 236) / 255, opaque.
extern const Color colorDrawBaseHighlight;

class DrawBase : public Codable, public std::enable_shared_from_this<DrawBase> {
 public:
  // Zero state: no path, no colours, every flag off. Call init() for defaults.
  DrawBase();
  ~DrawBase() override;
  DrawBase(const DrawBase&) = delete;
  DrawBase& operator=(const DrawBase&) = delete;

  static constexpr const char* kClassName = "DrawBase";
  using Superclass = RootObject;
  std::string className() const override { return kClassName; }

  // The one-time class set-up: measures the backing scale. Runs once per
  // process; later calls do nothing.
  static void initialize();

  // --- Lifetime and persistence

  // The defaults of the draw's class: a new empty path with line width 2.0,
  // square caps, bevel joins and no dash; black stroke and fill colours;
  // stroke on exactly when the class strokes and fill on otherwise; gradient
  // angle 90; visible and smooth; reflection distance -10060 (never set).
  // Subclasses call their superclass's init first.
  virtual void init();

  // The keyed archive of a draw. Optional state is written only when it
  // differs from its default; reading falls back to the default for every
  // missing key and repairs inconsistent state (a gradient fill without a
  // gradient, a shadow flag without a shadow). Subclasses write and read
  // their superclass's keys first.
  void encodeWithCoder(KeyedArchiver& coder) const override;
  bool initWithCoder(KeyedUnarchiver& coder) override;
  // The draw archived alone as the root of a new keyed archive.
  std::vector<uint8_t> encodedData() const;
  // The root draw of such an archive, or null for data that is no keyed
  // archive or whose root is no draw. The draw classes must be registered.
  static std::shared_ptr<DrawBase> objectWithEncodedData(SharedBytes data);

  // A snapshot of the outline for undo and resizing: here a copy of the path
  // (absent when there is none). Subclasses with their own points answer
  // their own form.
  virtual ArchiveValue bezierPathData() const;
  // Takes the elements of such a path, keeping this draw's own line width,
  // dash and styles. Anything but a path is ignored.
  virtual void setBezierPathWithData(const ArchiveValue& data);

  // The draw's dash pattern as text: each entry as a whole number, joined by
  // ':' ({6, 3} gives "6:3"). "" when there is no path or fewer than 2
  // entries; at most 100 entries are read.
  std::string lineDashStyle() const;
  // Parses dash text ("6:3", "6 3") into at most 10 entries and sets them on
  // the path with phase 0; text that yields no entries clears the dash.
  // Nothing happens when there is no path.
  void setLineDashStyle(std::string_view style);

  // The title given by the user, or the class's display name when none is set.
  virtual std::string layerTitle() const;
  // Sets the user's title; none clears it.
  void setLayerTitle(std::optional<std::string> title);
  // The class's fixed display name ("Draw", "Rectangle", ...).
  virtual std::string name() const { return "Draw"; }

  // --- Rendering into a bitmap

  // Paints the draw into the bitmap on which the caller has locked focus.
  // Composition paints every layer through this one call: fills and groups
  // override it (they work on the bitmap's pixels or on their members);
  // vector draws paint into the current graphics context with draw().
  virtual void drawInImage(const std::shared_ptr<Bitmap>& image);
  // The same into a bitmap that shows the canvas from `origin` on (a group's
  // renderedImage). Draws that paint through the current transform need no
  // more than drawInImage(); a fill that works on the bitmap's own pixels
  // overrides this to meet the bitmap where it lies.
  virtual void drawInRenderedImage(const std::shared_ptr<Bitmap>& image, Point /*origin*/) {
    drawInImage(image);
  }

  // ---- Rendering pipeline (draw_base_rendering.cc) ----

  // Whether the outline is stroked: the class strokes and stroke is on, and
  // either the draw replaces pixels or its stroke colour is visible (alpha at
  // least 0.01).
  virtual bool drawStroke() const;
  // Whether the outline is filled: the class fills and fill is on, and either
  // the draw replaces pixels or it has something visible to fill with (a
  // gradient, or a fill colour of alpha at least 0.01).
  virtual bool drawFill() const;
  // Paints fill (colour or gradient) with its drop shadow, the inner shadow
  // and the stroke into the current graphics context, rotated by transform().
  virtual void _draw();
  // Paints the mirrored, fading reflection below the draw, then the draw
  // itself with _draw(). Selection tools and empty outlines paint nothing.
  virtual void draw();
  // The reflection alone: the draw mirrored about its bottom edge, moved
  // down by the reflection distance and faded, without its shadow.
  void drawReflection(GraphicsContext& context);
  // The bounds of the rotated outline, widened by half the line width when
  // stroked; the zero rectangle for an empty outline.
  virtual Rect drawRect() const;
  // drawRect() with the extents of shadow and reflection, made integral: the
  // area a painting of the draw can touch.
  virtual Rect renderedRect() const;
  // The rotated control bounds widened by twice the line width, with shadow
  // and reflection extents; not made integral.
  virtual Rect displayRect() const;
  // The draw painted alone into a new bitmap of renderedRect()'s size, or
  // null for an empty outline or a rendered area below 1 unit either way.
  virtual std::shared_ptr<Bitmap> renderedImage();
  // The selected draw's outline in the highlight colour, in view units.
  virtual void drawHighlightInCanvasView(const CanvasView& view);
  // The marching-ants border of a draw without an outline of its own.
  virtual void drawBorderInCanvasView(const CanvasView& view);
  // The centre of a radial gradient fill as a rotated canvas point; `scale`
  // is not used.
  virtual Point fillGradientCenterPointWithScale(float scale) const;

  // ---- end of the rendering pipeline ----

  // ==== Geometry and transforms (implemented in draw_base_geometry.cc) ====
  // The outline stays unrotated in the path; the rotation is kept apart in
  // fRotateDegree_ and applied about rotateCenter() through transform().

  // Tight bounds of the unrotated outline; the zero rectangle without a path
  // or with an empty one.
  virtual Rect pathBounds() const;
  // The box around the rotated control-point box of the outline.
  virtual Rect controlBounds() const;
  // Centre of pathBounds(): the point the rotation turns about.
  virtual Point rotateCenter() const;
  // The rotation about rotateCenter(); identity for an empty outline or a
  // rotation of exactly 0. invertTransform() turns the other way.
  virtual AffineTransform transform() const;
  virtual AffineTransform invertTransform() const;
  // A point mapped by transform() / invertTransform(); itself when unrotated.
  virtual Point pointAfterRotate(const Point& point) const;
  virtual Point pointBeforeRotate(const Point& point) const;

  virtual float rotateDegree() const { return fRotateDegree_; }
  // Stores the rotation normalised into [-180, 180] (both ends kept as given).
  virtual void setRotateDegree(float degrees);

  // Sets the path's line width; a dash keeps its proportion to the width.
  // Both setters create an empty path first when there is none.
  virtual void setBezierPathLineWidth(float width);
  // Sets the dash with phase 0; fewer than 2 entries make the line solid.
  virtual void setBezierPathLineDash(std::span<const double> pattern);

  // Mirrors the outline left-right (horizontal) or top-bottom about its own
  // centre; a rotated draw then turns the other way.
  virtual void flip(bool horizontal);
  // Mirrors about an outside centre (a group's), moving the draw across it.
  // Subclasses that override one flip bring the other in with `using`.
  virtual void flip(bool horizontal, const Point& center);
  virtual void moveBy(float x, float y);
  // Scales the outline about `center` (the zero point: about the origin,
  // without translation). Resizing line widths forces a proportional scale
  // by sx and scales the width, dash and shadows with it.
  virtual void scaleBy(float sx, float sy, const Point& center, bool resizeLineWidth);
  // Moves the outline as if turned about `center` and adds the angle to the
  // rotation without normalising it.
  virtual void rotateByDegree(float degrees, const Point& center);
  // Bakes the rotation into the outline and sets the rotation to 0.
  virtual void applyRotationToBezierPath();

  // Drops cached drawings of the outline (the editing highlight); called by
  // every operation above that changes the outline. Nothing to drop here.
  virtual void clearHighlightCache() {}
  // ==== end of geometry and transforms ====

  // --- Attributes and capabilities (draw_base_attributes.cc)
  // What an editor may change on this draw, computed from the class traits
  // and the class (classes of higher modules by name, through the class
  // registry, so RegisterAllClasses() must have run, as it must before
  // reading a document). Curved text overrides the rotation and resizing
  // questions to ask its path draw; text and image draws override the
  // attribute and opacity operations.

  // Visible, and either in no group or in a visible one.
  virtual bool visibleWithGroup() const;
  virtual bool shouldDrawBorderWhenCreating() const;
  virtual bool shouldDrawKnobWhenCreating() const;
  virtual bool shouldFocusedWhenAdded() const;
  virtual bool canBeSelectedByClick() const;
  virtual bool canSetStrokeColor() const;
  virtual bool canSetFillColor() const;
  virtual bool canSetFillGradient() const;
  virtual bool canSetLineWidth() const;
  virtual bool canSetDashStyle() const;
  virtual bool canSetShadow() const;
  virtual bool canSetInnerShadow() const;
  virtual bool canToggleSmooth() const;
  virtual bool canSetReflection() const;
  // A group asks its visible members; it needs at least one.
  virtual bool canBeRotated() const;
  virtual bool canBeRotatedFreely() const;
  virtual bool canBeResized() const;
  // A group also needs every visible member turned by a whole multiple of
  // 90 degrees (within 0.01).
  virtual bool canBeResizedFreely() const;
  // The direction is not consulted.
  virtual bool canBeFliped(bool horizontal) const;
  // The outlines that text can run along.
  virtual bool canCreateBezierText() const;
  virtual bool canAdjustOpacity() const;

  // The alpha of what the draw paints: the fill (a gradient's mean alpha)
  // when it fills, else the stroke when it strokes, else 0.
  virtual float opacity() const;
  // Clamps to [0, 1] and gives the fill (colour or every gradient stop) and,
  // independently, the stroke colour that alpha.
  virtual void setOpacity(float opacity);
  // The draw's look: "DAKeySmooth" always, then the stroke, fill and shadow
  // keys for what the draw strokes, fills and casts.
  virtual DrawAttributes drawAttributes() const;
  // Applies a look: keys that are missing switch their feature off. Nothing
  // is applied unless the dictionary names a stroke colour, fill colour or
  // fill gradient. Values equal within the tolerant comparisons are no
  // change. Answers whether anything changed.
  virtual bool setDrawAttributes(const DrawAttributes& attributes);
  // --- end of attributes and capabilities

  // --- Class traits

  // The draw is a vector outline (stroked and filled from its path).
  virtual bool classDrawBezierPath() const { return true; }
  virtual bool classDrawStroke() const { return classDrawBezierPath(); }
  virtual bool classDrawFill() const { return false; }
  // Yes: the draw replaces the pixels beneath it instead of blending over them.
  virtual bool copyWhenComposite() const { return false; }
  // Yes while resizing; else yes for a draw that is not a vector outline;
  // else whether it is a selection tool.
  virtual bool hasBorder() const;
  virtual bool isSelectTool() const { return false; }
  virtual bool hasControlKnob() const { return true; }
  virtual bool shouldAntialias() const { return bSmooth_; }
  virtual bool acceptMouseMoveEventWhenInitDraw() const { return true; }
  virtual bool canContinueInitWhenMouseUp() const { return false; }

  // --- Properties

  // The outline, before rotation; none only when an archive held none.
  const std::optional<BezierPath>& bezierPath() const { return bezierPath_; }

  bool enableStroke() const { return bEnableStroke_; }
  void setEnableStroke(bool on) { bEnableStroke_ = on; }
  const std::optional<Color>& strokeColor() const { return colorStroke_; }
  virtual void setStrokeColor(std::optional<Color> color) { colorStroke_ = std::move(color); }

  bool enableFill() const { return bEnableFill_; }
  void setEnableFill(bool on) { bEnableFill_ = on; }
  bool fillWithGradient() const { return bFillWithGdt_; }
  virtual void setFillWithGradient(bool on) { bFillWithGdt_ = on; }
  const std::optional<Color>& fillColor() const { return colorFill_; }
  virtual void setFillColor(std::optional<Color> color) { colorFill_ = std::move(color); }
  const std::optional<Gradient>& fillGradient() const { return gradientFill_; }
  virtual void setFillGradient(std::optional<Gradient> gradient) {
    gradientFill_ = std::move(gradient);
  }
  bool fillRadialGradient() const { return bFillRadialGdt_; }
  void setFillRadialGradient(bool radial) { bFillRadialGdt_ = radial; }
  float fillGradientDegree() const { return fFillGdtDegree_; }
  void setFillGradientDegree(float degrees) { fFillGdtDegree_ = degrees; }
  // Centre of a radial gradient relative to the unrotated path bounds: (0, 0)
  // is the middle, (1, 1) the upper right corner.
  Point fillGradientCenter() const { return ptFillGdtCenter_; }
  void setFillGradientCenter(Point center) { ptFillGdtCenter_ = center; }

  // The group holding this draw (not owned), or null.
  DrawGroup* group() const { return group_; }
  void setGroup(DrawGroup* group) { group_ = group; }

  bool visible() const { return bVisible_; }
  void setVisible(bool visible) { bVisible_ = visible; }
  bool locked() const { return bLocked_; }
  void setLocked(bool locked) { bLocked_ = locked; }
  bool smooth() const { return bSmooth_; }
  void setSmooth(bool smooth) { bSmooth_ = smooth; }

  bool enableShadow() const { return bEnableShadow_; }
  void setEnableShadow(bool on) { bEnableShadow_ = on; }
  const std::optional<Shadow>& shadow() const { return shadow_; }
  void setShadow(std::optional<Shadow> shadow) { shadow_ = std::move(shadow); }
  bool enableInnerShadow() const { return bEnableInnerShadow_; }
  void setEnableInnerShadow(bool on) { bEnableInnerShadow_ = on; }
  const std::optional<Shadow>& innerShadow() const { return shadowInner_; }
  void setInnerShadow(std::optional<Shadow> shadow) { shadowInner_ = std::move(shadow); }

  bool enableReflection() const { return bEnableReflection_; }
  void setEnableReflection(bool on) { bEnableReflection_ = on; }
  // Strength of the reflection; 0 means none, values above 1 are allowed.
  float reflection() const { return fReflection_; }
  void setReflection(float strength) { fReflection_ = strength; }
  // Distance from the draw's bottom edge to the reflection; -10060 marks a
  // distance that was never set.
  float reflectionDis() const { return fReflectionDis_; }
  void setReflectionDis(float distance) { fReflectionDis_ = distance; }

  // Flags of an editing gesture in progress; never archived.
  bool rotating() const { return bRotating_; }
  virtual void setRotating(bool rotating) { bRotating_ = rotating; }
  bool resizing() const { return bResizing_; }
  void setResizing(bool resizing) { bResizing_ = resizing; }
  bool isEditingFillGradient() const { return bEditingFillGradient_; }
  void setIsEditingFillGradient(bool editing) { bEditingFillGradient_ = editing; }
  bool creatingWithEvent() const { return bCreatingWithEvent_; }
  void setCreatingWithEvent(bool creating) { bCreatingWithEvent_ = creating; }

  // Values init() gives and decoding falls back to.
  static constexpr double kInitLineWidth = 2.0;
  static constexpr float kDefaultFillGradientDegree = 90.0f;
  static constexpr float kReflectionDistanceUnset = -10060.0f;

  // The shadows a decoded draw gets when its flag is on but none was stored.
  static Shadow defaultShadow();
  static Shadow defaultInnerShadow();

 protected:
  std::optional<BezierPath> bezierPath_;
  bool bEnableStroke_ = false;
  std::optional<Color> colorStroke_;
  bool bEnableFill_ = false;
  bool bFillWithGdt_ = false;
  std::optional<Color> colorFill_;
  std::optional<Gradient> gradientFill_;
  bool bFillRadialGdt_ = false;
  float fFillGdtDegree_ = 0;
  Point ptFillGdtCenter_;
  std::optional<std::string> strLayerTitle_;
  DrawGroup* group_ = nullptr;
  float fRotateDegree_ = 0;
  bool bVisible_ = false;
  bool bLocked_ = false;
  bool bSmooth_ = false;
  bool bEnableShadow_ = false;
  std::optional<Shadow> shadow_;
  bool bEnableInnerShadow_ = false;
  std::optional<Shadow> shadowInner_;
  bool bEnableReflection_ = false;
  float fReflection_ = 0;
  float fReflectionDis_ = 0;
  bool bCreatingWithEvent_ = false;
  bool bRotating_ = false;
  bool bResizing_ = false;
  bool bEditingFillGradient_ = false;
};

// A draw of class T with its class's defaults (construction, then init()).
template <class T>
std::shared_ptr<T> MakeDraw() {
  auto draw = std::make_shared<T>();
  draw->init();
  return draw;
}

}  // namespace paintdoc
