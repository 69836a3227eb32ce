// Bounds that reading untrusted archives keeps to.
#pragma once

#include <cstddef>
#include <cstdint>

namespace paintdoc {

struct ArchiveLimits {
  // Property-list objects in one file (each costs a table entry when read).
  size_t maxObjects = 4'000'000;
  // Nesting of containers in the property list, and of archived objects
  // within each other while decoding.
  size_t maxDepth = 512;
  // Pixels of one image decoded from the archive's image data (a bitmap
  // representation's TIFF, PNG or JPEG bytes): 256 megapixels, a 16384 ×
  // 16384 image. An image claiming more refuses the whole archive before its
  // pixels are allocated.
  uint64_t maxImagePixels = uint64_t{1} << 28;
  // Pixels of all the images decoded from one archive together (a bitmap
  // referenced many times counts once): a gigapixel, 4 GiB of bitmaps. The
  // image that would pass it refuses the archive before it is decoded.
  uint64_t maxTotalImagePixels = uint64_t{1} << 30;
};

}  // namespace paintdoc
