// The primitives a GraphicsContext draws (fills, strokes, images, layer
// composites, shadow masks) and the two steps every primitive goes through:
// its shadow mask, and its composite with the platform's bounded semantics.
// Internal to the drawing code.
#pragma once

#include <cairo.h>

#include <optional>

#include "platform/values/bezier_path.h"
#include "platform/values/bitmap.h"
#include "platform/graphics/cairo_conversion.h"
#include "platform/values/color.h"
#include "platform/values/compositing.h"
#include "platform/values/geometry.h"
#include "platform/values/gradient.h"

namespace paintdoc::drawing {

// A rectangle of device pixels (cairo's device space: y down).
struct DeviceRect {
  int x = 0, y = 0, width = 0, height = 0;
  bool isEmpty() const { return width <= 0 || height <= 0; }
};

// Where a fill or stroke takes its colour: a colour or a gradient.
class Source {
 public:
  Source(const Color& color) : color_(color) {}  // NOLINT: a colour is a source
  // `geometry` is a linear or radial cairo gradient without stops.
  Source(cairo_conversion::PatternPtr geometry, const Gradient& gradient);
  // Makes this cr's source, its alpha multiplied by `alpha`.
  void set(cairo_t* cr, double alpha) const;

 private:
  Color color_;
  cairo_conversion::PatternPtr geometry_;
  Gradient gradient_;
};
inline Source ColorSource(const Color& color) { return Source(color); }
inline Source GradientSource(cairo_conversion::PatternPtr geometry, const Gradient& gradient) {
  return Source(std::move(geometry), gradient);
}

class Primitive {
 public:
  virtual ~Primitive() = default;
  // Draws the source through the shape with cr's operator, alpha multiplied by `alpha`.
  virtual void paint(cairo_t* cr, double alpha) const = 0;
  // Draws the source everywhere in the clip (the shape left out).
  virtual void paintSource(cairo_t* cr, double alpha) const = 0;
  // Draws the shape's coverage in opaque black.
  virtual void paintCoverage(cairo_t* cr) const = 0;
  // Adds the shape to cr's clip; false when the shape cannot be a clip.
  virtual bool clipToShape(cairo_t*) const { return false; }
  // Device pixels the primitive can touch; none when unbounded.
  virtual std::optional<DeviceRect> deviceExtents(cairo_t* cr) const = 0;
  // A layer composite acts on the whole clip, not on a shape.
  virtual bool isLayer() const { return false; }
  // Whether paint() with this operator leaves everything outside the shape
  // alone (cairo's own rule, which most primitives share).
  virtual bool paintIsBounded(cairo_operator_t op) const;
};

// A path painted with a source: the shared part of fills and strokes.
class PathPrimitive : public Primitive {
 public:
  PathPrimitive(const BezierPath& path, Source source) : path_(path), source_(std::move(source)) {}
  void paint(cairo_t* cr, double alpha) const override;
  void paintSource(cairo_t* cr, double alpha) const override;
  void paintCoverage(cairo_t* cr) const override;

 protected:
  // Replaces cr's path by the shape and sets what the final cairo_fill or
  // cairo_stroke of this primitive needs (fill rule or stroke style).
  virtual void appendShape(cairo_t* cr) const = 0;
  // cairo_fill or cairo_stroke.
  virtual void paintShape(cairo_t* cr) const = 0;

  const BezierPath& path_;
  Source source_;
};

class FillPrimitive : public PathPrimitive {
 public:
  using PathPrimitive::PathPrimitive;
  bool clipToShape(cairo_t* cr) const override;
  std::optional<DeviceRect> deviceExtents(cairo_t* cr) const override;

 private:
  void appendShape(cairo_t* cr) const override;
  void paintShape(cairo_t* cr) const override;
};

class StrokePrimitive : public PathPrimitive {
 public:
  using PathPrimitive::PathPrimitive;
  std::optional<DeviceRect> deviceExtents(cairo_t* cr) const override;

 private:
  void appendShape(cairo_t* cr) const override;
  void paintShape(cairo_t* cr) const override;
};

// A bitmap's source rectangle (points, lower-left origin) stretched into a
// destination rectangle, with edges that do not fade.
class ImagePrimitive : public Primitive {
 public:
  ImagePrimitive(const Bitmap& bitmap, const Rect& destination, const Rect& source,
                 double fraction, ImageInterpolation interpolation);
  void paint(cairo_t* cr, double alpha) const override;
  void paintSource(cairo_t* cr, double alpha) const override;
  void paintCoverage(cairo_t* cr) const override;
  bool clipToShape(cairo_t* cr) const override;
  std::optional<DeviceRect> deviceExtents(cairo_t* cr) const override;

 private:
  cairo_conversion::SurfacePtr surface_;
  cairo_conversion::PatternPtr pattern_;
  Rect destination_;
  double fraction_;
};

// Pixels drawn into a cairo group: the contents of a finished transparency
// layer (unbounded: it covers the whole clip), or what a caller drew with
// cairo directly (bounded by what it drew).
class GroupPrimitive : public Primitive {
 public:
  // `ink`, when known, bounds the group's non-transparent pixels.
  GroupPrimitive(cairo_conversion::PatternPtr group, bool isLayer, std::optional<DeviceRect> ink)
      : group_(std::move(group)), isLayer_(isLayer), ink_(ink) {}
  void paint(cairo_t* cr, double alpha) const override;
  void paintSource(cairo_t* cr, double alpha) const override { paint(cr, alpha); }
  void paintCoverage(cairo_t* cr) const override;
  bool paintIsBounded(cairo_operator_t op) const override;
  std::optional<DeviceRect> deviceExtents(cairo_t* cr) const override;
  bool isLayer() const override { return isLayer_; }

 private:
  cairo_conversion::PatternPtr group_;
  bool isLayer_;
  std::optional<DeviceRect> ink_;
};

// A blurred, shifted shadow mask in device pixels.
struct ShadowMask {
  cairo_conversion::SurfacePtr surface;  // A8
  double deviceX = 0, deviceY = 0;       // where its top left pixel goes
};

// A colour through a shadow mask. It is bounded by the mask, or unbounded
// within the clip when it is the shadow of a layer composite.
class MaskPrimitive : public Primitive {
 public:
  MaskPrimitive(const ShadowMask& mask, const Color& color, bool unbounded)
      : mask_(mask), color_(color), unbounded_(unbounded) {}
  void paint(cairo_t* cr, double alpha) const override;
  void paintSource(cairo_t* cr, double alpha) const override;
  void paintCoverage(cairo_t* cr) const override;
  std::optional<DeviceRect> deviceExtents(cairo_t* cr) const override;
  bool isLayer() const override { return unbounded_; }

 private:
  const ShadowMask& mask_;
  Color color_;
  bool unbounded_;
};

// Composites a primitive onto cr's target with an operation and global alpha
// the way the platform does: bounded by the primitive's shape (a layer: by the
// clip), whatever cairo's own rule for the operator is. PlusDarker, which
// cairo lacks, is computed pixel by pixel.
void CompositePrimitive(cairo_t* cr, const Primitive& primitive, CompositingOperation operation,
                        double alpha);

// The primitive's coverage × source alpha in device pixels, blurred with a
// Gaussian of `sigma` and shifted by `offset` (device pixels, y up), covering
// what the clip can show. None when nothing of it can be seen.
std::optional<ShadowMask> RenderShadowMask(cairo_t* cr, const Primitive& primitive, double sigma,
                                           Size offset);

}  // namespace paintdoc::drawing
