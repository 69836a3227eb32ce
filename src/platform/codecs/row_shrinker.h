// Shrinking an image while it decodes: the rows of a large image arrive one
// at a time and are averaged in blocks of factor × factor pixels (on
// premultiplied values, so transparent pixels do not darken their
// neighbours) into a bitmap that many times smaller. A thumbnail of a large
// image then never holds the image at full size.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/values/bitmap.h"

namespace paintdoc {

// The largest whole factor (up to `maxFactor`) by which a width × height
// image may shrink and still cover the image fitted into a square of `box`
// pixels on both sides; 1 when it may not shrink (or `box` is 0).
int ShrinkFactorToCover(uint64_t width, uint64_t height, int box, int maxFactor);

class RowShrinker {
 public:
  // Shrinks a width × height image by `factor` into `target`, which must be
  // ceil(width / factor) × ceil(height / factor) pixels.
  RowShrinker(std::shared_ptr<Bitmap> target, int width, int height, int factor);

  // The next source row, top first, as straight R, G, B, A bytes.
  void addRow(const uint8_t* straightRGBA);

 private:
  void flushBlockRow();

  std::shared_ptr<Bitmap> target_;
  int width_, height_, factor_;
  int sourceRow_ = 0;
  int rowsInBlock_ = 0;
  std::vector<uint32_t> sums_;  // premultiplied R, G, B, A a target pixel
  std::vector<uint8_t> out_;    // one target row, premultiplied R, G, B, A
};

}  // namespace paintdoc
