// Scoped guards for the paired calls of the drawing model: every save of the
// graphics state is restored, every transparency layer ended, every focus
// lock unlocked, on every path out of a scope.
//
//   GraphicsStateGuard saved(context);      // saveGraphicsState … restore
//   TransparencyLayerGuard layer(context);  // beginTransparencyLayer … end
//   BitmapFocus focus(bitmap);              // lockFocus … unlockFocus
#pragma once

#include "platform/graphics/graphics_context.h"

namespace paintdoc {

class GraphicsStateGuard {
 public:
  explicit GraphicsStateGuard(GraphicsContext& context) : context_(context) {
    context_.saveGraphicsState();
  }
  ~GraphicsStateGuard() { context_.restoreGraphicsState(); }
  GraphicsStateGuard(const GraphicsStateGuard&) = delete;
  GraphicsStateGuard& operator=(const GraphicsStateGuard&) = delete;

 private:
  GraphicsContext& context_;
};

class TransparencyLayerGuard {
 public:
  explicit TransparencyLayerGuard(GraphicsContext& context) : context_(context) {
    context_.beginTransparencyLayer();
  }
  ~TransparencyLayerGuard() { context_.endTransparencyLayer(); }
  TransparencyLayerGuard(const TransparencyLayerGuard&) = delete;
  TransparencyLayerGuard& operator=(const TransparencyLayerGuard&) = delete;

 private:
  GraphicsContext& context_;
};

}  // namespace paintdoc
