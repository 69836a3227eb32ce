// `paintdoc render` and `paintdoc thumbnail`: the preview path of the plug-in's
// entry points, with the context kept and written as PNG.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "cli_commands.h"
#include "platform/values/bitmap.h"
#include "platform/values/file_bytes.h"
#include "platform/values/log.h"
#include "platform/codecs/image_codecs.h"
#include "preview/bitmap_scaling.h"
#include "preview/preview_generator.h"
#include "preview/preview_request.h"

namespace paintdoc::cli {

namespace {

constexpr int kDefaultThumbnailSize = 256;

// The drawn context of a preview request, or a one-line reason.
struct Drawn {
  std::shared_ptr<Bitmap> bitmap;
  std::string failure;
  // The content's pixel size at full size, whatever size it was drawn at.
  PixelSize fullSize;
};

// The first warning the library logged, without its "Warning: <reader>: "
// prefix, or "".
std::string FirstWarning(const LogCapture& log) {
  for (const std::string& message : log.messages()) {
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
                        const LogCapture& log) {
  const std::string warning = FirstWarning(log);
  if (warning.empty() || diagnosis.find(warning) != std::string::npos) {
    return path + ": " + diagnosis;
  }
  return path + ": " + diagnosis + " (" + warning + ")";
}

// `fitInto` above 0 draws a thumbnail that fits a square of that many pixels.
// What the library logs meanwhile is kept out of the output: a refusal says
// it in its own line, and a picture that could be drawn needs no remarks.
Drawn DrawFile(const std::string& path, PreviewKind kind, int fitInto = 0) {
  LogCapture log;
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

// Writes the PNG, leaving no file behind when that fails.
int WritePng(const Bitmap& bitmap, const std::string& outPath, const PngMetadata& metadata) {
  std::string error;
  std::optional<std::vector<uint8_t>> png = WritePNG(bitmap, {}, metadata, &error);
  if (!png) {
    Complain(outPath + ": " + error);
    return kExitOutputFailed;
  }
  if (!WriteFileBytes(outPath, *png, &error)) {
    std::remove(outPath.c_str());
    Complain("can't write " + error);
    return kExitOutputFailed;
  }
  return kExitSuccess;
}

std::optional<int> ParseThumbnailSize(const std::string& text) {
  char* end = nullptr;
  const long value = std::strtol(text.c_str(), &end, 10);
  if (text.empty() || *end != '\0' || value < 1 || value > Bitmap::kMaxDimension) return std::nullopt;
  return static_cast<int>(value);
}

}  // namespace

void Complain(const std::string& message) { std::fprintf(stderr, "paintdoc: %s\n", message.c_str()); }

int RunRender(const Arguments& arguments) {
  std::string input;
  std::string output;
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "-o" && i + 1 < arguments.size()) {
      output = arguments[++i];
    } else if (input.empty() && arguments[i] != "-o") {
      input = arguments[i];
    } else {
      Complain("render: unexpected argument \"" + arguments[i] + "\"");
      return kExitUsage;
    }
  }
  if (input.empty() || output.empty()) {
    Complain("render needs FILE and -o OUT.png");
    return kExitUsage;
  }
  const Drawn drawn = DrawFile(input, PreviewKind::Preview);
  if (!drawn.bitmap) {
    Complain(drawn.failure);
    return kExitRefused;
  }
  PngMetadata metadata;
  metadata.keepAlphaChannel = true;
  return WritePng(*drawn.bitmap, output, metadata);
}

int RunThumbnail(const Arguments& arguments) {
  std::vector<std::string> paths;
  int size = kDefaultThumbnailSize;
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "-s" || arguments[i] == "--size") {
      std::optional<int> parsed =
          i + 1 < arguments.size() ? ParseThumbnailSize(arguments[i + 1]) : std::nullopt;
      if (!parsed) {
        Complain("thumbnail: -s needs a size from 1 to " + std::to_string(Bitmap::kMaxDimension));
        return kExitUsage;
      }
      size = *parsed;
      ++i;
    } else {
      paths.push_back(arguments[i]);
    }
  }
  if (paths.size() != 2) {
    Complain("thumbnail needs FILE and OUT.png");
    return kExitUsage;
  }
  // Drawn at the thumbnail's own size: no full-size picture is ever made.
  const Drawn drawn = DrawFile(paths[0], PreviewKind::Thumbnail, size);
  if (!drawn.bitmap) {
    Complain(drawn.failure);
    return kExitRefused;
  }
  PngMetadata metadata;
  metadata.keepAlphaChannel = true;
  metadata.textEntries = {{"Thumb::Image::Width", std::to_string(drawn.fullSize.width)},
                          {"Thumb::Image::Height", std::to_string(drawn.fullSize.height)}};
  return WritePng(*drawn.bitmap, paths[1], metadata);
}

}  // namespace paintdoc::cli
