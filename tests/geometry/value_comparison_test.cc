// The tolerant comparisons at their boundaries, and a gradient's opacity as a
// whole.
#include "geometry/value_comparison.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace paintdoc {
namespace {

TEST(WtIsEqualWithColor, ComponentsWithinTolerancesInCalibratedRGB) {
  struct Case {
    const char* what;
    Color color;
    std::optional<Color> other;
    bool equal;
  };
  const Color grey = Color::calibratedRGB(0.5, 0.2, 0.7, 1.0);
  const Case cases[] = {
      {"none", Color(), std::nullopt, false},
      {"red 0.002 apart", grey, Color::calibratedRGB(0.502, 0.2, 0.7), true},
      {"red 0.0029 apart", grey, Color::calibratedRGB(0.4971, 0.2, 0.7), true},
      {"red 0.0031 apart", grey, Color::calibratedRGB(0.5031, 0.2, 0.7), false},
      {"green 0.0031 apart", grey, Color::calibratedRGB(0.5, 0.2031, 0.7), false},
      {"blue 0.0031 apart", grey, Color::calibratedRGB(0.5, 0.2, 0.6969), false},
      {"alpha 0.009 apart", grey, Color::calibratedRGB(0.5, 0.2, 0.7, 0.991), true},
      {"alpha 0.015 apart", grey, Color::calibratedRGB(0.5, 0.2, 0.7, 0.985), false},
      {"white against RGB", Color::calibratedWhite(0.5), Color::calibratedRGB(0.5, 0.5, 0.5),
       true},
      {"device against calibrated", Color::deviceRGB(0.5, 0.2, 0.7), grey, true},
      {"white against near RGB", Color::calibratedWhite(0.5), Color::calibratedRGB(0.5, 0.5, 0.51),
       false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(wt_isEqualWithColor(c.color, c.other), c.equal) << c.what;
    if (c.other) {
      EXPECT_EQ(wt_isEqualWithColor(*c.other, c.color), c.equal) << c.what << " reversed";
    }
  }
}

TEST(WtIsEqualWithShadow, ExactOffsetsBlurWithinATenthTolerantColours) {
  struct Case {
    const char* what;
    std::optional<Shadow> other;
    bool equal;
  };
  const Color black = Color::calibratedWhite(0, 0.5);
  const Shadow shadow(black, Size{8, -8}, 8);
  const Case cases[] = {
      {"none", std::nullopt, false},
      {"same", shadow, true},
      {"offset a little off", Shadow(black, Size{8.0001, -8}, 8), false},
      {"blur 0.1 more", Shadow(black, Size{8, -8}, 8.1), true},
      {"blur 0.11 less", Shadow(black, Size{8, -8}, 7.89), false},
      {"colour within tolerance", Shadow(Color::calibratedRGB(0.002, 0, 0, 0.505), Size{8, -8}, 8),
       true},
      {"colour alpha off", Shadow(Color::calibratedWhite(0, 0.6), Size{8, -8}, 8), false},
  };
  for (const Case& c : cases) EXPECT_EQ(wt_isEqualWithShadow(shadow, c.other), c.equal) << c.what;
  // A shadow without a colour is drawn in the default colour and compares so.
  EXPECT_TRUE(wt_isEqualWithShadow(Shadow(std::nullopt, Size{1, 1}, 2),
                                   Shadow(Shadow::defaultColor(), Size{1, 1}, 2)));
  EXPECT_FALSE(wt_isEqualWithShadow(Shadow(), std::nullopt));
}

TEST(WtIsEqualWithGradient, StopByStopLocationsAndColours) {
  struct Case {
    const char* what;
    Gradient gradient;
    std::optional<Gradient> other;
    bool equal;
  };
  const Color red = Color::calibratedRGB(1, 0, 0);
  const Color blue = Color::calibratedRGB(0, 0, 1);
  const Gradient twoStops = Gradient::withColors({red, blue}, {0.5, 1});
  const Case cases[] = {
      {"none", Gradient(), std::nullopt, false},
      {"both without stops", Gradient(), Gradient(), true},
      {"another stop count", twoStops, Gradient::withColors({red, blue, red}, {0.5, 1, 1}), false},
      {"location 0.0009 off", twoStops, Gradient::withColors({red, blue}, {0.5009, 1}), true},
      {"location 0.0011 off", twoStops, Gradient::withColors({red, blue}, {0.5011, 1}), false},
      {"colours within tolerance", twoStops,
       Gradient::withColors({Color::deviceRGB(0.998, 0, 0), blue}, {0.5, 1}), true},
      {"second colour differs", twoStops, Gradient::withColors({red, red}, {0.5, 1}), false},
      {"same stops in another order", twoStops, Gradient::withColors({blue, red}, {1, 0.5}), false},
  };
  for (const Case& c : cases) EXPECT_EQ(wt_isEqualWithGradient(c.gradient, c.other), c.equal) << c.what;
}

TEST(GradientOpacity, MeanAlphaAndEveryStopFadedAlike) {
  struct Case {
    const char* what;
    std::vector<Color> colors;
    float average;
  };
  const Case cases[] = {
      {"no stops", {}, 0},
      {"opaque and clear", {Color::calibratedRGB(1, 0, 0, 1), Color::calibratedRGB(0, 0, 1, 0)}, 0.5f},
      {"three stops", {Color::calibratedWhite(0, 0.2), Color::calibratedWhite(1, 0.4), Color::deviceRGB(1, 1, 1, 0.9)},
       0.5f},
  };
  for (const Case& c : cases) {
    const Gradient gradient = Gradient::withColors(c.colors);
    const Gradient before = gradient;
    EXPECT_FLOAT_EQ(averageOpacity(gradient), c.average) << c.what;
    const std::optional<Gradient> faded = gradientWithOpacity(gradient, 0.3f);
    EXPECT_EQ(gradient, before) << c.what;
    if (c.colors.empty()) {
      EXPECT_FALSE(faded) << c.what;
      continue;
    }
    ASSERT_TRUE(faded) << c.what;
    EXPECT_EQ(faded->colorSpace(), ColorSpaceKind::SRGB);
    ASSERT_EQ(faded->numberOfColorStops(), gradient.numberOfColorStops());
    for (size_t i = 0; i < gradient.numberOfColorStops(); ++i) {
      EXPECT_EQ(faded->stopAt(i).color, gradient.stopAt(i).color.withAlphaComponent(0.3f));
      EXPECT_EQ(faded->stopAt(i).location, gradient.stopAt(i).location);
    }
    EXPECT_FLOAT_EQ(averageOpacity(*faded), 0.3f) << c.what;
  }
}

}  // namespace
}  // namespace paintdoc
