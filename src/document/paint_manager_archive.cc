// The keyed archive of the canvas: the inner archive of a document.
#include "archive/keyed_archiver.h"
#include "archive/keyed_unarchiver.h"
#include "document/paint_manager.h"
#include "raster/draw_image.h"

namespace paintdoc {

void PaintManager::encodeWithCoder(KeyedArchiver& coder) const {
  coder.encodeStringForKey(StringFromSize(size_), "CanvasSize");
  coder.encodeArrayOfObjectsForKey(aryDraw_, "DrawsArray");
  coder.encodeBoolForKey(drawBackground_ != nullptr, "HasBackground");
  coder.encodeBoolForKey(bMaskWithBackground_, "MaskWithBackground");
}

bool PaintManager::initWithCoder(KeyedUnarchiver& coder) {
  // The size is taken as written, without rounding.
  const std::optional<std::string> sizeText = coder.decodeStringForKey("CanvasSize");
  size_ = sizeText ? SizeFromString(*sizeText) : Size{};

  // Draws of an unknown class decode as absent and are left out; a draw the
  // archive places twice, or also inside a group, is kept at its first place.
  aryDraw_ = DrawGroup::UniqueUnheldDraws(coder.decodeArrayOfObjectsForKey<DrawBase>("DrawsArray"));

  // The flag counts only when a DrawImage leads the list; otherwise a leading
  // image stays an ordinary layer.
  if (coder.decodeBoolForKey("HasBackground") && !aryDraw_.empty()) {
    if (auto background = std::dynamic_pointer_cast<DrawImage>(aryDraw_.front())) {
      setBackgroundDraw(std::move(background));
    }
  }
  bMaskWithBackground_ = coder.decodeBoolForKey("MaskWithBackground");
  clearMemeryBuffer();
  return true;
}

}  // namespace paintdoc
