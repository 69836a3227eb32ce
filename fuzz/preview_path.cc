// The whole preview path on arbitrary bytes: container, canvas archive, the
// image fallback, drawing into a host context and the layer description.
// Seeds: fuzz/corpus/preview_path (small valid documents and images).
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/values/log.h"
#include "preview/document_info.h"
#include "preview/preview_generator.h"
#include "preview/preview_request.h"
#include "preview/preview_source.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static paintdoc::LogCapture quiet;  // decoding problems are logged, not printed
  quiet.clear();

  // Smaller content than the defaults keeps each run fast; the checks are the same.
  paintdoc::PreviewLimits limits;
  limits.maxCanvasSide = 2048;
  limits.maxCanvasPixels = 1 << 20;
  limits.maxImagePixels = 1 << 20;
  limits.archive.maxObjects = 100000;
  limits.archive.maxTotalImagePixels = 1 << 22;

  const auto kind = size % 2 ? paintdoc::PreviewKind::Thumbnail : paintdoc::PreviewKind::Preview;
  const paintdoc::PreviewSource source = paintdoc::ReadPreviewSourceFromBytes(
      paintdoc::SharedBytes(std::vector<uint8_t>(data, data + size)), kind, limits);
  paintdoc::BitmapPreviewRequest request;
  paintdoc::DrawPreviewSource(request, source);
  if (source.drawable()) {
    const paintdoc::DocumentInfo info = paintdoc::DescribePreviewSource(source);
    paintdoc::FormatDocumentInfoJson(info);
    paintdoc::FormatDocumentInfoText(info);
  }
  return 0;
}
