#include "preview/preview_generator.h"

#include <algorithm>

#include "document/paint_manager.h"
#include "platform/bitmap.h"
#include "preview/bitmap_scaling.h"
#include "preview/preview_request.h"

namespace paintdoc {

namespace {

// Draws `source` with source-over into `context`, unscaled, with its lower
// left corner at the context's lower left corner (rows are stored top first,
// so the bottom rows line up).
void DrawBitmapAtOrigin(Bitmap& context, const Bitmap& source) {
  const int width = std::min(context.pixelsWide(), source.pixelsWide());
  const int height = std::min(context.pixelsHigh(), source.pixelsHigh());
  for (int fromBottom = 0; fromBottom < height; ++fromBottom) {
    const uint8_t* in = source.rowAt(source.pixelsHigh() - 1 - fromBottom);
    uint8_t* out = context.rowAt(context.pixelsHigh() - 1 - fromBottom);
    for (int x = 0; x < width; ++x, in += Bitmap::kBytesPerPixel, out += Bitmap::kBytesPerPixel) {
      const unsigned uncovered = 255 - in[Bitmap::kAlpha];
      for (int c = 0; c < Bitmap::kBytesPerPixel; ++c) {
        out[c] = static_cast<uint8_t>(in[c] + PremultiplySample(out[c], uncovered));
      }
    }
  }
}

// A plain image is drawn into the rectangle of its point size: when that
// differs from its pixel size (a resolution other than 72 dpi), it is resampled.
void DrawImageInContext(Bitmap& context, const Bitmap& image) {
  const int wide = static_cast<int>(image.size().width);
  const int high = static_cast<int>(image.size().height);
  if (wide == image.pixelsWide() && high == image.pixelsHigh()) {
    DrawBitmapAtOrigin(context, image);
    return;
  }
  if (auto resampled = ScaleBitmapByArea(image, wide, high)) DrawBitmapAtOrigin(context, *resampled);
}

}  // namespace

PreviewOutcome DrawPreviewSource(PreviewRequest& request, const PreviewSource& source) {
  PreviewOutcome outcome;
  outcome.status = source.status;
  if (!source.drawable()) {
    outcome.diagnosis = source.diagnosis;
    return outcome;
  }

  std::shared_ptr<Bitmap> context = request.createContext(source.contentSize, true);
  if (!context) {
    outcome.diagnosis = "no drawing context of " + FormatNumber(source.contentSize.width) + " x " +
                        FormatNumber(source.contentSize.height) + " could be made";
    return outcome;
  }
  // Every pixel of the context becomes fully transparent first.
  context->clear();
  if (source.canvas) {
    if (std::shared_ptr<Bitmap> picture = source.canvas->image()) {
      DrawBitmapAtOrigin(*context, *picture);
    }
  } else if (source.image) {
    DrawImageInContext(*context, *source.image);
  }
  request.flushContext(context);
  outcome.drawn = true;
  return outcome;
}

PreviewOutcome GeneratePreviewForFile(PreviewRequest& request, const std::string& path,
                                      PreviewKind kind, const PreviewLimits& limits) {
  return DrawPreviewSource(request, ReadPreviewSource(path, kind, limits));
}

}  // namespace paintdoc
