// The filters that read neighbours or paint cells, the dispatch by name and
// what every filter does with absurd settings.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <string>

#include "platform/filters/cell_filters.h"
#include "platform/filters/convolution_filters.h"
#include "platform/filters/image_with_filter.h"
#include "support/golden_image.h"
#include "support/pixel_math.h"

namespace paintdoc {
namespace {

// Every pixel differs from its neighbours, so sampling a wrong pixel shows.
std::shared_ptr<Bitmap> Ramp(int width, int height) {
  return test::MakeImage(width, height, [](int x, int y) {
    return Rgba8{static_cast<uint8_t>(x * 7 % 256), static_cast<uint8_t>(y * 11 % 256),
                 static_cast<uint8_t>((x + y) * 5 % 256), 255};
  });
}

std::shared_ptr<Bitmap> Uniform(int width, int height, Rgba8 color) {
  return test::MakeImage(width, height, [=](int, int) { return color; });
}

TEST(ImageWithFilter, UnknownNamesAnswerTheVeryBitmapAndUnknownKeysAreSkipped) {
  auto input = Ramp(6, 5);
  EXPECT_EQ(ImageWithFilter(input, "CIInvertColor", false, nullptr), input);
  EXPECT_EQ(ImageWithFilter(input, "", true, nullptr), input);
  EXPECT_EQ(ImageWithFilter(nullptr, "CIColorInvert", false, nullptr), nullptr);
  const FilterSettings foreign{{"inputSharpness", 5}, {"inputRadius", 3}};
  auto exposed = ImageWithFilter(input, "CIExposureAdjust", false, &foreign);
  ASSERT_TRUE(exposed);
  EXPECT_NE(exposed, input);
  EXPECT_TRUE(test::ImagesMatch(*exposed, *input, 0, "foreign_keys_skipped"));
}

// Each filter keeps the input's extent and answers within bounded time for
// settings that are not numbers, enormous or below every range.
TEST(ImageWithFilter, AbsurdSettingsGiveABitmapOfTheInputsSize) {
  auto input = Ramp(64, 48);
  const double absurd[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                           1e9, -1e9, 0};
  for (const NamedFilter& filter : NamedFilters()) {
    for (double value : absurd) {
      FilterSettings settings;
      for (const FilterInputKey& key : filter.inputKeys) settings[std::string(key.name)] = value;
      for (bool clamp : {false, true}) {
        SCOPED_TRACE(std::string(filter.name) + " = " + std::to_string(value));
        const auto start = std::chrono::steady_clock::now();
        auto output = ImageWithFilter(input, filter.name, clamp, &settings);
        ASSERT_TRUE(output);
        EXPECT_EQ(output->pixelsWide(), 64);
        EXPECT_EQ(output->pixelsHigh(), 48);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
      }
    }
  }
}

TEST(ImageWithFilter, SettingsAreSanitizedByTheirKeys) {
  auto input = Ramp(20, 10);
  struct Case {
    std::string filter, key;
    double given, meant;
  };
  const std::vector<Case> cases{
      {"CIExposureAdjust", "inputEV", std::nan(""), 0},
      {"CIExposureAdjust", "inputEV", 50, 10},
      {"CIPixellate", "inputScale", 0, 1},
      {"CIPixellate", "inputScale", -4, 1},
      {"CIGaussianBlur", "inputRadius", -3, 0},
      {"CIColorControls", "inputContrast", 9, 4},
      {"CISharpenLuminance", "inputSharpness", std::numeric_limits<double>::infinity(), 0.4},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.filter + " " + std::to_string(c.given));
    const FilterSettings given{{c.key, c.given}}, meant{{c.key, c.meant}};
    auto actual = ImageWithFilter(input, c.filter, false, &given);
    auto expected = ImageWithFilter(input, c.filter, false, &meant);
    ASSERT_TRUE(actual && expected);
    EXPECT_TRUE(actual->samePixels(*expected));
  }
}

TEST(ImageBlured, ClampsTheEdgesAndRefusesRadiiNotAboveZero) {
  auto uniform = Uniform(30, 20, {40, 80, 120, 200});
  auto blurred = ImageBlured(uniform, 5);
  ASSERT_TRUE(blurred);
  EXPECT_TRUE(test::ImagesMatch(*blurred, *uniform, 0, "blured_uniform"));
  EXPECT_EQ(ImageBlured(uniform, 0), nullptr);
  EXPECT_EQ(ImageBlured(uniform, -1), nullptr);
  EXPECT_EQ(ImageBlured(uniform, std::nanf("")), nullptr);
  // Without the clamp the same blur fades toward the corners.
  auto faded = CIGaussianBlur(*uniform, 5, FilterEdges::Transparent);
  EXPECT_NEAR(test::PixelAt(*faded, 0, 0).alpha, 200 * std::pow(test::NormalCdf(0.5 / 5), 2), 2);
}

// Pixellate: every pixel shows the pixel holding the centre of its square,
// centre + (⌊(p − centre)/scale⌋ + ½)·scale, with the square grid anchored at
// the centre (lower-left coordinates).
TEST(CellFilters, PixellateSamplesTheCentreOfEachSquare) {
  auto input = Ramp(23, 17);
  struct Case {
    double scale;
    Point center;
  };
  for (const Case& c : {Case{1, kDefaultCellCenter}, Case{4, kDefaultCellCenter}, Case{5, {2, 3}},
                        Case{3.5, {0, 0}}, Case{40, {10, 8}}}) {
    for (FilterEdges edges : {FilterEdges::Transparent, FilterEdges::Clamp}) {
      auto output = CIPixellate(*input, c.scale, c.center, edges);
      auto expected = test::MakeImage(23, 17, [&](int x, int y) {
        auto sample = [&](double p, double o) {
          return static_cast<int>(std::floor(o + (std::floor((p - o) / c.scale) + 0.5) * c.scale));
        };
        int sx = sample(x + 0.5, c.center.x), sy = sample(y + 0.5, c.center.y);
        if (sx < 0 || sx >= 23 || sy < 0 || sy >= 17) {
          if (edges == FilterEdges::Transparent) return Rgba8{};
          sx = std::clamp(sx, 0, 22);
          sy = std::clamp(sy, 0, 16);
        }
        return test::PixelAt(*input, sx, sy);
      });
      EXPECT_TRUE(test::ImagesMatch(*output, *expected, 0, "pixellate_" + std::to_string(c.scale)));
    }
  }
}

// The nearest seed of the jittered grid, found by trying every cell.
Point NearestSeed(double x, double y, double spacing, Point center, double* distance) {
  *distance = std::numeric_limits<double>::infinity();
  Point best{};
  for (long j = -30; j <= 30; ++j) {
    for (long i = -30; i <= 30; ++i) {
      Point seed = JitteredSeed(i, j, spacing, center);
      double d = (seed.x - x) * (seed.x - x) + (seed.y - y) * (seed.y - y);
      if (d < *distance) {
        *distance = d;
        best = seed;
      }
    }
  }
  return best;
}

TEST(CellFilters, CrystalsAndDotsTakeTheColourAtTheirNearestSeedAndRepeat) {
  auto input = Ramp(24, 18);
  struct Case {
    std::string filter;
    double radius;
  };
  for (const Case& c : {Case{"crystallize", 4}, Case{"crystallize", 9.5}, Case{"pointillize", 3},
                        Case{"pointillize", 6}}) {
    SCOPED_TRACE(c.filter + " " + std::to_string(c.radius));
    const bool dots = c.filter == "pointillize";
    auto run = [&] {
      return dots ? CIPointillize(*input, c.radius, {5, 7}, FilterEdges::Clamp)
                  : CICrystallize(*input, c.radius, {5, 7}, FilterEdges::Clamp);
    };
    auto output = run();
    const double spacing = dots ? kPointillizeSpacing * c.radius : c.radius;
    auto expected = test::MakeImage(24, 18, [&](int x, int y) {
      double distance = 0;
      Point seed = NearestSeed(x + 0.5, y + 0.5, spacing, {5, 7}, &distance);
      if (dots && distance > c.radius * c.radius) return Rgba8{};
      return test::PixelAt(*input, std::clamp(static_cast<int>(std::floor(seed.x)), 0, 23),
                           std::clamp(static_cast<int>(std::floor(seed.y)), 0, 17));
    });
    EXPECT_TRUE(test::ImagesMatch(*output, *expected, 0, "cells_" + c.filter));
    EXPECT_TRUE(run()->samePixels(*output));
  }
}

// Sobel magnitude / 4 × intensity on each premultiplied channel, across a
// vertical step from one colour to another; flat areas are black.
TEST(ConvolutionFilters, EdgesShowTheSobelMagnitudeOfEachChannel) {
  const Rgba8 left{20, 200, 40, 255}, right{220, 100, 40, 255};
  auto input = test::MakeImage(12, 6, [&](int x, int) { return x < 6 ? left : right; });
  for (double intensity : {0.25, 1.0, 3.0}) {
    auto output = CIEdges(*input, intensity, FilterEdges::Clamp);
    auto expected = test::MakeImage(12, 6, [&](int x, int) {
      // Columns 5 and 6 see the step across their ±1 neighbours: gx = 4 Δ.
      const bool atStep = x == 5 || x == 6;
      auto channel = [&](uint8_t a, uint8_t b) {
        return atStep ? test::ToByte(std::min(1.0, std::abs(b - a) / 255.0 * intensity)) : uint8_t{0};
      };
      return Rgba8{channel(left.red, right.red), channel(left.green, right.green),
                   channel(left.blue, right.blue), 255};
    });
    EXPECT_TRUE(test::ImagesMatch(*output, *expected, 1, "edges_" + std::to_string(intensity)));
  }
}

TEST(ConvolutionFilters, SharpenAndEdgeWorkLeaveFlatAreasFlat) {
  auto flat = Uniform(16, 12, {90, 60, 30, 255});
  auto sharpened = CISharpenLuminance(*flat, 5, 2, FilterEdges::Clamp);
  EXPECT_TRUE(test::ImagesMatch(*sharpened, *flat, 0, "sharpen_flat"));
  auto woodcut = CIEdgeWork(*flat, 2, FilterEdges::Clamp);
  EXPECT_TRUE(test::ImagesMatch(*woodcut, *Uniform(16, 12, {255, 255, 255, 255}), 0, "edge_work_flat"));
}

// Across a dark-to-light step the luma detail Y − blur(Y) is negative on the
// dark side and positive on the light one: sharpening moves each side away
// from the other by sharpness × detail (chroma kept: all channels alike),
// and the woodcut inks the dark side only.
TEST(ConvolutionFilters, SharpenAndEdgeWorkAcrossAStep) {
  auto input = test::MakeImage(20, 4, [](int x, int) {
    return x < 10 ? Rgba8{60, 60, 60, 255} : Rgba8{180, 180, 180, 255};
  });
  const double sigma = 1.0, sharpness = 0.8;
  auto sharpened = CISharpenLuminance(*input, sharpness, sigma, FilterEdges::Clamp);
  for (int x = 6; x < 14; ++x) {
    double blurred = 0, sum = 0;
    for (int k = -4; k <= 4; ++k) {
      double w = std::exp(-0.5 * k * k / (sigma * sigma));
      sum += w;
      blurred += w * (x + k < 10 ? 60 : 180);
    }
    const double own = x < 10 ? 60 : 180;
    const double expected = std::clamp(own + sharpness * (own - blurred / sum), 0.0, 255.0);
    EXPECT_NEAR(test::PixelAt(*sharpened, x, 1).red, expected, 1) << x;
    EXPECT_EQ(test::PixelAt(*sharpened, x, 1).red, test::PixelAt(*sharpened, x, 1).blue) << x;
  }
  auto woodcut = CIEdgeWork(*input, 1, FilterEdges::Clamp);
  EXPECT_EQ(test::PixelAt(*woodcut, 9, 1), (Rgba8{0, 0, 0, 255}));
  EXPECT_EQ(test::PixelAt(*woodcut, 10, 1), (Rgba8{255, 255, 255, 255}));
  EXPECT_EQ(test::PixelAt(*woodcut, 0, 1), (Rgba8{255, 255, 255, 255}));
}

}  // namespace
}  // namespace paintdoc
