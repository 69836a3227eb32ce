// The colour filters by name, each checked against its formula on straight
// colour at several alphas, and the black-and-white conversion.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <string>

#include "platform/filters/image_with_filter.h"
#include "support/golden_image.h"

namespace paintdoc {
namespace {

using Rgb = std::array<double, 3>;

// Straight colours and alphas across the range, one a pixel of an 8 × 3
// bitmap (row y = alpha level).
constexpr std::array<Rgb, 8> kColors{{{0, 0, 0},
                                      {1, 1, 1},
                                      {1, 0, 0},
                                      {0.2, 0.6, 0.9},
                                      {0.5, 0.5, 0.5},
                                      {0.9, 0.8, 0.1},
                                      {0.05, 0.3, 0.15},
                                      {0.7, 0.25, 0.55}}};
constexpr std::array<double, 3> kAlphas{1.0, 0.6, 0.0};

std::shared_ptr<Bitmap> Swatches() {
  return test::MakeImage(8, 3, [](int x, int y) {
    const Rgb& c = kColors[static_cast<size_t>(x)];
    return test::Premultiplied(c[0], c[1], c[2], kAlphas[static_cast<size_t>(y)]);
  });
}

// The expected result: the stored straight colour (as the bytes hold it)
// mapped by `formula`, clamped, premultiplied again with the same alpha.
std::shared_ptr<Bitmap> Expected(const Bitmap& input, const std::function<Rgb(Rgb)>& formula) {
  return test::MakeImage(input.pixelsWide(), input.pixelsHigh(), [&](int x, int y) {
    Rgba8 p = test::PixelAt(input, x, y);
    if (p.alpha == 0) return Rgba8{};
    Rgb out = formula({p.red / double(p.alpha), p.green / double(p.alpha), p.blue / double(p.alpha)});
    for (double& v : out) v = std::clamp(v, 0.0, 1.0);
    return Rgba8{test::ToByte(out[0] * p.alpha / 255), test::ToByte(out[1] * p.alpha / 255),
                 test::ToByte(out[2] * p.alpha / 255), p.alpha};
  });
}

Rgb Each(Rgb c, const std::function<double(double)>& f) { return {f(c[0]), f(c[1]), f(c[2])}; }

Rgb Times(const double (&m)[3][3], Rgb c) {
  Rgb out{};
  for (int i = 0; i < 3; ++i) out[i] = m[i][0] * c[0] + m[i][1] * c[1] + m[i][2] * c[2];
  return out;
}

Rgb SepiaOf(Rgb c, double intensity) {
  const double m[3][3] = {{0.3588, 0.7044, 0.1368}, {0.2990, 0.5870, 0.1140}, {0.2392, 0.4696, 0.0912}};
  Rgb toned = Times(m, c);
  return {c[0] + (toned[0] - c[0]) * intensity, c[1] + (toned[1] - c[1]) * intensity,
          c[2] + (toned[2] - c[2]) * intensity};
}

Rgb ColorControlsOf(Rgb c, double saturation, double brightness, double contrast) {
  const double grey = 0.2125 * c[0] + 0.7154 * c[1] + 0.0721 * c[2];
  return Each(c, [&](double v) { return ((grey + (v - grey) * saturation) + brightness - 0.5) * contrast + 0.5; });
}

// Rotation about the grey axis: red goes to green after a third of a turn.
Rgb HueOf(Rgb c, double angle) {
  const double k = 1 / std::sqrt(3.0), cs = std::cos(angle), sn = std::sin(angle);
  // Rodrigues: v cos + (k × v) sin + k (k·v)(1 − cos).
  const Rgb axis{k, k, k};
  const Rgb cross{axis[1] * c[2] - axis[2] * c[1], axis[2] * c[0] - axis[0] * c[2], axis[0] * c[1] - axis[1] * c[0]};
  const double dot = k * (c[0] + c[1] + c[2]);
  return {c[0] * cs + cross[0] * sn + k * dot * (1 - cs), c[1] * cs + cross[1] * sn + k * dot * (1 - cs),
          c[2] * cs + cross[2] * sn + k * dot * (1 - cs)};
}

Rgb HighlightShadowOf(Rgb c, double highlight, double shadow) {
  const double l = 0.3 * (c[0] + c[1] + c[2]);
  if (l <= 0) return c;
  const double ps = 1 / (shadow + 1), ph = 1 / (2 - highlight);
  const double lift = std::clamp(std::pow(l, ps) - 0.76 * std::pow(l, 2 * ps) - l, 0.0, 1.0);
  const double drop = std::clamp(1 - (std::pow(1 - l, ph) - 0.8 * std::pow(1 - l, 2 * ph)) - l, -1.0, 0.0);
  const double gain = (l + lift + drop) / l;
  return Each(c, [&](double v) { return v * gain; });
}

struct ColorCase {
  std::string label;
  std::string filter;
  FilterSettings settings;
  std::function<Rgb(Rgb)> formula;
};

TEST(ColorFilters, FollowTheirFormulasOnStraightColorAndKeepAlpha) {
  const std::vector<ColorCase> cases{
      {"invert", "CIColorInvert", {}, [](Rgb c) { return Each(c, [](double v) { return 1 - v; }); }},
      {"exposure_up", "CIExposureAdjust", {{"inputEV", 1}}, [](Rgb c) { return Each(c, [](double v) { return v * 2; }); }},
      {"exposure_down", "CIExposureAdjust", {{"inputEV", -1.5}},
       [](Rgb c) { return Each(c, [](double v) { return v * std::exp2(-1.5); }); }},
      {"gamma", "CIGammaAdjust", {{"inputPower", 2.2}}, [](Rgb c) { return Each(c, [](double v) { return std::pow(v, 2.2); }); }},
      {"controls", "CIColorControls", {{"inputSaturation", 0.5}, {"inputBrightness", 0.1}, {"inputContrast", 1.5}},
       [](Rgb c) { return ColorControlsOf(c, 0.5, 0.1, 1.5); }},
      {"controls_oversaturated", "CIColorControls", {{"inputSaturation", 3}},
       [](Rgb c) { return ColorControlsOf(c, 3, 0, 1); }},
      {"hue_third", "CIHueAdjust", {{"inputAngle", 2 * std::numbers::pi / 3}},
       [](Rgb c) { return HueOf(c, 2 * std::numbers::pi / 3); }},
      {"hue_negative", "CIHueAdjust", {{"inputAngle", -1}}, [](Rgb c) { return HueOf(c, -1); }},
      {"sepia_default", "CISepiaTone", {}, [](Rgb c) { return SepiaOf(c, 1); }},
      {"sepia_extrapolated", "CISepiaTone", {{"inputIntensity", -2}}, [](Rgb c) { return SepiaOf(c, -2); }},
      {"highlight_shadow", "CIHighlightShadowAdjust", {{"inputShadowAmount", 0.6}, {"inputHighlightAmount", 0.3}},
       [](Rgb c) { return HighlightShadowOf(c, 0.3, 0.6); }},
      {"highlight_shadow_identity", "CIHighlightShadowAdjust", {}, [](Rgb c) { return c; }},
  };
  auto input = Swatches();
  for (const ColorCase& c : cases) {
    SCOPED_TRACE(c.label);
    auto output = ImageWithFilter(input, c.filter, false, &c.settings);
    ASSERT_TRUE(output);
    EXPECT_TRUE(test::ImagesMatch(*output, *Expected(*input, c.formula), 1, "color_filter_" + c.label));
  }
}

// A full turn of the hue, or settings equal to the defaults, change nothing.
TEST(ColorFilters, IdentitySettingsKeepThePixels) {
  const std::vector<std::pair<std::string, FilterSettings>> identities{
      {"CIHueAdjust", {{"inputAngle", 2 * std::numbers::pi}}},
      {"CIExposureAdjust", {}},
      {"CIGammaAdjust", {}},
      {"CIColorControls", {}},
      {"CISepiaTone", {{"inputIntensity", 0}}},
  };
  auto input = Swatches();
  for (const auto& [name, settings] : identities) {
    SCOPED_TRACE(name);
    auto output = ImageWithFilter(input, name, false, &settings);
    ASSERT_TRUE(output);
    EXPECT_TRUE(test::ImagesMatch(*output, *input, 1, "identity_" + name));
  }
}

TEST(ColorFilters, BlackAndWhiteWeighsThePremultipliedBytes) {
  struct Case {
    Rgba8 in;
    uint8_t grey;
  };
  const std::vector<Case> cases{{{255, 0, 0, 255}, 76},
                                {{0, 255, 0, 255}, 149},
                                {{0, 0, 255, 255}, 29},
                                {{255, 255, 255, 255}, 255},
                                {{100, 50, 20, 128}, (100 * 19595 + 50 * 38469 + 20 * 7472) >> 16},
                                {{0, 0, 0, 0}, 0}};
  auto input = test::MakeImage(static_cast<int>(cases.size()), 1,
                               [&](int x, int) { return cases[static_cast<size_t>(x)].in; });
  auto output = ImageToBlackAndWhite(input);
  ASSERT_TRUE(output);
  for (size_t i = 0; i < cases.size(); ++i) {
    const uint8_t g = cases[i].grey;
    EXPECT_EQ(test::PixelAt(*output, static_cast<int>(i), 0), (Rgba8{g, g, g, cases[i].in.alpha})) << i;
  }
}

}  // namespace
}  // namespace paintdoc
