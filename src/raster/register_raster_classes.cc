#include "raster/register_raster_classes.h"

#include "raster/draw_filter.h"
#include "raster/draw_image.h"
#include "raster/draw_raster.h"
#include "raster/draw_selections.h"
#include "platform/values/class_registry.h"

namespace paintdoc {

void RegisterRasterClasses() {
  RegisterClass<DrawImage>();
  RegisterClass<DrawFilter>();

  RegisterClass<DrawFill>();
  RegisterClass<DrawMagicSelection>();
  RegisterClass<DrawPen>();
  RegisterClass<DrawEraser>();
  RegisterClass<DrawClear>();
  RegisterClass<DrawAirbrush>();

  RegisterClass<DrawSelection>();
  RegisterClass<DrawCrop>();
  RegisterClass<DrawEllipseSelection>();
  RegisterClass<DrawLassoSelection>();
  RegisterClass<DrawPolygonSelection>();
}

}  // namespace paintdoc
