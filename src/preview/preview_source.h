// What a preview request draws, read from a file's bytes the way the preview
// entry points read it: a paint document's canvas, or else the file as a
// plain image. Every step that gives up records why, so that the command-line
// tools can say in one line what the entry points do silently.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "archive/shared_bytes.h"
#include "platform/values/geometry.h"
#include "preview/preview_limits.h"

namespace paintdoc {

class Bitmap;
class PaintManager;

// The two generators differ in one point: when the file is a keyed archive
// but no paint document, the full-size preview finishes the archive reader
// before falling back to the image path, the thumbnail does not.
enum class PreviewKind { Thumbnail, Preview };

enum class PreviewStatus {
  Document,      // a canvas to draw
  Image,         // a plain image to draw
  Unreadable,    // the file could not be read (or is larger than allowed)
  EmptyFile,     // zero bytes
  NewerVersion,  // written by a newer version than this build reads
  NotACanvas,    // a paint document whose inner archive holds no canvas
  NotAnImage,    // neither a paint document nor a readable image
  SizeRefused,   // content size not valid or beyond the limits
};

struct PreviewSource {
  PreviewStatus status = PreviewStatus::Unreadable;
  std::shared_ptr<PaintManager> canvas;  // for Document
  std::shared_ptr<Bitmap> image;         // for Image
  // Points: the canvas size, or the image's point size.
  Size contentSize;
  // The container's "Version" (0 when missing); meaningful for documents.
  int64_t version = 0;
  // Why nothing is drawn; empty when something is.
  std::string diagnosis;

  bool drawable() const {
    return status == PreviewStatus::Document || status == PreviewStatus::Image;
  }
};

// Reads the whole file and decides what it holds. `fitInto`, when above 0,
// is the square a thumbnail will fill: a plain image may then be decoded at a
// reduced scale that still covers it (its point size stays the image's).
PreviewSource ReadPreviewSource(const std::string& path, PreviewKind kind,
                                const PreviewLimits& limits = {}, int fitInto = 0);
// The same for bytes already in memory.
PreviewSource ReadPreviewSourceFromBytes(SharedBytes bytes, PreviewKind kind,
                                         const PreviewLimits& limits = {}, int fitInto = 0);

// Checks a content size against the limits; the reason when refused, else "".
std::string CheckContentSize(Size size, const PreviewLimits& limits);

}  // namespace paintdoc
