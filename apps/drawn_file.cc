#include "drawn_file.h"

#include "preview/preview_generator.h"
#include "preview/preview_request.h"

namespace paintdoc::cli {

namespace {

// The first warning the library logged, without its "Warning: <reader>: "
// prefix, or "".
std::string FirstWarning(const LogCapture* log) {
  if (!log) return "";
  for (const std::string& message : log->messages()) {
    if (message.rfind("Warning: ", 0) != 0) continue;
    const size_t reason = message.find(": ", 9);
    return message.substr(reason == std::string::npos ? 9 : reason + 2);
  }
  return "";
}

// The refusal's one line: the preview's diagnosis, with the warning that
// explains it when the library logged one (a thumbnailer keeps one line of
// what its command prints, so the cause must be in that line).
std::string RefusalLine(const std::string& path, const std::string& diagnosis,
                        const LogCapture* log) {
  const std::string warning = FirstWarning(log);
  if (warning.empty() || diagnosis.find(warning) != std::string::npos) {
    return path + ": " + diagnosis;
  }
  return path + ": " + diagnosis + " (" + warning + ")";
}

}  // namespace

Drawn DrawFile(const std::string& path, PreviewKind kind, int fitInto, const LogCapture* log) {
  BitmapPreviewRequest request;
  const PreviewSource source = ReadPreviewSource(path, kind, {}, fitInto);
  const PreviewOutcome outcome = DrawPreviewSource(request, source, fitInto);
  if (!outcome.drawn) return {nullptr, RefusalLine(path, outcome.diagnosis, log), {}};
  const std::shared_ptr<Bitmap>& bitmap = request.flushedContext();
  if (!bitmap || bitmap->isEmpty()) {
    const int wide = bitmap ? bitmap->pixelsWide() : 0;
    const int high = bitmap ? bitmap->pixelsHigh() : 0;
    return {nullptr, path + ": nothing to draw: the content is " + std::to_string(wide) + " x " +
                         std::to_string(high) + " pixels", {}};
  }
  return {bitmap, "", ContentPixelSize(source.contentSize)};
}

}  // namespace paintdoc::cli
