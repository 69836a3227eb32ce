// Small helpers of the drawing tests: draw into a bitmap through a context
// locked on it, test a pixel against a rectangle, compare tables of drawings
// with the images they must give.
#pragma once

#include <functional>
#include <memory>

#include "platform/graphics/graphics_context.h"
#include "support/golden_image.h"

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

// A drawing on a transparent width × height bitmap and the image it must give
// (pixel (x, y) from the lower left), within `tolerance` a channel.
struct DrawingCase {
  const char* name;
  int width, height, tolerance;
  std::function<void(GraphicsContext&)> draw;
  std::function<Rgba8(int x, int y)> expected;
};

inline void ExpectDrawings(std::initializer_list<DrawingCase> cases) {
  for (const DrawingCase& c : cases) {
    auto bitmap = Draw(c.width, c.height, c.draw);
    EXPECT_TRUE(ImagesMatch(*bitmap, *MakeImage(c.width, c.height, c.expected), c.tolerance, c.name));
  }
}

}  // namespace paintdoc::test
