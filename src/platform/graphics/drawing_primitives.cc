#include "platform/graphics/drawing_primitives.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "platform/graphics/gaussian_blur.h"

namespace paintdoc::drawing {

using namespace cairo_conversion;

namespace {

// The device pixels covering a user-space box (all four corners transformed).
DeviceRect UserBoxToDevice(cairo_t* cr, double x1, double y1, double x2, double y2) {
  double minX = INFINITY, minY = INFINITY, maxX = -INFINITY, maxY = -INFINITY;
  for (auto [x, y] : {std::pair{x1, y1}, std::pair{x2, y1}, std::pair{x1, y2}, std::pair{x2, y2}}) {
    cairo_user_to_device(cr, &x, &y);
    minX = std::min(minX, x);
    minY = std::min(minY, y);
    maxX = std::max(maxX, x);
    maxY = std::max(maxY, y);
  }
  // Clamp before converting: a far-away shape must not overflow an int.
  constexpr double kLimit = 1 << 28;
  auto whole = [&](double v) { return static_cast<int>(std::clamp(v, -kLimit, kLimit)); };
  int left = whole(std::floor(minX)), top = whole(std::floor(minY));
  return {left, top, whole(std::ceil(maxX)) - left, whole(std::ceil(maxY)) - top};
}

DeviceRect Intersect(const DeviceRect& a, const DeviceRect& b) {
  int left = std::max(a.x, b.x), top = std::max(a.y, b.y);
  int right = std::min(a.x + a.width, b.x + b.width);
  int bottom = std::min(a.y + a.height, b.y + b.height);
  return {left, top, std::max(0, right - left), std::max(0, bottom - top)};
}

// The smallest rectangle holding both (an empty one is ignored).
DeviceRect Union(const DeviceRect& a, const DeviceRect& b) {
  if (a.isEmpty()) return b;
  if (b.isEmpty()) return a;
  int left = std::min(a.x, b.x), top = std::min(a.y, b.y);
  int right = std::max(a.x + a.width, b.x + b.width);
  int bottom = std::max(a.y + a.height, b.y + b.height);
  return {left, top, right - left, bottom - top};
}

DeviceRect Expand(const DeviceRect& r, int by) {
  return {r.x - by, r.y - by, r.width + 2 * by, r.height + 2 * by};
}

// cairo_paint_with_alpha, except that Copy replaces the destination with the
// source *times* alpha (cairo would mix source and destination by alpha).
void PaintWithAlpha(cairo_t* cr, double alpha) {
  if (alpha >= 1) {
    cairo_paint(cr);
    return;
  }
  if (cairo_get_operator(cr) != CAIRO_OPERATOR_SOURCE) {
    cairo_paint_with_alpha(cr, alpha);
    return;
  }
  PatternPtr source(cairo_pattern_reference(cairo_get_source(cr)));
  cairo_push_group(cr);
  cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
  cairo_set_source(cr, source.get());
  cairo_paint_with_alpha(cr, alpha);
  cairo_pop_group_to_source(cr);
  cairo_paint(cr);
}

void SetAntialiasFrom(cairo_t* target, cairo_t* model) {
  cairo_set_antialias(target, cairo_get_antialias(model));
}

// The device pixels the clip shows (within the target surface).
DeviceRect VisibleDeviceRect(cairo_t* cr) {
  double x1, y1, x2, y2;
  cairo_save(cr);
  cairo_identity_matrix(cr);
  cairo_clip_extents(cr, &x1, &y1, &x2, &y2);
  cairo_restore(cr);
  return {static_cast<int>(std::floor(x1)), static_cast<int>(std::floor(y1)),
          static_cast<int>(std::ceil(x2) - std::floor(x1)),
          static_cast<int>(std::ceil(y2) - std::floor(y1))};
}

}  // namespace

bool Primitive::paintIsBounded(cairo_operator_t op) const { return !IsUnboundedInCairo(op); }

// --- sources

Source::Source(PatternPtr geometry, const Gradient& gradient)
    : geometry_(std::move(geometry)), gradient_(gradient) {}

void Source::set(cairo_t* cr, double alpha) const {
  if (!geometry_) {
    SetSourceColor(cr, color_, alpha);
    return;
  }
  // Global alpha goes into the stops, so a gradient is a single source like a colour.
  PatternPtr pattern;
  if (cairo_pattern_get_type(geometry_.get()) == CAIRO_PATTERN_TYPE_LINEAR) {
    double x0, y0, x1, y1;
    cairo_pattern_get_linear_points(geometry_.get(), &x0, &y0, &x1, &y1);
    pattern.reset(cairo_pattern_create_linear(x0, y0, x1, y1));
  } else {
    double x0, y0, r0, x1, y1, r1;
    cairo_pattern_get_radial_circles(geometry_.get(), &x0, &y0, &r0, &x1, &y1, &r1);
    pattern.reset(cairo_pattern_create_radial(x0, y0, r0, x1, y1, r1));
  }
  cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
  AddColorStops(pattern.get(), gradient_, alpha);
  cairo_set_source(cr, pattern.get());
}

// --- fills and strokes

void PathPrimitive::paint(cairo_t* cr, double alpha) const {
  appendShape(cr);
  source_.set(cr, alpha);
  paintShape(cr);
}

void PathPrimitive::paintSource(cairo_t* cr, double alpha) const {
  source_.set(cr, alpha);
  cairo_paint(cr);
}

void PathPrimitive::paintCoverage(cairo_t* cr) const {
  appendShape(cr);
  cairo_set_source_rgba(cr, 0, 0, 0, 1);
  paintShape(cr);
}

void FillPrimitive::appendShape(cairo_t* cr) const {
  AppendPath(cr, path_);
  cairo_set_fill_rule(cr, ToCairoFillRule(path_.windingRule()));
}

void FillPrimitive::paintShape(cairo_t* cr) const { cairo_fill(cr); }

bool FillPrimitive::clipToShape(cairo_t* cr) const {
  appendShape(cr);
  cairo_clip(cr);
  return true;
}

std::optional<DeviceRect> FillPrimitive::deviceExtents(cairo_t* cr) const {
  AppendPath(cr, path_);
  double x1, y1, x2, y2;
  cairo_path_extents(cr, &x1, &y1, &x2, &y2);
  cairo_new_path(cr);
  return Expand(UserBoxToDevice(cr, x1, y1, x2, y2), 1);
}

void StrokePrimitive::appendShape(cairo_t* cr) const {
  AppendPath(cr, path_);
  ApplyStrokeStyle(cr, path_);
}

void StrokePrimitive::paintShape(cairo_t* cr) const { cairo_stroke(cr); }

std::optional<DeviceRect> StrokePrimitive::deviceExtents(cairo_t* cr) const {
  cairo_save(cr);
  appendShape(cr);
  double x1, y1, x2, y2;
  cairo_stroke_extents(cr, &x1, &y1, &x2, &y2);
  cairo_new_path(cr);
  cairo_restore(cr);
  return Expand(UserBoxToDevice(cr, x1, y1, x2, y2), 1);
}

// --- images

ImagePrimitive::ImagePrimitive(const Bitmap& bitmap, const Rect& destination, const Rect& source,
                               double fraction, ImageInterpolation interpolation)
    : surface_(SurfaceForBitmap(bitmap)),
      pattern_(cairo_pattern_create_for_surface(surface_.get())),
      destination_(destination),
      fraction_(std::isfinite(fraction) ? std::clamp(fraction, 0.0, 1.0) : 1.0) {
  // User space → image pixels (rows top first): the source rectangle, in the
  // bitmap's points with a lower-left origin, maps onto the destination.
  double pixelsPerPointX = bitmap.pixelsWide() / bitmap.size().width;
  double pixelsPerPointY = bitmap.pixelsHigh() / bitmap.size().height;
  double scaleX = source.width() / destination.width();
  double scaleY = source.height() / destination.height();
  cairo_matrix_t matrix;
  cairo_matrix_init(&matrix, scaleX * pixelsPerPointX, 0, 0, -scaleY * pixelsPerPointY,
                    (source.minX() - destination.minX() * scaleX) * pixelsPerPointX,
                    (bitmap.size().height - source.minY() + destination.minY() * scaleY) *
                        pixelsPerPointY);
  cairo_pattern_set_matrix(pattern_.get(), &matrix);
  // Padding repeats the edge pixels outward, so a scaled image keeps solid
  // edges up to the destination rectangle's clip.
  cairo_pattern_set_extend(pattern_.get(), CAIRO_EXTEND_PAD);
  cairo_pattern_set_filter(pattern_.get(), ToCairoFilter(interpolation));
}

void ImagePrimitive::paint(cairo_t* cr, double alpha) const {
  cairo_save(cr);
  clipToShape(cr);
  paintSource(cr, alpha);
  cairo_restore(cr);
}

void ImagePrimitive::paintSource(cairo_t* cr, double alpha) const {
  cairo_set_source(cr, pattern_.get());
  PaintWithAlpha(cr, alpha * fraction_);
}

void ImagePrimitive::paintCoverage(cairo_t* cr) const {
  cairo_rectangle(cr, destination_.minX(), destination_.minY(), destination_.width(),
                  destination_.height());
  cairo_set_source_rgba(cr, 0, 0, 0, 1);
  cairo_fill(cr);
}

bool ImagePrimitive::clipToShape(cairo_t* cr) const {
  cairo_new_path(cr);
  cairo_rectangle(cr, destination_.minX(), destination_.minY(), destination_.width(),
                  destination_.height());
  cairo_clip(cr);
  return true;
}

std::optional<DeviceRect> ImagePrimitive::deviceExtents(cairo_t* cr) const {
  return UserBoxToDevice(cr, destination_.minX(), destination_.minY(), destination_.maxX(),
                         destination_.maxY());
}

// --- groups (layers and cairo drawing)

void GroupPrimitive::paint(cairo_t* cr, double alpha) const {
  cairo_set_source(cr, group_.get());
  PaintWithAlpha(cr, alpha);
}

void GroupPrimitive::paintCoverage(cairo_t* cr) const {
  cairo_set_source_rgba(cr, 0, 0, 0, 1);
  cairo_mask(cr, group_.get());
}

bool GroupPrimitive::paintIsBounded(cairo_operator_t op) const {
  // Painting the group covers the whole clip; only operators that keep the
  // destination where the source is transparent stay within what was drawn.
  return Primitive::paintIsBounded(op) && op != CAIRO_OPERATOR_SOURCE &&
         op != CAIRO_OPERATOR_CLEAR;
}

std::optional<DeviceRect> GroupPrimitive::deviceExtents(cairo_t*) const {
  cairo_surface_t* surface = nullptr;
  if (cairo_pattern_get_surface(group_.get(), &surface) != CAIRO_STATUS_SUCCESS ||
      cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE) {
    return std::nullopt;
  }
  double offsetX = 0, offsetY = 0;
  cairo_surface_get_device_offset(surface, &offsetX, &offsetY);
  // Device coordinates plus the offset give the group's pixels.
  DeviceRect pixels{static_cast<int>(-offsetX), static_cast<int>(-offsetY),
                    cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface)};
  return ink_ ? Intersect(pixels, *ink_) : pixels;
}

// --- shadow masks

void MaskPrimitive::paint(cairo_t* cr, double alpha) const {
  cairo_save(cr);
  cairo_identity_matrix(cr);
  SetSourceColor(cr, color_, alpha);
  cairo_mask_surface(cr, mask_.surface.get(), mask_.deviceX, mask_.deviceY);
  cairo_restore(cr);
}

void MaskPrimitive::paintSource(cairo_t* cr, double alpha) const {
  SetSourceColor(cr, color_, alpha);
  cairo_paint(cr);
}

void MaskPrimitive::paintCoverage(cairo_t* cr) const {
  cairo_save(cr);
  cairo_identity_matrix(cr);
  cairo_set_source_rgba(cr, 0, 0, 0, 1);
  cairo_mask_surface(cr, mask_.surface.get(), mask_.deviceX, mask_.deviceY);
  cairo_restore(cr);
}

std::optional<DeviceRect> MaskPrimitive::deviceExtents(cairo_t*) const {
  return Expand(DeviceRect{static_cast<int>(std::floor(mask_.deviceX)),
                           static_cast<int>(std::floor(mask_.deviceY)),
                           cairo_image_surface_get_width(mask_.surface.get()),
                           cairo_image_surface_get_height(mask_.surface.get())},
                1);
}

// --- compositing

namespace {

// For operators cairo applies outside the shape, on shapes that cannot be a
// clip (strokes, masks): compute the operator's result over the whole clip
// in a group, then lay it onto the destination through the shape's coverage
// (Copy through a mask mixes by coverage), which leaves the rest untouched.
void CompositeThroughCoverage(cairo_t* cr, const Primitive& primitive, cairo_operator_t op,
                              double alpha) {
  cairo_surface_t* destination = cairo_get_group_target(cr);
  cairo_push_group(cr);
  cairo_save(cr);
  cairo_identity_matrix(cr);
  cairo_set_source_surface(cr, destination, 0, 0);
  cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
  cairo_paint(cr);
  cairo_restore(cr);
  cairo_set_operator(cr, op);
  primitive.paintSource(cr, alpha);
  PatternPtr result(cairo_pop_group(cr));

  cairo_push_group_with_content(cr, CAIRO_CONTENT_ALPHA);
  cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
  primitive.paintCoverage(cr);
  PatternPtr coverage(cairo_pop_group(cr));

  cairo_set_source(cr, result.get());
  cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
  cairo_mask(cr, coverage.get());
}

// A transparent image surface over the region. Its device offset puts its
// pixels where cr's device pixels are, so cr's transform draws into it as is.
SurfacePtr RegionSurface(cairo_format_t format, const DeviceRect& region) {
  SurfacePtr surface(cairo_image_surface_create(format, region.width, region.height));
  cairo_surface_set_device_offset(surface.get(), -region.x, -region.y);
  return surface;
}

// A context drawing into `surface` with cr's transform, antialiasing and tolerance.
CairoPtr ContextLike(cairo_surface_t* surface, cairo_t* cr) {
  CairoPtr context(cairo_create(surface));
  cairo_matrix_t userToDevice;
  cairo_get_matrix(cr, &userToDevice);
  cairo_set_matrix(context.get(), &userToDevice);
  SetAntialiasFrom(context.get(), cr);
  cairo_set_tolerance(context.get(), cairo_get_tolerance(cr));
  return context;
}

// PlusDarker on premultiplied ARGB32 pixels of the same size, into
// `destination`: R = max(0, 1 − ((1 − D) + (1 − S))) = max(0, S + D − 1) on
// every channel, alpha included.
void PlusDarkerPixels(cairo_surface_t* source, cairo_surface_t* destination) {
  cairo_surface_flush(source);
  cairo_surface_flush(destination);
  const uint8_t* sourceData = cairo_image_surface_get_data(source);
  uint8_t* destinationData = cairo_image_surface_get_data(destination);
  size_t sourceStride = static_cast<size_t>(cairo_image_surface_get_stride(source));
  size_t destinationStride = static_cast<size_t>(cairo_image_surface_get_stride(destination));
  size_t rowBytes = 4 * static_cast<size_t>(cairo_image_surface_get_width(destination));
  for (int row = 0; row < cairo_image_surface_get_height(destination); ++row) {
    const uint8_t* s = sourceData + sourceStride * static_cast<size_t>(row);
    uint8_t* d = destinationData + destinationStride * static_cast<size_t>(row);
    for (size_t i = 0; i < rowBytes; ++i) d[i] = static_cast<uint8_t>(std::max(0, s[i] + d[i] - 255));
  }
  cairo_surface_mark_dirty(destination);
}

// cairo has no PlusDarker: compute its result R from the source (with global
// alpha) and a copy of the destination over the pixels the primitive can
// touch, then lay R onto the destination with SOURCE through the shape's
// coverage (a layer: through the clip alone). SOURCE mixes by coverage and
// clip, which is the platform's bounded R' = cov·R + (1 − cov)·D.
void CompositePlusDarker(cairo_t* cr, const Primitive& primitive, double alpha) {
  DeviceRect region = VisibleDeviceRect(cr);
  std::optional<DeviceRect> extents =
      primitive.isLayer() ? std::nullopt : primitive.deviceExtents(cr);
  if (extents) region = Intersect(region, *extents);
  if (region.isEmpty()) return;
  SurfacePtr result = RegionSurface(CAIRO_FORMAT_ARGB32, region);
  SurfacePtr source = RegionSurface(CAIRO_FORMAT_ARGB32, region);
  SurfacePtr coverage = primitive.isLayer() ? nullptr : RegionSurface(CAIRO_FORMAT_A8, region);
  for (cairo_surface_t* surface : {result.get(), source.get(), coverage.get()}) {
    if (surface && cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) return;
  }
  {
    CairoPtr copy(cairo_create(result.get()));
    cairo_set_source_surface(copy.get(), cairo_get_group_target(cr), 0, 0);
    cairo_paint(copy.get());
  }
  primitive.paintSource(ContextLike(source.get(), cr).get(), alpha);
  if (coverage) primitive.paintCoverage(ContextLike(coverage.get(), cr).get());
  PlusDarkerPixels(source.get(), result.get());

  cairo_save(cr);
  cairo_identity_matrix(cr);
  cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
  cairo_set_source_surface(cr, result.get(), 0, 0);
  if (coverage) {
    cairo_mask_surface(cr, coverage.get(), 0, 0);
  } else {
    cairo_rectangle(cr, region.x, region.y, region.width, region.height);
    cairo_fill(cr);
  }
  cairo_restore(cr);
}

}  // namespace

void CompositePrimitive(cairo_t* cr, const Primitive& primitive, CompositingOperation operation,
                        double alpha) {
  std::optional<cairo_operator_t> cairoOperator = ToCairoOperator(operation);
  bool replaces = cairoOperator == CAIRO_OPERATOR_SOURCE || cairoOperator == CAIRO_OPERATOR_CLEAR;
  if (alpha <= 0 && !replaces) return;
  if (!cairoOperator) {  // PlusDarker
    CompositePlusDarker(cr, primitive, alpha);
    return;
  }
  cairo_operator_t op = *cairoOperator;
  cairo_save(cr);
  cairo_set_operator(cr, op);
  if (primitive.isLayer() || primitive.paintIsBounded(op)) {
    primitive.paint(cr, alpha);
  } else if (primitive.clipToShape(cr)) {
    // The clip's coverage mixes the result with the destination: bounded.
    primitive.paintSource(cr, alpha);
  } else {
    CompositeThroughCoverage(cr, primitive, op, alpha);
  }
  cairo_restore(cr);
}

std::optional<ShadowMask> RenderShadowMask(cairo_t* cr, const Primitive& primitive, double sigma,
                                           Size offset) {
  // The pixels the shadow may land on: what the clip shows.
  DeviceRect visible = VisibleDeviceRect(cr);
  if (visible.isEmpty()) return std::nullopt;

  // Device space runs y down; the offset runs y up.
  double shiftX = offset.width, shiftY = -offset.height;
  // cairo keeps coordinates within about ±2^23 device pixels, so a shadow moved
  // further than this can never land on the visible pixels (and such an offset,
  // which only a damaged file holds, would not fit the integer pixel grid).
  constexpr double kFarthestVisibleShift = 1 << 26;
  if (!(std::abs(shiftX) < kFarthestVisibleShift && std::abs(shiftY) < kFarthestVisibleShift)) {
    return std::nullopt;
  }
  int reach = GaussianBlurReach(sigma) + 1;
  // Mask pixels that show once shifted (a pixel more for a fractional shift)...
  DeviceRect shown{visible.x - static_cast<int>(std::ceil(shiftX)),
                   visible.y - static_cast<int>(std::ceil(shiftY)), visible.width + 2,
                   visible.height + 2};
  // ...and that the blurred primitive can reach at all.
  std::optional<DeviceRect> content = primitive.deviceExtents(cr);
  DeviceRect output = content ? Intersect(shown, Expand(*content, reach)) : shown;
  if (output.isEmpty()) return std::nullopt;
  // The mask holds those pixels and every covered pixel within reach of them.
  DeviceRect region = Expand(output, reach);
  if (content) region = Union(output, Intersect(region, *content));
  SurfacePtr mask(cairo_image_surface_create(CAIRO_FORMAT_A8, region.width, region.height));
  if (cairo_surface_status(mask.get()) != CAIRO_STATUS_SUCCESS) return std::nullopt;
  {
    CairoPtr maskContext(cairo_create(mask.get()));
    cairo_matrix_t userToDevice;
    cairo_get_matrix(cr, &userToDevice);
    cairo_translate(maskContext.get(), -region.x, -region.y);
    cairo_transform(maskContext.get(), &userToDevice);
    SetAntialiasFrom(maskContext.get(), cr);
    cairo_set_tolerance(maskContext.get(), cairo_get_tolerance(cr));
    primitive.paint(maskContext.get(), 1.0);
  }
  cairo_surface_flush(mask.get());
  if (sigma > 0) {
    GaussianBlurChannel(cairo_image_surface_get_data(mask.get()), region.width, region.height,
                        static_cast<size_t>(cairo_image_surface_get_stride(mask.get())), sigma,
                        BlurEdges::Transparent);
    cairo_surface_mark_dirty(mask.get());
  }
  return ShadowMask{std::move(mask), region.x + shiftX, region.y + shiftY};
}

}  // namespace paintdoc::drawing
