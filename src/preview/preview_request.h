// The host side of a preview request. The host (a file manager's preview
// service, a command-line tool, a test) hands out a drawing context of the
// size the generator asks for, as a bitmap, and takes it back when the
// generator flushes it.
#pragma once

#include <memory>
#include <vector>

#include "platform/values/geometry.h"

namespace paintdoc {

class Bitmap;

class PreviewRequest {
 public:
  virtual ~PreviewRequest() = default;
  // A drawing context covering `size` points, as a bitmap (`isBitmap` is the
  // kind of context asked for; the generator always asks for a bitmap).
  // Null when the host has none to give.
  virtual std::shared_ptr<Bitmap> createContext(Size size, bool isBitmap) = 0;
  // Hands the context back once everything is drawn into it.
  virtual void flushContext(const std::shared_ptr<Bitmap>& context) = 0;
};

// A request that makes a transparent bitmap of the requested size (sides
// rounded to the nearest whole pixel) and keeps what is flushed.
class BitmapPreviewRequest : public PreviewRequest {
 public:
  std::shared_ptr<Bitmap> createContext(Size size, bool isBitmap) override;
  void flushContext(const std::shared_ptr<Bitmap>& context) override;

  // Every size asked for, in order.
  const std::vector<Size>& requestedSizes() const { return requestedSizes_; }
  // The last context flushed back, or null.
  const std::shared_ptr<Bitmap>& flushedContext() const { return flushed_; }
  int flushCount() const { return flushCount_; }

 private:
  std::vector<Size> requestedSizes_;
  std::shared_ptr<Bitmap> flushed_;
  int flushCount_ = 0;
};

}  // namespace paintdoc
