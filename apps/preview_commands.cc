// `paintdoc render` and `paintdoc thumbnail`: the preview path of the plug-in's
// entry points, with the context kept and written as PNG.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "cli_commands.h"
#include "drawn_file.h"
#include "platform/values/bitmap.h"
#include "platform/values/file_bytes.h"
#include "platform/values/log.h"
#include "platform/values/parallel_loops.h"
#include "platform/codecs/image_codecs.h"
#include "preview/bitmap_scaling.h"
#include "preview/preview_generator.h"
#include "preview/preview_request.h"
#include "thumbnail_batch.h"

namespace paintdoc::cli {

namespace {

constexpr int kDefaultThumbnailSize = 256;

// Writes the PNG, leaving no file behind when that fails.
int WritePng(const Bitmap& bitmap, const std::string& outPath, const PngMetadata& metadata) {
  const Result<std::vector<uint8_t>> png = WritePNG(bitmap, {}, metadata);
  if (!png) {
    Complain(outPath + ": " + png.reason());
    return kExitOutputFailed;
  }
  if (const Status written = WriteFileBytes(outPath, *png); !written) {
    std::remove(outPath.c_str());
    Complain("can't write " + written.reason());
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
  uint64_t maxMemory = 0;
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "-o" && i + 1 < arguments.size()) {
      output = arguments[++i];
    } else if (arguments[i] == "--max-memory") {
      const std::optional<uint64_t> parsed =
          i + 1 < arguments.size() ? ParseByteCount(arguments[++i]) : std::nullopt;
      if (!parsed) {
        Complain("render: --max-memory needs a size such as 512M or 2G");
        return kExitUsage;
      }
      maxMemory = *parsed;
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
  // One large picture: its pixel loops may use every core.
  SetParallelPixelLoops(true);
  // What the library logs is kept out of the output: a refusal says it in
  // its own line, and a picture that could be drawn needs no remarks.
  const LogCapture log;
  const Drawn drawn = DrawFile(input, PreviewKind::Preview, 0, &log, maxMemory);
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
  BatchOptions batch;
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
    } else if (arguments[i] == "-o" && i + 1 < arguments.size()) {
      batch.outputFolder = arguments[++i];
    } else if (arguments[i] == "--freedesktop") {
      batch.freedesktop = true;
    } else {
      paths.push_back(arguments[i]);
    }
  }
  if (batch.freedesktop || !batch.outputFolder.empty()) {
    if (paths.empty() || (batch.freedesktop && !batch.outputFolder.empty())) {
      Complain("thumbnail needs FILE... and either -o DIR or --freedesktop");
      return kExitUsage;
    }
    batch.size = size;
    return RunThumbnailBatch(paths, batch);
  }
  if (paths.size() != 2) {
    Complain("thumbnail needs FILE and OUT.png");
    return kExitUsage;
  }
  // Drawn at the thumbnail's own size: no full-size picture is ever made.
  const LogCapture log;
  const Drawn drawn = DrawFile(paths[0], PreviewKind::Thumbnail, size, &log);
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
