#include "document/register_all_classes.h"

#include <mutex>

#include "document/paint_manager.h"
#include "draws/register_draw_classes.h"
#include "platform/values/class_registry.h"
#include "raster/register_raster_classes.h"
#include "shapes/register_shape_classes.h"
#include "text/register_text_classes.h"

namespace paintdoc {

void RegisterDocumentClasses() { RegisterClass<PaintManager>(); }

void RegisterAllClasses() {
  static std::once_flag once;
  std::call_once(once, [] {
    // Module order: a superclass is registered before its subclasses.
    RegisterDrawClasses();
    RegisterShapeClasses();
    RegisterTextClasses();
    RegisterRasterClasses();
    RegisterDocumentClasses();
  });
}

}  // namespace paintdoc
