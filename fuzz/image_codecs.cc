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
  paintdoc::ReadImage(std::span<const uint8_t>(data, size), options);
  return 0;
}
