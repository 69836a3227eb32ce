#include "document/register_all_classes.h"

#include <mutex>

#include "document/paint_manager.h"
#include "draws/register_draw_classes.h"
#include "platform/class_registry.h"

namespace paintdoc {

void RegisterDocumentClasses() {
  ClassRegistry::shared().registerClass(
      {"PaintManager", "NSObject", [] { return std::make_shared<PaintManager>(); }});
}

void RegisterAllClasses() {
  static std::once_flag once;
  std::call_once(once, [] {
    RegisterDrawClasses();
    RegisterDocumentClasses();
  });
}

}  // namespace paintdoc
