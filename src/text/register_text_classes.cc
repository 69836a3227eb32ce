#include "text/register_text_classes.h"

#include "text/draw_text.h"
#include "platform/values/class_registry.h"

namespace paintdoc {

void RegisterTextClasses() {
  RegisterClass<DrawText>();
  RegisterClass<DrawBezierText>();
}

}  // namespace paintdoc
