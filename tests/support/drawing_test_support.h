// Small helpers of the drawing tests: draw into a bitmap through a context
// locked on it, and test a pixel against a rectangle.
#pragma once

#include <functional>
#include <memory>

#include "platform/graphics/graphics_context.h"

namespace paintdoc::test {

// Runs `draw` with a context locked on `bitmap` and answers the bitmap.
inline std::shared_ptr<Bitmap> DrawInto(std::shared_ptr<Bitmap> bitmap,
                                        const std::function<void(GraphicsContext&)>& draw) {
  BitmapFocus focus(bitmap);
  draw(focus.context());
  return bitmap;
}

// A new transparent width × height bitmap with `draw` done on it.
inline std::shared_ptr<Bitmap> Draw(int width, int height,
                                    const std::function<void(GraphicsContext&)>& draw) {
  return DrawInto(Bitmap::create(width, height), draw);
}

// Whether pixel (x, y) lies in [x0, x1) × [y0, y1).
inline bool Inside(int x, int y, int x0, int y0, int x1, int y1) {
  return x >= x0 && x < x1 && y >= y0 && y < y1;
}

}  // namespace paintdoc::test
