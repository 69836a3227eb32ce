// An image as archives hold it: a size in points and its bitmap
// representations (the first one is the one that is drawn).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "platform/values/color.h"
#include "platform/values/geometry.h"

namespace paintdoc {

class Bitmap;

struct ArchivedImage {
  // Flags the platform writes for an ordinary image.
  static constexpr int64_t kDefaultImageFlags = 0x20C00000;

  Size size;  // points
  std::vector<std::shared_ptr<Bitmap>> representations;
  int64_t imageFlags = kDefaultImageFlags;

  // The representation to draw, or null.
  std::shared_ptr<Bitmap> firstBitmap() const {
    return representations.empty() ? nullptr : representations.front();
  }
  // Representations compare by identity.
  friend bool operator==(const ArchivedImage&, const ArchivedImage&) = default;
};

}  // namespace paintdoc
