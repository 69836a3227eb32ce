#include "preview/preview_generator.h"

#include "document/paint_manager.h"
#include "platform/values/bitmap.h"
#include "platform/graphics/graphics_context.h"
#include "preview/preview_request.h"

namespace paintdoc {

namespace {

// Clears the context and draws the content into (0, 0, width, height): the
// canvas picture unscaled at the origin, or the image stretched to its point
// size (which differs from its pixel size when it carries a resolution).
void DrawContent(const std::shared_ptr<Bitmap>& context, const PreviewSource& source) {
  BitmapFocus focus(context);
  GraphicsContext& gc = focus.context();
  gc.saveGraphicsState();
  const Rect bounds = MakeRect(0, 0, source.contentSize.width, source.contentSize.height);
  gc.setFillColor(Color::clearColor());
  gc.fillRect(bounds, CompositingOperation::Copy);
  if (source.canvas) {
    if (std::shared_ptr<Bitmap> picture = source.canvas->image()) {
      gc.drawBitmap(*picture, bounds, ZeroRect(), CompositingOperation::SourceOver, 1.0);
    }
  } else if (source.image) {
    gc.drawBitmap(*source.image, bounds, ZeroRect(), CompositingOperation::SourceOver, 1.0);
  }
  gc.restoreGraphicsState();
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
  DrawContent(context, source);
  request.flushContext(context);
  outcome.drawn = true;
  return outcome;
}

PreviewOutcome GeneratePreviewForFile(PreviewRequest& request, const std::string& path,
                                      PreviewKind kind, const PreviewLimits& limits) {
  return DrawPreviewSource(request, ReadPreviewSource(path, kind, limits));
}

}  // namespace paintdoc
