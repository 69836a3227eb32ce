// The platform's compositing operations and blend modes, in the platform's
// numbering (archives and model code use these numbers), and image
// interpolation qualities.
#pragma once

#include <optional>

namespace paintdoc {

// NSCompositingOperation. Highlight draws as SourceOver.
enum class CompositingOperation : int {
  Clear = 0,
  Copy = 1,
  SourceOver = 2,
  SourceIn = 3,
  SourceOut = 4,
  SourceAtop = 5,
  DestinationOver = 6,
  DestinationIn = 7,
  DestinationOut = 8,
  DestinationAtop = 9,
  XOR = 10,
  PlusDarker = 11,
  Highlight = 12,
  PlusLighter = 13,
  Multiply = 14,
  Screen = 15,
  Overlay = 16,
  Darken = 17,
  Lighten = 18,
  ColorDodge = 19,
  ColorBurn = 20,
  SoftLight = 21,
  HardLight = 22,
  Difference = 23,
  Exclusion = 24,
  Hue = 25,
  Saturation = 26,
  Color = 27,
  Luminosity = 28,
};

// CGBlendMode. Setting a blend mode sets the equivalent compositing operation.
enum class BlendMode : int {
  Normal = 0,
  Multiply = 1,
  Screen = 2,
  Overlay = 3,
  Darken = 4,
  Lighten = 5,
  ColorDodge = 6,
  ColorBurn = 7,
  SoftLight = 8,
  HardLight = 9,
  Difference = 10,
  Exclusion = 11,
  Hue = 12,
  Saturation = 13,
  Color = 14,
  Luminosity = 15,
  Clear = 16,
  Copy = 17,
  SourceIn = 18,
  SourceOut = 19,
  SourceAtop = 20,
  DestinationOver = 21,
  DestinationIn = 22,
  DestinationOut = 23,
  DestinationAtop = 24,
  XOR = 25,
  PlusDarker = 26,
  PlusLighter = 27,
};

// NSImageInterpolation / CGInterpolationQuality.
enum class ImageInterpolation : int { Default = 0, None = 1, Low = 2, High = 3, Medium = 4 };

CompositingOperation CompositingOperationForBlendMode(BlendMode mode);
BlendMode BlendModeForCompositingOperation(CompositingOperation operation);

// The operation of a stored number, or none when the number names no operation.
std::optional<CompositingOperation> CompositingOperationFromInt(int value);
std::optional<BlendMode> BlendModeFromInt(int value);

}  // namespace paintdoc
