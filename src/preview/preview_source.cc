#include "preview/preview_source.h"

#include <cmath>

#include "archive/keyed_unarchiver.h"
#include "document/paint_manager.h"
#include "document/register_all_classes.h"
#include "platform/values/file_bytes.h"
#include "platform/codecs/image_codecs.h"

namespace paintdoc {

namespace {

PreviewSource Refused(PreviewStatus status, std::string diagnosis) {
  PreviewSource source;
  source.status = status;
  source.diagnosis = std::move(diagnosis);
  return source;
}

std::string SizeText(Size size) {
  return FormatNumber(size.width) + " x " + FormatNumber(size.height);
}

// A content whose size is refused is not drawn, whatever it is.
PreviewSource WithCheckedSize(PreviewSource source, const PreviewLimits& limits) {
  std::string refusal = CheckContentSize(source.contentSize, limits);
  if (refusal.empty()) return source;
  return Refused(PreviewStatus::SizeRefused, std::move(refusal));
}

// The inner archive of a paint document: its root must be a canvas.
PreviewSource ReadCanvas(KeyedUnarchiver& container, int64_t version,
                         const PreviewLimits& limits) {
  std::optional<SharedBytes> paintData = container.decodeDataForKey("PaintData");
  container.finishDecoding();
  if (!paintData) return Refused(PreviewStatus::NotACanvas, "\"PaintData\" holds no data");

  RegisterAllClasses();
  // Bitmaps in documents keep to the same pixel limit as plain images.
  ArchiveLimits archiveLimits = limits.archive;
  archiveLimits.maxImagePixels = limits.maxImagePixels;
  Result<std::shared_ptr<Object>> root =
      KeyedUnarchiver::unarchiveObjectWithData(std::move(*paintData), archiveLimits);
  if (!root) {
    return Refused(PreviewStatus::NotACanvas,
                   "the document's canvas archive is unreadable: " + root.reason());
  }
  auto canvas = std::dynamic_pointer_cast<PaintManager>(*root);
  if (!canvas) {
    return Refused(PreviewStatus::NotACanvas,
                   "the document's root is a " + (*root)->className() + ", not a canvas");
  }
  PreviewSource source;
  source.status = PreviewStatus::Document;
  source.canvas = std::move(canvas);
  source.contentSize = source.canvas->canvasSize();
  source.version = version;
  return WithCheckedSize(std::move(source), limits);
}

// The fallback: the file's bytes as a plain image.
PreviewSource ReadImageContent(const SharedBytes& bytes, bool wasKeyedArchive,
                               const PreviewLimits& limits, int fitInto) {
  ImageReadOptions options;
  options.maxPixels = limits.maxImagePixels;
  options.shrinkToFit = fitInto;
  ImageResult decoded = ReadImage(bytes.span(), options);
  if (!decoded) {
    if (wasKeyedArchive) {
      return Refused(PreviewStatus::NotAnImage,
                     "a keyed archive without \"PaintData\" and \"Resolution\" is no paint "
                     "document, and it is no image either");
    }
    if (DetectImageFormat(bytes.span()) == ImageFormat::Unknown) {
      return Refused(PreviewStatus::NotAnImage, "neither a paint document nor an image");
    }
    // The reader's line names the format: "unreadable PNG image: ...".
    return Refused(PreviewStatus::NotAnImage, "unreadable " + decoded.reason());
  }
  PreviewSource source;
  source.status = PreviewStatus::Image;
  source.image = std::move(decoded->bitmap);
  source.contentSize = source.image->size();
  return WithCheckedSize(std::move(source), limits);
}

}  // namespace

std::string CheckContentSize(Size size, const PreviewLimits& limits) {
  const double width = size.width;
  const double height = size.height;
  if (!std::isfinite(width) || !std::isfinite(height) || width < 0 || height < 0) {
    return "content size " + SizeText(size) + " is not a valid size";
  }
  if (width > limits.maxCanvasSide || height > limits.maxCanvasSide) {
    return "content size " + SizeText(size) + " exceeds the limit of " +
           FormatNumber(limits.maxCanvasSide) + " a side";
  }
  if (width * height > limits.maxCanvasPixels) {
    return "content size " + SizeText(size) + " exceeds the limit of " +
           FormatNumber(limits.maxCanvasPixels) + " pixels";
  }
  return "";
}

PreviewSource ReadPreviewSource(const std::string& path, PreviewKind kind,
                                const PreviewLimits& limits, int fitInto) {
  Result<std::vector<uint8_t>> bytes = ReadFileBytes(path, limits.maxFileBytes);
  if (!bytes) return Refused(PreviewStatus::Unreadable, "can't read " + bytes.reason());
  return ReadPreviewSourceFromBytes(SharedBytes(std::move(*bytes)), kind, limits, fitInto);
}

PreviewSource ReadPreviewSourceFromBytes(SharedBytes bytes, PreviewKind kind,
                                         const PreviewLimits& limits, int fitInto) {
  if (bytes.empty()) return Refused(PreviewStatus::EmptyFile, "empty file");
  if (bytes.size() > limits.maxFileBytes) {
    return Refused(PreviewStatus::Unreadable,
                   "file of " + std::to_string(bytes.size()) + " bytes is larger than the limit of " +
                       std::to_string(limits.maxFileBytes) + " bytes");
  }

  // Data that is no keyed archive leaves the reader invalid: it counts as absent.
  KeyedUnarchiver container(bytes, limits.archive);
  const bool isKeyedArchive = container.isValid();
  const bool isDocument = isKeyedArchive && container.containsValueForKey("PaintData") &&
                          container.containsValueForKey("Resolution");
  if (!isDocument) {
    if (isKeyedArchive && kind == PreviewKind::Preview) container.finishDecoding();
    return ReadImageContent(bytes, isKeyedArchive, limits, fitInto);
  }

  const int64_t version =
      container.containsValueForKey("Version") ? container.decodeIntegerForKey("Version") : 0;
  if (version > PaintManager::version()) {
    container.finishDecoding();
    return Refused(PreviewStatus::NewerVersion,
                   "newer document version " + std::to_string(version) +
                       " (this build reads up to " + std::to_string(PaintManager::version()) + ")");
  }
  return ReadCanvas(container, version, limits);
}

}  // namespace paintdoc
