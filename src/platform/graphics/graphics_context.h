// The current-context drawing model of the original platform, on cairo.
//
// Each thread has a stack of current contexts. Locking focus on a bitmap
// pushes a context that draws into it; unlocking pops it. Drawing code asks
// for GraphicsContext::current() and draws through it, exactly as model code
// written for the platform does:
//
//   GraphicsContext::lockFocus(bitmap);
//   GraphicsContext& gc = *GraphicsContext::current();
//   gc.saveGraphicsState();
//   gc.setShadow(Shadow(Color::blackColor(), {3, -3}, 4));
//   gc.setFillColor(Color::redColor());
//   gc.fill(BezierPath::withOvalInRect(MakeRect(10, 10, 80, 60)));
//   gc.restoreGraphicsState();
//   GraphicsContext::unlockFocus();
//
// User space has its origin at the lower left of the bitmap, y up, one unit a
// point (a pixel unless the bitmap carries a resolution). Shadow offsets and
// blur are in default user-space units scaled by deviceScale(), y up, whatever
// the current transform.
//
// Where cairo's semantics differ from the platform's, the platform's win:
// - Porter-Duff operations act only where the drawn shape covers (the
//   destination rectangle for images); outside it the destination is kept.
//   Transparency-layer composites act on the whole clip.
// - A shadow is drawn under each primitive (fill, stroke, gradient, image,
//   layer composite) from that primitive's coverage × alpha, blurred with
//   σ = ShadowBlurSigma(blur radius) and shifted by the offset.
// - Transparency layers start with alpha 1, no shadow and SourceOver inside,
//   and composite as one object with the alpha, shadow, operation and clip in
//   force when they began.
// - Scaled images keep opaque edges.
//
// Paths from documents are not to be trusted, so every fill, stroke and clip
// is measured first (see drawing_budget.h). One that would cost cairo too
// much, or crash it, is refused: the context records why and draws nothing
// more, and the caller reports failure() instead of a partial picture.
#pragma once

#include <cairo.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/values/affine_transform.h"
#include "platform/values/bezier_path.h"
#include "platform/values/bitmap.h"
#include "platform/values/color.h"
#include "platform/values/compositing.h"
#include "platform/values/geometry.h"
#include "platform/values/gradient.h"
#include "platform/values/shadow.h"

namespace paintdoc {

namespace drawing {
class Primitive;
struct DeviceEdge;
struct DeviceFrame;
}

// The standard deviation of the Gaussian that a shadow blur radius stands for:
// σ = L(b)/2, with L(b) = b up to 8 pixels and 8 + 4·√((b − 8)/2) above.
double ShadowBlurSigma(double blurRadius);

class GraphicsContext {
 public:
  // --- the current context of this thread

  // The innermost context focus is locked on, or null.
  static GraphicsContext* current();
  // Pushes a new context drawing into `bitmap` and makes it current. A null
  // bitmap is logged and gets a context that draws nowhere, so that the
  // matching unlockFocus stays balanced.
  static GraphicsContext& lockFocus(std::shared_ptr<Bitmap> bitmap);
  // Flushes and pops the current context (logged when none is locked).
  static void unlockFocus();

  // A context drawing into `bitmap`, not made current.
  explicit GraphicsContext(std::shared_ptr<Bitmap> bitmap);
  ~GraphicsContext();
  GraphicsContext(const GraphicsContext&) = delete;
  GraphicsContext& operator=(const GraphicsContext&) = delete;

  const std::shared_ptr<Bitmap>& bitmap() const { return bitmap_; }
  // Makes every drawing so far visible in the bitmap's pixels.
  void flush();

  // --- refusal

  // Marks the context as failed with a one-line reason (the first reason is
  // kept). A failed context draws nothing more: its drawing calls return at
  // once, and the picture so far is not to be shown.
  void recordFailure(std::string reason);
  bool failed() const { return !failure_.empty(); }
  // Why the context failed; empty while it has not.
  const std::string& failure() const { return failure_; }

  // --- graphics state

  void saveGraphicsState();
  // Restores the state saved last; logged and ignored when nothing was saved
  // (or only a transparency layer's state remains: end the layer instead).
  void restoreGraphicsState();

  // Concatenates a transform: it applies to coordinates before the current one.
  void concat(const AffineTransform& transform);
  void translate(double dx, double dy);
  // The transform from user space to the context's default user space.
  AffineTransform currentTransform() const;
  // Device pixels per unit of the default user space: 1 for a bitmap whose
  // point size is its pixel size, the scale for a bitmap that shows a larger
  // area in fewer pixels (a thumbnail). Shadow offsets and blur radii are
  // multiplied by it, so that a picture drawn at any scale keeps its shadows
  // where they fall at full size; drawing code that works in device pixels
  // asks for it rather than for the bitmap.
  double deviceScale() const;

  // Intersects the clip with the path's interior by its own winding rule (or
  // the given one), antialiased when antialiasing is on.
  void clip(const BezierPath& path);
  void clip(const BezierPath& path, WindingRule rule);
  void clipToRect(const Rect& rect);
  // Bounds of the clip in user space.
  Rect clipBoundingBox() const;

  void setCompositingOperation(CompositingOperation operation);
  CompositingOperation compositingOperation() const { return state().operation; }
  void setBlendMode(BlendMode mode);
  BlendMode blendMode() const { return BlendModeForCompositingOperation(state().operation); }

  // Global alpha, clamped to [0, 1]: multiplies everything drawn.
  void setAlpha(double alpha);
  double alpha() const { return state().alpha; }

  void setShouldAntialias(bool antialias);
  bool shouldAntialias() const { return state().antialias; }

  // The shadow under every following primitive; none turns shadows off.
  void setShadow(std::optional<Shadow> shadow);
  const std::optional<Shadow>& shadow() const { return state().shadow; }

  void setImageInterpolation(ImageInterpolation interpolation);
  ImageInterpolation imageInterpolation() const { return state().interpolation; }

  void setFillColor(const Color& color);
  void setStrokeColor(const Color& color);
  // Sets both, as setting a colour does on the platform.
  void setColor(const Color& color);
  const Color& fillColor() const { return state().fillColor; }
  const Color& strokeColor() const { return state().strokeColor; }

  // --- drawing

  // Fills with the fill colour by the path's winding rule.
  void fill(const BezierPath& path);
  // Strokes with the stroke colour and the path's line attributes.
  void stroke(const BezierPath& path);
  // Fills a rectangle with the fill colour and the current operation.
  void fillRect(const Rect& rect);
  // Fills a rectangle with the fill colour and the given operation (for the
  // duration of this call only).
  void fillRect(const Rect& rect, CompositingOperation operation);

  // A linear gradient along `angle` degrees across the path's bounds (its
  // ends on opposite corners), clipped to the path.
  void drawGradient(const Gradient& gradient, const BezierPath& path, double angle);
  void drawGradient(const Gradient& gradient, const Rect& rect, double angle);
  // A radial gradient from the bounds' centre to a circle about the point
  // at `relativeCenter` (−1…1 on each axis, (1, 1) the upper right corner)
  // that just covers the bounds, clipped to the path.
  void drawGradient(const Gradient& gradient, const BezierPath& path, Point relativeCenter);
  void drawGradient(const Gradient& gradient, const Rect& rect, Point relativeCenter);

  // Draws the `source` rectangle of the bitmap (in its points, lower-left
  // origin; the zero rectangle for all of it) stretched into `destination`,
  // with an operation and a fraction that multiplies its alpha.
  void drawBitmap(const Bitmap& bitmap, const Rect& destination, const Rect& source,
                  CompositingOperation operation, double fraction);
  // The whole bitmap at its point size with its lower left corner at
  // `origin`: the plain draw used to copy one bitmap into another.
  void drawBitmap(const Bitmap& bitmap, Point origin,
                  CompositingOperation operation = CompositingOperation::Copy);
  // The whole bitmap stretched into a rectangle with the current operation
  // and alpha (the image draw of the 2-D port).
  void drawImage(const Bitmap& bitmap, const Rect& rect);

  // Starts drawing into a new transparent layer covering the clip.
  void beginTransparencyLayer();
  // Composites the layer begun last onto what lies below, as one object.
  void endTransparencyLayer();

  // Draws whatever `paint` draws on the cairo context it is given (in user
  // space, with its own sources, e.g. a text layout) as one primitive: with
  // the current operation, alpha, shadow and clip. cairo state that `paint`
  // changes does not outlive the call.
  void drawWithCairo(const std::function<void(cairo_t*)>& paint);

 private:
  struct State {
    CompositingOperation operation = CompositingOperation::SourceOver;
    double alpha = 1;
    bool antialias = true;
    std::optional<Shadow> shadow;
    ImageInterpolation interpolation = ImageInterpolation::Default;
    Color fillColor = Color::blackColor();
    Color strokeColor = Color::blackColor();
    bool beginsLayer = false;  // saved by beginTransparencyLayer
    // For a state that begins a layer: the device pixels drawn into the
    // layer so far (the zero rectangle when nothing was drawn).
    Rect layerInk;
    // Device edges of the clipping paths in force that are not rectangles:
    // cairo sweeps them together with every path drawn under them.
    std::shared_ptr<const std::vector<drawing::DeviceEdge>> clipEdges;
  };
  const State& state() const { return states_.back(); }
  State& state() { return states_.back(); }
  // Draws one primitive: its shadow (when one is set), then itself.
  void draw(const drawing::Primitive& primitive);
  // Draws the shadow; answers the device pixels it covers (zero when none).
  Rect drawShadow(const drawing::Primitive& primitive);
  // Adds device pixels to the ink of the innermost open layer.
  void noteLayerInk(const Rect& devicePixels);
  // The transform to device pixels, the visible device pixels and tolerance
  // that the drawing budget measures paths in.
  drawing::DeviceFrame deviceFrame() const;
  const std::vector<drawing::DeviceEdge>& clipEdges() const;
  // Records `refusal` as the failure when there is one; true if so.
  bool refuse(const std::optional<std::string>& refusal);
  // Strokes with the given colour once the dash has been settled.
  void strokeWithColor(const BezierPath& path, const Color& color);

  std::shared_ptr<Bitmap> bitmap_;
  cairo_surface_t* surface_ = nullptr;
  cairo_t* cr_ = nullptr;
  cairo_matrix_t base_;        // default user space → device pixels
  std::vector<State> states_;  // back() is the current state
  std::string failure_;        // empty until a primitive is refused
};

// Locks focus on a bitmap for the lifetime of the object.
class BitmapFocus {
 public:
  explicit BitmapFocus(std::shared_ptr<Bitmap> bitmap)
      : context_(GraphicsContext::lockFocus(std::move(bitmap))) {}
  ~BitmapFocus() { GraphicsContext::unlockFocus(); }
  BitmapFocus(const BitmapFocus&) = delete;
  BitmapFocus& operator=(const BitmapFocus&) = delete;

  GraphicsContext& context() { return context_; }

 private:
  GraphicsContext& context_;
};

}  // namespace paintdoc
