// One file drawn as a preview or a thumbnail, or the one line that says why
// it could not be: what `render`, `thumbnail` and the batch share.
#pragma once

#include <memory>
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
Drawn DrawFile(const std::string& path, PreviewKind kind, int fitInto, const LogCapture* log);

}  // namespace paintdoc::cli
