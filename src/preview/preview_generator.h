// The preview generators: read a file, ask the host for a drawing context of
// the content's own size, clear it, draw the canvas (unscaled, at the origin)
// or the image (into its point size), and flush the context back. Both give
// up silently on every failure; the outcome says what happened and why.
#pragma once

#include <string>

#include "preview/bitmap_scaling.h"
#include "preview/preview_source.h"

namespace paintdoc {

class PreviewRequest;

struct PreviewOutcome {
  PreviewStatus status = PreviewStatus::Unreadable;
  // True when content was drawn into a context and flushed.
  bool drawn = false;
  // Why nothing was drawn; empty when something was.
  std::string diagnosis;
};

// The whole request for one file. The thumbnail's maximum size is not asked
// for: the context always has the content's size and the host scales.
PreviewOutcome GeneratePreviewForFile(PreviewRequest& request, const std::string& path,
                                      PreviewKind kind, const PreviewLimits& limits = {});

// Drawing content already read into a context of the request: a context of
// the content's size, or, with `fitInto` above 0, of the largest size that
// fits the content into a square of `fitInto` pixels without enlarging it.
// The canvas is then drawn at that scale straight into the context, an image
// resampled into it by area: what a thumbnail tool wants. The plug-in's entry
// points always draw at the content's size, since their host scales.
PreviewOutcome DrawPreviewSource(PreviewRequest& request, const PreviewSource& source,
                                 int fitInto = 0);

// The context's pixel size for content of `size` points: each side rounded to
// the nearest whole pixel, as BitmapPreviewRequest makes it.
PixelSize ContentPixelSize(Size size);

// The size DrawPreviewSource asks the host for, in points (pixels for a
// thumbnail): the content's, or the fitted one with `fitInto` above 0.
Size DrawingSize(const PreviewSource& source, int fitInto);

// About how much memory drawing the source takes at that size, beyond what
// reading it took: the context, and as much again for the transparency layers
// and shadow masks a layer may open over the whole picture. A caller with a
// memory limit refuses before drawing instead of failing half way.
uint64_t EstimatedDrawingBytes(const PreviewSource& source, int fitInto);

}  // namespace paintdoc
