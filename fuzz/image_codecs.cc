// Every image reader on arbitrary bytes: the format is told by the signature,
// as the preview path does for files that are no documents.
// Seeds: fuzz/corpus/image_codecs (a tiny file of each format).
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/codecs/image_codecs.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // A smaller pixel limit than the default keeps each run fast; the checks
  // that enforce it are the same.
  paintdoc::ImageReadOptions options;
  options.maxPixels = 1 << 20;
  // The image's own bytes also pick a thumbnail size: odd and even sizes,
  // none, and sizes around the image's, so the readers that shrink while
  // they decode are reached with every factor.
  options.shrinkToFit = size > 0 ? (data[size - 1] % 2 == 0 ? 0 : data[size / 2] + 1) : 0;
  paintdoc::ReadImage(std::span<const uint8_t>(data, size), options);
  return 0;
}
