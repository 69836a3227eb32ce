// The filters that read a neighbourhood: blur, sharpening and edge finding.
// They work on the stored, premultiplied values; pixels beyond the edges are
// transparent or, for an input clamped at its edges, the nearest edge pixel.
// Each answers a new bitmap of the input's size (null without memory);
// inputs are sanitized by their keys.
#pragma once

#include <memory>

#include "platform/filters/filter_inputs.h"
#include "platform/values/bitmap.h"

namespace paintdoc {

// The radius is capped so that the blur's reach (and its line buffers) stay
// bounded; far below the cap a clamped blur is already flat.
inline constexpr FilterInputKey kGaussianBlurRadius{"inputRadius", 10, 0, 1000};
inline constexpr FilterInputKey kSharpenLuminanceSharpness{"inputSharpness", 0.4, 0, 100};
inline constexpr FilterInputKey kSharpenLuminanceRadius{"inputRadius", 1.69, 0, 20};
inline constexpr FilterInputKey kEdgesIntensity{"inputIntensity", 1, 0, 1000};
inline constexpr FilterInputKey kEdgeWorkRadius{"inputRadius", 3, 0, 20};

// A Gaussian of standard deviation `inputRadius` pixels on every channel.
std::shared_ptr<Bitmap> CIGaussianBlur(const Bitmap& input,
                                       double inputRadius = kGaussianBlurRadius.defaultValue,
                                       FilterEdges edges = FilterEdges::Transparent);

// Sharpens the luma only: with Y the Rec. 709 luma (0.2126, 0.7152, 0.0722)
// and B its Gaussian blur of deviation `inputRadius`, sharpness·(Y − B) is
// added to red, green and blue alike, so the chroma stays. Results are
// clamped to [0, alpha].
std::shared_ptr<Bitmap> CISharpenLuminance(
    const Bitmap& input, double inputSharpness = kSharpenLuminanceSharpness.defaultValue,
    double inputRadius = kSharpenLuminanceRadius.defaultValue,
    FilterEdges edges = FilterEdges::Transparent);

// Coloured edges on black: each colour channel becomes its Sobel gradient
// magnitude (divided by 4, so that a full step reads 1) times the intensity,
// capped at the pixel's alpha, which is kept.
std::shared_ptr<Bitmap> CIEdges(const Bitmap& input, double inputIntensity = kEdgesIntensity.defaultValue,
                                FilterEdges edges = FilterEdges::Transparent);

// A black-and-white woodcut: the luma blurred at σ = radius minus the luma
// blurred at σ = 2·radius + 1 (a difference of Gaussians); where it is below
// −kEdgeWorkThreshold (the dark side of an edge) the pixel is black, else
// white, at the pixel's alpha.
inline constexpr float kEdgeWorkThreshold = 0.01f;
std::shared_ptr<Bitmap> CIEdgeWork(const Bitmap& input, double inputRadius = kEdgeWorkRadius.defaultValue,
                                   FilterEdges edges = FilterEdges::Transparent);

}  // namespace paintdoc
