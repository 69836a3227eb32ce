#include "draws/register_draw_classes.h"

#include "draws/draw_base.h"
#include "draws/draw_group.h"
#include "draws/draw_lines.h"
#include "draws/draw_rectangle.h"
#include "platform/values/class_registry.h"

namespace paintdoc {

void RegisterDrawClasses() {
  RegisterClass<DrawBase>();

  RegisterClass<DrawRectangle>();
  RegisterClass<DrawEllipse>();
  RegisterClass<DrawRoundRectangle>();
  RegisterClass<DrawGradient>();

  RegisterClass<DrawLine>();
  RegisterClass<DrawCurve>();
  RegisterClass<DrawBrokenLine>();
  RegisterClass<DrawFreePolygon>();

  RegisterClass<DrawGroup>();
}

}  // namespace paintdoc
