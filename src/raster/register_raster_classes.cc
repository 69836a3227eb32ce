#include "raster/register_raster_classes.h"

#include "raster/draw_filter.h"
#include "raster/draw_image.h"
#include "raster/draw_airbrush.h"
#include "raster/draw_clear.h"
#include "raster/draw_eraser.h"
#include "raster/draw_fill.h"
#include "raster/draw_magic_selection.h"
#include "raster/draw_pen.h"
#include "raster/image_mask.h"
#include "raster/draw_selections.h"
#include "platform/values/class_registry.h"

namespace paintdoc {

void RegisterRasterClasses() {
  RegisterClass<DrawImage>();
  RegisterClass<DrawFilter>();

  RegisterClass<ImageMask>();
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
