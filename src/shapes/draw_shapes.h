// The shape library in one include: the shape base, the parametric shapes,
// the pictograms and the speech bubbles.
#pragma once

#include "shapes/draw_ellipse_message.h"
#include "shapes/draw_rect_message.h"
#include "shapes/draw_rect_polygon.h"
#include "shapes/draw_rect_shape.h"
#include "shapes/draw_rect_star.h"
#include "shapes/fixed_outline_shapes.h"
