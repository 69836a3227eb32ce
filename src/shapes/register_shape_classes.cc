#include "shapes/register_shape_classes.h"

#include "shapes/draw_shapes.h"
#include "platform/values/class_registry.h"

namespace paintdoc {

void RegisterShapeClasses() {
  RegisterClass<DrawRectShape>();
  RegisterClass<DrawRectPolygon>();
  RegisterClass<DrawRectStar>();
  RegisterClass<DrawRectHeart>();
  RegisterClass<DrawRectWaterDrip>();
  RegisterClass<DrawRectLocation>();
  RegisterClass<DrawRectBookmark>();
  RegisterClass<DrawRectCloud>();
  RegisterClass<DrawRectLightning>();
  RegisterClass<DrawRectPerson>();
  RegisterClass<DrawRectMail>();
  RegisterClass<DrawRectiMac>();
  RegisterClass<DrawRectAppleLogo>();
  RegisterClass<DrawRectButterfly>();
  RegisterClass<DrawRectCamera>();
  RegisterClass<DrawRectEye>();
  RegisterClass<DrawRectHome>();
  RegisterClass<DrawRectRefresh>();
  RegisterClass<DrawRectFolder>();
  RegisterClass<DrawRectPicture>();
  RegisterClass<DrawRectClock>();
  RegisterClass<DrawRectSignal>();

  RegisterClass<DrawRectMessage>();
  RegisterClass<DrawEllipseMessage>();
}

}  // namespace paintdoc
