#include "draws/register_draw_classes.h"

#include "draws/draw_base.h"
#include "draws/draw_group.h"
#include "draws/draw_image.h"
#include "draws/draw_lines.h"
#include "draws/draw_raster.h"
#include "draws/draw_rectangle.h"
#include "draws/draw_selections.h"
#include "draws/draw_shapes.h"
#include "draws/draw_text.h"
#include "platform/class_registry.h"

namespace paintdoc {

namespace {

// A decoded draw starts from the zero state; its archive supplies the rest.
template <class T>
void Register(const char* superclass) {
  ClassRegistry::shared().registerClass(
      {T().className(), superclass, [] { return std::make_shared<T>(); }});
}

}  // namespace

void RegisterDrawClasses() {
  Register<DrawBase>("NSObject");

  Register<DrawRectangle>("DrawBase");
  Register<DrawEllipse>("DrawRectangle");
  Register<DrawRoundRectangle>("DrawRectangle");
  Register<DrawGradient>("DrawRectangle");

  Register<DrawLine>("DrawBase");
  Register<DrawCurve>("DrawBase");
  Register<DrawBrokenLine>("DrawBase");
  Register<DrawFreePolygon>("DrawBase");

  Register<DrawGroup>("DrawBase");

  Register<DrawRectShape>("DrawRectangle");
  Register<DrawRectPolygon>("DrawRectShape");
  Register<DrawRectStar>("DrawRectShape");
  Register<DrawRectHeart>("DrawRectShape");
  Register<DrawRectWaterDrip>("DrawRectShape");
  Register<DrawRectLocation>("DrawRectShape");
  Register<DrawRectBookmark>("DrawRectShape");
  Register<DrawRectCloud>("DrawRectShape");
  Register<DrawRectLightning>("DrawRectShape");
  Register<DrawRectPerson>("DrawRectShape");
  Register<DrawRectMail>("DrawRectShape");
  Register<DrawRectiMac>("DrawRectShape");
  Register<DrawRectAppleLogo>("DrawRectShape");
  Register<DrawRectButterfly>("DrawRectShape");
  Register<DrawRectCamera>("DrawRectShape");
  Register<DrawRectEye>("DrawRectShape");
  Register<DrawRectHome>("DrawRectShape");
  Register<DrawRectRefresh>("DrawRectShape");
  Register<DrawRectFolder>("DrawRectShape");
  Register<DrawRectPicture>("DrawRectShape");
  Register<DrawRectClock>("DrawRectShape");
  Register<DrawRectSignal>("DrawRectShape");
  Register<DrawRectMessage>("DrawRectShape");
  Register<DrawEllipseMessage>("DrawRectShape");

  Register<DrawText>("DrawRectangle");
  Register<DrawBezierText>("DrawText");

  Register<DrawImage>("DrawRectangle");
  Register<DrawFilter>("DrawImage");

  Register<DrawFill>("DrawBase");
  Register<DrawMagicSelection>("DrawBase");
  Register<DrawPen>("DrawBase");
  Register<DrawEraser>("DrawPen");
  Register<DrawClear>("DrawBase");
  Register<DrawAirbrush>("DrawBase");

  Register<DrawSelection>("DrawRectangle");
  Register<DrawCrop>("DrawSelection");
  Register<DrawEllipseSelection>("DrawEllipse");
  Register<DrawLassoSelection>("DrawBase");
  Register<DrawPolygonSelection>("DrawFreePolygon");
}

}  // namespace paintdoc
