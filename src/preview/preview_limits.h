// Bounds that the preview path keeps to on untrusted files. Each can be
// changed by the caller; a file beyond one is refused with a clear reason.
#pragma once

#include <cstdint>

#include "archive/archive_limits.h"
#include "platform/codecs/image_codecs.h"

namespace paintdoc {

struct PreviewLimits {
  // Files larger than this are not read at all.
  uint64_t maxFileBytes = uint64_t{512} << 20;
  // The content (canvas or image) drawn, in points: each side, and the area.
  double maxCanvasSide = 32767;
  double maxCanvasPixels = double(uint64_t{1} << 28);  // 256 megapixels
  // Property-list objects in an archive and nesting of containers and
  // archived objects. Fewer objects than the archive's own default: every
  // object may become a layer of about a kilobyte, so a million objects
  // bound the layers' memory near 1.3 GB (a document of 10,000 layers holds
  // some 75,000 objects).
  ArchiveLimits archive{.maxObjects = 1'000'000, .maxDepth = 256};
  // Pixels of a decoded image (plain image files and bitmaps in documents:
  // it replaces archive.maxImagePixels). The pixels of all the bitmaps of a
  // document together keep to archive.maxTotalImagePixels.
  uint64_t maxImagePixels = kDefaultMaxImagePixels;
};

}  // namespace paintdoc
