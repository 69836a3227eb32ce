// `paintdoc layers FILE -o DIR`: every top-level layer of a document alone as
// a PNG (a group as one layer), and DIR/layers.json saying where each belongs
// on the canvas, so that the layers can be stacked back into the picture.
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "cli_commands.h"
#include "document/paint_manager.h"
#include "platform/codecs/image_codecs.h"
#include "platform/values/bitmap.h"
#include "platform/values/file_bytes.h"
#include "platform/values/log.h"
#include "preview/document_info.h"
#include "preview/preview_limits.h"
#include "preview/preview_source.h"

namespace paintdoc::cli {

namespace {

constexpr const char* kIndexName = "layers.json";
// What the library logs when a layer holds groups nested too deep to draw.
constexpr const char* kTooDeepMessage = "groups nested deeper than a drawing allows";

struct LayersOptions {
  std::string input;
  std::string folder;
  bool force = false;
};

// The PNG of layer `index`: made from the index alone, so no title can lead
// a file out of the folder.
std::string LayerFileName(size_t index) {
  char name[32];
  std::snprintf(name, sizeof name, "layer-%04zu.png", index);
  return name;
}

bool Exists(const std::string& path) {
  struct stat facts{};
  return ::lstat(path.c_str(), &facts) == 0;
}

// The folder, made when missing (one level); "" or why not.
std::string EnsureFolder(const std::string& folder) {
  struct stat facts{};
  if (::stat(folder.c_str(), &facts) == 0) {
    return S_ISDIR(facts.st_mode) ? "" : folder + ": not a folder";
  }
  if (::mkdir(folder.c_str(), 0777) != 0) return "can't make " + folder + ": " + std::strerror(errno);
  return "";
}

std::string JsonRect(const Rect& rect) {
  return "[" + std::to_string(static_cast<long long>(rect.origin.x)) + "," +
         std::to_string(static_cast<long long>(rect.origin.y)) + "," +
         std::to_string(static_cast<long long>(rect.size.width)) + "," +
         std::to_string(static_cast<long long>(rect.size.height)) + "]";
}

// One layer: its PNG written (when it paints anything) and its JSON entry.
struct LayerOutcome {
  std::string json;
  std::string failure;  // one line; empty on success
  int exitStatus = kExitSuccess;
};

LayerOutcome ExportLayer(DrawBase& draw, size_t index, const Size& canvasSize,
                         const std::string& folder) {
  const LogCapture log;
  const Rect area = draw.renderedRect();
  // A layer is drawn in its own bitmap, whatever the canvas size: a shadow or
  // reflection reaching far out must not take unbounded memory.
  const PreviewLimits limits;
  if (const std::string refusal = CheckContentSize(area.size, limits); !refusal.empty()) {
    return {"", "layer " + std::to_string(index) + ": " + refusal, kExitRefused};
  }
  const std::shared_ptr<Bitmap> image = draw.renderedImage();
  if (log.contains(kTooDeepMessage)) {
    return {"", "layer " + std::to_string(index) + ": " + kTooDeepMessage, kExitRefused};
  }
  std::string json = "{\"index\":" + std::to_string(index) +
                     ",\"class\":" + JsonString(draw.className()) +
                     ",\"title\":" + JsonString(draw.layerTitle()) +
                     ",\"visible\":" + (draw.visible() ? "true" : "false");
  if (!image || image->isEmpty()) return {json + ",\"png\":null}", "", kExitSuccess};

  const std::string name = LayerFileName(index);
  PngMetadata metadata;
  metadata.keepAlphaChannel = true;
  const Result<std::vector<uint8_t>> png = WritePNG(*image, {}, metadata);
  if (!png) return {"", folder + "/" + name + ": " + png.reason(), kExitOutputFailed};
  if (const Status written = WriteFileBytes(folder + "/" + name, *png); !written) {
    return {"", "can't write " + written.reason(), kExitOutputFailed};
  }
  // The canvas's origin is at the lower left; "left" and "top" place the
  // PNG from the upper left, as image editors stack layers.
  const double top = canvasSize.height - (area.origin.y + area.size.height);
  json += ",\"png\":" + JsonString(name) + ",\"rect\":" + JsonRect(area) +
          ",\"left\":" + std::to_string(static_cast<long long>(area.origin.x)) +
          ",\"top\":" + std::to_string(static_cast<long long>(top)) + "}";
  return {json, "", kExitSuccess};
}

// Refuses, before anything is written, to replace a file of the same name.
std::string FirstClash(const std::string& folder, size_t layerCount) {
  if (Exists(folder + "/" + kIndexName)) return folder + "/" + kIndexName;
  for (size_t i = 0; i < layerCount; ++i) {
    if (Exists(folder + "/" + LayerFileName(i))) return folder + "/" + LayerFileName(i);
  }
  return "";
}

std::optional<LayersOptions> ParseLayersArguments(const Arguments& arguments) {
  LayersOptions options;
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (arguments[i] == "-o" && i + 1 < arguments.size()) {
      options.folder = arguments[++i];
    } else if (arguments[i] == "--force") {
      options.force = true;
    } else if (options.input.empty() && arguments[i] != "-o") {
      options.input = arguments[i];
    } else {
      Complain("layers: unexpected argument \"" + arguments[i] + "\"");
      return std::nullopt;
    }
  }
  if (options.input.empty() || options.folder.empty()) {
    Complain("layers needs FILE and -o DIR");
    return std::nullopt;
  }
  return options;
}

}  // namespace

int RunLayers(const Arguments& arguments) {
  const std::optional<LayersOptions> options = ParseLayersArguments(arguments);
  if (!options) return kExitUsage;
  const PreviewSource source = ReadPreviewSource(options->input, PreviewKind::Preview);
  if (!source.drawable()) {
    Complain(options->input + ": " + source.diagnosis);
    return kExitRefused;
  }
  if (source.status != PreviewStatus::Document || !source.canvas) {
    Complain(options->input + ": a plain image has no layers");
    return kExitRefused;
  }
  const DrawList& draws = source.canvas->allDraws();
  if (const std::string failure = EnsureFolder(options->folder); !failure.empty()) {
    Complain(failure);
    return kExitOutputFailed;
  }
  if (!options->force) {
    if (const std::string clash = FirstClash(options->folder, draws.size()); !clash.empty()) {
      Complain(clash + ": already exists (--force replaces it)");
      return kExitOutputFailed;
    }
  }

  const Size canvasSize = source.canvas->canvasSize();
  std::string json = "{\"width\":" + std::to_string(static_cast<long long>(canvasSize.width)) +
                     ",\"height\":" + std::to_string(static_cast<long long>(canvasSize.height)) +
                     ",\"layers\":[";
  for (size_t i = 0; i < draws.size(); ++i) {
    const LayerOutcome outcome = ExportLayer(*draws[i], i, canvasSize, options->folder);
    if (!outcome.failure.empty()) {
      Complain(outcome.exitStatus == kExitRefused ? options->input + ": " + outcome.failure
                                                  : outcome.failure);
      return outcome.exitStatus;
    }
    json += (i == 0 ? "" : ",") + outcome.json;
  }
  json += "]}\n";
  const std::string indexPath = options->folder + "/" + kIndexName;
  if (const Status written =
          WriteFileBytes(indexPath, std::vector<uint8_t>(json.begin(), json.end()));
      !written) {
    Complain("can't write " + written.reason());
    return kExitOutputFailed;
  }
  return kExitSuccess;
}

}  // namespace paintdoc::cli
