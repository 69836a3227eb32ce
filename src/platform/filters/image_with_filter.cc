#include "platform/filters/image_with_filter.h"

#include <algorithm>
#include <array>

#include "platform/filters/cell_filters.h"
#include "platform/filters/color_filters.h"
#include "platform/filters/convolution_filters.h"
#include "platform/filters/filter_pixels.h"

namespace paintdoc {
namespace {

using Edges = FilterEdges;
using Settings = const FilterSettings*;

constexpr std::array<FilterInputKey, 0> kNoKeys{};
constexpr std::array kGaussianBlurKeys{kGaussianBlurRadius};
constexpr std::array kSharpenLuminanceKeys{kSharpenLuminanceSharpness, kSharpenLuminanceRadius};
constexpr std::array kColorControlsKeys{kColorControlsSaturation, kColorControlsBrightness,
                                        kColorControlsContrast};
constexpr std::array kExposureAdjustKeys{kExposureAdjustEV};
constexpr std::array kHighlightShadowKeys{kHighlightShadowHighlight, kHighlightShadowShadow,
                                          kHighlightShadowRadius};
constexpr std::array kSepiaToneKeys{kSepiaToneIntensity};
constexpr std::array kHueAdjustKeys{kHueAdjustAngle};
constexpr std::array kGammaAdjustKeys{kGammaAdjustPower};
constexpr std::array kCrystallizeKeys{kCrystallizeRadius};
constexpr std::array kEdgesKeys{kEdgesIntensity};
constexpr std::array kEdgeWorkKeys{kEdgeWorkRadius};
constexpr std::array kPixellateKeys{kPixellateScale};
constexpr std::array kPointillizeKeys{kPointillizeRadius};

// The colour filters read no neighbours, so the edge rule does not concern them.
const std::array kNamedFilters{
    NamedFilter{"CIGaussianBlur", kGaussianBlurKeys,
                [](const Bitmap& in, Settings s, Edges e) {
                  return CIGaussianBlur(in, kGaussianBlurRadius.valueIn(s), e);
                }},
    NamedFilter{"CISharpenLuminance", kSharpenLuminanceKeys,
                [](const Bitmap& in, Settings s, Edges e) {
                  return CISharpenLuminance(in, kSharpenLuminanceSharpness.valueIn(s),
                                            kSharpenLuminanceRadius.valueIn(s), e);
                }},
    NamedFilter{"CIColorControls", kColorControlsKeys,
                [](const Bitmap& in, Settings s, Edges) {
                  return CIColorControls(in, kColorControlsSaturation.valueIn(s),
                                         kColorControlsBrightness.valueIn(s),
                                         kColorControlsContrast.valueIn(s));
                }},
    NamedFilter{"CIExposureAdjust", kExposureAdjustKeys,
                [](const Bitmap& in, Settings s, Edges) {
                  return CIExposureAdjust(in, kExposureAdjustEV.valueIn(s));
                }},
    NamedFilter{"CIHighlightShadowAdjust", kHighlightShadowKeys,
                [](const Bitmap& in, Settings s, Edges) {
                  return CIHighlightShadowAdjust(in, kHighlightShadowHighlight.valueIn(s),
                                                 kHighlightShadowShadow.valueIn(s),
                                                 kHighlightShadowRadius.valueIn(s));
                }},
    NamedFilter{"CISepiaTone", kSepiaToneKeys,
                [](const Bitmap& in, Settings s, Edges) {
                  return CISepiaTone(in, kSepiaToneIntensity.valueIn(s));
                }},
    NamedFilter{"CIHueAdjust", kHueAdjustKeys,
                [](const Bitmap& in, Settings s, Edges) { return CIHueAdjust(in, kHueAdjustAngle.valueIn(s)); }},
    NamedFilter{"CIGammaAdjust", kGammaAdjustKeys,
                [](const Bitmap& in, Settings s, Edges) {
                  return CIGammaAdjust(in, kGammaAdjustPower.valueIn(s));
                }},
    NamedFilter{"CICrystallize", kCrystallizeKeys,
                [](const Bitmap& in, Settings s, Edges e) {
                  return CICrystallize(in, kCrystallizeRadius.valueIn(s), kDefaultCellCenter, e);
                }},
    NamedFilter{"CIEdges", kEdgesKeys,
                [](const Bitmap& in, Settings s, Edges e) { return CIEdges(in, kEdgesIntensity.valueIn(s), e); }},
    NamedFilter{"CIEdgeWork", kEdgeWorkKeys,
                [](const Bitmap& in, Settings s, Edges e) { return CIEdgeWork(in, kEdgeWorkRadius.valueIn(s), e); }},
    NamedFilter{"CIPixellate", kPixellateKeys,
                [](const Bitmap& in, Settings s, Edges e) {
                  return CIPixellate(in, kPixellateScale.valueIn(s), kDefaultCellCenter, e);
                }},
    NamedFilter{"CIPointillize", kPointillizeKeys,
                [](const Bitmap& in, Settings s, Edges e) {
                  return CIPointillize(in, kPointillizeRadius.valueIn(s), kDefaultCellCenter, e);
                }},
    NamedFilter{"CIColorInvert", kNoKeys, [](const Bitmap& in, Settings, Edges) { return CIColorInvert(in); }},
    NamedFilter{"CIAffineClamp", kNoKeys, [](const Bitmap& in, Settings, Edges) { return CIAffineClamp(in); }},
};

}  // namespace

std::span<const NamedFilter> NamedFilters() { return kNamedFilters; }

const NamedFilter* FindNamedFilter(std::string_view name) {
  auto found = std::find_if(kNamedFilters.begin(), kNamedFilters.end(),
                            [&](const NamedFilter& filter) { return filter.name == name; });
  return found == kNamedFilters.end() ? nullptr : &*found;
}

std::shared_ptr<Bitmap> ImageWithFilter(const std::shared_ptr<Bitmap>& bitmap, std::string_view name,
                                        bool clampEdges, const FilterSettings* settings) {
  if (!bitmap) return nullptr;
  const NamedFilter* filter = FindNamedFilter(name);
  if (filter == nullptr) return bitmap;
  return filter->apply(*bitmap, settings, clampEdges ? FilterEdges::Clamp : FilterEdges::Transparent);
}

std::shared_ptr<Bitmap> ImageInvertedColors(const std::shared_ptr<Bitmap>& bitmap) {
  return ImageWithFilter(bitmap, "CIColorInvert", false, nullptr);
}

std::shared_ptr<Bitmap> ImageBlured(const std::shared_ptr<Bitmap>& bitmap, float radius) {
  if (!bitmap || !(radius > 0)) return nullptr;
  const FilterSettings settings{{std::string(kGaussianBlurRadius.name), radius}};
  return ImageWithFilter(bitmap, "CIGaussianBlur", true, &settings);
}

std::shared_ptr<Bitmap> ImageToBlackAndWhite(const std::shared_ptr<Bitmap>& bitmap) {
  if (!bitmap) return nullptr;
  auto output = bitmap->copy();
  if (!output) return nullptr;
  const int width = output->pixelsWide();
  filter_pixels::ForEachRow(output->pixelsHigh(), static_cast<long>(width) * output->pixelsHigh(), [&](int row) {
    uint8_t* pixel = output->rowAt(row);
    for (int x = 0; x < width; ++x, pixel += Bitmap::kBytesPerPixel) {
      const unsigned grey = pixel[Bitmap::kAlpha] == 0
                                ? 0
                                : (pixel[Bitmap::kRed] * 19595u + pixel[Bitmap::kGreen] * 38469u +
                                   pixel[Bitmap::kBlue] * 7472u) >> 16;
      pixel[Bitmap::kRed] = pixel[Bitmap::kGreen] = pixel[Bitmap::kBlue] = static_cast<uint8_t>(grey);
    }
  });
  return output;
}

std::shared_ptr<Bitmap> CIAffineClamp(const Bitmap& input) { return input.copy(); }

}  // namespace paintdoc
