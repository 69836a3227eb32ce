#include "preview/preview_request.h"

#include <cmath>

#include "platform/values/bitmap.h"

namespace paintdoc {

std::shared_ptr<Bitmap> BitmapPreviewRequest::createContext(Size size, bool /*isBitmap*/) {
  requestedSizes_.push_back(size);
  if (!(size.width >= 0) || !(size.height >= 0) || size.width > Bitmap::kMaxDimension ||
      size.height > Bitmap::kMaxDimension) {
    return nullptr;
  }
  // Sides round to the nearest whole pixel: an image at about 72 dpi (2835
  // pixels a metre is 72.009 dpi, 16 pixels 15.998 points) then gets exactly
  // its pixel count and is drawn pixel for pixel. Rounding up would add a
  // pixel for the image just under 72 dpi; truncating loses one for the
  // image just over it. Other resolutions still fill the context at their
  // point size, since the context's point size stays the one asked for.
  auto context = Bitmap::create(static_cast<int>(std::lround(size.width)),
                                static_cast<int>(std::lround(size.height)));
  if (context && size.width > 0 && size.height > 0) context->setSize(size);
  return context;
}

void BitmapPreviewRequest::flushContext(const std::shared_ptr<Bitmap>& context) {
  flushed_ = context;
  ++flushCount_;
}

}  // namespace paintdoc
