#include "platform/filters/color_filters.h"

#include <cmath>
#include <numbers>

#include "platform/filters/filter_pixels.h"

namespace paintdoc {
namespace {

using filter_pixels::MapStraightColors;
using filter_pixels::Straight;

// rgb' = matrix · rgb, rows of three.
struct ColorMatrix {
  float m[3][3];
  void apply(Straight& c) const {
    const float r = c.red, g = c.green, b = c.blue;
    c.red = m[0][0] * r + m[0][1] * g + m[0][2] * b;
    c.green = m[1][0] * r + m[1][1] * g + m[1][2] * b;
    c.blue = m[2][0] * r + m[2][1] * g + m[2][2] * b;
  }
};

// Rotation about the unit grey axis k by `angle` (Rodrigues):
// cos·I + sin·[k]× + (1 − cos)·k kᵀ, with every entry of k kᵀ equal to ⅓.
ColorMatrix GreyAxisRotation(double angle) {
  const float c = static_cast<float>(std::cos(angle));
  const float s = static_cast<float>(std::sin(angle) / std::numbers::sqrt3);
  const float shared = (1 - c) / 3;
  return {{{c + shared, shared - s, shared + s},
           {shared + s, c + shared, shared - s},
           {shared - s, shared + s, c + shared}}};
}

// The usual sepia: luma (0.299, 0.587, 0.114) tinted by (1.2, 1.0, 0.8).
constexpr ColorMatrix kSepia{{{0.3588f, 0.7044f, 0.1368f},
                              {0.2990f, 0.5870f, 0.1140f},
                              {0.2392f, 0.4696f, 0.0912f}}};

float ShadowLift(float luma, float amount) {
  const float p = 1.0f / (amount + 1.0f);
  return std::clamp(std::pow(luma, p) - 0.76f * std::pow(luma, 2 * p) - luma, 0.0f, 1.0f);
}

float HighlightDrop(float luma, float amount) {
  const float p = 1.0f / (2.0f - amount);
  const float dark = 1.0f - luma;
  return std::clamp(1.0f - (std::pow(dark, p) - 0.8f * std::pow(dark, 2 * p)) - luma, -1.0f, 0.0f);
}

float HighlightShadowLuma(const Straight& c) { return 0.3f * (c.red + c.green + c.blue); }

}  // namespace

std::shared_ptr<Bitmap> CIColorInvert(const Bitmap& input) {
  return MapStraightColors(input, [](Straight& c) {
    c.red = 1 - c.red;
    c.green = 1 - c.green;
    c.blue = 1 - c.blue;
  });
}

std::shared_ptr<Bitmap> CIColorControls(const Bitmap& input, double inputSaturation,
                                        double inputBrightness, double inputContrast) {
  const float saturation = static_cast<float>(kColorControlsSaturation.sanitized(inputSaturation));
  const float brightness = static_cast<float>(kColorControlsBrightness.sanitized(inputBrightness));
  const float contrast = static_cast<float>(kColorControlsContrast.sanitized(inputContrast));
  auto adjust = [&](float value) { return (value + brightness - 0.5f) * contrast + 0.5f; };
  return MapStraightColors(input, [&](Straight& c) {
    const float grey = 0.2125f * c.red + 0.7154f * c.green + 0.0721f * c.blue;
    c.red = adjust(grey + (c.red - grey) * saturation);
    c.green = adjust(grey + (c.green - grey) * saturation);
    c.blue = adjust(grey + (c.blue - grey) * saturation);
  });
}

std::shared_ptr<Bitmap> CIExposureAdjust(const Bitmap& input, double inputEV) {
  const float factor = static_cast<float>(std::exp2(kExposureAdjustEV.sanitized(inputEV)));
  return MapStraightColors(input, [&](Straight& c) {
    c.red *= factor;
    c.green *= factor;
    c.blue *= factor;
  });
}

std::shared_ptr<Bitmap> CIGammaAdjust(const Bitmap& input, double inputPower) {
  // A power curve depends on one channel only: a table of the 256 possible
  // straight values (of the stored precision) is not exact for translucent
  // pixels, so the curve is computed per sample.
  const float power = static_cast<float>(kGammaAdjustPower.sanitized(inputPower));
  return MapStraightColors(input, [&](Straight& c) {
    c.red = std::pow(c.red, power);
    c.green = std::pow(c.green, power);
    c.blue = std::pow(c.blue, power);
  });
}

std::shared_ptr<Bitmap> CIHueAdjust(const Bitmap& input, double inputAngle) {
  const ColorMatrix rotation = GreyAxisRotation(kHueAdjustAngle.sanitized(inputAngle));
  return MapStraightColors(input, [&](Straight& c) { rotation.apply(c); });
}

std::shared_ptr<Bitmap> CISepiaTone(const Bitmap& input, double inputIntensity) {
  const float intensity = static_cast<float>(kSepiaToneIntensity.sanitized(inputIntensity));
  return MapStraightColors(input, [&](Straight& c) {
    Straight toned = c;
    kSepia.apply(toned);
    c.red += (toned.red - c.red) * intensity;
    c.green += (toned.green - c.green) * intensity;
    c.blue += (toned.blue - c.blue) * intensity;
  });
}

std::shared_ptr<Bitmap> CIHighlightShadowAdjust(const Bitmap& input, double inputHighlightAmount,
                                                double inputShadowAmount, double inputRadius) {
  const float highlight = static_cast<float>(kHighlightShadowHighlight.sanitized(inputHighlightAmount));
  const float shadow = static_cast<float>(kHighlightShadowShadow.sanitized(inputShadowAmount));
  const double radius = kHighlightShadowRadius.sanitized(inputRadius);
  // The tone curve reads the luma around each pixel: its own at radius 0,
  // else the average over the radius (local tone mapping).
  filter_pixels::Plane local{input.pixelsWide(), input.pixelsHigh(), {}};
  if (radius > 0) {
    local.values.resize(static_cast<size_t>(local.width) * local.height);
    for (int row = 0; row < local.height; ++row) {
      for (int x = 0; x < local.width; ++x) {
        local.at(x, row) = HighlightShadowLuma(filter_pixels::ReadStraight(
            input.rowAt(row) + static_cast<size_t>(x) * Bitmap::kBytesPerPixel));
      }
    }
    local = filter_pixels::BlurPlane(local, radius, FilterEdges::Clamp);
  }
  auto output = input.copy();
  if (!output) return nullptr;
  filter_pixels::ForEachRow(input.pixelsHigh(), static_cast<long>(local.width) * local.height, [&](int row) {
    const uint8_t* source = input.rowAt(row);
    uint8_t* pixel = output->rowAt(row);
    for (int x = 0; x < local.width; ++x, pixel += Bitmap::kBytesPerPixel, source += Bitmap::kBytesPerPixel) {
      if (source[Bitmap::kAlpha] == 0) continue;
      Straight c = filter_pixels::ReadStraight(source);
      const float own = HighlightShadowLuma(c);
      if (own <= 0) continue;  // black stays black
      const float around = radius > 0 ? local.at(x, row) : own;
      const float gain = (own + ShadowLift(around, shadow) + HighlightDrop(around, highlight)) / own;
      filter_pixels::WritePremultiplied(pixel, c.red * gain, c.green * gain, c.blue * gain,
                                        source[Bitmap::kAlpha]);
    }
  });
  return output;
}

}  // namespace paintdoc
