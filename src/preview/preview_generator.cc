#include "preview/preview_generator.h"

#include <algorithm>
#include <cmath>

#include "document/canvas_renderer.h"
#include "document/paint_manager.h"
#include "platform/graphics/graphics_context.h"
#include "platform/values/bitmap.h"
#include "preview/preview_request.h"

namespace paintdoc {

namespace {

// A host may hand out a context that already holds pixels.
void ClearContext(const std::shared_ptr<Bitmap>& context) {
  BitmapFocus focus(context);
  focus.context().setFillColor(Color::clearColor());
  focus.context().fillRect(MakeRect(0, 0, context->size().width, context->size().height),
                           CompositingOperation::Copy);
}

// Draws the content into the whole context, which is transparent when the
// host hands it out: the canvas through the renderer (its area stretched onto
// the context's pixels, so a smaller context draws it at a smaller scale), or
// the image into the context's point size. Answers why drawing failed, or "".
// `drawSize` is the size asked of the host, which may hand out a larger
// context: the content then fills that size at the lower left corner.
std::string DrawContent(const std::shared_ptr<Bitmap>& context, Size drawSize,
                        const PreviewSource& source) {
  if (context->isEmpty()) return "";
  ClearContext(context);
  if (source.canvas) {
    // The canvas area that the whole context shows at the asked scale.
    const Size canvas = source.canvas->canvasSize();
    const Rect area = MakeRect(0, 0, context->size().width * canvas.width / drawSize.width,
                               context->size().height * canvas.height / drawSize.height);
    CanvasRenderer renderer(*source.canvas, context, area);
    renderer.paintAll();
    return renderer.failure();
  }
  if (!source.image) return "no image to draw";
  // A thumbnail has fewer pixels than the image: resample by area first,
  // which keeps every source pixel in proportion.
  const PixelSize pixels = ContentPixelSize(drawSize);
  std::shared_ptr<Bitmap> image = source.image;
  if (pixels.width < image->pixelsWide() && pixels.height < image->pixelsHigh()) {
    image = ScaleBitmapByArea(*source.image, pixels.width, pixels.height);
    if (!image) return "no memory to resample the image";
  }
  BitmapFocus focus(context);
  const Rect bounds = MakeRect(0, 0, drawSize.width, drawSize.height);
  focus.context().drawBitmap(*image, bounds, ZeroRect(), CompositingOperation::SourceOver, 1.0);
  return "";
}

std::string ContextFailure(Size size) {
  return "no drawing context of " + FormatNumber(size.width) + " x " + FormatNumber(size.height) +
         " could be made";
}

}  // namespace

PixelSize ContentPixelSize(Size size) {
  return {static_cast<int>(std::lround(size.width)), static_cast<int>(std::lround(size.height))};
}

Size DrawingSize(const PreviewSource& source, int fitInto) {
  if (fitInto <= 0) return source.contentSize;
  const PixelSize full = ContentPixelSize(source.contentSize);
  const PixelSize fitted = FitIntoSquare(full.width, full.height, fitInto);
  if (fitted.width < full.width || fitted.height < full.height) {
    return MakeSize(fitted.width, fitted.height);
  }
  return source.contentSize;
}

uint64_t EstimatedDrawingBytes(const PreviewSource& source, int fitInto) {
  const PixelSize pixels = ContentPixelSize(DrawingSize(source, fitInto));
  const uint64_t contextBytes = uint64_t(std::max(pixels.width, 0)) *
                                uint64_t(std::max(pixels.height, 0)) * Bitmap::kBytesPerPixel;
  return 2 * contextBytes;
}

PreviewOutcome DrawPreviewSource(PreviewRequest& request, const PreviewSource& source,
                                 int fitInto) {
  PreviewOutcome outcome;
  outcome.status = source.status;
  if (!source.drawable()) {
    outcome.diagnosis = source.diagnosis;
    return outcome;
  }

  const Size contextSize = DrawingSize(source, fitInto);
  std::shared_ptr<Bitmap> context = request.createContext(contextSize, true);
  if (!context) {
    outcome.diagnosis = ContextFailure(contextSize);
    return outcome;
  }
  const std::string failure = DrawContent(context, contextSize, source);
  if (!failure.empty()) {
    // An incomplete picture is never handed back as the document's.
    outcome.diagnosis = failure;
    return outcome;
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
