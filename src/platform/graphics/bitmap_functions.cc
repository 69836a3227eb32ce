#include "platform/graphics/bitmap_functions.h"

#include <cstring>

#include "platform/graphics/graphics_context.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

// A requested side as a pixel count. Sides beyond what a bitmap can hold
// saturate just above the limit so that Bitmap::create refuses (and logs) them
// instead of the conversion overflowing.
int PixelSide(double side) {
  constexpr double kBeyondLimit = Bitmap::kMaxDimension + 1.0;
  if (side >= kBeyondLimit) return Bitmap::kMaxDimension + 1;
  return static_cast<int>(side);
}

}  // namespace

std::shared_ptr<Bitmap> InitImageRep(double width, double height) {
  if (!(width >= 0) || !(height >= 0)) {
    Log("Error: InitImageRep needs a size of at least 0 by 0, not " +
        StringFromSize(MakeSize(width, height)));
    return nullptr;
  }
  // A new bitmap is already fully transparent: clearing it would change nothing.
  return Bitmap::create(PixelSide(width), PixelSide(height));
}

void WTLockFocus(const std::shared_ptr<Bitmap>& bitmap) { GraphicsContext::lockFocus(bitmap); }

void WTUnlockFocus(const std::shared_ptr<Bitmap>& /*bitmap*/) { GraphicsContext::unlockFocus(); }

void ClearImageInRect(const std::shared_ptr<Bitmap>& bitmap, const Rect& rect) {
  if (!bitmap) return;
  BitmapFocus focus(bitmap);
  GraphicsContext& context = focus.context();
  context.setFillColor(Color::clearColor());
  context.fillRect(rect, CompositingOperation::Copy);
}

void ClearImage(const std::shared_ptr<Bitmap>& bitmap) {
  if (!bitmap) return;
  ClearImageInRect(bitmap, MakeRect(0, 0, bitmap->pixelsWide(), bitmap->pixelsHigh()));
}

std::shared_ptr<Bitmap> CropImage(const std::shared_ptr<Bitmap>& bitmap, const Rect& rect) {
  if (!bitmap) return nullptr;
  if (!(rect.width() >= 1.0) || !(rect.height() >= 1.0)) return nullptr;
  std::shared_ptr<Bitmap> cropped = InitImageRep(rect.width(), rect.height());
  if (!cropped) return nullptr;
  BitmapFocus focus(cropped);
  // The source at its pixel size (whatever resolution it carries), moved so
  // that the rectangle's corner falls on the new bitmap's origin.
  const Rect placed =
      MakeRect(-rect.origin.x, -rect.origin.y, bitmap->pixelsWide(), bitmap->pixelsHigh());
  focus.context().drawBitmap(*bitmap, placed, ZeroRect(), CompositingOperation::Copy, 1.0);
  return cropped;
}

std::shared_ptr<Bitmap> ScissorImage(const std::shared_ptr<Bitmap>& bitmap, const BezierPath& path) {
  if (!bitmap || path.isEmpty()) return nullptr;
  const Rect area =
      RectIntersection(path.bounds(), MakeRect(0, 0, bitmap->pixelsWide(), bitmap->pixelsHigh()));
  if (!(area.width() >= 1.0) || !(area.height() >= 1.0)) return nullptr;
  std::shared_ptr<Bitmap> cut = InitImageRep(bitmap->pixelsWide(), bitmap->pixelsHigh());
  if (!cut) return nullptr;
  {
    BitmapFocus focus(cut);
    GraphicsContext& context = focus.context();
    context.setShouldAntialias(true);
    context.clip(path);
    context.drawBitmap(*bitmap, MakeRect(0, 0, bitmap->pixelsWide(), bitmap->pixelsHigh()), ZeroRect(),
                       CompositingOperation::SourceOver, 1.0);
  }
  return CropImage(cut, area);
}

std::shared_ptr<Bitmap> ImageFliped(const std::shared_ptr<Bitmap>& bitmap, bool horizontal) {
  if (!bitmap) return nullptr;
  std::shared_ptr<Bitmap> mirrored = bitmap->copy();
  if (!mirrored) return nullptr;
  const int width = bitmap->pixelsWide(), height = bitmap->pixelsHigh();
  for (int row = 0; row < height; ++row) {
    const uint8_t* from = bitmap->rowAt(horizontal ? row : height - 1 - row);
    uint8_t* to = mirrored->rowAt(row);
    if (!horizontal) {
      std::memcpy(to, from, bitmap->bytesPerRow());
      continue;
    }
    for (int x = 0; x < width; ++x) {
      std::memcpy(to + static_cast<size_t>(x) * Bitmap::kBytesPerPixel,
                  from + static_cast<size_t>(width - 1 - x) * Bitmap::kBytesPerPixel, Bitmap::kBytesPerPixel);
    }
  }
  return mirrored;
}

Rect ImageRectByTrimEmpty(const std::shared_ptr<Bitmap>& bitmap) {
  if (!bitmap || bitmap->isEmpty()) return ZeroRect();
  const int width = bitmap->pixelsWide();
  const int height = bitmap->pixelsHigh();
  // Rows are counted from the top row of storage; the answer is turned into
  // lower-left coordinates at the end.
  int minX = width - 1, maxX = 0, minY = height - 1, maxY = 0;
  for (int row = 0; row < height; ++row) {
    const uint8_t* pixel = bitmap->rowAt(row);
    bool rowHasVisiblePixel = false;
    for (int column = 0; column < width; ++column, pixel += Bitmap::kBytesPerPixel) {
      if (pixel[Bitmap::kAlpha] == 0) continue;
      rowHasVisiblePixel = true;
      if (column < minX) minX = column;
      if (column > maxX) maxX = column;
    }
    if (!rowHasVisiblePixel) continue;
    if (row < minY) minY = row;
    if (row > maxY) maxY = row;
  }
  if (maxX < minX || maxY < minY) return ZeroRect();
  return MakeRect(minX, height - 1 - maxY, maxX - minX + 1, maxY - minY + 1);
}

}  // namespace paintdoc
