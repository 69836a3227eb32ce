#include "preview/document_container.h"

#include "archive/keyed_archiver.h"
#include "document/paint_manager.h"

namespace paintdoc {

std::vector<uint8_t> WriteDocumentContainer(const PaintManager& canvas, bool withResolution) {
  const std::vector<uint8_t> paintData = KeyedArchiver::archivedDataWithRootObject(canvas);
  KeyedArchiver container;
  container.encodeDataForKey(paintData, "PaintData");
  if (withResolution) container.encodeDoubleForKey(kDocumentResolution, "Resolution");
  container.encodeInt64ForKey(PaintManager::version(), "Version");
  return container.finishEncoding();
}

}  // namespace paintdoc
