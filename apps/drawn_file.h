// One file drawn as a preview or a thumbnail, or the one line that says why
// it could not be: what `render`, `thumbnail` and the batch share.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/values/bitmap.h"
#include "platform/values/log.h"
#include "preview/bitmap_scaling.h"
#include "preview/preview_source.h"

namespace paintdoc::cli {

struct Drawn {
  std::shared_ptr<Bitmap> bitmap;
  // "FILE: reason" when nothing was drawn.
  std::string failure;
  // The content's pixel size at full size, whatever size it was drawn at.
  PixelSize fullSize;
};

// `fitInto` above 0 draws a thumbnail that fits a square of that many pixels.
// `log`, when given, holds what the library logged while drawing: a refusal
// then names the library's first warning in its line. The log captures every
// thread, so callers that draw on several threads at once pass none.
// `maxMemoryBytes` above 0 refuses, before drawing, a picture whose drawing
// would take more memory than that.
Drawn DrawFile(const std::string& path, PreviewKind kind, int fitInto, const LogCapture* log,
               uint64_t maxMemoryBytes = 0);

// "512M", "2G", "65536": bytes with an optional K, M or G (powers of 1024);
// nothing for text that is none of these or is zero.
std::optional<uint64_t> ParseByteCount(const std::string& text);

}  // namespace paintdoc::cli
