// NSBitmapImageRep and NSImage. A bitmap representation holds a complete TIFF
// file ("NSTIFFRepresentation"); an image holds its size in points and its
// representations ("NSReps": pairs of 0 and a representation).
#include <cmath>

#include "archive/archived_forms.h"
#include "platform/values/bitmap.h"
#include "platform/codecs/image_codecs.h"
#include "platform/values/log.h"

namespace paintdoc {

namespace {

// Gathers the bitmaps of "NSReps": an array of [0, rep] pairs, or one array
// [0, rep1, rep2, ...] as another implementation writes it.
void CollectBitmaps(const ArchiveValue& value, std::vector<std::shared_ptr<Bitmap>>& bitmaps,
                    int depth = 0) {
  if (auto bitmap = value.asBitmap()) {
    bitmaps.push_back(std::move(bitmap));
    return;
  }
  if (const ValueArray* elements = value.asArray(); elements && depth < 2) {
    for (const ArchiveValue& element : *elements) CollectBitmaps(element, bitmaps, depth + 1);
  }
}

}  // namespace

ArchiveValue ReadBitmapImageRepObject(KeyedUnarchiver& coder, std::string_view) {
  // Bare data or a data object; TIFF as the platform writes it, or PNG and
  // JPEG data, which the platform's reader takes under the same key.
  const auto tiff = coder.decodeDataForKey("NSTIFFRepresentation");
  if (!tiff) {
    Log("Warning: KeyedUnarchiver: a bitmap without image data reads as nil");
    return {};
  }
  std::shared_ptr<Bitmap> bitmap = coder.decodeImageData(tiff->span(), "a bitmap");
  if (!bitmap) return {};
  return ArchiveValue(std::move(bitmap));
}

uint64_t WriteBitmapImageRep(ArchiveObjectWriter& writer, const Bitmap& bitmap) {
  auto tiff = WriteTIFF(bitmap);
  if (!tiff) {
    Log("Error: KeyedArchiver: a bitmap cannot be written as TIFF (" + tiff.reason() +
        "); it is left out");
    return 0;
  }
  const uint64_t data = writer.archive(ArchiveValue(SharedBytes(std::move(*tiff))));
  const uint64_t uid = writer.begin({"NSBitmapImageRep", "NSImageRep", "NSObject"});
  writer.encodeReference(data, "NSTIFFRepresentation");
  writer.coder().encodeIntForKey(0, "NSInternalLayoutDirection");
  writer.finish();
  return uid;
}

ArchiveValue ReadImageObject(KeyedUnarchiver& coder, std::string_view) {
  ArchivedImage image;
  CollectBitmaps(coder.decodeValueForKey("NSReps"), image.representations);
  const std::shared_ptr<Bitmap> first = image.firstBitmap();
  if (coder.containsValueForKey("NSSize")) {
    image.size = coder.decodeSizeForKey("NSSize");
    // A representation that records no resolution of its own (its point
    // size is its pixel size) is drawn at the image's size: that size gives
    // it its resolution.
    const bool sizeUsable = std::isfinite(image.size.width) && std::isfinite(image.size.height) &&
                            image.size.width > 0 && image.size.height > 0;
    if (first && sizeUsable && !first->isEmpty() &&
        first->size() == MakeSize(first->pixelsWide(), first->pixelsHigh())) {
      first->setSize(image.size);
    }
  } else if (first) {
    image.size = first->size();
  }
  if (coder.containsValueForKey("NSImageFlags")) {
    image.imageFlags = coder.decodeInt64ForKey("NSImageFlags");
  }
  return ArchiveValue(std::move(image));
}

uint64_t WriteImage(ArchiveObjectWriter& writer, const ArchivedImage& image) {
  ValueArray pairs;
  for (const auto& bitmap : image.representations) {
    if (bitmap) pairs.push_back(ArchiveValue::array({int64_t{0}, ArchiveValue(bitmap)}));
  }
  const uint64_t reps = writer.archive(ArchiveValue::array(std::move(pairs)).setMutable(true));
  const uint64_t clear = WriteColor(writer, Color::clearColor());
  const uint64_t uid = writer.begin({"NSImage", "NSObject"});
  KeyedArchiver& coder = writer.coder();
  writer.encodeReference(reps, "NSReps");
  coder.encodeSizeForKey(image.size, "NSSize");
  writer.encodeReference(clear, "NSColor");
  coder.encodeInt64ForKey(image.imageFlags, "NSImageFlags");
  coder.encodeIntForKey(0, "NSResizingMode");
  writer.finish();
  return uid;
}

}  // namespace paintdoc
