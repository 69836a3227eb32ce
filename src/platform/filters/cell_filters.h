// The filters that paint the image as cells of one colour each: squares,
// crystals and dots. Cells are laid on a grid anchored at `inputCenter`
// (pixels, origin at the lower left, y up); each cell takes the colour of the
// input pixel at its sample point, read through the edge rule. Crystals and
// dots sit on a grid whose points are moved by a hash of their cell, so the
// same input gives the same picture every time. Each answers a new bitmap of
// the input's size (null without memory); inputs are sanitized by their keys.
#pragma once

#include <memory>

#include "platform/filters/filter_inputs.h"
#include "platform/values/bitmap.h"
#include "platform/values/geometry.h"

namespace paintdoc {

inline constexpr FilterInputKey kPixellateScale{"inputScale", 8, 1, 100000};
inline constexpr FilterInputKey kCrystallizeRadius{"inputRadius", 20, 1, 10000};
inline constexpr FilterInputKey kPointillizeRadius{"inputRadius", 20, 1, 10000};
inline constexpr Point kDefaultCellCenter{150, 150};

// Squares of side `inputScale`; a pixel at p takes the colour at the centre
// of its square: centre + (⌊(p − centre)/scale⌋ + ½)·scale.
std::shared_ptr<Bitmap> CIPixellate(const Bitmap& input, double inputScale = kPixellateScale.defaultValue,
                                    Point inputCenter = kDefaultCellCenter,
                                    FilterEdges edges = FilterEdges::Transparent);

// Voronoi cells around one seed a square of side `inputRadius`, the seed at a
// hashed place inside its square; a cell takes the colour at its seed.
std::shared_ptr<Bitmap> CICrystallize(const Bitmap& input,
                                      double inputRadius = kCrystallizeRadius.defaultValue,
                                      Point inputCenter = kDefaultCellCenter,
                                      FilterEdges edges = FilterEdges::Transparent);

// Round dots of radius `inputRadius`, one a square of side
// kPointillizeSpacing × radius, each centred at a hashed place inside its
// square and coloured as the input at its centre. Where dots overlap the
// nearest centre wins; between dots the result is transparent, so what lies
// beneath shows through.
inline constexpr double kPointillizeSpacing = 1.5;
std::shared_ptr<Bitmap> CIPointillize(const Bitmap& input,
                                      double inputRadius = kPointillizeRadius.defaultValue,
                                      Point inputCenter = kDefaultCellCenter,
                                      FilterEdges edges = FilterEdges::Transparent);

// Where the jittered grid of `spacing` anchored at `center` puts the seed of
// cell (i, j): center + (i + u, j + v)·spacing with u, v in [0, 1) hashed
// from i and j.
Point JitteredSeed(long i, long j, double spacing, Point center);

}  // namespace paintdoc
