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
  auto context = Bitmap::create(static_cast<int>(size.width), static_cast<int>(size.height));
  if (context && size.width > 0 && size.height > 0) context->setSize(size);
  return context;
}

void BitmapPreviewRequest::flushContext(const std::shared_ptr<Bitmap>& context) {
  flushed_ = context;
  ++flushCount_;
}

}  // namespace paintdoc
