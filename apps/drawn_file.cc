#include "drawn_file.h"

#include <cctype>
#include <string>

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

// The whole mebibytes of a byte count, rounded up, as "12 MiB".
std::string Mebibytes(uint64_t bytes) { return std::to_string((bytes + (1 << 20) - 1) >> 20) + " MiB"; }

}  // namespace

std::optional<uint64_t> ParseByteCount(const std::string& text) {
  size_t digits = 0;
  while (digits < text.size() && std::isdigit(static_cast<unsigned char>(text[digits]))) ++digits;
  if (digits == 0 || digits > 15) return std::nullopt;
  const std::string unit = text.substr(digits);
  const struct { const char* name; int shift; } units[] = {{"", 0}, {"K", 10}, {"M", 20}, {"G", 30}};
  for (const auto& [name, shift] : units) {
    if (unit != name) continue;
    const uint64_t count = std::stoull(text.substr(0, digits)) << shift;
    if (count == 0) return std::nullopt;
    return count;
  }
  return std::nullopt;
}

Drawn DrawFile(const std::string& path, PreviewKind kind, int fitInto, const LogCapture* log,
               uint64_t maxMemoryBytes) {
  BitmapPreviewRequest request;
  const PreviewSource source = ReadPreviewSource(path, kind, {}, fitInto);
  const uint64_t needed = source.drawable() ? EstimatedDrawingBytes(source, fitInto) : 0;
  if (maxMemoryBytes > 0 && needed > maxMemoryBytes) {
    const PixelSize pixels = ContentPixelSize(DrawingSize(source, fitInto));
    return {nullptr,
            path + ": drawing it at " + std::to_string(pixels.width) + " x " +
                std::to_string(pixels.height) + " pixels needs about " + Mebibytes(needed) +
                ", more than the memory limit of " + Mebibytes(maxMemoryBytes),
            {}};
  }
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
