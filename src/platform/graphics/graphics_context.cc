#include "platform/graphics/graphics_context.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>

#include "platform/graphics/cairo_conversion.h"
#include "platform/graphics/device_edges.h"
#include "platform/graphics/drawing_budget.h"
#include "platform/graphics/drawing_primitives.h"
#include "platform/values/log.h"

namespace paintdoc {

using namespace cairo_conversion;
using namespace drawing;

// --- the thread's stack of current contexts

namespace {

thread_local std::vector<std::unique_ptr<GraphicsContext>> t_focusStack;

// Values from documents are not to be trusted: a NaN or infinity reaching
// cairo would put the context into an error state that ends all drawing.
bool IsFinite(const Rect& r) {
  return std::isfinite(r.origin.x) && std::isfinite(r.origin.y) &&
         std::isfinite(r.size.width) && std::isfinite(r.size.height);
}

// Beyond this the blur is a uniform wash anyway, and its masks would grow huge.
constexpr double kMaxShadowSigma = 256;

}  // namespace

GraphicsContext* GraphicsContext::current() {
  return t_focusStack.empty() ? nullptr : t_focusStack.back().get();
}

GraphicsContext& GraphicsContext::lockFocus(std::shared_ptr<Bitmap> bitmap) {
  if (!bitmap) Log("Error: lockFocus on a missing bitmap; drawing goes nowhere");
  t_focusStack.push_back(std::make_unique<GraphicsContext>(std::move(bitmap)));
  return *t_focusStack.back();
}

void GraphicsContext::unlockFocus() {
  if (t_focusStack.empty()) {
    Log("Error: unlockFocus without a matching lockFocus");
    return;
  }
  t_focusStack.back()->flush();
  t_focusStack.pop_back();
}

// --- life cycle

GraphicsContext::GraphicsContext(std::shared_ptr<Bitmap> bitmap) : bitmap_(std::move(bitmap)) {
  if (bitmap_ && !bitmap_->isEmpty()) {
    surface_ = cairo_image_surface_create_for_data(bitmap_->data(), CAIRO_FORMAT_ARGB32,
                                                   bitmap_->pixelsWide(), bitmap_->pixelsHigh(),
                                                   static_cast<int>(bitmap_->bytesPerRow()));
  } else {
    surface_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 0, 0);
  }
  cr_ = cairo_create(surface_);
  // User space: origin at the lower left, y up, one unit a point.
  cairo_matrix_init_identity(&base_);
  if (bitmap_ && !bitmap_->isEmpty()) {
    double pixelsPerPointX = bitmap_->pixelsWide() / bitmap_->size().width;
    double pixelsPerPointY = bitmap_->pixelsHigh() / bitmap_->size().height;
    cairo_matrix_init(&base_, pixelsPerPointX, 0, 0, -pixelsPerPointY, 0, bitmap_->pixelsHigh());
  }
  cairo_set_matrix(cr_, &base_);
  cairo_set_tolerance(cr_, 0.1);
  states_.emplace_back();
}

GraphicsContext::~GraphicsContext() {
  size_t openLayers = std::count_if(states_.begin(), states_.end(),
                                    [](const State& s) { return s.beginsLayer; });
  if (openLayers > 0) {
    Log("Error: a graphics context ended with " + std::to_string(openLayers) +
        " transparency layer(s) still open; their drawing is lost");
  }
  cairo_destroy(cr_);
  cairo_surface_flush(surface_);
  cairo_surface_destroy(surface_);
}

void GraphicsContext::flush() { cairo_surface_flush(surface_); }

// --- refusal

void GraphicsContext::recordFailure(std::string reason) {
  if (failed()) return;
  failure_ = reason.empty() ? "drawing refused" : std::move(reason);
}

bool GraphicsContext::refuse(const std::optional<std::string>& refusal) {
  if (refusal) recordFailure(*refusal);
  return refusal.has_value();
}

DeviceFrame GraphicsContext::deviceFrame() const {
  cairo_matrix_t userToDevice;
  cairo_get_matrix(cr_, &userToDevice);
  double x1, y1, x2, y2;
  cairo_save(cr_);
  cairo_identity_matrix(cr_);
  cairo_clip_extents(cr_, &x1, &y1, &x2, &y2);
  cairo_restore(cr_);
  int passes = state().shadow ? 2 : 1;
  return {FromCairoMatrix(userToDevice), MakeRect(x1, y1, x2 - x1, y2 - y1),
          cairo_get_tolerance(cr_), passes};
}

const std::vector<DeviceEdge>& GraphicsContext::clipEdges() const {
  static const std::vector<DeviceEdge> kNone;
  return state().clipEdges ? *state().clipEdges : kNone;
}

// --- graphics state

void GraphicsContext::saveGraphicsState() {
  states_.push_back(state());
  states_.back().beginsLayer = false;
  states_.back().layerInk = ZeroRect();
  cairo_save(cr_);
}

void GraphicsContext::restoreGraphicsState() {
  if (states_.size() <= 1) {
    Log("Error: restoreGraphicsState without a matching saveGraphicsState");
    return;
  }
  if (state().beginsLayer) {
    Log("Error: restoreGraphicsState would end a transparency layer; use endTransparencyLayer");
    return;
  }
  states_.pop_back();
  cairo_restore(cr_);
}

void GraphicsContext::concat(const AffineTransform& transform) {
  cairo_matrix_t matrix = ToCairoMatrix(transform);
  // cairo refuses singular matrices (and would stop drawing for good); a
  // transform that collapses space draws nothing anyway.
  cairo_matrix_t inverse = matrix;
  if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS) {
    Log("Error: concat with a singular transform ignored");
    return;
  }
  cairo_transform(cr_, &matrix);
}

void GraphicsContext::translate(double dx, double dy) { cairo_translate(cr_, dx, dy); }

AffineTransform GraphicsContext::currentTransform() const {
  cairo_matrix_t userToDevice, deviceToBase = base_;
  cairo_get_matrix(cr_, &userToDevice);
  cairo_matrix_invert(&deviceToBase);
  cairo_matrix_t userToBase;
  cairo_matrix_multiply(&userToBase, &userToDevice, &deviceToBase);  // first, then second
  return FromCairoMatrix(userToBase);
}

void GraphicsContext::clip(const BezierPath& path) { clip(path, path.windingRule()); }

namespace {

// cairo turns a clip whose edges all run along the pixel axes into boxes,
// which cost nothing to draw through; any other clip is swept with each path.
bool IsRectilinear(const std::vector<DeviceEdge>& edges) {
  return std::all_of(edges.begin(), edges.end(),
                     [](const DeviceEdge& e) { return e.x0 == e.x1 || e.y0 == e.y1; });
}

}  // namespace

void GraphicsContext::clip(const BezierPath& path, WindingRule rule) {
  if (failed()) return;
  // Clipping costs what filling costs: cairo rasterises the clip into a mask
  // when it cannot sweep it with what is drawn.
  DeviceFrame frame = deviceFrame();
  frame.passes = 1;  // a clip casts no shadow
  if (refuse(FillRefusal(path, frame, {}))) return;
  std::vector<DeviceEdge> edges =
      FlattenedEdges(path, frame.userToDevice, frame.tolerance, /*closeSubpaths=*/true);
  if (!IsRectilinear(edges)) {
    edges.insert(edges.end(), clipEdges().begin(), clipEdges().end());
    state().clipEdges = std::make_shared<const std::vector<DeviceEdge>>(std::move(edges));
  }
  AppendPath(cr_, path);
  cairo_set_fill_rule(cr_, ToCairoFillRule(rule));
  cairo_set_antialias(cr_, state().antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
  cairo_clip(cr_);
}

void GraphicsContext::clipToRect(const Rect& rect) { clip(BezierPath::withRect(rect)); }

Rect GraphicsContext::clipBoundingBox() const {
  double x1, y1, x2, y2;
  cairo_clip_extents(cr_, &x1, &y1, &x2, &y2);
  return MakeRect(x1, y1, x2 - x1, y2 - y1);
}

void GraphicsContext::setCompositingOperation(CompositingOperation operation) {
  state().operation = operation;
}

void GraphicsContext::setBlendMode(BlendMode mode) {
  state().operation = CompositingOperationForBlendMode(mode);
}

void GraphicsContext::setAlpha(double alpha) {
  state().alpha = std::isfinite(alpha) ? std::clamp(alpha, 0.0, 1.0) : 1.0;
}

void GraphicsContext::setShouldAntialias(bool antialias) { state().antialias = antialias; }

void GraphicsContext::setShadow(std::optional<Shadow> shadow) { state().shadow = std::move(shadow); }

void GraphicsContext::setImageInterpolation(ImageInterpolation interpolation) {
  state().interpolation = interpolation;
}

void GraphicsContext::setFillColor(const Color& color) { state().fillColor = color; }
void GraphicsContext::setStrokeColor(const Color& color) { state().strokeColor = color; }
void GraphicsContext::setColor(const Color& color) {
  state().fillColor = color;
  state().strokeColor = color;
}

// --- drawing operations

void GraphicsContext::fill(const BezierPath& path) {
  if (failed() || path.isEmpty()) return;
  if (refuse(FillRefusal(path, deviceFrame(), clipEdges()))) return;
  draw(FillPrimitive(path, ColorSource(state().fillColor)));
}

void GraphicsContext::stroke(const BezierPath& path) {
  if (failed() || path.isEmpty()) return;
  // Dashes shorter than a pixel would only cut the line into millions of
  // pieces that average out anyway: the line is drawn solid, as faint as the
  // share of it the dashes cover.
  std::optional<double> dashCoverage = SubpixelDashCoverage(path, deviceFrame().userToDevice);
  if (!dashCoverage) {
    strokeWithColor(path, state().strokeColor);
    return;
  }
  BezierPath solid = path;
  solid.setLineDash({}, 0);
  const Color& color = state().strokeColor;
  strokeWithColor(solid, color.withAlphaComponent(color.alphaComponent() * *dashCoverage));
}

void GraphicsContext::strokeWithColor(const BezierPath& path, const Color& color) {
  if (refuse(StrokeRefusal(path, deviceFrame(), clipEdges()))) return;
  draw(StrokePrimitive(path, ColorSource(color)));
}

void GraphicsContext::fillRect(const Rect& rect) {
  if (failed() || RectIsEmpty(rect) || !IsFinite(rect)) return;
  draw(FillPrimitive(BezierPath::withRect(rect), ColorSource(state().fillColor)));
}

void GraphicsContext::fillRect(const Rect& rect, CompositingOperation operation) {
  CompositingOperation previous = state().operation;
  state().operation = operation;
  fillRect(rect);
  state().operation = previous;
}

namespace {

// The gradient's ends for an angle across a rectangle: start and end colours
// fall exactly on opposite corners whatever the angle.
void LinearGradientEnds(const Rect& bounds, double angle, Point& start, Point& end) {
  double radians = angle * std::numbers::pi / 180.0;
  double dx = std::cos(radians), dy = std::sin(radians);
  double length = std::abs(bounds.width() * dx) + std::abs(bounds.height() * dy);
  Point center = bounds.center();
  start = {center.x - length / 2 * dx, center.y - length / 2 * dy};
  end = {center.x + length / 2 * dx, center.y + length / 2 * dy};
}

}  // namespace

void GraphicsContext::drawGradient(const Gradient& gradient, const BezierPath& path, double angle) {
  if (failed() || path.isEmpty() || gradient.numberOfColorStops() == 0) return;
  if (!IsFinite(path.bounds()) || !std::isfinite(angle)) return;
  if (refuse(FillRefusal(path, deviceFrame(), clipEdges()))) return;
  Point start, end;
  LinearGradientEnds(path.bounds(), angle, start, end);
  PatternPtr pattern(cairo_pattern_create_linear(start.x, start.y, end.x, end.y));
  cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
  draw(FillPrimitive(path, GradientSource(std::move(pattern), WithBoundedStops(gradient))));
}

void GraphicsContext::drawGradient(const Gradient& gradient, const Rect& rect, double angle) {
  drawGradient(gradient, BezierPath::withRect(rect), angle);
}

void GraphicsContext::drawGradient(const Gradient& gradient, const BezierPath& path,
                                   Point relativeCenter) {
  if (failed() || path.isEmpty() || gradient.numberOfColorStops() == 0) return;
  Rect bounds = path.bounds();
  if (!IsFinite(bounds) || !std::isfinite(relativeCenter.x) || !std::isfinite(relativeCenter.y)) {
    return;
  }
  if (refuse(FillRefusal(path, deviceFrame(), clipEdges()))) return;
  Point center = bounds.center();
  // The end circle is centred at the relative position (corners at ±1) and
  // just covers the rectangle: its radius reaches the farthest corner.
  Point endCenter = {center.x + relativeCenter.x * bounds.width() / 2,
                     center.y + relativeCenter.y * bounds.height() / 2};
  double radius = 0;
  for (Point corner : {Point{bounds.minX(), bounds.minY()}, Point{bounds.maxX(), bounds.minY()},
                       Point{bounds.minX(), bounds.maxY()}, Point{bounds.maxX(), bounds.maxY()}}) {
    radius = std::max(radius, std::hypot(corner.x - endCenter.x, corner.y - endCenter.y));
  }
  PatternPtr pattern(
      cairo_pattern_create_radial(center.x, center.y, 0, endCenter.x, endCenter.y, radius));
  cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
  draw(FillPrimitive(path, GradientSource(std::move(pattern), WithBoundedStops(gradient))));
}

void GraphicsContext::drawGradient(const Gradient& gradient, const Rect& rect,
                                   Point relativeCenter) {
  drawGradient(gradient, BezierPath::withRect(rect), relativeCenter);
}

void GraphicsContext::drawBitmap(const Bitmap& bitmap, const Rect& destination,
                                 const Rect& source, CompositingOperation operation,
                                 double fraction) {
  if (failed() || bitmap.isEmpty() || RectIsEmpty(destination) || !IsFinite(destination) ||
      !IsFinite(source)) {
    return;
  }
  Rect from = RectIsEmpty(source) ? MakeRect(0, 0, bitmap.size().width, bitmap.size().height)
                                  : source;
  // Drawing a bitmap into itself reads pixels as they are being replaced.
  std::shared_ptr<Bitmap> copy;
  const Bitmap* pixels = &bitmap;
  if (bitmap_ && bitmap.data() == bitmap_->data()) {
    flush();
    copy = bitmap.copy();
    if (!copy) return;
    pixels = copy.get();
  }
  CompositingOperation previous = state().operation;
  state().operation = operation;
  draw(ImagePrimitive(*pixels, destination, from, fraction, state().interpolation));
  state().operation = previous;
}

void GraphicsContext::drawBitmap(const Bitmap& bitmap, Point origin,
                                 CompositingOperation operation) {
  drawBitmap(bitmap, MakeRect(origin.x, origin.y, bitmap.size().width, bitmap.size().height),
             ZeroRect(), operation, 1.0);
}

void GraphicsContext::drawImage(const Bitmap& bitmap, const Rect& rect) {
  drawBitmap(bitmap, rect, ZeroRect(), state().operation, 1.0);
}

// --- transparency layers

void GraphicsContext::beginTransparencyLayer() {
  states_.push_back(state());
  State& inside = states_.back();
  inside.beginsLayer = true;
  inside.layerInk = ZeroRect();
  inside.alpha = 1;
  inside.shadow.reset();
  inside.operation = CompositingOperation::SourceOver;
  cairo_push_group(cr_);  // saves cairo's state too
}

void GraphicsContext::endTransparencyLayer() {
  auto layerStart = std::find_if(states_.rbegin(), states_.rend(),
                                 [](const State& s) { return s.beginsLayer; });
  if (layerStart == states_.rend()) {
    Log("Error: endTransparencyLayer without a matching beginTransparencyLayer");
    return;
  }
  // States saved inside the layer and not restored end with it.
  while (!states_.back().beginsLayer) {
    Log("Error: endTransparencyLayer with an unbalanced saveGraphicsState inside the layer");
    states_.pop_back();
    cairo_restore(cr_);
  }
  Rect ink = states_.back().layerInk;
  states_.pop_back();
  PatternPtr layer(cairo_pop_group(cr_));
  if (failed()) return;
  draw(GroupPrimitive(std::move(layer), /*isLayer=*/true,
                      DeviceRect{static_cast<int>(ink.minX()), static_cast<int>(ink.minY()),
                                 static_cast<int>(ink.width()), static_cast<int>(ink.height())}));
}

void GraphicsContext::drawWithCairo(const std::function<void(cairo_t*)>& paint) {
  if (failed()) return;
  cairo_push_group(cr_);
  cairo_save(cr_);
  cairo_set_operator(cr_, CAIRO_OPERATOR_OVER);
  cairo_set_antialias(cr_, state().antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
  paint(cr_);
  cairo_restore(cr_);
  PatternPtr drawn(cairo_pop_group(cr_));
  draw(GroupPrimitive(std::move(drawn), /*isLayer=*/false, std::nullopt));
}

// --- one primitive: its shadow, then itself

namespace {

Rect ToRect(const DeviceRect& r) { return MakeRect(r.x, r.y, r.width, r.height); }

// Stands for "anywhere" where a primitive has no bounds; layers clip it to
// their own surface.
constexpr Rect kEverywhere = MakeRect(-(1 << 28), -(1 << 28), 1 << 29, 1 << 29);

}  // namespace

void GraphicsContext::draw(const Primitive& primitive) {
  cairo_set_antialias(cr_, state().antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
  Rect shadowPixels = state().shadow ? drawShadow(primitive) : ZeroRect();
  CompositePrimitive(cr_, primitive, state().operation, state().alpha);
  // Inside a layer, remember where it has ink: its shadow and composite
  // later need only that part of the layer.
  bool insideLayer = std::any_of(states_.begin(), states_.end(),
                                 [](const State& s) { return s.beginsLayer; });
  if (insideLayer) {
    std::optional<DeviceRect> extents = primitive.deviceExtents(cr_);
    noteLayerInk(RectUnion(shadowPixels, extents ? ToRect(*extents) : kEverywhere));
  }
}

void GraphicsContext::noteLayerInk(const Rect& devicePixels) {
  auto layerStart = std::find_if(states_.rbegin(), states_.rend(),
                                 [](const State& s) { return s.beginsLayer; });
  if (layerStart != states_.rend()) {
    layerStart->layerInk = RectUnion(layerStart->layerInk, devicePixels);
  }
}

double GraphicsContext::deviceScale() const {
  // The base transform scales each axis by pixels over points; a fitted
  // bitmap can differ a little between the axes, so take their mean.
  return std::sqrt(std::abs(base_.xx * base_.yy - base_.xy * base_.yx));
}

Rect GraphicsContext::drawShadow(const Primitive& primitive) {
  const Shadow& shadow = *state().shadow;
  Color color = shadow.shadowColor();
  const double scale = deviceScale();
  Size offset = shadow.shadowOffset();
  offset.width *= scale;
  offset.height *= scale;
  double blur = shadow.shadowBlurRadius();
  if (!(color.alphaComponent() > 0) || state().alpha <= 0) return ZeroRect();
  if (!std::isfinite(offset.width) || !std::isfinite(offset.height) || !std::isfinite(blur)) {
    return ZeroRect();
  }
  if (offset.width == 0 && offset.height == 0 && blur <= 0) return ZeroRect();
  // The blur of the picture at full size, shrunk with it.
  double sigma = std::min(ShadowBlurSigma(blur) * scale, kMaxShadowSigma);
  std::optional<ShadowMask> mask = RenderShadowMask(cr_, primitive, sigma, offset);
  if (!mask) return ZeroRect();
  MaskPrimitive shadowPrimitive(*mask, color, primitive.isLayer());
  CompositePrimitive(cr_, shadowPrimitive, state().operation, state().alpha);
  return ToRect(*shadowPrimitive.deviceExtents(cr_));
}

double ShadowBlurSigma(double blurRadius) {
  if (!(blurRadius > 0)) return 0;
  double reach = blurRadius <= 8 ? blurRadius : 8 + 4 * std::sqrt((blurRadius - 8) / 2);
  return reach / 2;
}

}  // namespace paintdoc
