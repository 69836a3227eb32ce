// The colour filters. Each works on straight (unpremultiplied) colour in
// [0, 1], clamps the result to [0, 1] and keeps every pixel's alpha; each
// answers a new bitmap of the input's size (null without memory). Inputs are
// sanitized by their keys: out of range clamped, not a number → default.
#pragma once

#include <memory>

#include "platform/filters/filter_inputs.h"
#include "platform/values/bitmap.h"

namespace paintdoc {

inline constexpr FilterInputKey kColorControlsSaturation{"inputSaturation", 1, 0, 10};
inline constexpr FilterInputKey kColorControlsBrightness{"inputBrightness", 0, -1, 1};
inline constexpr FilterInputKey kColorControlsContrast{"inputContrast", 1, 0, 4};
inline constexpr FilterInputKey kExposureAdjustEV{"inputEV", 0, -10, 10};
inline constexpr FilterInputKey kGammaAdjustPower{"inputPower", 1, 0, 10};
inline constexpr FilterInputKey kHueAdjustAngle{"inputAngle", 0, -1e6, 1e6};
inline constexpr FilterInputKey kSepiaToneIntensity{"inputIntensity", 1, -10, 10};
inline constexpr FilterInputKey kHighlightShadowHighlight{"inputHighlightAmount", 1, 0, 1};
inline constexpr FilterInputKey kHighlightShadowShadow{"inputShadowAmount", 0, -1, 1};
inline constexpr FilterInputKey kHighlightShadowRadius{"inputRadius", 0, 0, 20};

// rgb' = 1 − rgb.
std::shared_ptr<Bitmap> CIColorInvert(const Bitmap& input);

// In this order: saturation, lerp(luma, rgb, s) with Rec. 709 luma
// (0.2125, 0.7154, 0.0721); brightness, rgb + b; contrast, (rgb − ½)·c + ½.
std::shared_ptr<Bitmap> CIColorControls(const Bitmap& input,
                                        double inputSaturation = kColorControlsSaturation.defaultValue,
                                        double inputBrightness = kColorControlsBrightness.defaultValue,
                                        double inputContrast = kColorControlsContrast.defaultValue);

// rgb' = rgb · 2^EV.
std::shared_ptr<Bitmap> CIExposureAdjust(const Bitmap& input,
                                         double inputEV = kExposureAdjustEV.defaultValue);

// rgb' = rgb^power, each channel.
std::shared_ptr<Bitmap> CIGammaAdjust(const Bitmap& input,
                                      double inputPower = kGammaAdjustPower.defaultValue);

// The colour turned about the grey axis (1, 1, 1)/√3 by the angle in
// radians: greys stay, red turns toward green at positive angles.
std::shared_ptr<Bitmap> CIHueAdjust(const Bitmap& input, double inputAngle = kHueAdjustAngle.defaultValue);

// lerp(rgb, sepia(rgb), intensity): intensities outside [0, 1] extrapolate.
std::shared_ptr<Bitmap> CISepiaTone(const Bitmap& input,
                                    double inputIntensity = kSepiaToneIntensity.defaultValue);

// Lifts shadows and pulls down highlights by a tone curve on the luma
// l = 0.3·(r + g + b), with the local luma averaged over `inputRadius`
// pixels when it is above 0. Identity at the defaults.
std::shared_ptr<Bitmap> CIHighlightShadowAdjust(
    const Bitmap& input, double inputHighlightAmount = kHighlightShadowHighlight.defaultValue,
    double inputShadowAmount = kHighlightShadowShadow.defaultValue,
    double inputRadius = kHighlightShadowRadius.defaultValue);

}  // namespace paintdoc
